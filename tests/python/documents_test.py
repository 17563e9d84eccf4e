"""Every block of Python in the documents is a program that runs."""

import re
from pathlib import Path

import pytest

from support import programs

ROOT = Path(__file__).parents[2]
DOCUMENTS = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md")), ROOT / "bindings/python/README.md"]


def blocks():
    for document in DOCUMENTS:
        text = document.read_text()
        for found in re.finditer(r"^```python\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
            line = text[:found.start()].count("\n") + 2
            # The blank lines let a traceback tell the document's own lines.
            yield pytest.param("\n" * (line - 1) + found[1], id=f"{document.relative_to(ROOT)}:{line}")


def test_the_pages_that_should_have_python_have_some():
    pages = {block.id.split(":")[0] for block in blocks()}
    assert {"README.md", "docs/python.md"} <= pages


@pytest.mark.parametrize("block", blocks())
def test_a_block_runs(screen, block):
    status, output, complaints = programs.end(programs.start_python(screen, "-c", block))
    assert (status, complaints) == (0, "")
    promised = re.findall(r"^print\(.*\) +# (.*)$", block, re.MULTILINE)
    assert [line for line in promised if line not in output.splitlines()] == []
