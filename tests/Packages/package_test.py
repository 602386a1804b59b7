"""What scripts/package refuses before it packs anything, and what it says besides."""
import unittest

from support import LINUX_BUILD, ROOT, WINDOWS_BUILD, run, temporary_folder

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


if __name__ == "__main__":
    unittest.main()
