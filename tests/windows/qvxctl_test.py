"""Runs the client with simulated cameras: qvxctl_test.py BUILD_FOLDER commands|wifi|usb|hid|usb3

What it does against a camera's rules fails the test, as does an exit code that was not expected.
"""

import concurrent.futures
import os
import pathlib
import re
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
SILENT_PORT, FIRST_PORT = 8079, 18080

# How a client runs with a camera; "{}" is the product id and options.
RUNS = {
    "none": [WINE, CLIENT],
    **{transport: [WINE, SIMULATOR, "--no-page", "--address", ADDRESS, transport + ":{}", "--", CLIENT]
       for transport in ("wifi", "usb", "hid", "usb3")},
}

# A product id of each family, and those that are special within one.
FAMILIES = {
    "wifi": "0870 0890 091A 0920 0922 0978 0998 09A0 09B0 09C4 09D0 09E0",
    "usb": "0870 0890 0910 0930 09E2",
    "hid": "0870 0920 0968 0985 0998 09A0 09C7 09D0 09E4",
    "usb3": "09B0 09B1",
}
AT_ONCE = 4  # clients

STEADY = (r'(\{"event":"magnification","field_of_view_um":\d[^,]*,"magnification":6[23]\.[^,]*,'
          r'"time":"[^"]*"\}\n)+')
# Camera, arguments, exit code, all of standard output or what is in standard error.
COMMANDS = [
    *(("none:", arguments, 2, said) for arguments, said in [
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
    *(("none:", arguments, 0, printed) for arguments, printed in [
        ("--device=0x5A call GetVideoDeviceIndex", "90\n"),
        ("call GetVideoDeviceIndex --device 0 --device 090", "90\n"),
        ("call FOVx 0 -- -63.4", r"-5552\.050473186121\n"),
        ("--json call FOVx 0 0", r'\{"result":null\}\n'),
    ]),
    ("none:", f"info --camera 127.0.0.1:{SILENT_PORT}", 1,
     f"no camera answers at 127.0.0.1:{SILENT_PORT}\n"),
    ("usb:0970", f"info --device 90 --camera 127.0.0.1:{SILENT_PORT}", 1, "no camera answers at 127"),
    ("usb:0970", "info --device 1", 1, "no camera answers at index 1"),
    ("usb:0970", "lens pos 5", 1, "no focus lens"),
    ("usb:0970", "light quadrant 1 5", 1, "no such light"),
    ("usb:09A0", "exposure 5", 1, "fixed"),
    ("usb:0970", "report {folder}/Größe.zip --no-serials --json", 0, r'\{"file":".*Größe.zip"\}\n'),
    ("usb3:09B1", "ae --device 0 --json", 0, r'\{"automatic":true,"target":56\}\n'),
    ("wifi:0998,fault=junk", "info --device 90", 1, f"no camera answers at {ADDRESS}:8080"),
    ("wifi:0998", "lens fine 5 --device 90", 1, "this camera has none"),
    ("wifi:0998,fault=half", "snapshot {folder}/still.jpg", 1, "no camera answers|no whole picture"),
    ("wifi:0998", "snapshot {folder}", 4, "cannot replace"),
    ("wifi:0998,zoom=63", "watch --device 90 --seconds 3 --json", 0, STEADY),
    ("wifi:0998,zoom=63,fault=refuse:90", "watch --device 90 --seconds 10 --json", 0,
     STEADY + r'\{"event":"silent","time":"[^"]*"\}\n'),
]


def run(camera, arguments):
    """Exit code, standard output and standard error of a client, through files: what Wine starts
    beside a program would keep a pipe open."""
    transport, _, described = camera.partition(":")
    command = [str(word).replace("{}", described) for word in RUNS[transport]] + arguments
    with tempfile.TemporaryFile("w+") as printed, tempfile.TemporaryFile("w+") as said:
        code = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=printed,
                              stderr=said, timeout=100).returncode
        printed.seek(0)
        said.seek(0)
        # What the simulator says of itself stands before the client's output.
        shown = printed.read().replace("\r\n", "\n").split("ready\n")[-1]
        return code, shown, said.read().replace("\r\n", "\n")


def is_report(path):
    """Whole, with the library's paths as the last thing and no serial number before them."""
    with zipfile.ZipFile(path) as archive:
        report = archive.read("report.txt").decode()
        return (archive.namelist() == ["report.txt", "trace.txt"] and archive.testzip() is None and
                "#(left out)#" in report and "0 differs" in report and "QVX64.dll" in report)


def fault_of_command(camera, arguments, expected, pattern):
    with tempfile.TemporaryDirectory() as folder:
        words = [word.strip("'").format(folder="Z:" + folder) for word in arguments.split()]
        code, printed, said = run(camera, words)
        left = {path.name for path in pathlib.Path(folder).iterdir()}
        if not expected:
            left -= {path.name for path in pathlib.Path(folder).glob("*.zip") if is_report(path)}
    matches = re.search(pattern, said) if expected else re.fullmatch(pattern, printed)
    if code == expected and matches and not left and "violation" not in said:
        return None
    return f"{camera} {arguments}: {code}\n{printed}{said}{left}"


def fault_of_selftest(camera, result):
    code, printed, said = result
    return f"{camera}: {code}\n{printed}{said}" if code or "violation" in said else None


def selftests_over_wifi():
    """The cameras of one simulator side by side: most of a self-test is pauses."""
    ports = {f"wifi:{pid}": FIRST_PORT + i for i, pid in enumerate(FAMILIES["wifi"].split())}
    plugged = [f"{camera},port={port}" for camera, port in ports.items()]
    with tempfile.TemporaryFile("w+") as said, concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        simulator = subprocess.Popen([WINE, SIMULATOR, "--no-page", *plugged], stdout=subprocess.PIPE,
                                     stdin=subprocess.DEVNULL, stderr=said, text=True)
        while simulator.stdout.readline() not in ("ready\n", ""):
            pass
        results = pool.map(lambda camera: run(
            "none:", ["--camera", f"127.0.0.1:{ports[camera]}", "selftest"]), ports)
        yield from map(fault_of_selftest, ports, results)
        simulator.terminate()
        simulator.communicate()
        said.seek(0)
        yield said.read()


def selftests(transport):
    if transport == "wifi":
        yield from selftests_over_wifi()
        return
    for product_id in FAMILIES[transport].split():
        camera = f"{transport}:{product_id}"
        yield fault_of_selftest(camera, run(camera, ["--device", "0", "selftest"]))


def commands():
    with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        alone = [case for case in COMMANDS if case[0] != "none:"]
        together = [case for case in COMMANDS if case[0] == "none:"]
        yield from pool.map(lambda case: fault_of_command(*case), together)
        yield from (fault_of_command(*case) for case in alone)


def main():
    for fault in commands() if sys.argv[2] == "commands" else selftests(sys.argv[2]):
        if fault:
            sys.exit(fault)


main()
