#!/usr/bin/env python3
"""Usage: report.py FOLDER   prints one table of what bench.sh has left in FOLDER

wine.txt and packing.txt hold the tables of bench-wine.sh and bench-packing.sh, table.json and export.json the
results of Google Benchmark, sizes.txt a line "NAME BYTES" for each program.
"""
import json
import re
import sys
from pathlib import Path

kTaskRatio = 1.3
kTableRatio = 1.3
kClick = 50  # milliseconds
kPage = 16
kTenfold = 12  # for ten times the rows, where sorting is a part of the work
kPacking = {"cad": 12, "compound": 11.8, "text": 2.3, "exchange": 2.8, "small": 2.3, "assorted": 2.2, "hard": 1.8}


def Number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.1f}" if value >= 1 else f"{value:.3f}"


def Row(what, ours, unit, other="", theirs=None, ratio="", aim="", met=None):
    beside = f"{Number(theirs)} {unit}" if theirs is not None else ""
    print(f"| {what} | {Number(ours)} {unit} | {other} | {beside} | {ratio} | {aim} | "
          f"{'' if met is None else 'yes' if met else 'no'} |")


def Compared(what, ours, unit, other, theirs, most=None):
    Row(what, ours, unit, other, theirs, f"{ours / theirs:.2f}", f"at most {most}" if most else "",
        ours / theirs <= most if most else None)


def Limited(what, ours, most, other="", theirs=None):
    Row(what, ours, "ms", other, theirs, f"{ours / theirs:.2f}" if theirs else "", f"at most {most} ms", ours <= most)


def Cells(path, columns):
    """The rows of all Markdown tables with so many columns in a file, without headers."""
    rows = []
    for line in path.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip("| \n").split(" | ")]
        if line.startswith("| ") and len(cells) == columns and re.fullmatch(r"[\d.]+", cells[-1]):
            rows.append(cells)
    assert rows, f"{path} has no table of {columns} columns"
    return rows


def ReportTasks(path):
    for what, ours, _, _, bare, *_ in Cells(path, 8):
        Compared(what, float(ours), "ms", "bare program", float(bare), kTaskRatio)


def ReportDialog(path):
    found = {}  # rows: what: median
    for what, median, *_ in Cells(path, 4):
        name, rows = re.fullmatch(r"(.*), (\d+) rows", what).groups()
        found.setdefault(int(rows), {})[name] = float(median)
    least = found[min(found)]
    for rows, values in sorted(found.items()):
        place = f"Wine, {rows:,} rows"
        shown = values["start to the visible rows, ms"]
        Compared(f"`/E` to the visible rows, {place}", shown, "ms", "bare program, calls alone",
                 values["bare program, component's calls alone, ms"])
        Compared(f"`/E` to the visible rows, {place}", shown, "ms", "bare program, also looking for drawings",
                 values["bare program, also looking for drawings, ms"])
        for name in ("expand all", "collapse all"):
            Limited(f"{name}, {place}", values[f"{name}, ms"], kClick, "the same with the drawing",
                    values[f"{name} and draw, ms"])
        for name in ("page down at the front", "page down at the end"):
            Compared(f"{name} and draw, {place}", values[f"{name}, ms"], "ms", "the same page drawn again",
                     values["the same page drawn again, ms"])
        Compared(f"peak memory of `/E`, {place}", values["peak memory, MB"], "MB", f"{min(found):,} rows",
                 least["peak memory, MB"])


def Medians(path):
    """name: (milliseconds, counters), of the median of each benchmark."""
    results = {}
    for entry in json.loads(path.read_text(encoding="utf-8"))["benchmarks"]:
        if entry.get("aggregate_name") == "median":
            name = re.sub(r"/iterations:\d+$", "", entry["run_name"])
            assert entry["time_unit"] == "ms", name
            results[name] = (entry["real_time"], entry)
    return results


def ReportTable(path):
    times = Medians(path)
    Compared("working table, 100,000 rows in and out", times["InsertAndWalkByQuery"][0], "ms",
             "by hand, one transaction", times["InsertAndWalkByHand/transaction:1"][0], kTableRatio)


def ReportGrowth(path):
    sizes = {}
    for name, (time, entry) in Medians(path).items():
        what, rows = name.split("/")
        sizes.setdefault(what, {})[int(rows)] = time
        if "bytes/row" in entry:
            Row(f"{what}: memory of the open dialog for each row, {int(rows):,} rows", entry["bytes/row"], "bytes")
    limits = {"ExpandAll": kClick, "CollapseAll": kClick, "PageDown": kPage}
    for what, times in sorted(sizes.items()):
        for rows, time in sorted(times.items()):
            label = f"{what}, native, {rows:,} rows"
            before = times.get(rows // 10)
            if before is None:
                Row(label, time, "ms")
            elif what in limits:
                Limited(label, time, limits[what], f"{rows // 10:,} rows", before)
            else:
                Compared(label, time, "ms", f"{rows // 10:,} rows", before, kTenfold)


def ReportPacking(path):
    results = {}  # mix: packer: seconds
    for mix, packer, clock, *_ in Cells(path, 9):
        results.setdefault(mix, {})[packer] = float(clock)
    for mix, times in results.items():
        ours = times.pop("ours")
        for packer, seconds in times.items():
            aim = kPacking[mix] if packer == "zip -6" else None
            Row(f"packing, {mix}", ours, "s", packer, seconds, f"1/{seconds / ours:.2f}", f"1/{aim}" if aim else "",
                seconds / ours >= aim if aim else None)


def ReportSizes(path):
    sizes = {name: int(size) / 1e6 for name, size in map(str.split, path.read_text(encoding="utf-8").splitlines())}
    Compared("size of VelmoraInventor.exe", sizes["VelmoraInventor.exe"], "MB", "bare program",
             sizes["bare_program.exe"])


def Main(folder):
    print("| measured | ours | beside it | theirs | ratio | aim | met |")
    print("|---|--:|---|--:|--:|---|---|")
    ReportTasks(folder / "wine.txt")
    ReportDialog(folder / "wine.txt")
    ReportTable(folder / "table.json")
    ReportGrowth(folder / "export.json")
    ReportPacking(folder / "packing.txt")
    ReportSizes(folder / "sizes.txt")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Main(Path(sys.argv[1]))
