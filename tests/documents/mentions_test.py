"""Everything that running text mentions exists: commands, tests, variables and the targets of links."""

import os
import re
import shlex
import subprocess
from pathlib import Path

import pytest

from blocks import DOCUMENTS, ROOT, name_of, running_text
from chores import is_chore

BUILD = Path(os.environ["FRAMESINK_BUILD"])
SOURCES = ["CMakeLists.txt", "CMakePresets.json", "bench", "bindings", "cmake", "include", "pixkit", "src", "tests",
           "tools"]


def mentions(pattern):
    """Runs a test for each piece of `code` that matches the pattern completely."""
    found = [pytest.param(code, id=f"{name_of(document)}:{code}") for document in DOCUMENTS
             for code in sorted(set(re.findall("`([^`\n]+)`", running_text(document)))) if re.fullmatch(pattern, code)]
    return pytest.mark.parametrize("code", found)


@mentions(r"\./dev .*")
def test_a_chore_is_one_with_these_options(code):
    assert is_chore(code)


@mentions(r"(\w+=\S+ )*ctest .*")
def test_ctest_finds_tests(code):
    command = ["ctest", "--test-dir", str(BUILD), "-N", *shlex.split(code[code.index("ctest") :])[1:]]
    output = subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout
    assert int(re.search(r"Total Tests: (\d+)", output)[1]) > 0


@mentions(r"(-D)?FRAMESINK_\w+.*")
def test_a_variable_or_macro_is_in_the_sources(code):
    name = re.search(r"FRAMESINK_\w+", code)[0]
    assert any(re.search(rf"\b{name}\b", text) for text in source_texts())


def source_texts():
    for name in SOURCES:
        for path in [ROOT / name, *(ROOT / name).rglob("*")]:
            if path.is_file() and path.suffix in ("", ".c", ".h", ".cpp", ".hpp", ".py", ".txt", ".json", ".cmake"):
                yield path.read_text(errors="ignore")


@pytest.mark.parametrize("document", DOCUMENTS, ids=name_of)
def test_links_lead_somewhere(document):
    links = re.findall(r"\]\(([^)\s]+)\)", running_text(document))
    broken = [link for link in links if not link.startswith("http") and not leads_somewhere(document, link)]
    assert broken == []


def leads_somewhere(document, link):
    path, _, heading = link.partition("#")
    target = document.parent / path if path else document
    return target.exists() and (not heading or heading in headings(target))


def headings(document):
    """The document's headings in the form that links use."""
    titles = re.findall(r"^#+ (.*)$", running_text(document), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}
