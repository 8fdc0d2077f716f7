#!/usr/bin/env python3
"""Holds src/ to its plan: calls go one way, and the tests' reset knows every global.

Prints each include that runs up or across, each condition of the preprocessor above the seam, and each
global that tests/support/reset_library.cpp does not put back to what it is at first.
"""
import pathlib
import re
import sys

# From the top floor down. Rooms of one floor do not know each other.
FLOORS = [["api"], ["controls"], ["transport"], ["models", "etlib2"], ["trace"], ["platform", "state"], ["base"]]
FLOOR = {room: floor for floor, rooms in enumerate(FLOORS) for room in rooms}
# The exports' own header is no room: they implement it.
OUTSIDE = {"qvx64"}

root = pathlib.Path(__file__).resolve().parent.parent
src = root / "src"
reset = (root / "tests/support/reset_library.cpp").read_text()


def room_of(path):
    return path.relative_to(src).parts[0]


def includes(lines):
    return [(n, m[1]) for n, line in lines if (m := re.match(r'\s*#\s*include "(\w+)/', line))]


def arrows(path, lines):
    here = room_of(path)
    for number, target in includes(lines):
        if target in OUTSIDE or target == here:
            continue
        if FLOOR.get(target, -1) <= FLOOR[here]:
            yield number, f"{here} includes {target}, which is not below it"


def conditions(path, lines):
    if path.is_relative_to(src / "platform" / "windows"):
        return
    for number, line in lines:
        if re.match(r"\s*#\s*(if|ifdef|ifndef|elif)\b", line):
            yield number, "a condition of the preprocessor above the seam"


def names_of(declaration):
    """The variables of `inline TYPE a = 0, b{};`, without what is in brackets."""
    for _ in range(3):
        declaration = re.sub(r"<[^<>]*>|\{[^{}]*\}|\([^()]*\)", "", declaration)
    return [re.search(r"(\w+)\s*(=.*)?$", part.strip())[1] for part in declaration.split(",")]


def value(text):
    """Of an initialiser or an assignment; all ways to write zero are one."""
    return "" if text in (None, "0", "nullptr") else text


def reset_as_at_first(name, declaration):
    at_first = re.search(rf"\b{name}\b(?: = ([^,;]+)|{{([^}}]*)}})?", declaration)
    assigned = re.search(rf"\b{name} = ([^;]+);", reset)  # else it is cleared
    return value(at_first[1] or at_first[2]) == value(assigned and assigned[1])


def globals_kept(path, lines):
    if path.suffix != ".h":
        return
    text = "".join(re.sub(r"//.*", "", line) + "\n" for _, line in lines)
    for found in re.finditer(r"^inline (?!constexpr)([^;]*);", text, re.M):
        if re.match(r"[^=;{]*\)\s*(\{|$)", found[1]):
            continue  # a function
        for name in names_of(found[1]):
            if not re.search(rf"\b{name}\b", reset):
                yield text[: found.start()].count("\n") + 1, f"resetLibrary leaves {name} as it is"
            elif not reset_as_at_first(name, found[1]):
                yield text[: found.start()].count("\n") + 1, f"resetLibrary gives {name} another value"


def main():
    faults = 0
    for path in sorted(p for p in src.rglob("*") if p.suffix in (".h", ".cpp")):
        lines = list(enumerate(path.read_text().split("\n"), 1))
        for check in (arrows, conditions, globals_kept):
            for number, fault in check(path, lines):
                print(f"{path.relative_to(root)}:{number}: {fault}")
                faults += 1
    return 1 if faults else 0


sys.exit(main())
