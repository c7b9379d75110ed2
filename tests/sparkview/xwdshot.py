"""Screenshots of an X display as RGB rows (top first), read from xwd's
dump format (ZPixmap, 24 or 32 bits a pixel, TrueColor), with no library
beyond Python's own."""
import struct
import subprocess


def grab(display):
    """The whole screen: (width, height, rows), rows a list of bytes, 3 a pixel."""
    data = subprocess.run(["xwd", "-root", "-silent", "-display", display],
                          check=True, capture_output=True).stdout
    return parse(data)


def parse(data):
    header = struct.unpack(">25I", data[:100])
    header_size, _, _, depth, width, height = header[:6]
    byte_order, bits_per_pixel, bytes_per_line = header[7], header[11], header[12]
    red_mask, green_mask, blue_mask = header[14:17]
    ncolors = header[19]
    offset = header_size + ncolors * 12
    step = bits_per_pixel // 8
    if step not in (3, 4):
        raise ValueError("unsupported xwd pixel size %d" % bits_per_pixel)
    order = "<" if byte_order == 0 else ">"

    def shift(mask):
        s = 0
        while mask and not mask & 1:
            mask >>= 1
            s += 1
        return s

    shifts = [shift(m) for m in (red_mask, green_mask, blue_mask)]
    rows = []
    for y in range(height):
        line = data[offset + y * bytes_per_line: offset + y * bytes_per_line + width * step]
        out = bytearray(width * 3)
        for x in range(width):
            chunk = line[x * step: x * step + step]
            value = int.from_bytes(chunk, "little" if order == "<" else "big")
            for c in range(3):
                out[x * 3 + c] = (value >> shifts[c]) & 0xFF
        rows.append(bytes(out))
    return width, height, rows


def write_ppm(path, width, height, rows):
    with open(path, "wb") as f:
        f.write(b"P6\n%d %d\n255\n" % (width, height))
        for row in rows:
            f.write(row)
