#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the suites of tests in other languages and places: whatever LC_ALL, TZ, HOME and the XDG folders are.

    places.py FOLDER [--few] [SUITE ...]      the folder of the built suites; --few: the quick tests alone
"""
import argparse
import glob
import os
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SUITES = ["qfloat_tests", "units_tests", "engine_tests", "store_tests", "web_tests", "terminal_tests"]
WINDOW = "app_tests"
QUICK = {
    "units_tests": "UnitChanges*",
    "engine_tests": "Scanner*:Commands*:Definitions*:Completion*:History*:SettingsTable*",
    "store_tests": "Folder*:SettingsFile*:DefinitionRecords*:ReadingADefinitionsFile.D*",
    "terminal_tests": "Options*:OwnFiles*:EntryText*",
}
XDG = ["XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"]
# None: the variable is missing.
PLACES = [
    ("in C", {"LC_ALL": "C"}),
    ("in German", {"LC_ALL": "de_DE.UTF-8", "TZ": "Antarctica/Troll"}),
    ("in Turkish", {"LC_ALL": "tr_TR.UTF-8", "TZ": ":::odd/zone"}),
    ("without HOME", {"HOME": None, "TZ": None, **{name: None for name in XDG}}),
    ("with relative folders", {"HOME": "here", "TZ": "UTC-25:61", **{name: "./there" for name in XDG}}),
    ("with empty variables", {"HOME": "", "TZ": "", "LC_ALL": "", **{name: "" for name in XDG}}),
    ("in a language that there is not", {"LC_ALL": "xx_XX.NONE", "HOME": "/nonexistent/\n"}),
]
# Its home and the XDG folders are those of the display that it gets.
PLACES_OF_THE_WINDOW = [place for place in PLACES if "LC_ALL" in place[1] and "HOME" not in place[1]]


def make_locales(folder):
    for name in ("de_DE", "tr_TR"):
        # It warns of details with the status 1 and writes the locale all the same.
        subprocess.run(["localedef", "-i", name, "-f", "UTF-8", f"{folder}/{name}.UTF-8"], stderr=subprocess.DEVNULL)
        if not os.path.exists(f"{folder}/{name}.UTF-8/LC_CTYPE"):
            sys.exit(f"places: the locale {name} cannot be made: the package locales is missing")


def run_suite(command, variables, folder):
    """How many tests ran, how many of them failed, and what was written when one did."""
    run = subprocess.run(command, env=variables, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                         errors="replace")
    lines = run.stdout.split("\n")
    ran = int(next((l.split()[1] for l in lines if l.startswith("[==========] ")), "0"))
    wrong = sum(l.startswith("[  FAILED  ]") for l in lines)
    failed = run.returncode != 0 or ran == 0
    return ran, max(wrong, failed), run.stdout[-4000:] + run.stderr[-1000:] if failed else ""


def run_window(program, variables, folder):
    """The same for the window's tests, each file on a display of its own; HOME and the XDG folders are the display's."""
    language = {"TALLYQUILL_TEST_LANGUAGE": variables.get("LC_ALL", "")}
    ran, wrong, written = 0, 0, ""
    for file in sorted(glob.glob(f"{ROOT}/tests/app/test_*.mm") + glob.glob(f"{ROOT}/tests/app/gnustep/test_*.mm")):
        command = [f"{ROOT}/tests/app/with_display.sh", program, "--gtest_brief=1", "--file", os.path.basename(file)]
        result = run_suite(command, {**variables, **language}, folder)
        ran, wrong, written = ran + result[0], wrong + result[1], written + result[2]
    return ran, wrong, written


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("folder")
    parser.add_argument("--few", action="store_true")
    parser.add_argument("suites", nargs="*")
    options = parser.parse_args()
    print("| Suite | Where | Tests | Seconds | Failed |\n|---|---|---:|---:|---:|")
    failed = 0
    with tempfile.TemporaryDirectory() as locales:
        make_locales(locales)
        for suite in options.suites or (QUICK if options.few else [*SUITES, WINDOW]):
            for title, changes in PLACES_OF_THE_WINDOW if suite == WINDOW else PLACES:
                variables = {**os.environ, "LOCPATH": locales, **changes}
                variables = {name: value for name, value in variables.items() if value is not None}
                arguments = ["--gtest_filter=" + QUICK[suite]] if options.few else []
                start = time.monotonic()
                program = os.path.abspath(f"{options.folder}/{suite}")
                if suite == WINDOW:
                    ran, wrong, written = run_window(program, variables, locales)
                else:
                    ran, wrong, written = run_suite([program, "--gtest_brief=1", *arguments], variables, locales)
                failed += wrong
                print(f"| {suite} | {title} | {ran} | {time.monotonic() - start:.1f} | {wrong} |", flush=True)
                print(written, file=sys.stderr, end="", flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
