"""The archive for every Linux: its programs run in a tree that holds no library."""
import os
import re
import shutil
import unittest

from support import ROOT, TAR, TOP, VERSION, enter, require, run, simulator, temporary_folder, unpack

PAGE = ROOT / "docs/install.md"


class TarTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = temporary_folder(cls)
        cls.top = unpack(TAR, cls.tree)
        # No system lacks it; locks are kept there.
        (cls.tree / "tmp").mkdir()

    def inside(self, name, *arguments):
        return [*enter(self.tree), f"/{TOP}/{name}", *arguments]

    def run_program(self, name, *arguments):
        return run(*self.inside(name, *arguments))

    def test_it_holds_one_folder(self):
        self.assertEqual({TOP}, {path.name for path in self.tree.iterdir()} - {"dev", "proc", "tmp"})

    def test_the_programs_tell_their_version(self):
        for name in ["SarvexToolBench", "simulator/vemo"]:
            with self.subTest(name=name):
                done = self.run_program(name, "--version")
                self.assertEqual((0, b""), (done.returncode, done.stderr))
                self.assertEqual(f"{name.rpartition('/')[2]} {VERSION}\n".encode(), done.stdout)

    def test_the_programs_talk_to_the_simulated_daemon(self):
        port_file = self.top / "Socket.cfg"
        self.assertEqual(b"8738", port_file.read_bytes())
        with simulator(*self.inside("simulator/vemo")) as (process, port):
            port_file.write_text(port)
            self.addCleanup(port_file.write_text, "8738")
            done = self.run_program("SarvexToolClient", "-wifi-band", "5", "-wifi-channel", "36")
            self.assertEqual((0, b"Band: 5\nChannel: 36\n", b""), (done.returncode, done.stdout, done.stderr))
            done = self.run_program("SarvexToolBench", "check", f"/{TOP}/examples/short.csv",
                                    "--daemon", f"127.0.0.1:{port}")
            self.assertEqual((0, b""), (done.returncode, done.stderr))
            self.assertIn(b"short.csv: no errors", done.stdout)
            done = self.run_program("SarvexToolClient", "-exit")
            self.assertEqual((0, b""), (done.returncode, done.stderr))
            self.assertEqual(0, process.wait(60))

    def test_a_power_test_runs_where_there_is_a_null_device_and_says_so_where_there_is_none(self):
        null = self.tree / "dev/null"
        arguments = ["SarvexToolBench", "run", f"/{TOP}/examples/short.csv"]
        with simulator(*self.inside("simulator/vemo")) as (process, port):
            address = ["--daemon", f"127.0.0.1:{port}"]
            done = self.run_program(*arguments, *address, "--out", "/tmp/without")
            self.assertEqual(3, done.returncode)
            self.assertIn(b"The run ended early, after 0 of 12 lines: /dev/null: No such file or directory.\n",
                          done.stdout)
            # What is read from it is as empty as the device, which not every user may make.
            null.parent.mkdir()
            self.addCleanup(shutil.rmtree, null.parent)
            null.touch()
            done = self.run_program(*arguments, *address, "--out", "/tmp/with")
            self.assertEqual((0, b"The run is complete: 12 of 12 lines.\n17 measurements: 17 measured.\n"
                                 b"The results are in\n  /tmp/with\nThe daemon has confirmed the last stop.\n"),
                             (done.returncode, done.stdout))
            self.assertEqual(13, len((self.tree / "tmp/with/result.csv").read_text().splitlines()))
            (self.top / "Socket.cfg").write_text(port)
            self.addCleanup((self.top / "Socket.cfg").write_text, "8738")
            self.assertEqual(0, self.run_program("SarvexToolClient", "-exit").returncode)
            self.assertEqual(0, process.wait(60))
        page = re.sub(r"\s+", " ", PAGE.read_text())
        self.assertIn("`SarvexToolBench run` needs `/dev/null` besides", page)

    def test_the_lines_of_the_page_unpack_run_and_link_the_programs(self):
        section = PAGE.read_text().split("## Other Linux systems\n")[1].split("\n## ")[0]
        lines = "".join(re.findall(r"^```\n(.*?)^```$", section, re.DOTALL | re.MULTILINE))
        # Only an administrator may write there.
        self.assertEqual([], [line for line in lines.splitlines()
                              if re.search(r"-C /opt|/usr/local/bin", line) and not line.startswith("sudo ")])
        self.assertEqual(2, lines.count("sudo tar ") + lines.count("sudo ln "))
        folder = temporary_folder(self)
        for name in ["opt", "usr/local/bin"]:
            (folder / name).mkdir(parents=True)
        for name in ["/opt", "/usr/local/bin"]:
            lines = lines.replace(name, f"{folder}{name}")
        lines = lines.replace(TAR.name.replace(VERSION, "VERSION"), str(TAR)).replace("VERSION", VERSION)
        # Not everywhere is there a sudo.
        lines = 'sudo() { "$@"; }\n' + lines
        told = require("bash", "-ec", f"{lines}complete -p SarvexToolBench; {folder}/usr/local/bin/SarvexToolBench -h",
                       env=os.environ | {"MANPAGER": "cat", "MANROFFOPT": ""}).decode()
        for words in [f"SarvexToolBench {VERSION}\n", "SarvexToolBench - ", "complete -", "Usage:"]:
            self.assertIn(words, told)


if __name__ == "__main__":
    unittest.main()
