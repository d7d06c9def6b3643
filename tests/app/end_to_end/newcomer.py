# SPDX-License-Identifier: MIT
"""A person's first hour with the built application, and what may go wrong in it: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/newcomer.py [TEST ...]
"""

import os
import signal
import tempfile
import time
import unittest

from calculator_window import (
    DEFAULT_BUTTON,
    FUNCTIONS_FILE,
    OTHER_BUTTON,
    SETTINGS_FILE,
    CalculatorWindow,
    put_on_pasteboard,
    run,
    wait_until,
    windows,
)
from scenario import main

ENTRIES = ["2+3*4", "ans/7", "side=12.5", "side^2", "sqrt(2)", "sin(30)", "hyp(a,b)=sqrt(a^2+b^2)", "hyp(3,4)"]
ENTRIES += ["5 km->m", "0xff"]


class Newcomer(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()

    def start(self, *arguments, asks=False):
        window = CalculatorWindow(self.folder, *arguments, asks=asks)
        self.addCleanup(window.kill)
        return window

    def first_start(self):
        """A window whose first questions are answered."""
        window = self.start(asks=True)
        window.answer(OTHER_BUTTON)
        window.enter("1+1")
        window.key("alt+a", "alt+c")
        window.answer(DEFAULT_BUTTON)
        window.enter("clear")
        window.wait_for_whole_text("> ")
        return window

    def file(self, name):
        return os.path.join(self.folder, "Tallyquill", name)

    def test_the_tutorial_begins_with_return_and_ends_with_escape(self):
        window = self.start(asks=True)
        wait_until("the question", lambda: any(title == "" for _, title in windows()))
        time.sleep(0.5)
        window.key("Return")
        wait_until("the end of the question", lambda: all(title != "" for _, title in windows()))
        time.sleep(3)
        window.key("Escape")
        window.activate()
        window.enter("12+3")
        window.key("alt+c")  # the answer, without the tip that follows a copy of the transcript
        time.sleep(1)
        self.assertEqual(window.copy("alt+c"), "15")
        self.assertEqual(window.quit(), 0)
        with open(self.file(SETTINGS_FILE), encoding="ascii") as file:
            self.assertIn("<key>firstrun</key>\n    <integer>2</integer>", file.read())

    def test_everything_is_there_again_at_the_next_start(self):
        window = self.first_start()
        for line in ENTRIES:
            window.enter(line)
        window.wait_for_text("> 0xff\nans = 255\n\n> ")
        self.assertEqual(window.quit(), 0)

        window = self.start()
        window.type("s")
        window.key("Up", "Up")
        window.wait_for_whole_text("> sqrt(2)")
        window.key("Escape")
        window.enter("hyp(side,0)")
        window.wait_for_text("\nans = 12.5\n\n> ")
        self.assertEqual(window.quit(), 0)

    def test_tab_twice_proposes_two_functions(self):
        window = self.first_start()
        window.enter("swim(x)=x")
        window.enter("sway(x)=x")
        window.type("sw")
        window.key("Tab")
        window.wait_for_text("\n> sway()")
        window.key("Escape")
        window.type("sw")
        window.key("Tab", "Tab")
        window.wait_for_text("\n> swim()")
        self.assertEqual(window.quit(), 0)

    def test_three_pasted_lines_are_one_entry(self):
        window = self.first_start()
        put_on_pasteboard("1+1\n2+2\n3*4\n")
        window.key("alt+v")
        time.sleep(1)  # looking at the text puts something else on the pasteboard
        window.wait_for_whole_text("> 1+1; 2+2; 3*4")
        window.key("Return")
        window.wait_for_text("\nans = 12\n\n> ")
        self.assertEqual(window.quit(), 0)

    def test_a_selection_across_the_prompt_deletes_what_is_in_the_entry(self):
        window = self.first_start()
        window.enter("7*3")
        window.type("12345")
        window.key("Left", "Left", *["shift+Left"] * 10)
        window.key("BackSpace")
        window.wait_for_whole_text("> 7*3\nans = 21\n\n> 45")
        window.key("alt+a", "BackSpace")
        window.wait_for_whole_text("> 7*3\nans = 21\n\n> ")
        self.assertEqual(window.quit(), 0)

    def test_a_click_as_short_as_can_be_leaves_the_keys_alive(self):
        window = self.first_start()
        window.type("12345")
        run("xdotool", "mousemove", "--window", window.id, "300", "150", "sleep", "0.2", "click", "1", "sleep", "0.3")
        window.type("+1")
        window.wait_for_whole_text("> 12345+1")
        self.assertEqual(window.quit(), 0)

    def test_typing_closes_the_menu_of_a_right_click(self):
        window = self.first_start()
        window.enter("6*7")
        window.type("1+")
        middle = ("xdotool", "mousemove", "--window", window.id, "200", "150", "sleep", "0.2", "click", "3")
        run(*middle, "sleep", "0.5")
        window.type("23")
        window.wait_for_whole_text("> 6*7\nans = 42\n\n> 1+23")
        run(*middle, "sleep", "0.5")
        window.key("Escape")
        window.type("4")
        window.wait_for_whole_text("> 6*7\nans = 42\n\n> 1+234")
        self.assertEqual(window.quit(), 0)

    def test_sigterm_during_a_script_keeps_what_was_entered(self):
        self.first_start().quit()
        script = os.path.join(self.folder, "slow.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("depth=5\npause 5000\ndepth=6\n")
        window = self.start(script)
        time.sleep(1)
        window.process.send_signal(signal.SIGTERM)
        self.assertEqual(window.wait_for_end(), 0)
        with open(self.file(FUNCTIONS_FILE), encoding="ascii") as file:
            self.assertIn("\ndepth=5\n", file.read())

    def test_closing_the_window_ends_a_script(self):
        self.first_start().quit()
        script = os.path.join(self.folder, "slow.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("depth=5\n" + "pause 5000\npaused=1\n" * 10)
        window = self.start(script)
        time.sleep(1)
        window.key("alt+F4")  # the window manager's
        self.assertEqual(window.wait_for_end(), 0)
        lines = window.functions_file()
        self.assertIn("depth=5", lines)
        self.assertNotIn("paused=1", lines)  # it did not wait for the pause's end

    def test_damaged_files_are_kept_beside(self):
        self.first_start().quit()
        damaged = b"### FUNCTIONS ###\nkept(x)=x+1\n\x00\x01\x02"
        with open(self.file(FUNCTIONS_FILE), "wb") as file:
            file.write(damaged)
        with open(self.file(SETTINGS_FILE), "wb") as file:
            file.write(b"<?xml vers")
        window = self.start(asks=True)
        window.answer(OTHER_BUTTON)  # without settings this is a first start
        window.enter("kept(4)")
        self.assertEqual(window.copy("alt+c"), "5")
        self.assertEqual(window.quit(), 0)
        with open(self.file(FUNCTIONS_FILE + ".unreadable"), "rb") as file:
            self.assertEqual(file.read(), damaged)
        with open(self.file(SETTINGS_FILE + ".unreadable"), "rb") as file:
            self.assertEqual(file.read(), b"<?xml vers")


if __name__ == "__main__":
    main(Newcomer)
