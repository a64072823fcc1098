#!/usr/bin/env bash
# Usage: check-zip64.sh   packs what only the long form of the archive can hold, and reads it with other programs
#
# Needs 9 GB below build/ for a few minutes. Not part of the tests for this reason.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
"$root/scripts/packages.sh" bench packing
"$root/scripts/build.sh" bench pack_folder

work=$root/build/bench/zip64
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
rm -rf "$work"
mkdir -p "$work"
echo "check-zip64.sh: making 70,000 small files, a sparse file and an incompressible one, both beyond 4 GiB"
python3 - "$work/source" <<'P'
import os, random, sys
source = sys.argv[1]
os.makedirs(f"{source}/viele")
with open(f"{source}/a sparse.bin", "wb") as file:
    file.truncate((4 << 30) + 12_345)
block = random.Random(1).randbytes(16 << 20)
with open(f"{source}/b random.bin", "wb") as file:
    for _ in range(257):
        file.write(block)
for i in range(70_000):
    with open(f"{source}/viele/{i:05}.txt", "w") as file:
        file.write(f"Datei {i}\n")
P

/usr/bin/env time -f "check-zip64.sh: packed in %e s with at most %M KiB of memory" \
    "$root/build/bench/pack_folder" "$work/source" "$work/archive.zip"
ls -l "$work/archive.zip"
python3 - "$work/archive.zip" "$work/source" <<'P'
import sys, zipfile
from pathlib import Path
archive, source = zipfile.ZipFile(sys.argv[1]), Path(sys.argv[2])
entries = archive.infolist()
assert len(entries) == 70_002, len(entries)
for entry in entries:
    path = source / entry.filename
    assert entry.file_size == path.stat().st_size, entry.filename
    with archive.open(entry) as packed, open(path, "rb") as original:
        while block := packed.read(1 << 20):
            assert block == original.read(len(block)), entry.filename
print(f"zipfile: {len(entries)} entries, the last one at {entries[-1].header_offset}: all as their files")
P
unzip -tqq "$work/archive.zip"
echo "unzip: no errors"
7z t -bd -bso0 "$work/archive.zip"
echo "7z: no errors"
bsdtar -tf "$work/archive.zip" | wc -l | grep -qx 70002
echo "bsdtar: 70002 entries"
