"""Checks what QVX64.dll and the programs that ship with it show to the world: exports, imports,
version, the camera's address, how they are protected, and that nothing in them tells where they
were built."""

import argparse
import collections
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
DESCRIPTIONS = {
    "QVX64.dll": "QVX32 Dynamic Link Library", "qvxctl.exe": "QVX64 command-line client",
    "qvx-simulator.exe": "QVX64 simulated cameras",
}
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


def check_exports(dll, options):
    header = re.sub(r"/\*.*?\*/", "", (SOURCE / "include/qvx64/api.h").read_text(), flags=re.DOTALL)
    declared = re.findall(r"^QVX64_API [^;(]*?(\w+)\(", header, re.MULTILINE)
    exports = (SOURCE / "src/api/QVX64.def").read_text().split("EXPORTS")[1]
    listed = re.findall(r"^  (\S.*)$", exports, re.MULTILINE)
    if not declared:
        yield "the header declares no function"
    for what, found in (("the .def file", listed), ("the DLL", dll.exports())):
        surplus, missing = collections.Counter(found), collections.Counter(declared)
        yield from (f"{what}: unexpected {name}" for name in surplus - missing)
        yield from (f"{what}: {name} is missing" for name in missing - surplus)


def check_imports(dll, options):
    yield from (f"imports {name}" for name in sorted(dll.imported_dlls() - SYSTEM_DLLS))


def check_version(dll, options):
    expected = {
        "FileDescription": DESCRIPTIONS[options.file.name], "FileVersion": options.version,
        "ProductVersion": options.version, "OriginalFilename": options.file.name,
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


def faults(options):
    dll = Dll(options.file, options.objdump)
    checks = [check_version, check_hardened, check_reproducible]
    if options.file.suffix == ".dll":
        checks += [check_exports, check_imports, check_address]
    for check in checks:
        yield from check(dll, options)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("--objdump", default="x86_64-w64-mingw32-objdump")
    parser.add_argument("--version", required=True)
    parser.add_argument("--camera-address", required=True)
    options = parser.parse_args()
    found = list(faults(options))
    for fault in found:
        print(f"{options.file.name}: {fault}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
