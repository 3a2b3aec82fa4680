#!/usr/bin/env python3
"""Doxygen input filter: reads the headers' plain // comments as documentation.

The headers are commented in plain // lines. This filter hands Doxygen the same text with the
comment lines made into /// lines (a trailing // comment into ///<), the file's opening comment
into the file's description, and the characters that Doxygen would read as commands or markup
escaped outside `code spans`. Section rulers (// -- name ---) stay plain comments.
"""
import re
import sys

ESCAPES = {"\\": "\\\\", "@": "\\@", "<": "\\<", ">": "\\>", "&": "\\&", "#": "\\#",
           "%": "\\%", "$": "\\$"}


def escape(text):
    out = []
    for i, part in enumerate(text.split("`")):
        out.append(part if i % 2 else "".join(ESCAPES.get(c, c) for c in part))
    return "`".join(out)


def main(path):
    with open(path, encoding="utf-8") as f:
        lines = f.read().split("\n")
    out = []
    opening = True
    for line in lines:
        m = re.match(r"^(\s*)//(?!/)( ?)(.*)$", line)
        if m:
            indent, _, text = m.groups()
            if re.match(r"^-- .*-+\s*$", text):
                out.append(line)
                continue
            if opening:
                out.append("/// @file")
                opening = False
            out.append(indent + "/// " + escape(text))
            continue
        opening = False if line.strip() else opening
        # A trailing comment after code (not inside a string) documents that member.
        t = re.match(r'^([^"/]*[;{,)])\s*//(?!/)\s?(.*)$', line)
        if t:
            out.append(t.group(1) + " ///< " + escape(t.group(2)))
            continue
        out.append(line)
    sys.stdout.write("\n".join(out))


if __name__ == "__main__":
    main(sys.argv[1])
