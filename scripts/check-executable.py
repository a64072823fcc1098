#!/usr/bin/env python3
"""Usage: check-executable.py EXE SYMBOLS    looks at a Windows executable as it will be shipped

Fails when it imports anything but the system's libraries, when address space randomisation (high entropy) or
non-executable data are off, when its time stamp is not the linker's fixed one, or when it carries debug data. SYMBOLS,
the debug data that were split off it, say whether each of our sources was compiled with the stack protector.
"""
import re
import struct
import sys

kSystemLibraries = {"advapi32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shcore.dll",
                    "user32.dll"}
kWantedFlags = {0x0020: "high entropy addresses", 0x0040: "a movable base", 0x0100: "non-executable data"}


class Executable:
    def __init__(self, data):
        self.data = data
        header = self.Number("<I", 0x3C)
        if data[:2] != b"MZ" or data[header:header + 4] != b"PE\0\0":
            raise ValueError("no Windows executable")
        self.timeStamp = self.Number("<I", header + 8)
        optional = header + 24
        self.flags = self.Number("<H", optional + 70)
        self.importTable = self.Number("<I", optional + 112 + 8)
        table = optional + self.Number("<H", header + 20)
        self.sections = [self.Section(table + 40 * i) for i in range(self.Number("<H", header + 6))]

    def Number(self, kind, at):
        return struct.unpack_from(kind, self.data, at)[0]

    def Text(self, at):
        return self.data[at:self.data.index(b"\0", at)].decode("latin-1")

    def Section(self, at):
        size, address, _, place = struct.unpack_from("<IIII", self.data, at + 8)
        return self.data[at:at + 8].rstrip(b"\0").decode("latin-1"), address, size, place

    def Place(self, address):
        for _, start, size, place in self.sections:
            if start <= address < start + size:
                return address - start + place
        raise ValueError("an address outside all sections")

    def Imports(self):
        at = self.Place(self.importTable)
        while name := self.Number("<I", at + 12):
            yield self.Text(self.Place(name)).lower()
            at += 20


def Faults(executable):
    for library in sorted(set(executable.Imports()) - kSystemLibraries):
        yield f"it imports {library}"
    for flag, name in kWantedFlags.items():
        if not executable.flags & flag:
            yield f"it lacks {name}"
    for name, *_ in executable.sections:
        if name.startswith((".debug", "/")):
            yield f"it carries debug data ({name})"
    if executable.timeStamp != 0:
        yield "it carries the time at which it was linked, so that no two builds are alike"


def CompilerFaults(symbols):
    # The compiler notes its switches for each source; the libraries come without debug data, or are none of C++.
    switches = re.findall(rb"GNU C\+\+[^\0]*", symbols)
    if not switches:
        yield "its symbols do not say how it was compiled"
    elif not all(b" -fstack-protector-strong" in each for each in switches):
        yield "a source was compiled without the stack protector"


def Main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.splitlines()[0])
    with open(sys.argv[1], "rb") as executable, open(sys.argv[2], "rb") as symbols:
        faults = [*Faults(Executable(executable.read())), *CompilerFaults(symbols.read())]
    for fault in faults:
        print(f"check-executable.py: {sys.argv[1]}: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(Main())
