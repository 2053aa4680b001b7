#!/usr/bin/env python3
"""Reviews that are worked at random by many people whose couriers and connections fail, over a shared folder and over a
server that is killed on the way: every copy must end with the same marks, none doubled, and no words lost.

usage: simulate_reviews.py [--seeds 2000] [--server-seeds 100] [--people 20] [--first 1] [--jobs 1]

Prints a table of what the people did. A seed that fails is named, with the end of its log, and can be repeated:
QUILLNOTE_FIRST_SEED=SEED QUILLNOTE_SEEDS=1 QUILLNOTE_PEOPLE=20 QUILLNOTE_TRACE=1 test_helpers_courier.
"""

import argparse
import os
import re
import subprocess
import sys
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PROGRAM = Path(__file__).resolve().parent.parent / "build" / "release" / "tests" / "test_helpers_courier"
CARRIERS = {
    "shared folder": ("Convergence.EverybodyEnds*", "QUILLNOTE_SEEDS", 25),
    "server": ("ServerTest.EverybodyEnds*", "QUILLNOTE_SERVER_SEEDS", 5),
}


def run(carrier, first, count, people):
    """The counts of some seeds, or the end of the log of the one that failed."""
    tests, variable, _ = CARRIERS[carrier]
    wanted = {"QUILLNOTE_FIRST_SEED": first, variable: count, "QUILLNOTE_PEOPLE": people, "QT_QPA_PLATFORM": "offscreen"}
    result = subprocess.run([PROGRAM, f"--gtest_filter={tests}"], capture_output=True, text=True, errors="replace",
                            env={**os.environ, **{name: str(value) for name, value in wanted.items()}})  # fmt: skip
    table = re.search(rf"^{carrier}: (seeds .*)$", result.stdout, re.M)
    if result.returncode != 0 or not table:
        return Counter(), f"{carrier}, seeds from {first}:\n" + "\n".join((result.stdout + result.stderr).splitlines()[-25:])
    return Counter({name: int(times) for name, times in re.findall(r"([a-z ,]*?) (\d+)", table[1])}), None


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seeds", type=int, default=2000)
    parser.add_argument("--server-seeds", type=int, default=100)
    parser.add_argument("--people", type=int, default=20, help="at most so many in a review, at least two")
    parser.add_argument("--first", type=int, default=1, help="the first seed")
    parser.add_argument("--jobs", type=int, default=1)
    asked = parser.parse_args()
    if not PROGRAM.exists():
        sys.exit(f"{PROGRAM} is not built")
    failed = []
    for carrier, seeds in (("shared folder", asked.seeds), ("server", asked.server_seeds)):
        step = CARRIERS[carrier][2]
        parts = [(first, min(step, asked.first + seeds - first)) for first in range(asked.first, asked.first + seeds, step)]
        total = Counter()
        with ThreadPoolExecutor(asked.jobs) as pool:
            for counts, trouble in pool.map(lambda part: run(carrier, *part, asked.people), parts):
                total += counts
                if trouble:
                    failed.append(trouble)
                    print(trouble, flush=True)
        print(f"{carrier}, 2 to {asked.people} people:")
        for name, times in total.items():
            print(f"  {name.strip(' ,')}: {times}")
    print(f"{len(failed)} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
