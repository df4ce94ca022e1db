#include "Platform/Foundation/Internal/ZoneRules.h"

#include <cstdlib>
#include <string>

#include <absl/time/civil_time.h>
#include <absl/time/time.h>
#include <gtest/gtest.h>

#include "Platform/Foundation/Internal/CivilTime.h"

using namespace brindle::internal;

namespace {

constexpr std::int64_t kJanuary = 1704067200;  // 2024-01-01
constexpr std::int64_t kJuly = 1719792000;     // 2024-07-01

/// The variable TZ, to the end of the scope.
class HostVariable {
 public:
  explicit HostVariable(const char* value)
      : old_(std::getenv("TZ") != nullptr ? std::getenv("TZ") : "") {
    if (value != nullptr)
      setenv("TZ", value, 1);
    else
      unsetenv("TZ");
  }
  ~HostVariable() { setenv("TZ", old_.c_str(), 1); }
  HostVariable(const HostVariable&) = delete;
  HostVariable& operator=(const HostVariable&) = delete;

 private:
  std::string old_;
};

std::int64_t startOf(const char* zone, std::int64_t year, std::int64_t month, std::int64_t day) {
  return startOfDay(*zoneNamed(zone), dayNumber({year, month, day})).instant;
}

}  // namespace

TEST(ZoneRules, Tour) {
  const Zone* paris = zoneNamed("Europe/Paris");
  ASSERT_NE(paris, nullptr);
  EXPECT_EQ(nameOf(*paris), "Europe/Paris");
  EXPECT_EQ(offsetAt(*paris, kJanuary), 3600);
  const ZoneMoment summer = zoneMoment(*paris, kJuly);
  EXPECT_EQ(summer.offset, 7200);
  EXPECT_TRUE(summer.daylightSaving);
  EXPECT_EQ(summer.abbreviation, "CEST");
  EXPECT_EQ(zoneNamed("Europe/Paris"), paris) << "one zone a name";
}

TEST(ZoneRules, NamesThatAreNoZones) {
  for (const char* name : {"", "Nowhere/Land", "../../etc/passwd", "/etc/localtime", "Europe",
                           "localtime", "tzdata.zi"}) {
    EXPECT_EQ(zoneNamed(name), nullptr) << name;
  }
  EXPECT_EQ(zoneNamed(std::string_view("UTC\0x", 5)), nullptr);
}

TEST(ZoneRules, RulesAreAsNewAsTheSystem) {
  // Egypt took daylight saving time up again in 2023.
  EXPECT_EQ(offsetAt(*zoneNamed("Africa/Cairo"), 1688169600), 10800);
}

TEST(ZoneRules, MidnightsThatAreMissingOrDoubled) {
  EXPECT_EQ(startOf("America/Sao_Paulo", 2018, 11, 4), 1541300400);  // 01:00
  EXPECT_EQ(startOf("America/Toronto", 1919, 3, 31), -1601753400);   // 00:30, the end of the gap
  EXPECT_EQ(startOf("America/Havana", 2022, 11, 6), 1667707200);     // the first of two
  EXPECT_EQ(startOf("Asia/Amman", 2021, 10, 29), 1635454800);        // the first of two
  EXPECT_EQ(startOf("Africa/Cairo", 2023, 4, 28), 1682632800);       // 01:00
}

// Zones that are searched in a table of our own must say what the library says that made the table.
TEST(ZoneRules, EveryDayBeginsWhereTheRulesSay) {
  for (const char* name :
       {"America/New_York",    "America/Sao_Paulo", "America/Toronto", "America/Havana",
        "America/Asuncion",    "America/St_Johns",  "Africa/Cairo",    "Africa/Casablanca",
        "Africa/Monrovia",     "Antarctica/Troll",  "Asia/Amman",      "Asia/Gaza",
        "Asia/Kathmandu",      "Asia/Shanghai",     "Asia/Manila",     "Asia/Tehran",
        "Australia/Lord_Howe", "Europe/Dublin",     "Europe/London",   "Europe/Paris",
        "Pacific/Apia",        "Pacific/Kwajalein", "Etc/GMT-14",      "UTC"}) {
    const Zone* zone = zoneNamed(name);
    absl::TimeZone rules;
    ASSERT_TRUE(absl::LoadTimeZone(name, &rules));
    const std::int64_t last = dayNumber({2103, 1, 1});
    for (std::int64_t day = dayNumber({1840, 1, 1}); day < last; ++day) {
      const absl::CivilSecond midnight(absl::CivilDay(1970, 1, 1) + day);
      const absl::TimeZone::TimeInfo info = rules.At(midnight);
      const bool isMissing = info.kind == absl::TimeZone::TimeInfo::SKIPPED;
      const std::int64_t expected = absl::ToUnixSeconds(isMissing ? info.trans : info.pre);
      const DayStart start = startOfDay(*zone, day);
      ASSERT_EQ(start.instant, expected) << name << " " << midnight;
      ASSERT_EQ(start.day, absl::CivilDay(rules.At(absl::FromUnixSeconds(expected)).cs) -
                               absl::CivilDay(1970, 1, 1))
          << name << " " << midnight;
      const std::int64_t instant = day * 86400 + day % 86400;
      ASSERT_EQ(offsetAt(*zone, instant), rules.At(absl::FromUnixSeconds(instant)).offset)
          << name << " " << instant;
    }
  }
}

TEST(ZoneRules, AMissingDayBeginsAndIsTheNext) {
  const std::int64_t missing = dayNumber({2011, 12, 30});
  const DayStart start = startOfDay(*zoneNamed("Pacific/Apia"), missing);
  EXPECT_EQ(start.day, missing + 1);
  EXPECT_EQ(start.instant, startOf("Pacific/Apia", 2011, 12, 31));
}

TEST(ZoneRules, TimesInGapsAreCarriedOverThem) {
  const Zone& newYork = *zoneNamed("America/New_York");
  const std::int64_t day = dayNumber({2024, 3, 10});
  EXPECT_EQ(instantAt(newYork, day, 2 * 3600 + 1800), instantAt(newYork, day, 3 * 3600 + 1800));
  EXPECT_EQ(instantAt(newYork, day, 0), startOfDay(newYork, day).instant);
}

TEST(ZoneRules, FixedOffsets) {
  EXPECT_EQ(offsetAt(*zoneWithOffset(5400), kJuly), 5400);
  EXPECT_EQ(nameOf(*zoneWithOffset(-19800)), "GMT-0530");
  EXPECT_EQ(nameOf(*zoneWithOffset(0)), "GMT");
  EXPECT_EQ(zoneWithOffset(86401), nullptr);
  EXPECT_EQ(zoneWithOffset(INT64_MIN), nullptr);
}

TEST(ZoneRules, FormsOfTheHostsVariable) {
  const struct {
    const char* variable;
    const char* name;
    std::int64_t january;
    std::int64_t july;
  } cases[] = {
      {"Europe/Paris", "Europe/Paris", 3600, 7200},
      {":America/New_York", "America/New_York", -18000, -14400},
      {"posix/Asia/Tokyo", "posix/Asia/Tokyo", 32400, 32400},
      {"/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo", 32400, 32400},
      {"JST-9", "JST-9", 32400, 32400},
      {"EST5EDT", "EST5EDT", -18000, -14400},
      {"EST5EDT,M3.2.0,M11.1.0", "EST5EDT,M3.2.0,M11.1.0", -18000, -14400},
      {"AAA3BBB", "AAA3BBB", -10800, -7200},
      {"<+0330>-3:30", "<+0330>-3:30", 12600, 12600},
      {"Bogus/Zone", "UTC", 0, 0},
      {"XXX25YYY", "UTC", 0, 0},
      {"", "UTC", 0, 0},
  };
  for (const auto& c : cases) {
    const HostVariable variable(c.variable);
    const Zone* zone = hostZone();
    ASSERT_NE(zone, nullptr) << c.variable;
    EXPECT_EQ(nameOf(*zone), c.name);
    EXPECT_EQ(offsetAt(*zone, kJanuary), c.january) << c.variable;
    EXPECT_EQ(offsetAt(*zone, kJuly), c.july) << c.variable;
  }
  const HostVariable none(nullptr);
  EXPECT_NE(hostZone(), nullptr);
}

TEST(ZoneRules, TheDefaultIsTheHostsUntilItIsSet) {
  const HostVariable variable("Asia/Tokyo");
  setDefaultZone(nullptr);
  EXPECT_EQ(nameOf(*defaultZone()), "Asia/Tokyo");
  setDefaultZone(zoneNamed("Europe/Paris"));
  EXPECT_EQ(nameOf(*defaultZone()), "Europe/Paris");
  setDefaultZone(nullptr);
  EXPECT_EQ(nameOf(*defaultZone()), "Asia/Tokyo");
}

TEST(ZoneRules, InstantsFarAway) {
  const Zone& newYork = *zoneNamed("America/New_York");
  EXPECT_EQ(offsetAt(newYork, -62170156800), -17762) << "local mean time";
  for (const std::int64_t day : {kFirstDay, kLastDay}) {
    EXPECT_NEAR(static_cast<double>(startOfDay(newYork, day).instant),
                static_cast<double>(day) * 86400, 86400);
  }
}
