// Random graphs of people who observe each other's friends, held against a model that knows no more
// than what observing means: a registration is told when a key on its path changes.
#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

struct Path {
  NSString text;
  int friends;     // before the last key
  bool endsInAge;  // or in one more friend
};
const std::vector<Path>& paths() {
  static const auto& all = *new std::vector<Path>{{"age"_ns, 0, true},
                                                  {"friend"_ns, 0, false},
                                                  {"friend.age"_ns, 1, true},
                                                  {"friend.friend"_ns, 1, false},
                                                  {"friend.friend.age"_ns, 2, true}};
  return all;
}

constexpr int kNobody = -1;

/// What the test says of a person: the naive side.
struct Person {
  WatchedPerson real;  // nil when the test has let go of it
  int age = 0;
  int friendIndex = kNobody;
  bool alive = true;
};
struct Registered {
  int person;
  int observer;
  const Path* path;
  NSUInteger options;
};

class Graph {
 public:
  explicit Graph(unsigned seed) : random_(seed) {
    for (int i = 0; i < 6; ++i) addPerson();
    for (int i = 0; i < 4; ++i) observers_.push_back(ChangeRecorder::new_());
  }

  void step() {
    switch (pick(10)) {
      case 0:
      case 1:
      case 2:
        return setAge();
      case 3:
      case 4:
        return setFriend();
      case 5:
      case 6:
        return registerOne();
      case 7:
        return removeOne();
      case 8:
        return pick(4) == 0 ? replaceObserver() : setAge();
      default:
        return pick(3) == 0 ? replacePerson() : setFriend();
    }
  }

  void finish() {
    while (!registered_.empty()) removeOne();
    // What observers that are gone had registered ends when something changes.
    for (const Person& p : people_) {
      if (p.real) p.real->setFriend(nullptr);
      if (p.real) p.real->setAge(0);
    }
    for (const Person& p : people_) {
      if (p.real) {
        EXPECT_EQ(object_getClass(p.real), WatchedPerson::class_());
      }
    }
  }

 private:
  int pick(std::size_t count) { return static_cast<int>(random_() % count); }
  Person& at(int index) { return people_[static_cast<std::size_t>(index)]; }

  void addPerson() {
    people_.push_back({WatchedPerson::new_()});
    inHand_.push_back(static_cast<int>(people_.size()) - 1);
  }
  int somebody() { return inHand_[static_cast<std::size_t>(pick(inHand_.size()))]; }

  std::string nameOf(int index) {
    if (index == kNobody) return "null";
    return names_[index];
  }
  std::string valueOf(const Registered& r) {
    int last = r.person;
    for (int i = 0; i < r.path->friends && last != kNobody; ++i) last = at(last).friendIndex;
    if (last == kNobody) return "null";
    return r.path->endsInAge ? std::to_string(at(last).age) : nameOf(at(last).friendIndex);
  }
  bool meets(const Registered& r, int person, bool changesAge) {
    int now = r.person;
    for (int i = 0; i <= r.path->friends && now != kNobody; ++i) {
      const bool readsAge = i == r.path->friends && r.path->endsInAge;
      if (now == person && readsAge == changesAge) return true;
      now = at(now).friendIndex;
    }
    return false;
  }

  template <class Model, class Real>
  void change(int person, bool changesAge, Model model, Real real) {
    for (std::size_t i = 0; i < people_.size(); ++i) {
      if (people_[i].real)
        names_[static_cast<int>(i)] = std::string(people_[i].real->description());
    }
    std::vector<std::string> expected;
    std::vector<std::pair<const Registered*, std::string>> met;
    for (const Registered& r : registered_) {
      if (meets(r, person, changesAge)) met.emplace_back(&r, valueOf(r));
    }
    model();
    for (const auto& [r, before] : met) {
      const std::string head =
          std::to_string(r->observer) + " " + std::string(r->path->text) + " kind=1";
      const std::string old = (r->options & kOld) != 0 ? " old=" + before : "";
      if ((r->options & kPrior) != 0) expected.push_back(head + old + " prior=1");
      const std::string now = (r->options & kNew) != 0 ? " new=" + valueOf(*r) : "";
      expected.push_back(head + old + now);
    }
    // Sometimes one of them raises: then the change is made and others may not have been told.
    const bool raises = pick(20) == 0;
    const ChangeRecorder& raiser = observers_[static_cast<std::size_t>(pick(observers_.size()))];
    if (raises) {
      raiser->onChange([](const NSString&, const id&, const NSDictionary& told, void*) {
        if (!told->objectForKey(NSKeyValueChangeNotificationIsPriorKey)) {
          NSException::raise("Raised"_ns, "by an observer"_ns);
        }
      });
    }
    bool raised = false;
    try {
      real();
    } catch (const std::exception&) {
      raised = true;
    }
    raiser->onChange(nullptr);
    std::vector<std::string> told;
    for (std::size_t i = 0; i < observers_.size(); ++i) {
      std::istringstream lines(observers_[i]->lines());
      for (std::string line; std::getline(lines, line);) {
        told.push_back(std::to_string(i) + " " + line);
      }
    }
    std::sort(expected.begin(), expected.end());
    std::sort(told.begin(), told.end());
    if (raised) {
      EXPECT_TRUE(raises);
      EXPECT_TRUE(std::includes(expected.begin(), expected.end(), told.begin(), told.end()));
    } else {
      EXPECT_EQ(told, expected);
    }
    bury();
  }

  void setAge() {
    const int person = somebody();
    const int age = pick(1000);
    change(
        person, true, [&] { at(person).age = age; }, [&] { at(person).real->setAge(age); });
    EXPECT_EQ(at(person).real->age(), age);
  }
  void setFriend() {
    const int person = somebody();
    const int other = pick(5) == 0 ? kNobody : somebody();
    const WatchedPerson real = other == kNobody ? nullptr : at(other).real;
    change(
        person, false, [&] { at(person).friendIndex = other; },
        [&] { at(person).real->setFriend(real); });
  }
  void registerOne() {
    const Registered r{somebody(), pick(observers_.size()),
                       &paths()[static_cast<std::size_t>(pick(paths().size()))],
                       static_cast<NSUInteger>(pick(4)) | (pick(4) == 0 ? kPrior : 0)};
    addObserver(at(r.person).real, observers_[static_cast<std::size_t>(r.observer)], r.path->text,
                r.options);
    registered_.push_back(r);
  }
  void removeOne() {
    if (registered_.empty()) return;
    // Of several alike, the latest goes.
    const Registered r = registered_[static_cast<std::size_t>(pick(registered_.size()))];
    for (std::size_t i = registered_.size(); i-- > 0;) {
      const Registered& other = registered_[i];
      if (other.person != r.person || other.observer != r.observer || other.path != r.path)
        continue;
      if (const WatchedPerson real = at(r.person).real) {
        removeObserver(real, observers_[static_cast<std::size_t>(r.observer)], r.path->text);
      }
      // A person that only friends hold cannot be reached from here, and keeps its observers.
      if (at(r.person).real || finishing()) registered_.erase(registered_.begin() + signedOf(i));
      return;
    }
  }
  bool finishing() {
    return std::none_of(registered_.begin(), registered_.end(),
                        [this](const Registered& r) { return at(r.person).real != nullptr; });
  }
  static std::ptrdiff_t signedOf(std::size_t i) { return static_cast<std::ptrdiff_t>(i); }

  void replaceObserver() {
    const int gone = pick(observers_.size());
    observers_[static_cast<std::size_t>(gone)] = ChangeRecorder::new_();
    std::erase_if(registered_, [gone](const Registered& r) { return r.observer == gone; });
  }
  void replacePerson() {
    const auto place = inHand_.begin() + pick(inHand_.size());
    // Friends of the dead would live for ever in a circle.
    change(
        *place, false, [&] { at(*place).friendIndex = kNobody; },
        [&] { at(*place).real->setFriend(nullptr); });
    names_[*place] = std::string(at(*place).real->description());
    at(*place).real = nullptr;
    inHand_.erase(place);
    bury();
    addPerson();
  }

  /// The people whom nobody holds any more are dead, and with them what was registered.
  void bury() {
    for (bool again = true; again;) {
      again = false;
      for (std::size_t i = 0; i < people_.size(); ++i) {
        Person& p = people_[i];
        if (!p.alive || p.real) continue;
        const bool held = std::any_of(people_.begin(), people_.end(), [i](const Person& other) {
          return other.alive && other.friendIndex == static_cast<int>(i);
        });
        if (held) continue;
        p.alive = false;
        p.friendIndex = kNobody;
        again = true;
        std::erase_if(registered_,
                      [i](const Registered& r) { return r.person == static_cast<int>(i); });
      }
    }
  }

  std::mt19937 random_;
  std::vector<Person> people_;
  std::vector<int> inHand_;
  std::map<int, std::string> names_;
  std::vector<ChangeRecorder> observers_;
  std::vector<Registered> registered_;
};

TEST(ObservingModel, AgreesWithRandomPrograms) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE(seed);
    Graph graph(seed);
    for (int step = 0; step < 250 && !testing::Test::HasFailure(); ++step) graph.step();
    graph.finish();
    if (testing::Test::HasFailure()) return;
  }
}

/// Observers that do anything while they are told.
TEST(ObservingModel, HoldsWhateverObserversDo) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::mt19937 random(seed);
    std::array<WatchedPerson, 4> people;
    std::array<ChangeRecorder, 4> observers;
    std::vector<Weak<WatchedPerson>> all;  // so that no circle of friends stays behind
    for (WatchedPerson& person : people) all.emplace_back(person = WatchedPerson::new_());
    int depth = 0;
    long told = 0;
    std::function<void()> act;
    const auto renew = [&](ChangeRecorder& observer) {
      const ChangeRecorder made = ChangeRecorder::new_();
      made->onChange([&](const NSString&, const id& object, const NSDictionary&, void*) {
        ++told;
        EXPECT_TRUE(isa<WatchedPerson>(object));
        if (depth < 3) act();
        if (random() % 50 == 0) NSException::raise("Raised"_ns, "by an observer"_ns);
      });
      observer = made;
    };
    for (ChangeRecorder& observer : observers) renew(observer);
    act = [&] {
      ++depth;
      const std::size_t p = random() % people.size();
      const std::size_t o = random() % observers.size();
      const NSString& path = paths()[random() % paths().size()].text;
      try {
        switch (random() % 8) {
          case 0:
          case 1:
            addObserver(people[p], observers[o], path, random() % 16);
            break;
          case 2:
            removeObserver(people[p], observers[o], path);
            break;
          case 3:
            renew(observers[o]);
            break;
          case 4:
            people[p]->setFriend(nullptr);
            people[p] = WatchedPerson::new_();
            all.emplace_back(people[p]);
            break;
          case 5:
            people[p]->setFriend(WatchedPerson(people[random() % people.size()]));
            break;
          default:
            people[p]->setAge(static_cast<int>(random() % 100));
        }
      } catch (const std::exception&) {
      }
      --depth;
    };
    for (int i = 0; i < 400; ++i) act();
    EXPECT_GT(told, 0);
    for (const ChangeRecorder& observer : observers) observer->onChange(nullptr);
    observers.fill(nullptr);
    for (const Weak<WatchedPerson>& weak : all) {
      const WatchedPerson person = weak.lock();
      person->setFriend(nullptr);
      person->setAge(0);
    }
    for (const WatchedPerson& person : people) {
      EXPECT_EQ(object_getClass(person), WatchedPerson::class_());
    }
  }
}

}  // namespace
}  // namespace brindle
