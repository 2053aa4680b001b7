#!/usr/bin/env python3
"""Two people on two screens, each with a home of his own, review one drawing through a shared folder."""

import contextlib
import json
import os
import shutil
import sqlite3
import statistics
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

import program
import screen

SAMPLE = Path(os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
COURIER = str(Path(program.QUILLNOTE).with_name("quillnote-courier"))
MARKS = int(os.environ.get("QUILLNOTE_MARKS", "3"))
PLACE = os.environ.get("QUILLNOTE_PLACE")  # A server; a folder of this test without it.


class Person:
    """His home, his copy of the drawing, and once he sits down his screen."""

    def __init__(self, folder, name, share):
        self.home = folder / name
        self.home.mkdir()
        self.drawing = self.home / "plan.dxf"
        self.own = {"HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home / ".config"),
                    "XDG_DATA_HOME": str(self.home / ".local" / "share"), "USER": name}  # fmt: skip
        for setting, value in {"courierPlace": share, "name": name, "style": 2, "textHeight": 100}.items():
            program.call("settings", "set", program.SETTINGS, setting, "--", value, **self.own)
        self.courier = self.home / ".local" / "share" / "Quillnote" / "synFileUploadPath" / "courier"

    def sit_down(self, desk):
        desk.environment.update(self.own)
        self.window = desk.start(self.drawing)
        self.window.command("QN8_SynningOn")

    def draw(self, place, words):
        x, y = place
        self.window.command("QN3_Quillnote", f"{x},{y}", f"{x + 300},{y + 200}")
        time.sleep(1.0)
        self.window.type(words)
        self.window.keys("ctrl+Return")

    def status(self):
        result = subprocess.run([COURIER, "status", "--json"], env={**os.environ, **self.own}, capture_output=True)
        return json.loads(result.stdout)

    def handed(self):
        """Number of the last file laid down for him. The file itself may be read before anybody looks for it."""
        with contextlib.closing(sqlite3.connect(next(self.courier.glob("ledger-*.sqlite")))) as ledger:
            return ledger.execute("SELECT value FROM fact WHERE what LIKE 'handed %'").fetchall()

    def arrived(self):
        return [path for path in self.courier.glob("in/*/*") if path.suffix == ".quillNote"]

    def words(self):
        """Of the marks that a saved drawing has."""
        self.window.command("QSAVE")
        time.sleep(1.0)
        return sorted(mark["suggestionContent"] for mark in program.marks(self.drawing))


@unittest.skipIf(screen.missing(), f"without {' '.join(screen.missing())} there is no window to work in")
class CourierTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.share = self.folder / "share"
        self.share.mkdir()

    def wait_for_words(self, person, words):
        screen.wait_for(f"the marks {words}", lambda: person.words() == words, 30)

    def seconds_to_arrive(self, sender, receiver, place, words):
        """From the key that ends the editor to the moment at which the other program has read the file."""
        before = receiver.handed()
        sender.draw(place, words)
        start = time.monotonic()
        screen.wait_for("a file for the other", lambda: receiver.handed() != before, 30)
        screen.wait_for("the other to read it", lambda: not receiver.arrived(), 30)
        return time.monotonic() - start

    def test_marks_of_two_people_meet(self):
        ann, bob = (Person(self.folder, name, PLACE or self.share) for name in ("ann", "bob"))
        shutil.copy(SAMPLE, ann.drawing)
        with screen.Screen() as here, screen.Screen() as there:
            ann.sit_down(here)
            ann.window.command("QSAVE")
            screen.wait_for("the identity", lambda: b"XREC3" in ann.drawing.read_bytes())
            shutil.copy(ann.drawing, bob.drawing)
            bob.sit_down(there)
            for each in (ann, bob):
                screen.wait_for("the other", lambda: any(p["here"] for p in each.status().get("people", [])), 30)
            times = [self.seconds_to_arrive(ann, bob, (1000 + 400 * i, 1000), f"ann {i}") for i in range(MARKS)]
            print(f"OK to mark: median {statistics.median(times):.2f} s, slowest {max(times):.2f} s of {MARKS}")
            here.picture("ann.png")
            there.picture("bob.png")
            words = [f"ann {i}" for i in range(MARKS)]
            self.wait_for_words(bob, words)
            bob.draw((1000, 2000), "bob")
            self.wait_for_words(ann, sorted([*words, "bob"]))
            bob.window.command("ERASE", "ALL", "")
            self.wait_for_words(ann, [])
            bob.window.command("U")
            self.wait_for_words(ann, sorted([*words, "bob"]))
            ann.window.command("QUIT")
            ann.window.wait_closed()
            screen.wait_for("the courier that nobody needs to end", lambda: not ann.status()["running"], 30)
            bob.draw((1000, 2600), "while ann was away")
            time.sleep(1.0)
        # Ann's drawing was saved before; she gets what she missed.
        with screen.Screen() as here:
            ann.sit_down(here)
            self.wait_for_words(ann, sorted([*words, "bob", "while ann was away"]))


if __name__ == "__main__":
    unittest.main()
