#!/usr/bin/env python3
"""Usage: report.py FOLDER   prints one table of what bench.sh has left in FOLDER

wine.txt and packing.txt hold the tables of bench-wine.sh and bench-packing.sh, table.json and export.json the
results of Google Benchmark, sizes.txt a line "NAME BYTES" for each program.
"""
import json
import re
import sys
from pathlib import Path

kTaskRatio = 1.35
kTableRatio = 1.3
kShown = {1_000: 600, 10_000: 1_000, 100_000: 4_000}  # milliseconds to the rows, for at most so many
kClick = 50
kPage = 16
kTenfold = {"Listing": 11}  # growth of the time for ten times the rows; of the others 12, as sorting is a part of it
kListingRatio = 5
kMegabytes = 1.5
# Each mix of files: the share of zip's time, and by how much the archive may be larger, in percent.
kPacking = {"cad": (1 / 12, 1), "compound": (0.085, 1), "text": (1 / 2.3, 0.5), "exchange": (0.36, 0.5),
            "small": (1 / 2.3, 0.5), "assorted": (0.45, 0.5), "hard": (0.55, 0.5)}


def Number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.1f}" if value >= 1 else f"{value:.3f}"


def Row(what, ours, unit, other="", theirs=None, ratio="", aim="", met=None):
    beside = f"{Number(theirs)} {unit}" if theirs is not None else ""
    print(f"| {what} | {Number(ours)} {unit} | {other} | {beside} | {ratio} | {aim} | "
          f"{'' if met is None else 'yes' if met else 'no'} |")


def Compared(what, ours, unit, other, theirs, most=None):
    ratio = ours / theirs
    Row(what, ours, unit, other, theirs, f"{ratio:.{2 if ratio >= 0.2 else 3}f}", f"at most {most}" if most else "",
        ratio <= most if most else None)


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
        Limited(f"`/E` to the visible rows, {place}", shown, min(kShown[most] for most in kShown if rows <= most),
                "bare program, component's calls alone", values["bare program, component's calls alone, ms"])
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
                Compared(label, time, "ms", f"{rows // 10:,} rows", before, kTenfold.get(what, 12))
    for rows, time in sorted(sizes["Listing"].items()):
        if alone := sizes.get("ListingBytesAlone", {}).get(rows):
            Compared(f"Listing, native, {rows:,} rows", time, "ms", "writing its bytes alone", alone, kListingRatio)


def ReportPacking(path):
    results = {}  # mix: packer: (seconds, megabytes)
    for mix, packer, clock, _, _, _, size, *_ in Cells(path, 9):
        results.setdefault(mix, {})[packer] = (float(clock), float(size))
    for mix, packers in results.items():
        seconds, size = packers.pop("ours")
        mostTime, mostGrowth = kPacking[mix]
        for packer, (theirs, _) in packers.items():
            most = round(mostTime, 3) if packer == "zip -6" else None
            Compared(f"packing, {mix}", seconds, "s", packer, theirs, most)
        theirs = packers["zip -6"][1]
        growth = (size / theirs - 1) * 100
        Row(f"size of the archive, {mix}", size, "MB", "zip -6", theirs, f"{growth:+.2f} %", f"at most {mostGrowth:+} %",
            growth <= mostGrowth)


def ReportSizes(path):
    sizes = {name: int(size) / 1e6 for name, size in map(str.split, path.read_text(encoding="utf-8").splitlines())}
    ours, bare = sizes["VelmoraInventor.exe"], sizes["bare_program.exe"]
    Row("size of VelmoraInventor.exe", ours, "MB", "bare program", bare, f"{ours / bare:.2f}",
        f"at most {kMegabytes} MB", ours <= kMegabytes)


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
