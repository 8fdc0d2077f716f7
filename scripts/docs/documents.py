"""What the checks need to know of a document: its samples, headings, links and tables."""

import dataclasses
import pathlib
import re

import markdown_it

PARSER = markdown_it.MarkdownIt("commonmark").enable("table")


@dataclasses.dataclass
class Sample:
    document: pathlib.Path
    line: int
    language: str
    text: str

    def __str__(self):
        return f"{self.document.name}:{self.line}"


def blocks(document):
    return PARSER.parse(document.read_text())


def pieces(document, kind):
    """The parts of that kind within paragraphs, headings and cells."""
    return [piece for block in blocks(document) for piece in block.children or ()
            if piece.type == kind]


def samples(document):
    """Every fenced block of a document."""
    return [Sample(document, block.map[0] + 1, block.info.strip(), block.content)
            for block in blocks(document) if block.type == "fence"]


def anchors(document):
    """The names under which headings can be linked."""
    parsed = blocks(document)
    titles = [text.content for block, text in zip(parsed, parsed[1:]) if block.type == "heading_open"]
    return {re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-") for title in titles}


def links(document):
    """The targets of links and pictures within the repository, as (path, anchor)."""
    targets = [piece.attrGet("href") for piece in pieces(document, "link_open")]
    targets += [piece.attrGet("src") for piece in pieces(document, "image")]
    for target in targets:
        if not re.match(r"\w+:", target):
            path, _, anchor = target.partition("#")
            yield (document.parent / path if path else document), anchor


def inline_code(document):
    return [piece.content for piece in pieces(document, "code_inline")]


def table_codes(document, words):
    """The code in the first cell of each row of the first table behind these words."""
    parsed = blocks(document)
    start = next(i for i, block in enumerate(parsed) if words in block.content)
    start = next(i for i in range(start, len(parsed)) if parsed[i].type == "tbody_open")
    end = next(i for i in range(start, len(parsed)) if parsed[i].type == "tbody_close")
    return [piece.content for i in range(start, end) if parsed[i].type == "tr_open"
            for piece in parsed[i + 2].children if piece.type == "code_inline"]
