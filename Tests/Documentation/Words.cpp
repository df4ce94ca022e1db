// [example: category-source]
#include "Words.h"

#include <Brindle/Platform/Definition.h>

namespace todo {
namespace {

constexpr MethodDefinition kMethods[] = {
    method<"todo_wordCount">([](const NSString& self) -> NSUInteger {
      NSUInteger words = 0;
      bool inside = false;
      for (NSUInteger i = 0; i < self->length(); ++i) {
        const bool isSpace = self->characterAtIndex(i) == u' ';
        if (!isSpace && !inside) ++words;
        inside = !isSpace;
      }
      return words;
    }),
    classMethod<"todo_repeated:times:">(
        [](const ClassOf<NSString>& self, const NSString& text, NSUInteger times) -> NSString {
          NSString result = self->string();
          for (NSUInteger i = 0; i < times; ++i) {
            result = result->stringByAppendingFormat(i == 0 ? "%@"_ns : " %@"_ns, text);
          }
          return result;
        }),
};

}  // namespace

// Named in Library.cpp.
extern constinit const CategoryDefinition kWords;
constinit const CategoryDefinition kWords{
    .name = "Words", .cls = &NSString::classPair.cls, .methods = kMethods};

}  // namespace todo
// [end]
