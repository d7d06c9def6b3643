#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The library as it is installed: three programs are built against it in three ways with two compilers, and run.

    installed.py BUILD_FOLDER [TEST...]

Also looked at: which names the library shows, what Real costs, and that docs/library.md has the programs.
"""
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import abi

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
DOCUMENT = ROOT / "docs" / "library.md"
COMPILERS = ("clang++", "g++")

# What each program answers: the payment by the formula of loans with bc, the digits from tables.
PROGRAMS = {
    "numbers": ("", "each month  1172.02\n"
                    "pi          3.1415926535897932384626433832795028841971693993751\n"
                    "sqrt 2      1.4142135623730950488016887242096980785696718753769\n"),
    "calculator": ("2+3*4\nx = 5 km->mi\n1/0\n", "ans = 14\nx = 3.106855961\n** ERROR: divide by zero **\n"),
    "routines": ("", "30! = 2.65252859812191058636308480000000E32\n1/0: singularity\n"),
}
# How the document builds the first of them.
COMMANDS = ("c++ -std=c++17 numbers.cpp -ltallyquill\n"
            "c++ -std=c++17 numbers.cpp $(pkg-config --cflags --libs tallyquill)\n")


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="tallyquill.installed.")
        cls.work = pathlib.Path(cls.folder.name)
        cls.prefix = cls.work / "prefix"
        for component in ("library", "dev"):
            run("cmake", "--install", BUILD, "--prefix", cls.prefix, "--component", component)
        cls.lib = next(cls.prefix.rglob("libtallyquill.a")).parent
        cls.environment = {**os.environ, "LD_LIBRARY_PATH": str(cls.lib),
                           "PKG_CONFIG_PATH": str(cls.lib / "pkgconfig"), "CCACHE_DISABLE": "1"}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()


class Programs(Installed):
    def answers(self, program, file, environment=None):
        typed, expected = PROGRAMS[program]
        self.assertEqual(run(file, input=typed, env=environment or self.environment), expected)

    def compiled(self, compiler, program, *flags):
        out = self.work / f"{program}.{compiler}"
        run(compiler, "-std=c++17", "-Wall", "-Wextra", "-Wconversion", "-Wshadow", "-Werror", HERE / "programs" / f"{program}.cpp",
            "-o", out, *flags, env=self.environment)
        return out

    def test_plain_flags(self):
        for compiler in COMPILERS:
            for program in PROGRAMS:
                with self.subTest(compiler=compiler, program=program):
                    self.answers(program, self.compiled(compiler, program, f"-I{self.prefix}/include", f"-L{self.lib}",
                                                        "-ltallyquill"))

    def test_the_archive_alone(self):
        without_library = {name: value for name, value in os.environ.items() if name != "LD_LIBRARY_PATH"}
        for compiler in COMPILERS:
            for program in PROGRAMS:
                with self.subTest(compiler=compiler, program=program):
                    self.answers(program, self.compiled(compiler, program, f"-I{self.prefix}/include",
                                                        self.lib / "libtallyquill.a"), without_library)

    def test_pkg_config(self):
        flags = run("pkg-config", "--cflags", "--libs", "tallyquill", env=self.environment).split()
        for compiler in COMPILERS:
            for program in PROGRAMS:
                with self.subTest(compiler=compiler, program=program):
                    self.answers(program, self.compiled(compiler, program, *flags))

    def test_cmake(self):
        for compiler in COMPILERS:
            build = self.work / f"cmake.{compiler}"
            run("cmake", "-G", "Ninja", "-S", HERE / "programs", "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}",
                f"-DCMAKE_CXX_COMPILER={compiler}")
            run("cmake", "--build", build)
            for program in PROGRAMS:
                for kind in ("", "_static"):
                    with self.subTest(compiler=compiler, program=program + kind):
                        self.answers(program, build / (program + kind))

    def test_the_document_has_the_programs_and_what_they_answer(self):
        shown = []
        for program, (typed, answer) in PROGRAMS.items():
            source = (HERE / "programs" / f"{program}.cpp").read_text().split("\n", 1)[1]
            shown += [source, typed, answer] if typed else [source, answer]
        shown += [COMMANDS, (HERE / "programs" / "CMakeLists.txt").read_text().split("\n", 1)[1]]
        # These blocks and no other one.
        self.assertEqual(re.findall(r"^```\w*\n(.*?)^```$", DOCUMENT.read_text(), re.M | re.S), shown)

    def test_the_commands_of_the_document_build_the_program(self):
        environment = {**self.environment, "CPATH": str(self.prefix / "include"), "LIBRARY_PATH": str(self.lib)}
        for compiler in COMPILERS:
            for line in COMMANDS.splitlines():
                with self.subTest(compiler=compiler, line=line), tempfile.TemporaryDirectory() as folder:
                    run("sh", "-c", f"cp {HERE}/programs/numbers.cpp . && {line.replace('c++ ', compiler + ' ', 1)}",
                        env=environment, cwd=folder)
                    self.answers("numbers", f"{folder}/a.out")


class Library(Installed):
    def test_a_program_may_use_the_names_of_the_insides(self):
        source = self.work / "names.cpp"
        source.write_text("#include <tallyquill/Calculator.h>\n#include <cstdio>\n"
                          "struct Function { int n; Function(); };\nFunction::Function() : n(7) {}\nFunction funcs;\n"
                          "int checkEntry(int n) { return n; }\n"
                          "int main() { tallyquill::Calculator c; "
                          'std::printf("%d %s\\n", checkEntry(funcs.n), c.Evaluate("f(x)=x+1; f(1)").text.c_str()); }\n')
        for library in (self.lib / "libtallyquill.so", self.lib / "libtallyquill.a"):
            run("g++", "-std=c++17", source, "-o", self.work / "names", f"-I{self.prefix}/include", library)
            self.assertEqual(run(self.work / "names", env=self.environment), "7 2\n")

    def test_shows_what_the_headers_declare_and_nothing_else(self):
        headers = "".join(path.read_text() for path in (self.prefix / "include" / "tallyquill").glob("*.h"))
        code = re.sub(r"//.*", "", headers)
        names = run("nm", "-D", "-C", "--defined-only", "--format=posix", self.lib / "libtallyquill.so")
        self.assertIn("qadd(", names)
        for line in names.splitlines():
            name = line.split("(")[0].split(" ")[0].split("::")[-1].lstrip("~")
            self.assertRegex(code, rf"\b{re.escape(name)}\b", line)
            self.assertFalse(line.startswith("std::"), line)

    def test_is_what_programs_are_compiled_against(self):
        expected = (ROOT / "library" / "abi.txt").read_text().splitlines()
        found = abi.lines_of(str(self.lib / "libtallyquill.so"), self.prefix / "include")
        told = "\n".join(difflib.unified_diff(expected, found, "library/abi.txt", "the library", lineterm="", n=0))
        self.assertEqual(found, expected, f"\n{told}\nCONTRIBUTING.md, \"How to change the library\", tells what to do.")

    def test_has_its_name_and_version(self):
        version = re.search(r"VERSION (\d+)\.(\d+)\.(\d+) LANGUAGES", (ROOT / "CMakeLists.txt").read_text()).groups()
        dynamic = run("readelf", "-d", self.lib / "libtallyquill.so")
        package = re.search(r"^Package: libtallyquill(\d+)$", (ROOT / "packaging/debian/control").read_text(), re.M).group(1)
        self.assertIn(f"[libtallyquill.so.{package}]", dynamic)
        self.assertTrue((self.lib / f"libtallyquill.so.{'.'.join(version)}").is_file())
        self.assertEqual(run("pkg-config", "--modversion", "tallyquill", env=self.environment).strip(), ".".join(version))

    def test_an_expression_of_reals_is_the_calls_of_its_routines(self):
        source = self.work / "cost.cpp"
        source.write_text("#include <tallyquill/Real.h>\nusing tallyquill::Real;\n"
                          "Real combine(const Real& a, const Real& b, const Real& c) { return a * b + c; }\n")
        for compiler in COMPILERS:
            with self.subTest(compiler=compiler):
                code = run(compiler, "-std=c++17", "-O2", "-S", "-o", "-", f"-I{self.prefix}/include", source)
                body = code[code.index("combine"):code.index(".cfi_endproc")]
                calls = re.findall(r"\b(?:call|callq|jmp|bl|b)\s+(\w*q\w+|_Z\w+|mem\w+)", body)
                self.assertEqual([re.sub(r"^_Z\d+|P.*$", "", call) for call in calls], ["qmul", "qadd"])


if __name__ == "__main__":
    unittest.main()
