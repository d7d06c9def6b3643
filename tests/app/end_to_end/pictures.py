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

from calculator_window import OTHER_BUTTON, CalculatorWindow, run, wait_until, windows
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
        settings = file.read().replace("<name>Clearlooks</name>", "<name>Night</name>")
    # A window behind its question keeps its colors.
    theme = os.path.expanduser("~/.themes/Night/openbox-3")
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
    run("openbox", "--reconfigure")
    time.sleep(0.5)


def take(folder, name, window):
    """A picture of the window with its frame, and with a shadow around it."""
    facts = run("xwininfo", "-id", window)
    x, y, width, height = (
        int(re.search(rf"{fact}: +(\d+)", facts).group(1))
        for fact in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
    )
    extents = run("xprop", "-id", window, "_NET_FRAME_EXTENTS").split("=")[1]
    left, right, top, bottom = (int(part) for part in extents.split(","))
    crop = f"{width + left + right}x{height + top + bottom}+{x - left}+{y - top}"
    time.sleep(0.5)
    shadow = ["(", "+clone", "-background", "black", "-shadow", "50x8+0+3", ")", "+swap", "-background", "none"]
    screen = subprocess.run(["import", "-window", "root", "png:-"], stdout=subprocess.PIPE, check=True).stdout
    target = os.path.join(folder, name + ".png")
    command = ["convert", "png:-", "-crop", crop, "+repage", *shadow, "-layers", "merge", "+repage", "-strip"]
    subprocess.run([*command, "-define", "png:exclude-chunks=date,time", target], input=screen, check=True)


def place(window, x, y, width, height):
    run("xdotool", "windowmove", window, str(x), str(y), "windowsize", window, str(width), str(height))
    time.sleep(0.5)
    run("openbox", "--reconfigure")  # it leaves the title where it was
    time.sleep(0.5)


def titled(title):
    return wait_until(title, lambda: next((number for number, name in windows() if name == title), None))


def drag(window, x, y):
    run("xdotool", "mousemove", "--window", window, str(x), str(y), "sleep", "0.2", "mousedown", "1", "sleep", "0.5")


def take_all(folder):
    look_dark()
    with tempfile.TemporaryDirectory() as files:
        shown = CalculatorWindow(files, asks=True)
        try:
            titled("")
            time.sleep(0.5)
            take(folder, "first-run", shown.id)
            shown.answer(OTHER_BUTTON)
            place(shown.id, 300, 200, 560, 430)
            for line in SESSION:
                shown.enter(line)
            shown.type("2*pi*6371 km->mile")
            take(folder, "console", shown.id)

            drag(shown.id, 20, 11)
            run("xdotool", "mousemove", "--window", shown.id, "50", "75", "sleep", "0.3")
            take(folder, "menus", shown.id)
            run("xdotool", "mousemove", "--window", shown.id, "400", "250", "sleep", "0.2", "mouseup", "1")

            shown.key("alt+comma")
            panel = titled("Tallyquill Preferences")
            time.sleep(0.5)
            shown.key("Tab", "Tab", "Tab", "space", "shift+Tab", "shift+Tab", "shift+Tab")
            take(folder, "preferences", panel)
        finally:
            shown.process.terminate()
            shown.process.wait(10)


def shades(path):
    """How much of the picture is dark, and how much light gray, of all that is not transparent."""
    command = ["convert", path, "-background", "black", "-flatten", "-colorspace", "Gray", "-depth", "8", "gray:-"]
    pixels = subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout
    dark = sum(pixel < 0x60 for pixel in pixels)
    gray = sum(0x90 < pixel < 0xD0 for pixel in pixels)
    return dark / len(pixels), gray / len(pixels)


class Pictures(unittest.TestCase):
    def test_every_window_is_dark(self):
        folder = os.environ.get("TALLYQUILL_PICTURES") or tempfile.mkdtemp()
        take_all(folder)
        self.assertEqual(
            sorted(os.listdir(folder)), ["console.png", "first-run.png", "menus.png", "preferences.png"]
        )
        for name in os.listdir(folder):
            dark, gray = shades(os.path.join(folder, name))
            self.assertGreater(dark, 0.8, name)
            self.assertLess(gray, 0.1, name)  # a control without the theme is of this gray


if __name__ == "__main__":
    main(Pictures)
