"""Installs a build into a temporary directory and runs what lies there.

usage: install_test.py BUILD_DIRECTORY [EMULATOR]
"""
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv[1])
EMULATOR = sys.argv[2:]
SUFFIX = ".exe" if EMULATOR else ""
LINE_END = b"\r\n" if EMULATOR else b"\n"

# What a system brings by itself; everything else the programs have to hold.
SYSTEM_LIBRARIES = {
    "": set(),
    ".exe": {"KERNEL32.dll", "msvcrt.dll", "WS2_32.dll", "ADVAPI32.dll", "MSWSOCK.dll"},
}[SUFFIX]


def run(*command):
    return subprocess.run(command, capture_output=True, check=False, stdin=subprocess.DEVNULL)


def needed_libraries(program):
    done = run("objdump", "-p", program)
    if done.returncode != 0:
        raise AssertionError(done.stderr.decode())
    text = done.stdout.decode(errors="replace")
    return set(re.findall(r"^\s*(?:NEEDED|DLL Name:)\s+(\S+)$", text, re.MULTILINE))


def project_version():
    text = pathlib.Path("CMakeLists.txt").read_text()
    return re.search(r"^project\(SarvexTool VERSION (\d+\.\d+\.\d+) ", text, re.MULTILINE)[1]


def version_resource(program):
    """The file version of a Windows program in numbers, and the resource's texts by name."""
    data = program.read_bytes()
    fixed = data.index(struct.pack("<II", 0xFEEF04BD, 0x00010000))
    high, low = struct.unpack_from("<II", data, fixed + 8)
    fields = f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"
    start = data.index("StringFileInfo\0".encode("utf-16le"), fixed)
    text = data[start:data.index("VarFileInfo\0".encode("utf-16le"), start)].decode("utf-16le")
    # The type 1, the name, one NUL or two, the value, a NUL.
    return fields, dict(re.findall("\1(\\w+)\0{1,2}([^\0\1]+)\0", text))


class InstallTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.root = pathlib.Path(cls.folder.name) / "installed"
        done = run("cmake", "--install", BUILD, "--prefix", cls.root)
        if done.returncode != 0:
            raise AssertionError(done.stderr.decode())
        cls.client = cls.root / f"SarvexToolClient{SUFFIX}"
        cls.bench = cls.root / f"SarvexToolBench{SUFFIX}"
        cls.simulator = cls.root / "simulator" / f"vemo{SUFFIX}"

    def run_program(self, program, *arguments):
        return run(*EMULATOR, program, *arguments)

    def test_the_directory_holds_these_files_and_no_others(self):
        examples = {f"examples/{file.name}" for file in pathlib.Path("examples").glob("*.csv")}
        programs = {f"SarvexToolClient{SUFFIX}", f"SarvexToolBench{SUFFIX}",
                    f"simulator/vemo{SUFFIX}"}
        found = {str(f.relative_to(self.root)) for f in self.root.rglob("*") if f.is_file()}
        self.assertEqual(programs | examples | {"Socket.cfg", "simulator/Socket.cfg"}, found)

    def test_both_port_files_hold_the_usual_port_in_four_bytes(self):
        for folder in [self.root, self.root / "simulator"]:
            with self.subTest(folder=folder):
                self.assertEqual(b"8738", (folder / "Socket.cfg").read_bytes())

    def test_edited_and_linked_port_files_outlast_the_next_installation(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder) / "again"
            self.assertEqual(0, run("cmake", "--install", BUILD, "--prefix", root).returncode)
            (root / "Socket.cfg").write_bytes(b"4711")
            (root / "SarvexToolCmds.txt").write_bytes(b"-exit 0\n")
            link = root / "simulator" / "Socket.cfg"
            link.unlink()
            link.symlink_to("nowhere")
            (root / "examples" / "short.csv").write_bytes(b"an older version's")
            self.assertEqual(0, run("cmake", "--install", BUILD, "--prefix", root).returncode)
            self.assertEqual(b"4711", (root / "Socket.cfg").read_bytes())
            self.assertEqual(b"-exit 0\n", (root / "SarvexToolCmds.txt").read_bytes())
            self.assertTrue(link.is_symlink())
            self.assertEqual(pathlib.Path("examples/short.csv").read_bytes(),
                             (root / "examples" / "short.csv").read_bytes())

    def test_no_installed_file_shares_its_bytes_with_another_name(self):
        # The programs refuse linked files.
        links = [f for f in self.root.rglob("*") if f.is_symlink() or
                 f.is_file() and f.stat().st_nlink != 1]
        self.assertEqual([], links)

    def test_the_bare_client_prints_its_usage_and_succeeds(self):
        done = self.run_program(self.client)
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        self.assertRegex(done.stdout, rb"\AUsage: .*SarvexToolClient\S* \[args\]" + LINE_END + rb"\Z")

    def test_the_simulator_explains_itself_and_succeeds(self):
        done = self.run_program(self.simulator, "--help")
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        self.assertIn(b"--port", done.stdout)

    def test_the_simulator_tells_the_version_of_the_project(self):
        done = self.run_program(self.simulator, "--version")
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        self.assertEqual(b"vemo " + project_version().encode() + LINE_END, done.stdout)

    def test_the_bench_program_tells_the_version_of_the_project_in_the_same_bytes_everywhere(self):
        done = self.run_program(self.bench, "--version")
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        self.assertEqual(b"SarvexToolBench " + project_version().encode() + b"\n", done.stdout)

    @unittest.skipUnless(EMULATOR, "only Windows programs have properties")
    def test_the_programs_properties_show_the_version_of_the_project(self):
        version = project_version()
        for program in [self.client, self.bench, self.simulator]:
            with self.subTest(program=program):
                fields, texts = version_resource(program)
                self.assertEqual(version + ".0", fields)
                self.assertEqual(version, texts["FileVersion"])
                self.assertEqual(version, texts["ProductVersion"])
                self.assertEqual(program.name, texts["OriginalFilename"])

    def test_the_programs_need_nothing_that_a_fresh_system_lacks(self):
        for program in [self.client, self.bench, self.simulator]:
            with self.subTest(program=program):
                needed = needed_libraries(program)
                # The Linux programs are linked statically.
                self.assertEqual(bool(EMULATOR), bool(needed))
                self.assertEqual(set(), needed - SYSTEM_LIBRARIES)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
