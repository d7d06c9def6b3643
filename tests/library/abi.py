#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What programs are compiled against: library/abi.txt has it, and a change of that is made on purpose.

    abi.py LIBRARY INCLUDE      prints it for the installed libtallyquill.so and its headers

The names that the shared library shows, data with its size, of which programs have copies; then the sizes of the
classes and where their members stand, on Linux with 64 bits and the standard library of g++.
"""
import os
import subprocess
import sys
import tempfile

LAYOUT = """
#include <tallyquill/Calculator.h>
#include <cstdio>
using namespace tallyquill;
Answer answer;
#define SIZE(name) std::printf("sizeof %s %zu\\n", #name, sizeof(name))
#define PLACE(member) std::printf("Answer.%s %td\\n", #member, \
    reinterpret_cast<const char*>(&answer.member) - reinterpret_cast<const char*>(&answer))
int main() {
    SIZE(Real); SIZE(Calculator); SIZE(Answer);
    PLACE(status); PLACE(value); PLACE(name); PLACE(text); PLACE(echo); PLACE(start); PLACE(length);
}
"""


def names(library):
    """Mangled, in the order of their bytes."""
    listed = subprocess.run(["nm", "-D", "--defined-only", "--format=posix", library], check=True, capture_output=True, text=True)
    lines = []
    for name, kind, _, size in (line.split() for line in listed.stdout.splitlines()):
        lines.append(name if kind in "TW" else f"{name} {int(size, 16)}")
    return sorted(lines)


def layout(library, include):
    with tempfile.TemporaryDirectory() as folder:
        program = folder + "/layout"
        subprocess.run(["g++", "-std=c++17", f"-I{include}", "-o", program, "-x", "c++", "-", "-x", "none", library],
                       input=LAYOUT, check=True, text=True)
        environment = {**os.environ, "LD_LIBRARY_PATH": os.path.dirname(library)}
        return subprocess.run([program], check=True, capture_output=True, text=True, env=environment).stdout.splitlines()


def lines_of(library, include):
    return names(library) + layout(library, include)


if __name__ == "__main__":
    print("\n".join(lines_of(*sys.argv[1:])))
