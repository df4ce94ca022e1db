#include <Brindle/BDPropertyDetails.h>

#include <deque>
#include <string>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"
#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

/// The details of a property with that name and those attributes.
BDPropertyDetails detailsOf(const char* name, const std::string& attributes) {
  const Class cls = makeClass(NSObject::class_(), "Described");
  EXPECT_NE(class_addProperty(cls, name, attributes.c_str()), NO);
  return property_getDetails(class_getProperty(cls, name));
}

/// All of them on one line: "object copy retain getter setter".
std::string lineOf(const char* name, const std::string& attributes) {
  const BDPropertyDetails d = detailsOf(name, attributes);
  std::string line;
  if (d.isObject != NO) line += "object ";
  if (d.isCopy != NO) line += "copy ";
  if (d.isRetain != NO) line += "retain ";
  return line + sel_getName(d.getter) + " " + (d.setter != nullptr ? sel_getName(d.setter) : "-");
}

std::string raisedFor(const std::string& attributes) {
  const NSException exception = raisedBy([&] { detailsOf("p", attributes); });
  if (!exception) return "";
  EXPECT_TRUE(exception->name()->isEqual(BDInternalInconsistencyException));
  return std::string(exception->reason());
}

TEST(BDPropertyDetailsTest, Tour) {
  EXPECT_EQ(lineOf("title", "T@\"NSString\",C,N,V_title"), "object copy title setTitle:");
  EXPECT_EQ(lineOf("count", "Ti,R,N,V_count"), "count -");
  EXPECT_EQ(lineOf("enabled", "Tc,N,GisEnabled,V_enabled"), "isEnabled setEnabled:");
  EXPECT_EQ(lineOf("p", "T^v,N,V_p"), "object p setP:") << "a pointer counts";
  EXPECT_EQ(lineOf("foo", "T@,&,N,SsetFoo:,V_foo"), "object retain foo setFoo:");
}

TEST(BDPropertyDetailsTest, DerivesTheSetterFromTheName) {
  EXPECT_EQ(lineOf("name", "Ti"), "name setName:");
  EXPECT_EQ(lineOf("URL", "T@"), "object URL setURL:");
  EXPECT_EQ(lineOf("_x", "Ti"), "_x set_x:");
  EXPECT_EQ(lineOf("", "Ti"), " set:");
  EXPECT_EQ(lineOf("\xC3\xA4nderung", "Ti"), "\xC3\xA4nderung set\xC3\xA4nderung:");
  EXPECT_EQ(lineOf("\xFF", "Ti"), "\xFF set\xFF:");
}

TEST(BDPropertyDetailsTest, TakesNamesAsTheyStand) {
  EXPECT_EQ(lineOf("p", "Ti,Gget,Sput:with:,V_p"), "get put:with:");
  EXPECT_EQ(lineOf("p", "Ti,Slast:"), "p last:");
  EXPECT_EQ(lineOf("p", "Ti,Glast"), "last setP:");
  EXPECT_EQ(lineOf("p", "Ti,G,S,N"), " ") << "empty names are names";
  EXPECT_EQ(lineOf("p", "Ga,Gb,Sc:,Sd:"), "b d:") << "the last one counts";
  EXPECT_EQ(lineOf("p", "Ti,Sput:,R"), "p put:") << "a setter before R stays";
  EXPECT_EQ(lineOf("p", "Ti,R,Gg,V_p"), "g -");
}

TEST(BDPropertyDetailsTest, LettersWithoutAMeaningHere) {
  EXPECT_EQ(lineOf("p", "Ti,D,N,P,W,V_p"), "p setP:");
  EXPECT_EQ(lineOf("p", "N,&,C,R"), "copy retain p -");
}

TEST(BDPropertyDetailsTest, ATypeEndsAtItsFirstComma) {
  EXPECT_EQ(lineOf("p", "T{_NSRange=QQ},N"), "p setP:");
  EXPECT_EQ(lineOf("p", "T,C"), "copy p setP:");
  EXPECT_EQ(raisedFor("T@\"A,xB\",C"), "Unexpected character at 5 in T@\"A,xB\",C");
  EXPECT_EQ(lineOf("p", "T@,T^,Ti"), "object p setP:") << "once an object, for ever";
}

TEST(BDPropertyDetailsTest, EndsQuietly) {
  EXPECT_EQ(lineOf("p", ""), "p setP:");
  for (const char* last : {"T", "G", "V", "S", "N", "D", "P", "W"}) {
    EXPECT_EQ(lineOf("p", last), "p setP:") << last;
  }
  EXPECT_EQ(lineOf("p", "C"), "copy p setP:");
  EXPECT_EQ(lineOf("p", "R"), "p -");
  EXPECT_EQ(lineOf("p", "&C,X"), "retain p setP:") << "no comma behind a letter";
  EXPECT_EQ(lineOf("p", "RN,SsetX:"), "p -");
  EXPECT_EQ(lineOf("p", "C,"), "copy p setP:");
  EXPECT_EQ(lineOf("p", "Ti,"), "p setP:");
}

TEST(BDPropertyDetailsTest, UnexpectedCharacters) {
  EXPECT_EQ(raisedFor("T@,R,SsetX:"), "Unexpected character at 5 in T@,R,SsetX:");
  EXPECT_EQ(raisedFor("T@,R,S"), "Unexpected character at 5 in T@,R,S");
  EXPECT_EQ(raisedFor("T@,X"), "Unexpected character at 3 in T@,X");
  EXPECT_EQ(raisedFor("x"), "Unexpected character at 0 in x");
  EXPECT_EQ(raisedFor("N,,C"), "Unexpected character at 2 in N,,C");
  EXPECT_EQ(raisedFor("N,\xFF").find("Unexpected character at 2 in N,"), 0u) << "no UTF-8";
}

TEST(BDPropertyDetailsTest, OfNothing) {
  const BDPropertyDetails nothing = property_getDetails(nullptr);
  EXPECT_EQ(nothing.isObject + nothing.isCopy + nothing.isRetain, 0);
  EXPECT_EQ(nothing.getter, nullptr);
  EXPECT_EQ(nothing.setter, nullptr);
}

}  // namespace
}  // namespace brindle
