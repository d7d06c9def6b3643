# SPDX-License-Identifier: MIT
"""What a running copy of the application uses, from /proc; see calculator_window.py."""

import os
import time

from calculator_window import OTHER_BUTTON, CalculatorWindow


def used(window):
    """Seconds of processor time so far, of the threads that are there."""
    tasks = f"/proc/{window.process.pid}/task"
    total = 0
    for task in os.listdir(tasks):
        try:
            with open(f"{tasks}/{task}/schedstat", encoding="ascii") as file:
                total += int(file.read().split()[0])
        except FileNotFoundError:
            pass  # it has ended meanwhile
    return total / 1e9


def megabytes(window):
    """The resident memory."""
    with open(f"/proc/{window.process.pid}/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 1e6


def settle(window):
    """Waits until the program uses nothing any more."""
    before = -1.0
    while used(window) > before + 0.005:  # the cursor blinks for ten seconds
        before = used(window)
        time.sleep(1)


def write_script(folder, name, lines):
    """The path of a new script with these lines."""
    path = os.path.join(folder, name)
    with open(path, "w", encoding="ascii") as file:
        file.write("\n".join(lines) + "\n")
    return path


def answer_first_questions(folder):
    """A first start over this folder, whose question is answered, so that the next ones ask nothing."""
    window = CalculatorWindow(folder, asks=True)
    window.answer(OTHER_BUTTON)
    window.quit()
