# SPDX-License-Identifier: MIT
"""The Tab key."""
import unittest

from screen import *


@unittest.skipUnless(HAS_EDITOR, "built without the editor")
class Completion(ScreenTest):
    def test_names_are_completed_by_place(self):
        console = self.start()
        for keys, entry in (("2+sq" + TAB + "9)", "2+sqrt(9)"), ("SQ" + TAB + "9)", "sqrt(9)"),
                            ("sigf" + TAB + "5", "sigfigs 5"), ("mode d" + TAB, "mode deg"),
                            ("5 km->kilome" + TAB, "5 km->kilometer"), ("1+1; disp a" + TAB, "1+1; disp ans"),
                            ("xyz" + TAB, "xyz")):
            console.send(keys)
            console.wait(lambda: console.rows()[0] == "> " + entry, entry)
            console.send(ctrl("u"))
            console.shows(">")

    def test_several_are_listed_below_and_the_line_comes_again(self):
        console = self.start(height=10)
        console.send("7*8")
        console.shows("> 7*8", "56")
        console.send("+a" + TAB + TAB)
        console.shows("> 7*8+a", "abs(   acos(  ans    asin(  atan(", "> 7*8+a")
        console.send("t" + TAB + "0)")
        console.shows("> 7*8+a", "abs(   acos(  ans    asin(  atan(", "> 7*8+atan(0)", "56")

    def test_a_long_list_asks_nothing_that_cannot_be_answered(self):
        self.home.write(".inputrc", "set completion-query-items 2\n")
        console = self.start(width=40, height=3)
        console.send("s" + TAB + TAB)
        console.shows("scimode   sin(      sinh(", "sigfigs   sinc(     sqrt(", "> s")
        self.assertNotIn(b"possibilities", console.bytes)
        self.assertNotIn(b"More", console.bytes)

    def test_a_name_of_this_run_is_known(self):
        console = self.start()
        console.enter("hypot(a,b)=sqrt(a^2+b^2)", "hypot(a,b)=sqrt(a^2+b^2)")
        console.send("hyp" + TAB + "3,4)")
        console.ends_with("> hypot(3,4)", "5")


if __name__ == "__main__":
    unittest.main()
