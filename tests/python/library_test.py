"""Where the package looks for the library, and the error if it is not found."""

import os
import re
import shutil
import sys
from pathlib import Path

import pytest

import framesink
from framesink import LibraryNotFoundError, load
from support import programs

LIBRARY = os.environ["FRAMESINK_LIBRARY"]
STUB = os.environ["FRAMESINK_STUB"]
STUB_VERSION = "7.8.9"


@pytest.fixture
def package_elsewhere(tmp_path):
    """A copy of the package, without a library in its folder."""
    source = Path(framesink.__file__).parent
    shutil.copytree(source, tmp_path / "framesink", ignore=shutil.ignore_patterns("__pycache__"))
    return tmp_path


def version_in(folder, **environment):
    """Runs a program that prints the version it loads with the package in `folder`: status, output, complaints."""
    environment = {"PYTHONPATH": str(folder), "PATH": os.environ["PATH"]} | environment
    return programs.run([sys.executable, "-c", "import framesink; print(framesink.load().version)"], environment)


def test_a_path_is_loaded_before_anything_else(monkeypatch):
    assert load(STUB).version == STUB_VERSION
    assert load(Path(STUB)).version == STUB_VERSION
    assert load(LIBRARY).version != STUB_VERSION


def test_a_file_of_this_folder_is_loaded_by_its_bare_name(monkeypatch):
    monkeypatch.chdir(Path(STUB).parent)
    assert load(Path(STUB).name).version == STUB_VERSION


def test_one_library_is_loaded_once(tmp_path):
    link = tmp_path / "another name"
    link.symlink_to(STUB)
    assert load(STUB) is load(STUB) is load(link)
    assert load(STUB) is not load(LIBRARY)


def test_the_environment_variable_goes_before_the_package(package_elsewhere):
    shutil.copy(LIBRARY, package_elsewhere / "framesink/libframesink.so.1")
    assert version_in(package_elsewhere, FRAMESINK_LIBRARY=STUB) == (0, STUB_VERSION + "\n", "")


def test_the_package_goes_before_the_systems_loader(package_elsewhere, tmp_path):
    shutil.copy(STUB, package_elsewhere / "framesink/libframesink.so.1")
    assert version_in(package_elsewhere, LD_LIBRARY_PATH=str(Path(LIBRARY).parent)) == (0, STUB_VERSION + "\n", "")


def test_the_systems_loader_goes_last(package_elsewhere):
    folder = package_elsewhere / "system"
    folder.mkdir()
    shutil.copy(STUB, folder / "libframesink.so.1")
    assert version_in(package_elsewhere, LD_LIBRARY_PATH=str(folder)) == (0, STUB_VERSION + "\n", "")


def test_a_library_that_is_nowhere_is_told_with_the_places(package_elsewhere):
    status, _, complaints = version_in(package_elsewhere)
    assert status == 1
    assert re.search(r"LibraryNotFoundError: cannot load libframesink\.so\.1 \(from the operating system's loader; "
                     r"FRAMESINK_LIBRARY is not set, and there is no .*framesink/libframesink\.so\.1\)", complaints)


def test_a_path_that_is_wrong_is_told_and_nothing_else_is_tried():
    with pytest.raises(LibraryNotFoundError, match=r"cannot load /no/such/file \(as requested\)"):
        load("/no/such/file")


def test_another_library_is_told():
    with pytest.raises(LibraryNotFoundError, match="is not framesink: .*libCreate"):
        load(os.environ["FRAMESINK_DESCRIPTION_LAYOUT"])


def test_the_library_tells_its_version_and_build_date():
    library = load(LIBRARY)
    assert re.fullmatch(r"\d+\.\d+\.\d+", library.version)
    assert re.fullmatch(r"[A-Z][a-z]{2} [ \d]\d \d{4}", library.build_date)
