"""Makes one C++ program of the documents' samples that are none: extract_samples.py OUTPUT

Each becomes a function; `expect` ends the program when its argument is false.
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the sources stay as they are
import documents

DOCUMENTS = pathlib.Path(__file__).parents[2] / "docs"

FRAME = """#include <cstdio>
#include <cstdlib>
{includes}
#define expect(condition) \\
  ((condition) ? void() : (std::fprintf(stderr, "not so: %s\\n", #condition), std::abort()))

{functions}
int main() {{
{calls}}}
"""


def main():
    samples = [sample for document in sorted(DOCUMENTS.glob("*.md"))
               for sample in documents.samples(document)
               if sample.language == "cpp" and "int main" not in sample.text]
    include = re.compile(r"(?m)^#include .*\n")
    functions = [f"// {sample}\nstatic void sample{i}() {{\n{include.sub('', sample.text)}}}\n"
                 for i, sample in enumerate(samples)]
    pathlib.Path(sys.argv[1]).write_text(FRAME.format(
        includes="".join("".join(include.findall(sample.text)) for sample in samples),
        functions="\n".join(functions),
        calls="".join(f"  sample{i}();\n" for i in range(len(samples)))))


if __name__ == "__main__":
    main()
