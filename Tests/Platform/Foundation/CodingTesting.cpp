#include "Tests/Platform/Foundation/CodingTesting.h"

#include <Brindle/Platform/Weak.h>

namespace brindle {
namespace {

struct Counted {
  Counted() { ++Note::living; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --Note::living; }
};

struct Fields {
  Field<NSString> title;
  Field<id> next;
  Field<id> related;
  Counted counted;
};

Fields& fields(const Note& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"title">([](const Note& self) -> NSString { return fields(self).title; }),
    method<"next">([](const Note& self) -> id { return fields(self).next; }),
    method<"setNext:">([](const Note& self, const id& next) { fields(self).next = next; }),
    method<"related">([](const Note& self) -> id { return fields(self).related; }),
    method<"setRelated:">(
        [](const Note& self, const id& related) { fields(self).related = related; }),
    method<"encodeWithCoder:">([](const Note& self, const NSCoder& coder) {
      coder->encodeObject(self->title(), "title"_ns);
      coder->encodeObject(self->next(), "next"_ns);
      coder->encodeConditionalObject(self->related(), "related"_ns);
    }),
    method<"initWithCoder:">([](const Note& self, const NSCoder& coder) -> id {
      fields(self).title = cast<NSString>(coder->decodeObjectForKey("title"_ns));
      fields(self).next = coder->decodeObjectForKey("next"_ns);
      fields(self).related = coder->decodeObjectForKey("related"_ns);
      return self;
    }),
};
constexpr ProtocolRecord* kProtocols[] = {&kNSCoding};
constexpr ClassDefinition kDefinition{.name = "Note",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

[[gnu::constructor]] void registerNote() { registerClass(Note::classPair); }

}  // namespace

constinit ClassPair<Note> Note::classPair{kDefinition};
int Note::living = 0;

Note Note::with(const NSString& title) {
  Note note = alloc()->init();
  fields(note).title = title;
  return note;
}

}  // namespace brindle
