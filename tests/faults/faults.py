#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Ends the program, or changes its files, at random moments, and looks at what is kept.

Each run is a prompt in a pseudo-terminal, in turn with the editor and without, at which definitions are made one
after the other. Behind it the definitions file has to be whole, and to have each definition that was answered more
than two seconds before; after a signal that asks for the end, all of them. Prints a table, and ends with 1 when
something was lost. Its columns: the runs, those that ended in the middle of a save (a new file was begun and not in
its place), the definitions that had to be there, files that were torn, runs in which a definition was lost.

    faults.py PROGRAM [--kills N] [--others N] [--jobs N] [--seed N]
"""
import argparse
import concurrent.futures
import os
import pty
import random
import select
import shutil
import signal
import sys
import tempfile
import threading
import time

KEPT_AFTER = 2.0  # seconds
HEADERS = ["### FUNCTIONS ###", "### VARIABLES ###", "### CUSTOM UNITS ###", "### HISTORY ###"]
FORKING = threading.Lock()


class Person:
    """A home folder, and what has to be in its definitions file."""

    def __init__(self):
        self.home = tempfile.mkdtemp(prefix="tallyquill-faults-")
        self.folder = self.home + "/.local/share/Tallyquill"
        self.file = self.folder + "/pelmo_functions.txt"
        self.due = set()  # lines
        self.has_editor = False

    def unfinished(self):
        """The files of saves that have begun and are not done."""
        try:
            return [name for name in os.listdir(self.folder) if ".tallyquill-" in name]
        except OSError:
            return []

    def lines(self, path=None):
        try:
            with open(path or self.file, encoding="utf-8") as file:
                return file.read().split("\n")
        except OSError:
            return []

    def faults(self, path=None):
        """What is wrong with the file: torn, lost."""
        lines = self.lines(path)
        if not lines:
            return ("", "there is no file") if self.due else ("", "")
        torn = "" if [l for l in lines if l in HEADERS] == HEADERS and lines[-1] == "" else "\n".join(lines)
        return torn, " ".join(sorted(self.due - set(lines)))

    def remove(self):
        shutil.rmtree(self.home, ignore_errors=True)


class Prompt:
    """The program in a terminal of its own."""

    def __init__(self, program, person, **environment):
        variables = {"HOME": person.home, "TERM": "dumb", "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8"}
        if person.has_editor:
            variables.update(TERM="xterm", INPUTRC="/dev/null")
        variables.update(environment)
        style = "--color=never" if person.has_editor else "--plain"
        with FORKING:
            self.child, self.terminal = pty.fork()
            if self.child == 0:
                signal.signal(signal.SIGHUP, signal.SIG_DFL)  # nohup ignores it, and so would the program
                os.execve(program, [program, style], variables)
        self.shown = ""
        self.answered = []  # lines of definitions, with the time of their answer
        self.wait_for("> ")

    def wait_for(self, text):
        end = time.monotonic() + 30
        while text not in self.shown:
            if time.monotonic() > end or not select.select([self.terminal], [], [], 30)[0]:
                raise RuntimeError("no answer: " + self.shown)
            self.shown += os.read(self.terminal, 65536).decode("utf-8", "replace")
        self.shown = self.shown[self.shown.index(text) + len(text):]

    def define(self, name, value):
        os.write(self.terminal, f"{name}={value}\n".encode())
        self.wait_for(f"{name} = {value}")
        self.wait_for("> ")
        self.answered.append((f"{name}={value}", time.monotonic()))

    def end(self, number):
        """Sends the signal. What was answered two seconds before is due; after others than SIGKILL, all."""
        now = time.monotonic()
        os.kill(self.child, number)
        os.waitpid(self.child, 0)
        os.close(self.terminal)
        return {line for line, when in self.answered if number != signal.SIGKILL or now - when > KEPT_AFTER}


def signaled(number, programs=1):
    """Definitions without a rest in so many programs, and a signal to each at a random moment. Whatever ends
    between two saves, or in one, is looked at."""

    def run(program, person, dice):
        prompts = [Prompt(program, person) for _ in range(programs)]
        # A save comes each second: the signals come around the second one to the fourth.
        end = time.monotonic() + dice.uniform(KEPT_AFTER, KEPT_AFTER + 2)
        value = 0
        while time.monotonic() < end:
            for i, prompt in enumerate(prompts):
                prompt.define(f"{'abc'[i]}{value}", value)
            value += 1
            time.sleep(0.01)
        for prompt in prompts:
            person.due |= prompt.end(number)
            time.sleep(dice.uniform(0, 0.01))

    return run


def killed_among_saves(program, person, dice):
    """Behind a save that is old enough, another one is due. The end comes around the time when it begins, or, every
    second time, as soon as it has begun."""
    prompt = Prompt(program, person)
    for value in range(3):
        prompt.define(f"w{value}", dice.randrange(1000))
    time.sleep(KEPT_AFTER + 0.1)
    for value in range(3):
        prompt.define(f"x{value}", dice.randrange(1000))
    defined = time.monotonic()
    if dice.random() < 0.5:
        time.sleep(max(0, 1.0 + dice.uniform(-0.01, 0.04)))
    else:
        while not person.unfinished() and time.monotonic() < defined + KEPT_AFTER:
            time.sleep(0.0002)
    person.due |= prompt.end(signal.SIGKILL)


def with_change(change):
    """Something happens to the files while the program runs; a second later more is defined and the program ends."""

    def run(program, person, dice):
        prompt = Prompt(program, person)
        prompt.define("a", dice.randrange(1000))
        patience = time.monotonic() + 30
        while not person.lines():
            if time.monotonic() > patience:
                raise RuntimeError("nothing was saved")
            time.sleep(0.02)
        undo = change(person, dice)
        prompt.define("b", dice.randrange(1000))
        if undo:
            time.sleep(1.5)
            undo()
        prompt.define("c", dice.randrange(1000))
        person.due |= prompt.end(signal.SIGTERM)

    return run


def take_folder_away(person, _):
    shutil.rmtree(person.folder)


def link_folder(person, _):
    os.rename(person.folder, person.home + "/elsewhere")
    os.symlink(person.home + "/elsewhere", person.folder)


def put_folder_in_place(person, _):
    os.rename(person.file, person.file + ".away")
    os.mkdir(person.file)

    def undo():
        os.rmdir(person.file)
        os.rename(person.file + ".away", person.file)

    return undo


def refuse_folder(person, _):
    os.rename(person.folder, person.folder + ".away")
    with open(person.folder, "w", encoding="utf-8") as file:
        file.write("no folder")

    def undo():
        os.remove(person.folder)
        os.rename(person.folder + ".away", person.folder)

    return undo


def jump_clock(person, dice):
    when = time.time() + dice.choice([-1, 1]) * dice.uniform(10, 10 ** 9)
    os.utime(person.file, (when, when))


SCENARIOS = [
    ("kill -9 while definitions are made", "kills", 0.5, signaled(signal.SIGKILL)),
    ("kill -9 around a save", "kills", 0.4, killed_among_saves),
    ("kill -9 of two programs at once", "kills", 0.1, signaled(signal.SIGKILL, 2)),
    ("SIGTERM", "others", 1, signaled(signal.SIGTERM)),
    ("SIGHUP", "others", 1, signaled(signal.SIGHUP)),
    ("SIGTERM of two programs at once", "others", 1, signaled(signal.SIGTERM, 2)),
    ("the folder is taken away", "others", 1, with_change(take_folder_away)),
    ("the folder is replaced by a link", "others", 1, with_change(link_folder)),
    ("the folder is replaced by a file for a while", "others", 1, with_change(refuse_folder)),
    ("the file is replaced by a folder for a while", "others", 1, with_change(put_folder_in_place)),
    ("the file's time jumps", "others", 1, with_change(jump_clock)),
]


class Result:
    """Of one run: what was torn and what was lost, or left; whether a save was under way; how much had to be there."""

    def __init__(self, program, run, seed):
        dice = random.Random(seed)
        person = Person()
        person.has_editor = dice.random() < 0.5
        try:
            run(program, person, dice)
            self.was_saving = bool(person.unfinished())
            self.due = len(person.due)
            torn, lost = person.faults()
            after = Prompt(program, person)  # reads what is there, removes what is left, and adds to it
            after.define("behind", 1)
            person.due |= after.end(signal.SIGTERM)
            torn_after, lost_after = person.faults()
            left = [name for name in os.listdir(person.folder) if ".tallyquill-" in name or ".unreadable" in name]
            self.torn = torn or torn_after
            self.lost = " ".join([lost, lost_after, *left]).strip()
        finally:
            person.remove()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("program")
    parser.add_argument("--kills", type=int, default=1000)
    parser.add_argument("--others", type=int, default=20, help="runs of each other row")
    parser.add_argument("--jobs", type=int, default=16)
    parser.add_argument("--seed", type=int, default=20240229)
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    print(f"seed {options.seed}\n\n| What happens | Runs | In a save | Definitions due | Torn files | Runs that lost one |")
    print("|---|---:|---:|---:|---:|---:|")
    failures = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for title, kind, share, run in SCENARIOS:
            count = max(1, round(getattr(options, kind) * share))
            seeds = [f"{options.seed} {title} {i}" for i in range(count)]
            results = list(pool.map(lambda seed, run=run: Result(program, run, seed), seeds))
            torn = [result.torn for result in results if result.torn]
            lost = [result.lost for result in results if result.lost]
            saving, due = sum(result.was_saving for result in results), sum(result.due for result in results)
            print(f"| {title} | {count} | {saving} | {due} | {len(torn)} | {len(lost)} |", flush=True)
            failures += [f"{title}: {text}" for text in (torn + lost)[:3]]
    print("\n" + "\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
