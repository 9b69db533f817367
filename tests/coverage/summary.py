#!/usr/bin/env python3
"""Sums up a report of gcovr (--json) by folder, and lists the functions that were never entered."""

import collections
import json
import sys

DEPTH = {"fsi": 3, "host": 2, "records": 2, "conversion": 2}  # of a folder's name; 1 elsewhere


def folder_of(file):
    parts = file.split("/")[:-1]
    return "/".join(parts[: DEPTH.get(parts[0], 2)]) if parts else "."


def main():
    with open(sys.argv[1], encoding="utf-8") as report:
        files = json.load(report)["files"]
    sums = collections.defaultdict(lambda: [0, 0, 0, 0])
    idle = []
    for file in files:
        name = file["file"]
        for folder in {folder_of(name), name.split("/")[0] + " (all)"}:
            total = sums[folder]
            for line in file["lines"]:
                if line.get("gcovr/noncode"):
                    continue
                total[0] += 1
                total[1] += line["count"] > 0
                # Branches that only an exception takes do not count.
                branches = [b for b in line["branches"] if not b.get("throw")]
                total[2] += len(branches)
                total[3] += sum(branch["count"] > 0 for branch in branches)
        for function in file.get("functions", []):
            if function["execution_count"] == 0:
                idle.append(f"{name}:{function['lineno']}: {function['name']}")
    print(f"{'folder':32} {'lines':>15} {'branches':>15}")
    for folder in sorted(sums):
        lines, entered, branches, taken = sums[folder]
        print(f"{folder:32} {entered:6}/{lines:6} {100 * entered // max(lines, 1):3}%"
              f" {taken:6}/{branches:6} {100 * taken // max(branches, 1):3}%")
    print(f"\nnever entered: {len(idle)} functions")
    for function in sorted(idle):
        print("  " + function)


if __name__ == "__main__":
    main()
