#!/usr/bin/env python3
"""Reads NUL-separated .gcda paths on standard input and prints how many lines of each source under
Platform/ and Source/ ran: coverage.py ROOT [PATTERN]."""
import collections
import json
import os
import subprocess
import sys

root, pattern = sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else ""
counters = [path for path in sys.stdin.read().split("\0") if path]
lines = collections.defaultdict(dict)
for path in counters:
    report = subprocess.run(["gcov", "--json-format", "--stdout", path],
                            capture_output=True, text=True, cwd=os.path.dirname(path)).stdout
    for text in report.splitlines():
        for file in json.loads(text)["files"]:
            # Headers are reached by links in the build folder: count them where they really are.
            name = os.path.realpath(os.path.join(root, "build/coverage", file["file"]))
            name = os.path.relpath(name, root)
            if name.startswith(("Platform/", "Source/")) and pattern in name:
                counts = lines[name]
                for line in file["lines"]:
                    number = line["line_number"]
                    counts[number] = counts.get(number, 0) + line["count"]


def ranges(numbers):
    """[1, 2, 3, 7] as "1-3 7"."""
    runs = []
    for number in numbers:
        if runs and number == runs[-1][1] + 1:
            runs[-1][1] = number
        else:
            runs.append([number, number])
    return " ".join(str(a) if a == b else f"{a}-{b}" for a, b in runs)


total = ran = 0
for name in sorted(lines):
    missed = sorted(number for number, count in lines[name].items() if count == 0)
    total += len(lines[name])
    ran += len(lines[name]) - len(missed)
    share = 100 * (1 - len(missed) / max(1, len(lines[name])))
    print(f"{share:5.1f} %  {name}  {ranges(missed)}")
print(f"{100 * ran / max(1, total):5.1f} %  of {total} lines")
