# SPDX-License-Identifier: MIT
"""The answer on the row below the line."""
import unittest

from screen import *


@unittest.skipUnless(HAS_EDITOR, "built without the editor")
class Preview(ScreenTest):
    def test_is_dim_and_follows_the_entry(self):
        console = self.start()
        console.send("2*3")
        console.shows("> 2*3", "6")
        self.assertEqual(console.cursor(), (0, 5))
        console.send("4")
        console.shows("> 2*34", "68")
        console.send("+")
        console.shows("> 2*34+")
        console.send(BACKSPACE)
        console.shows("> 2*34", "68")
        self.assertIn(b"\x1b[2m68\x1b[0m", console.bytes)

    def test_tells_the_value_of_an_assignment(self):
        console = self.start()
        console.send("x=2*3")
        console.shows("> x=2*3", "6")

    def test_hides_what_equals_the_entry_and_what_cannot_be_computed(self):
        console = self.start()
        for entry in ("12", "x=5", "x = 5", "f(x)=x*2", "1/0", "sin(", "# note", "mode rad", "clear", " "):
            console.send("1+1")
            console.shows("> 1+1", "2")
            console.send(ctrl("u") + entry)
            console.shows(("> " + entry).rstrip())
            console.send(ctrl("u"))
            console.shows(">")

    def test_is_gone_before_the_answer(self):
        console = self.start()
        console.send("10^30")
        console.ends_with("> 10^30", "1.0e30")
        console.send(RETURN)
        console.shows("> 10^30", "ans = 1.0e30", ">")
        console.send("f(x)=x" + RETURN)
        console.ends_with("> f(x)=x", "f(x)=x", ">")

    def test_stays_while_the_cursor_moves(self):
        console = self.start()
        console.send("10*12")
        console.shows("> 10*12", "120")
        console.send(LEFT * 3)
        console.wait(lambda: console.cursor() == (0, 4), "the cursor at the sign")
        console.shows("> 10*12", "120")

    def test_stands_below_a_line_that_wraps(self):
        console = self.start(width=20)
        console.send("1+" * 12 + "1")
        console.shows("> 1+1+1+1+1+1+1+1+1+", "1+1+1+1", "13")
        self.assertEqual(console.cursor(), (1, 7))
        console.send(ctrl("a"))
        console.wait(lambda: console.cursor() == (0, 2), "the cursor at the start")
        console.shows("> 1+1+1+1+1+1+1+1+1+", "1+1+1+1", "13")
        console.send("2")
        console.shows("> 21+1+1+1+1+1+1+1+1", "+1+1+1+1", "33")
        console.send(ctrl("k"))
        console.shows("> 2")

    def test_stands_below_a_line_with_wide_characters(self):
        console = self.start(width=11)
        console.send("5*5 # 漢字字")  # the second one would need the last column and one more
        console.shows("> 5*5 # 漢", "字字", "25")
        self.assertEqual(console.cursor(), (1, 4))
        console.send(BACKSPACE * 2)
        console.shows("> 5*5 # 漢", "25")
        console.send(RETURN)
        console.shows("> 5*5 # 漢", "ans = 25", ">")

    def test_is_not_drawn_during_a_paste(self):
        console = self.start()
        console.send(pasted("1+1\n" * 200 + "2*3"))
        console.ends_with("ans = 2", "> 2*3", "6")
        self.assertEqual(console.bytes.count(b"\x1b[2m"), 1)

    def test_stands_below_a_line_that_fills_its_row(self):
        console = self.start(width=20)
        console.send("1+" * 8 + "10")
        console.shows("> 1+1+1+1+1+1+1+1+10", "", "18")
        self.assertEqual(console.cursor(), (1, 0))
        console.send("0")
        console.shows("> 1+1+1+1+1+1+1+1+10", "0", "108")
        console.send(BACKSPACE * 2)
        console.shows("> 1+1+1+1+1+1+1+1+1", "9")
        console.send(RETURN)
        console.shows("> 1+1+1+1+1+1+1+1+1", "ans = 9", ">")

    def test_scrolls_the_last_row_up(self):
        console = self.start(height=5)
        for number in (1, 2, 3):
            console.enter("%d+0" % number, "ans = %d" % number)
        console.shows("> 2+0", "ans = 2", "> 3+0", "ans = 3", ">")
        console.send("4*5")
        console.shows("ans = 2", "> 3+0", "ans = 3", "> 4*5", "20")
        self.assertEqual(console.cursor(), (3, 5))
        console.send("0" + RETURN)
        console.shows("> 3+0", "ans = 3", "> 4*50", "ans = 200", ">")

    def test_scrolls_for_a_line_that_wraps_on_the_last_row(self):
        console = self.start(width=10, height=4)
        for number in (1, 2):
            console.send("%d+0" % number + RETURN)
            console.ends_with("ans = %d" % number, ">")
        console.send("111*222*3")
        console.shows("ans = 2", "> 111*222*", "3", "73926")
        console.send(ctrl("u"))
        console.shows("ans = 2", ">")
        console.send("7*8" + RETURN)
        console.ends_with("> 7*8", "ans = 56", ">")

    def test_is_cut_to_ten_columns(self):
        console = self.start(width=10)
        console.send("2/3")
        console.shows("> 2/3", "0.6666666…")
        console.send("+1")
        console.shows("> 2/3+1", "1.6666666…")

    def test_of_a_screen_of_one_row_is_none(self):
        console = self.start(height=1)
        console.send("2*3" + RETURN)
        console.shows(">")
        console.send("x")
        console.shows("> x")

    def test_follows_a_window_that_is_resized(self):
        console = self.start(width=40, height=8)
        console.send("1+" * 7 + "1")
        console.shows("> 1+1+1+1+1+1+1+1", "8")
        console.resize(12, 8)
        console.shows("> 1+1+1+1+1+", "1+1+1", "8")
        console.resize(60, 8)
        console.shows("> 1+1+1+1+1+1+1+1", "8")
        console.send("0" + RETURN)
        console.shows("> 1+1+1+1+1+1+1+10", "ans = 17", ">")

    def test_of_a_window_that_is_made_lower_costs_no_row(self):
        console = self.start(width=40, height=12)
        for number in range(1, 6):
            console.enter("%d+1" % number, "ans = %d" % (number + 1))
        console.send("2+3")
        console.ends_with("> 2+3", "5")
        console.lower(6)
        console.shows("> 4+1", "ans = 5", "> 5+1", "ans = 6", "> 2+3", "5")
        console.send("0" + RETURN)
        console.ends_with("ans = 6", "> 2+30", "ans = 32", ">")

    def test_stands_below_the_line_with_the_mode_in_the_prompt(self):
        self.home.write(".inputrc", "set editing-mode vi\nset show-mode-in-prompt on\nset keyseq-timeout 10\n")
        console = self.start(width=20, ready=False)
        console.shows("(ins)>")
        console.send("1+1+1+1+1+1+1")
        console.shows("(ins)> 1+1+1+1+1+1+1", "", "7")  # the prompt and the line fill the row
        console.send("+1")
        console.shows("(ins)> 1+1+1+1+1+1+1", "+1", "8")
        console.send(ESCAPE)
        console.shows("(cmd)> 1+1+1+1+1+1+1", "+1", "8")
        console.send("x")
        console.shows("(cmd)> 1+1+1+1+1+1+1", "+")

    def test_is_not_drawn_in_a_search(self):
        console = self.start()
        console.enter("3*4", "ans = 12")
        console.send("5*6")
        console.ends_with("> 5*6", "30")
        console.send(ctrl("r") + "3")
        console.ends_with("(reverse-i-search)`3': 3*4")
        console.send(RETURN)
        console.ends_with("> 3*4", "ans = 12", ">")

    def test_gives_long_work_up(self):
        console = self.start()
        console.send("f1(x)=x+x" + RETURN)
        for level in range(2, 26):
            console.send("f%d(x)=f%d(x)+f%d(x)" % (level, level - 1, level - 1) + RETURN)
        console.has("f25(x)=f24(x)+f24(x)")
        console.ends_with(">")
        console.send("f3(1)")
        console.ends_with("> f3(1)", "8")
        console.send(ctrl("w") + "f25(1)")  # it would take hours
        console.ends_with("> f25(1)")
        console.send(ctrl("w") + "f3(2)")
        console.ends_with("> f3(2)", "16")


if __name__ == "__main__":
    unittest.main()
