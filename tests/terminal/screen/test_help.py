# SPDX-License-Identifier: MIT
"""What the prompt says beside answers: marks and hints after errors, notes, and its own words."""
import unittest

from screen import *


class Help(ScreenTest):
    def type(self, console, line):
        console.send(line + RETURN)

    def test_an_error_is_marked_below_the_entry_and_a_hint_follows(self):
        console = self.start()
        self.type(console, "area=3")
        console.ends_with("area = 3", ">")
        self.type(console, "2 * aera")
        console.ends_with("> 2 * aera", "      ^^^^", "** ERROR 7: invalid term = aera **", "the nearest name is area", ">")

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_the_mark_stands_below_the_entry_with_the_mode_in_the_prompt(self):
        self.home.write(".inputrc", "set editing-mode vi\nset show-mode-in-prompt on\n")
        console = self.start(ready=False)
        console.shows("(ins)>")
        self.type(console, "2*wdth")
        console.shows("(ins)> 2*wdth", "         ^^^^", "** ERROR 7: invalid term = wdth **", "(ins)>")
        console.send(pasted("2*wdth\n3+hght\n"))
        console.ends_with("(ins)> 2*wdth", "         ^^^^", "** ERROR 7: invalid term = wdth **",
                          "> 3+hght", "    ^^^^", "** ERROR 7: invalid term = hght **", "(ins)>")

    def test_nothing_is_marked_when_the_term_is_in_a_row_above_the_last(self):
        console = self.start(width=20)
        self.type(console, "wdth+111111111111111111111111")
        console.ends_with("** ERROR 7: invalid", "term = wdth **", ">")
        self.assertFalse(any("^" in row for row in console.rows()))

    def test_hints_and_notes_are_broken_between_words(self):
        console = self.start(width=40)
        self.type(console, "2^3^2")
        console.shows("> 2^3^2", "ans = 64", "powers are taken from left to right:", "2^3^2 is (2^3)^2 = 64; 2^(3^2) is 512", ">")
        self.type(console, "help")
        console.ends_with("** ERROR 7: invalid term = help **", ":help explains the calculator, :vars", "lists the variables, :quit ends the",
                          "program", ">")

    def test_a_note_on_powers_is_given_once(self):
        console = self.start()
        note = "powers are taken from left to right: 2^3^2 is (2^3)^2 = 64; 2^(3^2) is 512"
        self.type(console, "echo 2^3^2")
        console.ends_with("> echo 2^3^2", "2^3^2", ">")
        self.type(console, "2^3^2")
        console.ends_with("> 2^3^2", "ans = 64", note, ">")
        self.type(console, "3^2^1")
        console.ends_with("ans = 64", note, "> 3^2^1", "ans = 9", ">")

    def test_the_words_of_the_prompt_answer_and_end_the_program(self):
        console = self.start()
        self.type(console, "mask=10")
        console.ends_with("mask = 10", ">")
        self.type(console, ":base bin")
        console.ends_with("> :base bin", "mask = 0b 1010", ">")
        self.type(console, ":set sigfigs 3")
        console.ends_with("  sigfigs = 3               shows so many significant figures, 1 to 100", ">")
        self.type(console, "2/3")
        console.ends_with("> 2/3", "ans = 0.667", ">")
        self.type(console, ":nonsense")
        console.ends_with("no word of the prompt is called ':nonsense'; :help lists them", ">")
        self.type(console, ":quit")
        self.assertEqual(console.end(), 1)  # there was an error

    def test_the_list_of_words_fits_into_eighty_columns(self):
        console = self.start(height=40)
        self.type(console, ":help")
        console.wait(lambda: console.rows()[-1] == ">" and len(console.rows()) > 8, "the list")
        self.assertEqual(console.rows()[0], "> :help")
        self.assertTrue(console.rows()[3].startswith("  :vars  "), console.rows()[3])


if __name__ == "__main__":
    unittest.main()
