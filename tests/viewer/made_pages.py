"""The pages that the viewer is shown, written byte by byte: uncompressed TIFFs and a CALS file whose pixels are known."""
import struct

RED, GREEN, BLUE, YELLOW = (255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 0)
BLACK, WHITE = (0, 0, 0), (255, 255, 255)

# Page 1: coloured quarters, 96 dots per inch.
QUARTERS = (400, 300)
# Page 2: a fax of 4 x 4 inches at 204 x 98 dots per inch; its upper left quarter is black.
FAX = (816, 392)
# Page 3: cells of different colours, by a colour table, 96 dots per inch.
CELLS, CELL = (1600, 1200), (200, 150)

# A drawing in a CALS file, 48 dots per inch; its upper left quarter is black.
DRAWING = (128, 96)


def cell_color(column, row):
    """The colour of a cell of page 3."""
    return (column * 32, row * 32, 255 - column * 16 - row * 8)


class Page:
    """An image of one strip."""

    def __init__(self, size, dots_per_inch, bits, photometric, data, more=()):
        self.data = data
        samples = 3 if bits == 24 else 1
        self.fields = [
            (256, 4, [size[0]]), (257, 4, [size[1]]), (258, 3, [8] * 3 if samples == 3 else [bits]), (259, 3, [1]),
            (262, 3, [photometric]), (277, 3, [samples]), (278, 4, [size[1]]), (279, 4, [len(data)]),
            (282, 5, [dots_per_inch[0], 1]), (283, 5, [dots_per_inch[1], 1]), (296, 3, [2]),
        ]
        self.change(*more)

    def change(self, *fields):
        """Puts other values in the place of a tag's, or adds the tag."""
        for field in fields:
            self.fields = [old for old in self.fields if old[0] != field[0]] + [field]
        return self


def tiff(pages):
    """The bytes of a file, in Intel order. The data come last, so that a file cut off loses those of its last page."""
    directories, data = b"", b""
    sizes = [len(directory(page, 0, 0, 0)) for page in pages]
    data_start = 8 + sum(sizes)
    at = 8
    for page, size in zip(pages, sizes):
        following = at + size if page is not pages[-1] else 0
        directories += directory(page, at, data_start + len(data), following)
        data += page.data
        at += size
    return struct.pack("<2sHI", b"II", 42, 8) + directories + data


def directory(page, at, data_at, following):
    """A directory and its outside values, for the place `at` in the file."""
    fields = sorted(page.fields + [(273, 4, [data_at])])
    outside_at = at + 2 + 12 * len(fields) + 4
    entries, outside = b"", b""
    for tag, kind, values in fields:
        content = struct.pack("<%d%s" % (len(values), {2: "B", 3: "H", 4: "I", 5: "I"}[kind]), *values)
        count = len(values) // 2 if kind == 5 else len(values)
        if len(content) > 4:
            content, outside = struct.pack("<I", outside_at + len(outside)), outside + content
        entries += struct.pack("<HHI", tag, kind, count) + content.ljust(4, b"\0")
    return struct.pack("<H", len(fields)) + entries + struct.pack("<I", following) + outside


def quarters():
    width, height = QUARTERS
    upper = bytes(RED) * (width // 2) + bytes(GREEN) * (width // 2)
    lower = bytes(BLUE) * (width // 2) + bytes(YELLOW) * (width // 2)
    return Page(QUARTERS, (96, 96), 24, 2, upper * (height // 2) + lower * (height // 2))


def fax():
    width, height = FAX
    upper = b"\xff" * (width // 16) + b"\0" * (width // 16)
    return Page(FAX, (204, 98), 1, 0, upper * (height // 2) + bytes(width // 8) * (height // 2))


def cells():
    columns, rows = CELLS[0] // CELL[0], CELLS[1] // CELL[1]
    colors = [cell_color(number % columns, number // columns) for number in range(columns * rows)]
    colors += [BLACK] * (256 - len(colors))
    data = b""
    for row in range(rows):
        data += b"".join(bytes([row * columns + column]) * CELL[0] for column in range(columns)) * CELL[1]
    return Page(CELLS, (96, 96), 8, 3, data, [(320, 3, [color[i] * 257 for i in range(3) for color in colors])])


def centimetres():
    """A fax of 4 x 4 cm whose resolution is told in dots per centimetre; its upper left quarter is black."""
    width, height = 320, 160
    upper = b"\xff" * (width // 16) + b"\0" * (width // 16)
    page = Page((width, height), (80, 40), 1, 0, upper * (height // 2) + bytes(width // 8) * (height // 2))
    return page.change((296, 3, [3]))


def endless():
    """Lines of 32000 inches, a pixel to the inch. The first and the fourth pixel of each are black."""
    width, height = 32000, 8
    return Page((width, height), (1, 1), 1, 0, (b"\x90" + bytes(width // 8 - 1)) * height)


def three_pages():
    return tiff([quarters(), fax(), cells()])


def pages_with_a_bad_one():
    """The second one has a compression that nobody knows."""
    return tiff([quarters(), fax().change((259, 3, [50000])), fax()])


def pages_with_jpeg():
    """The second one needs the companion module."""
    tables = [(tag, 4, [8] * 3) for tag in (519, 520, 521)]
    tile = [(530, 3, [2, 1]), (322, 4, [QUARTERS[0]]), (323, 4, [QUARTERS[1]]), (324, 4, [8]), (325, 4, [8])]
    return tiff([quarters(), quarters().change((259, 3, [6]), (512, 3, [1]), *tables, *tile), fax()])


def cut_off(*pages_before):
    """A file of whose last page 100 lines are there."""
    page = quarters()
    return tiff([*pages_before, page])[:-len(page.data) + 100 * QUARTERS[0] * 3]


def drawing():
    """A CALS file. In its Group 4 code 1 means that a line's change lies where that of the line above does."""
    black_half = "001" "00110101" "0000001111" "0000110111" "1"  # horizontal: 0 white, 64 black pixels
    white_below_black = "0001" "1"                               # the black run above is passed over
    end = "000000000001" * 2
    half = DRAWING[1] // 2
    bits = black_half + "111" * (half - 1) + white_below_black + "1" * (half - 1) + end
    bits += "0" * (-len(bits) % 8)
    records = ["srcdocid: NONE", "dstdocid: NONE", "txtfilid: NONE", "figid: NONE", "srcgph: NONE", "doccls: NONE",
               "rtype: 1", "rorient: 000,270", "rpelcnt: %06d,%06d" % DRAWING, "rdensty: 0048", "notes: a drawing"]
    header = b"".join(record.encode().ljust(128) for record in records).ljust(2048)
    return header + int(bits, 2).to_bytes(len(bits) // 8, "big")


def drawing_cut_off():
    """The same with half of its code."""
    whole = drawing()
    return whole[:(2048 + len(whole)) // 2]
