// Time zones, from the system's own zone files. The one unit that talks to Abseil's time library.
//
// Instants are whole seconds since 1970, local days are day numbers (see CivilTime.h). Zones are
// immutable and live as long as the process. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::internal {

struct Zone;

/// The zone of that name ("Europe/Paris"), or null when the system has no such file.
const Zone* zoneNamed(std::string_view name);

/// A zone that is always `seconds` east of Greenwich, at most 24 hours away; else null.
const Zone* zoneWithOffset(std::int64_t seconds);

/// The zone of the host: the variable TZ (a name, a path, or a POSIX rule such as
/// "EST5EDT,M3.2.0,M11.1.0"), else /etc/localtime. UTC when none of them says anything that is
/// understood. Read anew at each call.
const Zone* hostZone();

/// The zone that dates are split in: the host's, read once, until somebody sets another. Setting
/// null reads the host's again.
const Zone* defaultZone();
void setDefaultZone(const Zone* zone);

const std::string& nameOf(const Zone& zone);

/// What holds at an instant.
struct ZoneMoment {
  std::int64_t offset;  // seconds east of Greenwich
  bool daylightSaving;
  std::string abbreviation;
};
ZoneMoment zoneMoment(const Zone& zone, std::int64_t instant);
std::int64_t offsetAt(const Zone& zone, std::int64_t instant) noexcept;

/// The day's first instant: after a gap at midnight its end, of two midnights the first. A day that
/// is missing altogether begins with the next one.
struct DayStart {
  std::int64_t instant;
  std::int64_t day;  // that begins there
};
DayStart startOfDay(const Zone& zone, std::int64_t day) noexcept;

/// The instant of a time of that day, in seconds since its midnight by the clock: a time in a gap
/// is carried over it, of two equal times the first counts.
std::int64_t instantAt(const Zone& zone, std::int64_t day, std::int64_t secondOfDay) noexcept;

}  // namespace brindle::internal
