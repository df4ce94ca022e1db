"""`brindle recognise`: which named range has exactly these parts."""

import sys

sys.dont_write_bytecode = True

from support.checks import answer, equal, explains, finish, parsed, refuses

UNITS = ("week", "month", "quarter", "year")
NAMED = {"all-time": ["--offset", "-100000 years", "--length", "200000 years"]}
for unit in UNITS:
    NAMED[f"this-{unit}"] = ["--unit", unit, "--offset", f"0 {unit}s", "--length", f"1 {unit}"]
    NAMED[f"last-{unit}"] = ["--unit", unit, "--offset", f"-1 {unit}", "--length", f"1 {unit}"]
    NAMED[f"past-{unit}"] = ["--unit", "day", "--offset", f"-1 {unit}", "--length", f"1 {unit}"]

for name, words in NAMED.items():
    equal(answer("recognise", *words), f"{name}\n", words)
    equal(parsed("recognise", *words, "--json"), {"name": name}, words)
    equal(answer("recognise", "--anchor", "now", *words), f"{name}\n", words)
    # An anchor, even today's, makes it another range.
    equal(answer("recognise", "--anchor", "2024-05-15", *words, status=1), "none\n", words)

# An offset that is not given is none of the unit that the anchor is rounded to.
for unit in UNITS:
    equal(answer("recognise", "--unit", unit, "--length", f"1 {unit}"), f"this-{unit}\n", unit)

# The same dates by other parts are no named range.
for words in (["--offset", "-7 days", "--length", "7 days"],
              ["--offset", "-1 week", "--length", "7 days"],
              ["--unit", "week", "--offset", "0 days", "--length", "1 week"],
              ["--unit", "quarter", "--offset", "0 quarters", "--length", "3 months"],
              ["--unit", "day", "--length", "1 day"],
              ["--unit", "week", "--length", "4294967297 weeks"],  # 1 in its low half
              []):
    equal(answer("recognise", *words, status=1), "none\n", words)
equal(parsed("recognise", "--json", status=1), {"name": None}, "none as JSON")

refuses("recognise", "this-week", saying="what is 'this-week'?")
refuses("recognise", "--zone", "UTC", saying="unknown option --zone")
refuses("recognise", "--unit", "decade", saying="is no unit")
refuses("recognise", "--unit", "", saying="is no unit")
refuses("recognise", "--length", saying="--length needs a value")
refuses("recognise", "--offset", "1 day", "--offset", "1 day", saying="--offset is given twice")
refuses("recognise", "--anchor", "soon", saying="is no date")
refuses("recognise", b"\xff", saying="what is")

for words in (["recognise", "--help"], ["recognise", "-h"], ["help", "recognise"]):
    explains(*words, saying="usage: brindle recognise")

finish()
