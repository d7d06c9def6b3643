#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The window over a long time, and at its sudden end.

    tests/app/with_display.sh --wm --limit 90000 env TALLYQUILL_APP=.../Tallyquill.app/Tallyquill \\
        tests/faults/window.py [previews=SECONDS] [use=SECONDS] [entries=N] [kills=N] [changes=N] [memory=N]

previews  types and takes back, ten keys a second: the memory grows by less than 5 MB
use       types entries, five keys a second, and looks at lists, the history and the search: by at most 10 MB
entries   so many entries from scripts: once the transcript is as long as it gets, memory grows by at most 2 MB
kills     ends the program so many times while definitions are typed: the definitions file is whole each time, and
          has what was answered two seconds before
changes   takes the folder away, replaces it and so on, each so many times, and ends the program by SIGTERM: all is there
memory    so many times, no more than 3 MB more are to be had: the same file, and a message when the program ends

Ends with 1 when something does not hold.
"""
import collections
import os
import random
import resource
import shutil
import signal
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "app", "end_to_end"))

from calculator_window import FUNCTIONS_FILE, CalculatorWindow, run, wait_until  # noqa: E402
from faults import (KEPT_AFTER, Person, jump_clock, link_folder, put_folder_in_place, refuse_folder,  # noqa: E402
                    take_folder_away)
from measures import answer_first_questions, megabytes, settle, write_script  # noqa: E402
from soak import ENTRIES  # noqa: E402

SEED = 20240229
LONGEST_TRANSCRIPT = 30_000  # entries, amply
PREVIEWED = ["sin({n})+sqrt({m})*1.25", "{n} km->mi", "0x{m}F & 0b1010", "f{m}(x)=x^{m}+{n}", "{n}/7*(3+{m}", "pi^{m}"]


def ten_keys_a_second(text):
    run("xdotool", "type", "--delay", "200", text)  # half of it passes between two keys


def five_keys_a_second(text):
    run("xdotool", "type", "--delay", "400", text)


def while_time(title, window, seconds, act):
    """Does act(0), act(1) and so on for so long; how many megabytes the memory has grown by."""
    settle(window)
    start = megabytes(window)
    end = time.monotonic() + seconds
    shown = time.monotonic()
    step = 0
    while time.monotonic() < end:
        act(step)
        step += 1
        if time.monotonic() > shown + 600:
            shown += 600
            print(f"{title}, {(shown - end + seconds) / 60:.0f} minutes: {megabytes(window) - start:+.1f} MB", flush=True)
    settle(window)
    grown = megabytes(window) - start
    print(f"{title}: {start:.1f} MB at the start, {grown:+.1f} MB behind {step} steps in {seconds} s", flush=True)
    return grown


def previews(seconds):
    folder = tempfile.mkdtemp()
    answer_first_questions(folder)
    window = CalculatorWindow(folder)

    def act(step):
        ten_keys_a_second(PREVIEWED[step % len(PREVIEWED)].format(n=step, m=step % 90))
        window.key("Escape")

    grown = while_time("previews", window, seconds, act)
    window.quit()
    return grown < 5


def use(seconds):
    folder = tempfile.mkdtemp()
    answer_first_questions(folder)
    window = CalculatorWindow(folder)
    others = [("Up", "Up", "Return"), ("ctrl+a", "ctrl+c", "End"), ("ctrl+z", "Escape"), ("ctrl+r", "k", "m", "Return", "Escape")]

    def act(step):
        five_keys_a_second(ENTRIES[step % len(ENTRIES)].format(n=step, m=step % 90))
        window.key("Return")
        time.sleep(1)
        if step % 10 == 9:
            window.key(*others[step // 10 % len(others)])

    grown = while_time("use", window, seconds, act)
    window.quit()
    return grown <= 10


def entries(count):
    folder = tempfile.mkdtemp()
    answer_first_questions(folder)
    window = CalculatorWindow(folder)
    tenth = count // 10
    figures = {}
    for start in range(0, count, tenth):
        lines = [ENTRIES[i % len(ENTRIES)].format(n=i, m=i % 90) for i in range(start, start + tenth)]
        window.start_again(write_script(folder, "entries.script", [*lines, f"behind={start}"]))
        wait_until("the last entry", lambda start=start: f"behind={start}" in window.functions_file(), 3600)
        settle(window)
        figures[start + tenth] = megabytes(window)
        print(f"{start + tenth:>9} entries: {megabytes(window):.1f} MB", flush=True)
    window.quit()
    grown = max(figures.values()) - next(memory for done, memory in figures.items() if done >= LONGEST_TRANSCRIPT)
    print(f"grown by {grown:+.1f} MB behind {LONGEST_TRANSCRIPT} entries", flush=True)
    return grown <= 2


class WindowsPerson(Person):
    """Whose files are where CalculatorWindow has them. `settings`: a folder in which the first questions are answered."""

    def __init__(self, settings):
        super().__init__()
        self.folder = self.home + "/Tallyquill"
        self.file = f"{self.folder}/{FUNCTIONS_FILE}"
        shutil.copytree(settings + "/Tallyquill", self.folder)


def repeat(count, run):
    """Does run(person, dice) so many times, each for a new person; how many files were torn or lacked a definition."""
    settings = tempfile.mkdtemp()
    answer_first_questions(settings)
    failures = 0
    for i in range(count):
        person = WindowsPerson(settings)
        run(person, random.Random(f"{SEED} {i}"))
        torn, lost = person.faults()
        if torn or lost:
            failures += 1
            print(f"run {i}: {torn or 'whole'}; lost: {lost}", flush=True)
        person.remove()
    return failures


def ran(window):
    """Nanoseconds of the processor so far, of the thread that gets the keys."""
    with open(f"/proc/{window.process.pid}/schedstat", encoding="ascii") as file:
        return int(file.read().split()[0])


def is_waiting(window):
    """Whether the program waits for events: it does not wait for the processor then."""
    with open(f"/proc/{window.process.pid}/stat", encoding="ascii") as file:
        return file.read().rsplit(")", 1)[1].split()[0] == "S"


def is_at_rest(window):
    """Not only between two keys."""
    before = ran(window)
    for _ in range(5):
        time.sleep(0.02)
        if not is_waiting(window) or ran(window) != before:
            return False
    return True


def define(window, line):
    """Returns when it is answered."""
    before = ran(window)
    window.enter(line)
    wait_until("the answer", lambda: ran(window) > before and is_at_rest(window))
    return line


def kill_once(person, dice):
    """Definitions without a rest; the end comes around the second save or a later one."""
    window = CalculatorWindow(person.home)
    typed = []
    end = time.monotonic() + KEPT_AFTER + dice.uniform(0, 2.5)
    while time.monotonic() < end:
        typed.append((define(window, f"v{len(typed)}={dice.randrange(1000)}"), time.monotonic()))
    time.sleep(dice.uniform(0, 0.05))
    window.process.send_signal(signal.SIGKILL)
    killed = time.monotonic()
    window.kill()
    person.due = {line for line, when in typed if killed - when > KEPT_AFTER}
    return len(person.due)


def kills(count):
    due = 0

    def run_once(person, dice):
        nonlocal due
        due += kill_once(person, dice)

    failures = repeat(count, run_once)
    print(f"{count} kills, {due} definitions due, {failures} files torn or without one of them", flush=True)
    return failures == 0


def changes(count):
    """As with a prompt (faults.with_change)."""
    passed = True
    for change in (take_folder_away, link_folder, refuse_folder, put_folder_in_place, jump_clock):

        def run_once(person, dice, change=change):
            window = CalculatorWindow(person.home)
            person.due = {define(window, f"a={dice.randrange(1000)}")}
            wait_until("the definition", lambda: person.due <= set(person.lines()))
            undo = change(person, dice)
            person.due.add(define(window, f"b={dice.randrange(1000)}"))
            if undo:
                time.sleep(1.5)
                undo()
            person.due.add(define(window, f"c={dice.randrange(1000)}"))
            window.process.send_signal(signal.SIGTERM)
            wait_until("the end", lambda: window.process.poll() is not None)
            window.kill()

        failures = repeat(count, run_once)
        print(f"{change.__name__}: {count} runs, {failures} files torn or without a definition", flush=True)
        passed = passed and failures == 0
    return passed


def lose_memory_once(person, dice):
    """No more than a few MB are left while definitions are typed and long ones run. How the program ended: "" when it
    did not end, else its last remark."""
    window = CalculatorWindow(person.home)
    typed = [f"v{i}={dice.randrange(1000)}" for i in range(5)]
    for line in typed:
        window.enter(line)
    wait_until("the definitions", lambda: set(typed) <= set(person.lines()))
    person.due = set(typed)
    with open(f"/proc/{window.process.pid}/statm", encoding="ascii") as file:
        size = int(file.read().split()[0]) * os.sysconf("SC_PAGE_SIZE")
    limit = size + dice.randrange(3_000_000)
    resource.prlimit(window.process.pid, resource.RLIMIT_AS, (limit, limit))
    lines = [f"w{i}(x)=x+{'1+' * dice.randrange(4000)}1" for i in range(2000)]
    script = write_script(person.home, "memory.script", lines)
    window.hand_over(script)
    end = time.monotonic() + 12
    while window.process.poll() is None and time.monotonic() < end:
        time.sleep(0.1)
    ended = window.process.poll() is not None
    remark = (window.remarks().strip().splitlines() or [f"no remark, status {window.process.poll()}"])[-1] if ended else ""
    window.kill()
    os.remove(script)
    return remark


def memory(count):
    ends = collections.Counter()

    def run_once(person, dice):
        ends[lose_memory_once(person, dice)] += 1

    failures = repeat(count, run_once)
    for remark, times in ends.most_common():
        print(f"{times:>5} {remark or 'went on'}", flush=True)
    print(f"{count} runs short of memory, {failures} files torn or without a definition", flush=True)
    return failures == 0


def main():
    measures = {"previews": previews, "use": use, "entries": entries, "kills": kills, "changes": changes, "memory": memory}
    passed = True
    for argument in sys.argv[1:]:
        name, amount = argument.split("=")
        if not measures[name](int(amount)):
            passed = False
            print(f"{argument}: does not hold", flush=True)
    return 0 if passed else 1


if __name__ == "__main__":
    sys.exit(main())
