"""Writes a PDF without any package: lines of text in a font of this machine, which can be copied out again."""

from __future__ import annotations

import os
import struct
import zlib
from dataclasses import dataclass, field
from pathlib import Path

FOLDERS = ("/usr/share/fonts", "/usr/local/share/fonts", "~/.local/share/fonts", "~/.fonts", "/Library/Fonts",
           "/System/Library/Fonts/Supplemental")
FAMILIES = (("DejaVuSans.ttf", "DejaVuSans-Bold.ttf"), ("NotoSans-Regular.ttf", "NotoSans-Bold.ttf"),
            ("LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf"), ("Inter-Regular.ttf", "Inter-Bold.ttf"),
            ("FreeSans.ttf", "FreeSansBold.ttf"), ("Arial.ttf", "Arial Bold.ttf"))
WIDTH, HEIGHT = 595.28, 841.89  # A4, in points
LEFT, RIGHT, TOP, BOTTOM = 56, 56, 60, 60


class NoFont(Exception):
    """No font here can be embedded; the text says where was looked."""


class Font:
    """A TrueType file, and the characters of it that are used. Raises ValueError for what cannot be embedded."""

    def __init__(self, path: Path):
        self.data = path.read_bytes()
        try:
            count = struct.unpack_from(">H", self.data, 4)[0]
            self.tables = {}
            for place in range(12, 12 + 16 * count, 16):
                name, _, start, length = struct.unpack_from(">4sIII", self.data, place)
                self.tables[name] = start
            if b"glyf" not in self.tables:
                raise ValueError("not a TrueType font")
            head, hhea = self.tables[b"head"], self.tables[b"hhea"]
            self.unit = struct.unpack_from(">H", self.data, head + 18)[0]
            self.box = self.scaled(*struct.unpack_from(">4h", self.data, head + 36))
            self.ascent, self.descent = self.scaled(*struct.unpack_from(">2h", self.data, hhea + 4))
            self.metrics = struct.unpack_from(">H", self.data, hhea + 34)[0]
            self.glyphs = self.read_glyphs()
        except (struct.error, KeyError, IndexError, ZeroDivisionError) as error:
            raise ValueError(f"damaged font: {error}") from error
        self.name = "Sandbox+" + "".join(filter(str.isalnum, path.stem))
        # Numbers of our own, one a character: also one without a glyph comes out again when it is copied.
        self.used: dict[str, int] = {}

    def scaled(self, *values: int) -> list[int]:
        return [round(value * 1000 / self.unit) for value in values]

    def read_glyphs(self) -> dict[int, int]:
        cmap = self.tables[b"cmap"]
        found: dict[int, int] = {}
        for place in range(struct.unpack_from(">H", self.data, cmap + 2)[0]):
            platform, _, offset = struct.unpack_from(">HHI", self.data, cmap + 4 + 8 * place)
            form = struct.unpack_from(">H", self.data, cmap + offset)[0]
            if platform in (0, 3) and form == 4:
                found = self.read_segments(cmap + offset) | found
            elif platform in (0, 3) and form == 12:
                found |= self.read_groups(cmap + offset)
        return found

    def read_segments(self, at: int) -> dict[int, int]:
        double = struct.unpack_from(">H", self.data, at + 6)[0]
        numbers = lambda offset: struct.unpack_from(f">{double // 2}H", self.data, at + offset)
        ends, starts = numbers(14), numbers(16 + double)
        deltas, ranges = numbers(16 + 2 * double), numbers(16 + 3 * double)
        found = {}
        for place, (start, end, delta, reach) in enumerate(zip(starts, ends, deltas, ranges)):
            for code in range(start, min(end, 0xFFFE) + 1):
                glyph = code
                if reach:
                    row = at + 16 + 3 * double + 2 * place + reach + 2 * (code - start)
                    glyph = struct.unpack_from(">H", self.data, row)[0]
                    if not glyph:
                        continue
                found[code] = (glyph + delta) & 0xFFFF
        return found

    def read_groups(self, at: int) -> dict[int, int]:
        found = {}
        for place in range(struct.unpack_from(">I", self.data, at + 12)[0]):
            start, end, glyph = struct.unpack_from(">III", self.data, at + 16 + 12 * place)
            found |= {code: glyph + code - start for code in range(start, min(end, 0x10FFFF) + 1)}
        return found

    def glyph(self, sign: str) -> int:
        return self.glyphs.get(ord(sign), 0)

    def advance(self, sign: str) -> int:
        place = min(self.glyph(sign), self.metrics - 1)
        return self.scaled(struct.unpack_from(">H", self.data, self.tables[b"hmtx"] + 4 * place)[0])[0]

    def width(self, text: str, size: float) -> float:
        return sum(map(self.advance, text)) * size / 1000

    def encoded(self, text: str) -> str:
        return "".join(f"{self.used.setdefault(sign, len(self.used) + 1):04X}" for sign in text)


@dataclass
class Style:
    size: float
    bold: bool = False
    colour: tuple[float, float, float] = (0.13, 0.14, 0.17)
    before: float = 0.0
    indent: float = 0.0
    mark: str = ""  # stands before the first line, in the indent
    bar: bool = False


@dataclass
class Document:
    regular: Font
    bold: Font
    title: str
    pages: list[list[str]] = field(default_factory=list)
    y: float = 0.0

    def add(self, text: str, style: Style) -> None:
        font = self.bold if style.bold else self.regular
        height = style.size * 1.42
        self.y -= style.before
        for place, line in enumerate(wrapped(text, font, style.size, WIDTH - LEFT - RIGHT - style.indent)):
            if not self.pages or self.y - height < BOTTOM:
                self.pages.append([])
                self.y = HEIGHT - TOP
            self.y -= height
            if style.mark and place == 0:
                self.put(style.mark, font, style, LEFT + style.indent - font.width(style.mark + " ", style.size))
            if style.bar:
                below = self.y - style.size * 0.3
                self.pages[-1].append(f"0.36 0.42 0.94 rg {LEFT:.2f} {below:.2f} 2.5 {height:.2f} re f")
            self.put(line, font, style, LEFT + style.indent)

    def put(self, text: str, font: Font, style: Style, x: float) -> None:
        name = "B" if font is self.bold else "R"
        red, green, blue = style.colour
        self.pages[-1].append(f"BT {red} {green} {blue} rg /{name} {style.size} Tf {x:.2f} {self.y:.2f} Td "
                              f"<{font.encoded(text)}> Tj ET")

    def number_pages(self) -> None:
        self.y = BOTTOM / 2
        for place, page in enumerate(list(self.pages), 1):
            text, style = f"{place} / {len(self.pages)}", Style(8.5, colour=(0.5, 0.52, 0.57))
            x = WIDTH - RIGHT - self.regular.width(text, style.size)
            self.pages.append(page)  # `put` writes on the last one
            self.put(text, self.regular, style, x)
            self.pages.pop()

    def written(self) -> bytes:
        self.number_pages()
        file = File()
        names = [("R", self.regular)] + ([("B", self.bold)] if self.bold is not self.regular else [])
        fonts = " ".join(f"/{name} {add_font(file, font)} 0 R" for name, font in names)
        parent = file.reserve()
        kids = []
        for page in self.pages:
            content = file.stream("\n".join(page).encode())
            kids.append(file.add(f"<< /Type /Page /Parent {parent} 0 R /MediaBox [0 0 {WIDTH} {HEIGHT}] "
                                 f"/Resources << /Font << {fonts} >> >> /Contents {content} 0 R >>"))
        file.objects[parent - 1] = (f"<< /Type /Pages /Count {len(kids)} "
                                    f"/Kids [{' '.join(f'{kid} 0 R' for kid in kids)}] >>").encode()
        catalog = file.add(f"<< /Type /Catalog /Pages {parent} 0 R >>")
        info = file.add(f"<< /Title <FEFF{utf16(self.title)}> /Producer (sandbox) >>")
        return file.whole(catalog, info)


class File:
    """Numbered objects, and the table that leads to them."""

    def __init__(self):
        self.objects: list[bytes] = []

    def reserve(self) -> int:
        return self.add("null")

    def add(self, text: str) -> int:
        self.objects.append(text.encode())
        return len(self.objects)

    def stream(self, data: bytes, more: str = "") -> int:
        packed = zlib.compress(data)
        self.objects.append(f"<< /Length {len(packed)} /Filter /FlateDecode {more}>>\nstream\n".encode() + packed
                            + b"\nendstream")
        return len(self.objects)

    def whole(self, catalog: int, info: int) -> bytes:
        out = bytearray(b"%PDF-1.7\n%\xe2\xe3\xcf\xd3\n")
        places = []
        for number, content in enumerate(self.objects, 1):
            places.append(len(out))
            out += f"{number} 0 obj\n".encode() + content + b"\nendobj\n"
        start = len(out)
        out += f"xref\n0 {len(places) + 1}\n0000000000 65535 f \n".encode()
        out += "".join(f"{place:010d} 00000 n \n" for place in places).encode()
        out += (f"trailer\n<< /Size {len(places) + 1} /Root {catalog} 0 R /Info {info} 0 R >>\n"
                f"startxref\n{start}\n%%EOF\n").encode()
        return bytes(out)


def add_font(file: File, font: Font) -> int:
    signs = list(font.used)
    embedded = file.stream(font.data, f"/Length1 {len(font.data)} ")
    box = " ".join(map(str, font.box))
    descriptor = file.add(
        f"<< /Type /FontDescriptor /FontName /{font.name} /Flags 4 /FontBBox [{box}] /ItalicAngle 0 "
        f"/Ascent {font.ascent} /Descent {font.descent} /CapHeight {font.ascent} /StemV 80 "
        f"/FontFile2 {embedded} 0 R >>")
    glyphs = file.stream(struct.pack(f">{len(signs) + 1}H", 0, *map(font.glyph, signs)))
    widths = " ".join(str(font.advance(sign)) for sign in signs)
    descendant = file.add(
        f"<< /Type /Font /Subtype /CIDFontType2 /BaseFont /{font.name} /FontDescriptor {descriptor} 0 R /DW 1000 "
        f"/W [1 [{widths}]] /CIDToGIDMap {glyphs} 0 R "
        "/CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >> >>")
    return file.add(f"<< /Type /Font /Subtype /Type0 /BaseFont /{font.name} /Encoding /Identity-H "
                    f"/DescendantFonts [{descendant} 0 R] /ToUnicode {file.stream(unicode_map(signs))} 0 R >>")


def unicode_map(signs: list[str]) -> bytes:
    out = ["/CIDInit /ProcSet findresource begin 12 dict begin begincmap /CMapName /S def /CMapType 2 def",
           "1 begincodespacerange <0000> <FFFF> endcodespacerange"]
    for start in range(0, len(signs), 100):  # a block may hold no more
        block = signs[start:start + 100]
        out.append(f"{len(block)} beginbfchar")
        out += [f"<{start + place:04X}> <{utf16(sign)}>" for place, sign in enumerate(block, 1)]
        out.append("endbfchar")
    out.append("endcmap CMapName currentdict /CMap defineresource pop end end")
    return "\n".join(out).encode()


def utf16(text: str) -> str:
    return text.encode("utf-16-be").hex().upper()


def wrapped(text: str, font: Font, size: float, room: float) -> list[str]:
    lines, line, used = [], "", 0.0
    space = font.width(" ", size)
    for word in text.split():
        for part in pieces(word, font, size, room):
            width = font.width(part, size)
            if line and used + space + width > room:
                lines.append(line)
                line, used = part, width
            else:
                line, used = (f"{line} {part}", used + space + width) if line else (part, width)
    return lines + [line] if line else lines


def pieces(word: str, font: Font, size: float, room: float) -> list[str]:
    """The word itself, or parts of it when it is longer than a line."""
    if font.width(word, size) <= room:
        return [word]
    parts, part, used = [], "", 0.0
    for sign in word:
        width = font.width(sign, size)
        if part and used + width > room:
            parts.append(part)
            part, used = "", 0.0
        part, used = part + sign, used + width
    return [*parts, part]


def open_document(title: str) -> Document:
    """Raises NoFont."""
    given = os.environ.get("MURMELI_SANDBOX_FONTS")
    folders = given.split(os.pathsep) if given is not None else FOLDERS
    there: dict[str, Path] = {}
    for folder in folders:
        for root, _, names in os.walk(os.path.expanduser(folder)):
            for name in names:
                there.setdefault(name, Path(root) / name)
    for regular, bold in FAMILIES:
        font = usable(there.get(regular))
        if font:
            return Document(font, usable(there.get(bold)) or font, title)
    raise NoFont(f"no usable TrueType font with Cyrillic letters in {', '.join(folders)}")


def usable(path: Path | None) -> Font | None:
    try:
        font = Font(path) if path else None
    except (OSError, ValueError):
        return None
    return font if font and all(map(font.glyph, "Яя")) else None
