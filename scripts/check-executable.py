#!/usr/bin/env python3
"""Usage: check-executable.py EXE SYMBOLS | --stamp EXE    looks at a Windows executable as it will be shipped

Fails when it imports anything but the system's libraries, when address space randomisation (high entropy) or
non-executable data are off, when it is not marked as made for Windows 10, when its manifest does not ask for scaling
by monitor, when it carries debug data, or when the time stamp in its header is not a hash of the rest. SYMBOLS, the
debug data that were split off it, say whether each of our sources was compiled with the stack protector.

--stamp writes that hash: builds are told apart by it, and the same sources still give the same file.
"""
import hashlib
import re
import struct
import sys

# Without advapi32.dll: it would come in for the cryptography that the program's start does without.
kSystemLibraries = {"gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shcore.dll", "user32.dll"}
kWantedFlags = {0x0020: "high entropy addresses", 0x0040: "a movable base", 0x0100: "non-executable data"}


class Executable:
    def __init__(self, data):
        self.data = bytearray(data)
        header = self.Number("<I", 0x3C)
        if data[:2] != b"MZ" or data[header:header + 4] != b"PE\0\0":
            raise ValueError("no Windows executable")
        self.stampPlace = header + 8
        optional = header + 24
        self.versions = [struct.unpack_from("<HH", data, optional + at) for at in (40, 48)]
        self.checksumPlace = optional + 64
        self.flags = self.Number("<H", optional + 70)
        self.importTable = self.Number("<I", optional + 112 + 8)
        self.signaturePlace = optional + 112 + 4 * 8
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

    def Stamp(self):
        """A hash of all but itself and what signing changes."""
        rest = self.data[:self.Number("<I", self.signaturePlace) or None]
        for place, size in ((self.stampPlace, 4), (self.checksumPlace, 4), (self.signaturePlace, 8)):
            rest[place:place + size] = bytes(size)
        return struct.unpack("<I", hashlib.sha256(rest).digest()[:4])[0]

    def Checksum(self):
        """As the header's definition has it: 16-bit words with carry, then the length."""
        data = self.data + bytes(len(self.data) % 2)
        data[self.checksumPlace:self.checksumPlace + 4] = bytes(4)
        total = sum(struct.unpack(f"<{len(data) // 2}H", data))
        while total > 0xFFFF:
            total = (total & 0xFFFF) + (total >> 16)
        return total + len(self.data)

    def WriteStamp(self):
        struct.pack_into("<I", self.data, self.stampPlace, self.Stamp())
        struct.pack_into("<I", self.data, self.checksumPlace, self.Checksum())

    def Imports(self):
        at = self.Place(self.importTable)
        while name := self.Number("<I", at + 12):
            yield self.Text(self.Place(name)).lower()
            at += 20


def Read(file):
    with open(file, "rb") as stream:
        return Executable(stream.read())


def Faults(executable):
    for library in sorted(set(executable.Imports()) - kSystemLibraries):
        yield f"it imports {library}"
    for flag, name in kWantedFlags.items():
        if not executable.flags & flag:
            yield f"it lacks {name}"
    for name, *_ in executable.sections:
        if name.startswith((".debug", "/")):
            yield f"it carries debug data ({name})"
    for version, name in zip(executable.versions, ("operating system", "subsystem")):
        if version != (10, 0):
            yield f"its {name} version is {version[0]}.{version[1]} and not 10.0"
    if b">PerMonitorV2, PerMonitor</dpiAwareness>" not in executable.data:
        yield "its manifest does not ask for scaling by monitor"
    if executable.Number("<I", executable.stampPlace) != executable.Stamp():
        yield "its time stamp is not the hash of the rest"
    if executable.Number("<I", executable.checksumPlace) != executable.Checksum():
        yield "its checksum is wrong"


def CompilerFaults(symbols):
    # The compiler notes its switches for each source; the libraries come without debug data, or are none of C++.
    switches = re.findall(rb"GNU C\+\+[^\0]*", symbols)
    if not switches:
        yield "its symbols do not say how it was compiled"
    elif not all(b" -fstack-protector-strong" in each for each in switches):
        yield "a source was compiled without the stack protector"


def Stamp(file):
    executable = Read(file)
    executable.WriteStamp()
    with open(file, "wb") as stream:
        stream.write(executable.data)


def Check(file, symbols):
    with open(symbols, "rb") as stream:
        faults = [*Faults(Read(file)), *CompilerFaults(stream.read())]
    for fault in faults:
        print(f"check-executable.py: {file}: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__.splitlines()[0])
    sys.exit(Stamp(sys.argv[2]) if sys.argv[1] == "--stamp" else Check(*sys.argv[1:]))
