#!/usr/bin/env python3
"""Writes docs/api.md from the comments of include/qvx64/api.h: api_reference.py [--check]

With --check, writes nothing and fails when the document is not what the header says. Either way
every function must say all that a caller needs: each parameter, what it returns and what failure
looks like then, and the worst case. The thread, and the failure of a function that returns nothing,
stand in the header's opening and are told only where there is more to say.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).parents[2]
HEADER = ROOT / "include/qvx64/api.h"
DOCUMENT = ROOT / "docs/api.md"

INTRODUCTION = """# API reference

What `include/qvx64/api.h` declares, from its comments; `scripts/docs/api_reference.py` writes this file.
What looks odd on purpose is in the [compatibility notes](compatibility.md).
"""
TERMS = r"(?:listing|\d+ ms|1 access|\d+ accesses)"
WORST_CASE = re.compile(rf"(does not block|{TERMS}(?: \+ {TERMS})*)(, .*)?\.")


class Function:
    def __init__(self, comment, declaration):
        self.declaration = re.sub(r"\s+", " ", declaration)
        self.name = re.search(r"(\w+)\(", self.declaration).group(1)
        inside = self.declaration[self.declaration.index("(") + 1:self.declaration.rindex(")")]
        callback = re.match(r"void \(\*(\w+)\)\(void\)$", inside)
        self.parameters = [callback.group(1)] if callback else re.findall(r"(\w+)(?:,|$)", inside)
        if inside == "void":
            self.parameters = []
        self.returns = not self.declaration.startswith("void ")
        self.text, self.labels = split_labels(comment, self.possible())

    def possible(self):
        return self.parameters + ["Result"] * self.returns + ["Failure", "Thread", "Worst case"]

    def wanted(self):
        defaults = {"Thread"} if self.returns else {"Thread", "Failure"}
        return [label for label in self.possible()
                if label in self.labels or label not in defaults]

    def faults(self):
        if list(self.labels) != self.wanted():
            yield f"{self.name}: says {list(self.labels)} instead of {self.wanted()}"
        elif not WORST_CASE.fullmatch(self.labels["Worst case"]):
            yield f'{self.name}: worst case "{self.labels["Worst case"]}"'


class Constants:
    def __init__(self, comment, body):
        self.text = lines_of(comment)
        line = r"(\w+) = (-?\w+),?(?: */\* (.*?) \*/)?"
        self.rows = re.findall(line, body)


def lines_of(comment):
    return [re.sub(r"^ \* ?", "", line).rstrip() for line in comment.strip().splitlines()]


def split_labels(comment, wanted):
    """The text before the first label, and what stands behind each label."""
    text, labels = [], {}
    for line in lines_of(comment):
        label = re.match(r"([A-Z]\w*|Worst case|\w+): (.*)", line)
        if label and label.group(1) in wanted:
            labels[label.group(1)] = label.group(2)
        elif labels:
            labels[next(reversed(labels))] += " " + line.strip()
        else:
            text.append(line)
    return text, {label: said.strip() for label, said in labels.items()}


def read_header(text):
    """The opening comment, and (title, constants, functions) of each group."""
    opening = re.match(r"/\* (.*?)\*/", text, re.DOTALL).group(1)
    comment = r"/\* ((?:(?!\*/).)*?)\*/\n"
    patterns = [r"/\* ==== (.*?) ==== \*/", comment + r"enum {(.*?)};",
                comment + "QVX64_API ([^;]*;)"]
    groups = []
    for title, meaning, body, said, declaration in re.findall("|".join(patterns), text, re.DOTALL):
        if title:
            groups.append((title, [], []))
        elif body:
            groups[-1][1].append(Constants(meaning, body))
        else:
            groups[-1][2].append(Function(said, declaration))
    return opening, groups


def marked(text):
    """The names of functions and constants as code."""
    names = r"(?:Get|Set)[A-Z]\w+|FOVx|Init|FireEvent|EnablePressKey|QVX_\w+\w"
    return re.sub(rf"(?<![\w`])({names})(?![\w`])(\(1\))?", r"`\1\2`", text)


def paragraphs(lines):
    """Prose as paragraphs of one line; lines that are indented, as a list."""
    blocks = [""]
    for line in lines:
        if line.startswith("  "):
            word, *meaning = line.split()
            blocks += [f"- `{word}` {' '.join(meaning)}"]
        elif not line or blocks[-1].startswith("- "):
            blocks += [line]
        else:
            blocks[-1] += " " * bool(blocks[-1]) + line
    text = "\n\n".join(block if block.startswith("- ") else marked(block) for block in blocks)
    return re.sub(r"(?m)^(- .*)\n\n(?=- )", r"\1\n", text) + "\n"


def opening_text(comment):
    """What a paragraph is about stands before a colon, and gets bold."""
    return re.sub(r"(?m)^([A-Z][a-z]+(?: [a-z]+)?): ", r"**\1**: ", paragraphs(lines_of(comment)))


def anchor(title):
    return re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-")


def overview(groups):
    yield "| Function | Worst case |\n|---|---|\n"
    for title, _, functions in groups:
        yield f"| **[{title}](#{anchor(title)})** | |\n"
        for function in functions:
            time = WORST_CASE.fullmatch(function.labels["Worst case"]).group(1)
            yield f"| [`{function.name}`](#{anchor(function.name)}) | {time} |\n"


def table(constants):
    yield f"\n{paragraphs(constants.text)}\n| Constant | Value | |\n|---|---|---|\n"
    for name, value, meaning in constants.rows:
        yield f"| `{name}` | {value} | {marked(meaning)} |\n".replace("|  |", "| |")


def section(function):
    yield f"\n### {function.name}\n\n```c\n{function.declaration}\n```\n\n"
    yield f"{paragraphs(function.text)}\n"
    for label, said in function.labels.items():
        name = f"`{label}`" if label in function.parameters else f"**{label}**"
        yield f"- {name}: {marked(said)}\n"


def document(opening, groups):
    yield INTRODUCTION + "\n" + opening_text(opening) + "\n"
    yield from overview(groups)
    for title, constants, functions in groups:
        yield f"\n## {title}\n"
        for group in constants:
            yield from table(group)
        for function in functions:
            yield from section(function)


def main():
    opening, groups = read_header(HEADER.read_text())
    faults = [fault for _, _, functions in groups for f in functions for fault in f.faults()]
    text = "".join(document(opening, groups)) if not faults else ""
    if not faults and sys.argv[1:] != ["--check"]:
        DOCUMENT.write_text(text)
    elif not faults and (not DOCUMENT.exists() or DOCUMENT.read_text() != text):
        faults.append("docs/api.md is not what api.h says: run scripts/docs/api_reference.py")
    print(*faults, sep="\n", end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
