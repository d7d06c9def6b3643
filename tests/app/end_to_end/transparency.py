# SPDX-License-Identifier: MIT
"""What is seen through the window where a compositor (picom) mixes the windows: see calculator_window.py.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/transparency.py

Pictures go to the folder TALLYQUILL_PICTURES, when there is one.
"""

import os
import plistlib
import subprocess

from calculator_window import PATIENCE, SETTINGS_FILE, activate, geometry, run, sides, titled, wait_until
from scenario import Scenario, main

WHITE = ["xmessage", "-bg", "white", "-geometry", "1000x700+40+40", "behind it"]
BLACK = ["xmessage", "-title", "black", "-bg", "black", "-geometry", "1000x700+40+40", "behind it"]
OTHER = ["xmessage", "-title", "another", "-geometry", "150x100+1080+600", "beside it"]


def shade(x, y):
    """How bright a pixel of the screen is, from 0 to 255."""
    command = ["import", "-silent", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "gray:-"]
    return subprocess.run(command, stdout=subprocess.PIPE, timeout=PATIENCE, check=True).stdout[0]


class Transparency(Scenario):
    def setUp(self):
        super().setUp()
        for command in (["picom", "--backend", "xrender", "--config", "/dev/null"], WHITE, OTHER):
            self.run_beside(command)
        self.white = wait_until("a white window", lambda: titled("xmessage"))
        activate(self.white)
        wait_until("white", lambda: shade(300, 300) > 0xF0)

    def run_beside(self, command):
        program = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(program.wait)
        self.addCleanup(program.terminate)

    def look(self, window, name):
        """A picture of the window as it is mixed with what is behind."""
        folder = os.environ.get("TALLYQUILL_PICTURES")
        if not folder:
            return
        left, top, right, bottom = sides(window.id)
        crop = f"{right - left}x{bottom - top}+{left}+{top}"
        run("import", "-silent", "-window", "root", "-crop", crop, os.path.join(folder, f"transparent-{name}.png"))

    def start_with(self, **settings):
        path = os.path.join(self.folder, "Tallyquill", SETTINGS_FILE)
        with open(path, "rb") as file:
            kept = plistlib.load(file)
        kept.update(settings)
        with open(path, "wb") as file:
            plistlib.dump(kept, file)
        window = self.start()
        run("xdotool", "windowmove", window.id, "200", "200")
        window.rest()
        return window

    def place(self, window):
        """A place of the console without text."""
        left, top, width, height = geometry(window.id)
        return left + width // 2, top + height - 50

    def test_an_opaque_window_hides_what_is_behind(self):
        window = self.start_with(trans=0)
        wait_until("the console's color", lambda: shade(*self.place(window)) < 0x20)
        self.quit(window)

    def test_a_transparent_one_shows_it(self):
        window = self.start_with(trans=100)
        # 0.6 of the console's color, 0x1A, and 0.4 of white; the strip of the controls likewise.
        wait_until("a mixture", lambda: abs(shade(*self.place(window)) - 0x75) < 8)
        left, top, width, _ = geometry(window.id)
        self.assertLess(abs(shade(left + width - 10, top + 35) - 0x7E), 8)
        self.quit(window)

    def test_half_of_it_is_a_mixture_with_white_and_with_black(self):
        window = self.start_with(trans=50)
        for line in ("price=19.90", "price*3+4.50", "5 kilomter->km"):
            window.enter(line)
        window.type("2*(3+4")
        place = self.place(window)
        # 0.8 of the console's color, 0x1A, and 0.2 of white.
        wait_until("a mixture with white", lambda: abs(shade(*place) - 0x48) < 8)
        self.look(window, "over-white")
        self.run_beside(BLACK)
        activate(wait_until("a black window", lambda: titled("black")))
        wait_until("black", lambda: shade(300, 120) < 0x10)
        window.activate()
        wait_until("a mixture with black", lambda: abs(shade(*place) - 0x15) < 4)
        self.look(window, "over-black")
        self.quit(window)

    def test_it_fades_out_when_another_program_is_used_and_in_again(self):
        window = self.start_with(trans=100, transback=1)
        place = self.place(window)
        mixture = wait_until("a mixture", lambda: abs(shade(*place) - 0x75) < 8 and shade(*place))
        activate(titled("another"))
        seen = [mixture]

        def is_faded():
            seen.append(shade(*place))
            return abs(seen[-1] - (0.2 * 0x75 + 0.8 * 0xFF)) < 8  # 0.2 of the window is left

        wait_until("a faded window", is_faded)
        self.assertEqual(seen, sorted(seen))
        self.assertGreater(len(set(seen)), 3, "it fades in steps")
        window.activate()
        wait_until("the window as it was", lambda: abs(shade(*place) - mixture) < 3)
        self.quit(window)


if __name__ == "__main__":
    main(Transparency)
