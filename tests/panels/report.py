#!/usr/bin/python3
"""Usage: report.py list [--ci] [PANEL...] | table FOLDER"""

import json
import sys
from pathlib import Path

from panels import PANELS

CHECKS = "icon open place live escape elsewhere second menu status log raise quit".split()


def list_panels(wanted):
    ci = "--ci" in wanted
    for name in (name for name in wanted if name != "--ci"):
        if name not in PANELS:
            return 1
    for name, panel in PANELS.items():
        if panel.is_steady if ci else not wanted or name in wanted:
            print(name, panel.release)
    return 0


def print_table(folder):
    """A row for each panel that was run; 1 if anything failed."""
    reasons = []
    print(f"{'':16}" + "".join(f"{check:>10}" for check in CHECKS))
    for name in PANELS:
        runs = sorted((path for path in (folder / name).glob("*") if path.is_dir()), key=lambda path: int(path.name))
        if not runs:
            continue
        row = f"{name:16}"
        files = [run / "result.json" for run in runs]
        results = [json.loads(file.read_text()) if file.exists() else {} for file in files]
        for check in CHECKS:
            cells = [result.get(check, ["FAIL", "the session came to an end before"]) for result in results]
            failures = [(run, cell[1]) for run, cell in zip(runs, cells) if cell[0] == "FAIL"]
            if failures:
                row += f"{'FAIL' if len(runs) == 1 else f'{len(runs) - len(failures)}/{len(runs)}':>10}"
                reasons += [f"{name}/{run.name}: {check}: {reason}" for run, reason in failures]
            else:
                row += f"{cells[0][0]:>10}"
                reasons += [f"{name}: {check}: n/a, {cells[0][1]}"] * (cells[0][0] == "n/a")
        print(row)
    print(*reasons, sep="\n")
    return int(any(": n/a, " not in reason for reason in reasons))


if sys.argv[1] == "list":
    sys.exit(list_panels(sys.argv[2:]))
sys.exit(print_table(Path(sys.argv[2])))
