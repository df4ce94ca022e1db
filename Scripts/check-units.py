#!/usr/bin/env python3
"""Every unit has its test: Platform/X/Name.cpp has Tests/Platform/X/NameTests.cpp, and so on."""
import pathlib
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
missing = []
units = 0
for floor in ("Platform", "Source"):
    for unit in sorted((root / floor).rglob("*.cpp")):
        units += 1
        test = root / "Tests" / unit.relative_to(root).with_name(unit.stem + "Tests.cpp")
        if not test.exists():
            missing.append(f"{unit.relative_to(root)}: no {test.relative_to(root)}")

print("\n".join(missing) or f"{units} units, each with its test")
sys.exit(bool(missing))
