"""Writes the package's texts: README.txt, NOTICES.txt and the documents: texts.py PACKAGE VERSION"""

import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).parents[2]
INSTALLED = pathlib.Path("/usr/share/doc")
FETCHED = SOURCE / "build/third_party"
# What is linked in, where, and the copyright file of the Debian package that it comes from.
LINKED = (
    ("GCC's runtime and the C++ library", "all programs",
     INSTALLED / "g++-mingw-w64-x86-64-posix/copyright"),
    ("mingw-w64's runtime and winpthreads", "all programs",
     INSTALLED / "mingw-w64-x86-64-dev/copyright"),
    ("CLI11", "qvxctl.exe and qvx-simulator.exe", INSTALLED / "libcli11-dev/copyright"),
    ("jsoncpp", "QVX64.dll, qvxctl.exe and qvx-simulator.exe", "libjsoncpp-*/debian/copyright"),
    ("cpp-httplib", "qvx-simulator.exe", "cpp-httplib-*/debian/copyright"),
    ("libjpeg-turbo", "qvx-simulator.exe", "libjpeg-turbo-*/debian/copyright"),
)
ACKNOWLEDGEMENT = (
    "This software is based in part on the work of the Independent JPEG Group.\n")
# The build folders of the repository are folders of the package, and its scripts are not there.
PLACES = (
    (re.compile(r"scripts/run-wine\.sh "), ""),
    (re.compile(r"; `scripts/\S*` writes this file|`scripts/build\.sh` builds them\. "), ""),
    (re.compile(r"build/windows/(?=qvxctl|QVX64)"), "bin/"),
    (re.compile(r"build/(?:simulator|windows)/"), "simulator/"),
)


def copyright_of(place):
    if isinstance(place, pathlib.Path):
        return place.read_text()
    found = list(FETCHED.glob(place))
    if len(found) != 1:
        sys.exit(f"package: {len(found)} files {FETCHED / place}; scripts/setup.sh fetches one")
    return found[0].read_text()


def notices():
    parts = [f"What is linked into these programs, and under which terms.\n\n{ACKNOWLEDGEMENT}"]
    for name, where, place in LINKED:
        parts.append(f"{'=' * 80}\n{name}, in {where}\n{'=' * 80}\n\n{copyright_of(place)}")
    return "\n".join(parts)


def document(text, package):
    """Without links to what is not in the package, and with the package's folders."""
    def link(match):
        target = match.group(2).split("#")[0]
        inside = not target or "://" in target or (package / "doc" / target).exists()
        return match.group(0) if inside else match.group(1)

    for pattern, replacement in PLACES:
        text = pattern.sub(replacement, text)
    return re.sub(r"\[([^]]*)\]\(([^)]*)\)", link, text)


def main(folder, version):
    package = pathlib.Path(folder)
    readme = (SOURCE / "scripts/package/README.txt").read_text().replace("VERSION", version, 1)
    documents = list((SOURCE / "docs").glob("*.md"))
    for path in documents:
        (package / "doc" / path.name).touch()  # links between them stay
    for path in documents:
        (package / "doc" / path.name).write_text(document(path.read_text(), package))
    # For Windows' own editors.
    (package / "README.txt").write_text(readme, newline="\r\n")
    (package / "NOTICES.txt").write_text(notices(), newline="\r\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
