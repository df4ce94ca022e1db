// Random programs of everything that changes methods, against a model that is too simple to be
// wrong: a table of what each class itself has for each selector.
#include <array>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDSwizzle.h>
#include <Brindle/Platform/NSException.h>
#include <gtest/gtest.h>

#include "Tests/Source/MethodsTesting.h"

namespace brindle {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__)
constexpr int kPrograms = 100;  // sanitizers take their time
#else
constexpr int kPrograms = 2000;
#endif
constexpr int kSteps = 25;
constexpr int kCodes = 8;
constexpr std::size_t kClasses = 3;

int combined(int before, int number) { return (before * 31 + number) % 1000003; }

// --- What runs -----------------------------------------------------------------------------------

std::array<IMP, kCodes> slots;

template <int N>
TypedImplementation storing() {
  return implementation([](const NSObject& self, Cmd cmd) {
    if (slots[N] == nullptr) return N;
    return combined(callImplementation<int>(slots[N], self, cmd.selector), N);
  });
}

/// Calls `mixin_` and its selector where there is such a method.
template <int N>
TypedImplementation mixing() {
  return implementation([](const NSObject& self, Cmd cmd) {
    const SEL former =
        sel_registerName((std::string("mixin_") + sel_getName(cmd.selector)).c_str());
    return self->respondsToSelector(former) ? combined(ask(self, former), N) : N;
  });
}

struct CodesOfNumber {
  TypedImplementation plain, storing, mixing;
};

template <int... N>
std::array<CodesOfNumber, kCodes> makeCodes(std::integer_sequence<int, N...>) {
  return {CodesOfNumber{answering<N>(), storing<N>(), mixing<N>()}...};
}
const std::array<CodesOfNumber, kCodes>& codes() {
  static const auto made = makeCodes(std::make_integer_sequence<int, kCodes>());
  return made;
}

// --- The model -----------------------------------------------------------------------------------

struct Code;
using CodePointer = std::shared_ptr<Code>;

struct Code {
  enum Kind { kPlain, kStoring, kMixing, kScoped } kind;
  int number;
  CodePointer previous = nullptr;
  bool ended = false;
};

struct Entry {
  CodePointer code;  // null: an empty entry
  bool typed;
};

class Model {
 public:
  Entry* own(std::size_t cls, const std::string& name) {
    const auto found = tables_[cls].find(name);
    return found != tables_[cls].end() ? &found->second : nullptr;
  }
  Entry* find(std::size_t cls, const std::string& name) {
    for (std::size_t c = cls + 1; c-- > 0;) {
      if (Entry* entry = own(c, name)) return entry;
    }
    return nullptr;
  }
  void add(std::size_t cls, const std::string& name, const Entry& entry) {
    tables_[cls].emplace(name, entry);
  }
  Entry* pulledUp(std::size_t cls, const std::string& name) {
    if (Entry* found = find(cls, name)) add(cls, name, *found);
    return own(cls, name);
  }

  bool exchange(std::size_t cls, const std::string& a, const std::string& b) {
    const bool isThere = find(cls, b) != nullptr;
    if (find(cls, a) == nullptr) {
      const bool typed = isThere && find(cls, b)->typed;
      add(cls, a, {std::make_shared<Code>(Code{Code::kPlain, 0}), typed});
    }
    if (!isThere) return false;
    Entry* first = pulledUp(cls, a);
    Entry* second = pulledUp(cls, b);
    std::swap(first->code, second->code);
    return true;
  }

  /// The answer; nothing when it raises.
  std::optional<int> answer(std::size_t cls, const std::string& name) {
    const Entry* entry = find(cls, name);
    return entry != nullptr ? run(entry->code, cls, name) : std::nullopt;
  }
  bool responds(std::size_t cls, const std::string& name) {
    const Entry* entry = find(cls, name);
    return entry != nullptr && entry->code;
  }

 private:
  std::optional<int> run(const CodePointer& code, std::size_t cls, const std::string& name) {
    if (!code) return std::nullopt;
    const int number = code->number;
    if (code->kind == Code::kPlain) return number;
    if (code->kind == Code::kScoped && code->ended) return run(code->previous, cls, name);
    if (code->kind == Code::kScoped && !code->previous) return combined(0, number);
    const std::string former = "mixin_" + name;
    const bool mixing = code->kind == Code::kMixing;
    if (mixing ? !responds(cls, former) : !code->previous) return number;
    const std::optional<int> before = mixing ? answer(cls, former) : run(code->previous, cls, name);
    if (!before) return std::nullopt;
    return combined(*before, number);
  }

  std::array<std::map<std::string, Entry>, kClasses> tables_;
};

// --- One program ---------------------------------------------------------------------------------

class Program {
 public:
  explicit Program(unsigned seed) : random_(seed) {
    slots = {};
    const std::string own = unusedName("random");
    for (const char* letter : {"a", "b", "c"}) {
      names_.push_back(own + letter);
      names_.push_back("bddyn_" + own + letter);
      names_.push_back("mixin_" + own + letter);
    }
    Class super = NSObject::class_();
    for (std::size_t c = 0; c < kClasses; ++c) {
      super = classes_.emplace_back(makeClass(super, "Random"));
      objects_.push_back(newObject(super));
    }
  }

  /// One change to both. A word for it.
  std::string step() {
    cls_ = below(kClasses);
    name_ = names_[below(names_.size())];
    number_ = static_cast<int>(1 + below(kCodes - 1));
    switch (below(9)) {
      case 0:
        return add();
      case 1:
        return replace();
      case 2:
        return exchange();
      case 3:
        return store();
      case 4:
        return cache();
      case 5:
        return mixIn();
      case 6:
        return pullUp();
      case 7:
        return begin();
      default:
        return end();
    }
  }

  /// What nobody answers is asked for at the end only, since raising takes its time.
  void compare(const std::string& after, bool isLast) {
    for (std::size_t c = 0; c < kClasses; ++c) {
      for (const std::string& name : names_) {
        const SEL selector = sel_registerName(name.c_str());
        ASSERT_EQ(objects_[c]->respondsToSelector(selector), model_.responds(c, name))
            << after << name << " of class " << c;
        if (isLast || model_.responds(c, name)) {
          ASSERT_EQ(found(c, selector), model_.answer(c, name))
              << after << name << " of class " << c;
        }
        ASSERT_EQ(class_firstLevelMethod(classes_[c], selector) != nullptr,
                  model_.own(c, name) != nullptr)
            << after << name << " of class " << c;
      }
    }
  }

 private:
  struct Token {
    SwizzleToken token;
    CodePointer code;
    std::size_t cls;
    std::string name;
  };

  std::size_t below(std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_);
  }
  SEL selectorOf(const std::string& name) { return sel_registerName(name.c_str()); }
  Class cls() const { return classes_[cls_]; }
  const CodesOfNumber& code() const { return codes()[static_cast<std::size_t>(number_)]; }
  CodePointer modelled(Code::Kind kind, CodePointer previous = nullptr) const {
    return std::make_shared<Code>(Code{kind, number_, std::move(previous)});
  }
  std::string word(const char* verb) const {
    return std::string(verb) + " " + name_ + " of class " + std::to_string(cls_) + ", then ";
  }

  std::optional<int> found(std::size_t c, SEL selector) {
    try {
      return ask(objects_[c], selector);
    } catch (const RaisedException&) {
      return std::nullopt;
    }
  }

  std::string add() {
    class_addMethod(cls(), selectorOf(name_), code().plain.implementation, code().plain.types);
    model_.add(cls_, name_, {modelled(Code::kPlain), true});
    return word("add");
  }

  std::string replace() {
    const BOOL done = class_replaceMethodImp(cls(), selectorOf(name_), code().plain.implementation);
    Entry* entry = model_.pulledUp(cls_, name_);
    EXPECT_EQ(done != NO, entry != nullptr);
    if (entry != nullptr) entry->code = modelled(Code::kPlain);
    return word("replace");
  }

  std::string exchange() {
    const std::string other = names_[below(names_.size())];
    EXPECT_EQ(swizzle(cls(), selectorOf(name_), selectorOf(other)),
              model_.exchange(cls_, name_, other));
    return word("exchange") + "with " + other + " ";
  }

  /// A number's slot serves once.
  std::string store() {
    if (storing_ == kCodes) return "";
    number_ = storing_++;
    const bool done = swizzle(cls(), selectorOf(name_), code().storing.implementation,
                              &slots[static_cast<std::size_t>(number_)]);
    Entry* entry = model_.pulledUp(cls_, name_);
    EXPECT_EQ(done, entry != nullptr);
    if (entry != nullptr) entry->code = modelled(Code::kStoring, entry->code);
    return word("store");
  }

  std::string cache() {
    class_cacheMethodImp(cls(), selectorOf(name_));
    const Entry* entry = model_.find(cls_, name_);
    const Entry kept = entry != nullptr ? *entry : Entry{nullptr, false};
    model_.add(cls_, "bddyn_" + name_, kept);
    return word("cache");
  }

  std::string mixIn() {
    const Class mixIn = makeClass(NSObject::class_(), "RandomMixIn");
    std::vector<std::string> mixed = {name_, names_[below(names_.size())]};
    if (mixed[0] == mixed[1]) mixed.pop_back();
    for (const std::string& name : mixed) {
      class_addMethod(mixIn, selectorOf(name), code().mixing.implementation, code().mixing.types);
    }
    bool raises = false;
    for (auto name = mixed.rbegin(); name != mixed.rend() && !raises; ++name) {
      if (name->starts_with("mixin_")) continue;
      const Entry entry{modelled(Code::kMixing), true};
      if (const Entry* former = model_.find(cls_, *name)) {
        raises = !former->typed || model_.find(cls_, "mixin_" + *name) != nullptr;
        if (raises) break;
        model_.add(cls_, "mixin_" + *name, entry);
        model_.exchange(cls_, *name, "mixin_" + *name);
      } else {
        model_.add(cls_, *name, entry);
      }
    }
    bool raised = false;
    try {
      class_mixIn(cls(), mixIn);
    } catch (const RaisedException&) {
      raised = true;
    }
    EXPECT_EQ(raised, raises);
    return word("mix in");
  }

  std::string pullUp() {
    class_pullUpInstanceMethod(cls(), class_getInstanceMethod(cls(), selectorOf(name_)));
    model_.pulledUp(cls_, name_);
    return word("pull up");
  }

  std::string begin() {
    auto& slot = tokenSlots_.emplace_back();
    SwizzleToken token = scopedSwizzle(
        cls(), selectorOf(name_),
        [&slot, number = number_](const NSObject& self, Cmd cmd) {
          return combined(slot(self, cmd), number);
        },
        slot);
    Entry* entry = model_.pulledUp(cls_, name_);
    EXPECT_EQ(static_cast<bool>(token), entry != nullptr);
    if (entry == nullptr) return word("begin");
    entry->code = modelled(Code::kScoped, entry->code);
    tokens_.push_back({std::move(token), entry->code, cls_, name_});
    return word("begin");
  }

  std::string end() {
    if (tokens_.empty()) return "";
    const std::size_t index = below(tokens_.size());
    Token ending = std::move(tokens_[index]);
    tokens_.erase(tokens_.begin() + static_cast<std::ptrdiff_t>(index));
    ending.token.end();
    ending.code->ended = true;
    CodePointer& code = model_.own(ending.cls, ending.name)->code;
    while (code && code->kind == Code::kScoped && code->ended) code = code->previous;
    cls_ = ending.cls;
    name_ = ending.name;
    return word("end");
  }

  std::mt19937 random_;
  Model model_;
  std::vector<Class> classes_;
  std::vector<id> objects_;
  std::vector<std::string> names_;
  std::deque<ImplementationSlot<int(NSObject)>> tokenSlots_;
  std::vector<Token> tokens_;
  int storing_ = 0;

  // Of the step.
  std::size_t cls_ = 0;
  std::string name_;
  int number_ = 0;
};

TEST(SwizzleModelTest, RandomProgramsDoWhatTheModelDoes) {
  for (unsigned seed = 0; seed < kPrograms; ++seed) {
    Program program(seed);
    std::string done = "program " + std::to_string(seed) + ": ";
    for (int step = 0; step < kSteps; ++step) {
      done += program.step();
      ASSERT_NO_FATAL_FAILURE(program.compare(done, step == kSteps - 1));
      if (testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace brindle
