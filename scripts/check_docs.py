#!/usr/bin/env python3
"""Checks that each relative link and each `path/of/a/file` in the documents leads somewhere."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINK = re.compile(r"\[[^\]]*\]\(([^)#\s]+)(?:#[^)]*)?\)")
FILE = re.compile(r"`((?:src|include|hosts|tests|benchmarks|fuzz|docs|scripts|cmake|data)/[\w./-]+)`")


def main():
    names = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard",
                            "*.md"], cwd=ROOT, stdout=subprocess.PIPE, check=True,
                           text=True).stdout.split()
    dead = []
    links = 0
    for name in names:
        path = ROOT / name
        if not path.is_file():
            continue
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            for target in LINK.findall(line):
                if re.match(r"[a-z]+:", target):
                    continue
                links += 1
                if not (path.parent / target).exists():
                    dead.append(f"{name}:{number}: dead link {target}")
            for target in FILE.findall(line):
                links += 1
                if not (ROOT / target).exists():
                    dead.append(f"{name}:{number}: no file {target}")
    for line in dead:
        print(line)
    print(f"check_docs: {links} links, {len(dead)} dead")
    return 1 if dead else 0


if __name__ == "__main__":
    sys.exit(main())
