#!/usr/bin/env python3
"""Usage: documents.py BEFORE AFTER EXPECTED    compares a document of the simulator before and after a task

EXPECTED is a JSON object with one or both of

  "properties"  name to value: what set 4 holds, in this order
  "references"  the files, in this order

Prints what EXPECTED names, before and after, as a table. Then checks that AFTER holds what EXPECTED says and that
nothing else in it has changed. Ends with 1 when it has not, and says what differs.
"""
import json
import sys
import unicodedata
from itertools import zip_longest

kCustomSet = 3  # the fourth


def Read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def Properties(document):
    return document["propertySets"][kCustomSet]["properties"]


def References(document):
    return [r if isinstance(r, str) else r["file"] for r in document["references"]]


def Shown(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    return f'"{value}"' if isinstance(value, str) else str(value)


def Verdict(before, after):
    if before is None:
        return "new"
    if after is None:
        return "removed"
    if before == after:
        return ""
    return "emptied" if after == '""' else "changed"


def PropertyRows(before, after):
    """Names in the order of `before`, new ones behind them."""
    old = {p["name"]: p for p in before}
    new = {p["name"]: p for p in after}
    for name in list(old) + [n for n in new if n not in old]:
        kind = (new.get(name) or old[name])["type"]
        values = [Shown(side[name]["value"]) if name in side else None for side in (old, new)]
        yield name, kind, *(v or "-" for v in values), Verdict(*values)


def ReferenceRows(before, after):
    for i, (old, new) in enumerate(zip_longest(before, after), 1):
        yield str(i), old or "-", new or "-", Verdict(old, new)


def Width(text):
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


def PrintTable(head, rows):
    table = [head, *rows]
    widths = [max(Width(row[i]) for row in table) for i in range(len(head))]
    for number, row in enumerate(table):
        print("  " + "  ".join(cell + " " * (w - Width(cell)) for cell, w in zip(row, widths)).rstrip())
        if number == 0:
            print("  " + "  ".join("-" * w for w in widths).rstrip())


def Rest(document):
    """All but the properties of set 4 and the references."""
    rest = json.loads(json.dumps(document))
    rest["references"] = []
    rest["propertySets"][kCustomSet]["properties"] = []
    return rest


def Faults(before, after, expected):
    found = [(p["name"], p["value"]) for p in Properties(after)]
    if "properties" in expected:
        wanted = list(expected["properties"].items())
        if [(n, json.dumps(v)) for n, v in found] != [(n, json.dumps(v)) for n, v in wanted]:
            yield f"the properties are\n    {found}\n  and should be\n    {wanted}"
        kinds = {p["name"]: p["type"] for p in Properties(before)}
        for p in Properties(after):
            if p["type"] != kinds.get(p["name"], "text"):
                yield f"the type of {p['name']} has become {p['type']}"
    elif Properties(after) != Properties(before):
        yield "the properties have changed"
    if "references" in expected:
        if References(after) != expected["references"]:
            yield f"the references are\n    {References(after)}\n  and should be\n    {expected['references']}"
    elif after["references"] != before["references"]:
        yield "the references have changed"
    if Rest(after) != Rest(before):
        yield "other parts of the document have changed"


def Main():
    if len(sys.argv) != 4:
        sys.exit(__doc__.splitlines()[0])
    before, after, expected = map(Read, sys.argv[1:])
    if "properties" in expected:
        PrintTable(("Property", "Type", "Before", "After", ""), PropertyRows(Properties(before), Properties(after)))
    if "references" in expected:
        PrintTable(("Reference", "Before", "After", ""), ReferenceRows(References(before), References(after)))
    faults = list(Faults(before, after, expected))
    for fault in faults:
        print(f"  {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(Main())
