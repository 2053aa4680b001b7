#!/usr/bin/env python3
"""Files, output and the terminal off the happy way: what cannot be written or read is told, and nothing is harmed."""

import json
import os
import shutil
import stat
import subprocess
import unittest
from pathlib import Path

import program

SAMPLE = Path(os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
CIRCLE = "CIRCLE\n0,0\n500\n"
# Moves the cursor, colours what follows, turns the direction of writing.
HOSTILE = "\x1b[2J\x1b]0;x\x07\u202egpj.exe\u009b31m"


def raw(*arguments, text=None, output=subprocess.PIPE, **environment):
    """Bytes in and out; a run that hangs fails."""
    return subprocess.run([program.QUILLNOTE, *arguments], input=text, stdout=output, stderr=subprocess.PIPE, timeout=60,
                          env={**os.environ, **environment})  # fmt: skip


class FilesTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path("files", self.id().rsplit(".", 1)[-1]).absolute()
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.drawing = self.folder / "plan.dxf"
        program.play(program.mark_script(1000, 1000, 500, 500, "opinion"), SAMPLE, self.drawing)

    def test_results_that_cannot_be_written_are_trouble(self):
        verbs = [["report", self.drawing], ["marks", self.drawing], ["marks", self.drawing, "--json"], ["info", self.drawing],
                 ["menu", self.drawing], ["settings", "export", "-"], ["settings", "export", "/dev/full", "-f"],
                 ["settings", "list"], ["--help"], ["--version"]]  # fmt: skip
        program.set_setting("style", 2)
        for verb in verbs:
            with open("/dev/full", "wb") as full:
                result = raw(*verb, output=full)
            self.assertEqual(result.returncode, 2, verb)
            self.assertTrue(result.stderr.strip(), verb)

    def test_recovery_copies_that_cannot_be_written_are_told(self):
        data = program.write(self.folder / "data", b"no folder")
        result = program.call("run", "-", self.drawing, "--autosave", "0", "-o", self.folder / "out.dxf", text=CIRCLE,
                              status=2, XDG_DATA_HOME=str(data))  # fmt: skip
        self.assertIn("no recovery copy", result.stderr)
        self.assertTrue((self.folder / "out.dxf").exists(), "the work is done all the same")

    def test_damage_is_told_by_every_verb(self):
        whole = self.drawing.read_bytes()
        cut = program.write(self.folder / "cut.dxf", whole[: len(whole) * 9 // 10])
        out = str(self.folder / "out")
        for verb in (["report"], ["marks"], ["info"], ["menu"], ["picture", cut, out + ".png"], ["plot", cut, out + ".pdf"],
                     ["run", "-", cut, "-o", out + ".dxf"]):  # fmt: skip
            result = program.call(*(verb if cut in verb else [*verb, cut]), text="")
            lines = [line for line in result.stderr.splitlines() if "damaged" in line]
            self.assertEqual(len(lines), 1, verb)
        first = json.loads(program.call("report", cut, "--json").stdout.splitlines()[0])
        self.assertGreater(first["repairs"], 0)
        self.assertGreater(json.loads(program.call("plot", cut, out + ".pdf", "-f", "--json").stdout)["repairs"], 0)
        self.assertNotIn("damaged", program.call("report", self.drawing).stderr)

    def test_marks_that_cannot_be_read_are_told(self):
        lines = self.drawing.read_bytes().split(b"\n")
        start = max(at for at, line in enumerate(lines) if line.strip() == b"QUILLNOTE3" and lines[at - 1].strip() == b"0")
        marker = next(at for at in range(start, len(lines)) if lines[at].startswith(b"AcDb") is False
                      and lines[at - 1].strip() == b"100" and lines[at].strip() != b"AcDbEntity")  # fmt: skip
        del lines[marker - 1 : marker + 1]
        bad = program.write(self.folder / "bad.dxf", b"\n".join(lines))
        for verb in ("marks", "report", "info"):
            told = [line for line in program.call(verb, bad).stderr.splitlines() if "cannot be read" in line]
            self.assertEqual(len(told), 1, verb)
            listed = json.loads(program.call(verb, bad, "--json").stdout.splitlines()[0])
            self.assertEqual(len(listed["unreadable"]), 1, verb)

    def test_nothing_foreign_steers_the_terminal(self):
        program.play(program.mark_script(1000, 1000, 500, 500, "x" + HOSTILE.replace("\x07", "")), SAMPLE, self.drawing)
        lock = "quillnote-lock 1\tann" + HOSTILE + "\telsewhere\t7\t0\t2024-05-06T07:08:09Z\n"
        for result in (
            program.call("report", self.drawing),
            program.call("marks", self.drawing),
            program.call("marks", self.drawing, "--json"),
            program.call("run", "-", self.drawing, text="LIST\nALL\n\n"),
            program.call("run", "-", self.drawing, text=HOSTILE + "\n", status=2),
            program.call("info", self.folder / ("no" + HOSTILE), status=2),
            program.call("--" + HOSTILE, status=2),
        ):
            self.check_terminal(result.stdout + result.stderr)
        program.write(self.folder / ".plan.dxf.quill-lock", lock.encode())
        refused = program.call("run", "-", self.drawing, text=CIRCLE + "QSAVE\n", status=2)
        self.assertIn("ann", refused.stderr)
        self.check_terminal(refused.stderr)
        opinion = program.marks(self.drawing)[0]["suggestionContent"]
        self.assertIn("\u202egpj.exe", opinion, "JSON reads it back")

    def check_terminal(self, text):
        self.assertFalse([c for c in text if c in "\x1b\x07\u202e\u009b\r"], repr(text))

    def test_import_loads_nothing_unasked(self):
        record = "[Software\\QuillnoteHost\\Applications\\X]\n\"Loader\" = text \"/tmp/x.so\"\n"
        text = "quillnote settings 1\n" + record + "[Software\\Quillnote3]\n\"style\" = number 3\n"
        result = program.call("settings", "import", "-", text=text)
        self.assertIn("Applications\\X\\Loader", result.stderr)
        self.assertNotIn("x.so", program.call("settings", "list").stdout)
        self.assertIn("style\tnumber\t3", program.call("settings", "list").stdout)
        program.call("settings", "import", "-", "--with", "Loader", text=text)
        self.assertIn("x.so", program.call("settings", "list").stdout)
        program.call("settings", "remove", "Software\\QuillnoteHost\\Applications\\X", "Loader")

    def test_pipes_and_devices_are_no_drawings(self):
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        for name in (pipe, "/dev/zero", "/dev/null", self.folder):
            for verb in (["info", name], ["marks", name], ["picture", name, self.folder / "x.png"], ["run", "-", name]):
                result = raw(*map(str, verb), text=b"")
                self.assertEqual((result.returncode, b"plain file" in result.stderr), (2, True), (verb, result.stderr))
        self.assertEqual(raw("run", "/dev/zero", self.drawing).returncode, 2)

    def test_a_folder_gets_a_file_of_the_drawings_name(self):
        target = self.folder / "out"
        target.mkdir()
        for answer in (f"{target}/", str(target)):
            program.play(CIRCLE + f"SAVEAS\n{answer}\n", self.drawing)
            self.assertEqual(os.listdir(target), ["plan.dxf"])
            (target / "plan.dxf").unlink()

    def test_names_that_are_no_utf8(self):
        folder = os.fsencode(self.folder) + b"/\xb5\xe7"
        os.mkdir(folder)
        name = folder + b"/\xc6\xf8.dxf"
        shutil.copy(self.drawing, name)
        told = raw("info", name)
        self.assertEqual(told.returncode, 0, told.stderr)
        self.assertIn(b"\\xb5\\xe7/\\xc6\\xf8.dxf", told.stdout)
        self.assertIn(b"opinion", raw("report", name).stdout)
        before = Path(os.fsdecode(name)).read_bytes()
        self.assertEqual(raw("run", "-", name, text=CIRCLE.encode() + b"QSAVE\n").returncode, 0)
        self.assertNotEqual(Path(os.fsdecode(name)).read_bytes(), before)
        self.assertEqual(raw("run", "-", name, "-o", name, "-f", text=CIRCLE.encode()).returncode, 0)
        self.assertEqual(raw("picture", name, folder + b"/\xd6.png").returncode, 0)
        self.assertEqual(raw("run", "-", name, "-o", folder + b"/\xbd.dxf", text=b"").returncode, 0)
        self.assertEqual(sorted(os.listdir(folder)), [b"\xbd.dxf", b"\xc6\xf8.dxf", b"\xd6.png"])

    def test_owner_group_and_mode_stay(self):
        os.chmod(self.drawing, 0o660)
        if os.geteuid() == 0:
            os.chown(self.drawing, 12345, 23456)
        before = os.stat(self.drawing)
        told = program.play(CIRCLE + "QSAVE\n", self.drawing).stderr
        after = os.stat(self.drawing)
        self.assertNotEqual(after.st_ino, before.st_ino)
        self.assertEqual((after.st_uid, after.st_gid, stat.S_IMODE(after.st_mode)), (before.st_uid, before.st_gid, 0o660))
        self.assertNotIn("could not keep", told)
        os.link(self.drawing, self.folder / "backup.dxf")
        told = program.play(CIRCLE + "QSAVE\n", self.drawing).stderr
        self.assertIn("could not keep", told)
        self.assertEqual(os.stat(self.folder / "backup.dxf").st_ino, after.st_ino)

    def test_marks_get_pictures_without_a_temporary_folder(self):
        for temporary in ("/nowhere/at/all", "/dev/full"):
            out = self.folder / "pictured.dxf"
            program.play(program.mark_script(1000, 1000, 500, 500, "x"), SAMPLE, out, TMPDIR=temporary)
            self.assertGreater(program.marks(out)[0]["snapImage"]["size"], 0)


if __name__ == "__main__":
    unittest.main()
