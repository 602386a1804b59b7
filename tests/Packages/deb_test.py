"""The Debian package: checked by lintian, installed, upgraded, removed and purged by dpkg. The short form has
a tree with dpkg's own files alone, in which the package's programs run; the long form has a whole Debian."""
import gzip
import re
import shutil
import unittest

from support import (DEB, DEV_DEB, DIST, LONG, ROOT, VERSION, enter, require, run, simulator, temporary_folder,
                     unpack, way_into_trees)

OLD_VERSION = "0.9.0"
FOLDER = "usr/lib/sarvextool"
# What a Debian keeps of each package that it has had.
BOOKS = re.compile(r"(var/(lib/(dpkg|apt)|log|cache)|proc|root|tmp)(/|$)")


class SmallTree:
    """dpkg's files in a directory; the machine's own dpkg works on it, and its shell runs the scripts."""

    def __init__(self, test):
        self.path = temporary_folder(test)
        books = self.path / "var/lib/dpkg"
        for folder in ["info", "updates", "triggers"]:
            (books / folder).mkdir(parents=True)
        (books / "status").touch()

    def dpkg(self, *arguments):
        require(*way_into_trees(), "dpkg", f"--root={self.path}", f"--log={self.path}/var/log",
                "--force-script-chrootless", *arguments)

    def install(self, package):
        self.dpkg("--install", package)


class WholeDebian:
    """A minimal Debian, in which its own apt and dpkg work."""

    def __init__(self, test):
        self.path = temporary_folder(test) / "debian"
        kept = ROOT / "build/debian-tree"
        if not kept.exists():
            made = kept.with_name("debian-tree.made")
            shutil.rmtree(made, ignore_errors=True)
            require("debootstrap", "--variant=minbase", "bookworm", made, timeout=1200)
            made.rename(kept)
        require("cp", "-a", kept, self.path)

    def dpkg(self, *arguments):
        require(*enter(self.path), "dpkg", *arguments)

    def install(self, package):
        shutil.copy(package, self.path / "tmp")
        # The compiler that the libraries recommend has hundreds of files of its own.
        require(*enter(self.path), "env", "DEBIAN_FRONTEND=noninteractive", "apt-get", "install", "-y",
                "--no-install-recommends", f"/tmp/{package.name}")


def older(package, folder):
    """The package as it might have been in an older version, with one file that has gone since."""
    require("dpkg-deb", "--raw-extract", package, folder)
    control = folder / "DEBIAN/control"
    control.write_text(control.read_text().replace(f"\nVersion: {VERSION}\n", f"\nVersion: {OLD_VERSION}\n"))
    (folder / FOLDER / "gone").write_text("since")
    built = folder.with_name(package.name.replace(VERSION, OLD_VERSION))
    require("dpkg-deb", "--root-owner-group", "-Zgzip", "-z1", "--build", folder, built)
    return built


class DebTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.old_package = older(DEB, temporary_folder(cls) / "old")

    def setUp(self):
        self.tree = (WholeDebian if LONG else SmallTree)(self)
        self.before = self.files()

    def files(self):
        names = {str(path.relative_to(self.tree.path)) for path in self.tree.path.rglob("*")
                 if path.is_symlink() or not path.is_dir()}
        return {name for name in names if not BOOKS.match(name)}

    def file(self, name):
        return self.tree.path / FOLDER / name

    def run_program(self, name, *arguments):
        done = run(*enter(self.tree.path), f"/usr/bin/{name}", *arguments)
        return done.returncode, done.stdout, done.stderr

    def test_the_installed_programs_are_on_the_path_and_talk_to_each_other(self):
        self.tree.install(DEB)
        self.assertEqual((0, f"SarvexToolBench {VERSION}\n".encode(), b""),
                         self.run_program("SarvexToolBench", "--version"))
        with simulator(*enter(self.tree.path), "/usr/bin/sarvextool-vemo") as (process, port):
            self.file("Socket.cfg").write_text(port)
            self.assertEqual((0, b"Band: 5\nChannel: 36\n", b""),
                             self.run_program("SarvexToolClient", "-wifi-band", "5", "-wifi-channel", "36"))
            self.assertEqual((0, b"The simulated daemon ends.\n", b""),
                             self.run_program("SarvexToolClient", "-exit"))
            self.assertEqual(0, process.wait(60))

    def test_the_simulated_daemon_is_not_on_the_path_under_its_bare_name_nor_beside_the_client(self):
        self.tree.install(DEB)
        named = {name for name in self.files() - self.before if name.rpartition("/")[2] == "vemo"}
        self.assertEqual({f"{FOLDER}/simulator/vemo"}, named)

    def test_the_port_files_hold_the_usual_port_and_are_files_of_their_own(self):
        self.tree.install(DEB)
        for name in ["Socket.cfg", "simulator/Socket.cfg"]:
            with self.subTest(name=name):
                status = self.file(name).lstat()
                self.assertEqual((0o100644, 1), (status.st_mode, status.st_nlink))
                self.assertEqual(b"8738", self.file(name).read_bytes())

    def test_the_lines_of_the_page_set_both_ports_and_copy_the_examples(self):
        self.tree.install(DEB)
        folder = temporary_folder(self)
        section = (ROOT / "docs/install.md").read_text().split("## Debian and Ubuntu\n")[1].split("\n## ")[0]
        lines = re.findall(r"^(?:printf|cp) .*$", section, re.MULTILINE)
        script = "\n".join(lines).replace("sudo ", "").replace("/usr/", f"{self.tree.path}/usr/")
        require("bash", "-ec", script, cwd=folder)
        self.assertEqual(["8811", "8811"],
                         [self.file(name).read_text() for name in ["Socket.cfg", "simulator/Socket.cfg"]])
        self.assertEqual({path.name for path in (ROOT / "examples").glob("*.csv")},
                         {path.name for path in (folder / "examples").iterdir()})

    def test_an_upgrade_keeps_what_the_user_has_written_and_takes_away_what_has_gone(self):
        self.tree.install(self.old_package)
        self.assertTrue(self.file("gone").exists())
        self.file("Socket.cfg").write_text("4711")
        self.file("simulator/Socket.cfg").write_text("4712")
        self.file("SarvexToolCmds.txt").write_text("-exit 0\n")
        self.tree.install(DEB)
        self.assertEqual("4711", self.file("Socket.cfg").read_text())
        self.assertEqual("4712", self.file("simulator/Socket.cfg").read_text())
        self.assertEqual("-exit 0\n", self.file("SarvexToolCmds.txt").read_text())
        self.assertFalse(self.file("gone").exists())

    def test_a_port_file_that_the_user_has_removed_comes_back_with_an_upgrade_and_a_link_stays(self):
        self.tree.install(self.old_package)
        self.file("Socket.cfg").unlink()
        self.file("simulator/Socket.cfg").unlink()
        self.file("simulator/Socket.cfg").symlink_to("nowhere")
        self.tree.install(DEB)
        self.assertEqual("8738", self.file("Socket.cfg").read_text())
        self.assertTrue(self.file("simulator/Socket.cfg").is_symlink())

    def test_removed_and_installed_again_it_has_the_same_configuration(self):
        self.tree.install(DEB)
        self.file("Socket.cfg").write_text("4711")
        self.file("SarvexToolCmds.txt").write_text("-exit 0\n")
        self.tree.dpkg("--remove", "sarvextool")
        self.assertEqual(
            {f"{FOLDER}/{name}" for name in ["Socket.cfg", "SarvexToolCmds.txt", "simulator/Socket.cfg"]},
            self.files() - self.before)
        self.tree.install(DEB)
        self.assertEqual("4711", self.file("Socket.cfg").read_text())
        self.assertEqual("-exit 0\n", self.file("SarvexToolCmds.txt").read_text())

    def test_purged_it_leaves_nothing(self):
        self.tree.install(DEB)
        self.file("SarvexToolCmds.txt").write_text("-exit 0\n")
        self.tree.dpkg("--purge", "sarvextool")
        self.assertEqual(self.before, self.files())
        self.assertFalse(self.file(".").exists())

    def test_a_purge_leaves_what_is_not_of_the_package(self):
        self.tree.install(DEB)
        self.file("vemo").write_text("the real daemon")
        self.tree.dpkg("--purge", "sarvextool")
        self.assertEqual({f"{FOLDER}/vemo"}, self.files() - self.before)

    def test_the_libraries_are_a_package_of_their_own(self):
        self.tree.install(DEV_DEB)
        added = self.files() - self.before
        self.assertIn("usr/lib/x86_64-linux-gnu/libsarvextool-client.a", added)
        self.assertEqual(set(), {name for name in added if name.startswith((FOLDER, "usr/bin/"))})
        self.tree.dpkg("--purge", "sarvextool-dev")
        self.assertEqual(self.before, self.files())


class PackagesTest(unittest.TestCase):
    def test_the_man_pages_call_the_programs_as_they_are_on_the_path(self):
        pages = list((unpack(DEB, temporary_folder(self)) / "usr/share/man").glob("man?/*.gz"))
        self.assertIn("sarvextool.7.gz", {page.name for page in pages})
        for page in pages:
            with self.subTest(page=page.name):
                self.assertNotIn(b"./SarvexTool", gzip.decompress(page.read_bytes()))

    def test_lintian_finds_neither_errors_nor_warnings(self):
        for package in sorted(DIST.glob("*.deb")):
            with self.subTest(package=package.name):
                done = run("lintian", "--allow-root", "--fail-on", "error,warning", package)
                self.assertEqual((0, b"", b""), (done.returncode, done.stdout, done.stderr))

    def test_each_override_says_why(self):
        for file in ROOT.glob("packaging/debian/*/lintian-overrides"):
            with self.subTest(file=file):
                lines = file.read_text().splitlines()
                for before, line in zip(["", *lines], lines):
                    if not line.startswith("#"):
                        self.assertTrue(before.startswith("#"), f"no reason before {line}")


if __name__ == "__main__":
    unittest.main()
