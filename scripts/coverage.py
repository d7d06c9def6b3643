#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints what share of each source file the tests ran.

    scripts/coverage.py BUILD [--all]

BUILD is a build folder of the preset "coverage" whose tests have left their counts in BUILD/profiles.
A file below 95 % of its lines or 90 % of its branches is printed, with --all every file. BUILD/html shows the lines.
"""
import glob
import json
import os
import subprocess
import sys

LINES, BRANCHES = 95, 90
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def programs(build):
    """All that was built and keeps counts."""
    found = glob.glob(os.path.join(build, "bin", "*")) + glob.glob(os.path.join(build, "bin", "*.app", "Tallyquill"))
    return [file for file in found if os.path.isfile(file) and os.access(file, os.X_OK)]


def share(counts):
    return 100 if counts["count"] == 0 else 100 * counts["covered"] / counts["count"]


def main():
    build = os.path.abspath(sys.argv[1])
    merged = os.path.join(build, "profiles", "all.profdata")
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", merged,
                    *glob.glob(os.path.join(build, "profiles", "*.profraw"))], check=True)
    first, *others = programs(build)
    objects = [first] + [f"-object={other}" for other in others]
    common = [f"-instr-profile={merged}", "-ignore-filename-regex=/tests/", *objects]
    exported = subprocess.run(["llvm-cov", "export", "-summary-only", *common], check=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True).stdout
    subprocess.run(["llvm-cov", "show", "-format=html", "-show-branches=count", f"-output-dir={build}/html", *common],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    data = json.loads(exported)["data"][0]
    print(f"{'File':44}{'Lines':>16}{'Branches':>18}")
    below = 0
    files = {}
    for file in data["files"]:
        name, counts = os.path.relpath(file["filename"], ROOT), file["summary"]
        # A file that is compiled for several programs counts as it is where most of it runs.
        if name not in files or share(files[name]["lines"]) < share(counts["lines"]):
            files[name] = counts
    for name, counts in sorted(files.items()):
        is_below = share(counts["lines"]) < LINES or share(counts["branches"]) < BRANCHES
        below += is_below
        if is_below or "--all" in sys.argv:
            row(name, counts)
    row("all", {kind: {count: sum(counts[kind][count] for counts in files.values()) for count in ("count", "covered")}
                for kind in ("lines", "branches")})
    print(f"{below} of {len(files)} files are below {LINES} % of lines or {BRANCHES} % of branches; "
          f"{os.path.relpath(build, ROOT)}/html shows the lines")


def row(name, counts):
    columns = [f"{share(counts[kind]):6.1f} % of {counts[kind]['count']:<5}" for kind in ("lines", "branches")]
    print(f"{name:44}" + " ".join(columns))


main()
