#!/usr/bin/env python3
"""Every table of words has every key of the English one, once, and formats that print the same
arguments: Resources/<language>.lproj/Localizable.strings. In the English table the words are the
keys."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
TOKEN = re.compile(r'\s+|/\*.*?\*/|"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;', re.DOTALL)
PLACEHOLDER = re.compile(r"%(?:(\d+)\$)?([a-zA-Z@%])")
LEFT_TO_RIGHT_ONLY = re.compile(r"[\u200e\u200f\u202a-\u202e\u2066-\u2069]")
found = []


def pairs(path):
    """The table's pairs, in the table's order."""
    name = path.relative_to(root)
    try:
        text = path.read_bytes().decode()
    except UnicodeDecodeError as error:
        found.append(f"{name}: not UTF-8: {error}")
        return {}
    result = {}
    place = 0
    while place < len(text):
        token = TOKEN.match(text, place)
        if not token:
            line = text.count("\n", 0, place) + 1
            found.append(f"{name}:{line}: neither a comment nor a pair: {text[place:place + 40]!r}")
            return result
        if token[1] is not None:
            if token[1] in result:
                found.append(f"{name}: {token[1]!r} stands there twice")
            result[token[1]] = token[2]
        place = token.end()
    if not text.startswith("/* ") or len(text.split("*/")[0]) < 20:
        found.append(f"{name}: opens without a comment on the language")
    return result


def arguments(text):
    """What a format prints: each argument's number and kind. "%%" prints none."""
    result = []
    for number, kind in PLACEHOLDER.findall(text):
        if kind != "%":
            result.append((int(number) if number else len(result) + 1, kind))
    return sorted(result)


def mixes(text):
    given = [bool(number) for number, kind in PLACEHOLDER.findall(text) if kind != "%"]
    return any(given) and not all(given)


tables = sorted((root / "Resources").glob("*.lproj/Localizable.strings"))
english = pairs(root / "Resources/en.lproj/Localizable.strings")
for folder in (root / "Resources").glob("*.lproj"):
    if not (folder / "Localizable.strings").is_file():
        found.append(f"{folder.relative_to(root)}: has no Localizable.strings")
for path in tables:
    name = path.relative_to(root)
    table = pairs(path)
    found += [f"{name}: {key!r} is missing" for key in english if key not in table]
    found += [f"{name}: {key!r} is no key" for key in table if key not in english]
    for key, value in table.items():
        if not value or value != value.strip():
            found.append(f"{name}: {key!r}: empty, or with space around it: {value!r}")
        if arguments(key) != arguments(value) or mixes(value):
            found.append(f"{name}: {key!r}: prints other arguments: {value!r}")
        if LEFT_TO_RIGHT_ONLY.search(value):
            found.append(f"{name}: {key!r}: has invisible marks of direction")
        if path.parent.name == "en.lproj" and key != value:
            found.append(f"{name}: {key!r}: the English words are the keys, not {value!r}")
if len(tables) < 29:
    found.append(f"{len(tables)} tables, not 29")

print("\n".join(found) or f"{len(tables)} tables with {len(english)} words each")
sys.exit(bool(found))
