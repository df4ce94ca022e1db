#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Conformance/Hex.h"
#include "Tests/Conformance/Json.h"
#include "Tests/Conformance/Report.h"
#include "Tests/Conformance/Table.h"

namespace brindle::conformance {
namespace {

/// Stands for any class of the archives: reads every field that the answers name.
class StandIn : public Interface<StandIn, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<StandIn> classPair;
};

// The fields of each class in the archive that is read now.
std::map<std::string, std::set<std::string>>& expectedFields() {
  static std::map<std::string, std::set<std::string>> fields;
  return fields;
}

struct Fields {
  std::map<std::string, id> values;
  std::set<std::string> present;
};

constexpr char kPrefix[] = "StandIn for ";

constexpr MethodDefinition kMethods[] = {
    method<"initWithCoder:">([](const StandIn& self, const NSCoder& coder) -> id {
      const std::string name = class_getName(object_getClass(self));
      for (const std::string& key : expectedFields()[name.substr(sizeof kPrefix - 1)]) {
        if (!coder->containsValueForKey(NSString(key))) continue;
        fieldsOf<Fields>(self).present.insert(key);
        const id value = coder->decodeObjectForKey(NSString(key));
        fieldsOf<Fields>(self).values[key] = value;
      }
      return self;
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "StandIn", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<StandIn> StandIn::classPair{kDefinition};

namespace {

// The class that stands for a name: the library's own where it archives itself.
Class classFor(const std::string& name) {
  static const std::set<std::string> kOwn = {
      "NSArray",      "NSMutableArray", "NSDictionary", "NSMutableDictionary", "NSSet",
      "NSMutableSet", "NSDate",         "NSNull",       "NSMutableString",     "NSMutableData"};
  if (kOwn.count(name) != 0) return objc_getClass(name.c_str());
  const std::string own = kPrefix + name;
  if (const Class known = objc_getClass(own.c_str())) return known;
  const Class cls = objc_allocateClassPair(StandIn::class_(), own.c_str(), 0);
  objc_registerClassPair(cls);
  return cls;
}

// What an object of a class that stands for another is called.
std::string nameOf(const Json& json) {
  const Json* name = json.find("class");
  if (name->kind == Json::Kind::string) return name->text;
  const Json* chain = json.find("classes");
  return chain != nullptr && !chain->items.empty() ? chain->items[0].text : "";
}

void collectClasses(const Json& json, std::set<std::string>& names) {
  if (json.find("class") != nullptr) {
    const std::string name = nameOf(json);
    names.insert(name);
    for (const char* part : {"fields", "data", "string", "items"}) {
      const Json* value = json.find(part);
      if (value == nullptr) continue;
      if (std::string(part) == "fields") {
        for (const auto& [key, field] : value->members) expectedFields()[name].insert(key);
      } else if (std::string(part) == "data") {
        expectedFields()[name].insert("NS.data");
      }
    }
  }
  for (const auto& [key, value] : json.members) collectClasses(value, names);
  for (const Json& item : json.items) collectClasses(item, names);
}

/// Compares an object with its answer; what differs is told with the way to it.
class Comparison {
 public:
  std::string compare(const Json& json, const id& object, const std::string& path) {
    switch (json.kind) {
      case Json::Kind::string:
        return isa<NSString>(object) && std::string(cast<NSString>(object)) == json.text
                   ? ""
                   : differs(json.text, object, path);
      case Json::Kind::boolean:
        return object == NSNumber::numberWithBool(json.truth)
                   ? ""
                   : differs("a truth value", object, path);
      case Json::Kind::number:
        return compareNumber(json.text, object, path);
      case Json::Kind::object:
        return compareObject(json, object, path);
      default:
        return path + ": a strange answer";
    }
  }

 private:
  static std::string differs(const std::string& wanted, const id& object, const std::string& path) {
    return path + ": " + (object ? std::string(object->description()) : "nil") + " instead of " +
           wanted;
  }
  static std::string compareNumber(const std::string& text, const id& object,
                                   const std::string& path) {
    const NSNumber wanted = text[0] == '-' ? NSNumber(std::strtoll(text.c_str(), nullptr, 10))
                                           : NSNumber(std::strtoull(text.c_str(), nullptr, 10));
    return wanted->isEqual(object) ? "" : differs(text, object, path);
  }
  static std::string compareDate(const Json& seconds, const id& object, const std::string& path) {
    const auto date = dynCast<NSDate>(object);
    const double wanted = std::strtod(seconds.text.c_str(), nullptr);
    const bool same = date && std::abs(date->timeIntervalSinceReferenceDate() - wanted) <= 1e-6;
    return same ? "" : differs(seconds.text, object, path);
  }

  std::string compareObject(const Json& json, const id& object, const std::string& path) {
    if (json.find("nil") != nullptr) return object ? differs("nil", object, path) : "";
    if (const Json* ref = json.find("ref")) {
      return seen_[ref->text] == object ? "" : differs("the same object", object, path);
    }
    if (const Json* real = json.find("real")) {
      const auto number = dynCast<NSNumber>(object);
      const double wanted = std::strtod(real->text.c_str(), nullptr);
      return number && number->doubleValue() == wanted ? "" : differs(real->text, object, path);
    }
    if (const Json* hex = json.find("data_hex")) {
      const auto data = dynCast<NSData>(object);
      return data && hexOf(data->view()) == hex->text ? "" : differs(hex->text, object, path);
    }
    if (const Json* seconds = json.find("date_seconds_since_2001")) {
      return compareDate(*seconds, object, path);
    }
    return compareInstance(json, object, path);
  }

  std::string compareInstance(const Json& json, const id& object, const std::string& path) {
    const std::string name = nameOf(json);
    if (classOf(object) != classFor(name)) return differs("a " + name, object, path);
    seen_[json.find("uid")->text] = object;
    if (const Json* seconds = json.find("seconds_since_2001"))
      return compareDate(*seconds, object, path);
    if (const Json* text = json.find("string")) return compare(*text, object, path);
    if (const Json* data = json.find("data"); data != nullptr && isa<NSData>(object)) {
      return compare(*data, object, path);
    }
    if (const Json* data = json.find("data")) {
      return compare(*data, fieldsOf<Fields>(uncheckedCast<StandIn>(object)).values["NS.data"],
                     path + ".data");
    }
    if (const Json* items = json.find("items")) return compareItems(*items, object, path);
    if (const Json* pairs = json.find("pairs")) return comparePairs(*pairs, object, path);
    if (isa<StandIn>(object))
      return compareFields(*json.find("fields"), uncheckedCast<StandIn>(object), path);
    return "";
  }

  std::string compareItems(const Json& items, const id& object, const std::string& path) {
    if (isa<NSSet>(object)) {
      const auto set = cast<NSSet>(object);
      if (set->count() != items.items.size()) return differs("as many members", object, path);
      for (const Json& item : items.items) {
        bool found = false;
        for (const id& member : set) found = found || compare(item, member, path).empty();
        if (!found) return differs("a set with other members", object, path);
      }
      return "";
    }
    const auto array = cast<NSArray>(object);
    if (array->count() != items.items.size()) return differs("as many members", object, path);
    for (std::size_t i = 0; i < items.items.size(); ++i) {
      std::string complaint =
          compare(items.items[i], array[i], path + "[" + std::to_string(i) + "]");
      if (!complaint.empty()) return complaint;
    }
    return "";
  }

  std::string comparePairs(const Json& pairs, const id& object, const std::string& path) {
    const auto dictionary = cast<NSDictionary>(object);
    if (dictionary->count() != pairs.items.size()) return differs("as many entries", object, path);
    for (const Json& pair : pairs.items) {
      id value;
      for (const id& key : dictionary) {
        if (compare(pair.items[0], key, path).empty()) value = dictionary->objectForKey(key);
      }
      std::string complaint = compare(pair.items[1], value, path + "." + pair.items[0].text);
      if (!complaint.empty()) return complaint;
    }
    return "";
  }

  std::string compareFields(const Json& fields, const StandIn& object, const std::string& path) {
    Fields& own = fieldsOf<Fields>(object);
    for (const auto& [key, value] : fields.members) {
      if (own.present.count(key) == 0) return path + "." + key + " is missing";
      std::string complaint = compare(value, own.values[key], path + "." + key);
      if (!complaint.empty()) return complaint;
    }
    return "";
  }

  std::map<std::string, id> seen_;
};

std::string checkGood(const Json& top, const NSKeyedUnarchiver& coder) {
  Comparison comparison;
  for (const auto& [key, json] : top.members) {
    std::string complaint = comparison.compare(json, coder->decodeObjectForKey(NSString(key)), key);
    if (!complaint.empty()) return complaint;
  }
  return "";
}

// Circles keep themselves: the values go when they were compared.
void dropValues(const id& object) {
  if (isa<NSMutableArray>(object)) uncheckedCast<NSMutableArray>(object)->removeAllObjects();
  if (!isa<StandIn>(object)) return;
  const auto values = std::move(fieldsOf<Fields>(uncheckedCast<StandIn>(object)).values);
}

std::string checkArchive(const std::string& folder, const Json& row) {
  const NSData data =
      NSData::dataWithContentsOfFile(NSString(folder + "/keyed/" + row.find("file")->text));
  if (!data) return "the file is not there";
  const bool isGood = row.find("verdict")->text == "good";
  const Json* top = row.find("top");
  std::set<std::string> names;
  expectedFields().clear();
  if (top != nullptr) collectClasses(*top, names);
  try {
    const NSKeyedUnarchiver coder = NSKeyedUnarchiver::alloc()->initForReadingWithData(data);
    for (const std::string& name : names) {
      if (!name.empty()) coder->setClass(classFor(name), NSString(name));
    }
    const id root = coder->decodeObjectForKey("root"_ns);
    std::string complaint;
    if (isGood)
      complaint = checkGood(*top, coder);
    else if (root)
      complaint = "broken, but read as " + std::string(root->description());
    dropValues(root);
    return complaint;
  } catch (const RaisedException& raised) {
    return isGood ? raised.what() : "";
  }
}

std::string checkRange(const std::string& path, const Row& row, bool wholeSeconds) {
  const auto range =
      dynCast<BDDateRange>(NSKeyedUnarchiver::unarchiveObjectWithFile(NSString(path)));
  if (!range) return "no range";
  // Keys that were left out read as nil and 0: the bits of the last column, in the order of the
  // keys.
  const unsigned long left = std::strtoul(row[7].c_str(), nullptr, 10);
  const auto field = [&](unsigned bit, std::size_t column) {
    return (left >> bit & 1U) != 0 ? 0LL : std::strtoll(row[column].c_str(), nullptr, 10);
  };
  const NSDate anchor = range->anchor();
  const bool wantsAnchor = row[1] != "nil" && (left & 1U) == 0;
  if (static_cast<bool>(anchor) != wantsAnchor) return "the anchor";
  const double tolerance = wholeSeconds ? 1 : 1e-6;
  if (anchor && std::abs(anchor->timeIntervalSince1970() - std::strtod(row[1].c_str(), nullptr)) >
                    tolerance) {
    return "the anchor is " + std::to_string(anchor->timeIntervalSince1970());
  }
  if (range->offset() != field(1, 2)) return "the offset is " + std::to_string(range->offset());
  if (range->length() != field(2, 3)) return "the length is " + std::to_string(range->length());
  if (range->anchorUnit() != field(3, 4)) return "the anchor unit";
  if (range->offsetUnit() != field(4, 5)) return "the offset unit";
  if (range->lengthUnit() != field(5, 6)) return "the length unit";
  return "";
}

}  // namespace

void checkKeyedArchives(const std::string& folder, Report& report) {
  std::ifstream file(folder + "/keyed.jsonl");
  for (std::string line; std::getline(file, line);) {
    const Json row = readJson(line);
    report.note(row.find("file")->text, checkArchive(folder, row));
  }
  report.close("keyed.jsonl");

  for (const char* origin : {"daterange_apple_form", "daterange_gnustep_1.28"}) {
    const std::string place = folder + "/keyed/" + origin;
    for (const Row& row : readTable(place + "/cases.tsv")) {
      for (const char* form : {"bin", "xml"}) {
        const std::string path = place + "/" + row[0] + "." + form + ".plist";
        if (!std::filesystem::exists(path)) continue;
        const bool wholeSeconds =
            std::string(form) == "xml" && std::string(origin).find("gnustep") != std::string::npos;
        report.note(std::string(origin) + "/" + row[0] + "." + form,
                    checkRange(path, row, wholeSeconds));
      }
    }
  }
  report.close("date ranges in archives");
}

}  // namespace brindle::conformance
