#!/usr/bin/env python3
"""Tests of the command gri on NITF files of any size, written here after MIL-STD-2500C.

    gri_large_test.py GRI [TEST...]

Set GRI_SANITIZED when GRI is built with a sanitizer, whose memory is not the command's.
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

GRI = ""
MIB = 1 << 20
SECURITY = " " * 166


def image_subheader(columns, rows, blocks_across, blocks_down, block_columns, block_rows):
    """An image subheader of one 8-bit band in blocks (table A-3)."""
    return "".join([
        "IM", "LARGE".ljust(10), "20200831000000", " " * 17, " " * 80, "U", SECURITY, "0",
        " " * 42, f"{rows:08d}", f"{columns:08d}", "INT", "MONO    ", "VIS     ", "08", "R",
        " ",  # ICORDS: no position
        "0", "NC", "1", "M ", " " * 6, "N", " " * 3, "0", "0", "B", f"{blocks_across:04d}",
        f"{blocks_down:04d}", f"{block_columns:04d}", f"{block_rows:04d}", "08", "001", "000",
        "0" * 10, "1.0 ", "00000", "00000"])


def file_header(subheader_bytes, image_bytes):
    """A file header for one image (table A-1)."""
    before = "".join([
        "NITF02.10", "03", "BF01", "gri".ljust(10), "20200831000000", " " * 80, "U", SECURITY,
        "00000", "00000", "0", "\0\0\0", " " * 24, " " * 18])
    after = "".join(["001", f"{subheader_bytes:06d}", f"{image_bytes:010d}", "000" * 5, "00000",
                     "00000"])
    header_bytes = len(before) + 12 + 6 + len(after)
    file_bytes = header_bytes + subheader_bytes + image_bytes
    return f"{before}{file_bytes:012d}{header_bytes:06d}{after}"


class SparsePicture:
    """A NITF file of one band in blocks that takes no room on disk where its samples are zero."""

    def __init__(self, path, columns, rows, block):
        across, down = -(-columns // block), -(-rows // block)
        subheader = image_subheader(columns, rows, across, down, block, block)
        image_bytes = across * down * block * block
        head = (file_header(len(subheader), image_bytes) + subheader).encode("latin-1")
        self.path, self.block, self.across, self.start = path, block, across, len(head)
        path.write_bytes(head)
        os.truncate(path, len(head) + image_bytes)

    def set_sample(self, column, row, value):
        block = row // self.block * self.across + column // self.block
        place = (block * self.block + row % self.block) * self.block + column % self.block
        with self.path.open("r+b") as file:
            file.seek(self.start + place)
            file.write(bytes([value]))


class LargeTest(unittest.TestCase):
    def setUp(self):
        self._holder = tempfile.TemporaryDirectory(prefix="gri_test_")
        self.folder = pathlib.Path(self._holder.name)

    def tearDown(self):
        self._holder.cleanup()

    def convert(self, *arguments):
        """Runs a conversion that must succeed; its peak of memory in MiB."""
        process = subprocess.Popen([GRI, "convert", *map(str, arguments)])
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 0)
        return usage.ru_maxrss * 1024 / MIB

    def assert_memory(self, peak, most):
        if "GRI_SANITIZED" not in os.environ:
            self.assertLess(peak, most)

    def test_a_picture_of_40000_by_40000_converts_within_160_mib(self):
        picture = SparsePicture(self.folder / "large.ntf", 40000, 40000, 1024)
        marks = {(0, 0): 1, (39999, 0): 2, (1023, 1024): 3, (20000, 25000): 4, (39999, 39999): 5}
        for (column, row), value in marks.items():
            picture.set_sample(column, row, value)
        raw = self.folder / "large.raw"
        self.assert_memory(self.convert(picture.path, raw), 160)
        self.assertEqual(raw.stat().st_size, 40000 * 40000)
        with raw.open("rb") as file:
            for (column, row), value in marks.items():
                file.seek(row * 40000 + column)
                self.assertEqual(file.read(1)[0], value, (column, row))

    def test_a_window_beyond_4_gib_of_a_file_is_read_there(self):
        picture = SparsePicture(self.folder / "huge.ntf", 90000, 90000, 1000)
        self.assertGreater(picture.path.stat().st_size, 1 << 32)
        picture.set_sample(89990, 89995, 77)
        raw = self.folder / "corner.raw"
        self.assert_memory(self.convert("--window", 89980, 89990, 20, 10, picture.path, raw), 160)
        samples = raw.read_bytes()
        self.assertEqual(samples[5 * 20 + 10], 77)
        self.assertEqual(sum(samples), 77)

    def test_info_of_a_large_picture_is_quick_and_states_no_position(self):
        picture = SparsePicture(self.folder / "huge.ntf", 90000, 90000, 1000)
        result = subprocess.run([GRI, "info", "--json", str(picture.path)], capture_output=True,
                                check=True, timeout=60)
        info = json.loads(result.stdout)
        self.assertEqual(info["size"], [90000, 90000])
        self.assertEqual(info["colorSpace"], "gray")
        self.assertIsNone(info["position"])


if __name__ == "__main__":
    GRI = sys.argv.pop(1)
    unittest.main()
