"""Every command in the documents' shell blocks runs, or is listed in elsewhere.py."""

import re
import subprocess

import pytest

import reader
from blocks import all_blocks, each_block_in
from chores import is_chore
from elsewhere import NOT_RUN_HERE

# Commands that may install or build. A new one in the documents must be listed in elsewhere.py.
HEAVY = re.compile(r"(\./dev(?! help)|sudo|apt(-get)?|pip3?|cmake|ctest)\b")


@pytest.fixture
def clone(tmp_path):
    """A clone with a video clip, which some commands play."""
    reader.make_clone(tmp_path)
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc2=size=320x240:rate=25", "-frames:v", "5",
                    str(tmp_path / "clip.mp4")], check=True)
    return tmp_path


# gallery_test.py runs the gallery's commands, because it knows their windows.
@each_block_in("sh", not_of=["docs/gallery.md"])
def test_a_block_runs(screen, clone, block):
    commands = [command for command in reader.commands_of(block) if command not in NOT_RUN_HERE]
    heavy = [command for command in commands if HEAVY.match(command)]
    assert heavy == [], "list it in elsewhere.py, with why it is not run here and where it is run"
    outcome = reader.type_in(commands, clone, screen)
    assert outcome.status == 0, outcome.complaints
    assert "Could not" not in outcome.complaints  # the library's error messages begin like this


def test_nothing_is_left_out_that_no_document_has():
    blocks = [block for block in all_blocks() if block.language == "sh"]
    assert NOT_RUN_HERE.keys() - {command for block in blocks for command in reader.commands_of(block)} == set()


@pytest.mark.parametrize("command", [command for command in NOT_RUN_HERE if command.startswith("./dev ")])
def test_a_chore_that_is_left_out_is_one_with_these_options(command):
    assert is_chore(command)
