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
    DEFAULT_BUTTON,
    OTHER_BUTTON,
    PATIENCE,
    SETTINGS_FILE,
    CalculatorWindow,
    activate,
    at_rest,
    geometry,
    is_open,
    on_screen,
    picture,
    question,
    repeat_until,
    run,
    sides,
    titled,
    wait_until,
)
from scenario import Scenario, main
from status_line import picture_of, wait_for_status

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
SMALL = (400, 150)
TOGETHER = 1280 * 800  # pixels at most of a picture of two windows; one that shows more shows little of them
CALCULATING = "Calculating... Escape ends it."
LONG_ENTRY = ["f0(x)=x", *(f"f{i}(x)=f{i - 1}(x)+f{i - 1}(x)" for i in range(1, 41)), "f40(1)"]
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
        if self.picture_path(name):
            size = f"{width}x{len(pixels) // 3 // width}"
            command = ["convert", "-size", size, "-depth", "8", "rgb:-", self.picture_path(name)]
            subprocess.run(command, input=pixels, timeout=PATIENCE, check=True)
        self.assertEqual(found, [], name)
        return pixels

    def picture_path(self, name):
        """Where the picture goes, or None."""
        folder = os.environ.get("TALLYQUILL_PICTURES")
        return os.path.join(folder, f"{self._testMethodName}-{name}.png") if folder else None

    def look_together(self, window, number, name):
        """The same of what stands over the window or beside it, which has to be on the screen as a whole."""
        self.look(number, name)
        left, top, right, bottom = sides(number)
        self.assertGreaterEqual(min(left, top), 0, name)
        self.assertLessEqual(right, SCREEN[0], name)
        self.assertLessEqual(bottom, SCREEN[1], name)
        mine = sides(window.id)
        left, top = min(left, mine[0]), min(top, mine[1])
        width, height = max(right, mine[2]) - left, max(bottom, mine[3]) - top
        if self.picture_path(name) and width * height < TOGETHER:
            crop = f"{width}x{height}+{left}+{top}"
            run("import", "-silent", "-window", "root", "-crop", crop, self.picture_path(f"{name}-together"))

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
            self.look_together(window, opened(before), f"menu-{name}")
            window.key("Escape")
            wait_until("the end of the menu", lambda: not on_screen() - before)

    def look_at_lists(self, window):
        for tabs, name in ((2, "variables"), (3, "functions")):
            before = on_screen()
            window.key("F6", *["Tab"] * tabs, "space")
            self.look_together(window, opened(before), name)
            window.key("Escape", "Escape")
            wait_until("the end of the list", lambda: not on_screen() - before)

    def look_at_text_menu(self, window):
        before = on_screen()
        _, _, width, height = window.place()
        window.point(width // 2, height // 2)
        run("xdotool", "click", "3")
        self.look_together(window, opened(before), "text-menu")
        window.key("Escape")
        wait_until("the end of the menu", lambda: not on_screen() - before)

    def look_at_panel(self, window, title, *keys):
        window.activate()
        for key in keys:
            window.key(key)
        panel = wait_until(title, lambda: titled(title))
        self.look_together(window, panel, title)
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
        self.look_at_text_menu(window)
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
        # Most panels are of what is looked at already, and take as long as all the rest.
        self.go_through(LIGHT, "-GSScaleFactor", "1.5", panels=False)

    def look_at_dense_panels(self, scale):
        window = self.start("-GSScaleFactor", scale)
        self.close(self.look_at_panel(window, "Tallyquill Preferences", "ctrl+comma"))
        self.close(self.look_at_panel(window, "Functions", "alt+shift+f"))
        window.activate()
        self.quit(window)

    def test_panels_at_one_and_a_half(self):
        self.look_at_dense_panels("1.5")

    def test_panels_at_three(self):
        self.look_at_dense_panels("3")

    def resize(self, window, width, height):
        run("xdotool", "windowsize", window.id, str(width), str(height))
        wait_until("the size", lambda: abs(geometry(window.id)[2] - width) < 10)

    def test_sizes(self):
        window = self.start()
        for line in SESSION:
            window.enter(line)
        for size in (SMALL, (2500, 1500)):
            self.resize(window, *size)
            self.look(window.id, f"{size[0]}")
        self.quit(window)

    def go_through_small(self, colors):
        self.prepare(colors)
        window = self.start()
        self.resize(window, *SMALL)
        self.look_at_console(window)
        self.look_at_menus(window)
        self.look_at_lists(window)
        self.look_at_text_menu(window)
        self.close(self.look_at_panel(window, "Tallyquill Preferences", "ctrl+comma"))
        self.close(self.look_at_panel(window, "Units", "alt+shift+u"))
        window.activate()
        self.quit(window)

    def test_small_and_dark(self):
        self.go_through_small({})

    def test_small_and_light(self):
        self.go_through_small(LIGHT)

    def look_at_question(self, window, name):
        sheet = wait_until(name, question)
        self.look_together(window, sheet, name)

    def test_questions_of_the_first_start(self):
        os.remove(os.path.join(self.folder, "Tallyquill", SETTINGS_FILE))
        window = CalculatorWindow(self.folder, asks=True)
        self.addCleanup(window.kill)
        self.look_at_question(window, "tutorial")
        window.answer(OTHER_BUTTON)
        window.enter("1+1")
        window.key("ctrl+a", "ctrl+a", "ctrl+a", "ctrl+c")
        self.look_at_question(window, "tip")
        window.answer(DEFAULT_BUTTON)
        self.quit(window)

    def look_at_replacing(self, colors):
        self.prepare(colors)
        with open(os.path.join(self.folder, "mine.script"), "w", encoding="ascii") as file:
            file.write("1+1\n")
        window = self.start("-ScriptFolder", self.folder)
        window.enter("2+2")
        panel = window.open("Save to script file", "ctrl+s")
        window.type("mine.script")
        window.key("Return")
        self.look_at_question(window, "replacing")
        # It takes no key before a person could have read it.
        repeat_until("the end of the question", lambda: window.key("Escape"), lambda: not question())
        self.close(panel)
        window.activate()
        self.quit(window)

    def test_question_before_a_file_is_replaced(self):
        self.look_at_replacing({})

    def test_question_before_a_file_is_replaced_in_the_light(self):
        self.look_at_replacing(LIGHT)

    def test_calculating(self):
        window = self.start()
        window.enter(f"echo {CALCULATING}")
        window.wait_for_text(f"\n{CALCULATING}\n\n> ")
        calculating = picture_of(window, CALCULATING)
        for line in LONG_ENTRY:
            window.enter(line)
        wait_for_status(window, CALCULATING, calculating)
        self.look(window.id, "calculating")
        window.key("Escape")
        window.enter("1+1")
        window.wait_for_text("\nans = 2\n\n> ")
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
