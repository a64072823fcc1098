"""Kinds of files beside those of mixes.py, so that packing is measured on more than what it was made with."""
import base64
import json
import math
import struct
import zlib

kWords = ("Welle", "Lager", "Gehäuse", "Deckel", "Schraube", "Dichtung", "Flansch", "Bohrung", "Fläche", "Skizze", "Kante",
          "Ebene", "Toleranz", "Radius", "Material", "Prüfung", "Auftrag", "Position", "Stückliste", "Freigabe")


def Sentence(rng, words):
    return " ".join(rng.choice(kWords) for _ in range(words)) + rng.choice((".", ",", ";", f" {rng.randrange(10_000)}"))


def Lines(size, makeLine, end="\n"):
    """At least `size` characters of lines; `makeLine` gets each line's number."""
    lines, length = [], 0
    while length < size:
        lines.append(makeLine(len(lines)))
        length += len(lines[-1]) + len(end)
    return end.join(lines) + end


# --- compound documents ---------------------------------------------------------------------------------------

def Grid(rng, size):
    """Integers that change slowly from record to record."""
    values, records = [rng.randrange(1 << 20) for _ in range(6)], []
    for i in range(size // 28):
        values = [value + rng.randrange(-40, 41) for value in values]
        records.append(struct.pack("<6iHH", *values, i & 0xFFFF, rng.randrange(12)))
    return b"".join(records)


class CompoundParts:
    """Deflate segments, made once: real ones, and noise that stands for more of them."""

    def __init__(self, rng):
        self.segments = []
        for _ in range(60):
            self.segments.append(zlib.compress(Grid(rng, int(rng.lognormvariate(10.5, 1.2)) + 600), rng.choice((1, 6, 9))))
        self.noise = rng.randbytes(4_000_000)

    def Segment(self, rng):
        if rng.random() < 0.25:
            return rng.choice(self.segments)
        size = min(400_000, int(rng.lognormvariate(9.8, 1.3)) + 200)
        begin = rng.randrange(len(self.noise) - size)
        return b"\x78\x9c" + self.noise[begin:begin + size]


def Compound(rng, target, parts):
    """Small sectors, allocation tables between them, padding of zeros, a directory in UTF-16."""
    sector = rng.choice((512, 512, 4096))
    table, body, names, size = [], [], [], 0

    def Add(data, padding=0):
        nonlocal size
        data = data.ljust(-(-len(data) // sector) * sector + padding, b"\0")
        first = len(table)
        table.extend([*range(first + 1, first + len(data) // sector), 0xFFFFFFFE])
        body.append(data)
        size += len(data)
        return first

    written = 0
    while size < target:
        kind = rng.random()
        padding = rng.choice((0, 0, 0, 1, 3, 8, 40)) * 512 // sector * sector
        if kind < 0.8:
            data = parts.Segment(rng)
        elif kind < 0.9:  # small records, each padded
            data = b"".join(Sentence(rng, 3).encode("utf-16-le").ljust(128, b"\0") for _ in range(rng.randrange(20, 200)))
        elif kind < 0.95:
            data = Grid(rng, rng.randrange(2000, 20_000))
        else:
            data = bytes(rng.randrange(1000, 60_000))
        names.append((f"{rng.choice(kWords)}_{len(names)}", Add(data, padding), len(data)))
        while len(table) - written >= sector // 4:  # a sector of the allocation table
            Add(struct.pack(f"<{sector // 4}I", *table[written:written + sector // 4]))
            written += sector // 4
    directory = b""
    for name, first, length in names:
        text = name.encode("utf-16-le")
        directory += struct.pack("<64sHBB3i", text, len(text) + 2, 2, 1, -1, -1, -1).ljust(116, b"\0")
        directory += struct.pack("<IQ", first, length)
    Add(directory)
    return b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1".ljust(sector, b"\xFF") + b"".join(body)


# --- texts ----------------------------------------------------------------------------------------------------

def Iges(rng, size):
    """Lines of 80 columns with section letter and number."""
    x = rng.uniform(-100, 100)

    def Line(i):
        nonlocal x
        x += rng.gauss(0, 1)
        values = f"{rng.choice((100, 110, 126, 128))}," + ",".join(f"{x * rng.choice((1, -1, 2)):.7g}D0" for _ in range(4)) + ","
        return f"{values[:64]:<64}{i // 3 * 2 + 1:>8}P{i + 1:>7}"

    return Lines(size, Line).encode()


def Dxf(rng, size):
    """A code and a value in turn, each on a line of its own."""
    def Entity(i):
        values = "".join(f"\r\n {code}\r\n{rng.uniform(-500, 500):.{rng.choice((1, 4, 15))}f}" for code in (10, 20, 30, 11, 21, 31))
        return f"  0\r\n{rng.choice(('LINE', 'LINE', 'ARC', 'VERTEX'))}\r\n  5\r\n{0x1A0 + i:X}\r\n  8\r\nLayer{rng.randrange(9)}{values}"

    return Lines(size, Entity, "\r\n").encode()


def Obj(rng, size):
    """Points, then faces that name them."""
    z = [rng.uniform(-9, 9)]

    def Line(i):
        z[0] += rng.gauss(0, 0.01)
        if i % 3 < 2:
            return f"v {math.sin(i / 99) * 40:.6f} {math.cos(i / 99) * 40:.6f} {z[0]:.6f}"
        return f"f {i}//{i} {i + 1}//{i + 1} {i + 1 + rng.randrange(40)}//{i}"

    return Lines(size, Line).encode()


# --- small files ----------------------------------------------------------------------------------------------

def Ini(rng, size):
    return Lines(size, lambda i: f"[{rng.choice(kWords)}{i}]" if i % 9 == 0 else f"{rng.choice(kWords)}={rng.randrange(10**6)}",
                 "\r\n").encode("latin-1")


def Csv(rng, size):
    return Lines(size, lambda i: f"{i};{Sentence(rng, 2)};{rng.uniform(0, 99):.2f};{rng.randrange(2)};{rng.choice(kWords)}").encode()


def Json(rng, size):
    return json.dumps([{"id": i, "name": Sentence(rng, 2), "pos": [round(rng.uniform(-9, 9), 3) for _ in range(3)],
                        "aktiv": rng.random() < 0.5} for i in range(size // 110 + 1)], indent=1).encode()


def Log(rng, size):
    return Lines(size, lambda i: f"2024-05-{i // 500 + 1:02} {i // 60 % 24:02}:{i % 60:02}:{rng.randrange(60):02} "
                                 f"{rng.choice(('INFO', 'INFO', 'WARN', 'ERROR'))} {Sentence(rng, rng.randrange(3, 9))}").encode()


def Code(rng, size):
    return Lines(size, lambda i: "  " * (i % 4) + rng.choice(("if ({} > {}) {{", "return {} + {};", "{} = {};", "}}", "// {} {}",
                 "for (int i = 0; i < {}; ++i) {}(i);")).format(rng.choice(kWords).lower(), rng.randrange(99))).encode()


def Letter(rng, size):
    return Lines(size // 2, lambda i: Sentence(rng, rng.randrange(4, 12)), "\r\n").encode("utf-16")


def Bitmap(rng, size):
    side = int(math.sqrt(size / 3))
    rows = [bytes(side * 3)]
    for _ in range(side):
        row = bytearray(rows[-1])
        for _ in range(rng.randrange(4)):
            begin = rng.randrange(side)
            length = rng.randrange(1, side)
            row[begin * 3:(begin + length) * 3] = rng.randbytes(3) * min(length, side - begin)
        rows.append(bytes(row[:side * 3]))
    return struct.pack("<2sI2HI3I2H", b"BM", size, 0, 0, 54, 40, side, side, 1, 24).ljust(54, b"\0") + b"".join(rows)


def Wave(rng, size):
    pitch = rng.uniform(30, 90)
    return struct.pack("<4sI4s", b"RIFF", size, b"WAVE") + b"".join(
        struct.pack("<h", int(8000 * math.sin(i / pitch) + rng.gauss(0, 200))) for i in range(size // 2))


def Records(rng, size):
    return b"".join(struct.pack("<IIff8s", i, rng.randrange(400), rng.uniform(0, 1), rng.choice((0.0, 1.0, 25.4)),
                                rng.choice(kWords).encode()[:8]) for i in range(size // 24))


def Noise(rng, size):
    return b"\xFF\xD8\xFF\xE0\x00\x10JFIF" + rng.randbytes(size)


def Packed(rng, size):
    return b"PK\x03\x04" + zlib.compress(Grid(rng, size * 2), 6)


kSmall = {"ini": Ini, "csv": Csv, "json": Json, "log": Log, "cs": Code, "txt": Letter, "bmp": Bitmap, "wav": Wave, "tab": Records,
          "jpg": Noise, "jpeg": Noise, "docx": Packed, "igs": Iges, "dxf": Dxf}


# --- hard cases -----------------------------------------------------------------------------------------------

def Base64(rng, size):
    return base64.encodebytes(rng.randbytes(size * 3 // 4))


def Doubles(rng, size):
    value, values = rng.uniform(-100, 100), []
    for _ in range(size // 8):
        value += rng.gauss(0, 0.5)
        values.append(struct.pack("<d", value))
    return b"".join(values)


def Repeats(rng, size):
    """Random data, of which some stood at a distance before."""
    data = bytearray(rng.randbytes(40_000))
    while len(data) < size:
        data += rng.randbytes(rng.randrange(200, 12_000))
        distance, length = rng.randrange(1000, 32_000), rng.randrange(50, 3000)
        data += data[-distance:][:length]
    return bytes(data)


def FourBits(rng, size):
    return bytes(value & 0x0F for value in rng.randbytes(size))


def Gray(rng, size):
    side = int(math.sqrt(size))
    waves = [rng.uniform(20, 90) for _ in range(4)]
    columns = [30 * math.sin(x / waves[0]) + 20 * math.cos(x / waves[1]) for x in range(side)]
    rows = []
    for y in range(side):
        base = 128 + 30 * math.sin(y / waves[2]) + 20 * math.sin(y / waves[3])
        rows.append(bytes(int(base + column) + (noise & 3) & 0xFF for column, noise in zip(columns, rng.randbytes(side))))
    return b"P5".ljust(32) + b"".join(rows)


kHard = {"b64": Base64, "f64": Doubles, "rep": Repeats, "nib": FourBits, "pgm": Gray}
kTexts = {"igs": Iges, "dxf": Dxf, "obj": Obj}
