#include "Platform/Foundation/Internal/PropertyListObjects.h"

#include <string>
#include <vector>

#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSSet.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle::detail {
namespace {

using internal::PropertyInteger;
using internal::PropertyKind;
using internal::PropertyList;
using Index = PropertyList::Index;

NSNumber numberOf(const PropertyInteger& integer) {
  if (integer.fitsSigned()) return NSNumber::numberWithLongLong(integer.asSigned());
  if (integer.fitsUnsigned()) return NSNumber::numberWithUnsignedLongLong(integer.low);
  return NSNumber::numberWithDouble(integer.asReal());
}

/// Readers bound the depth, so this may call itself; each node is made once.
class Maker {
 public:
  explicit Maker(const PropertyList& list) : list_(list), made_(list.size()) {}

  id make(Index index) {
    if (!made_[index]) made_[index] = makeNew(index);
    return made_[index];
  }

 private:
  id makeNew(Index index) {
    switch (list_.kind(index)) {
      case PropertyKind::null:
        return NSNull::null();
      case PropertyKind::boolean:
        return NSNumber::numberWithBool(list_.boolean(index));
      case PropertyKind::integer:
        return numberOf(list_.integer(index));
      case PropertyKind::real:
        return NSNumber::numberWithDouble(list_.real(index));
      case PropertyKind::date:
        return NSDate::dateWithTimeIntervalSinceReferenceDate(list_.date(index));
      case PropertyKind::string:
        return makeString(list_.string(index));
      case PropertyKind::data:
        return NSData(list_.data(index));
      case PropertyKind::array:
        return makeArray(makeAll(list_.elements(index)));
      case PropertyKind::set: {
        const std::vector<id> members = makeAll(list_.elements(index));
        return NSSet::setWithObjects(members.data(), members.size());
      }
      case PropertyKind::dictionary: {
        const std::vector<id> keys = makeAll(list_.keys(index));
        const std::vector<id> values = makeAll(list_.values(index));
        return NSDictionary::dictionaryWithObjects(values.data(), keys.data(), keys.size());
      }
      case PropertyKind::uid:
        return NSDictionary::dictionaryWithObject(
            NSNumber::numberWithUnsignedLongLong(list_.uid(index)), "CF$UID"_ns);
    }
    return nullptr;
  }

  std::vector<id> makeAll(std::span<const Index> indexes) {
    std::vector<id> objects;
    objects.reserve(indexes.size());
    for (const Index index : indexes) objects.push_back(make(index));
    return objects;
  }

  const PropertyList& list_;
  std::vector<id> made_;
};

}  // namespace

id objectOfPropertyList(const PropertyList& list) {
  if (list.root() == PropertyList::kNone) return nullptr;
  return Maker(list).make(list.root());
}

id objectOfPropertyList(std::string_view bytes) {
  std::string error;
  const auto list = internal::readPropertyList(bytes, error);
  return list ? objectOfPropertyList(*list) : nullptr;
}

}  // namespace brindle::detail
