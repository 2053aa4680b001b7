#!/usr/bin/env python3
"""Runs clang-tidy with the checks of .clang-tidy over the product's sources:
check_tidy.py [--minutes N] [BUILD]

BUILD is a configured and built tree, build/release unless told. A source that was found clean is not
looked at again until something that the check can see changes: the source after preprocessing, the
compiler's options, the checks or clang-tidy itself. What is known to be clean is kept in the user's
cache folder. When the minutes are over, the sources that are left wait for the next run, and the output
says how many. Prints the findings, and the line "N passed, N failed" that counts sources looked at.
"""

import argparse
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
STOREYS = ("host/", "quillnote/", "app/", "helpers/")
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "quillnote" / "tidy"


def sources(build):
    """(path, command, folder) of each product source that the build compiles."""
    tracked = subprocess.run(
        ["git", "ls-files", "-z", *STOREYS], cwd=ROOT, capture_output=True, text=True, check=True
    ).stdout.split("\0")
    ours = {str(ROOT / name) for name in tracked}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        if entry["file"] in ours:
            yield entry["file"], shlex.split(entry["command"]), entry["directory"]


def options(command):
    """The options that matter to the front end: without launcher, compiler, input and output."""
    start = next(i for i, word in enumerate(command) if word.startswith("-"))
    kept, words = [], iter(command[start:])
    for word in words:
        if word in ("-o", "-c", "-MF", "-MT", "-include"):
            next(words, None)  # What is included by option is precompiled for another compiler.
        elif word not in ("-MD", "-MMD", "-Winvalid-pch"):
            kept.append(word)
    return kept


def fingerprint(path, command, folder, rules):
    """None when the source cannot be preprocessed; clang-tidy then tells why."""
    preprocess = ["clang++", "-E", "-P", "-C", "-w", *options(command), path]
    text = subprocess.run(preprocess, cwd=folder, capture_output=True)
    if text.returncode:
        return None
    defines = [word for word in options(command) if not word.startswith(("-I", "-isystem", "/"))]
    seen = hashlib.sha256(rules)
    seen.update("\0".join(word.replace(str(ROOT), "") for word in defines).encode())
    seen.update(text.stdout.replace(str(ROOT).encode(), b""))
    return seen.hexdigest()


def check(source, build, rules, deadline):
    """What clang-tidy says about the source: empty when it is clean, None when there was no time."""
    path, command, folder = source
    key = fingerprint(path, command, folder, rules)
    if key and (CACHE / key).exists():
        return ""
    if time.monotonic() > deadline:
        return None
    storeys = "|".join(storey.rstrip("/") for storey in STOREYS)
    tidy = subprocess.run(
        ["clang-tidy", "--quiet", "--warnings-as-errors=*", "--extra-arg=-w",
         f"--header-filter=^{re.escape(str(ROOT))}/({storeys})/", path, "--", *options(command)],
        capture_output=True, text=True, cwd=folder,
    )  # fmt: skip
    if tidy.returncode == 0:
        if key:
            (CACHE / key).touch()
        return ""
    return tidy.stdout.strip() or tidy.stderr.strip() or f"{path}: clang-tidy ended with {tidy.returncode}"


def print_new(findings, told):
    """A fault in a header is found once for each source that includes it, and printed once."""
    # Each finding is a line "path:line:column: error: ..." and the lines that show the place.
    for finding in re.split(r"\n(?=/\S+: (?:error|warning):)", findings):
        if finding not in told:
            told.add(finding)
            print(finding, flush=True)


def main():
    parser = argparse.ArgumentParser(description="Runs clang-tidy over the product's sources.")
    parser.add_argument("build", nargs="?", type=Path, default=ROOT / "build/release")
    parser.add_argument("--minutes", type=float, default=float("inf"), help="begin nothing new after that")
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    deadline = time.monotonic() + arguments.minutes * 60
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    rules = version + (ROOT / ".clang-tidy").read_bytes()
    CACHE.mkdir(parents=True, exist_ok=True)

    todo = list(sources(build))
    if not todo:
        sys.exit(f"{build} compiles no source of this repository")
    failed = waiting = 0
    told = set()
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        results = pool.map(lambda source: check(source, build, rules, deadline), todo)
        for done, findings in enumerate(results, 1):
            waiting += findings is None
            if findings:
                failed += 1
                print_new(findings, told)
            if done % 25 == 0:
                print(f"- {done} of {len(todo)} sources", flush=True)
    if waiting:
        print(f"{waiting} sources were not looked at in the time given; the next run goes on with them.")
    print(f"{len(todo) - failed - waiting} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
