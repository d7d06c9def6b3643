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

PATIENCE = 15  # seconds until something that should happen counts as not happening
QUIT_TIME = 5  # seconds until the key to quit counts as lost
STEP = 0.05  # seconds between two looks
FUNCTIONS_FILE = "pelmo_functions.txt"
SETTINGS_FILE = "pelmo_settings.plist"
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


def wait_until(what, happened):
    """The first true value of happened(); fails when there is none in time."""
    end = time.monotonic() + PATIENCE
    while True:
        value = happened()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain: {what}")
        time.sleep(STEP)


def pasteboard():
    """The text on the pasteboard, or None when its owner does not answer at once."""
    try:
        done = subprocess.run(
            ["xclip", "-o", "-selection", "clipboard"],
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


def geometry(window):
    """Left, top, width and height inside the frame of the window manager."""
    lines = dict(line.split("=") for line in run("xdotool", "getwindowgeometry", "--shell", window).split())
    return tuple(int(lines[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))


def has_focus(window):
    """Whether the keys go to the window, given by its number."""
    return int(run("xdotool", "getwindowfocus", "-f")) == int(window, 0)


def activate(window):
    """Asks the window manager for the focus, again when nothing comes of it, until keys go to the window."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        run("xdotool", "windowactivate", window)
        patience = time.monotonic() + 1
        while time.monotonic() < patience:
            try:
                if has_focus(window):
                    return
            except RuntimeError:
                pass  # for a moment no window has the focus
            time.sleep(STEP)
    raise AssertionError("waited in vain: the focus")


class CalculatorWindow:
    """One running copy of the application, whose files are in `folder`/Tallyquill."""

    def __init__(self, folder, *arguments, asks=False):
        """`asks`: it begins with a question, which keeps the window from becoming active."""
        self.files = os.path.join(folder, "Tallyquill")
        others = windows()
        self.log = open(os.path.join(folder, "log.txt"), "a+", encoding="utf-8")
        self.process = subprocess.Popen(
            [os.environ["TALLYQUILL_APP"], *arguments],
            env=dict(os.environ, XDG_DATA_HOME=folder),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=self.log,
        )
        self.id = wait_until("the window", lambda: self._find(others))
        if not asks:
            self.activate()

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
        sheet = wait_until("a question", lambda: next((number for number, title in windows() if title == ""), None))
        time.sleep(0.3)  # it is placed and drawn when it is there already

        def is_gone():
            return sheet not in (number for number, _ in windows())

        end = time.monotonic() + PATIENCE
        while not is_gone() and time.monotonic() < end:
            self._click_sheet(sheet, button)
            patience = time.monotonic() + 1
            while not is_gone() and time.monotonic() < patience:
                time.sleep(STEP)
        assert is_gone(), "waited in vain: the end of the question"
        self.activate()

    @staticmethod
    def _click_sheet(sheet, button):
        try:
            place = dict(line.split("=") for line in run("xdotool", "getwindowgeometry", "--shell", sheet).split())
            x, y = int(place["WIDTH"]) - button, int(place["HEIGHT"]) - 20
            run("xdotool", "mousemove", "--window", sheet, str(x), str(y), "sleep", "0.1")
            run("xdotool", "mousedown", "1", "sleep", "0.15", "mouseup", "1")
        except RuntimeError:
            pass  # it went away meanwhile

    def type(self, text):
        run("xdotool", "type", "--delay", "8", text)

    def key(self, *keys):
        run("xdotool", "key", "--delay", "20", *keys)

    def enter(self, line):
        self.type(line)
        self.key("Return")

    def press(self, x, y, to=None):
        """A click into the window, in pixels from its corner; with `to` the button is let go over there."""
        run("xdotool", "mousemove", "--window", self.id, str(x), str(y), "sleep", "0.1")
        run("xdotool", "mousedown", "1", "sleep", "0.3")
        if to:
            run("xdotool", "mousemove", "--window", self.id, str(to[0]), str(to[1]), "sleep", "0.3")
        run("xdotool", "mouseup", "1")

    def place(self):
        """Left, top, width and height inside the frame of the window manager."""
        return geometry(self.id)

    def rest(self):
        """The place, once it has not changed for a while."""
        looks = [None, self.place()]

        def rests():
            time.sleep(0.3)
            looks[:] = [looks[1], self.place()]
            return looks[0] == looks[1]

        wait_until("a window at rest", rests)
        return looks[1]

    def frame(self):
        """The widths of the window manager's frame: left, right, top, bottom."""
        extents = run("xprop", "-id", self.id, "_NET_FRAME_EXTENTS").split("=")[1]
        return tuple(int(part) for part in extents.split(","))

    def opacity(self):
        """From 0 to 1, as compositors are told."""
        found = re.search(r"= (\d+)", run("xprop", "-id", self.id, "_NET_WM_WINDOW_OPACITY"))
        return int(found.group(1)) / 0xFFFFFFFF if found else 1.0

    def is_minimised(self):
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
        area = dict(line.split("=") for line in run("xdotool", "getwindowgeometry", "--shell", self.id).split())
        row = 3 * int(area["WIDTH"])  # bytes
        shot = subprocess.run(
            ["import", "-silent", "-window", self.id, "-depth", "8", "rgb:-"],
            stdout=subprocess.PIPE,
            timeout=PATIENCE,
            check=True,
        ).stdout
        assert len(shot) == row * int(area["HEIGHT"]), "the picture is not of the window's size"
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
        for _ in range(PATIENCE // QUIT_TIME):
            self._ask_to_quit()
            try:
                self.process.wait(QUIT_TIME)
            except subprocess.TimeoutExpired:
                continue  # the key came while the focus was on its way, when another copy has just ended
            break
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
