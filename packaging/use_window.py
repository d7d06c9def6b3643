#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Opens the window as a person does, types an entry, waits until it is kept, and closes the window.

    use_window.py [--first] ENTRY FILE LINE

TALLYQUILL_APP starts the window, FILE is where LINE is kept. --first: it is the first start, which asks a question.
"""
import pathlib
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "app" / "end_to_end"))
sys.dont_write_bytecode = True
from calculator_window import OTHER_BUTTON, CalculatorWindow, run, wait_until  # noqa: E402


def lines(file):
    return file.read_text(encoding="utf-8").splitlines() if file.exists() else []


def main(*arguments):
    is_first = arguments[0] == "--first"
    entry, file, line = arguments[is_first:]
    with tempfile.TemporaryDirectory() as folder:
        window = CalculatorWindow(folder, asks=is_first)
        try:
            if is_first:
                window.answer(OTHER_BUTTON)  # no tutorial
            window.enter(entry)
            wait_until(f"{line} in {file}", lambda: line in lines(pathlib.Path(file)))
            assert run("xprop", "-id", window.id, "WM_CLASS").split('"')[1] == "Tallyquill"  # as in the desktop entry
            status = window.quit()
            assert status == 0, f"the window ended with {status}: {window.remarks()}"
        finally:
            window.kill()


main(*sys.argv[1:])
