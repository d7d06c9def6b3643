#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Counts the instructions that work takes, and compares them with those of bench/instructions.txt.

    bench/instructions.py build/release/bin            compares; the exit status is 1 where more than 3 % are new
    bench/instructions.py build/release/bin --write    writes the table anew

Valgrind counts, so the numbers depend on the compiler and the C library but not on what else the machine does.
"""
import os
import re
import subprocess
import sys
import tempfile

TABLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "instructions.txt")
WORSE = 1.03
PREVIEWS = 22  # lines of bench/preview/lines.cpp
CALLS = ["f(x,y)=(x+y)*(x-y)/2", "g(x)=f(x,3)+f(x,5)*x", "h(x)=g(x+1)-g(x-1)"]


def scripts():
    """The rows that are scripts: a name and the lines."""
    chain = ["f0(x)=x+1"] + [f"f{i}(x)=f{i - 1}(x)+f{i - 1}(x)" for i in range(1, 15)]
    numbers = [f"{n}.{n * n}" for n in range(1, 201)]
    rows = {
        "start: 1+1": ["1+1"],
        "2,000 short lines": [f"{n}*2.5" for n in range(1, 2001)],
        "1,000 lines of calls": CALLS + [f"h({n})" for n in range(1, 1001)],
        "1,000 calls that convert": ["f(x)=x*2 km->mi"] + [f"f({n})" for n in range(1, 1001)],
        "1,000 calls with variables": ["v=3", "w=5", "f(x)=v*x+w", "g(x)=f(x)+v*f(w)"]
                                      + [f"g({n})" for n in range(1, 1001)],
        "2^15 calls": chain + ["f14(1)"],
        "nested, 9,900 characters": ["(" * 4949 + "1" + ")" * 4949],
        "nested sums, 9,900 characters": ["(1+" * 2474 + "1" + ")" * 2474],
        "flat sum, 9,900 characters": ["1" + "+1" * 4949],
        "3,000 variables": [f"v{n}={n}" for n in range(3000)],
        "1,000 functions": [f"f{n}(x)=x+{n}" for n in range(1000)],
        "100 units": ["unit u" + chr(97 + n // 26) + chr(97 + n % 26) + f"={n + 1} meter" for n in range(100)],
        "200 sums": [f"{n}+1/{n}" for n in numbers],
        "200 products": [f"{n}*{n}" for n in numbers],
        "200 quotients": [f"{n}/7.{i}" for i, n in enumerate(numbers)],
        "200 powers": [f"{n}^.3" for n in numbers],
    }
    for name in ("sqrt", "exp", "ln", "sin", "tan", "atan", "sinh"):
        rows[f"200 of {name}"] = [f"{name}({n})" for n in numbers]
    return rows


def count(arguments, lines=(), toggle=None):
    """The instructions that a program takes on these lines, in the calls of `toggle` if given."""
    collected = [f"--toggle-collect={toggle}"] if toggle else []
    with tempfile.TemporaryFile("w+") as text:
        text.write("".join(line + "\n" for line in lines))
        text.seek(0)
        run = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"] + collected + arguments,
                             stdin=text, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False,
                             env={"PATH": os.environ["PATH"], "HOME": "/nonexistent", "LC_ALL": "C"})
    found = re.search(rb"Collected : (\d+)", run.stderr)
    if not found:
        sys.exit(run.stderr.decode(errors="replace"))
    return int(found.group(1))


def measure(folder):
    rows = {name: count([f"{folder}/tallyquill", "-q", "--no-files"], lines) for name, lines in scripts().items()}
    for line in range(PREVIEWS):
        rows[f"preview {line}"] = count([f"{folder}/preview_bench", str(line)], toggle="onePreview*")
    bench = f"{folder}/tallyquill_bench"
    for row in subprocess.run([bench, "--rows"], capture_output=True, text=True, check=True).stdout.splitlines():
        rows[f"256 of: {row}"] = count([bench, "--count", row], toggle="bench::allOperands*")
    return rows


def read_table():
    with open(TABLE, encoding="utf-8") as file:
        return {name: int(number) for number, name in (line.split(maxsplit=1) for line in file.read().splitlines())}


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--write"]):
        sys.exit(__doc__)
    rows = measure(sys.argv[1])
    if len(sys.argv) == 3:
        with open(TABLE, "w", encoding="utf-8") as file:
            file.writelines(f"{number:12} {name}\n" for name, number in rows.items())
        return
    table = read_table()
    worse = set(rows) != set(table)
    for name, number in rows.items():
        ratio = number / table.get(name, number)
        worse = worse or ratio > WORSE
        print(f"{name:32} {table.get(name, 0):12} {number:12} {ratio:7.3f}{'  worse' if ratio > WORSE else ''}")
    sys.exit(1 if worse else 0)


main()
