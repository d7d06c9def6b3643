#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the program for terminals with other calculators: bc, calc and qalc.

    bench/peers.py build/release/bin/tallyquill

The same work is written in the syntax of each. Every answer is compared with the other's. Then both run by turns, and
the table shows the medians of the processor time of one run, as the system counts it for the process (user and system).
The exit status is 1 when an answer differs.
"""
import decimal
import os
import random
import re
import shutil
import statistics
import subprocess
import sys
import tempfile

DIGITS = 100
decimal.getcontext().prec = 130


def numbers(text, start=""):
    """The first number of every line that begins with `start` and has one."""
    found = []
    for line in re.sub(r"\x1b\[[0-9;]*m", "", text).splitlines():
        number = re.search(r"-?(\d+(\.\d*)?|\.\d+)([eE][-+]?\d+)?", line)
        if line.startswith(start) and number:
            found.append(decimal.Decimal(number.group().rstrip(".")))
    return found


class Program:
    """A calculator with its arguments and what it gets on standard input."""

    def __init__(self, arguments, lines=(), start="", folder=None):
        self.arguments = arguments
        self.start = start  # of a line with an answer
        self.input = tempfile.NamedTemporaryFile("w", dir=folder)
        self.input.write("".join(line + "\n" for line in lines))
        self.input.flush()

    def environment(self):
        # Lines are not broken, no file of the person's is read, and no terminal is asked for.
        home = os.path.dirname(self.input.name)
        return {"PATH": os.environ["PATH"], "HOME": home, "LC_ALL": "C.UTF-8", "TERM": "dumb", "BC_LINE_LENGTH": "0",
                "CALCRC": "", "CALCHELP": ""}

    def answers(self):
        with open(self.input.name, encoding="utf-8") as file:
            run = subprocess.run(self.arguments, stdin=file, capture_output=True, text=True, env=self.environment(),
                                 check=False)
        return numbers(run.stdout, self.start)

    def milliseconds(self):
        actions = [(os.POSIX_SPAWN_OPEN, 0, self.input.name, os.O_RDONLY, 0),
                   (os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
        process = os.posix_spawnp(self.arguments[0], self.arguments, self.environment(), file_actions=actions)
        _, status, usage = os.wait4(process, 0)
        if status != 0:
            sys.exit(f"{self.arguments[0]} failed with status {status}")
        return (usage.ru_utime + usage.ru_stime) * 1000


def same(ours, theirs, figures):
    """Whether two numbers agree in so many significant figures."""
    return abs(ours - theirs) <= abs(theirs) * decimal.Decimal(10) ** -figures


def compare(name, bar, runs, figures, count, ours, peer):
    """Prints a row. Returns whether all answers are the same."""
    if shutil.which(peer.arguments[0]) is None:
        print(f"{name:32} {peer.arguments[0]} is not installed")
        return True
    found, expected = ours.answers(), peer.answers()
    wrong = [pair for pair in zip(found, expected) if not same(*pair, figures)]
    if wrong or len(found) != count or len(expected) != count:
        print(f"{name}: of {count} answers {len(found)} and {len(expected)} came; they differ: {wrong[:3]}")
        return False
    times = [(ours.milliseconds(), peer.milliseconds()) for _ in range(runs)]
    mine = statistics.median(time[0] for time in times)
    other = statistics.median(time[1] for time in times)
    verdict = "" if mine / other <= bar else "  not reached"
    print(f"{name:32} {mine:9.3f} ms {other:9.3f} ms {peer.arguments[0]:5} {mine / other:6.3f} {bar:6.2f}{verdict}")
    return True


def mixed_lines(random_numbers, count):
    """Sums, products and quotients of decimals, twelve numbers a line."""
    lines = []
    for _ in range(count):
        values = [f"{random_numbers.randint(1, 99999)}.{random_numbers.randint(1, 999)}" for _ in range(12)]
        groups = [f"({a}{random_numbers.choice('+-')}{b})*{c}/{d}"
                  for a, b, c, d in zip(values[0::4], values[1::4], values[2::4], values[3::4])]
        lines.append("+".join(groups))
    return lines


def function_lines(random_numbers, count):
    """Pairs of the same call for this program and for calc."""
    names = {"sin": "sin", "cos": "cos", "exp": "exp", "ln": "ln", "atan": "atan", "sqrt": "sqrt", "sinh": "sinh"}
    lines = []
    for i in range(count):
        ours, theirs = list(names.items())[i % len(names)]
        value = f"{random_numbers.randint(1, 9)}.{random_numbers.randint(1, 999999):06}"
        lines.append((f"{ours}({value})", f"{theirs}({value})"))
    return lines


def conversion_lines(random_numbers, count):
    """Pairs of the same conversion for this program and for qalc; the catalogue has some units in seven digits."""
    units = [("mi", "km"), ("lb", "kg"), ("ft", "m"), ("yd", "m"), ("day", "s"), ("inch", "cm")]
    lines = []
    for i in range(count):
        source, target = units[i % len(units)]
        value = f"{random_numbers.randint(1, 999)}.{random_numbers.randint(1, 9)}"
        lines.append((f"{value} {source}->{target}", f"{value} {source} to {target}"))
    return lines


def peak_memory(tallyquill):
    """In MB, of an entry as an argument; the pause lets one look."""
    process = subprocess.Popen([tallyquill, "--no-files", "1+1", "pause3000"], stdout=subprocess.PIPE)
    process.stdout.readline()
    with open(f"/proc/{process.pid}/status", encoding="utf-8") as file:
        peak = re.search(r"VmHWM:\s*(\d+) kB", file.read())
    process.kill()
    process.wait()
    return int(peak.group(1)) / 1024


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    tallyquill = os.path.abspath(sys.argv[1])
    seed = int(os.environ.get("TALLYQUILL_TEST_SEED", "1"))
    draw = random.Random(seed)
    print(f"{'CPU time of one run':32} {'this':>12} {'other':>12}       {'ratio':>6} {'bar':>6}")
    with tempfile.TemporaryDirectory() as folder:
        def ours(arguments, lines=()):
            return Program([tallyquill] + arguments, lines, folder=folder)

        def peer(arguments, lines, start=""):
            return Program(arguments, lines, start, folder)

        short = [f"{n}*2.5" for n in range(1, 20001)]
        mixed = mixed_lines(draw, 3000)
        functions = function_lines(draw, 1400)
        conversions = conversion_lines(draw, 600)
        figures = ["-q", f"--figures={DIGITS}"]
        rows = [
            compare("start: 1+1", 0.75, 200, 9, 1, ours(["-q", "1+1"]), peer(["bc"], ["1+1"])),
            compare("20,000 lines N*2.5", 1.0, 11, 9, 20000, ours(["-q"], short), peer(["bc"], short)),
            compare("mixed arithmetic, 100 figures", 0.55, 11, DIGITS - 5, 3000, ours(figures, mixed),
                    peer(["bc"], [f"scale={DIGITS + 5}"] + mixed)),
            compare("functions, 100 figures", 0.2, 7, DIGITS - 2, 1400,
                    ours(figures + ["--rad"], [line[0] for line in functions]),
                    peer(["calc", "-d", "-p"],
                         [f'config("display",{DIGITS + 4}),epsilon(1e-{DIGITS + 10}),;']
                         + [line[1] for line in functions])),
            compare("conversions", 0.03, 5, 6, 600, ours(["-q"], [line[0] for line in conversions]),
                    peer(["qalc", "-t"], [line[1] for line in conversions], "  ")),
        ]
    if os.path.exists("/proc/self/status"):
        peak = peak_memory(tallyquill)
        print(f"{'peak memory of 1+1':32} {peak:9.3f} MB {'':22} {5:6.2f}{'' if peak <= 5 else '  not reached'}")
    sys.exit(0 if all(rows) else 1)


main()
