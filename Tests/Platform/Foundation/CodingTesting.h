// What the tests of archives share: a class that archives itself, and archives as plain text.
#pragma once

#include <string>
#include <string_view>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>

namespace brindle {

/// A note with every kind of value, and another note that it keeps, or only knows.
class Note : public Interface<Note, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Note> classPair;

  static Note with(const NSString& title);

  NSString title() const { return send<"title", NSString>(*this); }
  id next() const { return send<"next", id>(*this); }
  void setNext(const id& next) const { send<"setNext:">(*this, next); }
  id related() const { return send<"related", id>(*this); }
  void setRelated(const id& related) const { send<"setRelated:">(*this, related); }

  static int living;
};

/// An archive of the object, read again.
inline id archivedAndRead(const id& object) {
  return NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(object));
}

/// An archive in XML with those objects behind "$null", whose root is the first of them.
inline NSData archiveOf(std::string_view objects,
                        std::string_view top =
                            "<key>root</key>"
                            "<dict><key>CF$UID</key><integer>1</integer></dict>") {
  return NSData("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
                "<key>$version</key><integer>100000</integer>"
                "<key>$archiver</key><string>NSKeyedArchiver</string>"
                "<key>$top</key><dict>" +
                std::string(top) +
                "</dict>"
                "<key>$objects</key><array><string>$null</string>" +
                std::string(objects) + "</array></dict></plist>");
}

/// "<dict><key>CF$UID</key>...": a reference to an object of an archive.
inline std::string uid(int number) {
  return "<dict><key>CF$UID</key><integer>" + std::to_string(number) + "</integer></dict>";
}

/// The description of a class in an archive.
inline std::string classNamed(const std::string& name) {
  return "<dict><key>$classname</key><string>" + name +
         "</string><key>$classes</key><array><string>" + name + "</string></array></dict>";
}

}  // namespace brindle
