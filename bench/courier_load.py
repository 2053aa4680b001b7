#!/usr/bin/env python3
"""Claim: twenty people who make a mark a second each have it everywhere in a second or two, and a courier at rest
costs next to nothing. Real couriers run over one folder; this script stands for the programs, which write a file for
each mark and take what arrives.

usage: courier_load.py [--people 20] [--seconds 60] [--rest 20] [--place nats://localhost/bench]
"""

import argparse
import hashlib
import os
import statistics
import struct
import subprocess
import tempfile
import time
from pathlib import Path

COURIER = Path(__file__).resolve().parent.parent / "build" / "release" / "bin" / "quillnote-courier"
DRAWING = hashlib.md5(b"drawing").digest()
RECORD = bytes(3000)  # As large as a mark; the courier does not read it.


def message(mark, serial, record=RECORD):
    after = hashlib.sha1(f"{mark} {serial}".encode()).digest()[:12]
    head = b"Corvantelsoft Quillnote DATA V7".ljust(32, b"\0") + bytes(48)
    head += DRAWING + hashlib.md5(mark.encode()).digest() + bytes(12) + after + struct.pack("<Q", serial)
    return head + struct.pack("<HIHH", 1, sum(record) % 2**32, 0, 0).ljust(16, b"\0") + record


class Person:
    def __init__(self, folder, number, share):
        self.name, self.folder = f"p{number}", folder / f"p{number}"
        self.inbox = self.folder / "courier" / "in" / DRAWING.hex()
        (self.folder / "courier" / "open").mkdir(parents=True)
        (self.folder / "courier" / "open" / f"{DRAWING.hex()}-{os.getpid()}-1").write_bytes(b"plan")
        environment = {**os.environ, "USER": self.name, "XDG_CONFIG_HOME": str(self.folder)}
        self.process = subprocess.Popen([COURIER, "run", self.folder, share], env=environment)
        self.count = 0

    def make(self):
        self.count += 1
        mark = f"{self.name} {self.count}"
        path = self.folder / f"QnSysnning_{self.count}.quillNote"
        path.with_suffix(".part").write_bytes(message(mark, time.time_ns() // 1000))
        path.with_suffix(".part").rename(path)
        return hashlib.md5(mark.encode()).digest()

    def take(self):
        """How many marks the files hold that arrived."""
        taken = 0
        for path in sorted(self.inbox.glob("*.quillNote")):
            taken += struct.unpack_from("<H", path.read_bytes(), 144)[0]
            path.unlink()
        return taken

    def processor(self):
        fields = Path(f"/proc/{self.process.pid}/stat").read_text(encoding="ascii").rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def memory(self):
        status = Path(f"/proc/{self.process.pid}/status").read_text(encoding="ascii")
        return int(status.split("VmRSS:")[1].split()[0]) / 1024


def load(people, seconds):
    """Delays: from the writing of the n-th mark of all to the moment at which everybody has n marks of others."""
    begin = time.monotonic()
    written, taken = [], [0] * len(people)
    delays = []
    due = [begin + i / len(people) for i in range(len(people))]
    while time.monotonic() < begin + seconds or len(delays) < len(written):
        now = time.monotonic()
        for i, person in enumerate(people):
            if now >= due[i] and now < begin + seconds:
                person.make()
                written.append(time.monotonic())
                due[i] += 1.0
            taken[i] += person.take()
        everywhere = min(got + person.count for got, person in zip(taken, people))
        delays += [time.monotonic() - written[n] for n in range(len(delays), min(everywhere, len(written)))]
        if now > begin + seconds + 120:
            raise SystemExit(f"{len(written) - len(delays)} marks did not arrive")
        time.sleep(0.02)
    return delays


def main():
    parser = argparse.ArgumentParser(description="Couriers of many people over one folder.")
    parser.add_argument("--people", type=int, default=20)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--rest", type=float, default=20)
    parser.add_argument("--place", help="where they meet; a folder of this run without it")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        share = folder / "share"
        share.mkdir()
        people = [Person(folder, number, options.place or share) for number in range(options.people)]
        try:
            time.sleep(3)
            before = [person.processor() for person in people]
            time.sleep(options.rest)
            resting = max(person.processor() - was for person, was in zip(people, before)) / options.rest
            print(f"at rest: {100 * resting:.2f} % of a core, {max(p.memory() for p in people):.1f} MB, the worst of all")
            delays = load(people, options.seconds)
            slow = sorted(delays)[int(len(delays) * 0.99)]
            print(f"{len(delays)} marks of {len(people)} people: everywhere after {statistics.median(delays):.2f} s"
                  f" (median), {slow:.2f} s (99 of 100), {max(delays):.2f} s (slowest)")  # fmt: skip
            size = sum(path.stat().st_size for path in share.rglob("*") if path.is_file())
            files = sum(1 for path in share.rglob("*.quillnote"))
            print(f"folder: {files} files, {size / 1e6:.1f} MB; memory {max(p.memory() for p in people):.1f} MB")
        finally:
            for person in people:
                person.process.terminate()
            for person in people:
                person.process.wait()


if __name__ == "__main__":
    main()
