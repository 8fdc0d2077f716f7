"""Makes a zip of a folder that depends on nothing but its files: make_zip.py FOLDER ZIP TIME

The files' order, times (TIME, in seconds since 1970), modes and owners are always the same. The zip
is written under another name first: it is there whole or not at all.
"""

import os
import pathlib
import sys
import time
import zipfile

REGULAR_FILE = 0o100644
UNIX = 3


def entry(path, folder, date_time):
    info = zipfile.ZipInfo(path.relative_to(folder.parent).as_posix(), date_time)
    info.external_attr = REGULAR_FILE << 16
    info.create_system = UNIX
    info.compress_type = zipfile.ZIP_DEFLATED
    return info


def main(folder, target, seconds):
    folder = pathlib.Path(folder)
    date_time = time.gmtime(int(seconds))[:6]
    unfinished = target + ".part"
    try:
        with zipfile.ZipFile(unfinished, "w", compresslevel=9) as archive:
            for path in sorted(path for path in folder.rglob("*") if path.is_file()):
                archive.writestr(entry(path, folder, date_time), path.read_bytes())
        os.replace(unfinished, target)
    except OSError as error:
        pathlib.Path(unfinished).unlink(missing_ok=True)
        sys.exit(f"package: cannot write {target}: {error.strerror}")


if __name__ == "__main__":
    main(*sys.argv[1:])
