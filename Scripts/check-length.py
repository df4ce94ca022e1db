#!/usr/bin/env python3
"""A file of more than 500 lines says why in its first comment (with the word "long")."""
import itertools
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
FOLDERS = ("Platform", "Source", "Tests", "Tools", "Examples", "Benchmarks", "Fuzz")

found = []
count = 0
for path in (p for folder in FOLDERS for p in sorted((root / folder).rglob("*"))):
    if path.suffix not in (".h", ".cpp", ".m", ".mm"):
        continue
    count += 1
    lines = path.read_text().splitlines()
    comment = " ".join(itertools.takewhile(lambda line: line.startswith("//"), lines))
    if len(lines) > 500 and not re.search(r"\blong\b", comment, re.IGNORECASE):
        found.append(f"{path.relative_to(root)}: {len(lines)} lines, and its first comment "
                     "does not say why it is so long")

print("\n".join(found) or f"{count} files of a readable length")
sys.exit(bool(found))
