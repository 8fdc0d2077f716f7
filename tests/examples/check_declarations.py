"""Compares what the examples in C#, Python and Node declare with api.h, types included."""

import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).parents[2]
# A type of api.h, and what stands for it in each language.
TYPES = {
    "void": {"csharp": "void", "python": "None", "node": "void"},
    "int": {"csharp": "int", "python": "c_int", "node": "int"},
    "qvx_long": {"csharp": "int", "python": "c_long", "node": "long"},
    "double": {"csharp": "double", "python": "c_double", "node": "double"},
    "bool": {"csharp": "I1 bool", "python": "c_bool", "node": "bool"},
    "wchar_t*": {"csharp": "IntPtr", "python": "c_wchar_p", "node": "str16"},
    "char*": {"csharp": "IntPtr", "python": "c_char_p", "node": "str"},
    "const char*": {"csharp": "string", "python": "c_char_p", "node": "str"},
    "qvx_long*": {"csharp": "ref int", "python": "POINTER(c_long)", "node": "_Inout_ long *"},
    "short*": {"csharp": "[Out] short[]", "python": "POINTER(c_short)", "node": "_Out_ short *"},
    "void (*)(void)": {
        "csharp": "ButtonHandler", "python": "ButtonHandler", "node": "ButtonHandler *"},
}


def without_name(parameter):
    """A parameter's type: "int idx" is "int"; an out parameter is as good as an in-and-out one."""
    kind = re.sub(r"\w+$", "", parameter.strip()).strip()
    return kind.replace("out int", "ref int").replace("_Out_ long", "_Inout_ long")


def signature(result, parameters):
    kinds = [] if parameters.strip() in ("", "void") else parameters.split(",")
    return (result.strip(), *map(without_name, kinds))


def signatures(pattern, text):
    """By name, what the pattern finds: a result, a name and parameters."""
    return {
        name: signature(result, parameters)
        for result, name, parameters in re.findall(pattern, text, re.MULTILINE)}


def in_header():
    text = re.sub(r"/\*.*?\*/", "", (SOURCE / "include/qvx64/api.h").read_text(), flags=re.DOTALL)
    text = text.replace("void (*func)(void)", "void (*)(void) func")
    pattern = r"^QVX64_API ([^;]*?)(\w+)\(((?:void \(\*\)\(void\) func|[^()])*)\);"
    return signatures(pattern, text)


def in_csharp():
    text = (SOURCE / "examples/csharp/QVX64.cs").read_text()
    text = text.replace("[return: MarshalAs(UnmanagedType.I1)] public static extern ",
                        "public static extern I1 ")
    return signatures(r"\[DllImport\(Dll\)\] public static extern (.*?) (\w+)\(([^;]*)\);$", text)


def in_python():
    text = (SOURCE / "examples/python/qvx64.py").read_text()
    return {
        name: tuple(re.findall(r"POINTER\(\w+\)|\w+", types))
        for name, types in re.findall(r'^    "(\w+)": \((.*?)\),(?=\n(?:    "|}))', text, re.M | re.S)}


def in_node():
    text = (SOURCE / "examples/node/qvx64.js").read_text()
    return signatures(r"^  ['`](\w+) (\w+)\(([^()]*)\)['`],$", text)


def constants(path):
    text = re.sub(r"/\*.*?\*/", "", (SOURCE / path).read_text(), flags=re.DOTALL)
    return {name: int(value, 0) for name, value in re.findall(r"(QVX_\w+)(?: =|:) (-?\w+)", text)}


def faults():
    header = in_header()
    if not header:
        yield "api.h declares no function"
    for file in ("csharp/QVX64.cs", "python/qvx64.py", "node/qvx64.js"):
        found = constants("examples/" + file).items()
        for name, value in constants("include/qvx64/api.h").items() ^ found:
            yield f"{file}: {name} = {value} stands on one side only"
    for language, found in (("csharp", in_csharp()), ("python", in_python()), ("node", in_node())):
        for name in sorted(header.keys() ^ found.keys()):
            yield f"{language}: {name} is {'missing' if name in header else 'not in api.h'}"
        for name in sorted(header.keys() & found.keys()):
            expected = tuple(TYPES[kind][language] for kind in header[name])
            if found[name] != expected:
                yield f"{language}: {name} is {found[name]} instead of {expected}"
        print(f"{language}: {len(found)} of {len(header)} functions")


if __name__ == "__main__":
    found = list(faults())
    print("\n".join(found))
    sys.exit(1 if found else 0)
