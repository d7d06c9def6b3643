# SPDX-License-Identifier: MIT
"""The built application from start to end, on a display: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/run.py [TEST ...]
"""

import os
import subprocess

from calculator_window import FUNCTIONS_FILE, SETTINGS_FILE, TRANSCRIPT_FILE, activate, at_rest, is_open, run
from calculator_window import titled, wait_until, windows
from scenario import Scenario, main

MENU_BAR = 22  # pixels that the menu in the window adds to its smallest height
# Pixels from the corner of the window, whose menu bar comes first.
HEX_SEGMENT = (111, 35)
FUNCTIONS_BUTTON = (350, 35)
FIRST_FUNCTION = (350, 57)


class EndToEnd(Scenario):
    def test_return_gives_the_answer(self):
        window = self.start()
        window.enter("(1+2)*3")
        window.wait_for_whole_text("> (1+2)*3\nans = 9\n\n> ")
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

    def test_control_r_finds_an_older_entry_which_return_takes(self):
        window = self.start()
        for line in ("side=12.5", "side*2", "side*3", "1+1"):
            window.enter(line)
        window.wait_for_text("\nans = 2\n\n> ")
        window.key("ctrl+r")
        window.type("de*")
        window.key("Return")
        window.wait_for_text("\n> side*3")
        window.key("Escape")
        window.key("ctrl+r")
        window.type("de*")
        window.key("ctrl+r", "Return")
        window.wait_for_text("\n> side*2")
        window.key("Return")
        window.wait_for_text("\n> side*2\nans = 25\n\n> ")
        window.type("9")
        window.key("ctrl+r")
        window.type("=12")
        window.key("Escape")  # which brings back what was typed
        window.wait_for_text("\n> 9")
        self.quit(window)

    def test_clicks_without_length_leave_the_keys_alive(self):
        """As those of touch pads are: the button is up again before the program looks."""
        window = self.start()
        for number in range(10):
            window.enter(f"{number}+1")
            window.point(60, 70)
            run("xdotool", "click", "--repeat", str(1 + number % 3), "--delay", "0", "1")
            window.key("End")
        window.enter("40+2")
        window.wait_for_text("\nans = 42\n\n> ")
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
        window.wait_for_text("\n> 40+2")
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

    def test_an_entry_is_written_soon_and_survives_a_crash(self):
        window = self.start()
        window.enter("depth=5")
        wait_until("the entry in the file", lambda: "depth=5" in window.functions_file())
        window.kill()

        window = self.start()
        window.enter("depth*2")
        window.wait_for_text("\nans = 10\n\n> ")
        self.quit(window)

    def test_two_copies_that_quit_one_after_the_other_leave_whole_files(self):
        one = self.start()
        one.enter("first=1")
        two = self.start("--new-window")
        two.enter("second=2")
        self.quit(one)
        self.quit(two)
        lines = two.functions_file()
        headers = [line for line in lines if line.startswith("###")]
        expected = ["### FUNCTIONS ###", "### VARIABLES ###", "### CUSTOM UNITS ###", "### HISTORY ###"]
        self.assertEqual(headers, expected)
        self.assertIn("first=1", lines)
        self.assertIn("second=2", lines)
        # Nothing is left of the writing but the lock, which stays.
        names = [f".{FUNCTIONS_FILE}.lock", FUNCTIONS_FILE, SETTINGS_FILE, TRANSCRIPT_FILE]
        self.assertEqual(sorted(os.listdir(two.files)), names)

        window = self.start()
        window.enter("first+second")
        window.wait_for_text("\nans = 3\n\n> ")
        self.quit(window)

    def test_the_window_comes_back_where_it_was(self):
        window = self.start()
        run("xdotool", "windowsize", window.id, "610", "370")
        run("xdotool", "windowmove", window.id, "231", "142")
        wait_until("the new size", lambda: window.place()[2:] == (610, 370))
        place = window.rest()
        self.quit(window)
        for _ in range(2):  # nor does it creep from start to start
            window = self.start()
            self.assertEqual(window.rest(), place)
            self.quit(window)

    def test_the_window_snaps_to_the_edge_of_the_screen(self):
        window = self.start()

        def move(left):
            run("xdotool", "windowmove", window.id, str(left), "200")

        move(0)
        wait_until("a window at the edge", lambda: window.place()[0] < 20)
        edge = window.rest()[0]  # behind its frame
        move(40)
        wait_until("a window beside the edge", lambda: window.place()[0] == edge + 40)
        move(10)
        wait_until("a window that snapped", lambda: window.place()[0] == edge)
        self.assertEqual(window.rest()[0], edge)
        self.quit(window)

    def test_the_end_of_the_preferences_is_not_the_end_of_a_minimized_calculator(self):
        window = self.start()
        panel = window.open("Tallyquill Preferences", "alt+comma")
        run("xdotool", "windowminimize", window.id)
        wait_until("the minimized window", window.is_minimized)
        activate(panel)
        window.key("alt+w")
        wait_until("the end of the panel", lambda: not is_open(panel))
        at_rest("the focus", lambda: run("xdotool", "getwindowfocus", "-f"))
        window.activate()
        window.enter("1+1")
        window.wait_for_text("\nans = 2\n\n> ")
        self.quit(window)

    def test_the_menu_hides_the_window_behind_the_preferences(self):
        window = self.start()
        window.open("Tallyquill Preferences", "alt+comma")
        window.key("alt+h")
        wait_until("the hidden window", window.is_minimized)
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
        left, right, top, bottom = window.frame()
        smallest = (400 - left - right, 150 + MENU_BAR - top - bottom)
        wait_until("the smallest size", lambda: window.place()[2:] == smallest)
        self.assertEqual(window.rest()[2:], smallest)
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

    def test_the_menus_take_keys_as_fast_as_they_come(self):
        window = self.start()
        expected = "> 10\nans = 10\n"
        window.enter("10")
        display = ["F10", "Right", "Right", "Right"]
        for _ in range(5):
            for downs, answer in ((2, "0x000A"), (0, "0b 1010"), (1, "10")):
                run("xdotool", "key", "--delay", "0", *display, *["Down"] * downs, "Return")
                expected += f"10 = {answer}\n"
        run("xdotool", "key", "--delay", "0", "F10", "Escape", "7", "F10", "Right", "plus", "1", "Return")
        window.wait_for_whole_text(expected + "\n> 7+1\nans = 8\n\n> ")
        self.quit(window)

    def test_a_function_is_chosen_and_its_parameter_overtyped(self):
        window = self.start()
        window.enter("area(wide,high)=wide*high")
        window.choose(FUNCTIONS_BUTTON, FIRST_FUNCTION)
        window.type("5")
        window.wait_for_text("\n> area(5,high)")
        self.quit(window)

    def test_escape_hides_and_the_window_manager_brings_the_window_back(self):
        window = self.start()
        place = window.rest()
        window.key("Escape")
        wait_until("the hidden window", window.is_minimized)
        self.assertEqual(window.opacity(), 0)
        window.activate()
        wait_until("an opaque window", lambda: not window.is_minimized() and window.opacity() == 1)
        self.assertEqual(window.rest(), place)
        window.enter("1+1")
        window.wait_for_text("\nans = 2\n\n> ")
        self.quit(window)

    def test_a_second_start_brings_a_hidden_window_back(self):
        window = self.start()
        window.key("Escape")
        wait_until("the hidden window", window.is_minimized)
        window.start_again()
        window.enter("6*7")
        window.wait_for_text("\nans = 42\n\n> ")
        self.quit(window)

    def test_a_second_start_brings_a_covered_window_to_the_front_and_its_files_with_it(self):
        script = os.path.join(self.folder, "doubling.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("twice(x)=2*x\ntwice(21)\n")
        window = self.start()
        other = subprocess.Popen(["xmessage", "-geometry", "1200x700", "the other one"], stderr=subprocess.DEVNULL)
        try:
            activate(wait_until("the other", lambda: titled("xmessage")))
            window.start_again(script)
            window.wait_for_text("\nans = 42\n\n> ")
            self.assertEqual([title for _, title in windows() if title == "Tallyquill"], ["Tallyquill"])
        finally:
            other.terminate()
            other.wait()
        self.quit(window)

    def test_a_start_after_a_crash_opens_a_window(self):
        window = self.start()
        window.kill()
        window = self.start()
        window.start_again()
        self.quit(window)

    def test_the_end_of_a_hidden_window_keeps_its_place(self):
        window = self.start()
        place = window.rest()
        window.key("Escape")
        wait_until("the hidden window", window.is_minimized)
        window.process.terminate()
        self.assertEqual(window.wait_for_end(), 0)
        window = self.start()
        self.assertEqual(window.rest(), place)
        self.quit(window)

    def test_the_window_fades_while_another_program_has_the_focus(self):
        window = self.start()
        other = subprocess.Popen(["xmessage", "the other one"], stderr=subprocess.DEVNULL)
        try:
            number = wait_until("the other", lambda: titled("xmessage"))
            activate(number)
            wait_until("a faded window", lambda: abs(window.opacity() - 0.8) < 0.001)
            window.activate()
            wait_until("an opaque window", lambda: window.opacity() == 1)
        finally:
            other.terminate()
            other.wait()
        self.quit(window)


if __name__ == "__main__":
    main(EndToEnd)
