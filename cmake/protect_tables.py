"""Makes the import table and the runtime's tables of a linked program read-only, which GNU ld leaves
writable: protect_tables.py FILE. The system opens the import table for as long as it fills it in."""

import pathlib
import struct
import sys

READ_ONLY = (b".idata", b".CRT", b".rsrc")
WRITABLE = 0x80000000


def sections(image, headers):
    """Offsets of the section headers, behind the file header and the optional header."""
    count, optional_size = struct.unpack_from("<H12xH", image, headers + 6)
    first = headers + 24 + optional_size
    return range(first, first + 40 * count, 40)


def checksum(image):
    total = sum(struct.unpack(f"<{(len(image) + 1) // 2}H", image + b"\0" * (len(image) % 2)))
    while total > 0xFFFF:
        total = (total & 0xFFFF) + (total >> 16)
    return total + len(image)


def protect(image):
    headers, = struct.unpack_from("<I", image, 0x3C)
    for section in sections(image, headers):
        if image[section:section + 8].rstrip(b"\0") in READ_ONLY:
            flags, = struct.unpack_from("<I", image, section + 36)
            struct.pack_into("<I", image, section + 36, flags & ~WRITABLE)
    at = headers + 24 + 64
    struct.pack_into("<I", image, at, 0)
    struct.pack_into("<I", image, at, checksum(image))


def main():
    path = pathlib.Path(sys.argv[1])
    image = bytearray(path.read_bytes())
    protect(image)
    path.write_bytes(image)


if __name__ == "__main__":
    main()
