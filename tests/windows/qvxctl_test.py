"""Runs the client beside simulated cameras: qvxctl_test.py BUILD_FOLDER commands|wifi|usb|hid

What it does against a camera's rules fails the test, as does an exit code that was not expected.
"""

import concurrent.futures
import contextlib
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).parents[2]
BUILD = pathlib.Path(sys.argv[1])
WINE = ROOT / "scripts/run-wine.sh"
CLIENT = BUILD / "qvxctl.exe"
SIMULATOR = BUILD / "qvx-simulator.exe"
ADDRESS = os.environ.get("QVX64_WIFI_CAMERA", "127.0.0.1")  # where the library looks
FIRST_PORT = 18080
LIMIT_S = 100
AT_ONCE = 4  # clients

# A camera of each family, and those that are special within one; each line in one simulator.
FAMILIES = {
    "wifi": ["wifi:0870 wifi:0890 wifi:091A wifi:0920 wifi:0922 wifi:0978 wifi:0998 wifi:09A0 "
             "wifi:09B0 wifi:09C4 wifi:09D0 wifi:09E0"],
    # One USB 3 camera at a time: the library opens the first, so two clients would share it.
    "usb": ["usb:0870 usb:0890 usb:0910 usb:0930 usb:09E2 usb3:09B0", "usb3:09B1"],
    "hid": ["hid:0870 hid:0920 hid:0968 hid:0985 hid:0998",
            "hid:09A0 hid:09C7 hid:09D0 hid:09E4"],
}

STEADY = (r'(\{"event":"magnification","field_of_view_um":\d[^,]*,"magnification":6[23]\.[^,]*,'
          r'"time":"[^"]*"\}\n)+')
# Beside the commands: their indexes are 0, 1, 2 and 90, the others are at ports of their own.
CAMERAS = ["usb:0970", "usb:09A0", "usb3:09B1", "wifi:0998,zoom=63"]
FAULTS = {"junk": "junk", "half": "half", "refuse": "refuse:90", "silent": "refuse"}
PLACES = {name: f"{ADDRESS}:{FIRST_PORT + i}" for i, name in enumerate(FAULTS)}
# Arguments, exit code, all of standard output or what is in standard error.
COMMANDS = [
    ("report {folder}/Größe.zip --no-serials --json", 0, r'\{"file":".*Größe.zip"\}\n'),
    ("watch --camera {refuse} --seconds 10 --json", 0,
     STEADY + r'\{"event":"silent","time":"[^"]*"\}\n'),
    ("watch --device 90 --seconds 3 --json", 0, STEADY),
    *((arguments, 2, said) for arguments, said in [
        ("", "command is required"), ("lsit", '"lsit"'), ("lens up", '"up"'), ("list --jsn", '"--jsn"'),
        ("list --json=1", "json"), ("list --seconds 3", "--seconds"), ("info --device", "--device"),
        ("exposure -5", "LINES: Value -5 not in range 0 to 65535"),
        ("exposure 70000", "LINES: Value 70000"), ("ae 300", "Value 300 not in range 0 to 255"),
        ("light quadrant 9 5", "Q: Value 9 not in range 0 to 4"),
        ("light quadrant 1", "N is required"), ("light switch -1", "N: Value -1"),
        ("light switch 17", "is not 0 to 16, 24, 32, 40 or 48"), ("lens pos 1000", "N: Value 1000"),
        ("snapshot ''", "name of a file"), ("modes 0x480", "Value 0 not"), ("modes 640", "WIDTHxHEIGHT"),
        ("info --device 8", "--device: 8"), ("watch --seconds nan", "--seconds: nan"),
        ("info --camera 1.2.3", "no IPV4"), ("info --camera 1.2.3.04", "no IPV4"),
        ("info --camera 1.2.3.4:0", "no IPV4"), ("call FOVx 0 inf", "fMag"),
        ("call GetConfig 4294967296", "deviceIndex: Value 4294967296"),
    ]),
    ("--device=0x5A call GetVideoDeviceIndex", 0, "90\n"),
    ("call GetVideoDeviceIndex --device 0 --device 090", 0, "90\n"),
    ("call FOVx 0 -- -63.4", 0, r"-5552\.050473186121\n"),
    ("--json call FOVx 0 0", 0, r'\{"result":null\}\n'),
    ("info --camera {silent}", 1, "no camera answers at {silent}\n"),
    ("info --device 90 --camera {silent}", 1, "no camera answers at {silent}"),
    ("info --device 5", 1, "no camera answers at index 5"),
    ("lens pos 5", 1, "no focus lens"),
    ("light quadrant 1 5", 1, "no such light"),
    ("exposure 5 --device 1", 1, "fixed"),
    ("ae --device 2 --json", 0, r'\{"automatic":true,"target":56\}\n'),
    ("info --camera {junk}", 1, "no camera answers at {junk}"),
    ("lens fine 5 --device 90", 1, "this camera has none"),
    ("snapshot {folder}/still.jpg --camera {half}", 1, "no camera answers|no whole picture"),
    ("snapshot {folder} --device 90", 4, "cannot replace"),
]


@contextlib.contextmanager
def simulator(cameras):
    """Runs beside the clients. It must have nothing to say against them."""
    with tempfile.TemporaryFile("w+") as said:
        process = subprocess.Popen(
            [WINE, SIMULATOR, "--no-page", "--address", ADDRESS, *cameras], text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=said)
        try:
            while process.stdout.readline() not in ("ready\n", ""):
                pass
            yield
        finally:
            process.send_signal(signal.SIGINT)
            process.communicate()
        said.seek(0)
        if violations := said.read():
            sys.exit(violations)


def run(arguments):
    """Exit code, standard output and standard error of a client, through files: what Wine starts
    beside a program would keep a pipe open."""
    with tempfile.TemporaryFile("w+") as printed, tempfile.TemporaryFile("w+") as said:
        code = subprocess.run([WINE, CLIENT, *arguments], stdin=subprocess.DEVNULL, stdout=printed,
                              stderr=said, timeout=LIMIT_S).returncode
        for file in (printed, said):
            file.seek(0)
        return code, printed.read().replace("\r\n", "\n"), said.read().replace("\r\n", "\n")


def is_report(path):
    """Whole, with the library's paths as the last thing and no serial number before them."""
    with zipfile.ZipFile(path) as archive:
        report = archive.read("report.txt").decode()
        return (archive.namelist() == ["report.txt", "trace.txt"] and archive.testzip() is None and
                "#(left out)#" in report and "0 differs" in report and "QVX64.dll" in report)


def fault_of_command(arguments, expected, pattern):
    with tempfile.TemporaryDirectory() as folder:
        places = {"folder": "Z:" + folder, **PLACES}
        words = [word.strip("'").format(**places) for word in arguments.split()]
        code, printed, said = run(words)
        files = pathlib.Path(folder).iterdir()
        left = [path.name for path in files if expected or not is_report(path)]
    pattern = pattern.format(**PLACES) if expected else pattern
    matches = re.search(pattern, said) if expected else re.fullmatch(pattern, printed)
    if code == expected and matches and not left:
        return None
    return f"{arguments}: {code}\n{printed}{said}{left}"


def commands(pool):
    faulty = [f"wifi:0998,zoom=63,port={FIRST_PORT + i},fault={fault}"
              for i, fault in enumerate(FAULTS.values())]
    with simulator(CAMERAS + faulty):
        yield from pool.map(lambda case: fault_of_command(*case), COMMANDS)


def selftests(pool, transport):
    """The client's walk through a whole camera, several side by side: most of it is pauses."""
    for cameras in map(str.split, FAMILIES[transport]):
        places = [["--device", str(i)] for i in range(len(cameras))]
        if transport == "wifi":
            ports = range(FIRST_PORT, FIRST_PORT + len(cameras))
            cameras = [f"{camera},port={port}" for camera, port in zip(cameras, ports)]
            places = [["--camera", f"{ADDRESS}:{port}"] for port in ports]
        with simulator(cameras):
            results = pool.map(lambda place: run([*place, "selftest"]), places)
            for camera, (code, printed, said) in zip(cameras, results):
                yield code and f"{camera}: {code}\n{printed}{said}"


def main():
    with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        for fault in commands(pool) if sys.argv[2] == "commands" else selftests(pool, sys.argv[2]):
            if fault:
                sys.exit(fault)


main()
