#!/usr/bin/env python3
"""Tests of the command gri as a process: pipes, terminals, signals and memory.

    gri_process_test.py GRI [TEST...]

GRI is the command over the fake library, whose pictures are files with a few lines of text. Set
GRI_SANITIZED when it is built with a sanitizer, whose memory is not the command's.
"""
import os
import pathlib
import pty
import resource
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

GRI = ""
MIB = 1 << 20


def write_picture(path, **settings):
    """A synthetic picture for the fake library, see tests/support/fake_gri.h."""
    picture = dict(width=100, height=80, bands=3, colorSpace=0x0301, dataType=1,
                   minMagnification=0.125, maxMagnification=1, position="", openStatus=0,
                   damagedFrom=0, damagedTo=0, damageStatus=2005, throws=0, isLocked=0, wkt="",
                   noData="", noDataType=0, bits=0, hasOddRecords=0, tiles=0, statesPosition=0)
    picture.update(settings)
    lines = "".join(f"{key} {value}\n" for key, value in picture.items())
    path.write_bytes(b"tsra\3\0\0\0\n" + lines.encode())


def run_on_terminal(arguments, env=None):
    """Runs the command with a terminal as standard output and error; its exit code and output."""
    main, child = pty.openpty()
    process = subprocess.Popen([GRI, *arguments], stdout=child, stderr=child,
                               stdin=subprocess.DEVNULL, env={**os.environ, **(env or {})})
    os.close(child)
    output = b""
    while True:
        try:
            chunk = os.read(main, 65536)
        except OSError:  # the other end is closed
            break
        if not chunk:
            break
        output += chunk
    os.close(main)
    return process.wait(), output.decode()


class Session:
    """The command in a session of its own, with a terminal that it can ask on."""

    def __init__(self, *arguments, stdout=None):
        self._main, self.terminal = pty.openpty()

        def take_terminal():
            os.setsid()
            os.close(os.open(os.ttyname(self.terminal), os.O_RDWR))  # the first one is taken

        self.process = subprocess.Popen([GRI, *map(str, arguments)], stdin=subprocess.DEVNULL,
                                        stdout=stdout or subprocess.DEVNULL,
                                        stderr=subprocess.PIPE, preexec_fn=take_terminal)
        self.shown = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.process.stderr.close()
        os.close(self._main)
        os.close(self.terminal)

    def wait_for(self, text, seconds=60):
        """Reads what the terminal shows until `text` comes."""
        seen = b""
        while text not in seen:
            ready, _, _ = select.select([self._main], [], [], seconds)
            if not ready:
                raise AssertionError(f"{text} doesn't come, only {seen}")
            seen += os.read(self._main, 1000)
        self.shown += seen

    def type(self, text):
        os.write(self._main, text)

    def echoes(self):
        return bool(termios.tcgetattr(self.terminal)[3] & termios.ECHO)

    def end(self):
        """The exit code and the errors, when the command is done."""
        errors = self.process.communicate(timeout=60)[1]
        ready, _, _ = select.select([self._main], [], [], 0)
        if ready:
            self.shown += os.read(self._main, 10000)
        return self.process.returncode, errors


class ProcessTest(unittest.TestCase):
    def setUp(self):
        self._holder = tempfile.TemporaryDirectory(prefix="gri_test_")
        self.folder = pathlib.Path(self._holder.name)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir()
        self.out = self.folder / "out"
        self.out.mkdir()
        self.env = {**os.environ, "TMPDIR": str(self.temporary)}
        self.small = self.folder / "small.tsr"
        write_picture(self.small)
        self.large = self.folder / "large.tsr"
        write_picture(self.large, width=40000, height=40000, bands=1, colorSpace=0x0101)

    def tearDown(self):
        self.assertEqual(list(self.temporary.iterdir()), [], "temporary files are left")
        self._holder.cleanup()

    def run_gri(self, *arguments, **options):
        return subprocess.run([GRI, *map(str, arguments)], capture_output=True, env=self.env,
                              check=False, **options)

    def test_standard_input_and_output_carry_the_same_bytes_as_files(self):
        for form in ("raw", "PNG", "GTiff", "COG"):
            with self.subTest(form):
                file = self.out / form
                self.assertEqual(self.run_gri("convert", "-f", form, self.small, file).returncode, 0)
                piped = self.run_gri("convert", "-f", form, "-", "-", input=self.small.read_bytes())
                self.assertEqual(piped.returncode, 0, piped.stderr)
                self.assertEqual(piped.stdout, file.read_bytes())
                with self.small.open("rb") as redirected:
                    read = self.run_gri("convert", "-f", form, "-", "-", stdin=redirected)
                self.assertEqual(read.stdout, file.read_bytes())

    def test_info_reads_standard_input(self):
        result = self.run_gri("info", "-", input=self.small.read_bytes())
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(b"100 x 80 pixels", result.stdout)

    def test_nothing_but_the_picture_goes_to_standard_output(self):
        result = self.run_gri("convert", "-f", "raw", self.small, "-")
        self.assertEqual(len(result.stdout), 100 * 80 * 3)
        self.assertEqual(result.stderr, b"")

    def test_a_reader_that_goes_away_is_a_failed_write(self):
        read_end, write_end = os.pipe()
        process = subprocess.Popen([GRI, "convert", "-f", "raw", str(self.small), "-"],
                                   stdout=write_end, stderr=subprocess.PIPE, env=self.env)
        os.close(write_end)
        os.close(read_end)
        _, errors = process.communicate()
        self.assertEqual(process.returncode, 1)
        self.assertEqual(errors, b"gri: -: Broken pipe [50005]\n")

    def test_output_that_gets_lost_is_a_failure(self):
        for arguments in (["info", self.small], ["info", "--json", self.small], ["status", "50015"],
                          ["--help"], ["--version"], ["convert", "-f", "raw", self.small, "-"]):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                result = subprocess.run([GRI, *map(str, arguments)], stdout=full, env=self.env,
                                        stderr=subprocess.PIPE, check=False)
                self.assertEqual(result.returncode, 1)
                self.assertEqual(result.stderr, b"gri: -: No space left on device [50005]\n")

    def test_closed_descriptors_are_taken_by_no_file(self):
        closed = subprocess.run(["sh", "-c", '"$0" convert -f raw "$1" "$2" <&- >&- 2>&-', GRI,
                                 str(self.small), str(self.out / "a.raw")], check=False)
        self.assertEqual(closed.returncode, 0)
        self.assertEqual((self.out / "a.raw").read_bytes(), self.open_bytes())
        for script in ('"$0" info "$1" >&-', '"$0" convert -f raw "$1" - >&-',
                       '"$0" info - <&-', '"$0" convert -f raw - "$2" <&-'):
            with self.subTest(script):
                result = subprocess.run(["sh", "-c", script, GRI, str(self.small),
                                         str(self.out / "b.raw")], capture_output=True, check=False)
                self.assertEqual(result.returncode, 1)
                self.assertIn(b"gri: -: Bad file descriptor [", result.stderr)

    def test_a_named_pipe_is_read_to_its_end(self):
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        for command in (["info", "--json", str(pipe)],
                        ["convert", "-f", "raw", str(pipe), str(self.out / "a.raw")]):
            with self.subTest(command):
                process = subprocess.Popen([GRI, *command], stdout=subprocess.DEVNULL, env=self.env)
                with pipe.open("wb") as end:
                    end.write(self.small.read_bytes())
                self.assertEqual(process.wait(60), 0)
        self.assertEqual((self.out / "a.raw").read_bytes(), self.open_bytes())

    def test_what_is_no_picture_is_not_gathered_to_its_end(self):
        with open("/dev/zero", "rb") as zeros:
            result = self.run_gri("info", "-", stdin=zeros, timeout=60)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr,
                         b"gri: -: not a Tesra, NITF or JPEG 2000 picture [50002]\n")

    def test_output_never_replaces_standard_input(self):
        before = self.small.read_bytes()
        with self.small.open("rb") as source:
            result = self.run_gri("convert", "--force", "-f", "raw", "-", self.small, stdin=source)
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"input and output are the same file", result.stderr)
        self.assertEqual(self.small.read_bytes(), before)

    def test_a_format_of_several_files_goes_into_no_pipe(self):
        result = self.run_gri("convert", "-f", "ENVI", self.small, "-")
        self.assertEqual((result.returncode, result.stdout), (1, b""))
        self.assertIn(b"this format writes several files", result.stderr)
        self.assertEqual(self.run_gri("convert", "-f", "ENVI", self.small,
                                      self.out / "a.img").returncode, 0)

    def test_labels_are_bold_on_a_terminal_alone(self):
        bold = "\x1b[1mSize\x1b[0m"
        self.assertIn(bold, run_on_terminal(["info", str(self.small)], {"TERM": "xterm",
                                                                         "NO_COLOR": ""})[1])
        for env in ({"TERM": "xterm", "NO_COLOR": "1"}, {"TERM": "dumb", "NO_COLOR": ""}):
            self.assertNotIn("\x1b", run_on_terminal(["info", str(self.small)], env)[1])
        self.assertNotIn(b"\x1b", self.run_gri("info", self.small).stdout)

    def test_json_is_never_bold(self):
        code, output = run_on_terminal(["info", "--json", str(self.small)], {"TERM": "xterm"})
        self.assertEqual(code, 0)
        self.assertNotIn("\x1b", output)

    def test_a_picture_is_not_written_to_a_terminal(self):
        code, output = run_on_terminal(["convert", "-f", "PNG", str(self.small), "-"])
        self.assertEqual(code, 2)
        self.assertIn("nothing for a terminal", output)

    def test_progress_is_shown_on_a_terminal_alone(self):
        slow = [str(self.large), "--window", "0", "0", "20000", "5000"]  # deflating takes a while
        code, output = run_on_terminal(["convert", *slow, str(self.out / "a.png")])
        self.assertEqual(code, 0)
        self.assertRegex(output, r"\d+%  [0-9.]+ Mpixel/s")
        self.assertTrue(output.endswith("\r\x1b[K"), "the line is not wiped")
        code, output = run_on_terminal(["convert", "--quiet", *slow, str(self.out / "b.png")])
        self.assertEqual((code, output), (0, ""))
        quiet = self.run_gri("convert", *slow, self.out / "c.png")
        self.assertEqual((quiet.returncode, quiet.stderr), (0, b""))

    def interrupt(self, number, *arguments):
        """Sends a signal when the command has begun to write; its exit code."""
        process = subprocess.Popen([GRI, "convert", *map(str, arguments)], env=self.env,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        deadline = time.monotonic() + 30
        while not any(self.out.iterdir()) and time.monotonic() < deadline:
            time.sleep(0.01)
        process.send_signal(number)
        _, errors = process.communicate(timeout=60)
        self.assertEqual(errors, b"")
        return process.returncode

    def test_an_interrupted_conversion_leaves_nothing(self):
        for form in ("raw", "GTiff", "PNG", "COG"):
            with self.subTest(form):
                code = self.interrupt(signal.SIGINT, "-f", form, self.large, self.out / "picture")
                self.assertEqual(code, 130)
                self.assertEqual(list(self.out.iterdir()), [])

    def test_two_signals_at_once_leave_nothing_either(self):
        process = subprocess.Popen([GRI, "convert", str(self.large), str(self.out / "a.raw")],
                                   env=self.env, stderr=subprocess.PIPE)
        while not any(self.out.glob(".gri-*/*")):
            time.sleep(0.01)
        process.send_signal(signal.SIGSTOP)  # so that both wait
        process.send_signal(signal.SIGINT)
        process.send_signal(signal.SIGTERM)
        process.send_signal(signal.SIGCONT)
        self.assertEqual(process.communicate(timeout=60)[1], b"")
        self.assertIn(process.returncode, (130, 143))
        self.assertEqual(list(self.out.iterdir()), [])

    def test_other_signals_to_end_are_told_by_their_numbers(self):
        self.assertEqual(self.interrupt(signal.SIGTERM, self.large, self.out / "a.raw"), 143)
        self.assertEqual(list(self.out.iterdir()), [])

    def test_an_interrupt_keeps_the_file_that_was_there(self):
        old = self.out / "a.raw"
        old.write_bytes(b"old")
        process = subprocess.Popen([GRI, "convert", "--force", str(self.large), str(old)])
        while len(list(self.out.iterdir())) < 2:
            time.sleep(0.01)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(60), 130)
        self.assertEqual(old.read_bytes(), b"old")
        self.assertEqual(len(list(self.out.iterdir())), 1)

    def test_an_interrupt_ends_the_wait_for_standard_input(self):
        process = subprocess.Popen([GRI, "convert", "-f", "raw", "-", "-"], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=self.env)
        time.sleep(1)
        process.send_signal(signal.SIGINT)
        ready, _, _ = select.select([process.stdout], [], [], 30)
        self.assertTrue(ready, "it still waits")
        process.stdin.close()
        self.assertEqual(process.wait(60), 130)
        process.stdout.close()
        process.stderr.close()

    def lock(self):
        """A locked picture; the password is "secret"."""
        picture = self.folder / "locked.tsr"
        write_picture(picture, isLocked=1)
        return picture

    def open_bytes(self):
        return self.run_gri("convert", "-f", "raw", self.small, "-").stdout

    def test_a_password_is_asked_for_without_showing_it(self):
        target = self.out / "a.raw"
        with Session("convert", self.lock(), target) as session:
            session.wait_for(b"locked.tsr: ")
            self.assertFalse(session.echoes())
            session.type(b"secret\n")
            self.assertEqual(session.end(), (0, b""))
            self.assertTrue(session.echoes())
            self.assertNotIn(b"secret", session.shown)
            self.assertEqual(session.shown.count(b"Password of "), 1)
        self.assertEqual(target.read_bytes(), self.open_bytes())

    def test_a_wrong_password_is_asked_for_again_but_not_for_ever(self):
        target = self.out / "a.raw"
        with Session("convert", self.lock(), target) as session:
            for word in (b"wrong", b"x" * 500, b"secret"):
                session.wait_for(b"locked.tsr: ")
                session.type(word + b"\n")
            self.assertEqual(session.end(), (0, b""))
            self.assertEqual(session.shown.count(b"That doesn't open all of it."), 2)
        self.assertEqual(target.read_bytes(), self.open_bytes())
        target.unlink()
        with Session("convert", self.lock(), target) as session:
            for _ in range(3):
                session.wait_for(b"locked.tsr: ")
                session.type(b"wrong\n")
            code, errors = session.end()
        self.assertEqual(code, 1)
        self.assertIn(b"the picture is locked by a password", errors)
        self.assertNotIn(b"wrong", errors)
        self.assertEqual(list(self.out.iterdir()), [])

    def test_nothing_typed_is_no_password(self):
        for typed in (b"\n", b"\x04"):
            with Session("convert", self.lock(), self.out / "a.raw") as session:
                session.wait_for(b"locked.tsr: ")
                session.type(typed)
                self.assertEqual(session.end()[0], 1)
                self.assertEqual(session.shown.count(b"Password of "), 1)

    def test_an_interrupt_while_asking_leaves_a_terminal_that_echoes(self):
        for key, code in ((b"\x03", 130), (b"\x1c", 131)):  # Ctrl-C and Ctrl-\\
            with self.subTest(key), Session("convert", self.lock(), self.out / "a.raw") as session:
                session.wait_for(b"locked.tsr: ")
                session.type(b"sec" + key)
                self.assertEqual(session.end(), (code, b""))
                self.assertTrue(session.echoes())
        self.assertEqual(list(self.out.iterdir()), [])

    def test_nobody_is_asked_for_what_is_open_or_given(self):
        with Session("convert", self.small, self.out / "a.raw") as session:
            self.assertEqual(session.end(), (0, b""))
            self.assertEqual(session.shown, b"")
        for given in (["--password", "wrong"], ["--password", ""]):
            with Session("convert", *given, self.lock(), self.out / "b.raw") as session:
                self.assertEqual(session.end()[0], 1)
                self.assertEqual(session.shown, b"")

    def test_without_a_terminal_a_locked_picture_fails(self):
        result = self.run_gri("convert", self.lock(), self.out / "a.raw", start_new_session=True)
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"the picture is locked by a password", result.stderr)
        self.assertEqual(list(self.out.iterdir()), [])

    def test_a_password_is_no_longer_among_the_arguments_of_the_process(self):
        process = subprocess.Popen([GRI, "convert", "--password", "open-sesame", "-f", "raw",
                                    str(self.large), str(self.out / "a.raw")], env=self.env)
        while not any(self.out.iterdir()):
            time.sleep(0.01)
        arguments = pathlib.Path(f"/proc/{process.pid}/cmdline").read_bytes()
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(60), 130)
        self.assertIn(b"--password", arguments)
        self.assertNotIn(b"sesame", arguments)

    def test_a_full_disk_is_a_failed_write(self):
        limit = MIB

        def lower():
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)

        for form in ("raw", "GTiff"):
            with self.subTest(form):
                result = self.run_gri("convert", "-f", form, "--window", 0, 0, 4000, 4000,
                                      self.large, self.out / "picture", preexec_fn=lower)
                self.assertEqual(result.returncode, 1, result.stderr)
                self.assertIn(b"[50005]", result.stderr)
                self.assertEqual(list(self.out.iterdir()), [])

    @unittest.skipIf("GRI_SANITIZED" in os.environ, "a sanitizer has memory of its own")
    def test_memory_stays_in_strips_for_any_size(self):
        part = ["--window", "0", "0", "40000", "8000"]
        for options in (["-f", "raw"], ["-f", "GTiff", *part], ["-f", "PNG", "--size", "1000x"]):
            with self.subTest(options):
                target = self.out / "picture"
                process = subprocess.Popen([GRI, "convert", *options, str(self.large), str(target)],
                                           env=self.env)
                _, status, usage = os.wait4(process.pid, 0)
                process.returncode = os.waitstatus_to_exitcode(status)
                self.assertEqual(process.returncode, 0)
                peak = usage.ru_maxrss * 1024 / MIB
                self.assertLess(peak, 160)
                target.unlink()


if __name__ == "__main__":
    GRI = sys.argv.pop(1)
    unittest.main()
