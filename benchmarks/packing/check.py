#!/usr/bin/env python3
"""Usage: check.py ARCHIVE FOLDER [NAMES]   compares a ZIP archive with the folder that it was made of

Python's zipfile, unzip, 7z and bsdtar each read all of it. NAMES is a file with the entries' names in their order.
"""
import filecmp
import os
import subprocess
import sys
import tempfile
import time
import zipfile
from pathlib import Path

kUnpackers = (
    ["unzip", "-q", "{archive}", "-d", "{target}"],
    ["7z", "x", "-bd", "-bso0", "-o{target}", "{archive}"],
    ["bsdtar", "-x", "-f", "{archive}", "-C", "{target}"],
)


def Tree(folder):
    """Every file and every empty folder below `folder`. Links do not count."""
    for path in folder.rglob("*"):
        name = path.relative_to(folder).as_posix()
        if path.is_symlink():
            continue
        if not path.is_dir():
            yield name
        elif all(child.is_symlink() for child in path.iterdir()):
            yield name + "/"


def SameBytes(stream, path):
    with open(path, "rb") as source:
        while True:
            block = stream.read(1 << 20)
            if block != source.read(1 << 20):
                return False
            if not block:
                return True


def CheckEntry(archive, entry, folder):
    path = folder / entry.filename
    assert (entry.flag_bits & 0x800 != 0) == (not entry.filename.isascii()), "UTF-8 flag"
    modified = time.localtime(path.stat().st_mtime)
    assert entry.date_time == (*modified[:5], modified[5] // 2 * 2), "time"
    if entry.is_dir():
        return
    assert entry.compress_type == zipfile.ZIP_DEFLATED, "method"
    with archive.open(entry) as stream:
        assert SameBytes(stream, path), "contents"


def CheckByPython(file, folder, names):
    with zipfile.ZipFile(file) as archive:
        entries = archive.infolist()
        found = [entry.filename for entry in entries]
        assert sorted(found) == sorted(Tree(folder)), "names"
        assert names is None or found == names, f"order: {found}"
        for entry in entries:
            try:
                CheckEntry(archive, entry, folder)
            except AssertionError as error:
                raise AssertionError(f"{entry.filename}: {error}") from None


def CheckByUnpacking(command, file, folder):
    with tempfile.TemporaryDirectory(dir=file.parent) as target:
        command = [part.format(archive=file, target=target) for part in command]
        environment = dict(os.environ, LC_ALL="C.UTF-8")
        subprocess.run(command, check=True, env=environment, stdin=subprocess.DEVNULL)
        target = Path(target)
        found = sorted(Tree(target))
        assert found == sorted(Tree(folder)), f"names: {found}"
        for name in Tree(folder):
            if not name.endswith("/"):
                assert filecmp.cmp(target / name, folder / name, shallow=False), f"{name}: contents"


def Main(file, folder, names=None):
    file, folder = Path(file), Path(folder)
    CheckByPython(file, folder, names and Path(names).read_text(encoding="utf-8").splitlines())
    for command in kUnpackers:
        try:
            CheckByUnpacking(command, file, folder)
        except AssertionError as error:
            raise AssertionError(f"{command[0]}: {error}") from None


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    Main(*sys.argv[1:])
