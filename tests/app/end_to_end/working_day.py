# SPDX-License-Identifier: MIT
"""A working day in short, on a usual screen and on a dense one: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/working_day.py [TEST ...]

A picture of each part goes to the folder TALLYQUILL_PICTURES, when there is one.
"""

import os

from calculator_window import at_rest, put_on_pasteboard, run, wait_until
from scenario import Scenario, main
from status_line import picture_of, status_line, wait_for_status

CALCULATING = "Calculating... Escape ends it."
# Pixels from the corner of the window, on a usual screen.
FUNCTIONS_BUTTON = (350, 35)
FIRST_FUNCTION = (350, 57)


class WorkingDay(Scenario):
    def look(self, window, name):
        folder = os.environ.get("TALLYQUILL_PICTURES")
        at_rest("the status line", lambda: status_line(window))
        if folder:
            run("import", "-window", window.id, os.path.join(folder, f"{self._testMethodName}-{name}.png"))

    def calculate(self, window, number):
        """One calculation whose operand comes from another program, and whose answer goes there."""
        put_on_pasteboard(f"{number}.5\n")
        window.type("2*")
        missing = at_rest("the status line", lambda: status_line(window))
        window.key("ctrl+v")
        wait_until("the preview", lambda: status_line(window) != missing)
        window.key("Return")
        wait_until("the answer", lambda: window.copy("ctrl+c") == str(2 * number + 1))

    def write_a_function(self, window):
        window.enter("hyp(a,b)=sqrt(a^2+b^2)")
        window.enter("hyp(3,4)")
        window.wait_for_text("\nans = 5\n\n> ")

    def find_it_by_the_button(self, window, scale):
        button, item = ((x * scale, y * scale) for x, y in (FUNCTIONS_BUTTON, FIRST_FUNCTION))
        window.choose(button, item)
        window.wait_for_text("\n> hyp(a,b)")
        window.key("Escape")

    def find_it_in_the_list_of_all(self, window):
        """Each letter that is typed narrows the list; Return types the name."""
        window.open("Functions", "alt+shift+f")
        window.type("hyp")
        window.key("Return")
        window.activate()
        window.type("5,12)")  # behind the name and its parenthesis
        window.wait_for_text("\n> hyp(5,12)")
        window.key("Return")
        window.wait_for_text("\nans = 13\n\n> ")

    def find_it_in_the_history(self, window):
        window.key("Up", "Up")  # behind the entry of today
        window.wait_for_text("\n> hyp(3,4)")
        window.key("Escape")
        window.key("ctrl+r")
        window.type("a^2")
        window.key("Return")
        window.wait_for_text("\n> hyp(a,b)=sqrt(a^2+b^2)")
        window.key("Escape")

    def take_a_wrong_unit(self, window):
        window.enter("5 kilomter->mile")
        wait_until("an error", lambda: "** ERROR 13: " in window.text())
        self.look(window, "wrong-unit")
        window.enter("5 kilometer->mile")
        window.wait_for_text("\nans = 3.106855961\n\n> ")

    def interrupt_a_long_script(self, window, scale):
        script = os.path.join(self.folder, "long.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("n=0\n" + "n=n+1\n" * 2_000_000)
        window.enter(f"echo {CALCULATING}")
        window.wait_for_text(f"\n{CALCULATING}\n\n> ")
        calculating = picture_of(window, CALCULATING, scale)
        window.start_again(script)
        wait_for_status(window, CALCULATING, calculating, scale)
        self.look(window, "calculating")
        window.key("Escape")
        window.enter("n<2000000")
        window.wait_for_text("\nans = 1\n\n> ")
        self.look(window, "interrupted")

    def hide_and_call_back(self, window):
        window.key("Escape")
        wait_until("a hidden window", window.is_minimized)
        window.start_again()
        window.enter("40+2")
        window.wait_for_text("\nans = 42\n\n> ")
        self.look(window, "called-back")

    def go_through(self, scale):
        dense = ("-GSScaleFactor", str(scale)) if scale > 1 else ()
        window = self.start(*dense)
        for number in range(1, 21):
            self.calculate(window, number)
        self.look(window, "calculations")
        self.write_a_function(window)
        self.quit(window)

        window = self.start(*dense)
        self.find_it_by_the_button(window, scale)
        self.find_it_in_the_list_of_all(window)
        self.find_it_in_the_history(window)
        self.take_a_wrong_unit(window)
        self.interrupt_a_long_script(window, scale)
        self.hide_and_call_back(window)
        self.quit(window)

    def test_on_a_usual_screen(self):
        self.go_through(1)

    def test_on_a_dense_screen(self):
        self.go_through(2)


if __name__ == "__main__":
    main(WorkingDay)
