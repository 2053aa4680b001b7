#!/usr/bin/env python3
"""Open and save real drawings: untouched they stay the same bytes; with a circle, a layer and a dictionary entry
added, every other object keeps its groups, and ezdxf's auditor finds no more than in the original.

usage: QUILL_REAL_DRAWINGS=FOLDER tests/host/formats/dxf/real_drawings.py [PROBE]

PROBE is the program dxf_probe, by default that of the release build. Text drawings are compared group by group here,
with no code of the program under test. Without the variable there is nothing to check (exit status 77).
"""
import os
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

try:
    import ezdxf
    import ezdxf.recover
except ImportError:
    ezdxf = None

# What adding a record or an entry changes in the file: the table's count, the root dictionary, the seed.
CHANGED_ALLOWED = 3
BINARY = b"AutoCAD Binary DXF"


def groups(data):
    lines = data.split(b"\n")
    if lines[-1] == b"":
        lines.pop()
    lines = [line[:-1] if line.endswith(b"\r") else line for line in lines]
    return list(zip(lines[0::2], lines[1::2]))


def objects(data):
    """Runs of groups from one 0 to the next, each as often as it occurs."""
    found, current = Counter(), []
    for code, value in groups(data):
        if code.strip() == b"0" and current:
            found[tuple(current)] += 1
            current = []
        current.append((code.strip(), value))
    found[tuple(current)] += 1
    return found


def audit_errors(path):
    if path.read_bytes().startswith(BINARY):
        document = ezdxf.readfile(str(path))
    else:
        document, auditor = ezdxf.recover.readfile(str(path))
    auditor = document.audit()
    return len(auditor.errors), len(auditor.fixes)


def check(path, probe, folder):
    original = path.read_bytes()
    untouched, changed = folder / "untouched.dxf", folder / "changed.dxf"
    run = subprocess.run([probe, path, untouched, changed], capture_output=True, text=True, timeout=300)
    if run.returncode != 0:
        return "the probe failed: " + (run.stdout + run.stderr).strip()[-300:]
    if untouched.read_bytes() != original:
        return "saved untouched, but not the same bytes"
    notes = "; ".join(line for line in run.stdout.splitlines() if line.startswith("repair"))[:200]
    if not original.startswith(BINARY):
        lost = objects(original) - objects(changed.read_bytes())
        # Section heads hold the header variables; anything else that differs is an object.
        lost_objects = [o for o in lost.elements() if o[0][1].strip() != b"SECTION"]
        if len(lost_objects) > CHANGED_ALLOWED and not notes:
            return "%d objects changed: %s" % (len(lost_objects), [o[0][1] for o in lost_objects][:6])
    if ezdxf:
        try:
            before = audit_errors(path)
        except Exception as error:  # The original is beyond what the auditor reads.
            return "" if notes else "note: not audited (%s)" % error
        after = audit_errors(changed)
        if after[0] > before[0] or after[1] > before[1]:
            return "the auditor found %s, in the original %s" % (after, before)
    return "note: " + notes if notes else ""


def main():
    root = os.environ.get("QUILL_REAL_DRAWINGS")
    if not root:
        print("QUILL_REAL_DRAWINGS names no folder: nothing checked")
        return 77
    probe = sys.argv[1] if len(sys.argv) > 1 else str(
        Path(__file__).resolve().parents[4] / "build/release/tests/dxf_probe")
    drawings = sorted(p for p in Path(root).rglob("*") if p.suffix.lower() == ".dxf")
    failed = 0
    with tempfile.TemporaryDirectory() as scratch:
        for path in drawings:
            verdict = check(path, probe, Path(scratch))
            bad = verdict and not verdict.startswith("note: ")
            failed += bool(bad)
            print("%s %s %s" % ("FAILED" if bad else "ok    ", path.relative_to(root), verdict))
    print("%d drawings, %d failed" % (len(drawings), failed))
    return 1 if failed or not drawings else 0


sys.exit(main())
