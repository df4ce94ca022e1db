// Words and bundles with GNUstep Base: 16 keys in turn from a table of 1,000, found and missing,
// and bundles that are known already.
#import <Foundation/Foundation.h>

#include "PeerTiming.h"

enum { kInPool = 1000, kWords = 1000, kKeys = 16 };

static void measureWords(const char* name, NSBundle* bundle, NSString** keys) {
  PEER_MEASURE(name, kInPool, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (int k = 0; k < kInPool; ++k) {
      NSString* word = [bundle localizedStringForKey:keys[k % kKeys] value:nil table:nil];
      PEER_TOUCH(word);
    }
    [pool release];
  });
}

int main() {
  NSAutoreleasePool* outer = [NSAutoreleasePool new];
  peerStartThread();
  char root[] = "/tmp/brindle-peer-XXXXXX";
  if (mkdtemp(root) == NULL) return 1;
  NSString* path = [NSString stringWithUTF8String:root];
  NSString* folder = [path stringByAppendingPathComponent:@"Resources/English.lproj"];
  NSFileManager* files = [NSFileManager defaultManager];
  [files createDirectoryAtPath:folder withIntermediateDirectories:YES attributes:nil error:NULL];
  NSMutableString* table = [NSMutableString string];
  for (int i = 0; i < kWords; ++i) {
    [table appendFormat:@"\"key number %d\" = \"Wort Nummer %d\";\n", 1000 + i, 1000 + i];
  }
  [table writeToFile:[folder stringByAppendingPathComponent:@"Localizable.strings"]
          atomically:NO
            encoding:NSUTF8StringEncoding
               error:NULL];
  NSBundle* bundle = [NSBundle bundleWithPath:path];
  NSString* keys[kKeys];
  NSString* missing[kKeys];
  for (int i = 0; i < kKeys; ++i) {
    keys[i] = [[NSString alloc] initWithFormat:@"key number %d", 1000 + i * 61];
    missing[i] = [[NSString alloc] initWithFormat:@"key number %d", 2000 + i * 61];
  }
  NSString* word = [bundle localizedStringForKey:keys[1] value:nil table:nil];
  if ([word isEqual:@"Wort Nummer 1061"]) {
    measureWords("GNUstep a word", bundle, keys);
    measureWords("GNUstep a missing word", bundle, missing);
  }
  PEER_MEASURE("GNUstep a bundle by its path", 1, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSBundle* known = [NSBundle bundleWithPath:path];
    PEER_TOUCH(known);
    [pool release];
  });
  PEER_MEASURE("GNUstep a bundle by a class", 1, {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSBundle* known = [NSBundle bundleForClass:[NSObject class]];
    PEER_TOUCH(known);
    [pool release];
  });
  [files removeFileAtPath:path handler:nil];
  [outer release];
  return 0;
}
