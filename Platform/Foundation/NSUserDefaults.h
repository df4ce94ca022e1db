// Settings of the program, by name. What is set counts first, then the words of the command line
// ("-fontSize 12"), then what the program registered as its defaults.
//
//   NSUserDefaults settings = NSUserDefaults::standardUserDefaults();
//   settings->registerDefaults({{"fontSize"_ns, NSNumber(11)}});
//   const NSInteger size = settings->integerForKey("fontSize"_ns);
//
// Settings live as long as the process: nothing is written to a file. Any thread.
#pragma once

#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSUserDefaults : public Interface<NSUserDefaults, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSUserDefaults> classPair;

  /// The program's own, the same one every time. Others, from `new_`, know nothing of the command
  /// line.
  static NSUserDefaults standardUserDefaults() {
    return send<"standardUserDefaults", NSUserDefaults>(class_());
  }

  /// Nil when there is none.
  id objectForKey(const NSString& key) const { return send<"objectForKey:", id>(*this, key); }
  /// Nil removes it. A nil key raises NSInvalidArgumentException.
  void setObject(const id& object, const NSString& key) const {
    send<"setObject:forKey:">(*this, object, key);
  }
  /// What was set; the command line and the registered defaults stay.
  void removeObjectForKey(const NSString& key) const { send<"removeObjectForKey:">(*this, key); }

  /// A string, or a number as text; nil for anything else.
  NSString stringForKey(const NSString& key) const {
    return send<"stringForKey:", NSString>(*this, key);
  }
  /// Of a number or of a string ("YES", "true", "1"); false for anything else.
  bool boolForKey(const NSString& key) const { return send<"boolForKey:", bool>(*this, key); }
  /// Of a number or a string; 0 for anything else.
  NSInteger integerForKey(const NSString& key) const {
    return send<"integerForKey:", NSInteger>(*this, key);
  }
  double doubleForKey(const NSString& key) const {
    return send<"doubleForKey:", double>(*this, key);
  }
  void setBool(bool value, const NSString& key) const {
    send<"setBool:forKey:">(*this, value, key);
  }
  void setInteger(NSInteger value, const NSString& key) const {
    send<"setInteger:forKey:">(*this, value, key);
  }
  void setDouble(double value, const NSString& key) const {
    send<"setDouble:forKey:">(*this, value, key);
  }

  /// Adds entries to the defaults, in place of those of the same keys.
  void registerDefaults(const NSDictionary& defaults) const {
    send<"registerDefaults:">(*this, defaults);
  }
  /// Everything as it counts.
  NSDictionary dictionaryRepresentation() const {
    return send<"dictionaryRepresentation", NSDictionary>(*this);
  }
};

}  // namespace brindle
