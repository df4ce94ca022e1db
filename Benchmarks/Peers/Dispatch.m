/* A message in the C compiler's own object runtime. */
#include <objc/Object.h>
#include <objc/runtime.h>

#include "PeerTiming.h"

@interface Answerer : Object {
  int number;
}
- (int)number;
@end

@implementation Answerer
- (int)number {
  return number;
}
@end

int main(void) {
  peerStartThread();
  Answerer* receiver = class_createInstance([Answerer class], 0);
  Answerer* nothing = nil;
  PEER_MEASURE("libobjc send", 1, {
    PEER_TOUCH(receiver);
    int answer = [receiver number];
    PEER_TOUCH(answer);
  });
  PEER_MEASURE("libobjc send to nil", 1, {
    PEER_TOUCH(nothing);
    int answer = [nothing number];
    PEER_TOUCH(answer);
  });
  return 0;
}
