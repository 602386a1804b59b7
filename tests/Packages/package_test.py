"""What scripts/package refuses before it packs anything, and what it says besides."""
import os
import shutil
import unittest

from support import LINUX_BUILD, ROOT, VERSION, WINDOWS_BUILD, require, run, temporary_folder

PACKAGE = ROOT / "scripts/package"


class FolderTest(unittest.TestCase):
    """--out deletes what is in the folder."""

    def package(self, out, **options):
        return run(PACKAGE, "--out", out, LINUX_BUILD, WINDOWS_BUILD, **options)

    def assert_refused(self, out, message, **options):
        done = self.package(out, **options)
        self.assertEqual((1, b"", f"package: {message}\n"), (done.returncode, done.stdout, done.stderr.decode()))

    def test_a_folder_that_holds_anything_else_is_refused_and_left_alone(self):
        for name in ["notes.txt", ".hidden", "..odd", "SarvexTool-1.0.0-linux-x64.tar", "a\nb"]:
            with self.subTest(name=name):
                folder = temporary_folder(self)
                (folder / "SHA256SUMS").write_text("sums")
                (folder / name).write_text("mine")
                self.assert_refused(folder, f"{folder} holds {name}, which is no package: give another folder")
                self.assertEqual({"SHA256SUMS", name}, {path.name for path in folder.iterdir()})

    def test_a_broken_link_and_a_folder_with_the_name_of_a_package_are_refused(self):
        folder = temporary_folder(self)
        (folder / "link").symlink_to("nowhere")
        self.assert_refused(folder, f"{folder} holds link, which is no package: give another folder")
        (folder / "link").unlink()
        inner = folder / "SarvexTool-1.0.0-windows-x64.zip"
        inner.mkdir()
        self.assert_refused(folder, f"{inner} is a folder")

    def test_a_file_is_refused(self):
        file = temporary_folder(self) / "file"
        file.write_text("mine")
        self.assert_refused(file, f"{file} is no folder")
        self.assertEqual("mine", file.read_text())

    def test_a_relative_folder_is_that_of_the_caller(self):
        folder = temporary_folder(self)
        (folder / "out").mkdir()
        (folder / "out/notes.txt").write_text("mine")
        self.assert_refused("out", f"{folder}/out holds notes.txt, which is no package: give another folder",
                            cwd=folder)
        self.assert_refused(".", f"{folder}/. holds out, which is no package: give another folder", cwd=folder)

    def test_no_folder_at_all_is_wrong_usage(self):
        for arguments in [["--out"], ["--out", ""]]:
            done = run(PACKAGE, *arguments)
            self.assertEqual((1, b"package: usage: scripts/package [--out DIR] [LINUX_BUILD WINDOWS_BUILD]\n"),
                             (done.returncode, done.stderr))


class BuildTest(unittest.TestCase):
    """Builds that are given, with a tree of sources of another version, or changed since the last commit."""

    OTHER = "77.0.1"
    CHANGED = "package: the sources are not those of the last commit, whose time the files get\n"

    def setUp(self):
        self.folder = temporary_folder(self)
        self.top = self.folder / "sources"
        self.top.mkdir()
        for name in ["CHANGELOG.md", "CMakeLists.txt"]:
            shutil.copy(ROOT / name, self.top)
        shutil.copytree(ROOT / "scripts", self.top / "scripts")
        self.git("init", "--quiet")
        self.git("add", "--all")
        self.git("commit", "--quiet", "--message", "Begin")

    def git(self, *arguments):
        require("git", "-C", self.top, "-c", "user.name=nobody", "-c", "user.email=nobody@example.invalid", *arguments)

    def set_version(self, version):
        file = self.top / "CMakeLists.txt"
        file.write_text(file.read_text().replace(f"VERSION {VERSION} ", f"VERSION {version} "))

    def package(self, linux_build=LINUX_BUILD, windows_build=WINDOWS_BUILD):
        done = run(self.top / "scripts/package", "--out", self.folder / "out", linux_build, windows_build)
        self.assertFalse((self.folder / "out").exists())
        return done.returncode, done.stderr.decode()

    def copy_of(self, build, old, new):
        """What the script looks at, with another version in a file or more."""
        copy = self.folder / build.name
        (copy / "bin").mkdir(parents=True)
        for path in [build / "CMakeCache.txt", *(build / "bin").iterdir()]:
            if path.suffix != ".map" and path.stem in ["CMakeCache", "SarvexToolClient", "SarvexToolBench", "vemo"]:
                target = copy / path.relative_to(build)
                target.write_bytes(path.read_bytes().replace(old, new))
                target.chmod(path.stat().st_mode)
        return copy

    def test_builds_of_another_version_are_refused(self):
        self.set_version(self.OTHER)
        self.git("commit", "--quiet", "--all", "--message", "Raise the version")
        message = f"package: {LINUX_BUILD} is of version {VERSION}, the sources are of {self.OTHER}: build again\n"
        self.assertEqual((1, message), self.package())

    def test_programs_of_another_version_than_their_configuration_are_refused(self):
        one, other = VERSION, VERSION[:-1] + "9"
        for encoding, build in [("utf-8", LINUX_BUILD), ("utf-16le", WINDOWS_BUILD)]:
            with self.subTest(build=build):
                copy = self.copy_of(build, one.encode(encoding), other.encode(encoding))
                cache = (build / "CMakeCache.txt").read_bytes()
                (copy / "CMakeCache.txt").write_bytes(cache)
                builds = {"linux_build" if build == LINUX_BUILD else "windows_build": copy}
                code, told = self.package(**builds)
                self.assertEqual(1, code)
                self.assertRegex(told, rf"^package: \w+ in {copy} is of version {other}, the sources are of {one}: "
                                       "build again\n$")

    def test_a_certificate_that_there_is_not_is_told_before_anything_is_built(self):
        # Builds are asked for; nothing is installed, and no build may begin.
        shutil.copytree(ROOT / "packaging/windows", self.top / "packaging/windows")
        (self.top / "scripts/setup").write_text("#!/bin/sh\n")
        tools = self.folder / "tools"
        tools.mkdir()
        (tools / "cmake").write_text(f"#!/bin/sh\ntouch {self.folder}/built\nexit 1\n")
        (tools / "cmake").chmod(0o755)
        environment = {name: value for name, value in os.environ.items() if not name.startswith("SARVEX_SIGN_")}
        environment["PATH"] = f"{tools}:{os.environ['PATH']}"
        done = run(self.top / "scripts/package", cwd=self.folder,
                   env={**environment, "SARVEX_SIGN_CERTIFICATE": "mistyped.pem"})
        self.assertEqual((1, f"sign: {self.folder}/mistyped.pem cannot be read"),
                         (done.returncode, done.stderr.decode().splitlines()[-1]))
        self.assertFalse((self.folder / "built").exists())
        # So that the line above can fail.
        run(self.top / "scripts/package", cwd=self.folder, env=environment)
        self.assertTrue((self.folder / "built").exists())

    def test_a_folder_that_is_no_build_is_refused(self):
        code, told = self.package(windows_build=self.folder)
        self.assertEqual(1, code)
        self.assertIn(f"package: {self.folder} is no build\n", told)

    def test_changes_since_the_last_commit_are_told(self):
        self.assertNotIn(self.CHANGED, self.package(windows_build=self.folder)[1])
        (self.top / "CHANGELOG.md").write_text("changed")
        self.assertIn(self.CHANGED, self.package(windows_build=self.folder)[1])


if __name__ == "__main__":
    unittest.main()
