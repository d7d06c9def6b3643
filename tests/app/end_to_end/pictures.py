# SPDX-License-Identifier: MIT
"""The pictures of the documents, taken from the built application.

    tests/app/with_display.sh --wm env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/pictures.py

They go to the folder TALLYQUILL_PICTURES, when there is one. The test sees to it that they can be taken and show a
window that is dark throughout; whether they are good, only a person can say.
"""

import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest

from calculator_window import OTHER_BUTTON, CalculatorWindow, at_rest, geometry, question, run, wait_until
from scenario import main

SESSION = [
    "price = 19.90",
    "price * 3 + 4.50",
    "c(a,b) = sqrt(a^2 + b^2)",
    "c(3,4)",
    "26.2 mile->km",
    "0xff & 0b111100",
]


def look_dark():
    """The window manager's frames suit the window."""
    folder = os.path.expanduser("~/.config/openbox")
    os.makedirs(folder)
    with open("/etc/xdg/openbox/rc.xml", encoding="utf-8") as file:
        settings = file.read().replace("<name>Clearlooks</name>", "<name>Dark</name>")
    # A window behind its question keeps its colors.
    theme = os.path.expanduser("~/.themes/Dark/openbox-3")
    shutil.copytree("/usr/share/themes/Onyx/openbox-3", theme)
    with open(theme + "/themerc", encoding="utf-8") as file:
        kept = [line for line in file if not re.match(r"window\.inactive\.(title|border|client)", line)]
    titles = [line for line in kept if re.match(r"window\.active\.title", line)]
    kept += [re.sub(r"^window\.active", "window.inactive", line) for line in titles]
    kept += ["window.inactive.border.color: #181818\n", "window.inactive.client.color: #181818\n"]
    with open(theme + "/themerc", "w", encoding="utf-8") as file:
        file.writelines(kept)
    with open(folder + "/rc.xml", "w", encoding="utf-8") as file:
        file.write(settings)
    reconfigure()


def reconfigure():
    run("openbox", "--reconfigure")
    time.sleep(0.5)  # it does not say when it has read its settings


def take(folder, name, window):
    """A picture of the window with its frame, and with a shadow around it, once all of it is drawn."""
    target = os.path.join(folder, name + ".png")

    def is_drawn():
        take_now(target, window)
        return is_dark(target)

    at_rest("the window", lambda: geometry(window))
    wait_until(f"a dark picture, {name}", is_drawn)


def take_now(target, window):
    facts = run("xwininfo", "-id", window)
    x, y, width, height = (
        int(re.search(rf"{fact}: +(\d+)", facts).group(1))
        for fact in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
    )
    extents = run("xprop", "-id", window, "_NET_FRAME_EXTENTS").split("=")[1]
    left, right, top, bottom = (int(part) for part in extents.split(","))
    crop = f"{width + left + right}x{height + top + bottom}+{x - left}+{y - top}"
    shadow = ["(", "+clone", "-background", "black", "-shadow", "50x8+0+3", ")", "+swap", "-background", "none"]
    screen = subprocess.run(["import", "-window", "root", "png:-"], stdout=subprocess.PIPE, check=True).stdout
    command = ["convert", "png:-", "-crop", crop, "+repage", *shadow, "-layers", "merge", "+repage", "-strip"]
    subprocess.run([*command, "-define", "png:exclude-chunks=date,time", target], input=screen, check=True)


def place(window, x, y, width, height):
    run("xdotool", "windowmove", window, str(x), str(y), "windowsize", window, str(width), str(height))
    wait_until("the new size", lambda: geometry(window)[2:] == (width, height))
    reconfigure()  # it leaves the title where it was


def take_all(folder):
    look_dark()
    with tempfile.TemporaryDirectory() as files:
        shown = CalculatorWindow(files, asks=True)
        try:
            sheet = wait_until("the question", question)
            at_rest("the question", lambda: geometry(sheet))
            take(folder, "first-run", shown.id)
            shown.answer(OTHER_BUTTON)
            place(shown.id, 300, 200, 560, 430)
            for line in SESSION:
                shown.enter(line)
            shown.type("2*pi*6371 km->mile")
            take(folder, "console", shown.id)

            menu = shown.pull_down(20, 11)
            shown.highlight(menu, 50, 60)
            take(folder, "menus", shown.id)
            shown.point(400, 250)
            run("xdotool", "mouseup", "1")

            panel = shown.open("Tallyquill Preferences", "alt+comma")
            shown.key("Tab", "Tab", "Tab", "space", "shift+Tab", "shift+Tab", "shift+Tab")
            take(folder, "preferences", panel)
        finally:
            shown.process.terminate()
            shown.process.wait(10)


def is_dark(path):
    """Whether most of the picture is dark, and little is of the light gray of a control without the theme."""
    command = ["convert", path, "-background", "black", "-flatten", "-colorspace", "Gray", "-depth", "8", "gray:-"]
    pixels = subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout
    dark = sum(pixel < 0x60 for pixel in pixels)
    gray = sum(0x90 < pixel < 0xD0 for pixel in pixels)
    return dark > 0.8 * len(pixels) and gray < 0.1 * len(pixels)


class Pictures(unittest.TestCase):
    def test_every_window_is_dark(self):
        folder = os.environ.get("TALLYQUILL_PICTURES") or tempfile.mkdtemp()
        take_all(folder)
        self.assertEqual(
            sorted(os.listdir(folder)), ["console.png", "first-run.png", "menus.png", "preferences.png"]
        )
        for name in os.listdir(folder):
            self.assertTrue(is_dark(os.path.join(folder, name)), name)


if __name__ == "__main__":
    main(Pictures)
