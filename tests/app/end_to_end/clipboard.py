# SPDX-License-Identifier: MIT
"""The desktop's two clipboards between the application and another program, which is xclip: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/clipboard.py [TEST ...]
"""

import subprocess
import time

from calculator_window import PATIENCE, at_rest, pasteboard, picture, put_on_pasteboard, run, wait_until
from scenario import Scenario, main

SECOND_ANSWER = (100, 131)  # pixels from the corner of the window, whose menu bar comes first


class Clipboard(Scenario):
    def test_answers_go_to_another_program_and_its_text_comes_back(self):
        window = self.start()
        window.enter("6*7")
        self.assertEqual(window.copy("ctrl+c"), "42")
        put_on_pasteboard("19 × 2\n")  # from a page on the web
        before = picture(window.id)
        window.key("ctrl+v")
        wait_until("what was pasted", lambda: picture(window.id) != before)
        at_rest("the window", lambda: picture(window.id))
        window.wait_for_text("\n> 19 * 2")
        window.key("Return")
        window.wait_for_text("\nans = 38\n\n> ")
        window.type("1+2")
        self.assertEqual(window.copy("ctrl+a", "ctrl+a", "ctrl+x"), "1+2")
        window.wait_for_text("\nans = 38\n\n> ")
        self.quit(window)

    def test_what_is_selected_is_the_selection_of_the_desktop(self):
        window = self.start()
        window.type("2+3*4")
        window.key("shift+Home")
        wait_until("the selection", lambda: pasteboard("primary") == "2+3*4")
        self.quit(window)

    def test_a_triple_click_selects_the_line(self):
        window = self.start()
        window.enter("1+2")
        window.enter("1234567*10^20")
        window.wait_for_text("\nans = 1.234567e26\n\n> ")
        window.point(*SECOND_ANSWER)
        for _ in range(3):
            run("xdotool", "mousedown", "1", "sleep", "0.08", "mouseup", "1", "sleep", "0.06")
        wait_until("the selection", lambda: pasteboard("primary") == "ans = 1.234567e26")
        window.type("7")  # the keys go on to the entry
        window.wait_for_text("\n> 7")
        self.quit(window)

    def test_dragging_the_mouse_selects(self):
        window = self.start()
        window.enter("1+2")
        window.enter("1234567*10^20")
        window.wait_for_text("\nans = 1.234567e26\n\n> ")
        _, line = SECOND_ANSWER
        window.point(2, line)
        run("xdotool", "mousedown", "1", "sleep", "0.1")
        for place in range(10, 300, 10):
            window.point(place, line)
        run("xdotool", "mouseup", "1")
        wait_until("the selection", lambda: pasteboard("primary") == "ans = 1.234567e26")
        self.quit(window)

    def test_what_is_found_is_selected(self):
        window = self.start()
        for line in ("width=12", "height=5", "width*height", "7+7"):
            window.enter(line)
        window.wait_for_text("\nans = 14\n\n> ")
        window.key("ctrl+f")
        window.type("WID")
        wait_until("what was found", lambda: pasteboard("primary") == "wid")
        window.type("TH = 12")
        wait_until("more of it", lambda: pasteboard("primary") == "width = 12")
        window.key("Return")
        self.assertEqual(window.copy("ctrl+c"), "width = 12")  # it stays selected
        self.assertIn("> width=12\nwidth = 12\n", window.text())
        self.quit(window)

    def test_the_middle_button_pastes_what_another_program_has_selected(self):
        window = self.start()
        window.type("2*")
        subprocess.run(
            ["xclip", "-i", "-selection", "primary"],
            input=b"21",
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            timeout=PATIENCE,
            check=True,
        )
        window.point(100, 100)
        run("xdotool", "click", "2")
        window.wait_for_whole_text("> 2*21")
        self.quit(window)

    def test_a_manager_that_looks_twice_a_second_has_what_was_copied_before_the_end(self):
        window = self.start()
        window.enter("6*7")
        window.wait_for_text("\nans = 42\n\n> ")
        put_on_pasteboard("before")
        seen = []
        window.key("ctrl+c", "alt+q")
        while window.process.poll() is None:
            time.sleep(0.5)
            seen.append(pasteboard())
        self.assertEqual(window.wait_for_end(), 0)
        self.assertIn("42", seen)

    def test_another_program_that_takes_it_over_has_all_of_it(self):
        """As managers of clipboards do: they fetch the text in each form that is offered, and offer it themselves."""
        window = self.start()
        window.type("1+" * 2000 + "1")
        copied = window.copy("ctrl+a", "ctrl+a", "ctrl+c")
        self.assertEqual(copied, "1+" * 2000 + "1")
        offered = run("xclip", "-o", "-selection", "clipboard", "-t", "TARGETS").split()
        self.assertIn("UTF8_STRING", offered)
        self.assertIn("STRING", offered)
        for form in ("UTF8_STRING", "STRING"):
            self.assertEqual(run("xclip", "-o", "-selection", "clipboard", "-t", form), copied)
        put_on_pasteboard(copied)
        self.quit(window)
        self.assertEqual(pasteboard(), copied)


if __name__ == "__main__":
    main(Clipboard)
