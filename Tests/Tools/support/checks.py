"""What the tests of the command-line tool share: running it, and counting what fails."""

import json
import os
import subprocess
import sys

TOOL = sys.argv[1]
failures = 0


def check(holds, what):
    global failures
    if not holds:
        failures += 1
        print("FAILED:", what)


def equal(actual, expected, what):
    check(actual == expected, f"{what}: {actual!r}, not {expected!r}")


def run(*words, **environment):
    """Runs the tool with the words in a fixed environment: UTC, weeks from Sunday."""
    settings = dict(os.environ, TZ="UTC", LC_ALL="C.UTF-8", LANG="C.UTF-8")
    settings.pop("LANGUAGE", None)
    settings.update(environment)
    return subprocess.run([TOOL, *words], env=settings, capture_output=True, timeout=60)


def answer(*words, status=0, **environment):
    """The text that the tool prints, and nothing on the other channel."""
    result = run(*words, **environment)
    equal(result.returncode, status, f"exit status of {words}")
    equal(result.stderr, b"", f"complaints of {words}")
    return result.stdout.decode()


def parsed(*words, status=0, **environment):
    text = answer(*words, status=status, **environment)
    try:
        return json.loads(text)
    except ValueError as error:
        check(False, f"{words} prints no JSON ({error}): {text!r}")
        return {}


def refuses(*words, saying=""):
    """The tool ends with 2, prints nothing, and says in two lines what was wrong."""
    result = run(*words)
    complaint = result.stderr.decode(errors="replace")
    equal(result.returncode, 2, f"exit status of {words}")
    equal(result.stdout, b"", f"output of {words}")
    check(saying in complaint, f"{words} says {complaint!r}, not {saying!r}")
    check(complaint.startswith("brindle") and "--help`.\n" in complaint,
          f"{words} does not lead to the help: {complaint!r}")


def explains(*words, saying):
    text = answer(*words)
    check(saying in text, f"the help of {words} does not say {saying!r}")
    check(max(map(len, text.splitlines())) <= 102, f"the help of {words} has long lines")


def finish():
    print(f"{failures} failed" if failures else "all well")
    sys.exit(1 if failures else 0)
