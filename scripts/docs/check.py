#!/usr/bin/python3
"""Checks that the documents are true: check.py [DOCUMENT...]

Samples between code fences are run or compiled, what a transcript shows has to come out, the
tables of options are those of the programs, and links lead somewhere. Needs build/native,
build/simulator and build/windows.
"""

import concurrent.futures
import contextlib
import pathlib
import re
import subprocess
import sys
import tempfile
import threading

sys.dont_write_bytecode = True  # the sources stay as they are
import documents

ROOT = pathlib.Path(__file__).parents[2]
TEST_SCRIPT = ROOT / "scripts/test.sh"

WINE = "scripts/run-wine.sh "
CLIENT = "build/windows/qvxctl.exe"
BRIDGE_CAMERA = "build/windows/qvx-simulator.exe --no-page usb:0970,zoom=63 -- "
SIMULATOR = "build/simulator/qvx-simulator"
WIFI_CAMERA = "wifi:0998,zoom=63"
LIMIT_S = 120

# Documents are checked side by side; one sample at a time has the Wi-Fi camera's port, and one the
# machine's list of cameras.
PORT, REGISTRY = threading.Lock(), threading.Lock()

# What is a whole run, and the stage of the test script that makes it.
STAGES = {
    "scripts/demo.sh": "demo",
    "scripts/fuzz.sh 600": "fuzz",
    "cmake --preset native && cmake --build --preset native": "native",
    "ctest --preset native -R Init": "native",
    "build/native/tests/unit/unit_tests --gtest_filter='Families*'": "native",
}
# What differs from run to run in what a program prints.
VARYING = {
    r"\.\.\.": r".*",
    r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z": r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z",
    r"^\d\d:\d\d:\d\d": r"\d\d:\d\d:\d\d",
    r"^ +\d+\.\d{3} s": r" +\d+\.\d{3} s",
}

# A program of a document, with the compiler's runtime inside and its output at once.
PROJECT = """cmake_minimum_required(VERSION 3.23)
project(sample CXX)
set(CMAKE_CXX_STANDARD 20)
add_executable({target} main.cpp)
target_compile_options({target} PRIVATE -include ${{PROJECT_SOURCE_DIR}}/unbuffered.h)
target_link_options({target} PRIVATE -static)
{sample}"""
UNBUFFERED = """#include <cstdio>
static const int unbuffered = std::setvbuf(stdout, nullptr, _IONBF, 0);
"""
BUILD = """cmake -G Ninja -S {folder} -B {folder}/build \\
  -DQVX64_DIR=$PWD/build/package/lib/cmake/QVX64 -DCMAKE_TOOLCHAIN_FILE=$PWD/cmake/mingw-w64.cmake &&
cmake --build {folder}/build && cp build/package/bin/QVX64.dll {folder}/build"""


class Camera:
    """A simulated Wi-Fi camera that is switched on; the port must be free."""

    def __init__(self, options):
        self.process = subprocess.Popen(
            [SIMULATOR, *options.split()], cwd=ROOT, stdout=subprocess.PIPE, text=True)
        self.ready = ""
        while not self.ready.endswith("ready\n") and self.process.poll() is None:
            self.ready += self.process.stdout.readline()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.printed = self.ready + self.process.communicate(timeout=LIMIT_S)[0]


def shell(command):
    """Through files: what Wine starts beside a program would keep a pipe open."""
    with tempfile.TemporaryFile("w+") as printed, tempfile.TemporaryFile("w+") as said:
        done = subprocess.run(["bash", "-c", command], cwd=ROOT, stdin=subprocess.DEVNULL,
                              stdout=printed, stderr=said, timeout=LIMIT_S)
        printed.seek(0)
        said.seek(0)
        done.stdout, done.stderr = printed.read().replace("\r\n", "\n"), said.read()
        return done


def wants_port(command):
    return "--device 90" in command or command.startswith(SIMULATOR)


def as_run(command):
    """The client is called as if it were in the PATH, and finds a camera where it looks for one."""
    if not command.startswith("qvxctl "):
        return command
    needs_none = wants_port(command) or (" call " in command and "--init" not in command)
    return WINE + ("" if needs_none else BRIDGE_CAMERA) + CLIENT + command.removeprefix("qvxctl")


@contextlib.contextmanager
def resources_for(commands):
    with contextlib.ExitStack() as held:
        if any(wants_port(command) for command in commands):
            held.enter_context(PORT)
        if any("qvx-simulator.exe" in as_run(command) for command in commands):
            held.enter_context(REGISTRY)
        yield


def stages():
    """The names of all stages, and of those that run without being asked for."""
    text = TEST_SCRIPT.read_text()
    usual = re.search(r"(?m)^stages=\((.*)\)$", text).group(1).split()
    return set(re.findall(r"(?m)^stage_(\w+)\(\)", text)), usual


def run_camera(command):
    with Camera(command.removeprefix(SIMULATOR)) as camera:
        client = shell(WINE + CLIENT + " info --device 90")
    return camera.process.returncode or client.returncode, camera.printed, client.stderr


def run(command):
    """Exit code, standard output and standard error; the code is 0 for what others run."""
    known, usual = stages()
    whole_run = re.fullmatch(r"scripts/test\.sh((?: \w+)*)", command)
    if whole_run:
        unknown = set(whole_run.group(1).split()) - known
        return len(unknown), "", f"no stage {unknown}"
    if command in STAGES:
        return int(STAGES[command] not in usual), "", f"no stage {STAGES[command]} runs it"
    if command.startswith(SIMULATOR):
        return run_camera(command)
    with Camera("--no-page " + WIFI_CAMERA) if wants_port(command) else contextlib.nullcontext():
        done = shell(as_run(command))
    return done.returncode, done.stdout, done.stderr


def pattern_of(shown):
    """What a transcript shows, as a pattern: a line of three dots is any number of lines."""
    pattern = ""
    for line in shown.splitlines():
        if line == "...":
            pattern += "(?:.*\n)*?"
            continue
        pieces = re.split("(" + "|".join(VARYING) + ")", line)
        for index, piece in enumerate(pieces):
            meaning = next((VARYING[text] for text in VARYING if re.fullmatch(text, piece)), None)
            pattern += meaning if index % 2 and meaning else re.escape(piece)
        pattern += "\n"
    return pattern


def check_run(command, shown):
    status, printed, said = run(command)
    if status != 0:
        yield f"{command}: exit code {status}\n{printed}{said}"
    elif shown is not None and not re.fullmatch(pattern_of(shown), printed):
        yield f"{command} prints:\n{printed}instead of:\n{shown}"


def check_commands(sample):
    commands = [re.sub(r"\s+#.*", "", line) for line in sample.text.splitlines()]
    with resources_for(commands):
        for command in commands:
            yield from check_run(command, None)


def check_transcript(sample):
    entries = [entry.split("\n", 1) for entry in re.split(r"(?m)^\$ ", sample.text)[1:]]
    with resources_for([command for command, _ in entries]):
        for command, shown in entries:
            yield from check_run(command, shown)


def check_declarations(sample):
    """C declarations must be those of the header; C for Windows must compile there."""
    compiler = "x86_64-w64-mingw32-gcc-posix" if "<windows.h>" in sample.text else "gcc"
    flags = ["-Wall", "-Wextra", "-Werror", "-fsyntax-only", "-xc", "-Iinclude", "-"]
    source = f"#include <qvx64/api.h>\n{sample.text}"
    done = subprocess.run([compiler, *flags], cwd=ROOT, input=source, text=True, capture_output=True)
    if done.returncode != 0:
        yield done.stderr


def is_program(sample):
    return sample.language == "cpp" and "int main" in sample.text


def check_cpp(sample):
    """Programs are built with the CMake sample of their document; all others natively."""
    languages = [other.language for other in documents.samples(sample.document)]
    if is_program(sample) and "cmake" not in languages:
        yield "no CMake sample builds this program"


def check_package(sample):
    """The document's program, built as it says from outside, sees the camera."""
    program = next(s for s in documents.samples(sample.document) if is_program(s))
    target = re.search(r"target_link_libraries\((\w+)", sample.text).group(1)
    with tempfile.TemporaryDirectory() as folder:
        project = pathlib.Path(folder)
        (project / "main.cpp").write_text(program.text)
        (project / "unbuffered.h").write_text(UNBUFFERED)
        (project / "CMakeLists.txt").write_text(PROJECT.format(target=target, sample=sample.text))
        built = shell(BUILD.format(folder=folder))
        if built.returncode != 0:
            yield built.stdout + built.stderr
        else:
            yield from watch_program(project / "build" / f"{target}.exe")


def watch_program(program):
    """What the program prints until it tells a magnification; there must be no other camera."""
    expected, printed = "x 62.99  field 6.21 mm\n", []
    with PORT, REGISTRY, Camera("--no-page " + WIFI_CAMERA):
        process = subprocess.Popen([WINE.strip(), str(program)], cwd=ROOT, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, text=True)
        for line in process.stdout:
            printed.append(line)
            if line == expected or len(printed) == 20:
                break
        process.kill()
        process.wait()
    if printed != [expected]:
        yield f"the program prints {printed}"


CHECKS = {
    "sh": check_commands, "console": check_transcript, "c": check_declarations, "cpp": check_cpp,
    "cmake": check_package,
    # The trace's own test reads the fields; text is there to be read by people.
    "fields": lambda sample: (), "text": lambda sample: (),
}


def check_samples(document):
    for sample in documents.samples(document):
        if sample.language not in CHECKS:
            yield f'{sample}: nothing runs a sample of "{sample.language}"'
            continue
        for fault in CHECKS[sample.language](sample):
            yield f"{sample}: {fault}"


def check_links(document):
    for path, anchor in documents.links(document):
        if not path.exists():
            yield f"{document.name}: no {path.relative_to(ROOT)}"
        elif anchor and anchor not in documents.anchors(path):
            yield f"{document.name}: {path.name} has no heading for #{anchor}"


def check_file_names(document):
    """Sources and scripts that the text names; what a build makes is not looked for."""
    folders = "cmake|include|scripts|simulator|src|tests|tools"
    for code in documents.inline_code(document):
        for name in re.findall(rf"(?<![\w/.-])(?:{folders})/[\w./-]*\w", code):
            if not (ROOT / name).exists():
                yield f"{document.name}: no {name}"


def check_document(document):
    checks = (check_links, check_file_names, check_samples)
    return [fault for check in checks for fault in check(document)]


def first_words(section):
    return [line.split()[0] for line in section.splitlines() if re.match(r"  \S", line)]


def check_tables():
    """What the guides list is what the programs say they take."""
    client, exports = (
        dict(re.findall(r"(?m)^(\w+):\n((?:  .*\n)+)", shell(WINE + CLIENT + arguments).stdout))
        for arguments in (" --help", " call --help"))
    simulated, faults = shell(SIMULATOR + " --help").stdout.split("A fault is")
    guide, simulator = ROOT / "docs/qvxctl.md", ROOT / "docs/simulator.md"
    # What the program says, and the table behind these words of the guide.
    tables = [
        (first_words(client["Commands"]), guide, "is called as"),
        (first_words(client["Options"]), guide, "lists the exports and"),
        (re.findall(r"(?m)^  (--(?!help)[\w-]+)", simulated), simulator, "Its options"),
        (re.findall(r"(?m)^  ,(\w+)=", simulated), simulator, "Cameras"),
        (re.findall(r"(?m)^  ([a-z-]+)\b", faults), simulator, "Faults"),
    ]
    for said, document, words in tables:
        listed = {re.match(r"-*\w[\w-]*", code).group()
                  for code in documents.table_codes(document, words)}
        if listed != set(said):
            yield f'{document.name}: "{words}": only one side has {sorted(listed ^ set(said))}'
    declared = re.findall(r"(?m)^QVX64_API .*?(\w+)\(", (ROOT / "include/qvx64/api.h").read_text())
    if first_words(exports["Exports"]) != declared:
        yield "qvxctl call --help: other exports than the header"


def main():
    every = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md"))]
    chosen = [ROOT / name for name in sys.argv[1:]] or every
    reference = shell("scripts/docs/api_reference.py --check")
    faults = [reference.stdout] if reference.returncode else []
    with concurrent.futures.ThreadPoolExecutor(len(chosen) + 1) as pool:
        tables = pool.submit(lambda: list(check_tables()))
        faults += sum(pool.map(check_document, chosen), [])
        faults += tables.result()
    print(*faults, sep="\n", end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
