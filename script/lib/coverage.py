"""Prints gcovr's JSON as a table by folder, then what was not run and the reason for that.

Usage: coverage.py FOLDER... <coverage.json
"""
import collections
import json
import os
import sys

REASONS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "uncovered.txt")
NO_REASON = "no reason is known: a test is missing, or a line too many is there"


def share(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def counts(file):
    """Lines, of them run, branches, of them taken; exceptions apart, which nothing here throws."""
    branches = [branch for line in file["lines"] for branch in line["branches"]
                if not branch["throw"]]
    return collections.Counter(
        lines=len(file["lines"]), run=sum(line["count"] > 0 for line in file["lines"]),
        branches=len(branches), taken=sum(branch["count"] > 0 for branch in branches))


def ranges(numbers):
    """[3, 4, 5, 9] as "3-5, 9"."""
    texts = []
    for number in numbers:
        if texts and number == texts[-1][1] + 1:
            texts[-1][1] = number
        else:
            texts.append([number, number])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in texts)


def print_table(files, folders):
    sums = collections.defaultdict(collections.Counter)
    for file in files:
        for key in file["file"].split("/")[0], "all":
            sums[key].update(counts(file))
    print(f"{'folder':13}{'lines':>7}{'run':>10}{'branches':>10}{'taken':>10}")
    for key in [*folders, "all"]:
        c = sums[key]
        print(f"{key:13}{c['lines']:7}{share(c['run'], c['lines']):>10}"
              f"{c['branches']:10}{share(c['taken'], c['branches']):>10}")


def print_rest(files):
    with open(REASONS, encoding="utf-8") as lines:
        reasons = dict(line.rstrip("\n").split(": ", 1)
                       for line in lines if not line.startswith("#"))
    print("\nNot run:")
    for file in files:
        missed = [line["line_number"] for line in file["lines"] if line["count"] == 0]
        if missed:
            print(f"  {file['file']}, {ranges(missed)}\n"
                  f"      {reasons.pop(file['file'], NO_REASON)}")
    for name in reasons:
        print(f"  {name}\n      all of it is run, or it is gone: its reason is not needed any more")


def main():
    files = json.load(sys.stdin)["files"]
    for file in files:
        file["lines"] = [line for line in file["lines"] if not line["gcovr/noncode"]]
    print_table(files, sys.argv[1:])
    print_rest(files)


if __name__ == "__main__":
    main()
