"""Everything that a reader may type is in a fenced block that names its language, so that a test runs it."""

import re

import pytest

from blocks import DOCUMENTS, all_blocks, each_block_in, name_of, running_text

LANGUAGES = {"c", "python", "sh", "text"}  # all but text have a test file here that runs their blocks
COMMAND = re.compile(r"\s*(\$ |\./dev |build/|export |pip |python3 |cmake |ctest |cc |sudo |apt )")


@pytest.mark.parametrize("block", [pytest.param(block, id=block.place) for block in all_blocks()])
def test_a_block_tells_a_language_that_is_run(block):
    assert block.language in LANGUAGES


@pytest.mark.parametrize("document", DOCUMENTS, ids=name_of)
def test_code_is_fenced_not_indented(document):
    assert re.findall(r"(?:\A|\n)[ \t]*\n((?: {4}|\t).*)", running_text(document)) == []


@each_block_in("text")
def test_text_holds_no_command(block):
    assert [line for line in block.text.splitlines() if COMMAND.match(line)] == []
