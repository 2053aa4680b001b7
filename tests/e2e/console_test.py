#!/usr/bin/env python3
"""The console from outside: exit statuses, what goes to which stream, what -o does, modules and their verbs."""

import json
import os
import re
import subprocess
import unittest
from pathlib import Path

QUILLNOTE = os.environ["QUILLNOTE"]
MODULE = Path(QUILLNOTE).parents[1] / "tests" / "libe2e_sample_module.so"
RECORDS = "Software\\QuillnoteHost\\Applications"

DRAWING = """\
0
SECTION
2
ENTITIES
0
LINE
8
0
10
0.0
20
0.0
30
0.0
11
100.0
21
50.0
31
0.0
0
CIRCLE
8
walls
10
50.0
20
50.0
30
0.0
40
10.0
0
ENDSEC
0
EOF
"""


# Without a display, whatever the tests are started from: no run may open a window.
ENVIRONMENT = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}


def run(*arguments, text=None):
    command = [QUILLNOTE, *map(str, arguments)]
    return subprocess.run(command, input=text, capture_output=True, text=True, encoding="utf-8", timeout=60,
                          env=ENVIRONMENT)  # fmt: skip


def kinds(file):
    return json.loads(run("info", file, "--json", "--no-module").stdout)["entities"]


class ConsoleTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.id().rsplit(".", 1)[1])
        self.folder.mkdir()
        self.drawing = self.write("plan.dxf", DRAWING)

    def write(self, name, content):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8", newline="")
        return path

    def play(self, script, *arguments, module=False):
        """Runs a script on the drawing; without the module unless told."""
        path = self.write("s.qns", script)
        return run("run", path, *(arguments or [self.drawing]), *([] if module else ["--no-module"]))

    def expect(self, result, status, *messages):
        self.assertEqual(result.returncode, status, result.stderr)
        self.assertTrue(result.stderr.endswith("\n") or not result.stderr, result.stderr)
        for line in (result.stdout + result.stderr).splitlines():
            said = re.sub(r"“[^”]*”|\"[^\"]*\"|\S*[./]\S*", "", line)  # What was typed, and names of files.
            mixed = re.search("[\u4e00-\u9fff]", said) and re.search("[a-z]{2,} [a-z]{2,}", said)
            self.assertFalse(mixed, f"two languages: {line}")
        for message in messages:
            self.assertIn(message, result.stderr)


class CommandLineTest(ConsoleTest):
    def test_help_and_version_are_everywhere(self):
        for arguments in (["--help"], ["run", "--help"], ["info", "--help"], ["settings", "set", "--help"]):
            result = run(*arguments, "--no-module")
            self.expect(result, 0)
            self.assertIn("Usage: quillnote", result.stdout)
            self.assertEqual(result.stderr, "")
        for arguments in (["--version"], ["info", "--version"]):
            result = run(*arguments)
            self.expect(result, 0)
            self.assertEqual(result.stdout, "quillnote 7.0.0\n")

    def test_what_is_not_understood_is_trouble(self):
        cases = {
            (): "no display",
            (str(self.drawing),): "no display",
            ("infoo", str(self.drawing)): "infoo is neither a verb nor a file",
            ("info",): "FILE",
            ("info", str(self.drawing), "--nonsense"): "--nonsense",
            ("run", "s.qns"): "FILE",
            ("settings",): "subcommand",
        }
        for arguments, message in cases.items():
            result = run(*arguments, "--no-module")
            self.expect(result, 2, message)
            self.assertEqual(result.stdout, "")


class InfoTest(ConsoleTest):
    def test_names_the_version_that_the_file_states(self):
        for number, name in (("AC1.40", "R1.4"), ("AC1004", "R9"), ("AC1006", "R10"), ("AC1009", "R12"), ("AC1015", "2000")):
            file = self.write("old.dxf", f"0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n{number}\n0\nENDSEC\n0\nEOF\n")
            info = json.loads(run("info", file, "--json", "--no-module").stdout)
            self.assertEqual((info["version"], info["versionNumber"]), (name, number))

    def test_tells_what_the_file_holds(self):
        result = run("info", self.drawing, "--json", "--no-module")
        self.expect(result, 0)
        info = json.loads(result.stdout)
        self.assertEqual((info["version"], info["format"]), ("R12", "DXF text"))
        self.assertEqual(info["entities"], {"LINE": 1, "CIRCLE": 1})
        self.assertEqual(info["extents"], {"min": [0, 0, 0], "max": [100, 60, 0]})
        self.assertEqual(info["layouts"][0], {"name": "Model", "entities": 2})
        text = run("info", self.drawing, "--no-module").stdout
        self.assertIn("CIRCLE 1, LINE 1", text)
        self.assertIn("(0, 0, 0) to (100, 60, 0)", text)

    def test_a_file_that_cannot_be_read_does_not_hide_the_others(self):
        broken = self.write("broken.dxf", "no drawing at all\n")
        result = run("info", self.folder / "missing.dxf", broken, self.drawing, "--json", "--no-module")
        self.expect(result, 2, "missing.dxf", "broken.dxf")
        self.assertEqual(json.loads(result.stdout)["entities"]["LINE"], 1)


class ScriptTest(ConsoleTest):
    def test_a_script_draws_and_the_result_is_saved(self):
        result = self.play("; two ways\nLINE\n0,0\n@10,10\n\n(command \"_CIRCLE\" \"5,5\" \"2\")\n",
                           self.drawing, "-o", self.folder / "out.dxf")
        self.expect(result, 0)
        self.assertEqual(result.stdout, "")
        found = kinds(self.folder / "out.dxf")
        self.assertEqual((found["LINE"], found["CIRCLE"]), (2, 2))
        self.assertEqual(self.drawing.read_text(), DRAWING, "without -o onto it a file stays")

    def test_standard_input_and_the_scripts_own_saving(self):
        copy = self.folder / "copy.dxf"
        result = run("run", "-", self.drawing, "--no-module", text=f"CIRCLE\n0,0\n1\nSAVE\n{copy}\n")
        self.expect(result, 0)
        self.assertEqual(kinds(copy)["CIRCLE"], 2)

    def test_the_first_line_that_does_not_fit_ends_the_run(self):
        cases = {
            "CIRCLE\n0,0\n": "s.qns, at its end: the prompt",
            "CIRCLE\n@ok\n": "s.qns:2: @ok: no dialog is open; the prompt",
            "REGEN\n@ok\n": "s.qns:2: @ok: no dialog is open; the command prompt",
            "REGEN\nNOSUCHCOMMAND\nREGEN\n": "s.qns:2: 未知命令“NOSUCHCOMMAND”",
            "(+ 1\n": "s.qns:1: malformed list",
            "LINE\n0,0\nnowhere\n": "s.qns:3: “nowhere”: ",
            "OPEN\nmissing.dxf\nERASE\nall\n\n": "missing.dxf: not found",
            "MOVE\nall\n\n0,0\n1e308,0\n" * 2: "2 个对象不允许这样改动",
            "REGEN\n@push 1\n": "s.qns:2: @push 1: there is no dialog line",
            "REGEN\n\udcff\n": None,
        }
        for script, message in cases.items():
            if message is None:
                path = self.folder / "bytes.qns"
                path.write_bytes(b"REGEN\n\xff\n")
                result, message = run("run", path, self.drawing, "--no-module"), "bytes.qns:2: the line is not UTF-8"
            else:
                result = self.play(script, self.drawing, "-o", self.folder / "out.dxf")
            self.expect(result, 2, message)
            self.assertFalse((self.folder / "out.dxf").exists(), script)

    def test_quit_ends_the_script_of_one_file_only(self):
        other = self.write("other.dxf", DRAWING)
        result = self.play("CIRCLE\n0,0\n1\nQUIT\ny\nNOSUCHCOMMAND\n", self.drawing, other, "-o",
                           self.folder / "out")
        self.expect(result, 0)
        self.assertEqual([kinds(self.folder / "out" / each.name)["CIRCLE"] for each in (self.drawing, other)], [2, 2])

    def test_one_files_trouble_leaves_the_others_their_turn(self):
        result = self.play("CIRCLE\n0,0\n1\n", self.folder / "missing.dxf", self.drawing, "-o", self.folder / "out")
        self.expect(result, 2, "missing.dxf")
        self.assertEqual(kinds(self.folder / "out" / "plan.dxf")["CIRCLE"], 2)

    def test_output_never_overwrites_unless_told(self):
        kept = self.write("kept.dxf", "mine")
        result = self.play("CIRCLE\n0,0\n1\n", self.drawing, "-o", kept)
        self.expect(result, 2, "kept.dxf exists; -f overwrites it")
        self.assertEqual(kept.read_text(), "mine")
        written = self.folder / "by_script.dxf"
        result = self.play(f"CIRCLE\n0,0\n1\nSAVE\n{written}\n", self.drawing, "-o", written)
        self.expect(result, 2, "by_script.dxf exists")
        self.expect(self.play("CIRCLE\n0,0\n1\n", self.drawing, "-o", kept, "-f"), 0)
        self.assertEqual(kinds(kept)["CIRCLE"], 2)
        self.expect(self.play("CIRCLE\n0,0\n1\n", self.drawing, "-o", self.drawing, "-f"), 0)
        self.assertEqual(kinds(self.drawing)["CIRCLE"], 2)

    def test_echo_tells_what_was_asked_and_answered(self):
        result = self.play("CIRCLE\n0,0\n1\n", self.drawing, "--echo")
        self.expect(result, 0, "s.qns:1: the command prompt: CIRCLE", ": 0,0")


class SettingsTest(ConsoleTest):
    KEY = "Software\\Quillnote3\\Test"

    def test_values_are_stored_with_their_type(self):
        for name, value, options in (("n", "42", []), ("m", "-1", []), ("t", "42", ["--text"]), ("u", "图层", [])):
            self.expect(run("settings", "set", self.KEY, name, "--force", *options, "--", value), 0)
        self.assertEqual(run("settings", "get", self.KEY, "u").stdout, "图层\n")
        self.assertEqual(json.loads(run("settings", "get", self.KEY, "t", "--json").stdout), {"key": self.KEY, "name": "t", "value": "42"})
        listed = [json.loads(line) for line in run("settings", "list", self.KEY, "--json").stdout.splitlines()]
        self.assertEqual({each["name"]: each["value"] for each in listed},
                         {"n": 42, "m": 4294967295, "t": "42", "u": "图层"})
        self.expect(run("settings", "get", self.KEY, "missing"), 2, "there is no setting missing")
        self.expect(run("settings", "set", self.KEY, "n", "4294967296", "--number", "--force"), 2, "is no number")
        self.expect(run("settings", "set", self.KEY, "n", "43"), 2, "nothing reads a setting n", "--force")
        self.assertEqual(run("settings", "get", self.KEY, "n").stdout, "42\n")

    def test_values_of_the_module_get_the_type_that_it_reads(self):
        key = "Software\\Quillnote3"
        cases = (("style", "-3", 4294967293), ("NAME", "10086", "10086"), ("savedNearTxt14", "12", "12"),
                 ("autoTargetTxtH", "-1", 4294967295))
        for name, value, stored in cases:
            with self.subTest(name):
                self.expect(run("settings", "set", key, name, "--", value), 0)
                self.assertEqual(json.loads(run("settings", "get", key, name, "--json").stdout)["value"], stored)
        for arguments, reason in ((("style", "three"), "is no number"), (("style", "3", "--text"), "is a number"),
                                  (("name", "3", "--number"), "is a text"), (("style", "-2147483649"), "is no number")):
            with self.subTest(arguments):
                name, value, *options = arguments
                self.expect(run("settings", "set", key, name, *options, "--", value), 2, reason)
        self.assertEqual(run("settings", "get", key, "style").stdout, "4294967293\n")
        for name, *_ in cases:
            self.expect(run("settings", "remove", key, name), 0)

    def test_they_travel_in_a_file(self):
        self.expect(run("settings", "set", self.KEY + "2", "travels", "yes", "--force"), 0)
        file = self.folder / "settings.txt"
        self.expect(run("settings", "export", file), 0)
        self.expect(run("settings", "export", file), 2, "exists; -f overwrites it")
        self.expect(run("settings", "export", file, "-f"), 0)
        self.expect(run("settings", "remove", self.KEY + "2", "travels"), 0)
        self.expect(run("settings", "get", self.KEY + "2", "travels"), 2)
        self.expect(run("settings", "import", file), 0)
        self.assertEqual(run("settings", "get", self.KEY + "2", "travels").stdout, "yes\n")
        broken = self.write("broken.txt", file.read_text(encoding="utf-8") + "nonsense\n")
        self.expect(run("settings", "import", broken), 2, "broken.txt:")


class ModuleTest(ConsoleTest):
    def setUp(self):
        super().setUp()
        self.record("Sample", MODULE)

    def record(self, name, path):
        """What a module leaves behind to be loaded at start-up."""
        run("settings", "set", RECORDS, "Names", name, "--force")
        run("settings", "set", f"{RECORDS}\\{name}", "Loader", path, "--force")
        run("settings", "set", f"{RECORDS}\\{name}", "LoadReasons", "2", "--force")
        self.addCleanup(run, "settings", "remove", RECORDS, "Names")

    def test_a_module_brings_its_verbs(self):
        result = run("tally", self.drawing)
        self.expect(result, 0, "sample module loaded", "sample module unloaded")
        self.assertEqual(result.stdout, "count 2\n")
        seen = subprocess.run([QUILLNOTE, "tally", self.drawing], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, encoding="utf-8", timeout=60, env=ENVIRONMENT).stdout  # fmt: skip
        self.assertIn("sample module loaded\ncount 2\n", seen)
        self.assertIn("tally", run("--help").stdout)
        self.assertIn("--kind KIND", run("tally", "--help").stdout)
        self.assertEqual(json.loads(run("tally", self.drawing, "--json", "--kind", "LINE").stdout), {"count": 1})
        result = run("tally", self.drawing, "--kind", "ARC", "--quiet")
        self.expect(result, 1)
        self.assertEqual(result.stdout, "")
        result = run("tally", self.drawing, self.folder / "missing.dxf")
        self.expect(result, 2, "missing.dxf")
        self.assertEqual(result.stdout, f"{self.drawing}:\ncount 2\n")
        self.expect(run("tally", self.drawing, "--no-module"), 2, "tally is neither a verb nor a file")

    def test_a_module_that_is_gone_is_told(self):
        self.record("Gone", self.folder / "gone.so")
        self.expect(run("info", self.drawing), 0, "the module Gone is not loaded")

    def test_a_script_works_a_dialog(self):
        script = "SAMPLEDIALOG\n@set 1003 \"a \\\"b\\\"\"\n@ok\n@no\n@click 1\n@yes\n"
        self.expect(self.play(script, module=True), 0, 'dialog ok: a "b"', "Sure?")
        self.expect(self.play("SAMPLEDIALOG\n@cancel\n", module=True), 0, "dialog left: ")

    def test_a_dialog_line_that_does_not_fit_ends_the_run(self):
        cases = {
            "@set 1004 x": 's.qns:2: dialog CSample "Sample": @set 1004 x: there is no control 1004',
            "@ok\n@cancel": 's.qns:3: message box "Sure?" (@yes, @no): @cancel is none of its buttons',
            "@ok": 's.qns, at its end: message box "Sure?" (@yes, @no) finds no answer',
            "@set 1003 x\nREGEN": 's.qns:3: dialog CSample "Sample" finds no answer',
            "@ok\n@yes\n@yes": "s.qns:4: @yes: no dialog is open; the command prompt",
        }
        for lines, message in cases.items():
            self.expect(self.play(f"SAMPLEDIALOG\n{lines}\n", module=True), 2, message)
        self.expect(self.play("SAMPLESTRANGER\n", module=True), 2, "s.qns:1: window QMessageBox")

    def test_a_script_works_a_window_that_stays_open(self):
        script = "SAMPLEPALETTE\n@keys Ctrl\n@in CPalette click 1006\n@in CPalette click 1006\n"
        result = self.play(script, self.drawing, "-o", self.folder / "out.dxf", module=True)
        self.expect(result, 0, "keys:Ctrl\n")
        self.assertEqual(kinds(self.folder / "out.dxf")["CIRCLE"], 3, "what the window queued has run")
        self.expect(self.play("@in CPalette click 1006\n", module=True), 2, "s.qns:1: @in CPalette click 1006: no window")


if __name__ == "__main__":
    unittest.main()
