# SPDX-License-Identifier: MIT
"""Pasted texts."""
import unittest

from screen import *


class Paste(ScreenTest):
    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_one_line_waits_in_the_editor(self):
        console = self.start()
        console.send("2*" + pasted("3−1"))
        console.shows("> 2*3-1", "5")
        console.send(LEFT + "0" + RETURN)
        console.shows("> 2*3-01", "ans = 5", ">")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_lines_run_one_by_one_and_the_last_one_stays(self):
        for end in ("\n", "\r", "\r\n"):
            console = self.start()
            console.send(pasted(end.join(["1+1", "", "x=2×3", "x+"])))
            console.shows("> 1+1", "ans = 2", ">", "> x=2*3", "x = 6", "> x+")
            console.send("1" + RETURN)
            console.ends_with("> x+1", "ans = 7", ">")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_text_goes_where_the_cursor_is(self):
        console = self.start()
        console.send("1+9" + LEFT + pasted("2\n3+"))
        console.shows("> 1+2", "ans = 3", "> 3+9", "12")
        self.assertEqual(console.cursor(), (2, 4))

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_is_literal(self):
        console = self.start()
        console.enter("42", "ans = 42")
        console.send(pasted("+5\n-3\n"))
        console.ends_with("> +5", "ans = 5", "> -3", "ans = -3", ">")
        console.send(pasted("+7"))
        console.ends_with("> +7", "7")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_a_line_end_alone_repeats_nothing(self):
        console = self.start()
        console.enter("x=2", "x = 2")
        console.enter("x=x*2", "x = 4")
        console.send(pasted("\n\n") + "x" + RETURN)
        console.ends_with("> x", "ans = 4", ">")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_escape_sequences_in_it_do_nothing(self):
        console = self.start()
        console.send(pasted("1\x1b[A\x1b]0;title\x07+2\n"))
        console.ends_with("** Invalid character/encoding used. **", ">")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_control_c_drops_the_lines_that_wait(self):
        console = self.start()
        console.send(pasted("pause5000\n" * 500 + "1+"))
        console.has("> pause5000")
        console.send(ctrl("c"))
        console.ends_with(">")
        console.enter("6*7", "ans = 42")

    def test_without_marks_every_line_runs(self):
        self.home.write(".inputrc", "set enable-bracketed-paste off\n")
        console = self.start()
        console.send("1+1\n2+2\n3+")
        console.has("ans = 4")
        console.send("3\n")
        console.ends_with("> 3+3", "ans = 6", ">")
        console.send("+5\n")  # it comes in one piece, as no key does
        console.ends_with("> +5", "ans = 5", ">")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_a_hundred_thousand_lines(self):
        console = self.start()
        console.enter("s=0", "s = 0")
        console.send(pasted("s=s+1\n" * 100000 + "s"))
        console.skim(b"100000")
        console.ends_with("> s", "100000")  # the rest in the editor, and its preview
        console.send(RETURN)
        console.ends_with("> s", "ans = 100000", ">")


if __name__ == "__main__":
    unittest.main()
