#!/usr/bin/env python3
"""Checks that includes between folders run one way, and that hosts use the public header alone.

Each folder of src/ may include from itself and from the folders that stand before its rank;
folders of one rank don't see each other. Prints each include that breaks a rule and fails.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# Utilities, pipeline, metadata, kernels, formats, C interface: lower sees nothing above itself.
RANKS = [
    ["gr_lib_utils"],
    ["image"],
    ["metadata"],
    ["filters", "gr_lib_tg3kernel", "gr_lib_tg2kernel", "gr_lib_j2k"],
    ["jpeg2000", "tesra"],
    ["nitf"],
    ["gri_rdk_cdll"],
]
RANK = {folder: rank for rank, folders in enumerate(RANKS) for folder in folders}
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]')
PUBLIC_HEADER = "gri_rdk_cdll.h"


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), match.group(2)


def sources(folder):
    return sorted(p for p in (ROOT / folder).rglob("*") if p.suffix in (".h", ".cpp", ".c"))


def main():
    errors = []
    checked = 0
    for path in sources("src"):
        folder = path.relative_to(ROOT / "src").parts[0]
        if folder not in RANK:
            errors.append(f"{path.relative_to(ROOT)}: folder '{folder}' has no rank")
            continue
        is_test = path.stem.endswith(("_test", "_bench"))
        for number, quote, name in includes(path):
            checked += 1
            target = name.split("/")[0]
            where = f"{path.relative_to(ROOT)}:{number}"
            if quote == '"' and name == PUBLIC_HEADER:
                if folder != "gri_rdk_cdll":
                    errors.append(f"{where}: only gri_rdk_cdll/ includes the public header")
            elif target == "tests":
                if not is_test:
                    errors.append(f"{where}: shipped code includes '{name}'")
            elif target in RANK:
                if target != folder and RANK[target] >= RANK[folder]:
                    errors.append(f"{where}: {folder}/ must not include '{name}'")
            elif quote == '"':
                errors.append(f"{where}: '{name}' isn't named from the root of src/")
    for path in sources("hosts"):
        for number, quote, name in includes(path):
            checked += 1
            if name.split("/")[0] in RANK:
                errors.append(
                    f"{path.relative_to(ROOT)}:{number}: hosts use the public header alone,"
                    f" not '{name}'")
    for path in sources("include"):
        for number, quote, name in includes(path):
            checked += 1
            if quote == '"':
                errors.append(f"{path.relative_to(ROOT)}:{number}: the public header stands alone")
    for error in errors:
        print(error)
    print(f"check_includes: {checked} includes, {len(errors)} errors")
    return 1 if errors or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
