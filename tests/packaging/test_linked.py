# SPDX-License-Identifier: MIT
"""The check of what packages depend on (packaging/check_linked.sh) finds what is missing, and what is too much."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "check_linked.sh"
PROGRAM = shutil.which("true")  # it loads the C library alone


class Linked(unittest.TestCase):
    def check(self, depends):
        """The status and the complaints of the check for a package that has the program and depends on these."""
        with tempfile.TemporaryDirectory(prefix="tallyquill-linked-") as folder:
            tree = pathlib.Path(folder) / "tree"
            (tree / "DEBIAN").mkdir(parents=True)
            (tree / "usr" / "bin").mkdir(parents=True)
            shutil.copy(PROGRAM, tree / "usr" / "bin")
            control = "Package: program\nVersion: 1\nArchitecture: all\nMaintainer: nobody <nobody@localhost>\n"
            control += f"Depends: {depends}\n" if depends else ""
            (tree / "DEBIAN" / "control").write_text(control + "Description: a program\n", encoding="utf-8")
            os.chmod(tree / "DEBIAN", 0o755)
            subprocess.run(["dpkg-deb", "--root-owner-group", "--build", tree, f"{folder}/program.deb"], check=True,
                           stdout=subprocess.DEVNULL)
            done = subprocess.run([CHECK, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stderr

    def test_what_is_loaded_and_named_is_well(self):
        self.assertEqual(self.check("libc6 (>= 2.34)"), (0, ""))
        self.assertEqual(self.check("fonts-dejavu-core | fonts-freefont, libc6"), (0, ""))

    def test_a_library_that_is_not_named_is_found(self):
        told = "check_linked: program does not depend on libc6, of which it loads a library\n"
        self.assertEqual(self.check(""), (1, told))
        self.assertEqual(self.check("libc6-dev-bin"), (1, told + "check_linked: program depends on libc6-dev-bin, of which it loads nothing\n"))

    def test_a_library_that_is_not_loaded_is_found(self):
        self.assertEqual(self.check("libc6, libx11-6 (>= 2:1.6)"),
                         (1, "check_linked: program depends on libx11-6, of which it loads nothing\n"))


if __name__ == "__main__":
    unittest.main()
