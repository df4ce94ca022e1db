#include <Brindle/Platform/NSIndexSet.h>

#include <algorithm>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/IndexRanges.h"

namespace brindle {
namespace {

using internal::IndexRange;
using internal::IndexRanges;

constexpr auto kNotFound = static_cast<NSUInteger>(NSNotFound);
static_assert(IndexRanges::kNone == kNotFound);

struct Fields {
  IndexRanges indexes;
};
IndexRanges& indexesOf(const NSIndexSet& self) { return fieldsOf<Fields>(self).indexes; }

IndexRange checked(const NSIndexSet& self, SEL selector, NSRange range) {
  if (range.length > kNotFound || range.location > kNotFound - range.length) {
    detail::raiseIn("NSRangeException", self, selector,
                    "range {" + std::to_string(range.location) + ", " +
                        std::to_string(range.length) + "} beyond the greatest index");
  }
  return {range.location, range.location + range.length};
}

IndexRange checked(const NSIndexSet& self, SEL selector, NSUInteger index) {
  if (index >= kNotFound) {
    detail::raiseIn("NSRangeException", self, selector,
                    "index " + std::to_string(index) + " beyond the greatest index");
  }
  return {index, index + 1};
}

// The same for questions, whose answer is no beyond the greatest index.
IndexRange within(NSRange range) {
  const NSUInteger first = std::min(range.location, kNotFound);
  return {first, first + std::min(range.length, kNotFound - first)};
}

NSUInteger getIndexes(const NSIndexSet& self, NSUInteger* target, NSUInteger room, NSRange* range) {
  IndexRange rest = range != nullptr ? within(*range) : IndexRange{0, kNotFound};
  NSUInteger filled = 0;
  while (filled < room) {
    const NSUInteger index = indexesOf(self).atOrAbove(rest.first);
    if (index >= rest.end) {
      rest.first = rest.end;
      break;
    }
    const IndexRange run = indexesOf(self).runAt(index);
    const NSUInteger end = std::min(run.end, rest.end);
    for (rest.first = index; rest.first < end && filled < room; ++rest.first) {
      target[filled++] = rest.first;
    }
  }
  if (range != nullptr) *range = {rest.first, rest.end - rest.first};
  return filled;
}

bool containsAll(const IndexRanges& self, const IndexRanges& other) {
  for (const IndexRange& range : other.ranges()) {
    if (!self.containsAll(range)) return false;
  }
  return true;
}

NSString describe(const NSIndexSet& self) {
  const auto& ranges = indexesOf(self).ranges();
  const NSString head = sendSuper<NSIndexSet, "description", NSString>(self);
  if (ranges.empty()) return head->stringByAppendingString("(no indexes)"_ns);
  std::string text = "[number of indexes: " + std::to_string(indexesOf(self).count()) + " (in " +
                     std::to_string(ranges.size()) + " ranges), indexes: (";
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    if (i > 0) text += ' ';
    text += std::to_string(ranges[i].first);
    if (ranges[i].end - ranges[i].first > 1) text += "-" + std::to_string(ranges[i].end - 1);
  }
  return head->stringByAppendingString(text + ")]");
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"indexSet">([](const ClassOf<NSIndexSet>& self) { return self->alloc()->init(); }),
    classMethod<"indexSetWithIndex:">([](const ClassOf<NSIndexSet>& self, NSUInteger index) {
      return self->alloc()->initWithIndex(index);
    }),
    classMethod<"indexSetWithIndexesInRange:">([](const ClassOf<NSIndexSet>& self, NSRange range) {
      return self->alloc()->initWithIndexesInRange(range);
    }),
    method<"initWithIndex:">([](const NSIndexSet& self, Cmd cmd, NSUInteger index) -> id {
      const IndexRange range = checked(self, cmd.selector, index);
      return self->initWithIndexesInRange({range.first, 1});
    }),
    method<"initWithIndexesInRange:">([](const NSIndexSet& self, Cmd cmd, NSRange range) -> id {
      const IndexRange indexes = checked(self, cmd.selector, range);
      const NSIndexSet made = self->init();
      if (made) indexesOf(made).add(indexes);
      return made;
    }),
    method<"initWithIndexSet:">([](const NSIndexSet& self, const NSIndexSet& other) -> id {
      const NSIndexSet made = self->init();
      if (made && other) indexesOf(made) = indexesOf(other);
      return made;
    }),

    method<"count">([](const NSIndexSet& self) -> NSUInteger { return indexesOf(self).count(); }),
    method<"firstIndex">(
        [](const NSIndexSet& self) -> NSUInteger { return indexesOf(self).atOrAbove(0); }),
    method<"lastIndex">(
        [](const NSIndexSet& self) -> NSUInteger { return indexesOf(self).below(kNotFound); }),
    method<"indexGreaterThanIndex:">([](const NSIndexSet& self, NSUInteger index) -> NSUInteger {
      return index >= kNotFound ? kNotFound : indexesOf(self).atOrAbove(index + 1);
    }),
    method<"indexLessThanIndex:">([](const NSIndexSet& self, NSUInteger index) -> NSUInteger {
      return indexesOf(self).below(std::min(index, kNotFound));
    }),
    method<"indexGreaterThanOrEqualToIndex:">(
        [](const NSIndexSet& self, NSUInteger index) -> NSUInteger {
          return indexesOf(self).atOrAbove(index);
        }),
    method<"indexLessThanOrEqualToIndex:">(
        [](const NSIndexSet& self, NSUInteger index) -> NSUInteger {
          return indexesOf(self).below(std::min(index, kNotFound - 1) + 1);
        }),
    method<"containsIndex:">(
        [](const NSIndexSet& self, NSUInteger index) { return indexesOf(self).contains(index); }),
    method<"containsIndexesInRange:">([](const NSIndexSet& self, NSRange range) {
      if (range.length > kNotFound - std::min(range.location, kNotFound)) return false;
      return indexesOf(self).containsAll(within(range));
    }),
    method<"containsIndexes:">([](const NSIndexSet& self, const NSIndexSet& other) {
      return !other || containsAll(indexesOf(self), indexesOf(other));
    }),
    method<"intersectsIndexesInRange:">([](const NSIndexSet& self, NSRange range) {
      return indexesOf(self).countWithin(within(range)) > 0;
    }),
    method<"countOfIndexesInRange:">([](const NSIndexSet& self, NSRange range) -> NSUInteger {
      return indexesOf(self).countWithin(within(range));
    }),
    method<"isEqualToIndexSet:">([](const NSIndexSet& self, const NSIndexSet& other) {
      return self == other || (other && indexesOf(self) == indexesOf(other));
    }),
    method<"isEqual:">([](const NSIndexSet& self, const id& other) {
      return self == other || self->isEqualToIndexSet(dynCast<NSIndexSet>(other));
    }),
    method<"hash">([](const NSIndexSet& self) -> NSUInteger {
      const NSUInteger first = self->firstIndex();
      return self->count() * 31 + (first == kNotFound ? 0 : first * 7 + self->lastIndex());
    }),
    method<"getIndexes:maxCount:inIndexRange:">(
        [](const NSIndexSet& self, NSUInteger* indexes, NSUInteger room, NSRange* range) {
          return getIndexes(self, indexes, room, range);
        }),
    method<"enumerateIndexesUsingBlock:">(
        [](const NSIndexSet& self, const Block<void(NSUInteger, bool*)>& block) {
          bool stop = false;
          for (const NSUInteger index : self) {
            block(index, &stop);
            if (stop) return;
          }
        }),
    method<"enumerateRangesUsingBlock:">([](const NSIndexSet& self,
                                            const Block<void(NSRange, bool*)>& block) {
      bool stop = false;
      const std::vector<IndexRange> ranges = indexesOf(self).ranges();  // the block may change it
      for (const IndexRange& range : ranges) {
        block(NSRange{range.first, range.end - range.first}, &stop);
        if (stop) return;
      }
    }),
    method<"description">([](const NSIndexSet& self) { return describe(self); }),
    method<"copyWithZone:">([](const NSIndexSet& self, NSZone*) -> id { return self; }),
    method<"mutableCopyWithZone:">([](const NSIndexSet& self, NSZone*) -> id {
      return NSMutableIndexSet::alloc()->initWithIndexSet(self);
    }),
};

constexpr MethodDefinition kMutableMethods[] = {
    method<"addIndex:">([](const NSMutableIndexSet& self, Cmd cmd, NSUInteger index) {
      indexesOf(self).add(checked(self, cmd.selector, index));
    }),
    method<"addIndexesInRange:">([](const NSMutableIndexSet& self, Cmd cmd, NSRange range) {
      indexesOf(self).add(checked(self, cmd.selector, range));
    }),
    method<"addIndexes:">([](const NSMutableIndexSet& self, const NSIndexSet& other) {
      if (!other || other == self) return;
      for (const IndexRange& range : indexesOf(other).ranges()) indexesOf(self).add(range);
    }),
    method<"removeIndex:">([](const NSMutableIndexSet& self, Cmd cmd, NSUInteger index) {
      indexesOf(self).remove(checked(self, cmd.selector, index));
    }),
    method<"removeIndexesInRange:">([](const NSMutableIndexSet& self, Cmd cmd, NSRange range) {
      indexesOf(self).remove(checked(self, cmd.selector, range));
    }),
    method<"removeIndexes:">([](const NSMutableIndexSet& self, const NSIndexSet& other) {
      if (other == self) return self->removeAllIndexes();
      if (!other) return;
      for (const IndexRange& range : indexesOf(other).ranges()) indexesOf(self).remove(range);
    }),
    method<"removeAllIndexes">([](const NSMutableIndexSet& self) { indexesOf(self).clear(); }),
    method<"shiftIndexesStartingAtIndex:by:">(
        [](const NSMutableIndexSet& self, NSUInteger index, NSInteger delta) {
          const auto by = static_cast<NSUInteger>(delta);
          if (delta >= 0) return indexesOf(self).shiftUp(index, by);
          indexesOf(self).shiftDown(index, NSUInteger{0} - by);
        }),
    method<"copyWithZone:">([](const NSMutableIndexSet& self, NSZone*) -> id {
      return NSIndexSet::alloc()->initWithIndexSet(self);
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying};

constexpr ClassDefinition kDefinition{.name = "NSIndexSet",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};
constexpr ClassDefinition kMutableDefinition{.name = "NSMutableIndexSet",
                                             .methods = kMutableMethods};

}  // namespace

constinit ClassPair<NSIndexSet> NSIndexSet::classPair{kDefinition};
constinit ClassPair<NSMutableIndexSet> NSMutableIndexSet::classPair{kMutableDefinition};

}  // namespace brindle
