# SPDX-License-Identifier: MIT
"""Interrupting, stopping and going on."""
import unittest

from screen import *

BOMB = "f%d(x)=f%d(x)+f%d(x)"  # 25 of them would take hours


class Signals(ScreenTest):
    def with_bomb(self):
        console = self.start()
        console.enter("f1(x)=x+x", "f1(x)=x+x")
        for level in range(2, 26):
            console.send(BOMB % (level, level - 1, level - 1) + RETURN)
        console.ends_with("f25(x)=f24(x)+f24(x)", ">")
        return console

    def test_control_c_interrupts_an_entry(self):
        console = self.with_bomb()
        console.send("x=8; f25(1)" + RETURN)
        console.has("> x=8; f25(1)")
        console.wait(lambda: console.cursor()[1] == 0, "the cursor below the entry")
        console.send(ctrl("c"))
        console.ends_with("** ERROR: interrupted **", ">")
        console.enter("x", "** ERROR 7: invalid term = x **")

    def test_keys_typed_during_an_entry_are_not_lost(self):
        console = self.start()
        console.send("pause1000" + RETURN)
        console.has("> pause1000")
        console.wait(lambda: console.cursor()[1] == 0, "the cursor below the entry")
        console.send("6*7" + RETURN + "1+")
        console.ends_with("> 6*7", "ans = 42", "> 1+")

    def test_control_z_and_fg_show_the_line_again(self):
        shell = ["/bin/sh", "-c", "set -m; \"$TALLYQUILL\"; while fg; do :; done"]
        console = self.start(command=shell)
        console.send("1+2")
        console.has("> 1+2")
        console.send(ctrl("z"))
        console.wait(lambda: sum(row.startswith("> 1+2") for row in console.rows()) > 1,
                     "the line again")
        console.send("0" + RETURN)
        console.ends_with("ans = 21", ">")

    def test_control_z_stops_an_entry(self):
        shell = ["/bin/sh", "-c", "set -m; \"$TALLYQUILL\"; echo stopped; fg"]
        console = self.start(command=shell)
        console.send("pause3000" + RETURN)
        console.has("> pause3000")
        console.wait(lambda: console.cursor()[1] == 0, "the cursor below the entry")
        console.send(ctrl("z"))
        console.has("stopped")
        console.ends_with(">")
        console.enter("6*7", "ans = 42")

    def test_the_terminal_is_given_back(self):
        shell = ["/bin/sh", "-c", "stty -a >before; \"$TALLYQUILL\"; stty -a >after; cmp before after && echo same"]
        shell[2] = "cd \"$HOME\"; " + shell[2]
        console = self.start(command=shell)
        console.enter("1+1", "ans = 2")
        console.send(ctrl("d"))
        console.has("same")
        if HAS_EDITOR:
            self.assertEqual(console.bytes.count(b"\x1b[?2004h"), console.bytes.count(b"\x1b[?2004l"))


if __name__ == "__main__":
    unittest.main()
