# SPDX-License-Identifier: MIT
"""The program on a pseudo-terminal, with a terminal emulator behind it: what a person sees is compared."""
import os
import shutil
import signal
import struct
import sys
import tempfile
import time
import unittest

import pexpect
import pyte

PROGRAM = os.environ["TALLYQUILL"]
HAS_EDITOR = os.environ.get("TALLYQUILL_EDITOR", "1") == "1"
PATIENCE = 20  # seconds that a state of the screen may take; no test waits so long when all is well

UP, DOWN, RIGHT, LEFT = "\x1b[A", "\x1b[B", "\x1b[C", "\x1b[D"
RETURN, TAB, ESCAPE, BACKSPACE = "\r", "\t", "\x1b", "\x7f"


def ctrl(letter):
    return chr(ord(letter.upper()) - 64)


def pasted(text):
    return "\x1b[200~" + text + "\x1b[201~"


class Home:
    """An empty home folder, in which programs keep what they keep."""

    def __init__(self):
        self.path = tempfile.mkdtemp(prefix="tallyquill-screen-")
        self.data = self.path + "/.local/share/Tallyquill"
        self.history = self.path + "/.local/state/tallyquill/history"

    def read(self, path):
        try:
            with open(path, encoding="utf-8") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def definitions(self):
        return self.read(self.data + "/pelmo_functions.txt")

    def entries(self):
        return self.read(self.history).splitlines()

    def write(self, name, text):
        path = os.path.join(self.path, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def remove(self):
        shutil.rmtree(self.path, ignore_errors=True)


class Console:
    """One run. The screen is what the emulator made of everything that was written so far."""

    def __init__(self, home, arguments=(), width=80, height=24, command=None, **environment):
        self.home = home
        self.screen = pyte.Screen(width, height)
        self.stream = pyte.ByteStream(self.screen)
        self.bytes = bytearray()
        variables = {
            "HOME": home.path, "PATH": os.environ["PATH"], "TERM": "xterm", "LC_ALL": "C.UTF-8",
            "INPUTRC": home.path + "/.inputrc", "TALLYQUILL": PROGRAM,
        }
        for name in ("LSAN_OPTIONS", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LLVM_PROFILE_FILE"):
            if name in os.environ:
                variables[name] = os.environ[name]
        variables.update(environment)
        command = command or [PROGRAM, *arguments]
        self.child = pexpect.spawn(command[0], list(command[1:]), env=variables, dimensions=(height, width),
                                   timeout=PATIENCE, echo=True, maxread=65536)
        self.child.delaybeforesend = None

    def take(self, seconds):
        try:
            block = self.child.read_nonblocking(65536, seconds)
        except pexpect.TIMEOUT:
            return True
        except pexpect.EOF:
            return False
        self.bytes += block
        self.stream.feed(block)
        return True

    def skim(self, text):
        """Waits until so much of the screen has gone by that the last bytes hold the text, and shows those alone:
        the emulator takes longer for a line than the program."""
        feed, self.stream.feed = self.stream.feed, lambda block: None
        end = time.monotonic() + 10 * PATIENCE
        while text not in self.bytes[-20000:] and self.take(0.05):
            assert time.monotonic() < end, "never written: " + repr(text)
        self.stream.feed = feed
        rest = bytes(self.bytes[-20000:])
        self.stream.feed(rest[rest.index(b"\n") + 1:])

    def rows(self):
        """The rows without what is blank at their ends and below the last."""
        rows = [row.rstrip() for row in self.screen.display]
        while rows and not rows[-1]:
            rows.pop()
        return rows

    def cursor(self):
        return self.screen.cursor.y, self.screen.cursor.x

    def wait(self, condition, what):
        end = time.monotonic() + PATIENCE
        while not condition():
            if time.monotonic() > end or not self.take(0.05):
                if condition():
                    return
                raise AssertionError("the screen never shows " + repr(what) + ":\n" + "\n".join(self.rows()) +
                                     "\ncursor " + repr(self.cursor()))

    def shows(self, *rows):
        """Waits until the screen shows exactly these rows."""
        self.wait(lambda: self.rows() == list(rows), rows)

    def ends_with(self, *rows):
        self.wait(lambda: self.rows()[-len(rows):] == list(rows), rows)

    def has(self, text):
        self.wait(lambda: any(text in row for row in self.rows()), text)

    def send(self, keys):
        data = keys.encode() if isinstance(keys, str) else keys
        while data:
            count = os.write(self.child.child_fd, data[:1024])
            data = data[count:]
            if data:
                self.take(0)

    def enter(self, entry, answer):
        """An entry whose answer is the last row before the next prompt."""
        self.send(entry + RETURN)
        self.ends_with(answer, ">")

    def resize(self, width, height):
        self.screen.resize(height, width)
        self.child.setwinsize(height, width)

    def lower(self, height):
        """As terminals do it: the rows below the cursor go first, then those at the top."""
        cursor, rows = self.screen.cursor, self.screen.buffer
        gone = max(cursor.y + 1 - height, 0)
        kept = {y - gone: row for y, row in rows.items() if gone <= y < gone + height}
        rows.clear()
        rows.update(kept)
        cursor.y -= gone
        self.screen.lines = height
        self.screen.set_margins()
        self.child.setwinsize(height, self.screen.columns)

    def kill(self, number):
        os.kill(self.child.pid, number)

    def end(self):
        """Waits for the end. The exit status, or minus the signal."""
        end = time.monotonic() + PATIENCE
        while self.take(0.05):
            assert time.monotonic() < end, "the program does not end"
        self.child.close()
        return self.child.exitstatus if self.child.exitstatus is not None else -self.child.signalstatus


class ScreenTest(unittest.TestCase):
    def setUp(self):
        self.home = Home()
        self.consoles = []

    def tearDown(self):
        for console in self.consoles:
            console.child.close(force=True)
        self.home.remove()

    def start(self, *arguments, ready=True, **options):
        console = Console(self.home, arguments, **options)
        self.consoles.append(console)
        if ready:
            console.shows(">")
        return console
