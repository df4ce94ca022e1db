#!/usr/bin/env python3
"""The guides show code that is compiled and tested, and their links lead somewhere.

In a test or an example, code between `// [example: name]` and `// [end]` has a name. In a page, a
code block behind `<!-- example: name -->` shows exactly that code, and every ```cpp block is such a
one; a block that shows what not to do is a ```cpp wrong. Every named piece is shown by some page.
Links within the tree, headings included, resolve. `--update` copies the code into the pages."""
import pathlib
import re
import sys
import textwrap

arguments = [a for a in sys.argv[1:] if a != "--update"]
update = "--update" in sys.argv[1:]
root = pathlib.Path(arguments[0] if arguments else ".").resolve()
OPEN = re.compile(r"\s*// \[example: ([\w-]+)\]$")
CLOSE = re.compile(r"\s*// \[end\]$")
MARK = re.compile(r"<!-- example: ([\w-]+) -->$")
FENCE = re.compile(r"```(.*)$")
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")

found = []
pieces = {}
for folder in ("Tests/Documentation", "Examples"):
    for path in sorted((root / folder).glob("*.[hc]*")):
        name, lines = None, []
        for number, line in enumerate(path.read_text().splitlines(), 1):
            where = f"{path.relative_to(root)}:{number}"
            if opened := OPEN.match(line):
                if name or opened[1] in pieces:
                    found.append(f"{where}: example {opened[1]} begins a second time, or in another")
                name, lines = opened[1], []
            elif CLOSE.match(line):
                if not name:
                    found.append(f"{where}: the end of no example")
                pieces[name] = textwrap.dedent("\n".join(lines)).strip("\n").splitlines()
                name = None
            elif name:
                lines.append(line)
        if name:
            found.append(f"{path.relative_to(root)}: example {name} has no end")


def anchors(text):
    """The fragments that a page's headings answer to."""
    headings = re.findall(r"^#+ (.*)$", re.sub(r"```.*?```", "", text, flags=re.DOTALL), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", h).strip().lower().replace(" ", "-") for h in headings}


def check_links(page, number, line):
    for target in LINK.findall(re.sub(r"`[^`]*`", "", line)):
        if re.match(r"[a-z]+:", target):
            continue
        file, _, fragment = target.partition("#")
        other = (page.parent / file).resolve() if file else page
        where = f"{page.relative_to(root)}:{number}"
        if not other.exists():
            found.append(f"{where}: {target} leads nowhere")
        elif fragment and other.suffix == ".md" and fragment not in anchors(other.read_text()):
            found.append(f"{where}: {target}: there is no such heading")


used = set()
blocks = 0
pages = [p for p in sorted(root.rglob("*.md"))
         if not re.match(r"(\.|build/|Testing/)", str(p.relative_to(root)))]
for page in pages:
    lines = page.read_text().splitlines()
    result = []
    mark = None
    i = 0
    while i < len(lines):
        line = lines[i]
        where = f"{page.relative_to(root)}:{i + 1}"
        result.append(line)
        i += 1
        if marked := MARK.match(line):
            mark = marked[1]
            continue
        fence = FENCE.match(line)
        if not fence:
            if line.strip() and mark:
                found.append(f"{where}: no code block behind the mark of example {mark}")
                mark = None
            check_links(page, i, line)
            continue
        try:
            end = lines.index("```", i)
        except ValueError:
            found.append(f"{where}: a code block without an end")
            break
        code = lines[i:end]
        i = end + 1
        blocks += 1
        if mark:
            used.add(mark)
            if mark not in pieces:
                found.append(f"{where}: there is no example {mark}")
            elif update:
                code = pieces[mark]
            elif code != pieces[mark]:
                found.append(f"{where}: differs from example {mark}; --update copies it")
        elif fence[1] == "cpp":
            found.append(f"{where}: a cpp block that no example stands behind")
        result += [*code, "```"]
        mark = None
    if update and result != lines:
        page.write_text("\n".join(result) + "\n")

found += [f"example {name} is shown by no page" for name in pieces if name not in used]
print("\n".join(found) or f"{len(pages)} pages, {blocks} code blocks, {len(pieces)} tested examples")
sys.exit(bool(found))
