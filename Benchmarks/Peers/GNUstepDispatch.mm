// Forwarding, the life of objects and pools in GNUstep Base.
#import <Foundation/Foundation.h>

#include "PeerTiming.h"

@interface Answerer : NSObject {
  int number;
}
- (int)number;
@end

@implementation Answerer
- (int)number {
  return number;
}
@end

@interface Sender : NSObject {
  Answerer* target;
}
@end

@implementation Sender
- (id)init {
  target = [Answerer new];
  return self;
}
- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
  return [target methodSignatureForSelector:selector];
}
- (void)forwardInvocation:(NSInvocation*)invocation {
  [invocation invokeWithTarget:target];
}
@end

enum { kObjectsInPool = 1000 };

int main() {
  NSAutoreleasePool* outer = [NSAutoreleasePool new];
  peerStartThread();

  Answerer* receiver = (Answerer*)[Sender new];
  PEER_MEASURE("GNUstep forwardInvocation:", 100, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < 100; ++k) {
      PEER_TOUCH(receiver);
      int answer = [receiver number];
      PEER_TOUCH(answer);
    }
    [pool release];
  });
  PEER_MEASURE("GNUstep alloc, init, release", 1, {
    NSObject* object = [[NSObject alloc] init];
    PEER_TOUCH(object);
    [object release];
  });
  PEER_MEASURE("GNUstep alloc, init, autorelease", kObjectsInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kObjectsInPool; ++k) [[[NSObject alloc] init] autorelease];
    [pool release];
  });
  NSObject* object = [NSObject new];
  PEER_MEASURE("GNUstep retain, autorelease", kObjectsInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kObjectsInPool; ++k) {
      PEER_TOUCH(object);
      [[object retain] autorelease];
    }
    [pool release];
  });
  PEER_MEASURE("GNUstep empty pool", 1, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    [pool release];
  });
  [outer release];
  return 0;
}
