#!/usr/bin/env python3
"""Every selector that a header sends typed is defined as a method somewhere in the library.

What only clients define is marked in the header, on the line of the send or on the one above:
`// defined by clients`."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
SENT = re.compile(r'\bsend(?:Super)?<\s*(?:\w+\s*,\s*)?"([^"]+)"')
# `method<"x:">(...)`, and rows of a table that are made by a helper: `getter<"x", int>()`.
DEFINED = re.compile(r'\b(?!send|selector)\w+<\s*"([^"]+)"')

defined = set()
sent = []
for floor in ("Platform", "Source"):
    for path in sorted((root / floor).rglob("*.[hc]*")):
        text = path.read_text()
        if path.suffix == ".cpp":
            defined.update(DEFINED.findall(text))
            continue
        lines = text.splitlines()
        for match in SENT.finditer(text):
            number = text.count("\n", 0, match.start())
            context = lines[max(number - 1, 0):number + 1]
            if lines[number].lstrip().startswith("//") or "defined by clients" in "".join(context):
                continue
            sent.append((match.group(1), f"{path.relative_to(root)}:{number + 1}"))

missing = [f"{where}: sends {name}, which no method<\"{name}\"> defines"
           for name, where in sent if name not in defined]
print("\n".join(missing) or f"{len(sent)} typed sends, {len(defined)} selectors defined")
sys.exit(bool(missing))
