// Allocation where only the platform is loaded, and not the library that puts layers before it.
#include <Brindle/Platform/NSObject.h>

#include "../VirtualCall.h"
#include "PeerTiming.h"

namespace {

void allocInitRelease() {
  const brindle::NSObject object = brindle::NSObject::alloc()->init();
  brindle::ObjectRecord* record = object.record();
  PEER_TOUCH(record);
}

}  // namespace

int main(int argc, char**) {
  peerStartThread();
  std::unique_ptr<brindle::bench::Virtual> receiver;
  if (argc > 0)
    receiver = std::make_unique<brindle::bench::Keeper>();
  else
    receiver = std::make_unique<brindle::bench::Constant>();
  PEER_MEASURE("platform alone", 1, allocInitRelease());
  PEER_MEASURE("platform alone, and 10 virtual calls", 1, {
    allocInitRelease();
    for (int i = 0; i < 10; ++i) {
      brindle::bench::Virtual* called = receiver.get();
      PEER_TOUCH(called);
      int number = called->number();
      PEER_TOUCH(number);
    }
  });
  return 0;
}
