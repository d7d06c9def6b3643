# SPDX-License-Identifier: MIT
"""A person's first hour with the built application, and what may go wrong in it: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/newcomer.py [TEST ...]
"""

import os
import tempfile
import unittest

from calculator_window import (
    DEFAULT_BUTTON,
    FUNCTIONS_FILE,
    OTHER_BUTTON,
    SETTINGS_FILE,
    CalculatorWindow,
    activate,
    first_value,
    is_open,
    on_screen,
    pasteboard,
    picture,
    put_on_pasteboard,
    question,
    repeat_until,
    run,
    wait_until,
)
from scenario import main

ENTRIES = ["2+3*4", "ans/7", "side=12.5", "side^2", "sqrt(2)", "sin(30)", "hyp(a,b)=sqrt(a^2+b^2)", "hyp(3,4)"]
ENTRIES += ["5 km->m", "0xff"]


def brightness(window):
    """How much bright text a dark window shows."""
    return sum(shade > 0x80 for shade in picture(window))


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

    def test_a_return_that_was_typed_before_the_question_could_be_read_is_no_answer(self):
        window = self.start(asks=True)
        sheet = wait_until("the question", question)
        window.key("Return", "Return", "Return")
        self.assertIsNone(first_value(lambda: not is_open(sheet), 1))
        activate(sheet)
        repeat_until("Return", lambda: window.key("Return"), lambda: not is_open(sheet))

    def test_the_tutorial_begins_with_return_and_ends_with_escape(self):
        window = self.start(asks=True)
        sheet = wait_until("the question", question)
        activate(sheet)
        repeat_until("Return", lambda: window.key("Return"), lambda: not is_open(sheet))
        window.activate()
        dark = brightness(window.id)
        wait_until("the text of the tutorial", lambda: brightness(window.id) > dark + 2000)
        window.key("Escape")
        window.enter("12+3")
        self.assertEqual(window.copy("alt+c"), "15")  # without the tip that follows a copy of the transcript
        window.enter("12+4")
        self.assertEqual(window.copy("alt+c"), "16")
        self.assertEqual(window.quit(), 0)
        with open(self.file(SETTINGS_FILE), encoding="ascii") as file:
            self.assertIn("<key>firstrun</key>\n\t<integer>2</integer>", file.read())

    def test_everything_is_there_again_at_the_next_start(self):
        window = self.first_start()
        for line in ENTRIES:
            window.enter(line)
        window.wait_for_text("> 0xff\nans = 255\n\n> ")
        self.assertEqual(window.quit(), 0)

        window = self.start()
        window.type("s")
        window.key("Up", "Up")
        window.wait_for_text("> 0xff\nans = 255\n\n> sqrt(2)")  # behind what stood there
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
        empty = brightness(window.id)
        window.key("alt+v")
        # Reading the text puts something else on the pasteboard.
        wait_until("the pasted text", lambda: brightness(window.id) > empty + 500)
        window.wait_for_whole_text("> 1+1; 2+2; 3*4")
        window.key("Return")
        window.wait_for_text("\nans = 12\n\n> ")
        self.assertEqual(window.quit(), 0)

    def test_the_keys_of_other_programs_work(self):
        window = self.first_start()
        window.enter("6*7")
        self.assertEqual(window.copy("ctrl+c"), "42")
        window.type("12345")
        window.key("ctrl+a", "ctrl+a", "ctrl+x")
        window.wait_for_whole_text("> 6*7\nans = 42\n\n> ")
        put_on_pasteboard("12345")
        window.type("1+")
        window.key("ctrl+v")
        window.wait_for_whole_text("> 6*7\nans = 42\n\n> 1+12345")
        window.key("ctrl+n")
        window.wait_for_whole_text("> ")
        window.type("9")
        window.key("ctrl+z")
        window.wait_for_whole_text("> ")
        window.key("ctrl+shift+z")
        window.wait_for_whole_text("> 9")
        small = brightness(window.id)
        window.key("ctrl+plus", "ctrl+plus", "ctrl+equal")
        wait_until("larger text", lambda: brightness(window.id) > small)
        window.key("ctrl+0")
        window.key("ctrl+q")
        self.assertEqual(window.wait_for_end(), 0)

    def test_a_double_click_takes_a_whole_number_which_can_be_dragged_into_the_entry(self):
        window = self.first_start()
        window.enter("1234567*10^20")
        window.type("2*")
        x, y, _, _ = window.place()
        number = (str(x + 90), str(y + 57))  # in "ans = 1.234567e26", the second line
        entry = (str(x + 60), str(y + 91))
        run("xdotool", "mousemove", *number, "click", "--repeat", "2", "--delay", "60", "1")
        wait_until("the selection", lambda: pasteboard("primary") == "1.234567e26")
        # Elsewhere on it, or it would be the third click.
        run("xdotool", "mousemove_relative", "--sync", "--", "-30", "0", "mousedown", "1")
        run("xdotool", "mousemove_relative", "--sync", "--", "-10", "10")
        run("xdotool", "mousemove", "--sync", *entry)
        window.rest()
        run("xdotool", "mouseup", "1")
        window.wait_for_whole_text("> 1234567*10^20\nans = 1.234567e26\n\n> 2*1.234567e26")
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
        window.point(300, 150)
        run("xdotool", "click", "1")
        window.type("+1")
        window.wait_for_whole_text("> 12345+1")
        self.assertEqual(window.quit(), 0)

    def open_text_menu(self, window):
        before = on_screen()
        window.point(200, 150)
        repeat_until("a menu", lambda: run("xdotool", "click", "3"), lambda: on_screen() - before)

    def test_typing_closes_the_menu_of_a_right_click(self):
        window = self.first_start()
        window.enter("6*7")
        window.type("1+")
        self.open_text_menu(window)
        window.type("23")
        window.wait_for_whole_text("> 6*7\nans = 42\n\n> 1+23")
        self.open_text_menu(window)
        window.key("Escape")
        window.type("4")
        window.wait_for_whole_text("> 6*7\nans = 42\n\n> 1+234")
        self.assertEqual(window.quit(), 0)

    def test_closing_the_window_ends_a_script(self):
        self.first_start().quit()
        script = os.path.join(self.folder, "slow.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("depth=5\n" + "pause 5000\n" * 10 + "paused=1\n")
        window = self.start(script)
        wait_until("the first line of the script", lambda: "depth=5" in window.functions_file())
        window.key("alt+F4")  # the window manager's
        self.assertEqual(window.wait_for_end(), 0)
        self.assertNotIn("paused=1", window.functions_file())  # it did not wait for the end of the pauses

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
