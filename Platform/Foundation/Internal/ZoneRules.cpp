#include "Platform/Foundation/Internal/ZoneRules.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include <limits.h>
#include <sys/mman.h>
#include <unistd.h>

#include <absl/time/civil_time.h>
#include <absl/time/time.h>

namespace brindle::internal {

/// A stretch of time during which a zone's offset stays the same.
struct Span {
  std::int64_t begin;
  std::int64_t offset;
};

/// The spans of a zone up to `end`, the first from the beginning of time on.
struct Spans {
  std::vector<Span> list;
  std::int64_t end;
};

struct Zone {
  std::string name;
  absl::TimeZone rules;
  mutable std::atomic<const Spans*> spans{nullptr};  // once asked for

  Zone(std::string zoneName, const absl::TimeZone& zoneRules)
      : name(std::move(zoneName)), rules(zoneRules) {}
};

namespace {

constexpr std::int64_t kDaySeconds = 86400;
constexpr std::int64_t kSpansEnd =
    4102444800;  // 2100-01-01: later dates are looked up in the rules
constexpr std::int64_t kGreatestOffset = 26 * 3600;
constexpr std::string_view kZoneFolder = "/usr/share/zoneinfo/";

struct Register {
  std::mutex lock;
  std::map<std::string, const Zone*, std::less<>> zones;
};
Register& zoneRegister() {
  static auto& zones = *new Register;
  return zones;
}

/// The zone of that name, made with the rules when it is new.
const Zone* registered(std::string name, const absl::TimeZone& rules) {
  Register& r = zoneRegister();
  const std::lock_guard guard(r.lock);
  auto found = r.zones.find(name);
  if (found != r.zones.end()) return found->second;
  const Zone* zone = new Zone(name, rules);
  r.zones.emplace(std::move(name), zone);
  return zone;
}

const Zone* known(std::string_view name) {
  Register& r = zoneRegister();
  const std::lock_guard guard(r.lock);
  auto found = r.zones.find(name);
  return found == r.zones.end() ? nullptr : found->second;
}

const Zone* utc() { return registered("UTC", absl::UTCTimeZone()); }

absl::CivilSecond civilMidnight(std::int64_t day) {
  return absl::CivilSecond(absl::CivilDay(1970, 1, 1) + day);
}

std::int64_t floorDay(std::int64_t seconds) {
  return seconds / kDaySeconds - (seconds % kDaySeconds < 0 ? 1 : 0);
}

// --- Spans: what the rules say, ready to be searched ---

Spans* makeSpans(const absl::TimeZone& rules) {
  auto* spans = new Spans{{}, kSpansEnd};
  spans->list.push_back(
      {std::numeric_limits<std::int64_t>::min(),
       rules.At(absl::FromUnixSeconds(std::numeric_limits<int>::min() * 4LL)).offset});
  absl::TimeZone::CivilTransition change;
  for (absl::Time time = absl::InfinitePast(); rules.NextTransition(time, &change);) {
    // The clocks showed `from` by the offset until then.
    const std::int64_t begin =
        (change.from - absl::CivilSecond(1970, 1, 1)) - spans->list.back().offset;
    if (begin >= kSpansEnd) break;
    time = absl::FromUnixSeconds(begin);
    const std::int64_t offset = rules.At(time).offset;
    if (offset != spans->list.back().offset) spans->list.push_back({begin, offset});
  }
  return spans;
}

const Spans& spansOf(const Zone& zone) {
  const Spans* spans = zone.spans.load(std::memory_order_acquire);
  if (spans != nullptr) [[likely]]
    return *spans;
  const Spans* made = makeSpans(zone.rules);
  if (zone.spans.compare_exchange_strong(spans, made, std::memory_order_acq_rel)) return *made;
  delete made;
  return *spans;
}

const Span* spanAt(const Spans& spans, std::int64_t instant) {
  const auto next =
      std::upper_bound(spans.list.begin() + 1, spans.list.end(), instant,
                       [](std::int64_t value, const Span& span) { return value < span.begin; });
  return &*(next - 1);
}

DayStart startOfLateDay(const Zone& zone, std::int64_t day) {
  const absl::TimeZone::TimeInfo info = zone.rules.At(civilMidnight(day));
  if (info.kind != absl::TimeZone::TimeInfo::SKIPPED) return {absl::ToUnixSeconds(info.pre), day};
  const std::int64_t instant = absl::ToUnixSeconds(info.trans);
  const std::int64_t offset = zone.rules.At(absl::FromUnixSeconds(instant)).offset;
  return {instant, floorDay(instant + offset)};
}

// --- POSIX rules ---

/// The standard time at the head of a rule: its name and seconds east of Greenwich.
struct StandardTime {
  std::string name;
  std::int64_t offset;
  std::string_view rest;
};

std::optional<StandardTime> readStandardTime(std::string_view text) {
  StandardTime time{};
  if (text.starts_with('<')) {
    const std::size_t end = text.find('>');
    if (end == std::string_view::npos) return std::nullopt;
    time.name = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
  } else {
    while (!text.empty() && std::isalpha(static_cast<unsigned char>(text.front())) != 0) {
      time.name += text.front();
      text.remove_prefix(1);
    }
  }
  if (time.name.size() < 3 || text.empty()) return std::nullopt;
  std::int64_t sign = -1;  // POSIX counts west of Greenwich
  if (text.front() == '-' || text.front() == '+') {
    if (text.front() == '-') sign = 1;
    text.remove_prefix(1);
  }
  std::int64_t parts[3] = {0, 0, 0};
  for (std::int64_t& part : parts) {
    std::size_t digits = 0;
    while (digits < 3 && digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
      part = part * 10 + (text[digits++] - '0');
    }
    if (digits == 0) return std::nullopt;
    text.remove_prefix(digits);
    if (!text.starts_with(':')) break;
    text.remove_prefix(1);
  }
  time.offset = sign * (parts[0] * 3600 + parts[1] * 60 + parts[2]);
  if (parts[0] > 24 || parts[1] > 59 || parts[2] > 59) return std::nullopt;
  time.rest = text;
  return time;
}

void appendBigEndian(std::string& bytes, std::uint64_t value, int size) {
  for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i));
}

/// A zone file (RFC 8536) with one standard time and the rule as its footer.
std::string zoneFileOf(const StandardTime& standard, const std::string& rule) {
  const auto block = [&standard](int timeSize, bool hasTransition) {
    std::string bytes = "TZif2";
    bytes.append(15, '\0');
    appendBigEndian(bytes, 0, 4);                         // universal or local indicators
    appendBigEndian(bytes, 0, 4);                         // standard or wall indicators
    appendBigEndian(bytes, 0, 4);                         // leap seconds
    appendBigEndian(bytes, hasTransition ? 1 : 0, 4);     // transitions
    appendBigEndian(bytes, 1, 4);                         // types
    appendBigEndian(bytes, standard.name.size() + 1, 4);  // characters of names
    if (hasTransition) {
      appendBigEndian(bytes, static_cast<std::uint64_t>(std::int64_t{-2208988800}), timeSize);
      bytes += '\0';
    }
    appendBigEndian(bytes, static_cast<std::uint64_t>(standard.offset), 4);
    bytes += '\0';  // not daylight saving
    bytes += '\0';  // its name's place
    bytes += standard.name;
    bytes += '\0';
    return bytes;
  };
  return block(4, false) + block(8, true) + "\n" + rule + "\n";
}

/// The zone of a POSIX rule. The library reads zone files only, so it is given one in memory.
const Zone* zoneOfRule(const std::string& text) {
  if (const Zone* zone = known(text)) return zone;
  const std::optional<StandardTime> standard = readStandardTime(text);
  if (!standard) return nullptr;
  std::string rule = text;
  // Without dates daylight saving follows the rule of the United States, as in the C library.
  if (!standard->rest.empty() && rule.find(',') == std::string::npos) rule += ",M3.2.0,M11.1.0";
  const std::string bytes = zoneFileOf(*standard, rule);
  const int file = memfd_create("zone", MFD_CLOEXEC);
  if (file < 0) return nullptr;
  absl::TimeZone rules;
  const bool loaded =
      write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
      absl::LoadTimeZone("/proc/self/fd/" + std::to_string(file), &rules);
  // The file stays open: the library remembers zones by name, and this name must not be used again.
  if (!loaded) {
    return registered(text, absl::FixedTimeZone(static_cast<int>(standard->offset)));
  }
  return registered(text, rules);
}

// --- The host ---

std::string nameOfLocalTimeFile() {
  char target[PATH_MAX];
  const ssize_t size = readlink("/etc/localtime", target, sizeof target);
  if (size > 0) {
    const std::string_view path(target, static_cast<std::size_t>(size));
    const std::size_t folder = path.find("zoneinfo/");
    if (folder != std::string_view::npos) return std::string(path.substr(folder + 9));
  }
  std::ifstream file("/etc/timezone");
  std::string name;
  std::getline(file, name);
  return name;
}

constinit std::atomic<const Zone*> currentDefault{nullptr};

}  // namespace

const Zone* zoneNamed(std::string_view name) {
  if (const Zone* zone = known(name)) return zone;
  // Names are paths below the zone folder and lead nowhere else.
  if (name.empty() || name.front() == '/' || name.find("..") != std::string_view::npos ||
      name.find('\0') != std::string_view::npos) {
    return nullptr;
  }
  if (name == "GMT" || name == "UTC") return registered(std::string(name), absl::UTCTimeZone());
  absl::TimeZone rules;
  const std::string text(name);
  if (text == "localtime" || !absl::LoadTimeZone(text, &rules)) return nullptr;
  return registered(text, rules);
}

const Zone* zoneWithOffset(std::int64_t seconds) {
  if (seconds > kDaySeconds || seconds < -kDaySeconds) return nullptr;
  if (seconds == 0) return registered("GMT", absl::UTCTimeZone());
  const auto size = static_cast<int>(std::llabs(seconds));
  char name[32];
  std::snprintf(name, sizeof name, size % 60 != 0 ? "GMT%c%02d%02d%02d" : "GMT%c%02d%02d",
                seconds < 0 ? '-' : '+', size / 3600, size / 60 % 60, size % 60);
  return registered(name, absl::FixedTimeZone(static_cast<int>(seconds)));
}

const Zone* hostZone() {
  if (const char* variable = std::getenv("TZ")) {
    std::string_view text = variable;
    if (text.starts_with(':')) text.remove_prefix(1);
    if (text.starts_with(kZoneFolder)) text.remove_prefix(kZoneFolder.size());
    if (const Zone* zone = zoneNamed(text)) return zone;
    if (const Zone* zone = zoneOfRule(std::string(text))) return zone;
    return utc();
  }
  if (const Zone* zone = zoneNamed(nameOfLocalTimeFile())) return zone;
  absl::TimeZone rules;
  if (absl::LoadTimeZone("/etc/localtime", &rules)) return registered("localtime", rules);
  return utc();
}

const Zone* defaultZone() {
  const Zone* zone = currentDefault.load(std::memory_order_acquire);
  if (zone != nullptr) [[likely]]
    return zone;
  const Zone* host = hostZone();
  return currentDefault.compare_exchange_strong(zone, host) ? host : zone;
}

void setDefaultZone(const Zone* zone) {
  currentDefault.store(zone != nullptr ? zone : hostZone(), std::memory_order_release);
}

const std::string& nameOf(const Zone& zone) { return zone.name; }

ZoneMoment zoneMoment(const Zone& zone, std::int64_t instant) {
  const absl::TimeZone::CivilInfo info = zone.rules.At(absl::FromUnixSeconds(instant));
  return {info.offset, info.is_dst, info.zone_abbr};
}

std::int64_t offsetAt(const Zone& zone, std::int64_t instant) noexcept {
  const Spans& spans = spansOf(zone);
  if (instant < spans.end) [[likely]]
    return spanAt(spans, instant)->offset;
  return zone.rules.At(absl::FromUnixSeconds(instant)).offset;
}

DayStart startOfDay(const Zone& zone, std::int64_t day) noexcept {
  const Spans& spans = spansOf(zone);
  const std::int64_t midnight = day * kDaySeconds;  // by the clock
  if (midnight + kGreatestOffset >= spans.end) [[unlikely]]
    return startOfLateDay(zone, day);
  // The first span that does not end before its clocks show midnight.
  const Span* span = spanAt(spans, midnight - kGreatestOffset);
  const Span* last = &spans.list.back();
  while (span != last && midnight >= span[1].begin + span->offset) ++span;
  if (span == spans.list.data() || midnight >= span->begin + span->offset) {
    return {midnight - span->offset, day};
  }
  // Its clocks began later: midnight was left out.
  return {span->begin, floorDay(span->begin + span->offset)};
}

std::int64_t instantAt(const Zone& zone, std::int64_t day, std::int64_t secondOfDay) noexcept {
  const absl::TimeZone::TimeInfo info = zone.rules.At(civilMidnight(day) + secondOfDay);
  return absl::ToUnixSeconds(info.pre);
}

}  // namespace brindle::internal
