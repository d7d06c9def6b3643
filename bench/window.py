#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What the window takes: its start, a key press, its rest, and memory after long use, each beside its bar.

    tests/app/with_display.sh --wm --limit 900 env TALLYQUILL_APP=.../Tallyquill.app/Tallyquill \\
        /usr/bin/python3 bench/window.py [start] [key] [idle] [memory]

The processor's time is that of the process, from /proc, so that it does not depend on what else runs.
The time of the start does: it is that of the clock, the median of seven. The exit status is 1 when a bar is not met.
"""

import os
import statistics
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
STARTS = 7


def report(what, value, bar, unit, remark=""):
    """Prints a figure beside the most that it may be; whether it is no more."""
    is_met = value <= bar
    verdict = "" if is_met else "  not met"
    print(f"{what}: {value:.2f} {unit}, bar {bar} {unit}{verdict}{remark and '; ' + remark}", flush=True)
    return is_met


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
    for _ in range(STARTS):
        begin = time.monotonic()
        window = CalculatorWindow(folder, asks=True)  # returns when the window manager has it
        walls.append(time.monotonic() - begin)
        costs.append(used(window))
        window.activate()
        window.quit()
    remark = f"at best {min(walls):.2f} s; processor {statistics.median(costs):.2f} s, at best {min(costs):.2f} s"
    return report(f"start, {DEFINITIONS} definitions", statistics.median(walls), 0.5, "s", remark)


def measure_key(folder):
    text = "7" * 100
    lines = [f'echo "{text}"'] * (TRANSCRIPT // (len(text) + 1))
    window = CalculatorWindow(folder, write_script(folder, "long.script", lines))
    settle(window)
    before = used(window)
    run("xdotool", "type", "--delay", "25", "1+" * (KEYS // 2))
    settle(window)
    typed = used(window) - before
    window.quit()
    what = f"key press, transcript of {TRANSCRIPT // 1000} KB, processor"
    return report(what, 1000 * typed / KEYS, 5, "ms")


def measure_idle(folder):
    window = CalculatorWindow(folder)
    settle(window)
    before = used(window)
    time.sleep(IDLE)
    part = (used(window) - before) / IDLE
    window.quit()
    return report(f"idle for {IDLE} s", 100 * part, 0.1, "% of a core")


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
    end = megabytes(window)
    window.quit()
    remark = f"{start:.1f} MB at the start, {entries - start:+.1f} MB behind the entries"
    what = f"memory behind {ENTRIES} entries and {PREVIEWS} previews"
    return report(what, end - start, 10, "MB more", remark)


def main():
    measures = {"start": measure_start, "key": measure_key, "idle": measure_idle, "memory": measure_memory}
    folder = prepared()
    met = [measures[name](folder) for name in sys.argv[1:] or measures]
    sys.exit(0 if all(met) else 1)


if __name__ == "__main__":
    main()
