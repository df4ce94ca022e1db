#include <unordered_set>
#include <utility>

#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/KeyPath.h"
#include "Platform/Foundation/Internal/KeyValueOperators.h"
#include "Platform/Foundation/Internal/SetStorage.h"

namespace brindle::detail {
namespace {

enum class Operation { kCount, kSum, kAverage, kMinimum, kMaximum, kUnion, kUnionOfCollections };

struct Operator {
  const char* name;
  Operation operation;
  bool isDistinct = false;
  bool forArraysOnly = false;
};
constexpr Operator kOperators[] = {
    {"@count", Operation::kCount},
    {"@sum", Operation::kSum},
    {"@avg", Operation::kAverage},
    {"@min", Operation::kMinimum},
    {"@max", Operation::kMaximum},
    {"@unionOfObjects", Operation::kUnion, false, true},
    {"@distinctUnionOfObjects", Operation::kUnion, true},
    {"@unionOfArrays", Operation::kUnionOfCollections, false, true},
    {"@distinctUnionOfArrays", Operation::kUnionOfCollections, true},
    {"@unionOfSets", Operation::kUnionOfCollections, false, true},
    {"@distinctUnionOfSets", Operation::kUnionOfCollections, true},
};

const Operator* operatorNamed(const NSString& name, bool isArray) {
  const std::string text(name);
  for (const Operator& candidate : kOperators) {
    if (text == candidate.name && (isArray || !candidate.forArraysOnly)) return &candidate;
  }
  return nullptr;
}

/// A sum that stays exact as long as whole numbers are added.
class Sum {
 public:
  void add(const id& value) {
    if (!value) return;
    const auto number = dynCast<NSNumber>(value);
    const char type = number ? number->objCType()[0] : 'd';
    if (type == 'f' || type == 'd') {
      real_ += send<"doubleValue", double>(value);
      isReal_ = true;
    } else if (type == 'Q') {
      whole_ += number->unsignedLongLongValue();
    } else {
      whole_ += number->longLongValue();
    }
  }

  [[nodiscard]] double real() const { return static_cast<double>(whole_) + real_; }
  [[nodiscard]] NSNumber number() const {
    if (isReal_) return real();
    if (whole_ >= INT64_MIN && whole_ <= INT64_MAX) {
      return NSNumber::numberWithLongLong(static_cast<long long>(whole_));
    }
    if (whole_ > 0 && whole_ <= static_cast<Wide>(UINT64_MAX)) {
      return NSNumber::numberWithUnsignedLongLong(static_cast<unsigned long long>(whole_));
    }
    return real();
  }

 private:
  __extension__ using Wide = __int128;
  Wide whole_ = 0;
  double real_ = 0;
  bool isReal_ = false;
};

id extreme(const std::vector<id>& values, NSComparisonResult wanted) {
  id best;
  for (const id& value : values) {
    if (!value) continue;
    if (!best || send<"compare:", NSComparisonResult>(value, best) == wanted) best = value;
  }
  return best;
}

std::vector<id> distinct(const std::vector<id>& objects) {
  std::unordered_set<id, NSObjectHash, NSObjectEqual> seen;
  std::vector<id> result;
  for (const id& object : objects) {
    if (seen.insert(object).second) result.push_back(object);
  }
  return result;
}

class Application {
 public:
  Application(const id& collection, const std::vector<id>& members, SEL selector,
              const Operator& op, const NSString& path)
      : collection_(collection), members_(members), selector_(selector), op_(op), path_(path) {}

  [[nodiscard]] OperationResult result() const {
    switch (op_.operation) {
      case Operation::kCount: {
        const id count = NSNumber::numberWithUnsignedInteger(members_.size());
        return {path_ ? valueForKeyPath(count, path_) : count, {}};
      }
      case Operation::kSum:
        return {sum().number(), {}};
      case Operation::kAverage:
        return {average(), {}};
      case Operation::kMinimum:
        return {extreme(values(), NSOrderedAscending), {}};
      case Operation::kMaximum:
        return {extreme(values(), NSOrderedDescending), {}};
      case Operation::kUnion:
        return {nullptr, united(values())};
      default:
        return {nullptr, united(valuesOfCollections())};
    }
  }

 private:
  [[noreturn]] void refuse(const std::string& what) const {
    raiseIn("NSInvalidArgumentException", collection_, selector_, op_.name + (" " + what));
  }

  [[nodiscard]] std::vector<id> values() const {
    if (!path_) refuse("needs a key path");
    std::vector<id> result;
    for (const id& member : members_) result.push_back(valueForKeyPath(member, path_));
    return result;
  }

  // Of the members, which are collections themselves, the values of their members.
  [[nodiscard]] std::vector<id> valuesOfCollections() const {
    if (!path_) refuse("needs a key path");
    std::vector<id> result;
    for (const id& member : members_) {
      std::vector<id> objects;
      if (isa<NSArray>(member)) {
        objects = copyItems(uncheckedCast<NSArray>(member));
      } else if (isa<NSSet>(member)) {
        objects = copyMembers(uncheckedCast<NSSet>(member));
      } else {
        refuse("of a member that is no collection");
      }
      for (const id& object : objects) result.push_back(valueForKeyPath(object, path_));
    }
    return result;
  }

  [[nodiscard]] Sum sum() const {
    Sum sum;
    for (const id& value : values()) sum.add(value);
    return sum;
  }
  [[nodiscard]] NSNumber average() const {
    const double total = sum().real();
    return members_.empty() ? 0.0 : total / static_cast<double>(members_.size());
  }

  [[nodiscard]] std::vector<id> united(std::vector<id> objects) const {
    for (const id& object : objects) {
      if (!object) refuse("of a value that is nil");
    }
    return op_.isDistinct ? distinct(objects) : std::move(objects);
  }

  const id& collection_;
  const std::vector<id>& members_;
  SEL selector_;
  const Operator& op_;
  const NSString& path_;
};

}  // namespace

std::optional<OperationResult> operationResult(const id& collection, const std::vector<id>& members,
                                               SEL selector, const NSString& path) {
  if (!path->hasPrefix("@"_ns)) return {};
  const KeyPath keys = splitKeyPath(path);
  const Operator* op = operatorNamed(keys.first, isa<NSArray>(collection));
  if (op == nullptr) return {};
  const KeyValueNesting nesting(collection, selector);
  return Application(collection, members, selector, *op, keys.rest).result();
}

}  // namespace brindle::detail
