// Keyed archives with GNUstep Base: an object with five integers and a date, and the same as a
// dictionary.
#import <Foundation/Foundation.h>

#include "PeerTiming.h"

enum { kInPool = 100 };

@interface Range : NSObject <NSCoding> {
  NSDate* anchor;
  NSInteger offset, length, anchorUnit, offsetUnit, lengthUnit;
}
@end

@implementation Range
- (id)init {
  anchor = [[NSDate dateWithTimeIntervalSince1970:1700000000.125] retain];
  offset = -5;
  length = 7;
  anchorUnit = 1;
  offsetUnit = 2;
  lengthUnit = 3;
  return self;
}
- (void)encodeWithCoder:(NSCoder*)coder {
  [coder encodeObject:anchor forKey:@"anchor"];
  [coder encodeInteger:offset forKey:@"offset"];
  [coder encodeInteger:length forKey:@"length"];
  [coder encodeInteger:anchorUnit forKey:@"anchorUnit"];
  [coder encodeInteger:offsetUnit forKey:@"offsetUnit"];
  [coder encodeInteger:lengthUnit forKey:@"lengthUnit"];
}
- (id)initWithCoder:(NSCoder*)coder {
  anchor = [[coder decodeObjectForKey:@"anchor"] retain];
  offset = [coder decodeIntegerForKey:@"offset"];
  length = [coder decodeIntegerForKey:@"length"];
  anchorUnit = [coder decodeIntegerForKey:@"anchorUnit"];
  offsetUnit = [coder decodeIntegerForKey:@"offsetUnit"];
  lengthUnit = [coder decodeIntegerForKey:@"lengthUnit"];
  return self;
}
- (void)dealloc {
  [anchor release];
  [super dealloc];
}
@end

static void measure(const char* write, const char* read, id object) {
  PEER_MEASURE(write, kInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kInPool; ++k) {
      NSData* data = [NSKeyedArchiver archivedDataWithRootObject:object];
      PEER_TOUCH(data);
    }
    [pool release];
  });
  NSData* data = [[NSKeyedArchiver archivedDataWithRootObject:object] retain];
  PEER_MEASURE(read, kInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kInPool; ++k) {
      id back = [NSKeyedUnarchiver unarchiveObjectWithData:data];
      PEER_TOUCH(back);
    }
    [pool release];
  });
  [data release];
}

int main() {
  NSAutoreleasePool* outer = [NSAutoreleasePool new];
  peerStartThread();
  measure("GNUstep archive of a range", "GNUstep unarchive of a range", [[Range new] autorelease]);
  NSDate* anchor = [NSDate dateWithTimeIntervalSince1970:1700000000.125];
  id keys[] = {@"anchor", @"offset", @"length", @"anchorUnit", @"offsetUnit", @"lengthUnit"};
  id values[] = {anchor, [NSNumber numberWithInt:-5], [NSNumber numberWithInt:7],
                 [NSNumber numberWithInt:1], [NSNumber numberWithInt:2], [NSNumber numberWithInt:3]};
  measure("GNUstep archive of a dictionary", "GNUstep unarchive of a dictionary",
          [NSDictionary dictionaryWithObjects:values forKeys:keys count:6]);
  [outer release];
  return 0;
}
