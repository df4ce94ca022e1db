// Allocation where only the platform is loaded, and not the library that puts layers before it.
#include <cstdio>

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
  double alone = 0;
  double call = 0;
  PEER_TIME(alone, 1, allocInitRelease());
  PEER_TIME(call, 1, {
    brindle::bench::Virtual* called = receiver.get();
    PEER_TOUCH(called);
    int number = called->number();
    PEER_TOUCH(number);
  });
  std::printf("platform alone\t%.4f\n", alone);
  std::printf("platform alone, and 10 virtual calls\t%.4f\n", alone + 10 * call);
  return 0;
}
