#!/usr/bin/env python3
"""Checks that the window says everything in both languages: check_translations.py [ROOT] [--fix]

Texts for people are Chinese in the sources, or English where the console tells them on standard error. The window
loads quillnote_en where it is English and quillnote_zh_CN where it is Chinese: each file holds the texts that the
sources do not have in its language. --fix writes what the sources say today into both files: new texts without a
translation, none that is gone. Prints one line for each fault, and the line "N passed, N failed".
"""

import argparse
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
from pathlib import Path

STOREYS = ("host", "app", "helpers")
FILES = {"en": "app/window/translations/quillnote_en.ts", "zh_CN": "app/window/translations/quillnote_zh_CN.ts"}
CHINESE = re.compile(r"[\u3000-\u303f\u4e00-\u9fff\uff00-\uffef\u201c\u201d]")
PLACEHOLDER = re.compile(r"%(?:L?\d+|n)")
LITERALS = re.compile(r'(?:u8|u)?"(?:[^"\\\n]|\\.)*"(?:\s*"(?:[^"\\\n]|\\.)*")*')
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
COMMENT = re.compile(r'("(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)+\')|//[^\n]*|/\*.*?\*/', re.DOTALL)
ESCAPES = {"n": "\n", "t": "\t"}
HEAD = '<?xml version="1.0" encoding="utf-8"?>\n<!DOCTYPE TS>\n<TS version="2.1" language="{}" sourcelanguage="{}">\n'


def is_chinese(text):
    """Signs alone are left to the English file, which may want other ones."""
    return bool(CHINESE.search(text)) or not re.search("[A-Za-z]", PLACEHOLDER.sub("", text))


def language_for(text):
    return "en" if is_chinese(text) else "zh_CN"


def messages(path):
    """(context, source): the message, in the order of the file."""
    found = {}
    if path.is_file():
        for context in xml.parse(path).getroot().iter("context"):
            for message in context.iter("message"):
                found[context.findtext("name"), message.findtext("source")] = message
    return found


def messages_of_sources(root):
    query = subprocess.run(["qmake6", "-query", "QT_HOST_BINS"], capture_output=True, text=True, check=True)
    lupdate = Path(query.stdout.strip()) / "lupdate"
    with tempfile.TemporaryDirectory() as folder:
        result = Path(folder) / "all.ts"
        command = [str(lupdate), "-silent", "-I", ".", "-locations", "none", "-source-language", "zh_CN",
                   "-target-language", "en", *(s for s in STOREYS if (root / s).is_dir()), "-ts", str(result)]  # fmt: skip
        done = subprocess.run(command, cwd=root, capture_output=True, text=True)
        if done.returncode or not result.is_file():
            sys.exit(f"lupdate: {done.stderr.strip()}")
        return messages(result)


def forms(message):
    translation = message.find("translation")
    if translation is None or translation.get("type") in ("unfinished", "vanished", "obsolete"):
        return []
    numbered = [form.text or "" for form in translation.iter("numerusform")]
    return [form for form in numbered or [translation.text or ""] if form]


# What a translation has to keep ------------------------------------------------------------------


def edges(text):
    return len(text) - len(text.lstrip("\n")), len(text) - len(text.rstrip())


def options(text):
    return [option for inside in re.findall(r"\[([^\]]*)\]", text) for option in inside.split("/")]


def letters(option):
    """What abbreviates the keyword: "闭合(C)" and "Close" C, "LOck" LO."""
    bracketed = re.search(r"\(([^()]+)\)$", option)
    if bracketed:
        return bracketed.group(1).upper()
    return option.upper() if is_chinese(option) else re.sub(r"[^A-Z0-9?]", "", option)


def same_keywords(source, translation, keywords):
    given, made = options(source), options(translation)
    if len(given) != len(made):
        return False
    for one, other in zip(given, made):
        if letters(one) not in (letters(other), other.upper()):
            return False
        if not other.endswith(")") and other != "?" and other.lower() not in keywords:
            return False  # Nothing would happen when it is clicked.
    return True


def faults_of(source, translation, keywords):
    if sorted(PLACEHOLDER.findall(source)) != sorted(PLACEHOLDER.findall(translation)):
        yield "other placeholders"
    if edges(source) != edges(translation):
        yield "begins or ends with other blanks"
    if ("&" in re.sub("&&", "", source)) != ("&" in re.sub("&&", "", translation)):
        yield "has a key and the other has none"
    if not same_keywords(source, translation, keywords):
        yield "other keywords"


# The rules ---------------------------------------------------------------------------------------


def file_is_complete(root, language, sources):
    wanted = {key for key in sources if language_for(key[1]) == language}
    present = messages(root / FILES[language])
    keywords = words(root)
    for context, source in sorted(wanted - set(present)):
        yield f"{FILES[language]}: {context} lacks {source!r}"
    for context, source in sorted(set(present) - wanted):
        yield f"{FILES[language]}: {context} no longer says {source!r}"
    for key in sorted(wanted & set(present)):
        translations = forms(present[key])
        if not translations:
            yield f"{FILES[language]}: no translation of {key[1]!r}"
        for translation in translations:
            for fault in faults_of(key[1], translation, keywords):
                yield f"{FILES[language]}: {fault}: {key[1]!r}, {translation!r}"


def literals(root):
    """(file, text) of every text in the code, adjoining ones joined."""
    for storey in STOREYS:
        for path in sorted((root / storey).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                code = COMMENT.sub(lambda match: match.group(1) or " ", path.read_text("utf-8"))
                for match in LITERALS.finditer(code):
                    text = "".join(LITERAL.findall(match.group()))
                    yield path.relative_to(root), re.sub(r"\\(.)", lambda m: ESCAPES.get(m.group(1), m.group(1)), text)


def words(root):
    return {word for _, text in literals(root) if not is_chinese(text) for word in text.lower().split()}


def every_chinese_text_can_be_translated(root, sources):
    known = {source for _, source in sources}
    for name, text in literals(root):
        if CHINESE.search(text) and text not in known:
            yield f"{name}: not through tr(): {text!r}"


# Writing the files -------------------------------------------------------------------------------


def write(root, language, sources):
    present = messages(root / FILES[language])
    contexts = {}
    for (context, source), message in sources.items():
        if language_for(source) == language:
            element = contexts.setdefault(context, xml.Element("context"))
            if not len(element):
                xml.SubElement(element, "name").text = context
            element.append(present.get((context, source), message))
    texts = []
    for element in contexts.values():
        xml.indent(element, "    ")
        texts.append(xml.tostring(element, "unicode", short_empty_elements=False).rstrip() + "\n")
    other = "en" if language == "zh_CN" else "zh_CN"
    (root / FILES[language]).write_text(HEAD.format(language, other) + "".join(texts) + "</TS>\n", "utf-8")


def main():
    parser = argparse.ArgumentParser(description="Checks the translations.")
    parser.add_argument("root", nargs="?", type=Path, default=Path(__file__).resolve().parent.parent)
    parser.add_argument("--fix", action="store_true", help="bring the files up to date with the sources")
    arguments = parser.parse_args()
    root = arguments.root.resolve()
    sources = messages_of_sources(root)
    if not sources:
        sys.exit("the sources say nothing")
    if arguments.fix:
        for language in FILES:
            write(root, language, sources)
    results = [list(file_is_complete(root, language, sources)) for language in FILES]
    results.append(list(every_chinese_text_can_be_translated(root, sources)))
    for fault in (fault for faults in results for fault in faults):
        print(fault)
    failed = sum(1 for faults in results if faults)
    print(f"{len(results) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
