"""Runs the program as a user would: scripts, verbs, settings. Every run gets the settings of the test's folder."""

import json
import os
import subprocess
from pathlib import Path

QUILLNOTE = os.environ["QUILLNOTE"]
SETTINGS = "Software\\Quillnote3"
FIXED_TIME = "2024-05-06T07:08:09"

try:
    import ezdxf
    import ezdxf.recover
except ImportError:  # An independent reader; the tests go on without it.
    ezdxf = None


class Trouble(AssertionError):
    pass


def call(*arguments, text=None, status=0, **environment):
    """Runs the program; any other exit status than the expected one (None: any) is a failure."""
    command = [QUILLNOTE, *map(str, arguments)]
    result = subprocess.run(command, input=text, capture_output=True, text=True, encoding="utf-8", timeout=120,
                            env={**os.environ, "QUILLNOTE_FIXED_TIME": FIXED_TIME, **environment})  # fmt: skip
    if status is not None and result.returncode != status:
        raise Trouble(f"{' '.join(command)} ended with {result.returncode}\n{result.stderr}\nscript:\n{text}")
    return result


def play(script, drawing, output=None, **options):
    """Runs the lines of a script on a drawing."""
    saving = ["-o", output, "-f"] if output else []
    return call("run", "-", drawing, *saving, text=script, **options)


def marks(drawing):
    return [json.loads(line) for line in call("marks", drawing, "--json").stdout.splitlines()]


def set_setting(name, value):
    call("settings", "set", SETTINGS, name, "--", value)


def remove_setting(name):
    call("settings", "remove", SETTINGS, name)


def quoted(text):
    """The text as a script writes it."""
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def mark_script(x, y, width, height, opinion):
    """Lines that draw one mark."""
    return f"QN3_Quillnote\n{x},{y}\n{x + width},{y + height}\n@set 1003 {quoted(opinion)}\n@ok\n"


def audit(path):
    """Faults that the independent reader finds, by code; none when it is not there."""
    if ezdxf is None:
        return []
    try:
        document = ezdxf.readfile(str(path))
    except (ezdxf.DXFError, UnicodeDecodeError):
        document, _ = ezdxf.recover.readfile(str(path))
    auditor = document.audit()
    return sorted(entry.code for entry in auditor.errors + auditor.fixes)


def write(name, data):
    path = Path(name)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)
    return path
