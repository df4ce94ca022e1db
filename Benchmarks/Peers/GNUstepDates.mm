// The start of an instant's month, and of the next, with GNUstep Base's calendar.
#import <Foundation/Foundation.h>

#include "PeerTiming.h"

enum { kInstants = 64, kInPool = 100 };

static NSCalendar* newCalendar(NSTimeZone* zone) {
  NSCalendar* calendar = [[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar];
  [calendar setTimeZone:zone];
  return calendar;
}

static void month(NSCalendar* calendar, int i) {
  NSDate* instant = [NSDate dateWithTimeIntervalSince1970:1546300800.0 + (i % kInstants) * 3944700.0];
  NSDateComponents* parts = [calendar
      components:NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit
        fromDate:instant];
  [parts setDay:1];
  NSDate* start = [calendar dateFromComponents:parts];
  PEER_TOUCH(start);
  [parts setMonth:[parts month] + 1];
  NSDate* end = [calendar dateFromComponents:parts];
  PEER_TOUCH(end);
}

int main() {
  NSAutoreleasePool* outer = [NSAutoreleasePool new];
  peerStartThread();
  NSTimeZone* zone = [NSTimeZone timeZoneWithName:@"America/New_York"];
  NSCalendar* reused = newCalendar(zone);
  int i = 0;
  PEER_MEASURE("GNUstep month, calendar reused", kInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kInPool; ++k) month(reused, i++);
    [pool release];
  });
  PEER_MEASURE("GNUstep month", kInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kInPool; ++k) {
      NSCalendar* calendar = newCalendar(zone);
      month(calendar, i++);
      [calendar release];
    }
    [pool release];
  });
  [outer release];
  return 0;
}
