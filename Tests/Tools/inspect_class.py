"""`brindle inspect`: a class, and who changed its methods."""

import os
import sys

sys.dont_write_bytecode = True

from support.checks import TOOL, answer, check, equal, explains, finish, parsed, refuses, run

PLUGIN, PROGRAM = sys.argv[2:4]

# A class of the libraries.
text = answer("inspect", "NSMutableString")
lines = text.splitlines()
equal(lines[0], "NSMutableString : NSString", "the first line")
check("libBrindlePlatform.so" in lines[1], f"the file of a class: {lines[1]!r}")
check("  - appendString:  v24@0:8@16  libBrindlePlatform.so" in text, "an operation, its types, its file")
described = parsed("inspect", "NSString", "--json")
equal(described["name"], "NSString", "name")
equal(described["superclass"], "NSObject", "superclass")
check("NSCopying" in described["protocols"], "protocols")
check({"selector": "length", "types": "Q16@0:8"} ==
      next(({k: m[k] for k in ("selector", "types")} for m in described["instanceMethods"]
            if m["selector"] == "length"), None), "length")
check(any(m["selector"] == "string" for m in described["classMethods"]), "class operations")
equal(parsed("inspect", "NSProxy", "--json")["superclass"], None, "a root class")

# A category of this library shows whose code it is.
mine = parsed("inspect", "NSException", "--json")["instanceMethods"]
equal({m["image"].split(".so")[0] for m in mine if m["selector"] == "decodedStackTrace"},
      {"libBrindle"}, "the file of a category's operation")

# What the library itself did to NSObject: two layers before its allocation.
layers = [c for c in parsed("inspect", "NSObject", "--json")["changes"]
          if c["selector"] == "allocWithZone:"]
check(len(layers) == 2 and all(c["classMethod"] and c["kind"] == "replaced" for c in layers),
      f"the layers before allocation: {layers}")

# A plug-in, loaded.
text = answer("inspect", "OfPlugin", "--in", PLUGIN)
name = os.path.basename(PLUGIN)
check(f"- awake  added from {name}" in text, f"what a plug-in added: {text}")
check(f"- description  replaced from {name}" in text, f"what a plug-in replaced: {text}")
changes = parsed("inspect", "OfPlugin", "--in", PLUGIN, "--json")["changes"]
check(all(c["image"] == name for c in changes) and changes[-1]["code"] == name,
      f"changes of a plug-in: {changes}")

# A program, run to its end.
result = run("inspect", "InMain", "--in", PROGRAM, "--json", "--", PLUGIN)
equal(result.returncode, 0, "exit status for a program")
check(b"right everywhere" in result.stderr, "the program's own output")
check(b'"name": "InMain"' in result.stdout and b'"selector": "awake"' in result.stdout,
      f"a class of a program: {result.stdout[:200]!r}")
result = run("inspect", "Nothing", "--in", PROGRAM, PLUGIN)
equal((result.returncode, result.stdout), (1, b"there is no class Nothing\n"), "unknown in a program")
# The probe brings the platform along, so its classes are there in any program that the loader runs.
# A probe that was built with a sanitizer needs the sanitizer in the program.
with open(TOOL, "rb") as tool:
    sanitized = b"__asan_init" in (code := tool.read()) or b"__tsan_init" in code
if not sanitized:
    result = run("inspect", "NSObject", "--in", "/bin/true")
    equal(result.returncode, 0, "a program that does not use the library")

# Nothing there.
equal(answer("inspect", "Nothing", status=1), "there is no class Nothing\n", "an unknown class")
equal(parsed("inspect", "Nothing", "--json", status=1), None, "an unknown class as JSON")
equal(run("inspect", "NSObject", "--in", "/nowhere/there.so").returncode, 1, "no such file")
equal(run("inspect", "NSObject", "--in", "/etc/passwd").returncode, 1, "a file of another kind")
refuses("inspect", saying="the name of a class is wanted")
refuses("inspect", "NSObject", "NSString", saying="one class at a time")
refuses("inspect", "NSObject", "--in", PLUGIN, "word", saying="a library takes no words")
explains("inspect", "--help", saying="usage: brindle inspect CLASS")

finish()
