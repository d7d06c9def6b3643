# SPDX-License-Identifier: MIT
"""The same in tmux, a terminal that other people wrote: preview, wrap, resize, stop."""
import subprocess
import time
import unittest

from screen import *


@unittest.skipUnless(HAS_EDITOR, "built without the editor")
class Tmux(unittest.TestCase):
    def tmux(self, *arguments):
        return subprocess.run(["tmux", "-S", self.home.path + "/socket", "-f", "/dev/null", *arguments], check=True,
                              env=self.environment, capture_output=True, text=True).stdout

    def setUp(self):
        self.home = Home()
        self.environment = {"HOME": self.home.path, "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8"}
        self.tmux("new-session", "-d", "-x", "30", "-y", "8", "sh -c 'set -m; \"%s\"; while fg; do :; done'" % PROGRAM)
        self.shows(">")

    def tearDown(self):
        self.tmux("kill-server")
        self.home.remove()

    def shows(self, *rows):
        end = time.monotonic() + PATIENCE
        while True:
            shown = [row.rstrip() for row in self.tmux("capture-pane", "-p").rstrip("\n").split("\n")]
            if shown == list(rows):
                return
            self.assertLess(time.monotonic(), end, "never shown: %r; but %r" % (rows, shown))
            time.sleep(0.02)

    def keys(self, *keys):
        self.tmux("send-keys", *keys)

    def test_preview_answer_and_history(self):
        self.keys("2*3")
        self.shows("> 2*3", "6")
        self.keys("Enter", "Up", "4")
        self.shows("> 2*3", "ans = 6", "> 2*34", "68")
        self.keys("C-u")
        self.shows("> 2*3", "ans = 6", ">")

    def test_a_line_wraps_and_follows_the_size(self):
        self.keys("1" + "+1" * 16)
        self.shows("> 1" + "+1" * 13 + "+", "1+1+1", "17")
        self.tmux("resize-window", "-x", "60", "-y", "8")
        self.shows("> 1" + "+1" * 16, "17")
        self.keys("Enter")
        self.shows("> 1" + "+1" * 16, "ans = 17", ">")

    def test_a_stop_shows_the_line_again(self):
        self.keys("1+2")
        self.shows("> 1+2", "3")
        self.keys("C-z")
        end = time.monotonic() + PATIENCE
        while self.tmux("capture-pane", "-p").count("> 1+2") < 2:
            self.assertLess(time.monotonic(), end, "the line comes not again")
            time.sleep(0.02)
        self.keys("0", "Enter")
        while "ans = 21" not in self.tmux("capture-pane", "-p"):
            self.assertLess(time.monotonic(), end, "no answer")
            time.sleep(0.02)


if __name__ == "__main__":
    unittest.main()
