# SPDX-License-Identifier: MIT
"""How the built application begins and ends when nobody presses a key: scripts on the command line, signals, the loss
of the display, no display at all, and what it writes to its standard streams.

    tests/app/with_display.sh env TALLYQUILL_APP=.../Tallyquill python3 tests/app/end_to_end/endings.py [TEST ...]

A parenthesis in a line of a script shows in the trace that the line has been evaluated.
"""

import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

PATIENCE = 30  # seconds
LONG_PAUSE = ["pause5000"] * 10  # longer than our patience
TRACE = "Attempting ProcParenth..."


def wait_until(what, condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.01)


class Endings(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.processes = []
        self.addCleanup(self.end_processes)

    def end_processes(self):
        for process in self.processes:
            if process.poll() is None:
                process.kill()
            process.wait()

    def script(self, name, *lines):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="ascii") as file:
            file.write("".join(line + "\n" for line in lines))
        return path

    def start(self, *arguments, prepare=None, **environment):
        """The application, its streams in files."""
        with open(os.path.join(self.folder, "stdout"), "wb") as out:
            with open(os.path.join(self.folder, "stderr"), "wb") as errors:
                process = subprocess.Popen(
                    [os.environ["TALLYQUILL_APP"], *arguments],
                    env={**os.environ, "XDG_DATA_HOME": self.folder, **environment},
                    stdin=subprocess.DEVNULL,
                    stdout=out,
                    stderr=errors,
                    preexec_fn=prepare,
                )
        self.processes.append(process)
        return process

    def content(self, name):
        try:
            with open(os.path.join(self.folder, name), encoding="latin-1") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def functions(self):
        return self.content("Tallyquill/pelmo_functions.txt").splitlines()

    def wait_for_lines(self, count):
        try:
            wait_until(f"{count} evaluated lines", lambda: self.content("stderr").count(TRACE) >= count)
        except AssertionError as error:
            raise AssertionError(f"{error}; standard error is {self.content('stderr')!r}") from None

    def expect_written_after(self, number):
        process = self.start("--trace", self.script("a.script", "a=(5)", *LONG_PAUSE, "b=(6)"))
        self.wait_for_lines(1)
        process.send_signal(number)
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertIn("a=5", self.functions())
        self.assertNotIn("b=6", self.functions())

    def test_a_hangup_writes_what_is_due(self):
        self.expect_written_after(signal.SIGHUP)

    def test_a_termination_writes_what_is_due(self):
        self.expect_written_after(signal.SIGTERM)

    def test_the_end_leaves_no_remarks(self):
        process = self.start(self.script("a.script", *[f"echo {n}" for n in range(2000)], "exit"))
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertNotIn("without pool", self.content("stderr"))

    def test_a_first_start_ends_with_its_script_though_a_question_waits(self):
        process = self.start(self.script("a.script", "pause 600", "exit"))
        self.assertEqual(process.wait(PATIENCE), 0)

    def test_a_signal_ends_an_entry_that_would_take_long(self):
        lines = ["f0(x)=x"] + [f"f{i}(x)=f{i - 1}(x)+f{i - 1}(x)" for i in range(1, 41)]
        process = self.start("--trace", self.script("a.script", *lines, "a=(5)", "b=f40(1)"))
        self.wait_for_lines(2)  # of "(5)" and "(1)": the calls have begun
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertIn("a=5", self.functions())

    def test_an_ignored_hangup_stays_ignored(self):
        script = self.script("a.script", "a=(5)", "pause500", "b=(6)")
        process = self.start("--trace", script, prepare=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        self.wait_for_lines(1)
        process.send_signal(signal.SIGHUP)
        self.wait_for_lines(2)
        process.terminate()
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertIn("b=6", self.functions())

    def expect_written_after_loss(self, *lines):
        reading, writing = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "800x600x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[writing],
            stderr=subprocess.DEVNULL,
        )
        self.processes.append(server)
        os.close(writing)
        with open(reading, encoding="ascii") as number:
            display = ":" + number.readline().strip()
        process = self.start("--trace", self.script("a.script", *lines), DISPLAY=display)
        self.wait_for_lines(1)
        server.kill()
        self.assertEqual(process.wait(PATIENCE), 1)
        self.assertIn("a=5", self.functions())
        self.assertIn("Tallyquill: the display has gone away.", self.content("stderr").splitlines())

    def test_the_loss_of_the_display_writes_what_is_due(self):
        self.expect_written_after_loss("a=(5)")

    def test_so_does_its_loss_in_a_pause(self):
        self.expect_written_after_loss("a=(5)", *LONG_PAUSE, "b=(6)")

    def test_without_a_display_one_sentence_names_the_terminal_program(self):
        for display in ("", ":9999", "nonsense"):
            process = self.start(DISPLAY=display)
            self.assertEqual(process.wait(PATIENCE), 1)
            said = self.content("stderr").splitlines()
            self.assertEqual(len(said), 1, said)
            self.assertIn("the program for the terminal is tallyquill", said[0])
            self.assertEqual(self.content("stdout"), "")

    def test_the_trace_is_dropped_unless_it_is_asked_for(self):
        script = self.script("a.script", *["a=((5)+(6))"] * 50)
        process = self.start(script)
        wait_until("the functions file", lambda: "a=11" in self.functions())
        process.terminate()
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertEqual(self.content("stdout"), "")
        self.assertNotIn(TRACE, self.content("stderr"))

    def test_scripts_on_the_command_line_run_in_their_order(self):
        first = self.script("first.script", "a=(2)", "pause200")
        second = self.script("second.script", "a=(a*10)")
        third = self.script("third.script", "a=(a+1)")
        process = self.start("--trace", first, second, third)
        self.wait_for_lines(3)
        process.terminate()
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertIn("a=21", self.functions())

    def test_a_script_on_the_command_line_runs_once(self):
        for number, folder in enumerate((self.folder, ".")):
            script = self.script("once.script", "pause 100", "(1)", "(2)", f"once=(40+{number})")
            argument = os.path.join(folder, os.path.basename(script))
            process = self.start(argument, "--trace", prepare=lambda: os.chdir(self.folder))
            # It is kept after the script's end; one that runs again would have come before that.
            wait_until("the functions file", lambda: f"once=4{number}" in self.functions())
            process.terminate()
            self.assertEqual(process.wait(PATIENCE), 0)
            self.assertEqual(self.content("stderr").count(TRACE), 3)


if __name__ == "__main__":
    unittest.main()
