"""Every command in the documents' blocks of shell runs, or is told in elsewhere.py."""

import re
import subprocess

import pytest

import reader
from blocks import all_blocks, each_block_in
from chores import is_chore
from elsewhere import NOT_RUN_HERE

# These may install or build; running one that is new to the documents is not left to chance.
HEAVY = re.compile(r"(\./dev(?! help)|sudo|apt(-get)?|pip3?|cmake|ctest)\b")


@pytest.fixture
def clone(tmp_path):
    """Has a clip, as the reader has one."""
    reader.make_clone(tmp_path)
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc2=size=320x240:rate=25", "-frames:v", "5",
                    str(tmp_path / "clip.mp4")], check=True)
    return tmp_path


# The gallery's are typed by gallery_test.py, which knows their windows.
@each_block_in("sh", not_of=["docs/gallery.md"])
def test_a_block_runs(screen, clone, block):
    commands = [command for command in reader.commands_of(block) if command not in NOT_RUN_HERE]
    heavy = [command for command in commands if HEAVY.match(command)]
    assert heavy == [], "elsewhere.py must tell why this is not run here, and where it is"
    outcome = reader.type_in(commands, clone, screen)
    assert outcome.status == 0, outcome.complaints
    assert "Could not" not in outcome.complaints  # so the library's own complaints begin


def test_nothing_is_left_out_that_no_document_has():
    blocks = [block for block in all_blocks() if block.language == "sh"]
    assert NOT_RUN_HERE.keys() - {command for block in blocks for command in reader.commands_of(block)} == set()


@pytest.mark.parametrize("command", [command for command in NOT_RUN_HERE if command.startswith("./dev ")])
def test_a_chore_that_is_left_out_is_one_with_these_options(command):
    assert is_chore(command)
