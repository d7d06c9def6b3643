# SPDX-License-Identifier: MIT
"""Entries brought back."""
import unittest

from screen import *


@unittest.skipUnless(HAS_EDITOR, "built without the editor")
class History(ScreenTest):
    def with_entries(self, *entries):
        self.home.write(".local/state/tallyquill/history", "".join(entry + "\n" for entry in entries))
        return self.start()

    def line(self, console, keys, entry):
        console.send(keys)
        console.wait(lambda: console.rows()[0] == ("> " + entry).rstrip(), entry)

    def test_up_and_down_go_through_all_entries(self):
        console = self.with_entries("1+1", "sqrt(2)", "x=3")
        for keys, entry in ((UP, "x=3"), (UP, "sqrt(2)"), (UP, "1+1"), (UP, "1+1"), (DOWN, "sqrt(2)"),
                            (DOWN, "x=3"), (DOWN, ""), (DOWN, "")):
            self.line(console, keys, entry)

    def test_up_brings_back_what_begins_as_what_is_typed(self):
        console = self.with_entries("sin(30)", "sqrt(4)", "Sin(1)", "sin(45)", "2+2")
        self.line(console, "si", "si")
        for keys, entry in ((UP, "sin(45)"), (UP, "sin(30)"), (UP, "sin(30)"), (DOWN, "sin(45)"), (DOWN, "si")):
            self.line(console, keys, entry)
        self.line(console, UP + "+1", "sin(45)+1")
        console.send(RETURN)
        console.has("> sin(45)+1")

    def test_at_the_start_of_the_line_all_come_back(self):
        console = self.with_entries("1+1", "2+2")
        self.line(console, "1" + ctrl("a") + UP, "2+2")

    def test_equal_entries_come_once(self):
        console = self.with_entries("2+2", "1+1", "1+1")
        self.line(console, UP + UP, "2+2")

    def test_a_search_finds_a_part(self):
        console = self.with_entries("price=3", "sqrt(2)", "5 km->mi")
        console.send(ctrl("r") + "ic")
        console.shows("(reverse-i-search)`ic': price=3")
        console.send(ctrl("e"))
        self.line(console, "*2", "price=3*2")

    def test_what_was_recalled_can_be_undone(self):
        console = self.with_entries("1+1")
        self.line(console, "1" + UP, "1+1")
        self.line(console, ctrl("_"), "1")

    def test_an_entry_of_this_run_comes_back(self):
        console = self.start()
        console.enter("6*7", "ans = 42")
        console.send(" 1+1" + RETURN)  # a leading blank keeps it out
        console.ends_with(">  1+1", "ans = 2", ">")
        console.send(UP)
        console.ends_with("> 6*7", "42")


if __name__ == "__main__":
    unittest.main()
