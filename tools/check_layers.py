#!/usr/bin/env python3
"""Checks who includes whom: check_layers.py [ROOT] [--qt-headers FOLDER]

Storeys: host/ stands alone, quillnote/ stands on host/, app/ stands on host/ and loads quillnote/ at run
time, helpers/ stands on host/. Inside the storeys a folder includes only itself and the folders that its
build target names in DEPENDS, directly or through one of them. The drawing half of Qt (Gui) starts at
host/acgi, widgets stay in the few folders that show them. Prints one line for each fault, and the line
"N passed, N failed" that counts folders.
"""

import argparse
import re
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path

STOREYS = {
    "host": {"host"},
    "quillnote": {"host", "quillnote"},
    "app": {"host", "app"},
    "helpers": {"host", "helpers"},
}
# What of another storey stands on the host alone and is open to it.
SHARED = {"helpers": "quillnote/exchange/header"}
WITHOUT_GUI = ("host/base", "host/os", "host/acrx", "host/acge", "host/acdb", "host/formats")
WITH_WIDGETS = ("host/acui", "quillnote/ui", "helpers", "app")
# A folder that may use widgets only in files whose name holds the word.
WITH_WIDGETS_IN = {"quillnote/snapshot": "viewer"}

LIBRARY = re.compile(r"\bquill_library\s*\(([^)]*)\)")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
GENERATED = re.compile(r"^(ui_\w+\.h|moc_\w+\.cpp|\w+\.moc)$")
SOURCES = {".h", ".cpp"}


@dataclass
class Target:
    """One quill_library call: what it is called, where it lives and what it names in DEPENDS."""

    name: str
    folder: str
    depends: list = field(default_factory=list)


def inside(folder, parent):
    return folder == parent or folder.startswith(parent + "/")


def read_targets(root):
    targets = {}
    for storey in STOREYS:
        for listing in sorted((root / storey).rglob("CMakeLists.txt")):
            text = re.sub(r"#.*", "", listing.read_text(encoding="utf-8"))
            for call in LIBRARY.finditer(text):
                words = call.group(1).split()
                depends = words[words.index("DEPENDS") + 1 :] if "DEPENDS" in words else []
                folder = listing.parent.relative_to(root).as_posix()
                targets[words[0]] = Target(words[0], folder, depends)
    return targets


def reach(name, targets, path=()):
    """The targets that `name` stands on, itself included. ValueError when one stands on itself."""
    if name in path:
        raise ValueError(" -> ".join([*path[path.index(name) :], name]))
    found = {name}
    for below in targets[name].depends:
        if below in targets:
            found |= reach(below, targets, (*path, name))
    return found


class Checker:
    def __init__(self, root, qt_headers):
        self.root = root
        self.qt_headers = qt_headers
        self.targets = read_targets(root)
        self.by_folder = {target.folder: target for target in self.targets.values()}
        self.faults = {}

    def fault(self, folder, text):
        self.faults.setdefault(folder, []).append(text)

    def owner(self, path):
        """The target whose folder holds the path (the innermost one), or None."""
        for parent in Path(path).parents:
            if parent.as_posix() in self.by_folder:
                return self.by_folder[parent.as_posix()]
        return None

    def qt_module(self, header):
        """Gui or Widgets when the system header belongs to it; the lower one when both have it."""
        for module in ("Gui", "Widgets"):
            if header.startswith(f"Qt{module}/"):
                return module
        if "/" in header or (self.qt_headers / "QtCore" / header).exists():
            return None
        return next((m for m in ("Gui", "Widgets") if (self.qt_headers / f"Qt{m}" / header).exists()), None)

    def check_qt(self, folder, module, where):
        if module in ("Gui", "Widgets") and any(inside(folder, low) for low in WITHOUT_GUI):
            self.fault(folder, f"{where}: Qt {module} starts at host/acgi")
        elif module == "Widgets" and not self.may_use_widgets(folder, where):
            self.fault(folder, f"{where}: widgets do not belong in {folder}")

    @staticmethod
    def may_use_widgets(folder, where):
        if any(inside(folder, home) for home in WITH_WIDGETS):
            return True
        word = WITH_WIDGETS_IN.get(folder)
        # The build file may link the widgets for the sake of those files.
        return word is not None and (word in where or where.endswith("CMakeLists.txt"))

    @staticmethod
    def may_know(storey, folder):
        return folder.split("/")[0] in STOREYS[storey] or folder == SHARED.get(storey)

    def check_target(self, target):
        where = f"{target.folder}/CMakeLists.txt"
        storey = target.folder.split("/")[0]
        try:
            reach(target.name, self.targets)
        except ValueError as circle:
            self.fault(target.folder, f"{where}: the folders stand on each other: {circle}")
        for name in target.depends:
            below = self.targets.get(name)
            if below and not self.may_know(storey, below.folder):
                self.fault(target.folder, f"{where}: {storey}/ may not depend on {below.folder}")
            if name.startswith("Qt6::"):
                self.check_qt(target.folder, name.removeprefix("Qt6::"), where)

    def check_include(self, folder, target, where, included):
        parts = included.split("/")
        storey = folder.split("/")[0]
        if GENERATED.match(included):
            return
        if parts[0] not in STOREYS or len(parts) < 2:
            self.fault(folder, f'{where}: "{included}" is not written from the repository root')
        elif not self.may_know(storey, Path(included).parent.as_posix()):
            self.fault(folder, f"{where}: {storey}/ may not include {included}")
        elif target and not inside(Path(included).parent.as_posix(), folder):
            self.check_reach(folder, target, where, included)

    def check_reach(self, folder, target, where, included):
        below = self.owner(included)
        try:
            reachable = reach(target.name, self.targets)
        except ValueError:
            return  # Told by check_target.
        if below is None:
            self.fault(folder, f"{where}: {included} lies in a folder without a target")
        elif below.name not in reachable:
            self.fault(folder, f"{where}: {target.name} does not depend on {below.name} ({included})")

    def check_file(self, path):
        relative = path.relative_to(self.root).as_posix()
        target = self.owner(relative)
        folder = target.folder if target else Path(relative).parent.as_posix()
        self.faults.setdefault(folder, [])
        if target is None and folder.split("/")[0] in ("host", "quillnote"):
            self.fault(folder, f"{relative}: no quill_library target in this folder")
        text = path.read_text(encoding="utf-8")
        for match in INCLUDE.finditer(text):
            line = text.count("\n", 0, match.start(0)) + 1
            where = f"{relative}:{line}"
            if match.group(1):
                self.check_include(folder, target, where, match.group(1))
            else:
                self.check_qt(folder, self.qt_module(match.group(2)), where)

    def run(self):
        for target in self.targets.values():
            self.faults.setdefault(target.folder, [])
            self.check_target(target)
        for storey in STOREYS:
            for path in sorted((self.root / storey).rglob("*")):
                if path.suffix in SOURCES:
                    self.check_file(path)
        return self.faults


def qt_headers_of_system():
    query = subprocess.run(["qmake6", "-query", "QT_INSTALL_HEADERS"], capture_output=True, text=True, check=True)
    return Path(query.stdout.strip())


def main():
    parser = argparse.ArgumentParser(description="Checks who includes whom.")
    parser.add_argument("root", nargs="?", type=Path, default=Path(__file__).resolve().parent.parent)
    parser.add_argument("--qt-headers", type=Path, help="folder that holds QtCore/, QtGui/ and QtWidgets/")
    arguments = parser.parse_args()
    qt_headers = arguments.qt_headers or qt_headers_of_system()
    if not (qt_headers / "QtCore").is_dir():
        sys.exit(f"no Qt headers in {qt_headers}")

    faults = Checker(arguments.root, qt_headers).run()
    for text in (text for folder in sorted(faults) for text in faults[folder]):
        print(text)
    failed = sum(1 for found in faults.values() if found)
    print(f"{len(faults) - failed} passed, {failed} failed")
    sys.exit(1 if failed or not faults else 0)


if __name__ == "__main__":
    main()
