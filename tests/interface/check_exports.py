#!/usr/bin/env python3
"""Holds what the shared library exports against the list of its 41 functions.

    check_exports.py LIBRARY HEADER LIST

The public header must declare the same functions, and include nothing but standard C headers.
"""
import pathlib
import re
import subprocess
import sys

VERSION = b"SDK Version 7.0.0.2181.HEAD"
STANDARD_C_HEADERS = {"stddef.h", "stdint.h"}


def exported(library):
    lines = subprocess.run(["nm", "-D", "--defined-only", library], stdout=subprocess.PIPE,
                           check=True, text=True).stdout.splitlines()
    return {line.split()[-1].split("@")[0] for line in lines}


def declared(text):
    without_directives = re.sub(r"^#.*$", "", text, flags=re.M)
    return re.findall(r"GRI_EXPORT\s[\w\s*]*?(\w+)\s*\(", without_directives)


def difference(what, actual, expected):
    errors = [f"{what}: {name} is missing" for name in sorted(expected - actual)]
    return errors + [f"{what}: {name} is too much" for name in sorted(actual - expected)]


def main():
    library, header, listed = sys.argv[1:]
    text = re.sub(r"/\*.*?\*/", "", pathlib.Path(header).read_text(encoding="utf-8"), flags=re.S)
    expected = set(pathlib.Path(listed).read_text(encoding="utf-8").split())
    functions = declared(text)
    errors = difference("library", exported(library), expected)
    errors += difference("header", set(functions), expected)
    if len(expected) != 41 or len(functions) != 41:
        errors.append(f"41 functions: {len(expected)} listed, {len(functions)} declared")
    for name in re.findall(r"#\s*include\s*(\S+)", text):
        if name.strip("<>") not in STANDARD_C_HEADERS:
            errors.append(f"header: includes {name}")
    if VERSION not in pathlib.Path(library).read_bytes():
        errors.append(f"library: doesn't hold the text {VERSION!r}")
    print("\n".join(errors) or "41 functions, and nothing else")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
