#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints what share of the lines that each fuzz target is about its inputs run.

    scripts/fuzz_coverage.py BUILD [FOUND]

BUILD is a build folder of the preset "coverage". The inputs are those of tests/fuzz/corpus, and of FOUND/TARGET, where
`make fuzz` keeps what it went on from.
"""
import json
import os
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# The sources of each target, by the starts of their names.
SOURCES = {
    "entries": ["engine/"],
    "number_text": ["qfloat/qtext.cpp", "qfloat/qprint.cpp", "qfloat/qradix.cpp"],
    "numbers": ["qfloat/"],
    "unit_library": ["units/"],
    "definitions_file": ["store/Definition"],
    "settings_file": ["store/SettingsFile.cpp"],
    "script": ["app/Script.cpp"],
    "history_file": ["store/HistoryFile.cpp"],
    "each": ["terminal/Each.cpp"],
    "json": ["terminal/Json.cpp"],
    "answer_page": ["web/Query.cpp"],
    "editor": ["terminal/Keyboard.cpp", "terminal/PreviewRow.cpp", "terminal/ReadlineEditor.cpp",
               "terminal/TerminalModes.cpp"],
}


def lines_of(program, folders, profiles, sources):
    """How many lines of the sources the files of the folders run, and how many there are."""
    raw, merged = os.path.join(profiles, "raw"), os.path.join(profiles, "merged")
    subprocess.run([program, *folders], check=True, stdout=subprocess.DEVNULL, env={**os.environ, "LLVM_PROFILE_FILE": raw})
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", merged, raw], check=True)
    exported = subprocess.run(["llvm-cov", "export", "-summary-only", f"-instr-profile={merged}", program], check=True,
                              stdout=subprocess.PIPE, text=True).stdout
    files = [(os.path.relpath(file["filename"], ROOT), file["summary"]["lines"])
             for file in json.loads(exported)["data"][0]["files"]]
    own = [lines for name, lines in files if any(name.startswith(start) for start in sources)]
    return sum(lines["covered"] for lines in own), sum(lines["count"] for lines in own)


def main():
    build, *found = sys.argv[1:]
    for target, sources in SOURCES.items():
        program = os.path.join(build, "bin", "fuzz_" + target)
        if not os.path.exists(program):
            continue  # the editor's needs Readline
        folders = [os.path.join(base, target) for base in [os.path.join(ROOT, "tests/fuzz/corpus"), *found]]
        with tempfile.TemporaryDirectory() as profiles:
            covered, count = lines_of(program, [folder for folder in folders if os.path.isdir(folder)], profiles, sources)
        print(f"{target:18}{100 * covered / count:6.1f} % of {count:<6}{', '.join(sources)}", flush=True)


main()
