// Key paths from outside: whatever the bytes are as a key path, a small graph of objects is read,
// written and validated by it, and its relationships are changed, or an exception is raised. The
// first byte says what is done.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSValue.h>

namespace {

using namespace brindle;

class Node : public Interface<Node, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Node> classPair;
};

struct Fields {
  Field<id> next;
  Field<NSArray> _list;
  Field<NSSet> group;
  Field<NSString> isName = "node"_ns;
  int number = 3;
  bool truth = true;
  NSRange range{1, 2};
};
Fields& fields(const Node& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"next">([](const Node& self) -> id { return fields(self).next; }),
    method<"setNext:">([](const Node& self, const id& next) { fields(self).next = next; }),
    method<"countOfItems">([](const Node&) -> NSUInteger { return 3; }),
    method<"objectInItemsAtIndex:">([](const Node& self, NSUInteger) -> id { return self; }),
    method<"validateNumber:error:">(
        [](const Node&, id* value, NSError*) { return static_cast<bool>(*value); }),
};
constexpr IvarDefinition kVariables[] = {
    ivar<NSArray>("_list", offsetof(Fields, _list)),
    ivar<NSSet>("group", offsetof(Fields, group)),
    ivar<NSString>("isName", offsetof(Fields, isName)),
    ivar<int>("number", offsetof(Fields, number)),
    ivar<bool>("truth", offsetof(Fields, truth)),
    ivar<NSRange>("range", offsetof(Fields, range)),
};
constexpr ClassDefinition kDefinition{.name = "FuzzedNode",
                                      .methods = kMethods,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Node> Node::classPair{kDefinition};

namespace {

void follow(unsigned choice, const id& root, const NSString& path) {
  const id values[] = {nullptr, NSNumber(7), "text"_ns, NSValue::valueWithRange({5, 6})};
  id value = values[choice >> 4U & 3U];
  NSError error = nullptr;
  switch (choice & 7U) {
    case 0:
    case 1:
      static_cast<void>(valueForKeyPath(root, path));
      break;
    case 2:
      static_cast<void>(valueForKey(root, path));
      break;
    case 3:
      setValueForKeyPath(root, value, path);
      break;
    case 4:
      setValue(root, value, path);
      break;
    case 5:
      validateValueForKeyPath(root, &value, path, &error);
      break;
    case 6: {
      const auto array = mutableArrayValueForKeyPath(root, path);
      if (array->count() < 10) array->addObject("a"_ns);
      if (array->count() > 0) array->removeObjectAtIndex(0);
      break;
    }
    default: {
      const auto set = mutableSetValueForKeyPath(root, path);
      set->addObject("a"_ns);
      set->removeObject("a"_ns);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const NSString path(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
  const Node last = Node::new_();
  const Node root = Node::new_();
  fields(root).next = last;
  fields(root)._list = NSArray{NSNumber(1), NSNumber(2.5), NSArray{"a"_ns, "bb"_ns}, last};
  fields(last)._list = NSArray{NSArray{NSNumber(1)}, NSArray{"c"_ns, last}};
  fields(root).group = NSSet{"a"_ns, NSNumber(4), NSSet{"b"_ns}};
  const auto dictionary = NSMutableDictionary::dictionary();
  setValue(dictionary, root, "root"_ns);
  setValue(dictionary, NSArray{root, last}, "all"_ns);
  try {
    if (path) follow(data[0], (data[0] & 8U) != 0 ? id(dictionary) : id(root), path);
  } catch (const RaisedException&) {
    // What is no path for these objects is refused.
  }
  // What was set may have tied a ring.
  fields(root).next = nullptr;
  fields(last).next = nullptr;
  fields(root)._list = nullptr;
  fields(last)._list = nullptr;
  dictionary->removeAllObjects();
  return 0;
}
