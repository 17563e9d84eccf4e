"""Every block of Python in the documents is a program that runs."""

import re

from blocks import DEADLINE, documents_with, each_block_in
from support import programs


def test_the_pages_that_should_have_python_have_some():
    assert {"README.md", "docs/python.md"} <= documents_with("python")


@each_block_in("python")
def test_a_block_runs(screen, block):
    # The blank lines make a traceback give the document's line numbers.
    program = "\n" * (block.line - 1) + block.text
    status, output, complaints = programs.end(programs.start_python(screen, "-c", program), DEADLINE)
    assert (status, complaints) == (0, "")
    promised = re.findall(r"^print\(.*\) +# (.*)$", block.text, re.MULTILINE)
    assert [line for line in promised if line not in output.splitlines()] == []
