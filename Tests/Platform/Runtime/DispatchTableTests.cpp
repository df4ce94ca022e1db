// The tables that sends are looked up in: sharing, unsharing, growth, and a naive model beside
// them.
#include <Brindle/Platform/Method.h>

#include <atomic>
#include <map>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

template <int N>
TypedImplementation answering() {
  return implementation([](const NSObject&) { return N; });
}

const std::vector<TypedImplementation>& answers() {
  static const std::vector<TypedImplementation> all{answering<0>(), answering<1>(), answering<2>(),
                                                    answering<3>(), answering<4>(), answering<5>(),
                                                    answering<6>(), answering<7>()};
  return all;
}

void add(Class cls, SEL s, std::size_t answer) {
  ASSERT_EQ(class_addMethod(cls, s, answers()[answer].implementation, answers()[answer].types),
            YES);
}

int ask(const id& object, SEL s) { return sendSelector<int>(object, s); }

TEST(DispatchTableTest, Tour) {
  const SEL s = uniqueSelector("tour");
  const Class super = makeClass(NSObject::class_());
  const Class sub = makeClass(super);
  const id object = send<"new", id>(sub);
  EXPECT_EQ(class_respondsToSelector(sub, s), NO);
  add(super, s, 1);
  EXPECT_EQ(ask(object, s), 1) << "inherited, though the class was in use already";
  add(sub, s, 2);
  EXPECT_EQ(ask(object, s), 2);
  EXPECT_EQ(ask(send<"new", id>(super), s), 1);
}

TEST(DispatchTableTest, AddingToTheRootReachesThousandsOfSubclasses) {
  std::vector<Class> classes{Class(NSObject::class_())};
  for (std::size_t i = 1; i <= 3500; ++i) {
    // Wide and deep, some with pages of their own, some never used.
    classes.push_back(makeClass(classes[i % 3 == 0 ? i - 1 : i / 4], "Below"));
    if (i % 50 == 0) add(classes.back(), uniqueSelector("own"), 0);
  }
  std::vector<id> objects;
  for (std::size_t i = 1; i < classes.size(); i += 2) {
    objects.push_back(class_createInstance(classes[i], 0));
  }
  for (int round = 0; round < 3; ++round) {
    const SEL s = uniqueSelector("late");
    for (const id& object : objects) ASSERT_FALSE((send<"respondsToSelector:", bool>(object, s)));
    add(NSObject::class_(), s, 3);
    for (const id& object : objects) ASSERT_EQ(ask(object, s), 3);
    for (std::size_t i = 2; i < classes.size(); i += 2) {
      ASSERT_EQ(ask(class_createInstance(classes[i], 0), s), 3);
    }
  }
}

TEST(DispatchTableTest, UnsharingAPageTakesAllItsMethodsAlong) {
  std::vector<SEL> selectors;
  const Class super = makeClass(NSObject::class_());
  for (int i = 0; i < 100; ++i) {
    selectors.push_back(uniqueSelector("page"));
    add(super, selectors.back(), 1);
  }
  const Class sub = makeClass(super);
  const Class leaf = makeClass(sub);
  const id object = send<"new", id>(leaf);
  add(sub, selectors[50], 2);
  for (std::size_t i = 0; i < 100; ++i) EXPECT_EQ(ask(object, selectors[i]), i == 50 ? 2 : 1);
  add(leaf, selectors[51], 3);
  EXPECT_EQ(ask(object, selectors[50]), 2);
  EXPECT_EQ(ask(object, selectors[51]), 3);
  // A change above is still seen through pages that differ.
  Method changed = class_getInstanceMethod(super, selectors[52]);
  method_setImplementation(changed, answers()[4].implementation);
  EXPECT_EQ(ask(object, selectors[52]), 4);
  const SEL late = uniqueSelector("page");
  add(super, late, 5);
  EXPECT_EQ(ask(object, late), 5);
}

TEST(DispatchTableTest, SelectorsBeyondTheFirstTablesSize) {
  const Class super = makeClass(NSObject::class_());
  const Class sub = makeClass(super);
  const Class unused = makeClass(super);
  const id object = send<"new", id>(sub);
  const TypedImplementation echo =
      implementation([](const NSObject&, Cmd cmd) -> SEL { return cmd.selector; });
  std::vector<SEL> selectors;
  for (int i = 0; i < 5000; ++i) {
    selectors.push_back(uniqueSelector("grown"));
    ASSERT_EQ(class_addMethod(super, selectors.back(), echo.implementation, echo.types), YES);
    ASSERT_EQ(sendSelector<SEL>(object, selectors.back()), selectors.back());
  }
  const id late = send<"new", id>(unused);
  for (const SEL s : selectors) {
    ASSERT_EQ(sendSelector<SEL>(object, s), s);
    ASSERT_EQ(sendSelector<SEL>(late, s), s);
  }
  EXPECT_EQ(class_copyMethodList(super).size(), 5000u);
  EXPECT_TRUE((send<"isKindOfClass:", bool>(object, super)));
}

TEST(DispatchTableTest, ANullImplementationCountsAsMissing) {
  const SEL s = uniqueSelector("null");
  const Class super = makeClass(NSObject::class_());
  add(super, s, 1);
  const Class sub = makeClass(super);
  const id object = send<"new", id>(sub);
  EXPECT_EQ(class_addMethod(sub, s, nullptr, "i16@0:8"), YES);
  EXPECT_EQ(class_respondsToSelector(sub, s), NO);
  EXPECT_NE(raised([&] { ask(object, s); }).find("unrecognized selector"), std::string::npos)
      << "it hides the inherited one";
  EXPECT_EQ(class_addMethod(sub, s, answers()[2].implementation, "i16@0:8"), NO);
  method_setImplementation(class_getInstanceMethod(sub, s), answers()[2].implementation);
  EXPECT_EQ(ask(object, s), 2);
  method_setImplementation(class_getInstanceMethod(sub, s), nullptr);
  EXPECT_NE(raised([&] { ask(object, s); }), "");
}

/// What classes answer, looked up the slow way.
struct Model {
  std::vector<int> parents;
  std::vector<std::map<std::size_t, int>> own;  // class -> selector -> answer

  [[nodiscard]] int answer(std::size_t cls, std::size_t s) const {
    for (int c = static_cast<int>(cls); c >= 0; c = parents[static_cast<std::size_t>(c)]) {
      const auto& methods = own[static_cast<std::size_t>(c)];
      if (auto found = methods.find(s); found != methods.end()) return found->second;
    }
    return -1;
  }
};

TEST(DispatchTableTest, AgreesWithANaiveModel) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t n) {
      return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    Model model{{-1}, {{}}};
    std::vector<Class> classes{makeClass(NSObject::class_())};
    std::vector<id> objects{send<"new", id>(classes[0])};
    std::vector<SEL> selectors;
    for (int i = 0; i < 60; ++i) selectors.push_back(uniqueSelector("model"));
    for (int step = 0; step < 1500; ++step) {
      const std::size_t cls = below(classes.size());
      const std::size_t s = below(selectors.size());
      const std::size_t a = below(answers().size());
      const auto found = model.own[cls].find(s);
      const bool has = found != model.own[cls].end();
      switch (below(5)) {
        case 0:
          if (classes.size() >= 40) break;
          classes.push_back(makeClass(classes[cls]));
          objects.push_back(class_createInstance(classes.back(), 0));
          model.parents.push_back(static_cast<int>(cls));
          model.own.emplace_back();
          break;
        case 1:
          EXPECT_EQ(class_addMethod(classes[cls], selectors[s], answers()[a].implementation,
                                    answers()[a].types),
                    has ? NO : YES);
          if (!has) model.own[cls][s] = static_cast<int>(a);
          break;
        case 2: {
          const IMP old = class_replaceMethod(classes[cls], selectors[s],
                                              answers()[a].implementation, answers()[a].types);
          ASSERT_EQ(old, has ? answers()[static_cast<std::size_t>(found->second)].implementation
                             : nullptr);
          model.own[cls][s] = static_cast<int>(a);
          break;
        }
        case 3:
          if (!has) break;
          method_setImplementation(class_getInstanceMethod(classes[cls], selectors[s]),
                                   answers()[a].implementation);
          model.own[cls][s] = static_cast<int>(a);
          break;
        default: {
          const std::size_t other = below(classes.size());
          auto there = model.own[other].find(s);
          if (!has || there == model.own[other].end()) break;
          method_exchangeImplementations(class_getInstanceMethod(classes[cls], selectors[s]),
                                         class_getInstanceMethod(classes[other], selectors[s]));
          std::swap(found->second, there->second);
        }
      }
      const std::size_t look = below(classes.size());
      const std::size_t at = below(selectors.size());
      const int expected = model.answer(look, at);
      ASSERT_EQ(class_respondsToSelector(classes[look], selectors[at]), expected >= 0 ? YES : NO);
      if (expected >= 0) {
        ASSERT_EQ(ask(objects[look], selectors[at]), expected);
      }
    }
    for (std::size_t c = 0; c < classes.size(); ++c) {
      EXPECT_EQ(class_copyMethodList(classes[c]).size(), model.own[c].size());
      for (std::size_t s = 0; s < selectors.size(); ++s) {
        const int expected = model.answer(c, s);
        if (expected >= 0) {
          ASSERT_EQ(ask(objects[c], selectors[s]), expected);
        }
      }
    }
  }
}

TEST(DispatchTableTest, ThreadsSendWhileTablesGrowAndChange) {
  const Class super = makeClass(NSObject::class_());
  const SEL steady = uniqueSelector("steady");
  const SEL swapped = uniqueSelector("swapped");
  add(super, steady, 1);
  add(super, swapped, 2);
  const Class sub = makeClass(super);
  std::atomic<bool> stop{false};
  std::atomic<int> wrong{0};
  std::atomic<int> sent{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      const id object = send<"new", id>(sub);
      do {
        if (ask(object, steady) != 1) ++wrong;
        const int answer = ask(object, swapped);
        if (answer != 2 && answer != 3) ++wrong;
        ++sent;
      } while (!stop);
    });
  }
  for (int i = 0; i < 1500; ++i) {
    add(i % 3 == 0 ? Class(NSObject::class_()) : super, uniqueSelector("racing"), 0);
    method_setImplementation(class_getInstanceMethod(super, swapped),
                             answers()[i % 2 == 0 ? 3 : 2].implementation);
    if (i % 40 == 0) makeClass(sub);
  }
  stop = true;
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_GE(sent, 4);
}

}  // namespace
}  // namespace brindle
