// Random programs of setting, replacing and removing what is associated with objects and classes,
// against a model that is too simple to be wrong: a text for each object and key.
#include <array>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <Brindle/BDAssociatedValues.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSNumber.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr int kPrograms = 300;
constexpr int kSteps = 60;
constexpr std::size_t kObjects = 9;
constexpr std::size_t kClasses = 3;  // the first of the objects
constexpr std::array<char, 5> kKeys{};

class Program {
 public:
  Program(unsigned seed, const std::vector<id>& classes) : random_(seed), objects_(classes) {
    while (objects_.size() < kObjects) objects_.push_back(NSObject::new_());
  }

  /// One change to both.
  void step() {
    object_ = below(kObjects);
    key_ = below(kKeys.size());
    switch (below(8)) {
      case 0:
        return setMortal();
      case 1:
        return setInteger();
      case 2:
        return setBool();
      case 3:
        return setCopy();
      case 4:
        objc_setAssociatedObject(object(), key(), NSObject::class_(), OBJC_ASSOCIATION_ASSIGN);
        model_[{object_, key_}] = "class";
        return;
      case 5:
        objc_setAssociatedObject(object(), key(), nullptr, OBJC_ASSOCIATION_RETAIN);
        model_.erase({object_, key_});
        return;
      case 6:
        if (below(4) == 0) removeAll();
        return;
      default:
        replaceObject();
    }
  }

  void compare() {
    for (std::size_t o = 0; o < kObjects; ++o) {
      for (std::size_t k = 0; k < kKeys.size(); ++k) {
        const auto wanted = model_.find({o, k});
        const std::string text = wanted != model_.end() ? wanted->second : "";
        ASSERT_EQ(found(objects_[o], &kKeys[k]), text) << "object " << o << ", key " << k;
      }
    }
    ASSERT_EQ(Mortal::living(), mortals());
  }

  void finish() {
    for (object_ = 0; object_ < kObjects; ++object_) removeAll();
    EXPECT_EQ(Mortal::living(), 0);
    Mortal::ended();
  }

 private:
  std::size_t below(std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_);
  }
  const id& object() const { return objects_[object_]; }
  const void* key() const { return &kKeys[key_]; }

  static std::string found(const id& object, const void* key) {
    const id value = objc_getAssociatedObject(object, key);
    if (!value) return "";
    if (object_isClass(value) != NO) return "class";
    if (isa<NSString>(value)) return "copy of " + std::string(cast<NSString>(value));
    if (isa<NSNumber>(value)) {
      const NSInteger number = objc_getAssociatedInteger(object, key);
      EXPECT_EQ(objc_getAssociatedBool(object, key), number != 0);
      return "integer " + std::to_string(number);
    }
    return "mortal " + std::to_string(cast<Mortal>(value)->tag());
  }

  int mortals() const {
    int count = 0;
    for (const auto& [place, text] : model_) count += text.starts_with("mortal") ? 1 : 0;
    return count;
  }

  void setMortal() {
    const Mortal value = Mortal::new_();
    value->setTag(++tag_);
    const auto policy = below(2) == 0 ? OBJC_ASSOCIATION_RETAIN : OBJC_ASSOCIATION_RETAIN_NONATOMIC;
    objc_setAssociatedObject(object(), key(), value, policy);
    model_[{object_, key_}] = "mortal " + std::to_string(tag_);
  }
  void setInteger() {
    const auto value = static_cast<NSInteger>(below(3) * 1000000007);
    objc_setAssociatedInteger(object(), key(), value);
    model_[{object_, key_}] = "integer " + std::to_string(value);
  }
  void setBool() {
    const bool value = below(2) == 0;
    objc_setAssociatedBool(object(), key(), value);
    model_[{object_, key_}] = value ? "integer 1" : "integer 0";
  }
  void setCopy() {
    const std::string text = "the text of number " + std::to_string(++tag_);
    const auto value = cast<NSMutableString>(NSMutableString::string());
    value->appendString(NSString(text.c_str()));
    objc_setAssociatedObject(object(), key(), value, OBJC_ASSOCIATION_COPY);
    value->appendString(", changed"_ns);
    model_[{object_, key_}] = "copy of " + text;
  }
  void forgetObject() {
    for (std::size_t k = 0; k < kKeys.size(); ++k) model_.erase({object_, k});
  }
  void removeAll() {
    objc_removeAssociatedObjects(object());
    forgetObject();
  }
  /// The new object may well get the old one's memory.
  void replaceObject() {
    if (object_ < kClasses) return;
    objects_[object_] = nullptr;
    objects_[object_] = NSObject::new_();
    forgetObject();
  }

  std::mt19937 random_;
  std::map<std::pair<std::size_t, std::size_t>, std::string> model_;
  std::vector<id> objects_;
  int tag_ = 0;

  // Of the step.
  std::size_t object_ = 0;
  std::size_t key_ = 0;
};

TEST(BDAssociatedValuesModelTest, RandomProgramsDoWhatTheModelDoes) {
  std::vector<id> classes;
  for (std::size_t i = 0; i < kClasses; ++i) classes.push_back(makeClass(NSObject::class_()));
  ASSERT_EQ(Mortal::living(), 0);
  for (unsigned seed = 0; seed < kPrograms; ++seed) {
    Program program(seed, classes);
    for (int step = 0; step < kSteps; ++step) {
      program.step();
      ASSERT_NO_FATAL_FAILURE(program.compare()) << "program " << seed << ", step " << step;
    }
    program.finish();
  }
}

}  // namespace
}  // namespace brindle
