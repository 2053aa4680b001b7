#!/usr/bin/env python3
"""A session that is killed at any moment loses no more than the last moments of work: the drawing's file is whole,
and with it or with the recovery copy beside the settings every command is there but those since the last copy.

QUILL_KILLS says how many sessions are killed.
"""

import os
import random
import re
import signal
import subprocess
import threading
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import drawings
import program

KILLS = int(os.environ.get("QUILL_KILLS", "20"))
INTERVAL = 0.1  # Seconds from a change to its copy.
SLACK = 1.0  # For writing the copy, on a machine that does other things as well.
COMMANDS = 30000
MARK_EVERY = 60
SAVE_EVERY = 700


def is_mark(number):
    return number % MARK_EVERY == 0


def script():
    """Command n draws a circle of radius n, or a mark with the opinion n; now and then the drawing is saved."""
    lines = []
    for number in range(1, COMMANDS + 1):
        if is_mark(number):
            lines.append(program.mark_script(number % 900, 10, 20, 15, f"opinion {number}"))
        else:
            lines.append(f"CIRCLE\n0,0\n{number}\n")
        if number % SAVE_EVERY == 0:
            lines.append("QSAVE\n")
    return "".join(lines).encode()


class Session:
    """The program at work on a drawing; knows when it was told each command."""

    def __init__(self, folder, script_path, original):
        self.drawing = program.write(folder / "plan.dxf", original)
        self.data = folder / "data"
        self.begun = []
        environment = {**os.environ, "XDG_DATA_HOME": str(self.data.absolute())}
        command = [program.QUILLNOTE, "run", script_path, self.drawing, "--autosave", str(INTERVAL), "--echo"]
        self.process = subprocess.Popen(command, stderr=subprocess.PIPE, stdout=subprocess.DEVNULL, env=environment)
        self.listener = threading.Thread(target=self.listen)
        self.listener.start()

    def listen(self):
        for line in self.process.stderr:
            if line.rstrip().endswith((b": CIRCLE", b": QN3_Quillnote")):
                self.begun.append(time.monotonic())

    def kill_after(self, seconds):
        deadline = time.monotonic() + 30
        while not self.begun and time.monotonic() < deadline:
            time.sleep(0.005)
        time.sleep(seconds)
        alive = self.process.poll() is None
        self.killed = time.monotonic()
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        self.listener.join()
        self.process.stderr.close()
        return alive

    def commands_before(self, moment):
        """Commands that had ended: the next one had begun."""
        return max(sum(1 for each in self.begun if each < moment) - 1, 0)

    def copies(self):
        return list(self.data.glob("*/recovery/*.dxf"))


class KilledSessionTest(unittest.TestCase):
    def setUp(self):
        self.original = drawings.as_text(drawings.drawing("2013"), "utf-8")
        self.script = program.write("session.qns", script())

    def commands_in(self, path):
        """How many commands the drawing holds; they are the first ones, each once."""
        data = path.read_bytes()
        parts = drawings.Parts(data)
        self.assertEqual(parts.objects[-1][0], (0, b"EOF"), path)
        lost, _ = drawings.differences(drawings.Parts(self.original), parts)
        self.assertFalse([each for each in lost if each[0][1] in (b"LINE", b"TEXT", b"INSERT", b"SPECIAL")], path)
        radii = [float(value) for each in parts.named("CIRCLE") for code, value in each if code == 40]
        radii.remove(150)  # The drawing has one of its own.
        marks = {int(each) for each in re.findall(rb"opinion (\d+)", data)}
        count = len(radii) + len(marks)
        expected = range(1, count + 1)
        self.assertEqual(sorted(radii), [each for each in expected if not is_mark(each)], path)
        self.assertEqual(sorted(marks), [each for each in expected if is_mark(each)], path)
        return count

    def one_session(self, number):
        chance = random.Random(number)
        folder = Path(f"session{number}")
        session = Session(folder, self.script, self.original)
        self.assertTrue(session.kill_after(chance.uniform(0.05, 2.5)), "killed while it works")
        in_file = self.commands_in(session.drawing)
        self.assertEqual(in_file % SAVE_EVERY, 0, "as it was opened or saved")
        program.call("info", session.drawing, *session.copies())
        in_copy = max((self.commands_in(copy) for copy in session.copies()), default=0)
        kept = max(in_file, in_copy)
        due = session.commands_before(session.killed - INTERVAL - SLACK)
        done = session.commands_before(session.killed)
        self.assertGreaterEqual(kept, due, f"session {number}")
        left = [name for name in os.listdir(folder) if name.startswith(".quill-")]
        self.assertLessEqual(len(left), 1)
        return in_file, in_copy, done, due

    def test_no_more_than_the_last_moments_are_lost(self):
        with ThreadPoolExecutor(2) as pool:
            results = list(pool.map(self.one_session, range(KILLS)))
        if "QUILL_KILLS" in os.environ:
            for result in results:
                print("in the file {}, in the copy {}, done {}, due {}".format(*result))
        self.assertTrue(any(in_copy > in_file for in_file, in_copy, _, _ in results), "copies were needed")
        self.assertTrue(any(due > 0 for *_, due in results), "something was due")

    def test_a_run_that_ends_leaves_no_copy(self):
        drawing = program.write("ends/plan.dxf", self.original)
        data = Path("ends/data").absolute()
        lines = "CIRCLE\n0,0\n7\nCIRCLE\n0,0\n8\n"
        program.call("run", "-", drawing, "--autosave", "0", text=lines, XDG_DATA_HOME=str(data))
        self.assertTrue(list(data.glob("*/recovery")), "copies were kept")
        self.assertEqual(list(data.glob("*/recovery/*")), [])
        self.assertEqual(drawing.read_bytes(), self.original)

    def test_what_is_left_is_cleared_and_locks_are_honoured(self):
        drawing = program.write("shared/plan.dxf", self.original)
        left = program.write("shared/.quill-1234abcd.tmp", b"half")
        line = b"quillnote-lock 1\tann\telsewhere\t7\t0\t2024-05-06T07:08:09Z\n"
        lock = program.write("shared/.plan.dxf.quill-lock", line)
        refused = program.call("run", "-", drawing, "-o", drawing, "-f", text="CIRCLE\n0,0\n7\n", status=2)
        self.assertIn("ann on elsewhere", refused.stderr)
        self.assertEqual(drawing.read_bytes(), self.original)
        lock.unlink()
        program.play("CIRCLE\n0,0\n7\n", drawing, drawing)
        self.assertNotEqual(drawing.read_bytes(), self.original)
        self.assertFalse(left.exists())


if __name__ == "__main__":
    unittest.main()
