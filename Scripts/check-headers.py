#!/usr/bin/env python3
"""Public headers show nothing of what lies under them: they include each other by their installed
names and the standard library (without <ranges>, <format> and <expected>), and name no type of
another library. They open with a comment and `#pragma once`."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
POSIX = {"sys/types.h", "time.h"}
BANNED = {"expected", "format", "ranges"}
FOREIGN = re.compile(
    r"\b(absl::|icu::|UChar\b|UErrorCode|ucol_|ucal_|G(MainLoop|MainContext|Source|Object|Error)\b"
    r"|g_\w+\(|ffi_\w+|XML_\w+|uuid_t\b|archive_\w+|struct archive\b)")

found = []
headers = [h for folder in ("Platform/Runtime", "Platform/Foundation", "Source")
           for h in sorted((root / folder).glob("*.h"))]
for header in headers:
    lines = header.read_text().splitlines()
    if not lines or not lines[0].startswith("//"):
        found.append(f"{header.relative_to(root)}:1: opens without a comment on its domain")
    if "#pragma once" not in lines:
        found.append(f"{header.relative_to(root)}:1: has no #pragma once")
    for number, line in enumerate(lines, 1):
        where = f"{header.relative_to(root)}:{number}"
        include = re.match(r'\s*#\s*include\s*([<"])([^>"]+)', line)
        if include:
            quote, name = include.groups()
            standard = re.fullmatch(r"[a-z_0-9]+", name) and name not in BANNED
            if quote == '"' or not (standard or name in POSIX or name.startswith("Brindle/")):
                found.append(f"{where}: a public header may not include {quote}{name}")
        elif FOREIGN.search(line.split("//")[0]):
            found.append(f"{where}: another library's name: {line.strip()}")

print("\n".join(found) or f"{len(headers)} public headers stand on their own")
sys.exit(bool(found))
