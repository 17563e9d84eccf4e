"""The documents, and the code blocks in them."""

import re
from pathlib import Path
from typing import NamedTuple

import pytest

ROOT = Path(__file__).parents[2]
DOCUMENTS = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md")),
             ROOT / "bindings/python/README.md"]
FENCE = "```"
DEADLINE = 120.0  # seconds that a block may take on a busy machine


class Block(NamedTuple):
    document: str
    line: int  # the number of its first line of code, counted from 1
    language: str
    text: str

    @property
    def place(self):
        return f"{self.document}:{self.line}"


def name_of(document):
    return str(document.relative_to(ROOT))


def blocks_in(document):
    """The document's fenced blocks from top to bottom."""
    lines = enumerate(document.read_text().splitlines(keepends=True), start=1)
    for number, line in lines:
        if line.startswith(FENCE):
            code = []
            for _, inner in lines:
                if inner.rstrip() == FENCE:
                    break
                code.append(inner)
            else:
                raise ValueError(f"{name_of(document)}:{number}: this block has no end")
            yield Block(name_of(document), number + 1, line.rstrip()[len(FENCE):], "".join(code))


def running_text(document):
    """The document without its blocks."""
    return re.sub(f"^{FENCE}.*?^{FENCE}$", "", document.read_text(), flags=re.MULTILINE | re.DOTALL)


def all_blocks():
    return [block for document in DOCUMENTS for block in blocks_in(document)]


def each_block_in(language, not_of=()):
    """Runs a test once for each block in that language, with the block's place as the test's id."""
    blocks = [pytest.param(block, id=block.place) for block in all_blocks()
              if block.language == language and block.document not in not_of]
    return pytest.mark.parametrize("block", blocks)


def documents_with(language):
    return {block.document for block in all_blocks() if block.language == language}
