#!/usr/bin/env python3
"""Usage: measure.py PACK_FOLDER FOLDER RUNS   packs the mixes in FOLDER/mixes by each packer in turn, prints a table"""
import os
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

kPackers = {
    "zip -6": ["zip", "-q", "-r", "-6", "{archive}", "{mix}"],
    "ours": ["{ours}", "{folder}", "{archive}"],
    "7z -mx=1": ["7z", "a", "-tzip", "-mx=1", "-mmt=1", "-bd", "-bso0", "{archive}", "{mix}"],
    "bsdtar": ["bsdtar", "--format", "zip", "-c", "-f", "{archive}", "{mix}"],
    "zipfile": [sys.executable, "-m", "zipfile", "-c", "{archive}", "{mix}"],
    "cp -r": ["cp", "-r", "{mix}", "{archive}"],
}


def Remove(path):
    if path.is_dir():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


def SizeOf(path):
    return sum(file.stat().st_size for file in path.rglob("*") if file.is_file()) if path.is_dir() else path.stat().st_size


def Run(command, mixes, report):
    """Seconds on the clock, seconds of the processor, peak memory in KiB."""
    # By a small program: a child of this one would begin with this one's memory as its peak. It knows only hundredths
    # of a second.
    begin = time.perf_counter()
    subprocess.run(["time", "-q", "-o", report, "-f", "%U %S %M", *command], cwd=mixes, stdin=subprocess.DEVNULL,
                   check=True)
    seconds = time.perf_counter() - begin
    user, system, memory = map(float, report.read_text().split())
    return seconds, user + system, memory


def Measure(mix, ours, folder, runs):
    mixes, archive = folder / "mixes", folder / "archive.zip"
    results, sizes = {name: [] for name in kPackers}, {}
    for run in range(runs + 1):  # the first one warms up and does not count
        for name, command in kPackers.items():
            Remove(archive)
            os.sync()
            command = [part.format(archive=archive, mix=mix, folder=mixes / mix, ours=ours) for part in command]
            result = Run(command, mixes, folder / "time")
            if run > 0:
                results[name].append(result)
            sizes[name] = SizeOf(archive)
    Remove(archive)
    return {name: (*map(statistics.median, zip(*results[name])), sizes[name]) for name in kPackers}


def Main(ours, folder, runs):
    print("| mix | packer | clock s | processor s | zip's clock | zip's processor | size MB | to zip's | peak MB |")
    print("|---|---|--:|--:|--:|--:|--:|--:|--:|")
    for mix in sorted(path.name for path in (folder / "mixes").iterdir()):
        results = Measure(mix, ours, folder, runs)
        clock, processor, _, size = results["zip -6"]
        for name, (ownClock, ownProcessor, memory, ownSize) in results.items():
            print(f"| {mix} | {name} | {ownClock:.3f} | {ownProcessor:.2f} | 1/{clock / ownClock:.2f} | "
                  f"1/{processor / max(ownProcessor, 0.01):.2f} | {ownSize / 1e6:.2f} | {(ownSize / size - 1) * 100:+.2f} % | "
                  f"{memory / 1024:.1f} |", flush=True)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    Main(sys.argv[1], Path(sys.argv[2]).resolve(), int(sys.argv[3]))
