#!/usr/bin/env python3
"""Nothing in the tree leans on the machine it was written on: no path into somebody's checkout or
home folder."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
MACHINE = re.compile(r"(?<![\w.$}])/(?:work|root|farm|Users)/")

found = []
count = 0
for path in sorted(root.rglob("*")):
    name = str(path.relative_to(root))
    if not path.is_file() or re.match(r"\.git/|build/|Fuzz/Corpus/", name):
        continue
    try:
        lines = path.read_text().splitlines()
    except UnicodeDecodeError:
        continue
    count += 1
    found += [f"{name}:{number}: {line.strip()}"
              for number, line in enumerate(lines, 1) if MACHINE.search(line)]

print("\n".join(found) or f"{count} files without a machine's path")
sys.exit(bool(found))
