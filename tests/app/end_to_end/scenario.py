# SPDX-License-Identifier: MIT
"""What the tests of the built application share: folders that have seen a first start, and the command line."""

import functools
import os
import shutil
import sys
import tempfile
import unittest

from calculator_window import DEFAULT_BUTTON, OTHER_BUTTON, SETTINGS_FILE, CalculatorWindow


@functools.lru_cache(maxsize=None)
def first_settings():
    """The settings that one first start leaves, whose questions are answered; those of all tests."""
    folder = tempfile.mkdtemp()
    window = CalculatorWindow(folder, asks=True)
    try:
        window.answer(OTHER_BUTTON)  # the tutorial is offered: "No thanks."
        window.enter("1+1")
        window.key("alt+a", "alt+c")
        window.answer(DEFAULT_BUTTON)  # a tip follows the first copy out of the transcript
        window.key("End")
        window.wait_for_whole_text("> 1+1\nans = 2\n\n> ")
        status = window.quit()
        assert status == 0, f"exit status {status}: {window.remarks()}"
    finally:
        window.kill()
    path = os.path.join(folder, "Tallyquill", SETTINGS_FILE)
    assert os.path.exists(path), "the first start left no settings"
    return path


class Scenario(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        os.mkdir(os.path.join(self.folder, "Tallyquill"))
        shutil.copy(first_settings(), os.path.join(self.folder, "Tallyquill"))

    def start(self, *arguments):
        window = CalculatorWindow(self.folder, *arguments)
        self.addCleanup(window.kill)
        return window

    def quit(self, window):
        self.assertEqual(window.quit(), 0)


def failed_tests(result):
    return [test.id().split(".")[-1] for test, _ in result.failures + result.errors]


def main(tests):
    """Runs the tests of the class that the command line names, or all; ends with their status.

    A test that fails gets one more try, and that is said: keys and clicks from outside can be lost on a machine that
    is busy, and a window manager has its own mind. What fails twice is a failure."""
    names = sys.argv[1:]
    loader = unittest.TestLoader()
    suite = loader.loadTestsFromNames(names, tests) if names else loader.loadTestsFromTestCase(tests)
    runner = unittest.TextTestRunner(verbosity=2)
    result = runner.run(suite)
    failed = failed_tests(result)
    if failed and len(failed) <= 3:
        print(f"SECOND TRY of {', '.join(failed)}", file=sys.stderr)
        again = runner.run(loader.loadTestsFromNames(failed, tests))
        failed = failed_tests(again)
    sys.exit(0 if not failed and result.testsRun > 0 else 1)
