"""Reads what the tests look at in a Windows program: its headers and its resources."""
import struct
import zlib

ICON, GROUP_ICON, VERSION, MANIFEST = 3, 14, 16, 24


class PeFile:
    def __init__(self, path):
        self.data = path.read_bytes()
        header = self.number("<I", 0x3C)
        if self.data[header:header + 4] != b"PE\0\0":
            raise AssertionError(f"{path} is no Windows program")
        self.machine, section_count, self.time_stamp = struct.unpack_from("<HHI", self.data, header + 4)
        optional_size = self.number("<H", header + 20)
        optional = header + 24
        if self.number("<H", optional) != 0x20B:
            raise AssertionError(f"{path} has no 64-bit header")
        sections = [struct.unpack_from("<8sIIII", self.data, optional + optional_size + 40 * index)
                    for index in range(section_count)]
        # Of each section: where it will be, how long it is, and where it is in the file.
        self.sections = [(address, size, place) for _, _, address, size, place in sections]
        # The data directories begin 112 bytes into this header; the third is that of the resources.
        self.resource_root = self.place(self.number("<I", optional + 112 + 2 * 8))
        # By kind and then by number; each has one language.
        self.resources = {kind: {number: self.content(languages) for number, languages in
                                 self.entries(names)}
                          for kind, names in self.entries(0)}

    def number(self, form, place):
        return struct.unpack_from(form, self.data, place)[0]

    def place(self, address):
        for start, size, place in self.sections:
            if start <= address < start + size:
                return place + address - start
        raise AssertionError(f"no section holds {address:#x}")

    def entries(self, offset):
        """A directory of resources: pairs of an entry's number and the offset that it leads to."""
        place = self.resource_root + offset
        named, numbered = struct.unpack_from("<HH", self.data, place + 12)
        if named:
            raise AssertionError("a resource has a name in the place of a number")
        for index in range(numbered):
            number, target = struct.unpack_from("<II", self.data, place + 16 + 8 * index)
            yield number, target & 0x7FFFFFFF

    def content(self, languages):
        (_, leaf), = self.entries(languages)
        address, size = struct.unpack_from("<II", self.data, self.resource_root + leaf)
        place = self.place(address)
        return self.data[place:place + size]

    def fixed_version(self):
        """The file's and the product's version, as four numbers each."""
        data = self.resources[VERSION][1]
        fixed = data.index(struct.pack("<I", 0xFEEF04BD))
        high, low, product_high, product_low = struct.unpack_from("<IIII", data, fixed + 8)
        return tuple((upper >> 16, upper & 0xFFFF, lower >> 16, lower & 0xFFFF)
                     for upper, lower in ((high, low), (product_high, product_low)))

    def version_texts(self):
        """The texts that the system shows as the program's properties, by their names."""
        (_, _, _, blocks), = read_blocks(self.resources[VERSION][1])
        kinds = {name: children for name, _, _, children in blocks}
        (_, _, _, texts), = kinds["StringFileInfo"]
        return {name: value.decode("utf-16-le").rstrip("\0") for name, value, _, _ in texts}

    def icon(self):
        """The program's icon: the PNG image of each size."""
        group = self.resources[GROUP_ICON][min(self.resources[GROUP_ICON])]
        images = {}
        for index in range(struct.unpack_from("<H", group, 4)[0]):
            width, height, _, _, _, depth, size, number = struct.unpack_from("<BBBBHHIH", group, 6 + 14 * index)
            image = self.resources[ICON][number]
            if (width, depth, size) != (height, 32, len(image)):
                raise AssertionError(f"the icon's image {number} is not as its group says")
            images[width or 256] = image
        return images


def read_blocks(data):
    """The blocks of a version resource: of each its name, its value, whether that is a text, and the
    blocks in it."""
    blocks = []
    place = 0
    while place + 6 <= len(data):
        size, value_size, is_text = struct.unpack_from("<HHH", data, place)
        if size == 0:
            break
        end = place + size
        name_end = place + 6
        while data[name_end:name_end + 2] != b"\0\0":
            name_end += 2
        name = data[place + 6:name_end].decode("utf-16-le")
        value = align(name_end + 2)
        # The length of a text is counted in characters.
        value_end = min(end, value + value_size * (2 if is_text else 1))
        children = read_blocks(data[align(value_end):end]) if align(value_end) < end else []
        blocks.append((name, data[value:value_end], bool(is_text), children))
        place = align(end)
    return blocks


def align(place):
    return (place + 3) & ~3


def png_pixels(data):
    """Width, height and bytes (red, green, blue, opacity) of a PNG image of that kind."""
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise AssertionError("no PNG image")
    place, packed = 8, b""
    while place < len(data):
        size, kind = struct.unpack_from(">I4s", data, place)
        chunk = data[place + 8:place + 8 + size]
        if kind == b"IHDR":
            width, height, depth, colours, _, _, interlaced = struct.unpack(">IIBBBBB", chunk)
            if (depth, colours, interlaced) != (8, 6, 0):
                raise AssertionError("the image's pixels are of another kind")
        elif kind == b"IDAT":
            packed += chunk
        place += 12 + size
    return width, height, unfilter(zlib.decompress(packed), 4 * width)


def unfilter(rows, stride):
    """The bytes of a PNG image, from its rows with their filters."""
    above, pixels = bytearray(stride), bytearray()
    for start in range(0, len(rows), stride + 1):
        kind, row = rows[start], bytearray(rows[start + 1:start + 1 + stride])
        for index in range(stride):
            left = row[index - 4] if index >= 4 else 0
            corner = above[index - 4] if index >= 4 else 0
            up = above[index]
            row[index] = (row[index] + (0, left, up, (left + up) // 2, nearest(left, up, corner))[kind]) & 0xFF
        pixels += row
        above = row
    return bytes(pixels)


def nearest(left, up, corner):
    """Paeth's predictor."""
    guess = left + up - corner
    return min((left, up, corner), key=lambda value: abs(guess - value))
