#!/usr/bin/env python3
"""Checks what no compiler checks: lengths of files, one name per file, raw memory, own header first.

Prints each finding as FILE:LINE: text and fails when there is one.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LONGEST = 800  # lines; files that are one table may be longer
TABLES = re.compile(r"_tables?\.(cpp|h)$|gr_statusTable\.cpp$")

# Memory is owned by types; gr_memory.h is where it comes from.
RAW_MEMORY = re.compile(
    r"\b(malloc|calloc|realloc|free|strcpy|strcat|sprintf|vsprintf|alloca|gets)\s*\("
    r"|\bnew\s+(\(std::nothrow\)\s*)?[A-Za-z_:]+"
    r"|(?<![=\w])\s\bdelete\b(\[\])?\s+[A-Za-z_(*]")
MAY_OWN_RAW = {
    "src/gr_lib_utils/include/gr_memory.h",
}
COMMENT = re.compile(r"//.*$|/\*.*?\*/")
STRING = re.compile(r'"(\\.|[^"\\])*"')


def tracked():
    names = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
        stdout=subprocess.PIPE, check=True, text=True).stdout.split("\n")
    return [n for n in names if n and (ROOT / n).is_file()]


def code_lines(text):
    """The lines with comments and strings blanked."""
    inside = False
    for number, line in enumerate(text.splitlines(), 1):
        if inside:
            if "*/" not in line:
                continue
            line = line.split("*/", 1)[1]
            inside = False
        line = COMMENT.sub("", STRING.sub('""', line))
        if "/*" in line:
            line = line.split("/*", 1)[0]
            inside = True
        yield number, line


def main():
    findings = []
    names = [n for n in tracked() if n.endswith((".h", ".cpp", ".c"))]
    seen = {}
    for name in names:
        text = (ROOT / name).read_text(encoding="utf-8")
        lines = text.splitlines()
        if len(lines) > LONGEST and not TABLES.search(name):
            findings.append(f"{name}:{len(lines)}: longer than {LONGEST} lines")
        base = name.rsplit("/", 1)[-1]
        if base in seen and base != "main.cpp":
            findings.append(f"{name}:1: {seen[base]} has the same name")
        seen[base] = name
        if name.endswith(".h") and name.startswith(("src/", "hosts/", "tests/")):
            if "#pragma once" not in text and "foreach_target" not in text:
                findings.append(f"{name}:1: no #pragma once")
        if name.startswith("src/") and name not in MAY_OWN_RAW and not re.search(
                r"_(test|bench)\.cpp$", name):
            for number, line in code_lines(text):
                if RAW_MEMORY.search(line):
                    findings.append(f"{name}:{number}: raw memory or an unbounded call")
        if name.startswith("src/") and name.endswith(".cpp"):
            own = re.sub(r"_(scalar|simd)?\.cpp$|\.cpp$", "", base) + ".h"
            own_scalar = re.sub(r"_(scalar|simd)\.cpp$", ".h", base)
            includes = re.findall(r'^#include "([^"]+)"', text, re.M)
            for header in {own, own_scalar}:
                named = [i for i in includes if i.rsplit("/", 1)[-1] == header]
                if named and includes[0] != named[0] and "foreach_target" not in text:
                    findings.append(f"{name}:1: its own header isn't included first")
    for finding in findings:
        print(finding)
    print(f"check_sources: {len(names)} files, {len(findings)} findings")
    return 1 if findings or not names else 0


if __name__ == "__main__":
    sys.exit(main())
