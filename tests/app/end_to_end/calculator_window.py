# SPDX-License-Identifier: MIT
"""Drives the built application from outside, as a person would: with keys, the pasteboard and a look at the screen.

Runs below with_display.sh --wm. The program comes from TALLYQUILL_APP. The menu key is Alt.
"""

import hashlib
import os
import re
import signal
import subprocess
import time

PATIENCE = 30  # seconds until something that should happen counts as not happening
AGAIN = 3  # seconds until a person does again what nothing came of: a key or a click that was lost
REST = 8  # looks that show the same
STEP = 0.05  # seconds between two looks
FUNCTIONS_FILE = "pelmo_functions.txt"
SETTINGS_FILE = "pelmo_settings.plist"
TRANSCRIPT_FILE = "transcript.txt"
# The middles of a question's buttons, in pixels from its right edge.
DEFAULT_BUTTON = 60
OTHER_BUTTON = 179
STATUS_LINE = 20  # height in pixels, at the bottom of the window


def run(*command, text=None):
    """The output of a helper program; no helper may take long."""
    done = subprocess.run(
        command, input=text, encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=PATIENCE
    )
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: {done.stderr}")
    return done.stdout


def first_value(happened, patience):
    """The first true value of happened(), or None when there is none in that many seconds."""
    end = time.monotonic() + patience
    while True:
        value = happened()
        if value:
            return value
        if time.monotonic() > end:
            return None
        time.sleep(STEP)


def wait_until(what, happened, patience=PATIENCE):
    """The first true value of happened(); fails when there is none in time."""
    value = first_value(happened, patience)
    assert value, f"waited in vain: {what}"
    return value


def repeat_until(what, act, happened):
    """Does act(), and again as a person would when nothing comes of it, until happened(), whose value it returns.

    Only for what may be done twice. A helper may fail in act() because what it acts on has gone meanwhile."""
    end = time.monotonic() + PATIENCE
    value = None
    while not value and time.monotonic() < end:
        try:
            act()
        except RuntimeError:
            pass
        value = first_value(happened, AGAIN)
    assert value, f"done in vain: {what}"
    return value


def pasteboard(selection="clipboard"):
    """The text on the pasteboard, or None when its owner does not answer at once."""
    try:
        done = subprocess.run(
            ["xclip", "-o", "-selection", selection],
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            timeout=1,
        )
    except subprocess.TimeoutExpired:
        return None
    return done.stdout.decode("utf-8", "replace")


def put_on_pasteboard(text):
    # xclip stays behind to hand the text out, so it must not keep our pipes.
    subprocess.run(
        ["xclip", "-i", "-selection", "clipboard"],
        input=text.encode(),
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        timeout=PATIENCE,
        check=True,
    )


def windows():
    """The windows that the window manager looks after: a set of (number, title). X does not tell whose they are."""
    numbers = re.findall(r"0x[0-9a-f]+", run("xprop", "-root", "_NET_CLIENT_LIST"))
    found = set()
    for number in numbers:
        try:
            found.add((number, run("xdotool", "getwindowname", number).strip()))
        except RuntimeError:
            pass  # it went away meanwhile
    return found


def titled(part):
    """The number of a window whose title contains the text, or None."""
    return next((number for number, title in windows() if part in title), None)


def question():
    """The number of the question that the application asks, or None."""
    return next((number for number, title in windows() if title == ""), None)


def is_open(window):
    return window in (number for number, _ in windows())


def on_screen():
    """All that stands on the screen, menus too: a set of numbers that say nothing but what is new."""

    def look():
        try:
            return run("xdotool", "search", "--onlyvisible", "--maxdepth", "1", "--class", ".*").split()
        except RuntimeError:
            return None  # something went away meanwhile

    return set(wait_until("the windows", look))


def picture(window):
    """The pixels of a window, given by its number, as bytes."""
    command = ["import", "-silent", "-window", window, "-depth", "8", "rgb:-"]
    return subprocess.run(command, stdout=subprocess.PIPE, timeout=PATIENCE, check=True).stdout


def at_rest(what, look, looks=REST):
    """What look() gives, once it has given the same so many times."""
    seen = []

    def rests():
        seen.append(look())
        return seen[-looks:] == [seen[-1]] * looks

    wait_until(f"{what} at rest", rests)
    return seen[-1]


def geometry(window):
    """Left, top, width and height inside the frame of the window manager."""
    lines = dict(line.split("=") for line in run("xdotool", "getwindowgeometry", "--shell", window).split())
    return tuple(int(lines[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))


def sides(number):
    """Left, top, right and bottom on the screen. The geometry counts the frame of the window manager twice."""
    facts = run("xwininfo", "-id", number)
    names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
    left, top, width, height = (int(re.search(rf"{name}: +(-?\d+)", facts).group(1)) for name in names)
    return left, top, left + width, top + height


def has_focus(window):
    """Whether the keys go to the window, given by its number."""
    return int(run("xdotool", "getwindowfocus", "-f")) == int(window, 0)


def activate(window):
    """Asks the window manager for the focus until keys go to the window."""

    def is_active():
        try:
            return has_focus(window)
        except RuntimeError:
            return False  # for a moment no window has the focus

    repeat_until("the focus", lambda: run("xdotool", "windowactivate", window), is_active)


class CalculatorWindow:
    """One running copy of the application, whose files are in `folder`/Tallyquill."""

    def __init__(self, folder, *arguments, asks=False):
        """`asks`: it begins with a question, which keeps the window from becoming active."""
        self.files = os.path.join(folder, "Tallyquill")
        others = windows()
        self.log = open(os.path.join(folder, "log.txt"), "a+", encoding="utf-8")
        self.process = self._run(*arguments)
        self.id = wait_until("the window", lambda: self._find(others))
        if not asks:
            self.activate()

    def _run(self, *arguments):
        return subprocess.Popen(
            [os.environ["TALLYQUILL_APP"], *arguments],
            env=dict(os.environ, XDG_DATA_HOME=os.path.dirname(self.files)),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=self.log,
        )

    def hand_over(self, *arguments):
        """Starts the program over the same files while this window is there, which gets the arguments instead."""
        status = self._run(*arguments).wait(PATIENCE)
        assert status == 0, f"the second start ended with {status}: {self.remarks()}"

    def start_again(self, *arguments):
        """The same, and waits until this window shows itself."""
        self.hand_over(*arguments)

        def is_in_front():
            try:
                return not self.is_minimized() and has_focus(self.id)
            except RuntimeError:
                return False  # for a moment no window has the focus

        wait_until("the window in front", is_in_front)
        wait_until("an opaque window", lambda: self.opacity() == 1)

    def _find(self, others):
        if self.process.poll() is not None:
            raise AssertionError(f"the application ended with {self.process.returncode}: {self.remarks()}")
        return next((number for number, title in windows() - others if title == "Tallyquill"), None)

    def remarks(self):
        """What the application wrote to the standard error."""
        self.log.seek(0)
        return self.log.read()

    def activate(self):
        """Brings the window to the front and waits until keys reach it."""
        # The window manager calls it active before the application has taken the focus.
        activate(self.id)

    def answer(self, button):
        """Waits for a question in front of the window and clicks a button of it, DEFAULT_BUTTON or OTHER_BUTTON."""
        sheet = wait_until("a question", question)
        at_rest("the question", lambda: geometry(sheet))
        repeat_until("an answer", lambda: self._click_sheet(sheet, button), lambda: not is_open(sheet))
        self.activate()

    @staticmethod
    def _click_sheet(sheet, button):
        _, _, width, height = geometry(sheet)
        run("xdotool", "mousemove", "--window", sheet, str(width - button), str(height - 20), "sleep", "0.1")
        run("xdotool", "mousedown", "1", "sleep", "0.15", "mouseup", "1")

    def type(self, text):
        run("xdotool", "type", "--delay", "8", text)

    def key(self, *keys):
        run("xdotool", "key", "--delay", "20", *keys)

    def enter(self, line):
        self.type(line)
        self.key("Return")

    def point(self, x, y):
        """Moves the pointer to a place in the window, in pixels from its corner."""
        run("xdotool", "mousemove", "--window", self.id, str(x), str(y))

    def press(self, x, y):
        """A click into the window."""
        self.point(x, y)
        run("xdotool", "mousedown", "1", "sleep", "0.3", "mouseup", "1")

    def pull_down(self, x, y):
        """Presses the mouse button on what opens a menu, until the menu is there: the number of its window.

        A menu asks where the pointer is at that moment, not where it was when the button was pressed: the pointer may
        not go on, nor the button be let go, before the menu is there."""
        before = on_screen()

        def hold():
            run("xdotool", "mouseup", "1")
            self.point(x, y)
            run("xdotool", "mousedown", "1")

        return repeat_until("a menu", hold, lambda: on_screen() - before).pop()

    def highlight(self, menu, x, y):
        """Moves the pointer, whose button is pressed, to an item of the menu whose window that is."""
        before = at_rest("the menu", lambda: picture(menu))
        self.point(x, y)
        wait_until("the item's colors", lambda: picture(menu) != before)

    def choose(self, menu, item):
        """Pulls the menu or list at the place `menu` down to the place `item` and lets it go there."""
        shown = self.pull_down(*menu)
        self.highlight(shown, *item)
        run("xdotool", "mouseup", "1")
        wait_until("the end of the menu", lambda: shown not in on_screen())

    def open(self, title, *keys):
        """The number of the window with that in its title which the keys open, once keys go to it."""

        def press_keys():
            self.activate()
            self.key(*keys)

        panel = repeat_until(title, press_keys, lambda: titled(title))
        activate(panel)
        return panel

    def place(self):
        """Left, top, width and height inside the frame of the window manager."""
        return geometry(self.id)

    def rest(self):
        """The place, once it has not changed for a while."""
        return at_rest("the window", self.place)

    def frame(self):
        """The widths of the window manager's frame: left, right, top, bottom."""
        extents = run("xprop", "-id", self.id, "_NET_FRAME_EXTENTS").split("=")[1]
        return tuple(int(part) for part in extents.split(","))

    def opacity(self):
        """From 0 to 1, as compositors are told."""
        found = re.search(r"= (\d+)", run("xprop", "-id", self.id, "_NET_WM_WINDOW_OPACITY"))
        return int(found.group(1)) / 0xFFFFFFFF if found else 1.0

    def is_minimized(self):
        return "Iconic" in run("xprop", "-id", self.id, "WM_STATE")

    def copy(self, *keys):
        """What the keys put on the pasteboard."""
        put_on_pasteboard("nothing was copied")
        self.key(*keys)
        return wait_until("a copy", self._copied)

    @staticmethod
    def _copied():
        text = pasteboard()
        return None if text == "nothing was copied" else text

    def text(self):
        """The whole text of the console. Afterwards the cursor is at the end of the entry."""
        text = self.copy("alt+a", "alt+c")
        self.key("End")
        return text

    def wait_for_text(self, expected):
        """Waits until the text ends with the expected one."""
        self._wait_for_text(lambda text: text.endswith(expected), f"{expected!r} at the end of")

    def wait_for_whole_text(self, expected):
        """Waits until the text is the expected one."""
        self._wait_for_text(lambda text: text == expected, f"{expected!r} instead of")

    def _wait_for_text(self, fits, expectation):
        seen = ["what could not be read"]

        def shows():
            seen[:] = [self.text()]
            return fits(seen[0])

        try:
            wait_until(expectation, shows)
        except AssertionError:
            raise AssertionError(f"expected {expectation} {seen[0]!r}") from None

    def status_line_beside(self, text):
        """A fingerprint of the picture of the status line, taken when the console's text is `text`."""
        self.wait_for_whole_text(text)
        _, _, width, height = self.place()
        row = 3 * width  # bytes
        shot = picture(self.id)
        assert len(shot) == row * height, "the picture is not of the window's size"
        return hashlib.sha256(shot[-row * STATUS_LINE :]).hexdigest()

    def functions_file(self):
        """The lines of the functions file; none when there is no file."""
        try:
            with open(os.path.join(self.files, FUNCTIONS_FILE), encoding="latin-1") as file:
                return file.read().splitlines()
        except FileNotFoundError:
            return []

    def wait_for_end(self):
        wait_until("the end of the application", lambda: self.process.poll() is not None)
        self.log.close()
        return self.process.returncode

    def quit(self):
        """Leaves by the menu's key. The exit status."""
        # The key can come while the focus is on its way, when another copy has just ended.
        repeat_until("the key to quit", self._ask_to_quit, lambda: self.process.poll() is not None)
        return self.wait_for_end()

    def _ask_to_quit(self):
        try:
            self.activate()
            self.key("alt+q")
        except (RuntimeError, AssertionError):
            if self.process.poll() is None:
                raise

    def kill(self):
        """The end without any warning; harmless when it has come already."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
            self.process.wait()
        self.log.close()
