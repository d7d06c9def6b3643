# SPDX-License-Identifier: MIT
"""What is installed: whole, valid to the programs that read it, of one version, and removed again."""
import glob
import os
import re
import shutil
import struct
import subprocess
import tempfile
import unittest

BUILD = os.environ["TALLYQUILL_BUILD"]
VERSION = os.environ["TALLYQUILL_VERSION"]
CMAKE = os.environ["TALLYQUILL_CMAKE"]
SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
ID = "org.tallyquill.Tallyquill"


def output(*command, **options):
    """Both streams of a command that has to succeed."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


def files_below(folder):
    return {
        os.path.relpath(os.path.join(path, name), folder) for path, _, names in os.walk(folder) for name in names
    }


def content(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="tallyquill-installed-")
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.prefix = cls.folder + "/prefix"
        output(CMAKE, "--install", BUILD, "--prefix", cls.prefix)
        cls.list = cls.folder + "/installed.txt"
        shutil.copy(BUILD + "/install_manifest.txt", cls.list)
        cls.files = files_below(cls.prefix)

    def path(self, name):
        self.assertIn(name, self.files)
        return f"{self.prefix}/{name}"


class Programs(Installed):
    def test_the_program_runs_and_tells_its_version(self):
        program = self.path("bin/tallyquill")
        self.assertEqual(output(program, "--no-files", "2+3*4"), "ans = 14\n")
        self.assertIn(VERSION, output(program, "--version").splitlines()[0])

    def test_the_newest_release_of_the_changelog_is_this_version(self):
        headings = re.findall(r"^## \[([0-9.]+)\] - \d{4}-\d\d-\d\d$", content(SOURCE + "/CHANGELOG.md"), re.M)
        self.assertEqual(headings[0], VERSION)

    def test_other_systems_take_the_archive_of_this_version(self):
        for name in ("homebrew/tallyquill.rb", f"flatpak/{ID}.yml"):
            archives = re.findall(r"tallyquill-[0-9.]+\.tar\.gz", content(f"{SOURCE}/packaging/{name}"))
            self.assertEqual(archives, [f"tallyquill-{VERSION}.tar.gz"], name)

    def test_each_file_is_in_one_part_and_a_program_is_in_its_own(self):
        parts = {}
        for part in ("terminal", "window", "library", "dev"):
            folder = f"{self.folder}/{part}"
            output(CMAKE, "--install", BUILD, "--prefix", folder, "--component", part)
            parts[part] = files_below(folder)
        every = [name for names in parts.values() for name in names]
        self.assertEqual(sorted(every), sorted(self.files))
        self.assertIn("bin/tallyquill", parts["terminal"])
        if parts["window"]:
            self.assertIn("bin/tallyquill-window", parts["window"])
            self.assertIn(f"share/applications/{ID}.desktop", parts["window"])

    def test_man_pages_have_no_mistakes_and_this_version(self):
        pages = sorted(name for name in self.files if name.startswith("share/man/"))
        programs = sorted(name for name in self.files if name.startswith("bin/"))
        self.assertEqual({os.path.basename(page) for page in pages}, {os.path.basename(p) + ".1" for p in programs})
        day = re.search(rf"^## \[{VERSION}\] - (\S+)$", content(SOURCE + "/CHANGELOG.md"), re.M).group(1)
        for page in pages:
            self.assertRegex(content(f"{self.prefix}/{page}"), rf'\n\.TH \S+ 1 {day} "Tallyquill {VERSION}" ')
            # groff's complaints come on standard error; the page itself does not matter here.
            shown = subprocess.run(
                ["man", "--warnings", "--encoding=UTF-8", "--local-file", f"{self.prefix}/{page}"],
                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=True,
                env={**os.environ, "MANWIDTH": "80", "LC_ALL": "C.UTF-8"},
            )
            self.assertEqual(shown.stderr, "")

    def test_shells_read_their_completions(self):
        completions = {
            "bash": "share/bash-completion/completions/tallyquill",
            "zsh": "share/zsh/site-functions/_tallyquill",
            "fish": "share/fish/vendor_completions.d/tallyquill.fish",
        }
        for shell, name in completions.items():
            self.assertEqual(output(shell, "-n", self.path(name), env={"HOME": self.folder, "PATH": os.environ["PATH"]}), "")

    def test_the_guide_and_all_definitions_are_there(self):
        self.path("share/doc/tallyquill/guide.md")
        for name in glob.glob(SOURCE + "/definitions/*"):
            self.path("share/tallyquill/definitions/" + os.path.basename(name))

    def test_uninstalling_leaves_what_others_have_put_there(self):
        other = self.prefix.replace("prefix", "other")
        shutil.copytree(self.prefix, other, symlinks=True)
        text = content(self.list).replace(self.prefix, other)
        with open(self.folder + "/other.txt", "w", encoding="utf-8") as file:
            file.write(text)
        foreign = ["bin/other", "share/man/man1/other.1", "share/doc/other"]
        for name in foreign:
            with open(f"{other}/{name}", "w", encoding="utf-8") as file:
                file.write("of another program\n")
        count = len(text.splitlines())
        os.remove(text.splitlines()[0])  # by hand, so it is not there to be removed
        said = output(SOURCE + "/packaging/uninstall.sh", self.folder + "/other.txt", other)
        self.assertEqual(said, f"uninstall: removed {count - 1} files below {other}\n")
        self.assertEqual(files_below(other), set(foreign))
        folders = {os.path.relpath(path, other) for path, _, _ in os.walk(other)}
        self.assertEqual({name for name in folders if "/" in name}, {"share/man", "share/man/man1", "share/doc"})


class Window(Installed):
    def test_the_desktop_entry_is_valid_and_starts_what_is_installed(self):
        path = self.path(f"share/applications/{ID}.desktop")
        self.assertEqual(output("desktop-file-validate", path), "")
        for program in re.findall(r"^(?:Try)?Exec=(\S+)", content(path), re.M):
            self.path("bin/" + program)
        self.assertIn(f"\nIcon={ID}\n", content(path))

    def test_the_metainfo_is_valid_and_of_this_version(self):
        path = self.path(f"share/metainfo/{ID}.metainfo.xml")
        output("appstreamcli", "validate", "--no-net", path)
        self.assertIn(f'<release version="{VERSION}" ', content(path))

    def test_scripts_are_a_kind_of_file_that_the_window_opens(self):
        packages = self.folder + "/mime/packages"
        os.makedirs(packages)
        shutil.copy(self.path(f"share/mime/packages/{ID}.xml"), packages)
        output("update-mime-database", self.folder + "/mime")
        self.assertIn(":text/x-tallyquill-script:*.script\n", content(self.folder + "/mime/globs2"))
        self.assertIn("\nMimeType=text/x-tallyquill-script;\n", content(self.path(f"share/applications/{ID}.desktop")))

    def test_icons_have_the_sizes_of_their_folders(self):
        for size in (16, 24, 32, 48, 64, 128, 256, 512):
            with open(self.path(f"share/icons/hicolor/{size}x{size}/apps/{ID}.png"), "rb") as file:
                start = file.read(24)
            self.assertEqual(start[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual(struct.unpack(">II", start[16:24]), (size, size))
        self.assertIn("<svg", content(self.path(f"share/icons/hicolor/scalable/apps/{ID}.svg")))

    def test_the_window_is_of_this_version(self):
        path = self.path("lib/tallyquill/Tallyquill.app/Resources/Info-gnustep.plist")
        self.assertIn(f'ApplicationRelease = "{VERSION}";', content(path))
        wrapper = content(self.path("bin/tallyquill-window"))
        self.assertIn("/../lib/tallyquill/Tallyquill.app/Tallyquill", wrapper)


if __name__ == "__main__":
    unittest.main()
