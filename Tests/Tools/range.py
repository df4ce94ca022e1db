"""`brindle range`: named ranges, ranges by their parts, zones, weeks, JSON, wrong words."""

import datetime
import subprocess
import sys

sys.dont_write_bytecode = True

from support.checks import TOOL, answer, check, equal, explains, finish, parsed, refuses, run

WEDNESDAY = "2024-05-15T13:45"
NAMED = {
    "all-time": ("-0001-11-28", "+199999-11-30"),
    "this-week": ("2024-05-12", "2024-05-19"),
    "this-month": ("2024-05-01", "2024-06-01"),
    "this-quarter": ("2024-04-01", "2024-07-01"),
    "this-year": ("2024-01-01", "2025-01-01"),
    "last-week": ("2024-05-05", "2024-05-12"),
    "last-month": ("2024-04-01", "2024-05-01"),
    "last-quarter": ("2024-01-01", "2024-04-01"),
    "last-year": ("2023-01-01", "2024-01-01"),
    "past-week": ("2024-05-08", "2024-05-15"),
    "past-month": ("2024-04-15", "2024-05-15"),
    "past-quarter": ("2024-02-15", "2024-05-15"),
    "past-year": ("2023-05-15", "2024-05-15"),
}


def days(*words, **environment):
    row = parsed("range", *words, "--json", **environment)
    return row.get("start"), row.get("end")


def start(anchor, zone, *words):
    row = parsed("range", "--anchor", anchor, "--zone", zone, *words, "--json")
    return row.get("interval", "").split("/")[0]


# --- Named ranges ---

for name, expected in NAMED.items():
    equal(days(name, "--anchor", WEDNESDAY), expected, name)

equal(answer("range", "this-month", "--anchor", WEDNESDAY),
      "name      this-month\nstart     2024-05-01\nend       2024-06-01\n"
      "interval  2024-05-01T00:00:00Z/2024-06-01T00:00:00Z\nphrase    this month\n",
      "a named range as text")

table = parsed("range", "--all", "--anchor", WEDNESDAY, "--json")
equal({row["name"]: (row["start"], row["end"]) for row in table}, NAMED, "--all as JSON")
lines = answer("range", "--all", "--anchor", WEDNESDAY).splitlines()
equal([line.split()[0] for line in lines], ["name", *NAMED], "--all as text, first column")
equal([tuple(line.split()[1:3]) for line in lines[1:]], list(NAMED.values()),
      "--all as text, dates")

# The phrase tells the offset, in the language of the environment or the one that is asked for.
equal([row["phrase"] for row in table],
      ["100000 years ago", "this week", "this month", "this quarter", "this year", "1 week ago",
       "1 month ago", "1 quarter ago", "1 year ago", "1 week ago", "1 month ago", "1 quarter ago",
       "1 year ago"], "phrases")
for words, environment in ((["--locale", "de"], {}), ([], {"LC_ALL": "de_DE.UTF-8"})):
    row = parsed("range", "last-week", *words, "--json", **environment)
    equal(row.get("phrase"), "vor 1 Woche", "a phrase in German")
refuses("range", "last-week", "--locale", "", saying="wants a language")

# Without an anchor it is now, here tried on both sides of a midnight that may fall in between.
before = datetime.datetime.now(datetime.timezone.utc).date()
today = days("--length", "1 day")
after = datetime.datetime.now(datetime.timezone.utc).date()
check(any(today == (str(day), str(day + datetime.timedelta(1))) for day in (before, after)),
      f"the day of now: {today}")

# Every row agrees with its numbers: seconds since 1970, and an interval that says the same.
for row in parsed("range", "--all", "--anchor", WEDNESDAY, "--zone", "Europe/Berlin", "--json"):
    if row["name"] == "all-time":
        continue
    first, second = map(datetime.datetime.fromisoformat, row["interval"].split("/"))
    equal(row["startSeconds"], int(first.timestamp()), f"startSeconds of {row['name']}")
    equal(row["endSeconds"], int(second.timestamp()), f"endSeconds of {row['name']}")
    equal((row["start"], row["end"]), (str(first.date()), str(second.date())),
          f"days of {row['name']}")

# --- Any range ---

for words, expected in (
        (["--unit", "week", "--length", "1 week"], ("2024-05-12", "2024-05-19")),
        (["--unit", "quarter", "--length=1quarter"], ("2024-04-01", "2024-07-01")),
        (["--offset", "-1 week", "--length", "1 week"], ("2024-05-08", "2024-05-15")),
        (["--length", "-1 day"], ("2024-05-14", "2024-05-15")),
        (["--unit", "months", "--offset", "+3months", "--length", "2 years"],
         ("2024-08-01", "2026-08-01")),
        (["--offset", "-2025 years"], ("-0001-11-28", "-0001-11-28")),
        ([], ("2024-05-15", "2024-05-15"))):
    equal(days("--anchor", WEDNESDAY, *words), expected, words)
equal(days("--anchor", "2023-01-31", "--offset", "1 month"), ("2023-03-03", "2023-03-03"),
      "31 January")
equal(days("--anchor", "1582-10-14", "--length", "1 day"), ("1582-10-14", "1582-10-15"),
      "the Julian 4 October 1582 is the Gregorian 14th")
equal(days("--anchor", "1500-03-09", "--length", "1 day"), ("1500-03-09", "1500-03-10"),
      "the Julian 28 and 29 February 1500")
row = parsed("range", "--unit", "month", "--length", "1 month", "--json")
equal(row.get("name"), "this-month", "parts of a named range are named")
row = parsed("range", "--anchor", WEDNESDAY, "--unit", "month", "--length", "1 month", "--json")
equal(row.get("name", ""), None, "no name with an anchor")

for huge in ("9223372036854775807 years", "-9223372036854775808 days", "9223372036854775807weeks"):
    row = parsed("range", "--anchor", "2024-01-01", "--offset", huge, "--length", huge, "--json")
    check(row["startSeconds"] <= row["endSeconds"], f"{huge}: {row}")

# --- Anchors ---

for anchor, zone, expected in (
        ("0000-01-01", "UTC", "0000-01-01T00:00:00Z"),
        ("-0001-01-01", "UTC", "-0001-11-28T00:00:00Z"),  # the floor
        ("-999999-01-01", "UTC", "-0001-11-28T00:00:00Z"),
        ("+999999-12-31", "UTC", "+999999-12-31T00:00:00Z"),
        ("2024-05-15T23:30:00-02:00", "UTC", "2024-05-16T00:00:00Z"),
        ("2024-05-15T12:00+0530", "UTC", "2024-05-15T00:00:00Z"),
        ("2024-05-15T22:00:00Z", "Asia/Kathmandu", "2024-05-16T00:00:00+05:45"),
        ("2024-05-15", "America/New_York", "2024-05-15T00:00:00-04:00"),
        # Local times that are not there belong to the day that they name.
        ("2018-11-04", "America/Sao_Paulo", "2018-11-04T01:00:00-02:00"),
        ("2018-11-04T00:30", "America/Sao_Paulo", "2018-11-04T01:00:00-02:00"),
        ("1919-03-31", "America/Toronto", "1919-03-31T00:30:00-04:00"),
        ("2011-12-30", "Pacific/Apia", "2011-12-31T00:00:00+14:00"),  # no such day
        ("2022-11-06T00:30", "America/Havana", "2022-11-06T00:00:00-04:00"),  # twice
        ("1850-06-01", "Europe/Paris", "1850-05-31T23:50:39Z")):  # an offset with seconds
    equal(start(anchor, zone), expected, f"{anchor} in {zone}")

# --- Zones and weeks ---

MONDAYS = ("2024-05-13", "2024-05-20")
equal(days("this-week", "--anchor", WEDNESDAY, "--first-weekday", "monday"), MONDAYS,
      "weeks from Monday")
for day, expected in (("sunday", "12"), ("mon", "13"), ("3", "14"), ("wed", "15"),
                      ("thursday", "09"), ("6", "10"), ("7", "11")):
    equal(days("this-week", "--anchor", WEDNESDAY, f"--first-weekday={day}")[0],
          f"2024-05-{expected}", day)
equal(days("this-week", "--anchor", WEDNESDAY, LC_ALL="de_DE.UTF-8"), MONDAYS,
      "the week of the environment")
row = parsed("range", "this-year", "--anchor", WEDNESDAY, "--json", TZ="America/New_York")
equal(row.get("interval"), "2024-01-01T00:00:00-05:00/2025-01-01T00:00:00-05:00",
      "the environment's zone")

# --- Words that are wrong ---

refuses("range", saying="a name, --all, or the parts")
refuses("range", "this-week", "--all", saying="only one of them")
refuses("range", "--all", "--unit", "week", saying="only one of them")
refuses("range", "this-week", "--offset", "1 week", saying="only one of them")
refuses("range", "this-week", "last-week", saying="what is 'last-week'?")
for name in ("", "tomorrow", "This-Week", "-x", b"\xff\xfe"):
    refuses("range", name, saying="there is no range")
refuses("range", "--bogus", saying="unknown option --bogus")
refuses("range", "this-week", "--json", "--json", saying="--json is given twice")
refuses("range", "this-week", "--json=1", saying="--json takes no value")
for option in ("--anchor", "--unit", "--offset", "--length", "--zone", "--first-weekday",
               "--locale"):
    refuses("range", option, saying=f"{option} needs a value")
    refuses("range", option, "--json", saying=f"{option} needs a value")
    refuses("range", option, "now", option, "now", saying=f"{option} is given twice")
for zone in ("", ".", "Nope/Nope", "../../etc/passwd", "/etc/passwd", "zone.tab", "A" * 100000,
             b"\xff"):
    refuses("range", "this-week", "--zone", zone, saying="there is no time zone")
for anchor in ("", "tomorrow", "20240515", "2024-1-1", "2024-02-30", "2024-13-01", "2024-05-00",
               "2024-05-15T", "2024-05-15T24:00", "2024-05-15T12:60", "2024-05-15T12:00+24:00",
               "2024-05-15T12:00Zulu", "999999999-01-01", "+999999999-01-01", "-1-01-01", b"2024\xff"):
    refuses("range", "--anchor", anchor, saying="is no date")
for amount in ("", "week", "++1 day", "--1 day", " 1 day", "one week"):
    refuses("range", f"--length={amount}", saying="wants a number and a unit")
refuses("range", "--length", "7", saying="wants a unit behind the number")
for amount in ("1 fortnight", "1 dayss", "1 day ", "1e5 days", b"1 d\xffy"):
    refuses("range", "--offset", amount, saying="is no unit")
refuses("range", "--length", "9223372036854775808 days", saying="more than 64 bits")
refuses("range", "--unit", "decade", saying="is no unit")
for day in ("", "0", "8", "-1", "mo", "noday"):
    refuses("range", "--all", "--first-weekday", day, saying="is no weekday")

# --- Help, and output that cannot be written ---

for words in (["range", "--help"], ["range", "-h"], ["range", "nonsense", "--help"],
              ["help", "range"], ["--help", "range"]):
    explains(*words, saying="usage: brindle range NAME")
for words in (["--help"], ["-h"], ["help"]):
    explains(*words, saying="  range         ")
refuses("nonsense", saying="there is no command 'nonsense'")
refuses("help", "nonsense", saying="there is no command 'nonsense'")
refuses("", saying="there is no command ''")
nothing = run()
equal((nothing.returncode, nothing.stdout), (2, b""), "without words")
check(b"usage: brindle COMMAND" in nothing.stderr, "without words the usage is shown")

with open("/dev/full", "wb") as full:
    result = subprocess.run([TOOL, "range", "--all"], stdout=full, stderr=subprocess.PIPE,
                            timeout=60)
equal(result.returncode, 1, "exit status when the disk is full")
check(b"could not be written" in result.stderr, f"when the disk is full: {result.stderr!r}")
result = subprocess.run(["sh", "-c", '"$0" range --all >&-', TOOL], stderr=subprocess.PIPE,
                        timeout=60)
equal(result.returncode, 1, "exit status with standard output closed")

finish()
