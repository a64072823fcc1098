#!/usr/bin/env python3
"""Usage: mixes.py FOLDER DIVISOR SEEDS   writes the folders that bench-packing.sh packs, a DIVISORth of each

The data are the same on every run: each file is drawn with a seed of its own, which begins with SEEDS. The packing was
tuned on the data of "tune"; what is reported comes from "report".
"""
import random
import struct
import sys
import zlib
from pathlib import Path

import kinds

kMegabyte = 1_000_000
kSector = 4096


# --- binary documents -----------------------------------------------------------------------------------------

def Mesh(rng, size):
    """Binary geometry before its compression: points on a wavy surface, with indices."""
    x, y, z = (rng.uniform(-500, 500) for _ in range(3))
    parts, length, i = [], 0, 0
    while length < size:
        x, y, z = x + rng.gauss(0, 0.7), y + rng.gauss(0, 0.7), z + rng.gauss(0, 0.05)
        parts.append(struct.pack("<3dI2H", x, y, z, i, rng.randrange(64), 0xFFFF))
        length += 32
        i += 1
    return b"".join(parts)


class Segments:
    """Compressed segments to draw from. Making every one anew would take minutes; a file takes each at most once."""

    def __init__(self, rng):
        self.pool = []
        for _ in range(160):
            self.pool.append(zlib.compress(Mesh(rng, int(rng.lognormvariate(11.5, 1.1)) + 2000), 6))
        self.noise = rng.randbytes(24 * kMegabyte)

    def Draw(self, rng):
        """A real segment, or as many bytes out of the noise, which nothing can tell from one."""
        segment = rng.choice(self.pool)
        if rng.random() < 0.3:
            return segment
        begin = rng.randrange(len(self.noise) - len(segment))
        return segment[:2] + self.noise[begin:begin + len(segment) - 2]


def DirectoryEntry(rng, name, start, size):
    encoded = name.encode("utf-16-le")[:62]
    return struct.pack("<64sHBB3i16sI2QIQ", encoded, len(encoded) + 2, 2, 1, -1, rng.randrange(40), -1, bytes(16), 0,
                       0, 132_000_000_000_000_000 + rng.randrange(10**15), start, size)


def PropertyStream(rng):
    words = ("Benennung", "Werkstoff", "EN AW-6082 T6", "Deckel mit Dichtnut", "Konstrukteur", "Masse", "S235JR",
             "Zeichnungsnummer", "Revision", "Freigabe", "Projekt", "Lieferant")
    records = []
    for _ in range(rng.randrange(60, 160)):
        text = f"{rng.choice(words)} {rng.randrange(10**rng.randrange(1, 7))}".encode("utf-16-le")
        records.append(struct.pack("<III", rng.randrange(200), 31, len(text) // 2) + text)
    return b"".join(records)


def CompoundDocument(rng, segments, target):
    """A file of sectors: header, streams (most of them compressed), free sectors, sector table, directory."""
    body, table, directory, size = [], [], [], 0

    def AddStream(name, data):
        nonlocal size
        sectors = -(-len(data) // kSector)
        start = len(table)
        table.extend([*range(start + 1, start + sectors), 0xFFFFFFFE])
        directory.append(DirectoryEntry(rng, name, start, len(data)))
        body.append(data.ljust(sectors * kSector, b"\0"))
        size += sectors * kSector

    AddStream("\x05SummaryInformation", PropertyStream(rng))
    while size < target:
        AddStream(f"B{rng.randrange(16**8):08x}{rng.randrange(16**8):08x}", segments.Draw(rng))
        if rng.random() < 0.15:
            AddStream("Properties", PropertyStream(rng))
        if rng.random() < 0.12:  # sectors that an earlier save has left free
            free = rng.randrange(1, 16)
            table.extend([0xFFFFFFFF] * free)
            body.append(bytes(free * kSector))
            size += free * kSector
        if rng.random() < 0.05:  # graphics that are kept as they are
            AddStream("Graphics", Mesh(rng, rng.randrange(4000, 40_000)))
    header = b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes(16) + struct.pack("<5H", 62, 4, 0xFFFE, 12, 6)
    listing = b"".join(directory)
    sectorTable = struct.pack(f"<{len(table)}I", *table)
    return (header.ljust(kSector, b"\xFF") + b"".join(body) + listing.ljust(-(-len(listing) // kSector) * kSector, b"\0")
            + sectorTable.ljust(-(-len(sectorTable) // kSector) * kSector, b"\xFF"))


# --- exchange texts -------------------------------------------------------------------------------------------

def Real(value):
    text = f"{value:.10g}"
    return text if "." in text or "e" in text else text + "."


def StepText(rng, target):
    """Faces with their edges, points and directions, as exchange files list them."""
    lines = ["ISO-10303-21;", "HEADER;", "FILE_DESCRIPTION((''),'2;1');", "ENDSEC;", "DATA;"]
    size, number = 0, 10
    x, y, z = (rng.uniform(-300, 300) for _ in range(3))

    def Add(text):
        nonlocal size, number
        number += 1
        lines.append(f"#{number}={text};")
        size += len(lines[-1]) + 1
        return number

    while size < target:
        x, y, z = x + rng.gauss(0, 5), y + rng.gauss(0, 5), z + rng.gauss(0, 1)
        points = []
        for _ in range(rng.randrange(2, 5)):
            point = Add(f"CARTESIAN_POINT('',({Real(x + rng.gauss(0, 3))},{Real(y + rng.gauss(0, 3))},{Real(z)}))")
            points.append((point, Add(f"VERTEX_POINT('',#{point})")))
        if rng.random() < 0.5:
            axis = rng.choice(("(0.,0.,1.)", "(1.,0.,0.)", "(0.,-1.,0.)"))
        else:
            axis = f"({Real(rng.uniform(-1, 1))},{Real(rng.uniform(-1, 1))},{Real(rng.uniform(-1, 1))})"
        direction = Add(f"DIRECTION('',{axis})")
        placement = Add(f"AXIS2_PLACEMENT_3D('',#{points[0][0]},#{direction},#{direction})")
        edges = []
        for (_, a), (_, b) in zip(points, points[1:]):
            curve = Add(f"CIRCLE('',#{placement},{Real(round(rng.uniform(1, 40), 1))})") if rng.random() < 0.3 else \
                Add(f"LINE('',#{points[0][0]},#{Add(f'VECTOR({chr(39)}{chr(39)},#{direction},1.)')})")
            edge = Add(f"EDGE_CURVE('',#{a},#{b},#{curve},.T.)")
            edges.append(Add(f"ORIENTED_EDGE('',*,*,#{edge},{rng.choice(('.T.', '.F.'))})"))
        loop = Add(f"EDGE_LOOP('',({','.join(f'#{edge}' for edge in edges)}))")
        bound = Add(f"FACE_OUTER_BOUND('',#{loop},.T.)")
        plane = Add(f"PLANE('',#{placement})")
        Add(f"ADVANCED_FACE('',(#{bound}),#{plane},.T.)")
    lines += ["ENDSEC;", "END-ISO-10303-21;", ""]
    return "\n".join(lines).encode()


def FacetText(rng, target):
    """Triangles, each with its normal and three corners, most of which stood in the triangle before."""
    lines, size = ["solid teil"], 0
    corners = [[rng.uniform(-100, 100) for _ in range(3)] for _ in range(3)]
    while size < target:
        corners = [*corners[1:], [c + rng.gauss(0, 2) for c in corners[-1]]]
        normal = [rng.uniform(-1, 1) for _ in range(3)]
        facet = "  facet normal " + " ".join(f"{n:.6e}" for n in normal) + "\n    outer loop\n"
        for corner in corners:
            facet += "      vertex " + " ".join(f"{c:.6e}" for c in corner) + "\n"
        lines.append(facet + "    endloop\n  endfacet")
        size += len(lines[-1]) + 1
    return "\n".join([*lines, "endsolid teil", ""]).encode()


# --- the mixes ------------------------------------------------------------------------------------------------

class Mix:
    """A folder that is filled file by file."""

    def __init__(self, folder, seeds):
        self.folder, self.seeds, self.size, self.count = folder, seeds, 0, 0

    def Random(self):
        return random.Random(f"{self.seeds} {self.folder.name} {self.count}")

    def Add(self, extension, data):
        path = self.folder / f"{self.count // 250:02}" / f"Datei {self.count:04}.{extension}"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)
        self.size += len(data)
        self.count += 1


def MakeCad(mix, total):
    segments = Segments(random.Random(f"{mix.seeds} segments"))
    while mix.size < total:
        rng = mix.Random()
        size = int(min(8 * kMegabyte, max(0.2 * kMegabyte, rng.lognormvariate(14, 0.9))))
        mix.Add("ipt", CompoundDocument(rng, segments, size))


def MakeCompound(mix, total):
    parts = kinds.CompoundParts(random.Random(f"{mix.seeds} parts"))
    while mix.size < total:
        rng = mix.Random()
        mix.Add("ipt", kinds.Compound(rng, rng.randrange(50_000, 4 * kMegabyte), parts))


def MakeText(mix, total):
    while mix.size < total:
        rng = mix.Random()
        size = rng.randrange(1 * kMegabyte, 8 * kMegabyte)
        if mix.count % 4 == 3:
            mix.Add("stl", FacetText(rng, size))
        else:
            mix.Add("stp", StepText(rng, size))


def MakeByKind(mix, total, table, least, most):
    while mix.size < total:
        rng = mix.Random()
        extension = list(table)[mix.count % len(table)]
        size = rng.randrange(least, most)
        mix.Add(extension, table[extension](rng, size)[:most])


def MakeSmall(mix, count):
    segments = Segments(random.Random(f"{mix.seeds} segments"))
    while mix.count < count:
        rng = mix.Random()
        size = rng.randrange(5000, 40_000)
        kind = rng.choice(("ipt", "ipt", "stp", "stl", "dat", "xml", "png"))
        if kind == "ipt":
            data = PropertyStream(rng) + segments.Draw(rng)
        elif kind == "stp":
            data = StepText(rng, size)
        elif kind == "stl":
            data = FacetText(rng, size)
        elif kind == "dat":
            data = Mesh(rng, size)
        elif kind == "xml":
            data = "".join(f'<row id="{n}"><name>Teil {rng.randrange(999)}</name><mass>{Real(rng.random())}</mass></row>\r\n'
                           for n in range(size // 60)).encode()
        else:
            data = b"\x89PNG\r\n\x1a\n" + segments.noise[rng.randrange(kMegabyte):][:size]
        mix.Add(kind, data.ljust(5000, b"\0")[:40_000])


def Main(target, divisor, seeds):
    def Size(megabytes):
        return megabytes * kMegabyte // divisor

    MakeCad(Mix(target / "cad", seeds), Size(300))
    MakeCompound(Mix(target / "compound", seeds), Size(200))
    MakeText(Mix(target / "text", seeds), Size(150))
    MakeByKind(Mix(target / "exchange", seeds), Size(60), kinds.kTexts, 500_000, 3 * kMegabyte)
    MakeSmall(Mix(target / "small", seeds), 5000 // divisor)
    MakeByKind(Mix(target / "assorted", seeds), Size(100), kinds.kSmall, 5000, 40_000)
    MakeByKind(Mix(target / "hard", seeds), Size(60), kinds.kHard, 400_000, 2 * kMegabyte)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    Main(Path(sys.argv[1]), int(sys.argv[2]), sys.argv[3])
