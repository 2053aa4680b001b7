#!/usr/bin/env python3
"""Several programs save, edit and are killed in one folder: save_campaign.py [--kills 1000] [--seed N] [...]

Three programs at a time run scripts on the same few drawings. Each script draws marks, moves them and saves after
every mark, over the drawing itself or with -o; most programs are killed at a line and a moment drawn by lot. A mark counts as
reported once the program has gone on after saving it, or ended well. At the end of each round every drawing must be
whole and hold every reported mark once, none that nobody drew, and must take another save. Programs that were refused
must have said what to do.

The seed fixes scripts and moments; how the programs meet is up to the machine. Exit status 1 when anything was lost.
"""

import argparse
import json
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SIGNALS = (signal.SIGKILL, signal.SIGKILL, signal.SIGTERM, signal.SIGINT)
REFUSED = ("meanwhile", "is saving it")
ADVICE = "save under another name"
MARKS = 5  # In one script.


class Folder:
    """The drawings of one round, and what was reported of them."""

    def __init__(self, path, program, sample):
        self.path, self.program = path, program
        self.path.mkdir(parents=True)
        self.drawings = [path / f"plan{number}.dxf" for number in range(2)]
        for drawing in self.drawings:
            shutil.copy(sample, drawing)
        self.environment = {**os.environ, "XDG_CONFIG_HOME": str(path / "config"), "XDG_DATA_HOME": str(path / "data")}
        self.environment.pop("DISPLAY", None)
        self.lock = threading.Lock()
        self.tried = {drawing: set() for drawing in self.drawings}
        self.reported = {drawing: set() for drawing in self.drawings}
        self.faults = []
        self.counts = dict.fromkeys(("runs", "kills", "reported", "refused"), 0)

    def count(self, name, by=1):
        with self.lock:
            self.counts[name] += by

    def call(self, *arguments, text=None):
        return subprocess.run([self.program, *map(str, arguments)], input=text, capture_output=True, encoding="utf-8",
                              env=self.environment, timeout=120, check=False)  # fmt: skip

    # One program -----------------------------------------------------------------------------------

    def run(self, number, chance, kill_after):
        drawing = chance.choice(self.drawings)
        names = [f"mark {number}.{each}" for each in range(MARKS)]
        with self.lock:
            self.tried[drawing].update(names)
        over = chance.random() < 0.25  # The result goes over the drawing at the end, with -o.
        command = [self.program, "run", "-", str(drawing), "--echo", *(["-o", str(drawing), "-f"] if over else [])]
        process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                   encoding="utf-8", env=self.environment)  # fmt: skip
        process.stdin.write(self.script(names, chance, over))
        process.stdin.close()
        told = []
        for line in process.stderr:
            told.append(line)
            if len(told) == kill_after:
                time.sleep(chance.uniform(0, 0.05))
                process.send_signal(chance.choice(SIGNALS))
        process.wait()
        process.stderr.close()
        self.count("runs")
        self.judge(drawing, names, over, process.returncode, "".join(told))

    @staticmethod
    def script(names, chance, over):
        lines = []
        for name in names:
            x, y = chance.randrange(1000, 9000), chance.randrange(1000, 6000)
            lines += ["QN3_Quillnote", f"{x},{y}", f"{x + 300},{y + 200}", f'@set 1003 "{name}"', "@ok"]
            if chance.random() < 0.3:
                lines += ["MOVE", "L", "", "0,0", "10,10"]
            if not over:
                lines += ["QSAVE"]
        return "\n".join([*lines, "REGEN", ""])

    def judge(self, drawing, names, over, status, told):
        if status < 0:
            self.count("kills")
        if status == 0:
            kept = names
        else:
            # What came after a saving was asked for says that it succeeded.
            kept = [] if over else names[: max(self.saves_passed(told), 0)]
        if status > 0 and not (any(each in told for each in REFUSED) and ADVICE in told):
            self.faults.append(f"status {status}: {told[-300:]}")
        if status > 0:
            self.count("refused")
        with self.lock:
            self.reported[drawing].update(kept)
        self.count("reported", len(kept))

    @staticmethod
    def saves_passed(told):
        whole = told[: told.rfind("\n") + 1].splitlines()
        commands = [line.rsplit(": ", 1)[1] for line in whole if ": the command prompt: " in line]
        saves = [at for at, command in enumerate(commands) if command == "QSAVE"]
        return sum(1 for at in saves if at + 1 < len(commands))

    # All of them -----------------------------------------------------------------------------------

    def check(self):
        for drawing in self.drawings:
            listed = self.call("marks", drawing, "--json")
            if listed.returncode != 0:
                self.faults.append(f"{drawing.name}: {listed.stderr}")
                continue
            lines = [json.loads(line) for line in listed.stdout.splitlines()]
            found = [line["suggestionContent"] for line in lines if "suggestionContent" in line]
            if len(found) != len(lines):
                self.faults.append(f"{drawing.name}: damaged: {listed.stderr}")
            self.faults += [f"{drawing.name}: lost {name}" for name in self.reported[drawing] - set(found)]
            self.faults += [f"{drawing.name}: nobody drew {name}" for name in set(found) - self.tried[drawing]]
            if len(found) != len(set(found)):
                self.faults.append(f"{drawing.name}: a mark is there twice")
            if (saved := self.call("run", "-", drawing, text="CIRCLE\n0,0\n5\nQSAVE\n")).returncode != 0:
                self.faults.append(f"{drawing.name}: takes no save any more: {saved.stderr}")
        left = [name for name in os.listdir(self.path) if name.startswith((".quill-", ".plan"))]
        self.faults += [f"left behind: {name}" for name in left]


def campaign(program, folder, kills, seed, sample, programs=3, tell=None):
    """Counts over all rounds, and the list of faults."""
    chance = random.Random(seed)
    total, faults, number, rounds = {}, [], 0, 0
    while total.get("kills", 0) < kills and not faults:
        round_ = Folder(Path(folder) / f"round{rounds}", program, sample)
        rounds += 1
        with ThreadPoolExecutor(programs) as pool:
            jobs = []
            for _ in range(min(max(kills - total.get("kills", 0), programs), 40)):
                number += 1
                own = random.Random(chance.random())
                jobs.append(pool.submit(round_.run, number, own, None if own.random() < 0.1 else own.randint(1, 30)))
        for job in jobs:
            job.result()
        round_.check()
        for name, count in round_.counts.items():
            total[name] = total.get(name, 0) + count
        faults += round_.faults
        if tell:
            tell(", ".join(f"{count} {name}" for name, count in total.items()))
        if not faults:
            shutil.rmtree(round_.path)
    return total, faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--kills", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--programs", type=int, default=3, help="at a time")
    parser.add_argument("--program", default=str(ROOT / "build/release/bin/quillnote"))
    parser.add_argument("--folder", help="where to work; a temporary folder without it. Kept when something is lost")
    options = parser.parse_args()
    folder = Path(options.folder or tempfile.mkdtemp(prefix="campaign"))
    _, faults = campaign(options.program, folder, options.kills, options.seed, ROOT / "samples/plan.dxf",
                         options.programs, lambda line: print(line, flush=True))  # fmt: skip
    for fault in faults:
        print(fault)
    print(f"{len(faults)} faults" + (f", see {folder}" if faults else ""))
    if not faults and not options.folder:
        shutil.rmtree(folder, ignore_errors=True)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
