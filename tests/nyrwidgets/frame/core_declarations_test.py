#!/usr/bin/env python3
"""Core headers that declare what only the widgets library defines say so.

Usage: core_declarations_test.py LIBNYR240WIDGETS CORE_HEADER_FOLDER

A core-only program that calls such a member fails at link time, so every
such declaration in a core header carries the marker comment MARKER in the
comment block right above it. The members come from the widgets library's own
symbol table; a marker above a declaration the widgets library does not
define is an error too.
"""
import pathlib
import re
import subprocess
import sys

MARKER = "// Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets)."


def widget_defined(library):
    """(class, member) pairs of core classes' members defined in the library,
    and the nested classes it defines ("CNyrTime::CTimeFormatComboBox")."""
    out = subprocess.run(["nm", "-DC", "--defined-only", library], check=True, capture_output=True,
                         text=True).stdout
    members, nested = set(), set()
    for line in out.splitlines():
        parts = line.split(" ", 2)
        if len(parts) < 3 or parts[1] not in ("T", "W") or "(" not in parts[2]:
            continue
        path = parts[2].split("(", 1)[0].split("::")
        if len(path) == 2:
            members.add((path[0], path[1]))
        elif len(path) == 3:
            nested.add((path[0], path[1]))
    return members, nested


def class_bodies(header_text):
    """class name -> its body's lines (from the line after its opening to its closing "};")."""
    bodies = {}
    lines = header_text.splitlines()
    for i, line in enumerate(lines):
        m = re.match(r"class\s+(?:NYR_EXPORT\s+)?(\w+)\b[^;]*$", line)
        if not m:
            continue
        end = next((j for j in range(i + 1, len(lines)) if lines[j].startswith("};")), len(lines))
        bodies[m.group(1)] = lines[i + 1:end]
    return bodies


def comment_above(lines, index):
    block = []
    j = index - 1
    while j >= 0 and lines[j].strip().startswith("//"):
        block.append(lines[j].strip())
        j -= 1
    return block


def check(library, core_folder):
    members, nested = widget_defined(library)
    problems = []
    for header in sorted(pathlib.Path(core_folder).rglob("*.h")):
        for cls, body in class_bodies(header.read_text()).items():
            for i, line in enumerate(body):
                stripped = line.strip()
                if stripped.startswith("//"):
                    continue
                decl = re.match(r"class\s+(\w+);", stripped)
                call = re.search(r"(\w+)\(", stripped)
                name = decl.group(1) if decl else (call.group(1) if call else None)
                if not name:
                    continue
                defined = (cls, name) in (nested if decl else members)
                marked = MARKER in comment_above(body, i)
                where = f"{header}: {cls}::{name}"
                if defined and not marked:
                    problems.append(f"{where}: defined in the widgets library, but without the marker")
                elif marked and not defined:
                    problems.append(f"{where}: marked, but the widgets library does not define it")
    return problems


def main():
    library, core_folder = sys.argv[1], sys.argv[2]
    problems = check(library, core_folder)
    for p in problems:
        print(p)
    if problems:
        return 1
    print("every core declaration that the widgets library defines carries the marker")
    return 0


if __name__ == "__main__":
    sys.exit(main())
