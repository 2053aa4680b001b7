#!/usr/bin/env python3
"""Checks the files that git tracks: check_repository.py [ROOT]

One case for each rule: how sources begin, how long they may grow, that the build knows every source,
that texts are clean, that links in documents lead somewhere, and that the two READMEs give the same
commands. Prints one line for each fault, and the line "N passed, N failed".
"""

import re
import subprocess
import sys
from pathlib import Path

LONGEST_SOURCE = 1000
LARGEST_FILE = 4 * 1024 * 1024
BUILT = ("host/", "quillnote/", "app/", "helpers/", "tests/", "bench/", "fuzz/")
# Drawings, data files and golden references keep their bytes, whatever they are.
OURS = re.compile(r"(\.(h|cpp|py|md|txt|cmake|json|ui|conf|yml)|^run$|^test$|/(run|setup|build|demonstration|fuzz|in_empty_folder))$")
DATA = re.compile(r"^(samples|tests/corpus)/|/golden/|/data/")
MACHINE_PATH = re.compile(r"(?<![\w.$}-])/(?:home|root|work|Users|mnt)/\w")


class Repository:
    def __init__(self, root):
        self.root = Path(root)
        listing = subprocess.run(["git", "-C", root, "ls-files", "-z"], capture_output=True, check=True)
        names = listing.stdout.decode("utf-8").split("\0")
        # A file that is removed but not yet committed has nothing to check.
        self.files = [name for name in names if name and (self.root / name).is_file()]

    def sources(self):
        return [name for name in self.files if name.endswith((".h", ".cpp")) and not DATA.search(name)]

    def texts(self):
        return [name for name in self.files if OURS.search(name) and not DATA.search(name)]

    def read(self, name):
        return (self.root / name).read_text(encoding="utf-8")


def headers_have_an_include_guard(repository):
    for name in repository.sources():
        if name.endswith(".h") and "#pragma once" not in repository.read(name):
            yield f"{name}: no #pragma once"


def files_say_what_they_are(repository):
    """A header opens with a comment; a source does too unless its header stands beside it."""
    names = set(repository.sources())
    for name in names:
        has_header = name.endswith(".cpp") and name.removesuffix("cpp") + "h" in names
        if not has_header and not repository.read(name).startswith(("//", "/*")):
            yield f"{name}: does not open with a comment that says what it is"


def sources_stay_short(repository):
    for name in repository.sources():
        lines = repository.read(name).count("\n")
        if lines > LONGEST_SOURCE:
            yield f"{name}: {lines} lines, more than {LONGEST_SOURCE}"


def the_build_knows_every_source(repository):
    """Each .cpp is named in the CMakeLists.txt of its folder or of a folder above it."""
    for name in repository.sources():
        if not name.endswith(".cpp") or not name.startswith(BUILT):
            continue
        if not any(build_file_names(repository, parent, name) for parent in Path(name).parents):
            yield f"{name}: in no CMakeLists.txt"


def build_file_names(repository, folder, name):
    listing = repository.root / folder / "CMakeLists.txt"
    if not listing.is_file():
        return False
    relative = Path(name).relative_to(folder).as_posix()
    return re.search(rf"(?<![\w/.]){re.escape(relative)}(?![\w.])", listing.read_text("utf-8")) is not None


def the_build_reaches_every_folder(repository):
    for name in repository.files:
        folder = Path(name).parent
        if Path(name).name != "CMakeLists.txt" or folder == Path("."):
            continue
        if not any(build_file_names(repository, parent, folder.as_posix()) for parent in folder.parents):
            yield f"{name}: named in no CMakeLists.txt above it"


def the_build_names_only_what_exists(repository):
    """The build leaves out what is not written yet, so that work in progress can be built."""
    for name in repository.files:
        if Path(name).name != "CMakeLists.txt":
            continue
        folder = repository.root / Path(name).parent
        text = re.sub(r"#.*", "", repository.read(name))
        for source in re.findall(r"(?<![\w/.${}<>-])[\w/.-]+\.(?:cpp|h|py)\b", text):
            if not (folder / source).is_file():
                yield f"{name}: there is no {source}"
        for call in re.findall(r"\bquill_folders\(([^)]*)\)", text):
            yield from (f"{name}: there is no {below}/CMakeLists.txt" for below in call.split()
                        if not (folder / below / "CMakeLists.txt").is_file())  # fmt: skip


def texts_are_clean(repository):
    for name in repository.texts():
        try:
            text = (repository.root / name).read_bytes().decode("utf-8")
        except UnicodeDecodeError as error:
            yield f"{name}: not UTF-8 ({error})"
            continue
        if "\r" in text or "\t" in text and not name.endswith(".md"):
            yield f"{name}: carriage returns or tabs"
        if re.search(r"[ \t]$", text, re.MULTILINE):
            yield f"{name}: blanks at the end of a line"
        if text and not text.endswith("\n"):
            yield f"{name}: no line end at the end"
        if re.search(r"^(<{7}|>{7}) ", text, re.MULTILINE):
            yield f"{name}: an unfinished merge"


def texts_name_no_machine(repository):
    for name in repository.texts():
        for number, line in enumerate(repository.read(name).split("\n"), 1):
            if MACHINE_PATH.search(line):
                yield f"{name}:{number}: a path of one machine"


def files_are_small(repository):
    for name in repository.files:
        size = (repository.root / name).stat().st_size
        if size > LARGEST_FILE:
            yield f"{name}: {size} bytes, more than {LARGEST_FILE}"


def scripts_are_sound(repository):
    for name in repository.files:
        if DATA.search(name) or not (repository.root / name).read_bytes().startswith(b"#!"):
            continue
        path = repository.root / name
        if not path.stat().st_mode & 0o100:
            yield f"{name}: a script that cannot be executed"
        if b"bash" in path.read_bytes().split(b"\n")[0]:
            check = subprocess.run(["bash", "-n", str(path)], capture_output=True, text=True)
            if check.returncode:
                yield f"{name}: {check.stderr.strip()}"


def links_lead_somewhere(repository):
    for name in repository.files:
        if not name.endswith(".md"):
            continue
        for link in re.findall(r"\]\(([^)\s#]+)[^)]*\)", repository.read(name)):
            if "://" not in link and not (repository.root / name).parent.joinpath(link).exists():
                yield f"{name}: the link {link} leads nowhere"


def readmes_give_the_same_commands(repository):
    blocks = {}
    for name in ("README.md", "README.zh-CN.md"):
        # Only what is typed: the words behind the first gap of a line are explanation, in its language.
        fenced = re.findall(r"^```\w*\n(.*?)^```", repository.read(name), re.MULTILINE | re.DOTALL)
        lines = [line for block in fenced for line in block.split("\n")]
        blocks[name] = [re.split(r"\s{2,}", line.strip())[0] for line in lines]
    english, chinese = blocks.values()
    if english != chinese:
        pair = next(((a, b) for a, b in zip(english, chinese) if a != b), (len(english), len(chinese)))
        yield f"README.md and README.zh-CN.md differ: {pair[0]} and {pair[1]}"


RULES = (
    headers_have_an_include_guard,
    files_say_what_they_are,
    sources_stay_short,
    the_build_knows_every_source,
    the_build_reaches_every_folder,
    the_build_names_only_what_exists,
    texts_are_clean,
    texts_name_no_machine,
    files_are_small,
    scripts_are_sound,
    links_lead_somewhere,
    readmes_give_the_same_commands,
)


def main():
    repository = Repository(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
    if not repository.files:
        sys.exit("git tracks no files here")
    failed = 0
    for rule in RULES:
        faults = list(rule(repository))
        failed += bool(faults)
        for fault in faults:
            print(f"{rule.__name__.replace('_', ' ')}: {fault}")
    print(f"{len(RULES) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
