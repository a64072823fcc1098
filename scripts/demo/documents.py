#!/usr/bin/env python3
"""Usage: documents.py BEFORE AFTER   prints what a task has changed in a document of the simulator, as a table"""
import json
import sys
from itertools import zip_longest
from pathlib import Path

kCustomSet = 3  # the fourth


def Read(path):
    return json.loads(Path(path).read_text(encoding="utf-8"))


def Properties(document):
    sets = document.get("propertySets", [])
    return {p["name"]: p for p in sets[kCustomSet]["properties"]} if len(sets) > kCustomSet else {}


def References(document):
    return [r if isinstance(r, str) else r["file"] for r in document.get("references", [])]


def Verdict(before, after):
    if before is None or after is None:
        return "new" if before is None else "removed"
    return "" if before == after else "changed" if after else "emptied"


def Rows(before, after):
    """A property's row has its type, a reference's its number."""
    old, new = Properties(before), Properties(after)
    for name in {**old, **new}:
        values = [side[name]["value"] if name in side else None for side in (old, new)]
        yield name, (new.get(name) or old[name])["type"], values
    for i, values in enumerate(zip_longest(References(before), References(after)), 1):
        yield "reference", str(i), values


def Shown(value):
    return "-" if value is None else json.dumps(value, ensure_ascii=False)


def Main(before, after):
    table = [("Name", "Type", "Before", "After", "")]
    table += [(name, kind, *map(Shown, values), Verdict(*values)) for name, kind, values in Rows(before, after)]
    widths = [max(map(len, column)) for column in zip(*table)]
    table.insert(1, ["-" * width for width in widths])
    for row in table:
        print("  " + "  ".join(map(str.ljust, row, widths)).rstrip())


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    Main(*map(Read, sys.argv[1:]))
