#!/usr/bin/env python3
"""Times decoding of Tesra pictures through the C interface against opj_decompress.

    tesra_decode_bench.py --host build/release/benchmarks/bench_decode \\
        --pair LOSSLESS.tsra LOSSLESS.jp2 --pair ONE_BPS.tsra ONE_BPS.jp2 [--rounds 9]

Each pair is one picture in both formats, at the same size on disk. What is measured is CPU time
(user and system) of whole processes, which write their samples to a tmpfs; they run in turn,
pinned to one core, on one thread. Of the Tesra file 16 windows of 1024 x 1024 at places of which
each round has others, decoded by one process, and an eighth of the size are timed too, without the
time that opening alone takes. Figures are medians; a ratio is the median of the ratios of each
round.
"""
import argparse
import os
import random
import shutil
import statistics
import subprocess
import tempfile

NUM_WINDOWS = 16
OPENING = ["1", "0", "0", "1", "1"]  # a window of one pixel
ENVIRONMENT = dict(os.environ, OPJ_NUM_THREADS="0")  # no worker thread beside the main one


def run(command, cpu):
    """CPU seconds and peak MiB of a process."""
    process = subprocess.Popen(
        command, env=ENVIRONMENT, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL, preexec_fn=lambda: os.sched_setaffinity(0, {cpu}))
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        raise SystemExit(f"{' '.join(command)} failed")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def size_of(picture):
    """Columns and rows: from the header of a TG2 file, or of a TG3 file with one image from the
    header packet behind the preamble."""
    with open(picture, "rb") as file:
        head = file.read(64)
    if head[4] < 3:
        return int.from_bytes(head[15:19], "big"), int.from_bytes(head[19:23], "big")
    layout = head[9]
    widths = [0, 1, 2, 4]
    skip = 2 + widths[layout >> 6] + widths[layout >> 4 & 3]
    skip += (4 if layout & 8 else 0) + (4 if layout & 4 else 0) + (2 if head[8] & 0x40 else 0)
    skip += 1 << (layout & 3)
    body = head[8 + skip:]
    return int.from_bytes(body[8:12], "big"), int.from_bytes(body[12:16], "big")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--host", required=True)
    parser.add_argument("--pair", nargs=2, action="append", required=True)
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--cpu", type=int, default=0)
    parser.add_argument("--scratch", default="/dev/shm")
    options = parser.parse_args()

    scratch = tempfile.mkdtemp(dir=options.scratch)
    try:
        for picture, peer in options.pair:
            width, height = size_of(picture)
            raw = os.path.join(scratch, "out.raw")
            tif = os.path.join(scratch, "out.tif")
            places = random.Random(1)  # the same ones in each run
            commands = {
                "open": [options.host, picture, raw, *OPENING],
                "full": [options.host, picture, raw],
                "windows": [],  # below
                "eighth": [options.host, picture, raw, "0.125"],
                "opj": ["opj_decompress", "-i", peer, "-o", tif],
            }
            cpu = {name: [] for name in commands}
            peak = dict.fromkeys(commands, 0.0)
            for turn in range(options.rounds + 1):
                some = [[str(places.randrange(size - 1024)) for size in (width, height)]
                        for _ in range(NUM_WINDOWS)]
                commands["windows"] = [options.host, picture, raw, "1", *some[0], "1024", "1024",
                                       *sum(some[1:], [])]
                for name, command in commands.items():
                    seconds, mib = run(command, options.cpu)
                    if turn > 0:  # the first one warms up
                        cpu[name].append(seconds)
                    peak[name] = max(peak[name], mib)
            median = {name: statistics.median(values) for name, values in cpu.items()}

            def net(name):
                return [value - start for value, start in zip(cpu[name], cpu["open"])]

            share = 1024 * 1024 / (width * height)
            ratio = statistics.median(p / f for p, f in zip(cpu["opj"], cpu["full"]))
            windows = statistics.median(
                w / (f * share * NUM_WINDOWS) for w, f in zip(net("windows"), net("full")))
            eighths = statistics.median(f / e for e, f in zip(net("eighth"), net("full")))
            print(f"{os.path.basename(picture)}: {os.path.getsize(picture) / 1e6:.1f} MB, "
                  f"peer {os.path.getsize(peer) / 1e6:.1f} MB")
            for name, seconds in median.items():
                print(f"  {name:8} {seconds:7.3f} s cpu  {peak[name]:6.0f} MiB peak")
            print(f"  opj_decompress takes {ratio:.2f} times as long; "
                  f"a window takes {windows:.2f} of its share, "
                  f"the eighth 1/{eighths:.1f} of the whole", flush=True)
    finally:
        shutil.rmtree(scratch, ignore_errors=True)


if __name__ == "__main__":
    main()
