"""docs/gallery.md has the pictures that ./dev gallery makes, and its commands open their windows."""

import re

import pytest

import gallery
import reader

SIZE_LIMIT = 150_000  # bytes


def names_on_page():
    return re.findall(r"!\[.*\]\(images/gallery/(\w+)\.png\)", gallery.PAGE.read_text())


def test_page_and_list_agree():
    assert names_on_page() == [picture.name for picture in gallery.PICTURES]


def test_every_picture_of_the_page_is_there_and_no_other():
    assert {path.name for path in gallery.FOLDER.iterdir()} == {f"{name}.png" for name in names_on_page()}


@pytest.mark.parametrize("name", names_on_page())
def test_a_picture_is_small(name):
    data = (gallery.FOLDER / f"{name}.png").read_bytes()
    assert data.startswith(b"\x89PNG\r\n\x1a\n")
    assert len(data) < SIZE_LIMIT


@pytest.mark.parametrize("picture", gallery.PICTURES, ids=lambda picture: picture.name)
def test_the_command_below_a_picture_opens_its_windows(screen, tmp_path, picture):
    reader.make_clone(tmp_path)
    commands = reader.commands_of(gallery.block_below(picture.name))
    outcome = reader.type_in(commands, tmp_path, screen, picture.titles)
    assert outcome.status == 0, outcome.complaints
    assert outcome.titles == picture.titles
