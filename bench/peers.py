#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the program for terminals with other calculators: bc, calc and qalc.

    bench/peers.py build/release/bin/tallyquill

The same work is written in the syntax of each. Every answer is compared with the other's. Then both run by turns, and
the table shows the medians of the processor time of one run, as the system counts it for the process (user and system).
The exit status is 1 when an answer differs. The last rows compare the program with itself: ten times the work.
"""
import decimal
import os
import pty
import random
import re
import shutil
import statistics
import subprocess
import sys
import tempfile

DIGITS = 100
OWN_FILE = ".local/share/Tallyquill/pelmo_functions.txt"  # on Linux
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


def call_lines(count):
    """Functions that call each other, and calls of them: for this program and for bc."""
    bodies = [("f(x,y)", "(x+y)*(x-y)/2"), ("g(x)", "f(x,3)+f(x,5)*x"), ("h(x)", "g(x+1)-g(x-1)")]
    calls = [f"h({n})" for n in range(1, count + 1)]
    ours = [f"{head}={body}" for head, body in bodies]
    return ours + calls, ["scale=20"] + [f"define {head}{{return {body}}}" for head, body in bodies] + calls


def chain_lines(length):
    """Functions of which each calls the one before twice, for this program and for calc: 2^(length+1) calls."""
    bodies = [("f0(x)", "x+1")] + [(f"f{i}(x)", f"f{i - 1}(x)+f{i - 1}(x)") for i in range(1, length + 1)]
    call = [f"f{length}(1)"]
    return [f"{h}={b}" for h, b in bodies] + call, [f"define {h}={b};" for h, b in bodies] + call


def long_line(kind, length):
    """A line of about so many characters."""
    begin, middle, end = {"nested": ("(", "1", ")"), "nested sums": ("(1+", "1", ")"), "flat sum": ("", "1", "+1")}[kind]
    times = length // len(begin + end)
    return begin * times + middle + end * times


def names_of(count):
    return ["n" + "".join(chr(97 + n // 26 ** k % 26) for k in range(4)) for n in range(count)]


def definitions(kind, count):
    form = {"variables": "{0}={1}", "functions": "{0}(x)=x+{1}", "units": "unit {0}={1} meter"}[kind]
    return [form.format(name, n + 1) for n, name in enumerate(names_of(count))]


def name_lines(kind, count):
    """A script that defines so many names, uses, deletes and lists them."""
    names = names_of(count)
    used = {"variables": [], "functions": ["list"], "units": ["list units"]}[kind]
    used += [{"variables": name, "functions": f"{name}(1)", "units": f"2 {name}->m"}[kind] for name in names]
    return definitions(kind, count) + used + [f"del {name}" for name in names]


class Prompt:
    """A prompt in a folder with so many definitions, which it reads and, after one more entry, writes again."""

    def __init__(self, tallyquill, kind, count, folder):
        self.tallyquill = tallyquill
        self.home = tempfile.mkdtemp(dir=folder)
        headers = {"functions": "FUNCTIONS", "variables": "VARIABLES", "units": "CUSTOM UNITS", "history": "HISTORY"}
        lines = []
        for section, header in headers.items():
            lines += [f"### {header} ###"] + (definitions(kind, count) if section == kind else [])
        self.file = os.path.join(self.home, OWN_FILE)
        os.makedirs(os.path.dirname(self.file))
        with open(self.file, "w", encoding="utf-8") as file:
            file.write("".join(line + "\n" for line in lines))
        self.entries = 0

    def milliseconds(self):
        self.entries += 1
        process, terminal = pty.fork()
        if process == 0:
            os.execve(self.tallyquill, [self.tallyquill, "--plain"], {"HOME": self.home, "TERM": "dumb"})
        os.write(terminal, f"x={self.entries}\nexit\n".encode())
        try:
            while os.read(terminal, 65536):
                pass
        except OSError:
            pass  # it has ended
        _, status, usage = os.wait4(process, 0)
        os.close(terminal)
        with open(self.file, encoding="utf-8") as file:
            if status != 0 or f"\nx={self.entries}\n" not in file.read():
                sys.exit("the prompt did not save")
        return (usage.ru_utime + usage.ru_stime) * 1000


def growth(name, runs, short, long):
    """Prints how many times longer than the short work one takes that is ten times as long."""
    times = [(short.milliseconds(), long.milliseconds()) for _ in range(runs)]
    small, large = (statistics.median(time[i] for time in times) for i in range(2))
    print(f"{name:32} {large:9.3f} ms {small:9.3f} ms {'':5} {large / small:6.3f} {12:6.2f}"
          f"{'' if large / small <= 12 else '  not reached'}")


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
        calls, calls_of_bc = call_lines(5000)
        rows.append(compare("5,000 lines of calls", 0.6, 11, 9, 5000, ours(["-q"], calls), peer(["bc"], calls_of_bc)))
        chain, chain_of_calc = chain_lines(18)
        rows.append(compare("2^19 calls", 1.0, 11, 6, 1, ours(["-q"], chain), peer(["calc", "-d", "-p"], chain_of_calc)))
        for kind in ("nested", "nested sums", "flat sum"):
            line = [long_line(kind, 9900)]
            for arguments in (["bc"], ["calc", "-d", "-p"]) if kind != "nested sums" else (["bc"],):
                rows.append(compare(f"{kind}, 9,900 characters", 1.0, 51, 9, 1, ours(["-q"], line),
                                    peer(arguments, line)))
        for kind in ("nested", "nested sums", "flat sum"):
            growth(f"{kind}: 9,900 to 990 characters", 11, ours(["-q"], [long_line(kind, 990)] * 100),
                   ours(["-q"], [long_line(kind, 9900)] * 100))
        for kind, count in (("variables", 50000), ("functions", 10000), ("units", 1000)):
            growth(f"{count} {kind} to {count // 10}", 5, ours(["-q"], name_lines(kind, count // 10)),
                   ours(["-q"], name_lines(kind, count)))
            if sys.platform == "linux":
                growth("the same, read and saved", 5,
                       *(Prompt(tallyquill, kind, n, folder) for n in (count // 10, count)))
    if os.path.exists("/proc/self/status"):
        peak = peak_memory(tallyquill)
        print(f"{'peak memory of 1+1':32} {peak:9.3f} MB {'':22} {5:6.2f}{'' if peak <= 5 else '  not reached'}")
    sys.exit(0 if all(rows) else 1)


main()
