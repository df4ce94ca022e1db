#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Platform/Foundation/Internal/BundleLayout.h"
#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Tests/Conformance/Hex.h"
#include "Tests/Conformance/Json.h"
#include "Tests/Conformance/Report.h"

namespace brindle::conformance {
namespace {

using internal::PropertyKind;
using internal::PropertyList;
using Index = PropertyList::Index;

/// Compares a node with its answer; what differs is told with the way to it.
class Comparison {
 public:
  explicit Comparison(const PropertyList& list) : list_(list) {}

  // NOLINTNEXTLINE(misc-no-recursion): as deep as the answers are
  std::string compare(const Json& json, Index node, const std::string& path) {
    const PropertyKind kind = list_.kind(node);
    bool same = false;
    switch (json.kind) {
      case Json::Kind::null:
        same = kind == PropertyKind::null;
        break;
      case Json::Kind::boolean:
        same = kind == PropertyKind::boolean && list_.boolean(node) == json.truth;
        break;
      case Json::Kind::string:
        same =
            kind == PropertyKind::string && internal::utf8FromText(list_.string(node)) == json.text;
        break;
      case Json::Kind::number:
        same = kind == PropertyKind::integer && isInteger(list_.integer(node), json.text);
        break;
      case Json::Kind::array:
        return compareArray(json, node, path);
      case Json::Kind::object:
        return compareObject(json, node, path);
    }
    return same ? "" : path + ": " + nameOf(kind) + ", or another one than " + json.text;
  }

 private:
  static bool isInteger(const internal::PropertyInteger& integer, const std::string& text) {
    if (text[0] == '-') {
      return integer.fitsSigned() && integer.asSigned() == std::strtoll(text.c_str(), nullptr, 10);
    }
    return integer.fitsUnsigned() && integer.low == std::strtoull(text.c_str(), nullptr, 10);
  }

  // NOLINTNEXTLINE(misc-no-recursion)
  std::string compareArray(const Json& json, Index node, const std::string& path) {
    const auto elements = list_.elements(node);
    if (list_.kind(node) != PropertyKind::array || elements.size() != json.items.size()) {
      return path + ": another array";
    }
    for (std::size_t i = 0; i < elements.size(); ++i) {
      std::string complaint =
          compare(json.items[i], elements[i], path + "[" + std::to_string(i) + "]");
      if (!complaint.empty()) return complaint;
    }
    return "";
  }

  // NOLINTNEXTLINE(misc-no-recursion)
  std::string compareObject(const Json& json, Index node, const std::string& path) {
    const PropertyKind kind = list_.kind(node);
    if (kind == PropertyKind::dictionary) {
      for (const auto& [key, value] : json.members) {
        const Index found = list_.find(node, *internal::textFromUtf8(key));
        if (found == PropertyList::kNone) return path + "." + key + " is missing";
        std::string complaint = compare(value, found, path + "." + key);
        if (!complaint.empty()) return complaint;
      }
      return list_.keys(node).size() >= json.members.size() ? "" : path + ": too few entries";
    }
    if (json.members.size() != 1) return path + ": " + nameOf(kind) + " instead of a dictionary";
    const auto& [word, value] = json.members[0];
    const double number = std::strtod(value.text.c_str(), nullptr);
    const bool same =
        (word == "data_hex" && kind == PropertyKind::data &&
         hexOf(list_.data(node)) == value.text) ||
        (word == "real" && kind == PropertyKind::real &&
         (list_.real(node) == number || (std::isnan(number) && std::isnan(list_.real(node))))) ||
        (word == "date" && kind == PropertyKind::date &&
         std::abs(list_.date(node) - number) < 1e-5) ||
        (word == "uid" && kind == PropertyKind::uid &&
         list_.uid(node) == std::strtoull(value.text.c_str(), nullptr, 10));
    return same ? "" : path + ": " + nameOf(kind) + ", or another one than " + value.text;
  }

  const PropertyList& list_;
};

std::string checkList(const std::string& path, const Json& row) {
  const std::string bytes = internal::contentsOfFile(path);
  std::string error;
  const auto list = internal::readPropertyList(bytes, error);
  if (list.has_value() == !error.empty()) return "neither read nor refused";
  const Json* wanted = row.find("cpython");
  // What is refused there may be read here, such as UTF-16; it ends, and that is enough.
  if (wanted == nullptr || row.find("file")->text.starts_with("hostile/")) return "";
  // An entity of its own, which there is nothing and here an error; and an answer that was too
  // long.
  if (wanted->kind == Json::Kind::null || wanted->text == "OK(large)") return "";
  if (!list) return error;
  return Comparison(*list).compare(*wanted, list->root(), "top");
}

}  // namespace

void checkPropertyLists(const std::string& folder, Report& report) {
  std::ifstream file(folder + "/plist.jsonl");
  for (std::string line; std::getline(file, line);) {
    const Json row = readJson(line);
    const std::string& name = row.find("file")->text;
    report.note(name, checkList(folder + "/" + name, row));
  }
  report.close("plist.jsonl");

  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder + "/hostile")) {
    if (!entry.is_regular_file()) continue;
    std::string error;
    const std::string bytes = internal::contentsOfFile(entry.path());
    const auto list = internal::readPropertyList(bytes, error);
    report.note(entry.path().filename(),
                list.has_value() == error.empty() ? "" : "neither read nor refused");
  }
  report.close("hostile property lists");
}

}  // namespace brindle::conformance
