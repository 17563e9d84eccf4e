#!/usr/bin/env python3
"""Runs the benchmarks several times and prints the tables. With --peers it also writes docs/performance.md
and its plot, which need the peers' figures.

Each benchmark times framesink and something else alternately and reports both medians and their ratio. The table
shows the median, the least and the greatest of the rounds' ratios.
"""

import argparse
import json
import os
import platform
import statistics
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

import plot
import targets

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/performance.md"
PLOT = ROOT / "docs/images/performance.png"
NATURAL_RANGE = "0 to 65535"  # of uint16


class Results:
    """Maps (benchmark, what it is compared with) to the counters of each round."""

    def __init__(self):
        self.rounds = defaultdict(list)

    def add(self, output, suffix=""):
        for run in json.loads(output)["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            name = run["name"].removesuffix("/manual_time").split("/iterations:")[0] + suffix
            self.rounds[name, run.get("label", "")].append(run)

    def values(self, key, counter):
        return [run[counter] for run in self.rounds[key] if counter in run]

    def median(self, key, counter):
        return statistics.median(self.values(key, counter))

    def __contains__(self, key):
        return key in self.rounds


def run(build, program, *arguments, ranges=None):
    """Returns the program's JSON. Exits if the program found a wrong result or used the wrong ranges."""
    environment = dict(os.environ)
    if ranges:
        environment["LD_LIBRARY_PATH"] = str(build / "tests/convert" / f"{ranges}_ranges")
    command = [str(build / "bin" / program), "--benchmark_format=json", *arguments]
    done = subprocess.run(command, env=environment, stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(f"{program} failed with status {done.returncode}")
    in_force = json.loads(done.stdout)["context"].get("uint16 range", NATURAL_RANGE)
    if (in_force == NATURAL_RANGE) != (ranges is None):
        sys.exit(f"{program} ran with the uint16 range {in_force}")
    return done.stdout


def measure(build, rounds):
    results = Results()
    for number in range(rounds):
        print(f"round {number + 1} of {rounds}", file=sys.stderr)
        results.add(run(build, "conversion_bench", "--benchmark_min_time=0.5"))
        results.add(run(build, "kernel_bench", "--benchmark_min_time=0.1"))
        results.add(run(build, "kernel_bench", "--benchmark_min_time=0.1", ranges="other"),
                    " in another range")
        results.add(run(build, "host_bench"))
        results.add(run(build, "display_bench"))
    return results


def target_rows(results, peers):
    """Yields the rows of the table of targets, in the order of TARGET_HEAD."""
    for target in targets.TARGETS:
        found = target.ratios(results)
        if not found and not peers and target.needs_peer():
            continue
        if not found:
            sys.exit(f"no figures for {target.name} compared with {target.other}")
        middle = statistics.median(found)
        yield [target.name, target.other, target.ours(results), target.others(results),
               f"{middle:.3f}", f"{min(found):.3f} to {max(found):.3f}", f"{target.limit:.3f}",
               "yes" if middle <= target.limit else "NO"]


def kernel_rows(results):
    for name, label in results.rounds:
        if label == targets.MEMCPY and "another range" not in name and name != "planes to ARGB8888":
            key = (name, label)
            yield [name, f"{results.median(key, 'ours'):.3f}", f"{results.median(key, 'other'):.3f}",
                   f"{results.median(key, 'ratio'):.2f}"]


def markdown(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def cpu_name():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":")[1].strip()
    return platform.machine()


def first_line(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True).stdout.splitlines()[0]


TARGET_HEAD = ["what", "compared with", "ours, ms", "other, ms", "ratio", "least to greatest", "at most", "met"]
KERNEL_HEAD = ["kernel", "ours, ms", "memcpy, ms", "ratio"]

PAGE_TEXT = """# Performance

`./dev bench --peers` writes this page; do not edit it.
Machine: {cpu}, {cores} cores. Compiler: {compiler}.

The *libUpdate* rows show the time that one frame costs a host. Every row compares framesink with one of these:

- memcpy of the same number of bytes, which is the limit that memory sets,
- another library that shows the same picture,
- a plain loop that does the same work,
- other work of framesink itself.

The two sides take turns, so that other load on the machine slows both. Before the benchmarks time anything,
they compare the results with the correct bytes and the windows with the pixels on the screen. Times are in
milliseconds. The ratio, our time divided by the other time, is the median of {rounds} rounds. A target is met
if the ratio is at most the limit in its row. Times depend on the machine, ratios much less.

Frames have 1920x1080 pixels in column-major planes unless a row names another size or layout. Conversions run
on one thread. Windows open on Xvfb.

{targets}

{notes}

## Every kernel

The table compares each kernel with memcpy of as many bytes as the kernel reads and writes.

{kernels}

## Frame sizes and windows

![Kernels and memcpy, cost per pixel by frame size, cost of a round by number of windows](images/performance.png)
"""


def write_page(results, rows, kernels, rounds):
    plot.draw(results, PLOT)
    PAGE.write_text(PAGE_TEXT.format(
        cpu=cpu_name(), cores=os.cpu_count(), compiler=first_line("c++", "--version"),
        rounds=rounds, targets=markdown(TARGET_HEAD, rows), notes=targets.NOTES,
        kernels=markdown(KERNEL_HEAD, kernels)))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=Path, default=ROOT / "build/release")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--peers", action="store_true")
    arguments = parser.parse_args()
    results = measure(arguments.build, arguments.rounds)
    rows = list(target_rows(results, arguments.peers))
    print(markdown(TARGET_HEAD, rows))
    kernels = list(kernel_rows(results))
    print(markdown(KERNEL_HEAD, kernels))
    if arguments.peers:
        write_page(results, rows, kernels, arguments.rounds)


if __name__ == "__main__":
    main()
