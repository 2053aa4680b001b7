#!/usr/bin/env python3
"""Checks the layout of the C++ files that git tracks against .clang-format: check_format.py [--fix]

Prints the first difference of each file, and the line "N passed, N failed" that counts files.
"""

import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def main():
    listing = subprocess.run(
        ["git", "ls-files", "-z", "*.h", "*.cpp"], cwd=ROOT, capture_output=True, text=True, check=True
    )
    files = [name for name in listing.stdout.split("\0") if name and (ROOT / name).is_file()]
    if not files:
        sys.exit("git tracks no C++ files here")
    if sys.argv[1:] == ["--fix"]:
        subprocess.run(["clang-format", "-i", *files], cwd=ROOT, check=True)
        return
    check = subprocess.run(
        ["clang-format", "--dry-run", "--ferror-limit=1", *files], cwd=ROOT, capture_output=True, text=True, check=True
    )
    faults = [line for line in check.stderr.splitlines() if "[-Wclang-format-violations]" in line]
    print(*faults, sep="\n", end="\n" if faults else "")
    failed = len({line.split(":")[0] for line in faults})
    print(f"{len(files) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
