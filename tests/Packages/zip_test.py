"""The zip for Windows: unpacked and run under wine, against the simulated daemon that is in it."""
import unittest

from support import TOP, VERSION, WINE, ZIP, run, simulator, temporary_folder, unpack

LINE_END = b"\r\n"


class ZipTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # A blank and a letter beyond ASCII, as in a user's own folder.
        cls.folder = temporary_folder(cls) / "Program Files" / "J\u00e4ger"
        cls.top = unpack(ZIP, cls.folder)

    def run_program(self, name, *arguments, **options):
        return run(*WINE, self.top / f"{name}.exe", *arguments, **options)

    def test_it_holds_one_folder(self):
        self.assertEqual([TOP], [path.name for path in self.folder.iterdir()])

    def test_the_programs_tell_their_version(self):
        for name, line_end in [("SarvexToolBench", b"\n"), ("simulator/vemo", LINE_END)]:
            with self.subTest(name=name):
                done = self.run_program(name, "--version")
                self.assertEqual((0, b""), (done.returncode, done.stderr))
                self.assertEqual(f"{name.rpartition('/')[2]} {VERSION}".encode() + line_end, done.stdout)

    def test_the_programs_talk_to_the_simulated_daemon(self):
        port_file = self.top / "Socket.cfg"
        self.assertEqual(b"8738", port_file.read_bytes())
        with simulator(*WINE, self.top / "simulator/vemo.exe") as (process, port):
            port_file.write_text(port)
            done = self.run_program("SarvexToolClient", "-wifi-band", "5", "-wifi-channel", "36")
            self.assertEqual((0, b"Band: 5\r\nChannel: 36\r\n", b""), (done.returncode, done.stdout, done.stderr))
            (self.folder / "test.csv").write_bytes((self.top / "examples/short.csv").read_bytes())
            done = self.run_program("SarvexToolBench", "check", "test.csv", "--daemon", f"127.0.0.1:{port}",
                                    cwd=self.folder)
            self.assertEqual((0, b""), (done.returncode, done.stderr))
            self.assertIn(b"test.csv: no errors", done.stdout)
            done = self.run_program("SarvexToolClient", "-exit")
            self.assertEqual((0, b""), (done.returncode, done.stderr))
            self.assertEqual(0, process.wait(60))


if __name__ == "__main__":
    unittest.main()
