#!/usr/bin/env python3
"""Counts test cases: count_tests.py CTEST_XML

Reads ctest's JUnit file and, beside it, the GoogleTest file <name>.xml of each entry. An entry
without such a file counts as one case. An entry that failed although its file tells of no failed
case (a crash at exit, a leak found by a sanitizer) counts as one failed case more. The last line
printed is "N passed, N failed"; the exit status is 0 only when something passed and nothing failed.
"""

import sys
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass, field
from pathlib import Path


@dataclass
class Count:
    passed: int = 0
    failed: list = field(default_factory=list)
    skipped: list = field(default_factory=list)


def count_cases(program, path, count):
    """Adds the cases of one GoogleTest file; false when the file cannot be read."""
    try:
        root = ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError):
        return False
    for case in root.iter("testcase"):
        name = f"{program}: {case.get('classname')}.{case.get('name')}"
        if case.find("failure") is not None or case.find("error") is not None:
            count.failed.append(name)
        elif case.get("result") == "skipped" or case.get("status") == "notrun":
            count.skipped.append(name)
        else:
            count.passed += 1
    return True


def count_entry(entry, folder, count):
    name = entry.get("name")
    succeeded = entry.get("status") == "run"
    failed_before = len(count.failed)
    has_cases = count_cases(name, folder / f"{name}.xml", count)
    if not succeeded and len(count.failed) == failed_before:
        count.failed.append(f"{name}: the program failed ({entry.get('status')})")
    elif succeeded and not has_cases:
        count.passed += 1


def count_all(ctest_xml):
    count = Count()
    for entry in ElementTree.parse(ctest_xml).getroot().iter("testcase"):
        count_entry(entry, Path(ctest_xml).parent, count)
    return count


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: count_tests.py CTEST_XML")
    try:
        count = count_all(sys.argv[1])
    except (OSError, ElementTree.ParseError) as error:
        count = Count(failed=[f"no test results: {error}"])
    for title, names in (("Skipped", count.skipped), ("Failed", count.failed)):
        if names:
            print(f"\n{title}:", *names, sep="\n  ")
    print(f"{count.passed} passed, {len(count.failed)} failed")
    sys.exit(0 if count.passed and not count.failed else 1)


if __name__ == "__main__":
    main()
