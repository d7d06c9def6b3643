# SPDX-License-Identifier: MIT
"""Colors, and the prompt without an editor."""
import os
import shutil
import termios
import unittest

from screen import *


PLAIN_TERMINALS = ("dumb", "unheard-of") if HAS_EDITOR else ("dumb",)  # the editor's library knows the kinds


class Colors(ScreenTest):
    def color(self, console, row, column):
        cell = console.screen.buffer[row][column]
        return cell.data, cell.fg, cell.bold

    def test_prompt_name_value_and_error_have_their_own(self):
        console = self.start()
        console.enter("x=42", "x = 42")
        console.enter("1/0", "** ERROR: divide by zero **")
        self.assertEqual(self.color(console, 0, 0), (">", "green", False))
        self.assertEqual(self.color(console, 0, 2), ("x", "default", False))
        self.assertEqual(self.color(console, 1, 0), ("x", "cyan", False))
        self.assertEqual(self.color(console, 1, 4), ("4", "default", True))
        self.assertEqual(self.color(console, 3, 0), ("*", "red", False))

    def test_can_be_left_out(self):
        for arguments, variables in ((("--color=never",), {}), ((), {"NO_COLOR": "1"}),
                                     (("--color", "never"), {"CLICOLOR_FORCE": "1"}),
                                     (("--plain",), {}), *(((), {"TERM": kind}) for kind in PLAIN_TERMINALS)):
            console = self.start(*arguments, **variables)
            console.enter("x=42", "x = 42")
            self.assertEqual(self.color(console, 1, 0), ("x", "default", False))
            self.assertNotIn(b"\x1b[3", console.bytes)

    def test_can_be_asked_for(self):
        console = self.start("--color=always", NO_COLOR="1")
        console.enter("x=42", "x = 42")
        self.assertEqual(self.color(console, 1, 0), ("x", "cyan", False))

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_a_line_wraps_where_it_should(self):
        console = self.start(width=10, height=6)
        console.send("123456789" + LEFT * 9 + "0")
        console.shows("> 01234567", "89")
        self.assertEqual(console.cursor(), (0, 3))


class Plain(ScreenTest):
    def test_no_escape_sequence_is_written(self):
        for arguments, variables in ((("--plain",), {}), (("--plain", "--color=always"), {"CLICOLOR_FORCE": "1"}),
                                     *(((), {"TERM": kind}) for kind in PLAIN_TERMINALS)):
            console = self.start(*arguments, **variables)
            console.send("2×3²" + RETURN)
            console.shows("> 2×3²", "ans = 18", ">")
            console.send("1/0" + RETURN + UP + RETURN)
            console.has("** ERROR: divide by zero **")
            console.send("clear" + RETURN)
            console.enter("+".join(["1"] * 4999), "ans = 4999")
            console.send("1+1")
            console.ends_with("> 1+1")
            console.send(ctrl("c"))
            console.ends_with("> 1+1", ">")
            console.send(ctrl("d"))
            console.end()
            self.assertNotIn(b"\x1b", console.bytes)

    def test_erasing_leaves_nothing_of_a_character(self):
        for variables in ({}, {"LC_ALL": "C"}):
            console = self.start("--plain", **variables)
            for keys, left, more in (("1+1 漢", "> 1+1", "> 1+1 7"), ("1 e\u0301", "> 1", "> 1 7"),
                                     ("12\t3\t", "> 12    3", "> 12    37"), ("5 \x01", "> 5", "> 5 7")):
                console.send(keys + BACKSPACE)
                console.ends_with(left)
                console.send("7")
                console.ends_with(more)
                console.send(ctrl("u"))
                console.ends_with(">")
            console.send("1+ 漢字 漢" + ctrl("w"))
            console.ends_with("> 1+ 漢字")
            console.send(ctrl("w") + "2" + RETURN)
            console.ends_with("> 1+ 2", "ans = 3", ">")

    @unittest.skipUnless(os.path.exists("/proc/self/comm"), "the system does not tell whose child a program is")
    def test_inside_rlwrap_the_terminal_reads_lines(self):
        shell = shutil.copy("/bin/sh", self.home.path + "/rlwrap")  # it sees what the wrapper would see
        console = self.start(command=[shell, "-c", "trap : INT; \"$TALLYQUILL\" --plain; echo status $?"])
        flags = termios.tcgetattr(console.child.child_fd)[3]
        self.assertTrue(flags & termios.ICANON and flags & termios.ECHO)
        console.enter("1+" + "x" + BACKSPACE + "2", "ans = 3")
        console.send("1+1")
        console.ends_with("> 1+1")
        console.send(ctrl("c"))
        console.ends_with(">")
        console.send("+".join(["1"] * 2048) + RETURN)
        console.ends_with("** ERROR: this terminal cuts lines of more than 4094 characters **", ">")
        console.enter("6*7", "ans = 42")
        console.send(ctrl("d"))
        console.has("status 1")

    def test_operators_stay_literal(self):
        console = self.start("--plain")
        console.enter("42", "ans = 42")
        console.enter("+5", "ans = 5")


if __name__ == "__main__":
    unittest.main()
