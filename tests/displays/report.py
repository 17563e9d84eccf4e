"""The table of all cells: as text for the terminal, and for the document that records it."""

import datetime
from pathlib import Path

import kinds

ROOT = Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/reliability.md"
BEGIN, END = "<!-- ./dev displays --record writes from here -->", "<!-- ./dev displays --record writes to here -->"


def describe(outcome):
    """One cell of the table."""
    if outcome is None:
        return ""
    if outcome.life.startswith("not run"):
        return outcome.life
    if outcome.life != "lives":
        return "hangs" if outcome.life == "hangs" else f"dies: {outcome.life}"
    words = ["lives"]
    if outcome.picture in ("wrong", "none"):
        words.append(f"picture {outcome.picture}")
    if outcome.complaints:
        words.append("but " + "; ".join(outcome.complaints))
    return ", ".join(words)


def line_of(cell, outcome):
    """One line for the terminal."""
    longest = f"  (longest call {outcome.longest_call} {outcome.longest:.0f} ms)" if outcome.longest else ""
    mark = "ok  " if outcome.is_good else "BAD " if cell.kind.is_ours and not cell.row.known else "    "
    return f"{mark}{cell.row.name} | {cell.kind.name}: {describe(outcome)}{longest}"


def is_bad(cell, outcome):
    """Whether framesink fares badly where it should not."""
    return cell.kind.is_ours and not cell.row.known and not outcome.is_good


def table(results, columns):
    rows = list(dict.fromkeys(cell.row for cell, _ in results))
    lines = []
    for section in dict.fromkeys(row.section for row in rows):
        lines += ["", f"**{section}**", "", "| setting | " + " | ".join(kind.name for kind in columns) + " |",
                  "|---|" + "---|" * len(columns)]
        lines += [_row(row, results, columns) for row in rows if row.section == section]
    return "\n".join(lines).strip()


def _row(row, results, columns):
    of_row = {cell.kind.name: outcome for cell, outcome in results if cell.row is row}
    cells = [describe(of_row.get(kind.name)).replace("|", "/") or "–" for kind in columns]
    return f"| {row.name} | " + " | ".join(cells) + " |"


def longest_calls(results):
    """The longest call of each kind of framesink's windows, except where the display was stopped."""
    lines = []
    for kind in kinds.OURS:
        own = [(outcome.longest, outcome.longest_call, cell.row.name) for cell, outcome in results
               if cell.kind == kind and not cell.row.waits]
        if own:
            longest, call, name = max(own)
            lines.append(f"| {kind.name} | {longest:.0f} ms | `{call}` | {name} |")
    return "\n".join(["| windows | longest call | of | setting |", "|---|---|---|---|", *lines])


def _versions():
    programs = {"X server": "xvfb", "VNC server": "tigervnc-standalone-server", "Xephyr": "xserver-xephyr",
                "Xwayland": "xwayland", "weston": "weston", "sway": "sway", "SDL": "libsdl2-2.0-0", "Xlib": "libx11-6",
                "OpenSSH": "openssh-client"}
    ours = {name: kinds.version_of(package) for name, package in programs.items()}
    return ", ".join(f"{name} {version}" for name, version in (ours | kinds.versions()).items())


def record(results, columns, seconds):
    before, rest = PAGE.read_text().split(BEGIN)
    after = rest.split(END)[1]
    day = datetime.date.today().strftime("%-d %B %Y")
    text = (f"{BEGIN}\n\nRecorded on {day}; {len(results)} cells in {seconds:.0f} s. Versions: {_versions()}.\n\n"
            f"{table(results, columns)}\n\n{longest_calls(results)}\n\n{END}")
    PAGE.write_text(before + text + after)
