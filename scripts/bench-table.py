#!/usr/bin/env python3
"""Turns one `make bench` run's figures into the README's short table.

Reads the figures file the run wrote and replaces what stands between the README's two
bench-table markers; a figure the run did not print shows as "not measured", never as an old value.
"""
import re
import sys

BEGIN, END = "<!-- bench-table -->", "<!-- /bench-table -->"

# (what, pattern, how the match reads in the table, goal)
ROWS = [
    ("Log throughput vs a hand-written logger",
     r"log throughput: CLogger (\d+) lines/s, hand-written floor (\d+) lines/s, ratio ([\d.]+)",
     "{0} vs {1} lines/s, ratio {2}", "≥ 0.8"),
    ("Client-state poll (6 readers) vs hand-written reads",
     r"client-state poll.*?regUtil ([\d.]+) us, hand-written floor ([\d.]+) us.*?ratio ([\d.]+)",
     "{0} vs {1} µs, ratio {2}", "≤ 1.2"),
    ("Load + DllGetClassObject + free vs a trivial DLL",
     r"load \+ DllGetClassObject \+ free: Corvane.dll (\d+) us, trivial DLL (\d+) us.*?ratio ([\d.]+)",
     "{0} vs {1} µs, ratio {2}", "reported"),
    ("Bar tick, nothing changed, vs its registry readers alone",
     r"bar tick, nothing changed: ([\d.]+) us; its five registry readers alone ([\d.]+) us.*?ratio ([\d.]+)",
     "{0} vs {1} µs, ratio {2}", "no file, no repaint"),
    ("Bar re-measure after a zoom change vs one caption render",
     r"bar re-measure after a zoom change.*?: ([\d.]+) ms .*?one caption rendered to a file ([\d.]+) ms.*?ratio ([\d.]+)",
     "{0} vs {1} ms, ratio {2}", "ratio ≤ 30"),
    ("Bar phases with the picture caches on vs their floors: first bar / second window / re-measure",
     r"bar phases with the caches on.*?ratio to floor ([\d.]+) \(.*?b\. second window .*?ratio ([\d.]+) \(.*?"
     r"c\. re-measure .*?ratio ([\d.]+) \(",
     "{0} / {1} / {2} (medians of 3)", "≤ 1.25 each"),
    ("A process's first bar vs a bar in a second window",
     r"bar phases with the caches on.*?a\. first bar ([\d.]+) \(.*?b\. second window ([\d.]+) \(.*?a / b ([\d.]+) \(",
     "{0} vs {1} ms, ratio {2} (medians of 3)", "≤ 1.3"),
    ("Second window's bar while another window's write is held",
     r"write is held: ([\d.]+) ms; normally ([\d.]+) .*?ratio ([\d.]+)", "{0} vs {1} ms, ratio {2}", "≤ 1.5"),
    ("Capacity change (new figures), median",
     r"capacity changes: \d+ .*?, ([\d.]+) ms median per change", "{0} ms", "≤ 8 ms"),
    ("Capacity change vs its floor",
     r"capacity changes:.*?\n.*?\n\s*floor ([\d.]+) ms .*?ratio ([\d.]+)", "floor {0} ms, ratio {1}", "≤ 1.25"),
    ("Picture caches after the soaks / after the last window closed",
     r"picture caches after the soaks: (\d+) bytes.*?\n.*?after the last window closed: (\d+) bytes",
     "{0} / {1} bytes", "bounded / 0"),
    ("Bar create/destroy soak, per cycle",
     r"bar create/destroy: (\d+) cycles.*?, ([\d.]+) ms per cycle",
     "{1} ms ({0} cycles)", "reported"),
    ("Both bar soaks: GDI / USER / RAII objects lost",
     r"both soaks together: GDI headroom lost (\d+), USER headroom lost (\d+), live RAII objects \+?(-?\d+)",
     "{0} / {1} / {2}", "0 / 0 / 0"),
    ("Explorer CPU per window, 1 window, vs the registry floor",
     r"^\s*1 windows:.*?per window ([-+]?\d+) us/s, ([-\d.]+) x the floor", "{0} µs/s, {1}× floor", "≤ 1.3×"),
    ("Explorer CPU per window, 10 windows, vs the registry floor",
     r"^\s*10 windows:.*?per window ([-+]?\d+) us/s, ([-\d.]+) x the floor", "{0} µs/s, {1}× floor", "≤ 1.3×"),
    ("Explorer CPU per window, 30 windows, vs the registry floor",
     r"^\s*30 windows:.*?per window ([-+]?\d+) us/s, ([-\d.]+) x the floor", "{0} µs/s, {1}× floor", "≤ 1.3×"),
    ("Window open with vs without the add-in",
     r"without add-in ([\d.]+) ms, with add-in ([\d.]+) ms, ratio ([\d.]+); the add-in's share ([\d.]+) ms",
     "{1} vs {0} ms, ratio {2}", "reported"),
    ("Window open, the add-in's share apart from the DPI tool starts",
     r"the rest ([-\d.]+) ms \(goal <= \d+ ms\)", "{0} ms", "≤ 50 ms"),
    ("The same with another window open (the add-in stays loaded)",
     r"stays loaded\): .*?the rest ([-\d.]+) ms", "{0} ms", "≤ 20 ms"),
    ("Explorer soak (navigations, open/close): GDI / USER lost",
     r"stand-in still running.*?\n\s*GDI headroom \d+ -> \d+ \(lost (\d+)\), USER headroom \d+ -> \d+ \(lost (\d+)\)",
     "{0} / {1}", "0 / 0"),
    ("Namespace view cycle vs a frame with a plain child",
     r"per cycle: median (\d+) us \(floor, frame with a plain child: (\d+) us\), ratio ([\d.]+)",
     "{0} vs {1} µs, ratio {2}", "≤ 3"),
    ("Drop the view only reads vs reading the list",
     r"per drop the view only reads: median (\d+) us \(floor, reading the list: (\d+) us\), ratio ([\d.]+)",
     "{0} vs {1} µs, ratio {2}", "reported"),
    ("Namespace soaks (1,000 views, 1,000 drops): GDI / USER lost, module locks at the end",
     r"view cycles:.*?lost (\d+), then (\d+)\).*?drops:.*?lost (\d+), then (\d+)\).*?end: module locks (\d+)",
     "{0}+{1} / {2}+{3}, locks {4}", "0 / 0, locks 0"),
]


def table(figures: str, machine: str) -> str:
    lines = [f"Latest `make bench` run: {machine}", "",
             "| Figure | Measured (same run) | Goal |", "|---|---|---|"]
    for what, pattern, shape, goal in ROWS:
        found = re.search(pattern, figures, re.MULTILINE | re.DOTALL)
        lines.append(f"| {what} | {shape.format(*found.groups()) if found else 'not measured'} | {goal} |")
    return "\n".join(lines)


def main() -> int:
    figures_path, readme_path, machine = sys.argv[1], sys.argv[2], sys.argv[3]
    with open(figures_path, encoding="utf-8") as f:
        figures = f.read()
    with open(readme_path, encoding="utf-8") as f:
        readme = f.read()
    start, end = readme.find(BEGIN), readme.find(END)
    if start < 0 or end < start:
        print(f"{readme_path}: no {BEGIN} … {END} section; table not written", file=sys.stderr)
        return 1
    readme = readme[: start + len(BEGIN)] + "\n" + table(figures, machine) + "\n" + readme[end:]
    with open(readme_path, "w", encoding="utf-8") as f:
        f.write(readme)
    return 0


if __name__ == "__main__":
    sys.exit(main())
