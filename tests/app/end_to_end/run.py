# SPDX-License-Identifier: MIT
"""The built application from start to end, on a display: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/run.py [TEST ...]
"""

import os
import shutil
import sys
import tempfile
import time
import unittest

from calculator_window import (
    DEFAULT_BUTTON,
    FUNCTIONS_FILE,
    OTHER_BUTTON,
    SETTINGS_FILE,
    CalculatorWindow,
)


def setUpModule():
    """One first start, whose questions are answered; the settings that it leaves are those of the other tests."""
    global first_settings
    folder = tempfile.mkdtemp()
    window = CalculatorWindow(folder, asks=True)
    try:
        window.answer(OTHER_BUTTON)  # the tutorial is offered: "No thanks."
        window.enter("1+1")
        window.key("alt+a", "alt+c")
        window.answer(DEFAULT_BUTTON)  # a tip follows the first copy out of the transcript
        window.key("End")
        window.wait_for_text("> 1+1\nans = 2\n\n> ")
        status = window.quit()
        assert status == 0, f"exit status {status}: {window.remarks()}"
    finally:
        window.kill()
    first_settings = os.path.join(folder, "Tallyquill", SETTINGS_FILE)
    assert os.path.exists(first_settings), "the first start left no settings"


class EndToEnd(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        os.mkdir(os.path.join(self.folder, "Tallyquill"))
        shutil.copy(first_settings, os.path.join(self.folder, "Tallyquill"))

    def start(self, *arguments):
        window = CalculatorWindow(self.folder, *arguments)
        self.addCleanup(window.kill)
        return window

    def quit(self, window):
        self.assertEqual(window.quit(), 0)

    def test_return_gives_the_answer(self):
        window = self.start()
        window.enter("(1+2)*3")
        window.wait_for_text("> (1+2)*3\nans = 9\n\n> ")
        self.quit(window)

    def test_the_result_is_previewed_while_one_types(self):
        window = self.start()
        empty = window.status_line_beside("> ")
        window.type("2+3")
        five = window.status_line_beside("> 2+3")
        self.assertNotEqual(five, empty)
        window.key("BackSpace")
        window.type("4")
        self.assertNotEqual(window.status_line_beside("> 2+4"), five)
        window.key("BackSpace")
        window.type("3")
        self.assertEqual(window.status_line_beside("> 2+3"), five)
        window.key("Escape")
        self.assertEqual(window.status_line_beside("> "), empty)
        self.quit(window)

    def test_up_recalls_and_escape_clears(self):
        window = self.start()
        window.enter("11+1")
        window.enter("22+2")
        window.key("Up", "Up")
        window.wait_for_text("\n> 11+1")
        window.key("Down")
        window.wait_for_text("\n> 22+2")
        window.key("Escape")
        window.wait_for_text("\nans = 24\n\n> ")
        self.quit(window)

    def test_tab_completes(self):
        window = self.start()
        window.enter("tripled(x)=3*x")
        window.type("tripl")
        window.key("Tab")
        window.wait_for_text("\n> tripled()")
        self.quit(window)

    def test_the_menu_key_with_c_copies_the_answer(self):
        window = self.start()
        window.enter("9+5")
        window.wait_for_text("\nans = 14\n\n> ")
        self.assertEqual(window.copy("alt+c"), "14")
        self.quit(window)

    def test_a_restart_restores_functions_variables_and_history(self):
        window = self.start()
        window.enter("tripled(x)=3*x")
        window.enter("width=7")
        window.enter("40+2")
        self.quit(window)

        window = self.start()
        window.type("40")
        window.key("Up")
        window.wait_for_text("> 40+2")
        window.key("Escape")
        window.enter("tripled(width)")
        window.wait_for_text("\nans = 21\n\n> ")
        self.quit(window)

    def test_a_script_named_at_the_start_is_replayed(self):
        script = os.path.join(self.folder, "doubling.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("# a comment\ntwice(x)=2*x\ntwice(21)\n")
        window = self.start(script)
        window.wait_for_text("\nans = 42\n\n> ")
        self.assertNotIn("comment", window.text())
        self.quit(window)

    def test_an_entry_survives_a_crash_three_seconds_later(self):
        window = self.start()
        window.enter("depth=5")
        time.sleep(3)
        window.kill()

        window = self.start()
        window.enter("depth*2")
        window.wait_for_text("\nans = 10\n\n> ")
        self.quit(window)

    def test_two_copies_that_quit_one_after_the_other_leave_whole_files(self):
        one = self.start()
        one.enter("first=1")
        two = self.start()
        two.enter("second=2")
        self.quit(one)
        self.quit(two)
        lines = two.functions_file()
        headers = [line for line in lines if line.startswith("###")]
        expected = ["### FUNCTIONS ###", "### VARIABLES ###", "### CUSTOM UNITS ###", "### HISTORY ###"]
        self.assertEqual(headers, expected)
        self.assertIn("second=2", lines)
        self.assertEqual(sorted(os.listdir(two.files)), [FUNCTIONS_FILE, SETTINGS_FILE])

        window = self.start()
        window.enter("second+1")
        window.wait_for_text("\nans = 3\n\n> ")
        self.quit(window)


if __name__ == "__main__":
    names = sys.argv[1:]
    loader = unittest.TestLoader()
    tests = loader.loadTestsFromNames(names, EndToEnd) if names else loader.loadTestsFromTestCase(EndToEnd)
    result = unittest.TextTestRunner(verbosity=2).run(tests)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)
