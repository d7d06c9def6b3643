# SPDX-License-Identifier: MIT
"""The mouse on the window's controls, and the application's other windows: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/panels.py [TEST ...]
"""

import os
import re
import subprocess

from calculator_window import (
    activate,
    at_rest,
    geometry,
    is_open,
    question,
    repeat_until,
    run,
    titled,
    wait_until,
    windows,
)
from scenario import Scenario, main

# Pixels from the corner of the window, whose menu bar comes first.
APPLICATION_MENU = (20, 11)
ABOUT_ITEM = (60, 33)
HEX_SEGMENT = (111, 35)
DEGREES_SEGMENT = (161, 35)
RADIANS_SEGMENT = (203, 35)
VARIABLES_BUTTON = (270, 35)
FIRST_OWN_VARIABLE = (270, 96)  # behind "ans" and "pi"
BESIDE_THE_CONTROLS = (425, 35)
KEEP_ABOVE_BOX = (168, 452)  # in the preferences


def wait_for_closing(number):
    wait_until("the end of a window", lambda: not is_open(number))


class Panels(Scenario):
    def test_preferences_act_and_are_found_again_at_the_next_start(self):
        window = self.start()
        panel = window.open("Tallyquill Preferences", "alt+comma")
        window.key("Tab")  # to the significant figures, which are selected
        window.type("4")
        window.key("Escape")
        wait_for_closing(panel)
        window.activate()
        window.enter("2/3")
        window.wait_for_text("\nans = 0.6667\n\n> ")
        self.quit(window)

        window = self.start()
        window.enter("1/3")
        window.wait_for_text("\nans = 0.3333\n\n> ")
        window.open("Tallyquill Preferences", "alt+comma")
        window.key("Tab")
        self.assertEqual(window.copy("alt+c"), "4")
        self.quit(window)

    def test_a_segment_clicked_with_shift_shows_the_answer_once(self):
        window = self.start()
        window.enter("255")
        run("xdotool", "keydown", "shift")
        try:
            window.press(*HEX_SEGMENT)
        finally:
            run("xdotool", "keyup", "shift")
        window.wait_for_text("\n255 = 0x00FF\n\n> ")
        window.enter("16")
        window.wait_for_text("\nans = 16\n\n> ")
        self.quit(window)

    def test_the_angle_mode_changes_by_the_control(self):
        window = self.start()
        window.press(*RADIANS_SEGMENT)
        window.enter("cos(pi)")
        window.wait_for_text("\nans = -1\n\n> ")
        window.press(*DEGREES_SEGMENT)
        window.enter("cos(60)")
        window.wait_for_text("\nans = 0.5\n\n> ")
        self.quit(window)

    def test_a_variable_is_chosen_from_the_list(self):
        window = self.start()
        window.enter("width=7")
        window.choose(VARIABLES_BUTTON, FIRST_OWN_VARIABLE)
        window.type("*2")
        window.wait_for_text("\n> width*2")
        window.key("Return")
        window.wait_for_text("\nans = 14\n\n> ")
        self.quit(window)

    def test_a_window_kept_above_stays_above_others(self):
        window = self.start()
        panel = window.open("Tallyquill Preferences", "alt+comma")
        x, y = KEEP_ABOVE_BOX
        run("xdotool", "mousemove", "--window", panel, str(x), str(y))
        run("xdotool", "mousedown", "1", "sleep", "0.3", "mouseup", "1")
        wait_until("a window above", lambda: "_NET_WM_STATE_ABOVE" in run("xprop", "-id", window.id, "_NET_WM_STATE"))
        window.key("Escape")
        wait_for_closing(panel)
        left, top, _, _ = window.place()
        other = subprocess.Popen(
            ["xmessage", "-geometry", f"300x200+{left}+{top}", "the other one"], stderr=subprocess.DEVNULL
        )
        try:
            number = wait_until("the other", lambda: titled("xmessage"))
            activate(number)
            order = re.findall(r"0x[0-9a-f]+", run("xprop", "-root", "_NET_CLIENT_LIST_STACKING"))
            self.assertGreater(order.index(window.id), order.index(number))
        finally:
            other.terminate()
            other.wait()
        self.quit(window)

    def test_the_key_to_close_closes_what_is_in_front_of_the_calculator(self):
        window = self.start()
        about = repeat_until("About", lambda: window.choose(APPLICATION_MENU, ABOUT_ITEM), lambda: titled("About"))
        activate(about)
        window.key("alt+w")
        wait_for_closing(about)
        window.activate()
        window.enter("1+1")
        window.wait_for_text("\nans = 2\n\n> ")
        self.quit(window)

    def test_the_open_panel_has_its_size_each_time(self):
        window = self.start()
        sizes = []
        for _ in range(2):
            before = windows()
            panel, _ = repeat_until("the panel", lambda: window.key("alt+o"), lambda: windows() - before).pop()
            activate(panel)
            sizes.append(at_rest("the panel", lambda: geometry(panel))[2:])
            window.key("Escape")
            wait_for_closing(panel)
            window.activate()
        self.assertEqual(sizes[0], sizes[1])
        self.quit(window)

    def save_script(self, window, name):
        """Types the name into the panel; the panel, which may ask then."""
        panel = window.open("Save to script file", "ctrl+s")
        at_rest("the panel", lambda: geometry(panel))
        window.type(name)
        window.key("Return")
        return panel

    def saved(self, name):
        try:
            with open(os.path.join(self.folder, "scripts", name), encoding="utf-8") as file:
                return file.read().splitlines()[2:]  # behind the header
        except FileNotFoundError:
            return None

    def test_a_script_is_not_replaced_unasked_and_its_folder_is_found_again(self):
        os.mkdir(os.path.join(self.folder, "scripts"))
        window = self.start("-ScriptFolder", os.path.join(self.folder, "scripts"))
        window.enter("1+2")
        wait_for_closing(self.save_script(window, "mine.script"))
        self.assertEqual(self.saved("mine.script"), ["1+2"])
        window.activate()
        window.enter("3+4")
        panel = self.save_script(window, "mine.script")
        asked = wait_until("the question", question)
        window.key("Return")  # before anybody can have read it
        activate(asked)
        self.assertEqual(self.saved("mine.script"), ["1+2"])
        self.assertTrue(is_open(asked))
        repeat_until("the answer", lambda: window.key("Return"), lambda: not is_open(asked))
        wait_for_closing(panel)
        self.assertEqual(self.saved("mine.script"), ["1+2", "3+4"])
        window.activate()
        self.quit(window)

        window = self.start()
        window.enter("5+6")
        wait_for_closing(self.save_script(window, "other.script"))
        self.assertEqual(self.saved("other.script"), ["5+6"])
        window.activate()
        self.quit(window)

    def test_the_strip_beside_the_controls_drags_the_window(self):
        window = self.start()
        run("xdotool", "windowmove", window.id, "300", "200")
        left, top, width, height = window.rest()
        window.point(*BESIDE_THE_CONTROLS)
        run("xdotool", "mousedown", "1")
        for _ in range(10):
            run("xdotool", "sleep", "0.05", "mousemove_relative", "--", "7", "4")
        run("xdotool", "mouseup", "1")
        wait_until("a window in its new place", lambda: window.place() == (left + 70, top + 40, width, height))
        self.assertEqual(window.rest(), (left + 70, top + 40, width, height))
        self.quit(window)


if __name__ == "__main__":
    main(Panels)
