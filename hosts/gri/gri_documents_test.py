#!/usr/bin/env python3
"""Holds the manual page and the completions of the command gri against the command itself.

    gri_documents_test.py GRI [TEST...]
"""
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

GRI = ""
HERE = pathlib.Path(__file__).resolve().parent
DATA = HERE.parent.parent / "data"
COMMANDS = ("info", "convert", "status")


def help_of(*arguments):
    return subprocess.run([GRI, *arguments, "--help"], capture_output=True, check=True,
                          text=True).stdout


def options_of(command):
    """The long options that `gri COMMAND --help` tells of, outside of its examples."""
    text = help_of(command).split("Examples:")[0]
    return set(re.findall(r"(?:^|[\s,])(--[a-z-]+)", text))


def manual():
    """The text of the manual page without its commands."""
    text = (HERE / "gri.1").read_text(encoding="utf-8").replace(r"\-", "-")
    return re.sub(r"\\f[BIRP]|\\\((?:dq|aq)", lambda m: "'" if "q" in m[0] else "", text)


class DocumentsTest(unittest.TestCase):
    def test_each_option_is_in_the_manual_and_in_the_completions(self):
        documents = {name: (HERE / "completion" / name).read_text(encoding="utf-8")
                     for name in ("gri.bash", "_gri")}
        documents["gri.1"] = manual()
        for command in COMMANDS:
            for option in options_of(command):
                for name, text in documents.items():
                    if option == "--help" and name == "gri.1":
                        continue
                    word = re.escape(option) + r"(?![a-z-])|" + re.escape("{" + option)
                    self.assertRegex(text, word, f"{name}, {command} {option}")

    def test_the_completions_know_no_other_options(self):
        known = set().union(*(options_of(command) for command in COMMANDS), {"--version"})
        for name in ("gri.bash", "_gri"):
            text = (HERE / "completion" / name).read_text(encoding="utf-8")
            text = re.sub(r"#.*|compgen -W '[A-Z0-9][^']*'|[a-z]+ -- ", "", text)
            self.assertEqual(set(re.findall(r"--[a-z]+(?:-[a-z]+)*", text)) - known, set(), name)

    def test_the_completions_are_valid_for_their_shells(self):
        for shell, name in (("bash", "gri.bash"), ("zsh", "_gri")):
            if shutil.which(shell):
                subprocess.run([shell, "-n", str(HERE / "completion" / name)], check=True)

    def test_each_example_works_as_it_is_printed(self):
        shown = "\n".join(re.findall(r"^(?:  |\.B )((?:gri|cat) .*)$", "\n".join(
            [help_of(), *map(help_of, COMMANDS), manual()]), re.MULTILINE))
        examples = {re.split(r"  +", line)[0].strip() for line in shown.splitlines()}
        # The one that is longer than its column.
        examples = {re.sub(r"(b\.tif) a box.*", r"\1", line) for line in examples
                    if not re.match(r"gri (\[|--version|(info|convert|status)$)", line)}
        self.assertGreater(len(examples), 12, examples)
        for example in sorted(examples):
            if "jq " in example and not shutil.which("jq"):
                continue
            with self.subTest(example), tempfile.TemporaryDirectory(prefix="gri_test_") as folder:
                for name in ("scene", "a"):
                    shutil.copy(DATA / "sample.ntf", pathlib.Path(folder) / f"{name}.ntf")
                    shutil.copy(DATA / "sample.nfw", pathlib.Path(folder) / f"{name}.nfw")
                shutil.copy(DATA / "sample.tsra", pathlib.Path(folder) / "locked.tsr")
                (pathlib.Path(folder) / "secret.txt").write_text("sesame\n", encoding="utf-8")
                script = f"gri() {{ {shlex.quote(GRI)} \"$@\"; }}\nset -e -o pipefail\n{example}"
                result = subprocess.run(["bash", "-c", script], cwd=folder, capture_output=True,
                                        env={**os.environ}, check=False, timeout=120)
                self.assertEqual((result.returncode, result.stderr), (0, b""))


if __name__ == "__main__":
    GRI = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main()
