# SPDX-License-Identifier: MIT
"""A picture of each state of the window, looked at as far as a program can: see calculator_window.py.

    tests/app/with_display.sh --wm --screen 3840x2160 env TALLYQUILL_APP=.../Tallyquill \\
        python3 tests/app/end_to_end/states.py [TEST ...]

The pictures go to the folder TALLYQUILL_PICTURES, when there is one, for a person to look at.
"""

import os
import plistlib
import subprocess
import time

from calculator_window import (
    PATIENCE,
    SETTINGS_FILE,
    activate,
    at_rest,
    geometry,
    is_open,
    on_screen,
    picture,
    run,
    titled,
    wait_until,
)
from scenario import Scenario, main

LIGHT = {"bgcolor": b"1 1 0.97 1", "fgcolor": b"0 0.2 0.4 1"}
SESSION = ["price=19.90", "price*3+4.50", "26.2 mile->km", "5 kilomter->km", "c(a,b)=sqrt(a^2+b^2)", "c(3,4)"]
MENUS = ["Tallyquill", "File", "Edit", "Display", "Window", "Help"]
SCROLLED = ["Tallyquill Guide", "Functions", "Units"]  # which text goes on below
EDGE = 2  # pixels around each picture, on which no text stands
EDGE_COLORS = 16  # of lines and surfaces; text has many more
DRAWN_COLORS = 20  # at least, of what is drawn whole
SCREEN = (3840, 2160)
HEAD = 49  # pixels above the console: the menus and the controls
FOOT = 20  # below it: the status line
AIR = 5  # above and below the console's text


def colors_of(pixels, most=None):
    """The colors of some pixels; `most`: so many are enough."""
    colors = set()
    for i in range(0, len(pixels), 3):
        colors.add(pixels[i : i + 3])
        if len(colors) == most:
            break
    return colors


def edges(pixels, width):
    """The pixels at the four sides of a picture, by their names."""
    row, edge = 3 * width, 3 * EDGE
    starts = range(0, len(pixels), row)
    return {
        "top": pixels[: row * EDGE],
        "bottom": pixels[-row * EDGE :],
        "left": b"".join(pixels[i : i + edge] for i in starts),
        "right": b"".join(pixels[i + row - edge : i + row] for i in starts),
    }


def faults(pixels, width, scrolled):
    """What is wrong with a picture: a list of texts. `scrolled`: text goes on below the lower edge."""
    found = []
    if len(colors_of(pixels, DRAWN_COLORS)) < DRAWN_COLORS:
        found.append("nothing is drawn")
    for side, edge in edges(pixels, width).items():
        colors = colors_of(edge)
        if colors == {b"\0\0\0"}:
            found.append(f"a black strip at the {side}")
        if len(colors) > EDGE_COLORS and not (scrolled and side == "bottom"):
            found.append(f"something is cut off at the {side}: {len(colors)} colors")
    return found


def cut_lines(pixels, width):
    """Where a line of the console is cut: beside the scroller nothing stands in the air around the text."""
    rows = [pixels[i : i + 3 * (width - 40)] for i in range(0, len(pixels), 3 * width)]
    air = {"top": rows[HEAD + 1 : HEAD + AIR], "bottom": rows[-FOOT - AIR : -FOOT - 1]}
    return [side for side, strip in air.items() if len(colors_of(b"".join(strip))) > 1]


def opened(before):
    """The number of the menu that has come since, once it is the last one that was opened."""
    wait_until("a menu", lambda: on_screen() - before)
    return at_rest("a menu", lambda: on_screen() - before).pop()


class States(Scenario):
    def prepare(self, colors):
        """Settings with these colors, whose window is not faded."""
        path = os.path.join(self.folder, "Tallyquill", SETTINGS_FILE)
        with open(path, "rb") as file:
            settings = plistlib.load(file)
        settings.update(colors, transback=0)
        with open(path, "wb") as file:
            plistlib.dump(settings, file)

    def look(self, number, name):
        """Takes a picture of a window, given by its number, once it is at rest; fails when something stays wrong.

        On a machine that is busy a window may rest half drawn for a while."""
        end = time.monotonic() + PATIENCE
        found = [name]
        while found and time.monotonic() < end:
            width = at_rest(name, lambda: geometry(number))[2]
            pixels = at_rest(name, lambda: picture(number), looks=3)  # the cursor blinks
            found = faults(pixels, width, name in SCROLLED)
        folder = os.environ.get("TALLYQUILL_PICTURES")
        if folder:
            path = os.path.join(folder, f"{self._testMethodName}-{name}.png")
            command = ["convert", "-size", f"{width}x{len(pixels) // 3 // width}", "-depth", "8", "rgb:-", path]
            subprocess.run(command, input=pixels, timeout=PATIENCE, check=True)
        self.assertEqual(found, [], name)
        return pixels

    def look_at_console(self, window):
        window.enter("tripled(x)=3*x")
        for line in SESSION:
            window.enter(line)
        window.type("2*(3+(4*5)")
        self.look(window.id, "missing")
        window.type(")")
        self.look(window.id, "console")
        window.key("ctrl+f")
        window.type("ans")
        self.look(window.id, "search")
        window.key("Escape", "Escape")

    def look_at_menus(self, window):
        for place, name in enumerate(MENUS):
            before = on_screen()
            window.key("F10", *["Right"] * place)
            self.look(opened(before), f"menu-{name}")
            window.key("Escape")
            wait_until("the end of the menu", lambda: not on_screen() - before)

    def look_at_lists(self, window):
        for tabs, name in ((2, "variables"), (3, "functions")):
            before = on_screen()
            window.key("F6", *["Tab"] * tabs, "space")
            self.look(opened(before), name)
            window.key("Escape", "Escape")
            wait_until("the end of the list", lambda: not on_screen() - before)

    def look_at_panel(self, window, title, *keys):
        window.activate()
        for key in keys:
            window.key(key)
        panel = wait_until(title, lambda: titled(title))
        self.look(panel, title)
        return panel

    def close(self, panel):
        activate(panel)
        run("xdotool", "key", "Escape")
        wait_until("the end of a panel", lambda: not is_open(panel))

    def look_at_panels(self, window):
        self.close(self.look_at_panel(window, "Tallyquill Guide", "ctrl+question"))
        self.close(self.look_at_panel(window, "About", "F10", "Return"))
        for downs, title in ((1, "Functions"), (2, "Units")):
            self.close(self.look_at_panel(window, title, "F10", "Left", *["Down"] * downs, "Return"))
        self.close(self.look_at_panel(window, "Open", "ctrl+o"))
        self.close(self.look_at_panel(window, "Save to script file", "ctrl+s"))
        preferences = self.look_at_panel(window, "Tallyquill Preferences", "ctrl+comma")
        for tabs, title in ((7, "Font"), (1, "Colors")):
            activate(preferences)
            window.key(*["Tab"] * tabs, "space")
            panel = wait_until(title, lambda: titled(title))
            self.look(panel, title)
            run("xdotool", "windowclose", panel)
        self.close(preferences)

    def go_through(self, colors, *arguments, panels=True):
        self.prepare(colors)
        window = self.start(*arguments)
        self.look_at_console(window)
        self.look_at_menus(window)
        self.look_at_lists(window)
        if panels:
            self.look_at_panels(window)
        window.activate()
        self.quit(window)

    def test_dark(self):
        self.go_through({})

    def test_light(self):
        self.go_through(LIGHT)

    def test_dense(self):
        self.go_through({}, "-GSScaleFactor", "2")

    def test_one_and_a_half(self):
        # The panels are of what is looked at already, and take as long as all the rest.
        self.go_through(LIGHT, "-GSScaleFactor", "1.5", panels=False)

    def test_sizes(self):
        window = self.start()
        for line in SESSION:
            window.enter(line)
        for width, height in ((400, 150), (2500, 1500)):
            run("xdotool", "windowsize", window.id, str(width), str(height))
            wait_until("the size", lambda: abs(geometry(window.id)[2] - width) < 10)
            self.look(window.id, f"{width}")
        self.quit(window)

    def test_whole_4k_screen(self):
        self.prepare({"sigfigs": 100})
        script = os.path.join(self.folder, "roots.script")
        with open(script, "w", encoding="ascii") as file:
            for i in range(90):
                file.write(f"echo {i}: {'the root of this number has a hundred digits ' * 11}\nsqrt({i})\n")
        window = self.start(script)
        left, right, top, bottom = window.frame()
        width, height = SCREEN[0] - left - right, SCREEN[1] - top - bottom
        run("xdotool", "windowmove", window.id, "0", "0", "windowsize", window.id, str(width), str(height))
        wait_until("the size", lambda: geometry(window.id)[2:] == (width, height))
        window.wait_for_text("\n\n> ")
        window.enter("26.2 mile->km")
        window.type("2*(3+(4*5))")
        pixels = self.look(window.id, "console")
        self.assertEqual(cut_lines(pixels, width), [])
        # Its text goes on to the right edge and down to the last line.
        rows = [pixels[i : i + 3 * width] for i in range(0, len(pixels), 3 * width)]
        right_side = b"".join(row[3 * (width - 140) : 3 * (width - 40)] for row in rows[HEAD:-FOOT])
        self.assertGreater(len(colors_of(right_side)), EDGE_COLORS)
        self.quit(window)


if __name__ == "__main__":
    main(States)
