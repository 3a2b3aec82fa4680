#!/usr/bin/env python3
"""Checks that every code block of docs/guide.md that names an example file is that file.

A block is marked by a line `<!-- example: examples/NAME.cpp -->` right before its ```cpp fence.
With --write the blocks are rewritten from the files instead (then run the check again).
"""
import pathlib
import re
import sys

DOCS = pathlib.Path(__file__).resolve().parent
MARK = re.compile(r"<!-- example: (\S+) -->\n```cpp\n(.*?)```\n", re.S)


def main():
    guide = DOCS / "guide.md"
    text = guide.read_text(encoding="utf-8")
    bad = []
    seen = set()

    def replace(m):
        name, block = m.group(1), m.group(2)
        seen.add(name)
        wanted = (DOCS / name).read_text(encoding="utf-8")
        if block != wanted:
            bad.append(name)
        return "<!-- example: %s -->\n```cpp\n%s```\n" % (name, wanted)

    new = MARK.sub(replace, text)
    files = {"examples/" + p.name for p in (DOCS / "examples").glob("*.cpp")}
    missing = sorted(files - seen)
    if "--write" in sys.argv:
        guide.write_text(new, encoding="utf-8")
        return 0
    for name in bad:
        print("guide.md: the block of %s differs from the file" % name)
    for name in missing:
        print("guide.md: %s is not shown in the guide" % name)
    return 1 if bad or missing else 0


if __name__ == "__main__":
    sys.exit(main())
