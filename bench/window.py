#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What the window takes: its start, a key press, its rest, and memory after long use.

    tests/app/with_display.sh --wm --limit 900 env TALLYQUILL_APP=.../Tallyquill.app/Tallyquill \\
        /usr/bin/python3 bench/window.py [start] [key] [idle] [memory]

The processor's time is that of the process, from /proc, so that it does not depend on what else runs.
"""

import os
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "app", "end_to_end"))

from calculator_window import FUNCTIONS_FILE, CalculatorWindow, run  # noqa: E402
from measures import answer_first_questions, megabytes, settle, used, write_script  # noqa: E402

DEFINITIONS = 1000
TRANSCRIPT = 300_000  # bytes
KEYS = 400
IDLE = 30  # seconds
ENTRIES = 10_000
PREVIEWS = 5_000


def prepared():
    """A folder with settings whose questions are answered, and definitions."""
    folder = tempfile.mkdtemp()
    answer_first_questions(folder)
    halves = range(DEFINITIONS // 2)
    with open(os.path.join(folder, "Tallyquill", FUNCTIONS_FILE), "w", encoding="ascii") as file:
        file.write("### FUNCTIONS ###\n")
        file.writelines(f"fn{i}(x)=x^2+{i}\n" for i in halves)
        file.write("### VARIABLES ###\n")
        file.writelines(f"va{i}={i}.5\n" for i in halves)
        file.write("### CUSTOM UNITS ###\n### HISTORY ###\n")
    return folder


def measure_start(folder):
    walls, costs = [], []
    for _ in range(7):
        begin = time.monotonic()
        window = CalculatorWindow(folder, asks=True)  # returns when the window manager has it
        walls.append(time.monotonic() - begin)
        costs.append(used(window))
        window.activate()
        window.quit()
    print(f"start, {DEFINITIONS} definitions: {min(walls):.2f} s at best, processor {min(costs):.2f} s")


def measure_key(folder):
    text = "7" * 100
    lines = [f'echo "{text}"'] * (TRANSCRIPT // (len(text) + 1))
    window = CalculatorWindow(folder, write_script(folder, "long.script", lines))
    settle(window)
    before = used(window)
    run("xdotool", "type", "--delay", "25", "1+" * (KEYS // 2))
    settle(window)
    typed = used(window) - before
    print(f"key press, transcript of {TRANSCRIPT // 1000} KB: {1000 * typed / KEYS:.2f} ms of the processor")
    window.quit()


def measure_idle(folder):
    window = CalculatorWindow(folder)
    settle(window)
    before = used(window)
    time.sleep(IDLE)
    print(f"idle for {IDLE} s: {100 * (used(window) - before) / IDLE:.2f} % of a core")
    window.quit()


def measure_memory(folder):
    window = CalculatorWindow(folder)
    settle(window)
    start = megabytes(window)
    window.start_again(write_script(folder, "use.script", [f"{i}*1.5+sin({i})" for i in range(ENTRIES)]))
    settle(window)
    entries = megabytes(window)
    for _ in range(PREVIEWS // 20):
        run("xdotool", "type", "--delay", "12", "sin(30)+sqrt(2)*1.25")  # as fast as keys repeat
        run("xdotool", "key", "Escape")
    settle(window)
    print(
        f"memory: {start:.1f} MB at the start, {entries - start:+.1f} MB behind {ENTRIES} entries, "
        f"{megabytes(window) - start:+.1f} MB behind {PREVIEWS} previews more"
    )
    window.quit()


def main():
    measures = {"start": measure_start, "key": measure_key, "idle": measure_idle, "memory": measure_memory}
    folder = prepared()
    for name in sys.argv[1:] or measures:
        measures[name](folder)


if __name__ == "__main__":
    main()
