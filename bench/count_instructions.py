#!/usr/bin/env python3
"""Counts the instructions of each kernel under callgrind and compares them with the recorded table.

    count_instructions.py PROGRAM            warns if a kernel takes over 2 % more than recorded
    count_instructions.py PROGRAM --record   writes the table again

The counts depend on the instruction set that callgrind offers and on the compiler; the table's first line names
both. The counts do not depend on the load of the machine.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

TABLE = Path(__file__).resolve().parent / "instructions.txt"
TOLERANCE = 1.02


def first_line(*command):
    done = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True)
    return done.stdout.splitlines()[0]


def count(program):
    """Returns the instruction set and compiler as text, and the counts by kernel."""
    with tempfile.TemporaryDirectory() as folder:
        command = ["valgrind", "--tool=callgrind", "--quiet",
                   f"--callgrind-out-file={folder}/out", program]
        name = first_line(*command) + ", " + first_line("c++", "--version")
        counts = {}
        parts = Path(folder).glob("out.*")
        for part in sorted(parts, key=lambda path: int(path.suffix[1:])):
            text = part.read_text()
            kernel = re.search(r"^desc: Trigger: Client Request: (\w+)$", text, re.M)
            if kernel:
                counts[kernel[1]] = int(re.search(r"^(?:summary|totals): (\d+)$", text, re.M)[1])
    return name, counts


def recorded():
    name, *lines = TABLE.read_text().splitlines()
    return name, {kernel: int(number) for kernel, number in map(str.split, lines)}


def record(name, counts):
    lines = [f"{kernel} {number}" for kernel, number in counts.items()]
    TABLE.write_text("\n".join([name, *lines]) + "\n")


def compare(name, counts):
    recorded_name, before = recorded()
    if name != recorded_name:
        print(f"warning: not compared, because these counts are for {name} and the recorded ones for {recorded_name}")
        return
    for kernel in sorted(before.keys() | counts.keys()):
        old, new = before.get(kernel), counts.get(kernel)
        if old is None or new is None:
            print(f"warning: {kernel} is {'not recorded' if old is None else 'recorded but no longer exists'}")
        elif new > TOLERANCE * old:
            print(f"warning: {kernel} takes {new} instructions, {new / old:.2f} times the recorded number")
    print(f"{len(counts)} kernels counted on {name}, {sum(counts.values())} instructions in all,"
          f" {sum(before.values())} recorded")


if __name__ == "__main__":
    found = count(sys.argv[1])
    if "--record" in sys.argv:
        record(*found)
    else:
        compare(*found)
