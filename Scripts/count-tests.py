#!/usr/bin/env python3
"""Prints how many tests passed and failed: count-tests.py RESULTS.xml, as ctest --output-junit
writes them. A GoogleTest suite counts with each of its tests, everything else as one; a suite that
crashed counts as one failure, and so do results that are not there."""
import re
import sys
import xml.etree.ElementTree

TOTAL = re.compile(r"^\[==========\] (\d+) tests? from \d+ test suites? ran", re.MULTILINE)
PASSED = re.compile(r"^\[  PASSED  \] (\d+) test", re.MULTILINE)

passed = failed = 0
try:
    cases = list(xml.etree.ElementTree.parse(sys.argv[1]).iter("testcase"))
except (OSError, xml.etree.ElementTree.ParseError):
    cases = []
for case in cases:
    output = case.findtext("system-out") or ""
    total, good = TOTAL.search(output), PASSED.search(output)
    if case.get("status") == "run":
        passed += int(good.group(1)) if good else 1
    elif total and good:
        passed += int(good.group(1))
        failed += max(1, int(total.group(1)) - int(good.group(1)))
    else:
        failed += 1

print(passed, failed if cases else 1)
