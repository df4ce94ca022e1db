#include "ClassListing.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <sstream>
#include <string_view>
#include <vector>

#include <Brindle/Platform/Implementation.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/Runtime.h>

#include "Json.h"

namespace tool {
namespace {

using namespace brindle;

/// Where an address of code is: the file's name without its folder, and the function if it has a
/// name.
struct Place {
  std::string image;
  std::string symbol;
};

std::string demangled(const char* name) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
  return text ? text.get() : name;
}

Place placeOf(const void* address) {
  Dl_info info;
  if (address == nullptr || ::dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
    return {"(no file)", ""};
  }
  const std::string_view path = info.dli_fname;
  return {std::string(path.substr(path.rfind('/') + 1)),
          info.dli_sname != nullptr ? demangled(info.dli_sname) : ""};
}

Place placeOf(IMP implementation) { return placeOf(detail::implementationAddress(implementation)); }

std::string timeText(std::chrono::system_clock::time_point when) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
  std::tm fields{};
  ::localtime_r(&seconds, &fields);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &fields);
  return {text.data(), length};
}

std::string_view kindText(MethodChange::Kind kind) {
  switch (kind) {
    case MethodChange::Kind::kAdded:
      return "added";
    case MethodChange::Kind::kReplaced:
      return "replaced";
    case MethodChange::Kind::kExchanged:
      return "exchanged";
  }
  return "";
}

struct Change {
  MethodChange change;
  bool ofClass;
};

/// Of the class and its meta-class, the oldest first.
std::vector<Change> changesOf(Class cls) {
  std::vector<Change> changes;
  for (const bool ofClass : {false, true}) {
    for (const MethodChange& change :
         class_copyMethodChanges(ofClass ? object_getClass(cls) : cls)) {
      changes.push_back({change, ofClass});
    }
  }
  std::stable_sort(changes.begin(), changes.end(),
                   [](const Change& a, const Change& b) { return a.change.when < b.change.when; });
  return changes;
}

std::vector<std::string> protocolsOf(Class cls) {
  std::vector<std::string> names;
  for (const Protocol& protocol : class_copyProtocolList(cls)) {
    names.emplace_back(protocol_getName(protocol));
  }
  return names;
}

const char* textOf(const char* text) { return text != nullptr ? text : ""; }

void describeMethods(std::ostream& out, Class cls, char mark, std::string_view title) {
  const std::vector<Method> methods = class_copyMethodList(cls);
  if (methods.empty()) return;
  out << '\n' << title << '\n';
  for (Method method : methods) {
    const IMP code = method_getImplementation(method);
    out << "  " << mark << ' ' << sel_getName(method_getName(method)) << "  "
        << textOf(method_getTypeEncoding(method)) << "  "
        << (code != nullptr ? placeOf(code).image : "(nothing)") << '\n';
  }
}

void describeChange(std::ostream& out, const Change& change) {
  const Place from = placeOf(change.change.from);
  out << "  " << timeText(change.change.when) << "  " << (change.ofClass ? "+ " : "- ")
      << sel_getName(change.change.selector) << "  " << kindText(change.change.kind) << " from "
      << from.image;
  if (!from.symbol.empty()) out << " (" << from.symbol << ')';
  out << ", now "
      << (change.change.after != nullptr ? placeOf(change.change.after).image : "nothing") << '\n';
}

/// The items as a JSON array, each written by `write`.
template <class Items, class Write>
void writeArray(std::ostream& out, const Items& items, Write write) {
  const char* separator = "";
  out << '[';
  for (const auto& item : items) {
    out << separator;
    write(item);
    separator = ", ";
  }
  out << ']';
}

void writeMethods(std::ostream& out, Class cls) {
  writeArray(out, class_copyMethodList(cls), [&out](Method method) {
    const IMP code = method_getImplementation(method);
    out << "{\"selector\": " << jsonString(sel_getName(method_getName(method)))
        << ", \"types\": " << jsonString(textOf(method_getTypeEncoding(method)))
        << ", \"image\": " << (code != nullptr ? jsonString(placeOf(code).image) : "null") << '}';
  });
}

}  // namespace

std::string describeClass(Class cls) {
  std::ostringstream out;
  const Class super = class_getSuperclass(cls);
  out << class_getName(cls) << (super ? " : " : "") << (super ? class_getName(super) : "") << "\n  "
      << class_getInstanceSize(cls) << " bytes, " << placeOf(cls.record()).image << '\n';
  for (const std::string& protocol : protocolsOf(cls)) out << "  adopts " << protocol << '\n';
  describeMethods(out, object_getClass(cls), '+', "Class operations");
  describeMethods(out, cls, '-', "Instance operations");
  const auto properties = class_copyPropertyList(cls);
  if (!properties.empty()) out << "\nProperties\n";
  for (const objc_property_t property : properties) {
    out << "  " << property_getName(property) << "  " << property_getAttributes(property) << '\n';
  }
  const auto variables = class_copyIvarList(cls);
  if (!variables.empty()) out << "\nVariables\n";
  for (const Ivar variable : variables) {
    out << "  " << ivar_getName(variable) << "  " << textOf(ivar_getTypeEncoding(variable))
        << "  at " << ivar_getOffset(variable) << '\n';
  }
  const std::vector<Change> changes = changesOf(cls);
  if (!changes.empty()) out << "\nChanges\n";
  for (const Change& change : changes) describeChange(out, change);
  return out.str();
}

std::string describeClassAsJson(Class cls) {
  std::ostringstream out;
  const Class super = class_getSuperclass(cls);
  out << "{\"name\": " << jsonString(class_getName(cls))
      << ", \"superclass\": " << (super ? jsonString(class_getName(super)) : "null")
      << ", \"instanceSize\": " << class_getInstanceSize(cls)
      << ", \"image\": " << jsonString(placeOf(cls.record()).image) << ", \"protocols\": ";
  writeArray(out, protocolsOf(cls), [&out](const std::string& name) { out << jsonString(name); });
  out << ", \"classMethods\": ";
  writeMethods(out, object_getClass(cls));
  out << ", \"instanceMethods\": ";
  writeMethods(out, cls);
  out << ", \"properties\": ";
  writeArray(out, class_copyPropertyList(cls), [&out](objc_property_t property) {
    out << "{\"name\": " << jsonString(property_getName(property))
        << ", \"attributes\": " << jsonString(property_getAttributes(property)) << '}';
  });
  out << ", \"variables\": ";
  writeArray(out, class_copyIvarList(cls), [&out](Ivar variable) {
    out << "{\"name\": " << jsonString(ivar_getName(variable))
        << ", \"type\": " << jsonString(textOf(ivar_getTypeEncoding(variable)))
        << ", \"offset\": " << ivar_getOffset(variable) << '}';
  });
  out << ", \"changes\": ";
  writeArray(out, changesOf(cls), [&out](const Change& change) {
    const Place from = placeOf(change.change.from);
    out << "{\"when\": " << jsonString(timeText(change.change.when))
        << ", \"selector\": " << jsonString(sel_getName(change.change.selector))
        << ", \"classMethod\": " << (change.ofClass ? "true" : "false")
        << ", \"kind\": " << jsonString(kindText(change.change.kind))
        << ", \"image\": " << jsonString(from.image)
        << ", \"symbol\": " << (from.symbol.empty() ? "null" : jsonString(from.symbol))
        << ", \"code\": "
        << (change.change.after != nullptr ? jsonString(placeOf(change.change.after).image)
                                           : "null")
        << '}';
  });
  out << '}';
  return out.str();
}

std::string listing(const char* className, bool json) {
  const Class cls = objc_getClass(className);
  if (cls) return json ? describeClassAsJson(cls) + "\n" : describeClass(cls);
  return json ? "null\n" : std::string("there is no class ") + className + '\n';
}

}  // namespace tool
