# SPDX-License-Identifier: MIT
"""The keys of the editor."""
import unittest

from screen import *


@unittest.skipUnless(HAS_EDITOR, "built without the editor")
class Line(ScreenTest):
    def test_an_entry_is_answered_below_it(self):
        console = self.start()
        console.send("2+3*4" + RETURN)
        console.shows("> 2+3*4", "ans = 14", ">")
        self.assertEqual(console.cursor(), (2, 2))

    def test_keys_move_and_delete(self):
        console = self.start()
        for keys, entry in (("1+2" + LEFT + "0", "1+02"), (ctrl("a") + "9", "91+02"), (ctrl("e") + "+1", "91+02+1"),
                            (BACKSPACE + "7", "91+02+7"), (ESCAPE + "b" + ctrl("k") + "8", "91+02+8"),
                            (ctrl("w") + "5", "5"), (ctrl("u"), "")):
            console.send(keys)
            console.wait(lambda: console.rows()[0] == ("> " + entry).rstrip(), entry)

    def test_what_was_killed_comes_back(self):
        console = self.start()
        console.send("12*3" + ctrl("u") + "1+" + ctrl("y"))
        console.shows("> 1+12*3", "37")

    def test_changes_are_undone(self):
        console = self.start()
        console.send("1+1" + ctrl("w") + "x")
        console.shows("> x")
        console.send(ctrl("_") + ctrl("_"))
        console.wait(lambda: console.rows()[0] == "> 1+1", "1+1")

    def test_keys_of_vi(self):
        self.home.write(".inputrc", "set editing-mode vi\nset keyseq-timeout 10\n")
        console = self.start()
        console.send("1+2")
        console.wait(lambda: console.rows()[0] == "> 1+2", "1+2")
        console.send(ESCAPE)
        console.wait(lambda: console.cursor() == (0, 4), "the cursor on the last character")
        console.send("0r5A*2" + RETURN)
        console.ends_with("> 5+2*2", "ans = 9", ">")

    def test_a_key_is_done_no_oftener_than_an_entry_has_characters(self):
        """Readline would ring the bell, or type, for hours."""
        console = self.start()
        console.send(ESCAPE + "99999999" + "1" + ctrl("h") + "2+3" + RETURN)  # deletes as often
        console.ends_with("> 2+3", "ans = 5", ">")
        console.send(ESCAPE + "\n" + "7" + ESCAPE)  # the keys of vi
        console.wait(lambda: console.cursor()[1] == 2, "the cursor on the 7")
        console.send("77777777777~" + RETURN)
        console.ends_with("> 7", "ans = 7", ">")

    def test_bindings_of_the_person_win(self):
        self.home.write(".inputrc", '$if tallyquill\n"\\C-t": "6*7"\n"\\e[A": "up"\n$endif\n')
        console = self.start()
        console.send(ctrl("t"))
        console.shows("> 6*7", "42")
        console.send(UP)
        console.shows("> 6*7up", "42")

    def test_wide_characters_take_their_room(self):
        console = self.start()
        console.send("1 # 漢é" + LEFT + LEFT + BACKSPACE)
        console.shows("> 1 #漢é", "1")
        self.assertEqual(console.cursor(), (0, 5))

    def test_an_operator_typed_first_applies_to_the_last_answer(self):
        console = self.start()
        console.enter("6*7", "ans = 42")
        for keys, entry in (("+1", "> ans+1"), ("*2", "> ans*2"), ("/2", "> ans/2"), ("-2", "> -2"),
                            ("--2", "> ans-2"), ("---2", "> -2"), ("×2", "> ans*2"), ("÷2", "> ans/2")):
            console.send(keys)
            console.wait(lambda: entry in console.rows()[-2:], entry)
            console.send(ctrl("u"))
            console.ends_with(">")

    def test_signs_copied_from_pages_are_read(self):
        console = self.start()
        console.enter("2 × 3² − 8÷4", "ans = 16")
        console.has("> 2 * 3^2 - 8/4")
        console.enter("10²·１．５\u00a0", "ans = 150")
        console.has("> 10^2*1.5")
        console.send("10" + "²")
        console.has("> 10^2")
        console.send("³")
        console.has("> 10^23")

    def test_control_c_gives_the_line_up(self):
        console = self.start()
        console.send("1+2")
        console.shows("> 1+2", "3")
        console.send(ctrl("c"))
        console.shows("> 1+2^C", ">")
        console.enter("2+2", "ans = 4")

    def test_keys_directly_behind_control_c_are_the_next_line(self):
        for arguments, given_up in (((), "> abc^C"), (("--plain",), "> abc")):
            console = self.start(*arguments)
            console.send("abc")
            console.shows("> abc")
            console.send(ctrl("c") + "5+5" + RETURN)
            console.shows(given_up, "> 5+5", "ans = 10", ">")

    def test_control_d_ends_on_an_empty_line_only(self):
        console = self.start()
        console.send("12" + ctrl("a") + ctrl("d"))
        console.shows("> 2")
        console.send(ctrl("d"))
        console.shows(">")
        console.send(ctrl("d"))
        self.assertEqual(console.end(), 0)
        self.assertEqual(console.cursor(), (1, 0))

    def test_return_alone_repeats(self):
        console = self.start()
        console.enter("x=1", "x = 1")
        console.enter("x=x*2", "x = 2")
        console.enter("", "x = 4")
        console.enter("", "x = 8")

    def test_a_line_of_nine_thousand_characters_is_whole(self):
        console = self.start()
        console.send("+".join(["1"] * 4999) + RETURN)
        console.ends_with("ans = 4999", ">")
        console.send("1" * 10000 + RETURN)
        console.ends_with("** ERROR: 10000 max characters **", ">")

    def test_a_cleared_screen_shows_the_line(self):
        console = self.start()
        console.enter("1+1", "ans = 2")
        console.send("3+4")
        console.ends_with("> 3+4", "7")
        console.send(ctrl("l"))
        console.shows("> 3+4", "7")
        console.send(RETURN)
        console.shows("> 3+4", "ans = 7", ">")

    def test_a_terminal_of_another_character_set_takes_utf8(self):
        console = self.start(LC_ALL="C")
        console.send("1 # é" + LEFT + "ä")
        console.shows("> 1 # äé", "1")


if __name__ == "__main__":
    unittest.main()
