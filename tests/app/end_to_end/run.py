# SPDX-License-Identifier: MIT
"""The built application from start to end, on a display: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/run.py [TEST ...]
"""

import os
import shutil
import subprocess
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
    run,
    wait_until,
    windows,
)

# Pixels from the corner of the window, whose menu bar comes first.
HEX_SEGMENT = (111, 35)
FUNCTIONS_BUTTON = (350, 35)
FIRST_FUNCTION = (350, 56)


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

    def test_the_window_comes_back_where_it_was(self):
        window = self.start()
        run("xdotool", "windowsize", window.id, "610", "370")
        run("xdotool", "windowmove", window.id, "231", "142")
        place = window.rest()
        self.assertEqual(place[2:], (610, 370))
        self.quit(window)
        for _ in range(2):  # nor does it creep from start to start
            window = self.start()
            self.assertEqual(window.rest(), place)
            self.quit(window)

    def test_the_window_snaps_to_the_edge_of_the_screen(self):
        window = self.start()
        lefts = []
        for left in ("0", "10", "40"):
            run("xdotool", "windowmove", window.id, left, "200")
            lefts.append(window.rest()[0])
        self.assertEqual(lefts, [lefts[0], lefts[0], lefts[0] + 40])
        self.quit(window)

    def test_the_end_of_the_preferences_is_not_the_end_of_a_minimised_calculator(self):
        window = self.start()
        window.key("alt+comma")
        panel = wait_until("the preferences", lambda: next((n for n, t in windows() if "Preferences" in t), None))
        run("xdotool", "windowminimize", window.id)
        wait_until("the minimised window", window.is_minimised)
        run("xdotool", "windowactivate", "--sync", panel)
        window.key("alt+w")
        wait_until("the end of the panel", lambda: panel not in (n for n, _ in windows()))
        time.sleep(1)
        self.assertIsNone(window.process.poll())
        window.activate()
        window.enter("1+1")
        window.wait_for_text("\nans = 2\n\n> ")
        self.quit(window)

    def test_the_menu_hides_the_window_behind_the_preferences(self):
        window = self.start()
        window.key("alt+comma")
        wait_until("the preferences", lambda: next((n for n, t in windows() if "Preferences" in t), None))
        window.key("alt+h")
        wait_until("the hidden window", window.is_minimised)
        window.activate()
        wait_until("an opaque window", lambda: window.opacity() == 1)
        self.quit(window)

    def test_a_window_that_was_closed_comes_back_where_it_was(self):
        window = self.start()
        run("xdotool", "windowmove", window.id, "301", "202")
        place = window.rest()
        window.key("alt+w")
        self.assertEqual(window.wait_for_end(), 0)
        window = self.start()
        self.assertEqual(window.rest(), place)
        self.quit(window)

    def test_the_window_does_not_become_too_small(self):
        window = self.start()
        run("xdotool", "windowsize", window.id, "300", "100")
        _, _, width, height = window.rest()
        self.assertGreaterEqual(width, 398)  # with the window manager's frame 400 x 150 or more
        self.assertGreaterEqual(height, 125)
        self.quit(window)

    def test_the_base_changes_by_the_control_and_by_the_menu(self):
        window = self.start()
        window.enter("255")
        window.press(*HEX_SEGMENT)
        window.wait_for_text("\n255 = 0x00FF\n\n> ")
        window.enter("16")
        window.wait_for_text("\nans = 0x0010\n\n> ")
        window.key("alt+2")  # Display, Decimal
        window.wait_for_text("\n16 = 16\n\n> ")
        self.quit(window)
        window = self.start()
        window.enter("17")
        window.wait_for_text("\nans = 17\n\n> ")
        self.quit(window)

    def test_a_function_is_chosen_and_its_parameter_overtyped(self):
        window = self.start()
        window.enter("area(wide,high)=wide*high")
        window.press(*FUNCTIONS_BUTTON, to=FIRST_FUNCTION)
        window.type("5")
        window.wait_for_text("\n> area(5,high)")
        self.quit(window)

    def test_escape_hides_and_the_window_manager_brings_the_window_back(self):
        window = self.start()
        place = window.rest()
        window.key("Escape")
        wait_until("the hidden window", window.is_minimised)
        self.assertEqual(window.opacity(), 0)
        window.activate()
        wait_until("an opaque window", lambda: not window.is_minimised() and window.opacity() == 1)
        self.assertEqual(window.rest(), place)
        window.enter("1+1")
        window.wait_for_text("\nans = 2\n\n> ")
        self.quit(window)

    def test_the_end_of_a_hidden_window_keeps_its_place(self):
        window = self.start()
        place = window.rest()
        window.key("Escape")
        wait_until("the hidden window", window.is_minimised)
        window.process.terminate()
        self.assertEqual(window.wait_for_end(), 0)
        window = self.start()
        self.assertEqual(window.rest(), place)
        self.quit(window)

    def test_the_window_fades_while_another_program_has_the_focus(self):
        window = self.start()
        other = subprocess.Popen(["xmessage", "the other one"], stderr=subprocess.DEVNULL)
        try:
            number = wait_until("the other", lambda: next((n for n, title in windows() if title == "xmessage"), None))
            run("xdotool", "windowactivate", "--sync", number)
            wait_until("a faded window", lambda: abs(window.opacity() - 0.8) < 0.001)
            window.activate()
            wait_until("an opaque window", lambda: window.opacity() == 1)
        finally:
            other.terminate()
            other.wait()
        self.quit(window)


if __name__ == "__main__":
    names = sys.argv[1:]
    loader = unittest.TestLoader()
    tests = loader.loadTestsFromNames(names, EndToEnd) if names else loader.loadTestsFromTestCase(EndToEnd)
    result = unittest.TextTestRunner(verbosity=2).run(tests)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)
