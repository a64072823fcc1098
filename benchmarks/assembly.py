#!/usr/bin/env python3
"""Usage: assembly.py FOLDER ROWS   writes an assembly for the simulator: ROWS rows, or up to 0.1 % less

A root and sub-assemblies of 332 parts each, all under names of their own; the parts' files do not exist. ROWS is a
multiple of 1,000. Prints the root's path.
"""
import json
import sys
from pathlib import Path

kPartsEach = 332


def Write(folder, name, references):
    (folder / name).write_text(json.dumps({"references": references}), encoding="utf-8")


def Main(folder, rows):
    folder.mkdir(parents=True, exist_ok=True)
    assemblies = [f"Baugruppe {i}" for i in range(rows // 1000 * 3)]
    for name in assemblies:
        Write(folder, f"{name}.iam", [f"{name} Teil {i}.ipt" for i in range(kPartsEach)])
    Write(folder, "Wurzel.iam", [f"{name}.iam" for name in assemblies])
    print(folder / "Wurzel.iam")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    Main(Path(sys.argv[1]), int(sys.argv[2]))
