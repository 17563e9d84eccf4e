"""Every block of C in the documents compiles without warnings and runs.

A block without a main function is the middle of a program. CONTEXTS gives the rest.
"""

import os
import subprocess
from pathlib import Path
from typing import NamedTuple

import pytest

from blocks import DEADLINE, ROOT, documents_with, each_block_in
from support import programs

LIBRARIES = Path(os.environ["FRAMESINK_LIBRARY"]).parent


class Context(NamedTuple):
    before: str
    after: str


CONTEXTS = {
    "README.md": Context(before="enum { steps = 20 };\n"
                                "static double red[640 * 480], green[640 * 480], blue[640 * 480];\n",
                         after='return error[0] == 0 && isPlayerOpen("model/view") ? 0 : 1;\n'),
}


def program_of(block):
    """The block as a program. Compiler messages give the document's line numbers."""
    if "int main(" in block.text:
        return f'#line {block.line} "{block.document}"\n{block.text}'
    if block.document not in CONTEXTS:
        pytest.fail(f"{block.place} has no main function: add the rest of the program to CONTEXTS in c_blocks_test.py")
    context = CONTEXTS[block.document]
    lines = block.text.splitlines(keepends=True)
    head = next(number for number, line in enumerate(lines) if line.strip() and not line.startswith("#include"))
    return (f'#line {block.line} "{block.document}"\n{"".join(lines[:head])}'
            f'{context.before}int main(void) {{\n'
            f'#line {block.line + head} "{block.document}"\n{"".join(lines[head:])}'
            f'{context.after}}}\n')


def compile_c(source, program):
    command = ["cc", "-std=c11", "-Wall", "-Werror", f"-I{ROOT / 'include'}", "-x", "c", "-", "-o", str(program),
               f"-L{LIBRARIES}", "-Wl,--as-needed", "-lframesink"]
    compiler = subprocess.run(command, input=source, text=True, stderr=subprocess.PIPE, check=False)
    assert (compiler.returncode, compiler.stderr) == (0, "")


def test_the_pages_that_should_have_c_have_some():
    assert {"README.md", "docs/integrators.md"} <= documents_with("c")


@each_block_in("c")
def test_a_block_compiles_and_runs(screen, block, tmp_path):
    program = tmp_path / "program"
    compile_c(program_of(block), program)
    environment = screen.environment | {"LD_LIBRARY_PATH": str(LIBRARIES)}
    assert programs.run([str(program)], environment, DEADLINE) == (0, "", "")
