"""What the checks need to know of Markdown: samples between code fences, headings and links."""

import dataclasses
import pathlib
import re


@dataclasses.dataclass
class Sample:
    document: pathlib.Path
    line: int
    language: str
    text: str

    def __str__(self):
        return f"{self.document.name}:{self.line}"


def samples(document):
    """Every fenced block of a document."""
    found = []
    inside = None
    for number, line in enumerate(document.read_text().splitlines(), 1):
        if not line.startswith("```"):
            if inside:
                inside.text += line + "\n"
        elif inside:
            found.append(inside)
            inside = None
        else:
            inside = Sample(document, number, line[3:].strip(), "")
    return found


def prose(document):
    return re.sub(r"(?ms)^```.*?^```$", "", document.read_text())


def anchors(document):
    """The names under which headings can be linked."""
    titles = re.findall(r"(?m)^#+ (.*)$", prose(document))
    return {re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-") for title in titles}


def links(document):
    """The targets of links within the repository, as (path, anchor)."""
    for target in re.findall(r"\]\(([^)\s]+)\)", prose(document)):
        if not re.match(r"\w+:", target):
            path, _, anchor = target.partition("#")
            yield (document.parent / path if path else document), anchor


def inline_code(document):
    return re.findall(r"`([^`\n]+)`", prose(document))


def table_codes(document, heading):
    """The code that begins a row of the first table behind a line that holds the heading."""
    table = prose(document).split(heading, 1)[1].split("\n\n|", 1)[1].split("\n\n", 1)[0]
    first_cells = [row.split(" | ")[0] for row in table.splitlines()]
    return [code for cell in first_cells for code in re.findall(r"`([^`]+)`", cell)]
