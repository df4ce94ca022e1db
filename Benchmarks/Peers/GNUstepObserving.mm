// Key-value observing in GNUstep Base.
#import <Foundation/Foundation.h>

#include "PeerTiming.h"

@interface Model : NSObject {
  int number;
}
- (int)number;
- (void)setNumber:(int)value;
@end

@implementation Model
- (int)number {
  return number;
}
- (void)setNumber:(int)value {
  number = value;
}
@end

@interface Watcher : NSObject {
 @public
  long told;
}
@end

@implementation Watcher
- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary*)change
                       context:(void*)context {
  ++told;
}
@end

enum { kChangesInPool = 100 };

static void measureChanges(const char* name, Model* model) {
  PEER_MEASURE(name, kChangesInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kChangesInPool; ++k) {
      PEER_TOUCH(model);
      [model setNumber:k];
    }
    [pool release];
  });
}

int main() {
  NSAutoreleasePool* outer = [NSAutoreleasePool new];
  peerStartThread();
  const NSKeyValueObservingOptions both = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;

  Model* model = [Model new];
  measureChanges("GNUstep change, nobody observes", model);

  Watcher* watchers[10];
  for (int k = 0; k < 10; ++k) watchers[k] = [Watcher new];
  PEER_MEASURE("GNUstep register and remove", kChangesInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kChangesInPool; ++k) {
      [model addObserver:watchers[0] forKeyPath:@"number" options:both context:NULL];
      [model removeObserver:watchers[0] forKeyPath:@"number"];
    }
    [pool release];
  });
  [model addObserver:watchers[0] forKeyPath:@"number" options:both context:NULL];
  measureChanges("GNUstep change, 1 observer", model);
  for (int k = 1; k < 10; ++k) {
    [model addObserver:watchers[k] forKeyPath:@"number" options:both context:NULL];
  }
  measureChanges("GNUstep change, 10 observers", model);
  for (int k = 0; k < 10; ++k) [model removeObserver:watchers[k] forKeyPath:@"number"];
  [outer release];
  return watchers[9]->told == 0;
}
