"""Checks what a built QVX64.dll shows to the world: its exports, imports, version and address, and
how it is protected. The checks `hardened` and `reproducible` are for programs, too."""

import argparse
import os
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
LOAD_FLAGS = {"HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"}
TABLES = {".idata": "import table", ".edata": "export table", ".rdata": "constant data"}
# Why the system is asked to end the process at once.
FAST_FAILS = {2: "stack protector", 8: "check of string functions"}
DESCRIPTION = "QVX32 Dynamic Link Library"
SIMULATED_CAMERA = "127.0.0.1"


class Dll:
    def __init__(self, path, objdump):
        self.bytes = path.read_bytes()
        self.tables, sections = (subprocess.run(
            [objdump, option, path], check=True, capture_output=True, text=True,
            env={**os.environ, "TZ": "UTC"}).stdout for option in ("-p", "-h"))
        self.sections = {
            name: set(flags.split(", "))
            for name, flags in re.findall(r"^ +\d+ (\S+) .*\n +(.*?) *$", sections, re.MULTILINE)}

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
    yield from (f"it lacks {flag}" for flag in LOAD_FLAGS - set(dll.tables.split()))
    if re.search(r"^Entry 5 \w+ 0+ ", dll.tables, re.MULTILINE):
        yield "it has no relocations and is always loaded at the same address"
    for section, flags in dll.sections.items():
        if section in TABLES and "READONLY" not in flags:
            yield f"the {TABLES[section]} is writable"
        if "CODE" in flags and "READONLY" not in flags:
            yield f"section {section} is writable and executable"
    for reason, name in FAST_FAILS.items():
        if struct.pack("<BI", 0xB9, reason) + b"\xCD\x29" not in dll.bytes:  # mov ecx; int 29h
            yield f"there is no {name} in it"


def check_reproducible(dll, options):
    if "Jan  1 00:00:00 1970" not in dll.tables:
        yield "its header has a time stamp"
    if re.search(r"^Time/Date stamp\s+0*[1-9a-f]", dll.tables, re.MULTILINE):
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
