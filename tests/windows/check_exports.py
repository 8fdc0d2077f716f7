"""Checks what a built QVX64.dll shows to the world: its exports, imports, version and address, and
how it is protected. The checks `hardened` and `reproducible` are for programs, too."""

import argparse
import collections
import pathlib
import re
import struct
import subprocess
import sys

SOURCE = pathlib.Path(__file__).parents[2]
# Parts of every Windows. A compiler's runtime or a driver's library here would stop the DLL from
# loading on a machine without it.
SYSTEM_DLLS = {
    "hid.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "setupapi.dll",
    "user32.dll", "wininet.dll",
}
# Of the header, of a section's flags and of the data directories.
LOAD_FLAGS = {0x20: "for high-entropy addresses", 0x40: "for random addresses",
              0x100: "for data that is not executed"}
EXECUTABLE, WRITABLE = 0x20000000, 0x80000000
EXPORTS, RELOCATIONS = 0, 5
READ_ONLY_DIRECTORIES = {1: "import table", 12: "import address table", 0: "export table"}
# Why the system is asked to end the process at once.
FAST_FAILS = {2: "stack protector", 8: "check of string functions"}
DESCRIPTION = "QVX32 Dynamic Link Library"
SIMULATED_CAMERA = "127.0.0.1"


Section = collections.namedtuple("Section", "name size address file_size offset flags")


class Dll:
    def __init__(self, path, objdump):
        self.bytes = path.read_bytes()
        self.tables = subprocess.run(
            [objdump, "-p", path], check=True, capture_output=True, text=True).stdout

        headers, = struct.unpack_from("<I", self.bytes, 0x3C)
        count, self.time_stamp, optional_size = struct.unpack_from("<HI8xH", self.bytes, headers + 6)
        optional = headers + 24
        self.characteristics, = struct.unpack_from("<H", self.bytes, optional + 70)
        self.directories = [
            struct.unpack_from("<II", self.bytes, optional + 112 + 8 * i) for i in range(16)]
        self.sections = [
            Section(*struct.unpack_from("<8sIIII12xI", self.bytes, optional + optional_size + 40 * i))
            for i in range(count)]

    def section_at(self, address):
        return next(s for s in self.sections if s.address <= address < s.address + s.size)

    def exports(self):
        names = self.tables.split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
        return re.findall(r"^\s+\[\s*\d+\] (\S+)$", names, re.MULTILINE)

    def imported_dlls(self):
        return {name.lower() for name in re.findall(r"DLL Name: (\S+)", self.tables)}

    def version_numbers(self):
        """The file's and the product's version in the binary part of the version resource."""
        signature = struct.pack("<I", 0xFEEF04BD)
        words = struct.unpack_from("<8H", self.bytes, self.bytes.index(signature) + 8)
        order = (1, 0, 3, 2)  # the upper word of each pair is stored second
        return [".".join(str(words[first + i]) for i in order) for first in (0, 4)]

    def version_text(self, key):
        resource = self.bytes.decode("utf-16-le", "replace")
        match = re.search(f"{key}\0+([^\0]*)\0", resource)
        return match.group(1) if match else None

    def holds(self, text):
        """A compiler may spread a text over instructions, eight bytes in each."""
        pieces = [text[i:i + 8] for i in (*range(0, len(text) - 8, 8), len(text) - 8)]
        return all(piece.encode() in self.bytes for piece in pieces)


def declared_in_header(text):
    without_comments = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
    return re.findall(r"^QVX64_API [^;(]*?(\w+)\(", without_comments, re.MULTILINE)


def listed_in_def(text):
    return re.findall(r"^  (\S.*)$", text.split("EXPORTS")[1], re.MULTILINE)


def differences(what, found, expected):
    """One line per name that stands twice, is missing or should not be there."""
    yield from (f"{what}: {name} twice" for name in set(found) if found.count(name) > 1)
    yield from (f"{what}: {name} is missing" for name in sorted(set(expected) - set(found)))
    yield from (f"{what}: unexpected {name}" for name in sorted(set(found) - set(expected)))


def check_exports(dll, options):
    header = declared_in_header((SOURCE / "include/qvx64/api.h").read_text())
    if not header:
        yield "the header declares no function"
    yield from differences("the header", header, set(header))
    yield from differences(
        "the .def file", listed_in_def((SOURCE / "src/api/QVX64.def").read_text()), header)
    yield from differences("the DLL", dll.exports(), header)


def check_imports(dll, options):
    yield from (f"imports {name}" for name in sorted(dll.imported_dlls() - SYSTEM_DLLS))


def check_version(dll, options):
    expected = {
        "FileDescription": options.description, "FileVersion": options.version,
        "ProductVersion": options.version, "OriginalFilename": options.dll.name,
    }
    for number in dll.version_numbers():
        if number != options.version:
            yield f"version {number} instead of {options.version}"
    for key, value in expected.items():
        if dll.version_text(key) != value:
            yield f'{key} is "{dll.version_text(key)}" instead of "{value}"'


def check_address(dll, options):
    """A DLL that is shipped must not look for its camera on the developer's machine."""
    for address in {options.camera_address, SIMULATED_CAMERA}:
        expected = address == options.camera_address
        if dll.holds(f"http://{address}:8080/") != expected:
            yield f"the camera's address {address} is {'missing' if expected else 'in it'}"


def check_hardened(dll, options):
    for flag, name in LOAD_FLAGS.items():
        if not dll.characteristics & flag:
            yield f"it is not marked {name}"
    if dll.directories[RELOCATIONS][1] == 0:
        yield "it has no relocations and is always loaded at the same address"
    for directory, name in READ_ONLY_DIRECTORIES.items():
        address, size = dll.directories[directory]
        if size != 0 and dll.section_at(address).flags & WRITABLE:
            yield f"the {name} is writable"
    yield from (f"section {section.name} is writable and executable" for section in dll.sections
                if section.flags & WRITABLE and section.flags & EXECUTABLE)
    for reason, name in FAST_FAILS.items():
        if struct.pack("<BI", 0xB9, reason) + b"\xCD\x29" not in dll.bytes:  # mov ecx; int 29h
            yield f"there is no {name} in it"


def check_reproducible(dll, options):
    if dll.time_stamp != 0:
        yield "its header has a time stamp"
    address, size = dll.directories[EXPORTS]
    if size != 0:
        section = dll.section_at(address)
        if struct.unpack_from("<I", dll.bytes, section.offset + address - section.address + 4)[0]:
            yield "its export table has a time stamp"
    if str(SOURCE).encode() in dll.bytes:
        yield "it names the folder in which it was built"


CHECKS = {
    "exports": check_exports, "imports": check_imports, "version": check_version,
    "address": check_address, "hardened": check_hardened, "reproducible": check_reproducible,
}


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("check", choices=CHECKS)
    parser.add_argument("--dll", type=pathlib.Path, required=True)
    parser.add_argument("--objdump", default="x86_64-w64-mingw32-objdump")
    parser.add_argument("--version", help="for version")
    parser.add_argument("--description", default=DESCRIPTION, help="for version")
    parser.add_argument("--camera-address", help="for address")
    return parser.parse_args()


def main():
    options = parse_options()
    faults = list(CHECKS[options.check](Dll(options.dll, options.objdump), options))
    for fault in faults:
        print(f"{options.dll.name}: {fault}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
