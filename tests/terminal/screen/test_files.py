# SPDX-License-Identifier: MIT
"""What is kept from one run to the next, and shared with other programs."""
import os
import stat
import time
import unittest

from screen import *

SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>%s</key><integer>%d</integer></dict></plist>
"""


class Files(ScreenTest):
    def leave(self, console):
        console.send(ctrl("d"))
        console.end()

    def settings_file(self, key, value):
        self.home.write(".local/share/Tallyquill/pelmo_settings.plist", SETTINGS % (key, value))

    def test_definitions_and_settings_stay(self):
        console = self.start()
        console.enter("area(w,h)=w*h", "area(w,h)=w*h")
        console.enter("width=12", "width = 12")
        console.enter("unit smoot=67 inch", "new unit defined: smoot")
        console.enter("display hex", "** DISPLAY HEX **")
        self.leave(console)
        console = self.start()
        console.enter("area(width,2)", "ans = 0x0018")
        console.enter("display dec", "** DISPLAY DEC **")
        console.enter("1 smoot->inch", "ans = 67")

    def test_a_change_is_saved_while_the_program_runs(self):
        console = self.start()
        console.enter("kept=4711", "kept = 4711")
        console.wait(lambda: "kept=4711" in self.home.definitions(), "the definition in the file")

    def test_signals_that_end_save_before(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            console = self.start()
            console.enter("by%d=1" % number, "by%d = 1" % number)
            console.send("1+")
            console.ends_with("> 1+")
            console.kill(number)
            self.assertEqual(console.end(), -number)
            self.assertIn("by%d=1" % number, self.home.definitions())

    def test_a_signal_ends_an_entry_that_runs(self):
        console = self.start()
        console.enter("before=1", "before = 1")
        console.send("pause5000" + RETURN)
        console.has("pause5000")
        console.kill(signal.SIGTERM)
        self.assertEqual(console.end(), -signal.SIGTERM)
        self.assertIn("before=1", self.home.definitions())

    def test_a_terminal_that_is_closed_saves(self):
        console = self.start()
        console.enter("last=7", "last = 7")
        console.child.ptyproc.fileobj.close()
        end = time.monotonic() + PATIENCE
        while "last=7" not in self.home.definitions() and time.monotonic() < end:
            time.sleep(0.02)
        self.assertIn("last=7", self.home.definitions())

    def test_two_programs_lose_nothing(self):
        one, two = self.start(), self.start()
        one.enter("f(x)=x+1", "f(x)=x+1")
        two.enter("g(x)=x+2", "g(x)=x+2")
        self.leave(one)
        self.leave(two)
        text = self.home.definitions()
        self.assertIn("f(x)=x+1", text)
        self.assertIn("g(x)=x+2", text)
        self.assertEqual(self.home.entries(), ["f(x)=x+1", "g(x)=x+2"])

    def test_what_another_program_defines_is_there(self):
        one, two = self.start(), self.start()
        one.enter("twice(x)=x*2", "twice(x)=x*2")
        one.wait(lambda: "twice(x)=x*2" in self.home.definitions(), "the definition in the file")
        two.enter("twice(21)", "ans = 42")

    def test_what_another_program_changes_or_deletes_counts(self):
        one = self.start()
        one.enter("v=2", "v = 2")
        one.enter("w=4", "w = 4")
        one.enter("fa(x)=x*2", "fa(x)=x*2")
        one.wait(lambda: "fa(x)=x*2" in self.home.definitions(), "the definitions in the file")
        two = self.start()
        two.enter("v=33", "v = 33")
        two.enter("del w", "** deleted w **")
        two.enter("del fa", "** deleted fa() **")
        self.leave(two)
        one.enter("v", "ans = 33")
        one.enter("w+1", "** ERROR 7: invalid term = w **")
        self.leave(one)
        text = self.home.definitions()
        self.assertIn("\nv=33\n", text)
        self.assertNotIn("\nw=", text)
        self.assertNotIn("\nfa(", text)

    def test_settings_of_another_program_stay(self):
        one, two = self.start(), self.start()
        one.enter("sigfigs 5", "** SIGNIFICANT FIGURES: 5 **")
        self.leave(one)
        two.enter("mode rad", "** RADIAN MODE **")
        self.leave(two)
        console = self.start()
        console.enter("pi", "ans = 3.1416")
        console.enter("sin(pi/2)", "ans = 1")

    def test_the_history_of_the_window_stays(self):
        text = "### FUNCTIONS ###\n### VARIABLES ###\nans=0\n### CUSTOM UNITS ###\n### HISTORY ###\n1+1\n2+2\n"
        self.home.write(".local/share/Tallyquill/pelmo_functions.txt", text)
        console = self.start()
        console.enter("x=3", "x = 3")
        self.leave(console)
        self.assertIn("x=3\n", self.home.definitions())
        self.assertTrue(self.home.definitions().endswith("### HISTORY ###\n1+1\n2+2\n"))

    def test_options_hold_for_one_run(self):
        console = self.start("--rad")
        console.enter("sin(pi/2)", "ans = 1")
        console.enter("sigfigs 5", "** SIGNIFICANT FIGURES: 5 **")
        self.leave(console)
        console = self.start()
        console.enter("sin(90)", "ans = 1")
        console.enter("pi", "ans = 3.1416")

    def test_without_files_nothing_is_read_or_written(self):
        console = self.start()
        console.enter("kept=1", "kept = 1")
        self.leave(console)
        before = self.home.definitions(), self.home.entries()
        console = self.start("--no-files")
        console.enter("kept", "** ERROR 7: invalid term = kept **")
        console.enter("lost=1", "lost = 1")
        self.leave(console)
        self.assertEqual(before, (self.home.definitions(), self.home.entries()))

    def test_a_damaged_file_is_told_and_kept(self):
        self.home.write(".local/share/Tallyquill/pelmo_functions.txt", "### FUNCTIONS ###\nf(x)=x\n(((\n")
        console = self.start(ready=False, width=120)
        console.shows("tallyquill: Not all of pelmo_functions.txt could be read: see pelmo_functions.txt.unreadable",
                      ">")
        console.enter("f(3)", "ans = 3")

    def test_what_cannot_be_saved_is_told_once(self):
        self.home.write(".local/state", "no folder")
        console = self.start()
        console.send("1+1" + RETURN)
        console.ends_with("ans = 2", "Not saved: history (Not a directory)", ">")
        console.enter("2+2", "ans = 4")
        console.ends_with("> 2+2", "ans = 4", ">")

    def test_what_cannot_be_saved_is_told_at_the_end_and_makes_the_status_three(self):
        for folder, failure in ((".local/share", "Not saved: pelmo_functions.txt"),
                                (".local/state", "Not saved: history (Not a directory)")):
            self.home.remove()
            self.home.write(folder, "no folder")
            console = self.start(ready=False)
            console.send("v=1" + RETURN)
            console.has("v = 1")
            console.send(ctrl("d"))
            self.assertEqual(console.end(), 3)
            console.has("tallyquill: " + failure)

    def test_history_is_the_owners_alone(self):
        console = self.start()
        console.enter("1+1", "ans = 2")
        self.assertEqual(stat.S_IMODE(os.stat(self.home.history).st_mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat(os.path.dirname(self.home.history)).st_mode), 0o700)

    def test_history_is_written_as_it_grows_by_its_rules(self):
        console = self.start()
        for entry in ("1+1", "1+1", " 2+2", "3+3", "histstack off", "4+4", "histstack on", "5+5"):
            console.send(entry + RETURN)
            console.has("> " + entry)
        console.ends_with("ans = 10", ">")
        self.assertEqual(self.home.entries(), ["1+1", "3+3", "5+5"])

    def test_history_goes_where_the_environment_says(self):
        for folder, path in ((self.home.path + "/state", "/state/tallyquill/history"),
                             ("relative", "/.local/state/tallyquill/history")):
            console = self.start(XDG_STATE_HOME=folder)
            console.enter("1+1", "ans = 2")
            self.assertEqual(self.home.read(self.home.path + path), "1+1\n")
            self.leave(console)

    def test_history_has_ten_thousand_lines(self):
        self.home.write(".local/state/tallyquill/history", "".join("%d\n" % i for i in range(12000)))
        console = self.start()
        console.enter("7*7", "ans = 49")
        self.leave(console)
        entries = self.home.entries()
        self.assertEqual(len(entries), 10000)
        self.assertEqual((entries[0], entries[-1]), ("2001", "7*7"))

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_the_preview_can_be_switched_off(self):
        console = self.start()
        console.send("6*7")
        console.ends_with("> 6*7", "42")
        console.send(ctrl("u") + ":set autoeval off" + RETURN)
        console.has("autoeval = ")
        self.leave(console)
        self.assertRegex(self.home.read(self.home.data + "/pelmo_settings.plist"),
                         r"<key>autoeval</key>\s*<integer>0</integer>")
        console = self.start()
        console.send("x=8*9")
        console.shows("> x=8*9")
        console.send(RETURN)
        console.shows("> x=8*9", "x = 72", ">")
        self.assertNotIn(b"\x1b[2m", console.bytes)

    @unittest.skipUnless(HAS_EDITOR, "built without the editor")
    def test_a_first_minus_follows_the_setting(self):
        self.settings_file("doublenegans", 0)
        console = self.start()
        console.send("-")
        console.ends_with("> ans-")


if __name__ == "__main__":
    unittest.main()
