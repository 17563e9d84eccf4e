"""The package as pip and CMake install it."""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

from support import programs

PACKAGE = Path(__file__).parents[2] / "bindings/python"

PROGRAM = """
from importlib.metadata import requires, version
from pathlib import Path
import framesink
print(Path(framesink.__file__).parent)
print(version("framesink"), framesink.load().version)
print(requires("framesink"))
"""


@pytest.fixture(scope="module", params=["pip", "cmake"])
def installed(request, tmp_path_factory):
    """The folder into which the package was installed."""
    install = install_by_pip if request.param == "pip" else install_by_cmake
    return install(tmp_path_factory)


def install_by_cmake(tmp_path_factory):
    prefix = tmp_path_factory.mktemp("prefix")
    subprocess.run(["cmake", "--install", os.environ["FRAMESINK_BUILD"], "--prefix", str(prefix),
                    "--component", "python"], check=True)
    return prefix / "lib/python3/dist-packages"


def install_by_pip(tmp_path_factory):
    """Installs from a copy, because building leaves files in the source folder."""
    folder = tmp_path_factory.mktemp("installed")
    source = tmp_path_factory.mktemp("source") / "python"
    shutil.copytree(PACKAGE, source, ignore=shutil.ignore_patterns("__pycache__", "build", "*.egg-info"))
    subprocess.run([sys.executable, "-m", "pip", "install", "--quiet", "--no-index", "--no-deps",
                    "--no-build-isolation", "--no-compile", "--target", str(folder), str(source)], check=True)
    return folder


def test_the_installed_package_has_the_librarys_version(installed):
    environment = os.environ | {"PYTHONPATH": str(installed)}
    status, output, complaints = programs.run([sys.executable, "-c", PROGRAM], environment)
    assert (status, complaints) == (0, "")
    place, versions, required = output.splitlines()
    assert place == str(installed / "framesink")
    own, the_librarys = versions.split()
    assert own == the_librarys
    # Older versions of setuptools write the requirement as "numpy (>=1.24)".
    assert re.sub("[ ()]", "", required) == "['numpy>=1.24']"


def test_all_files_are_installed(installed):
    files = {path.name for path in (PACKAGE / "framesink").iterdir() if path.is_file()}
    assert "py.typed" in files
    assert files <= {path.name for path in (installed / "framesink").iterdir()}
