"""Pictures of the screen as PNG files, and small copies side by side. Pixels are rows of blue, green, red, unused."""

import struct
import zlib


class Picture:
    def __init__(self, width, height, pixels):
        self.width, self.height, self.pixels = width, height, pixels

    def part(self, left, top, width, height):
        row = self.width * 4
        lines = (self.pixels[y * row + left * 4:y * row + (left + width) * 4] for y in range(top, top + height))
        return Picture(width, height, b"".join(lines))

    def box_of(self, colour):
        """Left, top, right, bottom of all pixels of a colour (red, green, blue); none if there is no such pixel."""
        red, green, blue = colour
        wanted, row = bytes((blue, green, red)), self.width * 4
        left, right, rows = self.width, -1, []
        for y in range(self.height):
            line = self.pixels[y * row:(y + 1) * row]
            first = aligned(line, wanted, line.find, 1)
            if first < 0:
                continue
            rows.append(y)
            left, right = min(left, first), max(right, aligned(line, wanted, line.rfind, -1))
        return (left, rows[0], right + 1, rows[-1] + 1) if rows else None

    def changes(self, other):
        """Left, top, right, bottom of what differs from a picture of the same size; none if nothing does."""
        row, left, right, rows = self.width * 4, self.width, -1, []
        for y in range(self.height):
            mine, others = (picture.pixels[y * row:(y + 1) * row] for picture in (self, other))
            if mine == others:
                continue
            rows.append(y)
            changed = [x for x in range(self.width) if mine[x * 4:x * 4 + 3] != others[x * 4:x * 4 + 3]]
            left, right = min(left, changed[0]), max(right, changed[-1])
        return (left, rows[0], right + 1, rows[-1] + 1) if rows else None

    def smaller(self, factor):
        """Each pixel the mean of factor × factor (4 at most: sums have 16 bits)."""
        width, height = self.width // factor, self.height // factor
        whole = self.part(0, 0, width * factor, height * factor).pixels
        out = bytearray(width * height * 4)
        for channel in range(3):
            out[channel::4] = mean(whole, channel, factor, width, height)
        return Picture(width, height, bytes(out))

    def save(self, path):
        size = self.width * self.height
        rgb = bytearray(size * 3)
        for to, source in enumerate((2, 1, 0)):
            rgb[to::3] = self.pixels[source::4]
        row = self.width * 3
        lines = b"".join(b"\0" + rgb[y * row:(y + 1) * row] for y in range(self.height))
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            for kind, data in ((b"IHDR", header), (b"IDAT", zlib.compress(lines, 3)), (b"IEND", b"")):
                file.write(struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)))


def aligned(line, wanted, search, step):
    """The first or last pixel of a row with these bytes: what is found between two pixels does not count."""
    at = search(wanted)
    while at >= 0 and at % 4:
        at = line.find(wanted, at + 1) if step > 0 else line.rfind(wanted, 0, at + 2)
    return at // 4 if at >= 0 else -1


def mean(pixels, channel, factor, width, height):
    """One channel of a smaller picture, added up as two numbers of 16-bit digits."""
    def digits(plane):
        wide = bytearray(len(plane) * 2)
        wide[::2] = plane
        return int.from_bytes(wide, "little")

    across = sum(digits(pixels[4 * dx + channel::4 * factor]) for dx in range(factor))
    rows = across.to_bytes(width * height * factor * 2, "little")
    row = width * 2
    total = 0
    for dy in range(factor):
        lines = b"".join(rows[y * row:(y + 1) * row] for y in range(dy, height * factor, factor))
        total += int.from_bytes(lines, "little")
    sums = total.to_bytes(width * height * 2, "little")
    area = factor * factor
    table = bytes(min(255, value * 256 // area) for value in range(256))  # of the upper byte
    low = bytes(value // area for value in range(256))
    upper, lower = sums[1::2].translate(table), sums[::2].translate(low)
    return bytes(min(255, a + b) for a, b in zip(upper, lower))


def sheet(pictures, across):
    """Pictures side by side, row by row, on white."""
    width = max(picture.width for picture in pictures)
    height = max(picture.height for picture in pictures)
    gap = 6
    line = (width + gap) * across * 4
    lines = []
    for first in range(0, len(pictures), across):
        row = pictures[first:first + across]
        for y in range(height + gap):
            parts = [padded(picture, y, width + gap) for picture in row]
            lines.append(b"".join(parts).ljust(line, b"\xff"))
    return Picture((width + gap) * across, len(lines), b"".join(lines))


def padded(picture, y, width):
    row = picture.width * 4
    line = picture.pixels[y * row:(y + 1) * row] if y < picture.height else b""
    return line.ljust(width * 4, b"\xff")
