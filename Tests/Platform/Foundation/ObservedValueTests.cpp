#include <Brindle/Platform/ObservedValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/Observation.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"

namespace brindle {
namespace {

TEST(ObservedValues, ComeInManyTypes) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::string told;
  const auto note = [&told](const auto& old, const auto& now) {
    std::ostringstream text;
    text << std::boolalpha << old << ">" << now << ' ';
    told += text.str();
  };
  const Observation all[] = {
      observe<bool>(ann, "tall"_ns, note),        observe<double>(ann, "height"_ns, note),
      observe<float>(ann, "weight"_ns, note),     observe<short>(ann, "small"_ns, note),
      observe<NSUInteger>(ann, "large"_ns, note), observe<std::string>(ann, "name"_ns, note),
      observe<NSString>(ann, "surname"_ns, note),
  };
  ann->setTall(true);
  ann->setHeight(1.5);
  ann->setWeight(60.5F);
  ann->setSmall(-3);
  ann->setLarge(18446744073709551615U);
  ann->setName("Ann"_ns);
  ann->setSurname("Lee"_ns);
  ann->setSurname(nullptr);
  EXPECT_EQ(told,
            "false>true 0>1.5 0>60.5 0>-3 0>18446744073709551615 >Ann (null)>Lee Lee>(null) ");
}

enum class Size : std::uint8_t { kSmall, kLarge };

TEST(ObservedValues, ConvertNumbersAsNumbersDo) {
  const WatchedPerson ann = WatchedPerson::new_();
  int cut = 0;
  std::uint8_t low = 0;
  double real = 0;
  bool truth = false;
  Size size = Size::kSmall;
  const Observation all[] = {
      observe<int>(ann, "height"_ns, [&](int, int now) { cut = now; }),
      observe<std::uint8_t>(ann, "age"_ns, [&](std::uint8_t, std::uint8_t now) { low = now; }),
      observe<double>(ann, "large"_ns, [&](double, double now) { real = now; }),
      observe<bool>(ann, "weight"_ns, [&](bool, bool now) { truth = now; }),
      observe<Size>(ann, "small"_ns, [&](Size, Size now) { size = now; }),
  };
  for (const auto& [height, expected] : {std::pair{-2.75, -2},
                                         {1e300, 2147483647},
                                         {-1e300, -2147483647 - 1},
                                         {2147483647.5, 2147483647},
                                         {std::nan(""), 0}}) {
    ann->setHeight(height);
    EXPECT_EQ(cut, expected) << height;
    EXPECT_EQ(cut, NSNumber(height)->intValue()) << height;
  }
  ann->setAge(0x1FE);
  EXPECT_EQ(low, 0xFE);
  ann->setLarge(18446744073709551615U);
  EXPECT_EQ(real, 18446744073709551615.0);
  ann->setWeight(0.5F);
  EXPECT_TRUE(truth);
  ann->setSmall(1);
  EXPECT_EQ(size, Size::kLarge);
}

TEST(ObservedValues, TellNilAsTheEmptyValue) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  std::vector<int> ages;
  std::vector<std::optional<int>> known;
  std::string names;
  id last = ann;
  const Observation all[] = {
      observe<int>(ann, "friend.age"_ns, [&](int, int now) { ages.push_back(now); }),
      observe<std::optional<int>>(
          ann, "friend.age"_ns,
          [&](const std::optional<int>&, const std::optional<int>& now) { known.push_back(now); }),
      observe<std::string>(ann, "name"_ns,
                           [&](const std::string& old, const std::string& now) {
                             names += "[" + old + "," + now + "]";
                           }),
      observe<id>(ann, "friend"_ns, [&](const id&, const id& now) { last = now; }),
  };
  bo->setAge(7);
  ann->setFriend(bo);
  EXPECT_EQ(last, bo);
  bo->setAge(8);
  ann->setFriend(nullptr);
  EXPECT_FALSE(last);
  EXPECT_EQ(ages, (std::vector<int>{7, 8, 0}));
  EXPECT_EQ(known, (std::vector<std::optional<int>>{7, 8, std::nullopt}));
  ann->setName("x"_ns);
  ann->setName(nullptr);
  EXPECT_EQ(names, "[,x][x,]");
}

TEST(ObservedValues, TakeNSNullForNil) {
  const WatchedPerson ann = WatchedPerson::new_();
  int number = 5;
  bool isNil = false;
  const Observation first = observe<int>(ann, "friend"_ns, [&](int, int now) { number = now; });
  const Observation second = observe<WatchedPerson>(
      ann, "friend"_ns, [&](const WatchedPerson&, const WatchedPerson& now) { isNil = !now; });
  ann->setFriend(uncheckedCast<WatchedPerson>(id(NSNull::null())));
  EXPECT_EQ(number, 0);
  EXPECT_TRUE(isNil);
}

TEST(ObservedValues, RaiseForAValueOfAnotherKind) {
  const WatchedPerson ann = WatchedPerson::new_();
  const auto reason = [](auto&& act) -> std::string {
    try {
      act();
    } catch (const RaisedException& raised) {
      EXPECT_TRUE(raised.exception()->name()->isEqualToString(NSInvalidArgumentException));
      return static_cast<std::string>(raised.exception()->reason());
    }
    return "nothing";
  };
  {
    const Observation wrong = observe<int>(ann, "items"_ns, [](int, int) {});
    EXPECT_EQ(reason([&] { ann->setItems(NSArray{ann}); }),
              "the value of the observed key path \"items\" is an object of class NSArray, "
              "not a number");
  }
  const Observation wrong = observe<NSString>(ann, "age"_ns, [](const id&, const id&) {});
  EXPECT_EQ(reason([&] { ann->setAge(1); }),
            "the value of the observed key path \"age\" is an object of class NSNumber, not "
            "NSString");
  EXPECT_EQ(ann->age(), 1);
}

}  // namespace
}  // namespace brindle
