#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Changes one operator or constant of the sources at a time and sees whether the tests notice.

    scripts/mutants.py [--seed N] [--count N] [--jobs N] [--at FILE:LINE:COLUMN] [--folder FOLDER ...]

Places are drawn from the .cpp files of qfloat/, units/, engine/ and store/, from each folder as many, and from one
file at most a twelfth of all. For each the file is compiled anew in a copy of the tree (build/mutants), and
the suite of its folder runs until its first failure. A suite that fails, crashes or takes ten times as long has
noticed. A change that does not compile is not counted; another place is taken.

It prints a line for each change and the share that was noticed. The seed is printed, and draws the same places
again as long as the sources are the same.
"""
import argparse
import concurrent.futures
import os
import queue
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

FOLDERS = ("qfloat", "units", "engine", "store")
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# clang-format sets a blank on both sides of an operator with two operands, and none beside a template's brackets.
SWAPS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "+": "-", "-": "+", "*": "+", "/": "*", "%": "*",
    "+=": "-=", "-=": "+=", "*=": "+=", "<<=": ">>=", ">>=": "<<=", "|=": "&=", "&=": "|=",
    "&&": "||", "||": "&&", "<<": ">>", ">>": "<<", "|": "&", "&": "|", "^": "|",
}  # fmt: skip
OPERATOR = re.compile(r"(?<= )(%s)(?= |$)" % "|".join(re.escape(o) for o in sorted(SWAPS, key=len, reverse=True)))
NUMBER = re.compile(r"(?<![\w.])(0[xX][0-9a-fA-F']+|\d[\d']*)([uUlL]*)(?![\w.])")
WORDS = {"true": "false", "false": "true", "++": "--", "--": "++", "!": ""}
WORD = re.compile(r"\b(true|false)\b|(\+\+|--)|(?<![\w)\]])(!)(?=[\w(:])")
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|^[ \t]*#[^\n]*|static_assert\([^;]*;',
                      re.DOTALL | re.MULTILINE)


class Mutant:
    def __init__(self, file, text, begin, end, new):
        self.file, self.begin, self.end, self.new = file, begin, end, new
        self.old = text[begin:end]
        self.line = text.count("\n", 0, begin) + 1
        self.column = begin - text.rfind("\n", 0, begin)
        self.source = text.splitlines()[self.line - 1].strip()

    def folder(self):
        return self.file.split("/")[0]

    def name(self):
        return f"{self.file}:{self.line}:{self.column}"

    def applied(self, text):
        return text[:self.begin] + self.new + text[self.end:]


def places(file):
    """Every mutant of a file."""
    with open(os.path.join(ROOT, file), encoding="utf-8") as source:
        text = source.read()
    code = NOT_CODE.sub(lambda match: re.sub(r"[^\n]", "_", match.group()), text)
    for match in OPERATOR.finditer(code):
        yield Mutant(file, text, match.start(), match.end(), SWAPS[match.group()])
    for match in WORD.finditer(code):
        yield Mutant(file, text, match.start(), match.end(), WORDS[match.group()])
    for match in NUMBER.finditer(code):
        digits = match.group(1).replace("'", "")
        is_octal = len(digits) > 1 and digits.isdigit() and digits[0] == "0"
        if not is_octal:
            yield Mutant(file, text, match.start(1), match.end(1), str(int(digits, 0) + 1))


def drawn(folders, seed):
    """For each folder all its places, in the order in which they are tried."""
    chosen = {}
    for folder in folders:
        files = sorted(f"{folder}/{name}" for name in os.listdir(os.path.join(ROOT, folder)) if name.endswith(".cpp"))
        every = [mutant for file in files for mutant in places(file)]
        random.Random(seed).shuffle(every)
        chosen[folder] = every
    return chosen


class BuildCopy:
    """A copy of the tree with a build of its suites."""

    def __init__(self, number):
        self.source = os.path.join(ROOT, "build", "mutants", str(number), "source")
        self.build = os.path.join(ROOT, "build", "mutants", str(number), "build")
        self.copy()
        environment = {name: value for name, value in os.environ.items() if name != "CMAKE_CXX_COMPILER_LAUNCHER"}
        subprocess.run(["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DCMAKE_CXX_COMPILER=clang++",
                        "-DCMAKE_BUILD_TYPE=Release", "-DTALLYQUILL_WINDOW=OFF", "-DTALLYQUILL_TERMINAL=OFF",
                        "-DTALLYQUILL_CASES_DIVISOR=20", "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"],
                       check=True, stdout=subprocess.DEVNULL, env=environment)
        subprocess.run(["ninja", "-C", self.build, *[f"{folder}_tests" for folder in FOLDERS]], check=True,
                       stdout=subprocess.DEVNULL)

    def copy(self):
        """Brings the copy up to date; what is the same keeps its time, so that it is not compiled again."""
        files = subprocess.run(["git", "-C", ROOT, "ls-files", "-z"], check=True, capture_output=True, text=True).stdout
        for file in filter(None, files.split("\0")):
            here, there = os.path.join(ROOT, file), os.path.join(self.source, file)
            if not os.path.isfile(here):
                continue
            with open(here, "rb") as original:
                data = original.read()
            if os.path.isfile(there):
                with open(there, "rb") as copy:
                    if copy.read() == data:
                        continue
            os.makedirs(os.path.dirname(there), exist_ok=True)
            shutil.copy(here, there)

    def compiles(self, folder):
        return subprocess.run(["ninja", "-C", self.build, "-j", "1", f"{folder}_tests"], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0

    def suite_passes(self, folder, seconds):
        """Whether the folder's suite passes within so many seconds, somewhere where it can do no harm."""
        def limits():
            resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
            resource.setrlimit(resource.RLIMIT_FSIZE, (256 << 20, 256 << 20))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        with tempfile.TemporaryDirectory() as home:
            os.chmod(home, 0o755)  # a test reads as another person
            environment = dict(os.environ, HOME=home, TMPDIR=home)
            environment.pop("XDG_DATA_HOME", None)
            program = subprocess.Popen(
                [os.path.join(self.build, "bin", f"{folder}_tests"), "--gtest_fail_fast", "--gtest_brief=1"],
                cwd=home, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL, start_new_session=True, preexec_fn=limits)
            try:
                return program.wait(seconds) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                try:
                    os.killpg(program.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                program.wait()

    def verdict(self, mutant, seconds):
        """"noticed", "SURVIVED" or "does not compile"."""
        file = os.path.join(self.source, mutant.file)
        with open(file, encoding="utf-8") as source:
            text = source.read()
        try:
            with open(file, "w", encoding="utf-8") as source:
                source.write(mutant.applied(text))
            if not self.compiles(mutant.folder()):
                return "does not compile"
            return "SURVIVED" if self.suite_passes(mutant.folder(), seconds) else "noticed"
        finally:
            with open(file, "w", encoding="utf-8") as source:
                source.write(text)


def limits_of_suites(copy, folders):
    """Ten times what each suite takes as the sources are, which it has to pass."""
    seconds = {}
    for folder in folders:
        begin = time.monotonic()
        if not copy.suite_passes(folder, 600):
            sys.exit(f"mutants: {folder}_tests fails without a change")
        seconds[folder] = 10 + 10 * (time.monotonic() - begin)
    return seconds


def try_all(copies, chosen, count, seconds):
    """Tries places until each folder has its share of mutants that compile; yields them with their verdicts."""
    free = queue.Queue()
    for copy in copies:
        free.put(copy)

    def one(mutant):
        copy = free.get()
        try:
            return mutant, copy.verdict(mutant, seconds[mutant.folder()])
        finally:
            free.put(copy)

    share = -(-count // len(chosen))
    with concurrent.futures.ThreadPoolExecutor(len(copies)) as pool:
        for every in chosen.values():
            in_file, counted, waiting = {}, 0, iter(every)
            while counted < share:
                batch = []
                for mutant in waiting:
                    if in_file.get(mutant.file, 0) < max(1, count // 12):
                        in_file[mutant.file] = in_file.get(mutant.file, 0) + 1
                        batch.append(mutant)
                    if len(batch) == min(len(copies), share - counted):
                        break
                if not batch:
                    break
                for mutant, verdict in pool.map(one, batch):
                    if verdict == "does not compile":
                        in_file[mutant.file] -= 1
                    else:
                        counted += 1
                    yield mutant, verdict


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1, 1 << 31))
    options.add_argument("--count", type=int, default=200)
    options.add_argument("--jobs", type=int, default=1)
    options.add_argument("--folder", action="append", choices=FOLDERS)
    options.add_argument("--at", action="append", metavar="FILE:LINE:COLUMN", help="try this place alone")
    given = options.parse_args()

    folders = tuple(given.folder or FOLDERS)
    if given.at:
        folders = tuple(dict.fromkeys(at.split("/")[0] for at in given.at))
        chosen = {folder: [m for m in drawn([folder], 0)[folder] if m.name() in given.at] for folder in folders}
        given.count = 1000
    else:
        print(f"seed {given.seed}, {given.count} changes", flush=True)
        chosen = drawn(folders, given.seed)
    copies = [BuildCopy(number) for number in range(given.jobs)]
    seconds = limits_of_suites(copies[0], folders)

    noticed, survived = {folder: 0 for folder in folders}, {folder: 0 for folder in folders}
    for mutant, verdict in try_all(copies, chosen, given.count, seconds):
        print(f"{verdict:16} {mutant.name()}: {mutant.old} -> {mutant.new or 'nothing'}    {mutant.source}", flush=True)
        if verdict != "does not compile":
            (noticed if verdict == "noticed" else survived)[mutant.folder()] += 1
    for folder in folders:
        print(f"{folder:7} {noticed[folder]:4} of {noticed[folder] + survived[folder]:4} noticed")
    total = sum(noticed.values()) + sum(survived.values())
    print(f"noticed {100 * sum(noticed.values()) / max(1, total):.1f} % of {total}")


main()
