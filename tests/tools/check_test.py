#!/usr/bin/env python3
"""Tests of the repository's checks: each rule must see its fault and leave a sound tree alone."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

# A sound tree: two host folders, the drawing folder, the module, the program.
SOUND = {
    "host/base/CMakeLists.txt": "quill_library(host_base SHARED SOURCES a.cpp DEPENDS Qt6::Core)",
    "host/base/a.h": '#include <QString>\n#include <vector>\n#include "host/base/b.h"\n',
    "host/acdb/CMakeLists.txt": "quill_library(host_acdb SHARED\n  SOURCES a.cpp\n  DEPENDS host_base)",
    "host/acdb/a.cpp": '#include "host/base/a.h"\n',
    "host/acgi/CMakeLists.txt": "quill_library(host_acgi SHARED SOURCES a.cpp DEPENDS host_acdb Qt6::Gui)",
    # Reaches the base through acdb; a header of generated code stands beside it.
    "host/acgi/a.cpp": '#include <QColor>\n#include "host/base/a.h"\n#include "a.moc"\n',
    "quillnote/ui/CMakeLists.txt": "quill_library(quillnote_ui STATIC SOURCES a.cpp DEPENDS host_acgi Qt6::Widgets)",
    "quillnote/ui/a.cpp": '#include <QWidget>\n#include "host/acdb/a.h"\n#include "ui_editor.h"\n',
    "quillnote/snapshot/CMakeLists.txt": "quill_library(quillnote_snapshot STATIC DEPENDS host_acgi Qt6::Widgets)",
    "quillnote/snapshot/viewer.cpp": "#include <QtWidgets/QWidget>\n",
    "app/main.cpp": '#include "host/acgi/a.h"\n',
}
QT_HEADERS = ("QtCore/QString", "QtGui/QColor", "QtWidgets/QWidget", "QtGui/QAction", "QtWidgets/QAction")


def run_tool(name, *arguments):
    tool = [sys.executable, str(ROOT / "tools" / name), *map(str, arguments)]
    return subprocess.run(tool, capture_output=True, text=True)


class TreeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, files):
        for name, text in files.items():
            path = self.root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")


class LayersTest(TreeTest):
    def setUp(self):
        super().setUp()
        self.write({f"qt/{header}": "" for header in QT_HEADERS})

    def check(self, changes):
        self.write(SOUND | changes)
        result = run_tool("check_layers.py", self.root, "--qt-headers", self.root / "qt")
        for name in changes:
            if name in SOUND:
                self.write({name: SOUND[name]})
            else:
                (self.root / name).unlink()
        return result

    def test_a_sound_tree_passes(self):
        result = self.check({})
        self.assertEqual((result.stdout, result.returncode), ("6 passed, 0 failed\n", 0))

    def test_each_fault_is_seen(self):
        rows = (
            ("host/base/a.cpp", '#include "host/acdb/a.h"', "host_base does not depend on host_acdb"),
            ("host/base/a.cpp", '  #  include "quillnote/ui/a.h"', "host/ may not include quillnote/ui/a.h"),
            ("host/base/a.cpp", '#include "a.h"', '"a.h" is not written from the repository root'),
            ("host/base/a.cpp", '#include "tests/support/files.h"', "is not written from the repository root"),
            ("host/base/a.cpp", "#include <QtGui/qcolor.h>", "a.cpp:1: Qt Gui starts at host/acgi"),
            ("host/acdb/a.cpp", "//\n#include <QAction>", "a.cpp:2: Qt Gui starts at host/acgi"),
            ("host/acgi/a.cpp", "#include <QWidget>", "widgets do not belong in host/acgi"),
            ("quillnote/snapshot/capture.cpp", "#include <QWidget>", "widgets do not belong in quillnote/snapshot"),
            ("quillnote/ui/a.cpp", '#include "app/a.h"', "quillnote/ may not include app/a.h"),
            ("quillnote/ui/a.cpp", '#include "quillnote/snapshot/viewer.h"', "does not depend on quillnote_snapshot"),
            ("quillnote/ui/a.cpp", '#include "host/os/a.h"', "host/os/a.h lies in a folder without a target"),
            ("app/main.cpp", '#include "quillnote/ui/a.h"', "app/ may not include quillnote/ui/a.h"),
            ("host/os/a.cpp", "int a;", "host/os/a.cpp: no quill_library target in this folder"),
            ("host/base/CMakeLists.txt", "quill_library(host_base SHARED DEPENDS host_acdb)", "stand on each other"),
            ("host/base/CMakeLists.txt", "quill_library(host_base SHARED DEPENDS Qt6::Gui)", "Qt Gui starts at"),
            ("host/acdb/CMakeLists.txt", "quill_library(host_acdb SHARED DEPENDS host_base quillnote_ui)",
             "host/ may not depend on quillnote/ui"),
        )  # fmt: skip
        for name, text, fault in rows:
            with self.subTest(name=name, text=text):
                result = self.check({name: text})
                self.assertIn(fault, result.stdout)
                self.assertEqual(result.returncode, 1)

    def test_a_commented_dependency_is_none(self):
        listing = "quill_library(host_acdb SHARED SOURCES a.cpp DEPENDS\n  # host_base\n  )"
        self.assertIn("does not depend on host_base", self.check({"host/acdb/CMakeLists.txt": listing}).stdout)

    def test_an_empty_tree_does_not_pass(self):
        self.write({"qt/QtCore/QString": ""})
        self.assertEqual(run_tool("check_layers.py", self.root, "--qt-headers", self.root / "qt").returncode, 1)


class RepositoryTest(TreeTest):
    SOUND = {
        "README.md": "[guide](docs/guide.md#start)\n```\n./run  builds\n```\n",
        "README.zh-CN.md": "```\n./run   编译\n```\n",
        "docs/guide.md": "text\n",
        "CMakeLists.txt": "quill_folders(host/base)\n",
        "host/base/CMakeLists.txt": "quill_library(host_base SHARED SOURCES a.cpp)\n",
        "host/base/a.h": "// A.\n#pragma once\n",
        "host/base/a.cpp": '#include "host/base/a.h"\n',
        "samples/data.txt": "kept \r\n",
    }

    def check(self, changes):
        subprocess.run(["git", "init", "--quiet", str(self.root)], check=True)
        self.write(self.SOUND | changes)
        subprocess.run(["git", "-C", str(self.root), "add", "--all"], check=True)
        result = run_tool("check_repository.py", self.root)
        for name in set(changes) - set(self.SOUND):
            (self.root / name).unlink()
        return result

    def test_a_sound_tree_passes(self):
        result = self.check({})
        self.assertRegex(result.stdout, r"\A\d+ passed, 0 failed\n\Z")
        self.assertEqual(result.returncode, 0)

    def test_each_fault_is_seen(self):
        rows = (
            ("host/base/a.h", "// A.\n", "host/base/a.h: no #pragma once"),
            ("host/base/b.cpp", "int b;\n", "host/base/b.cpp: does not open with a comment"),
            ("host/base/b.cpp", "// B.\n", "host/base/b.cpp: in no CMakeLists.txt"),
            ("host/base/ba.cpp", "// B.\n", "host/base/ba.cpp: in no CMakeLists.txt"),
            ("host/base/CMakeLists.txt", "quill_library(host_base SHARED SOURCES a.cpp c.cpp)\n", "there is no c.cpp"),
            ("CMakeLists.txt", "quill_folders(host/base app)\n", "there is no app/CMakeLists.txt"),
            ("host/os/CMakeLists.txt", "\n", "host/os/CMakeLists.txt: named in no CMakeLists.txt"),
            ("host/base/a.h", "// A.\n#pragma once\n" + "\n" * 1000, "more than 1000"),
            ("host/base/a.h", "// A. \n#pragma once\n", "blanks at the end of a line"),
            ("host/base/a.h", "// A.\n#pragma once", "no line end at the end"),
            ("host/base/a.h", "// A.\r\n#pragma once\r\n", "carriage returns or tabs"),
            ("docs/guide.md", "in /" + "home/somebody/tree\n", "docs/guide.md:1: a path of one machine"),
            ("docs/guide.md", "[gone](gone.md)\n", "the link gone.md leads nowhere"),
            ("README.zh-CN.md", "```\n./test  编译\n```\n", "README.md and README.zh-CN.md differ"),
            ("run", "#!/usr/bin/env bash\n", "run: a script that cannot be executed"),
            ("run", "#!/usr/bin/env bash\nif\n", "syntax error"),
            ("docs/large.bin", "x" * (4 * 1024 * 1024 + 1), "docs/large.bin: 4194305 bytes"),
        )
        for name, text, fault in rows:
            with self.subTest(name=name, fault=fault):
                result = self.check({name: text})
                self.assertIn(fault, result.stdout)
                self.assertEqual(result.returncode, 1)


class TranslationsTest(TreeTest):
    SOUND = {
        "host/base/host_text.h": "struct Host { Q_DECLARE_TR_FUNCTIONS(Host) };\n",
        "host/aced/a.cpp": """auto a = ask("Close LOck", Host::tr("\\n%1点或 [闭合(C)/"  // 注释
            "锁定(LO)/?]: "));\nauto b = Host::tr("not found");\n""",
    }
    TRANSLATIONS = {
        "en": ("\n%1点或 [闭合(C)/锁定(LO)/?]: ", "\nPoint %1 or [Close/LOck/?]: "),
        "zh_CN": ("not found", "找不到"),
    }

    def check(self, changes=None, *arguments, **translations):
        for language, pair in (self.TRANSLATIONS | translations).items():
            path = f"app/window/translations/quillnote_{language}.ts"
            message = f"<message><source>{pair[0]}</source><translation>{pair[1]}</translation></message>"
            self.write({path: f"<TS><context><name>Host</name>{message}</context></TS>"})
        self.write(self.SOUND | (changes or {}))
        return run_tool("check_translations.py", self.root, *arguments)

    def test_a_sound_tree_passes(self):
        result = self.check()
        self.assertEqual(result.stdout, "3 passed, 0 failed\n", result.stderr)
        self.assertEqual(result.returncode, 0)

    def test_each_fault_of_a_translation_is_seen(self):
        source = self.TRANSLATIONS["en"][0]
        rows = (
            ("", "no translation"),
            ("\nPoint %2 or [Close/LOck/?]: ", "other placeholders"),
            ("Point %1 or [Close/LOck/?]: ", "other blanks"),
            ("\nPoint %1 or [Close/LOck/?]:", "other blanks"),
            ("\nPoint %1 or [Close/LOck]: ", "other keywords"),
            ("\nPoint %1 or [Close/Lock/?]: ", "other keywords"),
            ("\nPoint %1 or [Closed/LOck/?]: ", "other keywords"),
            ("\n&amp;Point %1 or [Close/LOck/?]: ", "has a key"),
        )
        for translation, fault in rows:
            with self.subTest(translation=translation):
                result = self.check(en=(source, translation))
                self.assertIn(fault, result.stdout)
                self.assertEqual(result.returncode, 1)
        self.assertIn("no longer says", self.check(zh_CN=("was found", "找到")).stdout)

    def test_each_fault_of_a_source_is_seen(self):
        self.assertIn("not through tr(): '点'", self.check({"app/a.h": 'QStringLiteral("点");\n'}).stdout)
        self.assertIn("quillnote_zh_CN.ts: Host lacks 'gone'", self.check({"app/a.h": 'Host::tr("gone");\n'}).stdout)

    def test_files_are_brought_up_to_date(self):
        result = self.check({"app/a.cpp": 'auto c = Host::tr("gone");\n'}, "--fix", en=("旧", "old"))
        self.assertIn("no translation of 'gone'", result.stdout)
        self.assertNotIn("旧", result.stdout)
        self.assertNotIn("'not found'", result.stdout, "a translation stays")


class CountTest(TreeTest):
    CASES = """<testsuites><testsuite>
        <testcase name="good" classname="S" status="run" result="completed"/>
        <testcase name="left" classname="S" status="notrun" result="suppressed"/>
        <testcase name="skip" classname="S" status="run" result="skipped"><skipped/></testcase>
        {more}</testsuite></testsuites>"""
    BAD = '<testcase name="bad" classname="S" status="run" result="completed"><failure/><failure/></testcase>'

    def count(self, entries, files):
        rows = "".join(f'<testcase name="{name}" status="{status}"/>' for name, status in entries.items())
        self.write({"ctest.xml": f"<testsuite>{rows}</testsuite>"} | files)
        result = run_tool("count_tests.py", self.root / "ctest.xml")
        return result.stdout.splitlines()[-1], result.returncode

    def test_counts_cases_and_programs(self):
        good, bad = self.CASES.format(more=""), self.CASES.format(more=self.BAD)
        rows = (
            ({"script": "run", "a": "run"}, {"a.xml": good}, ("2 passed, 0 failed", 0)),
            ({"a": "fail"}, {"a.xml": bad}, ("1 passed, 1 failed", 1)),
            ({"a": "fail"}, {"a.xml": good}, ("1 passed, 1 failed", 1)),
            ({"script": "fail", "never_built": "notrun", "other": "run"}, {}, ("1 passed, 2 failed", 1)),
            ({"a": "fail", "b": "run"}, {"a.xml": "<testsuites", "b.xml": good}, ("1 passed, 1 failed", 1)),
            ({}, {}, ("0 passed, 0 failed", 1)),
        )
        for entries, files, expected in rows:
            with self.subTest(entries=entries):
                self.assertEqual(self.count(entries, files), expected)
                for name in files:
                    (self.root / name).unlink()

    def test_missing_results_fail(self):
        self.assertEqual(run_tool("count_tests.py", self.root / "none.xml").returncode, 1)


if __name__ == "__main__":
    unittest.main()
