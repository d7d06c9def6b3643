# SPDX-License-Identifier: MIT
"""A working day in short, on a usual screen and on a dense one: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/working_day.py [TEST ...]

A picture of each part goes to the folder TALLYQUILL_PICTURES, when there is one.
"""

import os

from calculator_window import STATUS_LINE, at_rest, picture, put_on_pasteboard, run, wait_until
from scenario import Scenario, main

DENSE = ("-GSScaleFactor", "2")


def status_line(window):
    _, _, width, _ = window.place()
    return picture(window.id)[-3 * width * STATUS_LINE :]


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

    def go_through(self, *arguments):
        window = self.start(*arguments)
        for number in range(1, 21):
            self.calculate(window, number)
        self.look(window, "calculations")
        window.enter("hyp(a,b)=sqrt(a^2+b^2)")
        window.enter("hyp(3,4)")
        window.wait_for_text("\nans = 5\n\n> ")
        self.quit(window)

        window = self.start(*arguments)
        window.enter("hyp(5,12)")
        window.wait_for_text("\nans = 13\n\n> ")
        window.enter("5 kilomter->mile")
        wait_until("an error", lambda: "** ERROR 13: " in window.text())
        self.look(window, "wrong-unit")
        window.enter("5 kilometer->mile")
        window.wait_for_text("\nans = 3.106855961\n\n> ")

        script = os.path.join(self.folder, "long.script")
        with open(script, "w", encoding="ascii") as file:
            file.write("n=0\n" + "n=n+1\n" * 2_000_000)
        empty = at_rest("the status line", lambda: status_line(window))
        window.start_again(script)
        wait_until("that it is calculated", lambda: status_line(window) != empty)
        window.key("Escape")
        window.enter("n<2000000")
        window.wait_for_text("\nans = 1\n\n> ")
        self.look(window, "interrupted")

        window.key("Escape")
        wait_until("a hidden window", window.is_minimized)
        window.start_again()
        window.enter("40+2")
        window.wait_for_text("\nans = 42\n\n> ")
        self.look(window, "called-back")
        self.quit(window)

    def test_on_a_usual_screen(self):
        self.go_through()

    def test_on_a_dense_screen(self):
        self.go_through(*DENSE)


if __name__ == "__main__":
    main(WorkingDay)
