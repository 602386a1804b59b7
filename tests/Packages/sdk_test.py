"""Compiles and runs the programs of docs/sdk.md against an SDK that was moved after its install, for both
targets, and tries what the SDK has to refuse.

usage: sdk_test.py [LINUX_BUILD WINDOWS_BUILD]      (build/linux and build/windows unless others are given)
"""
import concurrent.futures
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "EndToEnd"))
import free_port  # noqa: E402

PAGE = (ROOT / "docs" / "sdk.md").read_text()
BUILDS = [pathlib.Path(name).resolve() for name in sys.argv[1:3]]
BUILDS = BUILDS or [ROOT / "build" / "linux", ROOT / "build" / "windows"]
PAGE_PREFIX = "/opt/sarvextool"
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion",
            "-Wold-style-cast", "-Wnon-virtual-dtor", "-Werror"]
PUBLIC = "// Public, stable within a major version"

# What the simulated daemon answers in each of the ways that a client tells apart: information, an error
# with its code, both sections in several parts, a code of its own, a code that is none, no answer at all.
COMMANDS = [
    ["-wifi-get-mac-type"],
    ["-wifi-mode", "a b"],
    ["-no-such-option"],
    ["-wifi-get-mcc"],
    ["-wifi-band", "5"],
]
FAULTS = ["return-code=7", "return-code=seven", "uncalibrated", "close-before", "crlf", "no-mark",
          "long-line=5000"]


def run(*command, **options):
    return subprocess.run(command, capture_output=True, check=False, stdin=subprocess.DEVNULL,
                          **options)


def succeed(*command, **options):
    done = run(*command, **options)
    if done.returncode != 0:
        raise AssertionError(f"{shlex.join(map(str, command))}\n{done.stdout.decode()}"
                             f"{done.stderr.decode()}")
    return done.stdout.decode()


def blocks(language):
    """The code blocks of a language, in the order of the page."""
    return re.findall(rf"^```{language}\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)


def project_version():
    text = (ROOT / "CMakeLists.txt").read_text()
    return re.search(r"^project\(SarvexTool VERSION (\S+) ", text, re.MULTILINE)[1]


COMMAND_PROGRAM, FRAMEWORK_PROGRAM = blocks("cpp")
[CONSUMER] = blocks("cmake")
CMAKE_LINUX, CMAKE_WINDOWS, PKG_CONFIG_LINUX, PKG_CONFIG_WINDOWS = blocks("sh")
READY_OUTPUT, NOT_READY_OUTPUT = [text for text in blocks("") if text.startswith("[OEMINFO]")]


class Sdk:
    """What is tested for one target."""

    build: pathlib.Path
    compilers: list
    emulator: list
    suffix: str
    line_end: str
    library_folder: str
    cmake_lines: str
    cmake_folder: str
    pkg_config_lines: str
    link_options: list
    system: str
    other_system: str

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="sdk-")
        cls.addClassCleanup(folder.cleanup)
        cls.stage = pathlib.Path(folder.name)
        succeed("cmake", "--install", cls.build, "--prefix", cls.stage / "first",
                "--component", "sdk")
        cls.root = cls.stage / "moved elsewhere"
        (cls.stage / "first").rename(cls.root)
        cls.includes = cls.root / "include" / "sarvextool"
        cls.libraries = cls.root / cls.library_folder
        cls.package = cls.libraries / "cmake" / "SarvexTool"
        cls.environment = {**os.environ, "PKG_CONFIG_LIBDIR": str(cls.libraries / "pkgconfig")}
        cls.made = cls.make_programs()

    @classmethod
    def make_programs(cls):
        """The page's program, made by the page's own lines in its two ways."""
        sources = cls.stage / "sources"
        sources.mkdir()
        (sources / "command.cpp").write_text(COMMAND_PROGRAM)
        (sources / "framework.cpp").write_text(FRAMEWORK_PROGRAM)
        (sources / "CMakeLists.txt").write_text(CONSUMER)
        cls.sources = sources
        root = shlex.quote(str(cls.root))
        for lines in (cls.cmake_lines.replace(PAGE_PREFIX, root), cls.pkg_config_lines):
            # The shell takes the answer of pkg-config apart at blanks; eval heeds the backslashes there.
            script = re.sub(r"^(.*\$\(.*)$", r"""eval "\1" """, lines, flags=re.MULTILINE)
            succeed("bash", "-ec", script, cwd=sources, env=cls.environment)
        program = f"command{cls.suffix}"
        return {"cmake": sources / cls.cmake_folder / program, "pkg-config": sources / program}

    def flags(self, package):
        return shlex.split(succeed("pkg-config", "--cflags", "--libs", package,
                                   env=self.environment))

    def compile(self, name, text, *flags):
        source = self.sources / f"{name}.cpp"
        source.write_text(text)
        program = self.sources / f"{name}{self.suffix}"
        succeed(self.compilers[0], "-std=c++20", *WARNINGS, source, "-o", program,
                *self.link_options, *flags)
        return program

    def run_program(self, program, *arguments):
        return run(*self.emulator, program, *arguments, cwd=program.parent)

    def output_of(self, program):
        done = self.run_program(program)
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        return done.stdout.decode().replace(self.line_end, "\n")

    def start_daemon(self, *options):
        """Starts a simulated daemon; returns its port."""
        port = free_port.reserve()
        daemon = subprocess.Popen(
            [BUILDS[0] / "bin" / "vemo", "--port", str(port), *options],
            stdout=subprocess.PIPE, stdin=subprocess.DEVNULL)
        self.addCleanup(daemon.stdout.close)
        self.addCleanup(daemon.wait)
        self.addCleanup(daemon.terminate)
        self.assertTrue(daemon.stdout.readline().startswith(b"vemo listens on"))
        return port

    def stage_client(self):
        client = self.stage / "client" / f"SarvexToolClient{self.suffix}"
        if not client.exists():
            client.parent.mkdir()
            shutil.copy(self.build / "bin" / client.name, client)
        return client

    def told_by(self, program, arguments, port):
        (program.parent / "Socket.cfg").write_text(str(port))
        done = self.run_program(program, *arguments)
        return done.returncode, done.stdout, done.stderr

    def told_by_both_and_client(self, arguments, *options):
        """What the client and the page's two programs tell, each of a daemon of its own, for a fault
        may be one of the first command."""
        client = self.stage_client()
        expected = self.told_by(client, arguments, self.start_daemon(*options))
        for way, program in self.made.items():
            told = self.told_by(program, arguments, self.start_daemon(*options))
            yield way, expected, told

    def test_the_program_tells_what_the_client_tells(self):
        different = set()
        for arguments in COMMANDS:
            for way, expected, told in self.told_by_both_and_client(arguments):
                with self.subTest(way=way, arguments=arguments):
                    self.assertEqual(expected, told)
                    different.add(told)
        self.assertGreaterEqual(len(different), 4)

    def test_the_program_takes_faulty_answers_as_the_client_does(self):
        for fault in FAULTS:
            options = ["--fault", f"*:{fault}"]
            for way, expected, told in self.told_by_both_and_client(COMMANDS[0], *options):
                with self.subTest(way=way, fault=fault):
                    if fault == "return-code=seven":
                        # The client's code for an exception and its own words are the program's matter.
                        self.assertEqual((b"", 1, b"invalid stoi argument"),
                                         (told[1], told[0], told[2].rstrip()))
                        self.assertEqual(b"", expected[1])
                    else:
                        self.assertEqual(expected, told)

    def test_the_program_prints_what_the_page_shows(self):
        [session] = blocks("session")
        program = self.made["cmake"]
        port = self.start_daemon()
        shown = ""
        for line in re.findall(r"^\$ (.*)$", session, re.MULTILINE):
            shown += f"$ {line}\n"
            if line == "echo $?":
                shown += f"{code}\n"
                continue
            name, *arguments = shlex.split(line)
            self.assertEqual("./command", name)
            code, out, err = self.told_by(program, arguments, port)
            shown += (out + err).decode().replace(self.line_end, "\n")
        self.assertEqual(session, shown)

    def test_without_a_daemon_the_program_says_so(self):
        told = self.told_by(self.made["cmake"], ["-wifi-get-mac-type"], free_port.reserve())
        self.assertEqual((1, b"", b"Failed Creating socket"),
                         (told[0], told[1], told[2].rstrip()))

    def test_the_framework_program_prints_what_the_page_shows(self):
        program = self.compile("framework", FRAMEWORK_PROGRAM, *self.flags("sarvextool-framework"))
        self.assertEqual(READY_OUTPUT, self.output_of(program))

    def test_a_link_that_names_the_libraries_alone_makes_nothing_ready(self):
        flags = [flag for flag in self.flags("sarvextool-framework")
                 if flag != "-Wl,-u,SarvexToolStartUp"]
        program = self.compile("not_ready", FRAMEWORK_PROGRAM, *flags)
        self.assertEqual(NOT_READY_OUTPUT, self.output_of(program))

    def test_the_version_is_that_of_the_project(self):
        version = project_version()
        major, minor, patch = map(int, version.split("."))
        program = self.compile("version", f"""
            #include <SarvexTool/Version.h>
            #include <iostream>
            static_assert(SARVEXTOOL_VERSION_MAJOR == {major} && SARVEXTOOL_VERSION_MINOR == {minor} &&
                          SARVEXTOOL_VERSION_PATCH == {patch});
            static_assert(SARVEXTOOL_VERSION_AT_LEAST({major}, {minor}, {patch}));
            static_assert(!SARVEXTOOL_VERSION_AT_LEAST({major}, {minor}, {patch + 1}));
            static_assert(!SARVEXTOOL_VERSION_AT_LEAST({major}, {minor + 1}, 0));
            static_assert(!SARVEXTOOL_VERSION_AT_LEAST({major + 1}, 0, 0));
            static_assert(SARVEXTOOL_VERSION_AT_LEAST({major}, 0, {patch + 1}) == ({minor} > 0));
            static_assert(SARVEXTOOL_VERSION_AT_LEAST({major - 1}, {minor + 1}, 0));
            int main() {{ std::cout << SARVEXTOOL_VERSION << std::endl; }}
            """, *self.flags("sarvextool-framework"))
        self.assertEqual(version + "\n", self.output_of(program))
        for package in ("sarvextool-framework", "sarvextool-client"):
            self.assertEqual(version + "\n", succeed("pkg-config", "--modversion", package,
                                                     env=self.environment))

    def test_each_header_compiles_alone_and_twice(self):
        headers = [str(file.relative_to(self.includes)) for file in self.includes.rglob("*.h")]
        self.assertGreater(len(headers), 30)

        def errors(compiler, header):
            return subprocess.run(
                [compiler, "-std=c++20", *WARNINGS, "-fsyntax-only", "-I", self.includes, "-x", "c++",
                 "-"], input=f"#include <{header}>\n#include <{header}>\n", text=True,
                capture_output=True, check=False).stderr

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            jobs = {(compiler, header): pool.submit(errors, compiler, header)
                    for compiler in self.compilers for header in sorted(headers)}
        for (compiler, header), job in jobs.items():
            with self.subTest(compiler=compiler, header=header):
                self.assertEqual("", job.result())

    def test_the_headers_include_no_others_of_the_tree(self):
        for header in self.includes.rglob("*.h"):
            for name in re.findall(r'^#include "(.+)"', header.read_text(), re.MULTILINE):
                with self.subTest(header=header.name, includes=name):
                    self.assertTrue((self.includes / name).is_file())

    def test_what_calls_itself_public_is_installed_and_nothing_else(self):
        source = ROOT / "src"
        public = {str(file.relative_to(source)) for file in source.rglob("*.h")
                  if re.match(rf"#pragma once\n\n{PUBLIC}", file.read_text())}
        installed = {str(file.relative_to(self.includes)) for file in self.includes.rglob("*")
                     if file.is_file()}
        self.assertEqual(public | {"SarvexTool/Version.h"}, installed)
        for name in public:
            self.assertEqual((source / name).read_bytes(), (self.includes / name).read_bytes(), name)

    def test_the_files_beside_the_headers_are_these(self):
        found = {str(file.relative_to(self.libraries)) for file in self.libraries.rglob("*")
                 if file.is_file()}
        self.assertEqual({
            "libsarvextool-framework.a", "libsarvextool-client.a",
            "pkgconfig/sarvextool-framework.pc", "pkgconfig/sarvextool-client.pc",
            "cmake/SarvexTool/SarvexToolConfig.cmake",
            "cmake/SarvexTool/SarvexToolConfigVersion.cmake",
            "cmake/SarvexTool/SarvexToolTargets.cmake",
            "cmake/SarvexTool/SarvexToolTargets-release.cmake"}, found)
        others = [file for file in self.root.rglob("*") if file.is_file() and
                  not file.is_relative_to(self.libraries) and not file.is_relative_to(self.includes)]
        self.assertEqual([], others)

    def test_no_text_file_holds_the_path_of_the_build_or_of_the_install(self):
        for file in [*self.package.iterdir(), *(self.libraries / "pkgconfig").iterdir()]:
            for path in (str(ROOT), str(self.stage)):
                with self.subTest(file=file.name):
                    self.assertNotIn(path, file.read_text())

    def find_package(self, request, system="", before=""):
        """What CMake says to a project that asks for the package; its exit code comes first."""
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.stage))
        (folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.16)\nproject(Asks LANGUAGES NONE)\n"
            f"{before}find_package(SarvexTool {request})\n"
            "message(STATUS \"found ${SarvexTool_FOUND} ${SarvexTool_VERSION}\")\n"
            "if(TARGET SarvexTool::Client)\nmessage(STATUS \"there are targets\")\nendif()\n")
        done = run("cmake", "-S", folder, "-B", folder / "build",
                   f"-DSarvexTool_DIR={self.package}", f"-DCMAKE_SYSTEM_NAME={system or self.system}")
        return done.returncode, " ".join((done.stdout + done.stderr).decode().split())

    def assert_refused(self, asked, *texts):
        code, told = asked
        self.assertNotEqual(0, code)
        for text in texts:
            self.assertIn(text, told)

    def test_versions_of_the_same_major_number_are_found(self):
        version = project_version()
        major, minor, _ = map(int, version.split("."))
        for asked in ["", f"{major}", f"{major}.0", version, f"{major}.0...{major}.99"]:
            with self.subTest(asked=asked):
                code, told = self.find_package(f"{asked} CONFIG REQUIRED")
                self.assertEqual(0, code, told)
                self.assertIn(f"found 1 {version}", told)
        for asked in [f"{major + 1}.0", f"{major - 1}.9", f"{major}.{minor + 1}"]:
            with self.subTest(asked=asked):
                self.assert_refused(self.find_package(f"{asked} CONFIG REQUIRED"),
                                    'compatible with requested version', f"version: {version}")

    def test_a_component_that_there_is_not_is_named(self):
        code, told = self.find_package("CONFIG REQUIRED COMPONENTS Framework Client")
        self.assertEqual(0, code, told)
        self.assertIn("there are targets", told)
        self.assert_refused(
            self.find_package("CONFIG REQUIRED COMPONENTS Client Simulator"),
            "SarvexTool has no component Simulator: there are Framework and Client.")
        code, told = self.find_package("CONFIG QUIET COMPONENTS Simulator")
        self.assertEqual(0, code, told)
        self.assertIn("found 0", told)
        self.assertNotIn("there are targets", told)
        code, told = self.find_package("CONFIG REQUIRED COMPONENTS Client OPTIONAL_COMPONENTS Simulator")
        self.assertEqual(0, code, told)
        self.assertIn("there are targets", told)

    def test_another_system_and_another_compiler_are_refused(self):
        refusal = (f"These libraries of SarvexTool are for {self.system} and compilers that link with "
                   "g++'s objects.")
        self.assert_refused(self.find_package("CONFIG REQUIRED", system=self.other_system), refusal)
        self.assert_refused(self.find_package("CONFIG REQUIRED", before="set(MSVC TRUE)\n"), refusal)


class LinuxSdkTest(Sdk, unittest.TestCase):
    build = BUILDS[0]
    compilers = ["g++", "clang++"]
    emulator = []
    suffix = ""
    line_end = "\n"
    library_folder = "lib/x86_64-linux-gnu"
    cmake_lines = CMAKE_LINUX
    cmake_folder = "linux"
    pkg_config_lines = PKG_CONFIG_LINUX
    link_options = []
    system = "Linux"
    other_system = "Windows"

    def test_clang_links_the_libraries(self):
        program = self.sources / "by_clang"
        succeed("clang++", "-std=c++20", self.sources / "framework.cpp", "-o", program,
                *self.flags("sarvextool-framework"))
        self.assertEqual(READY_OUTPUT, self.output_of(program))


class WindowsSdkTest(Sdk, unittest.TestCase):
    build = BUILDS[-1]
    compilers = ["x86_64-w64-mingw32-g++-posix"]
    emulator = [ROOT / "scripts" / "wine"]
    suffix = ".exe"
    line_end = "\r\n"
    library_folder = "lib"
    cmake_lines = CMAKE_WINDOWS
    cmake_folder = "windows"
    pkg_config_lines = PKG_CONFIG_WINDOWS
    link_options = ["-static"]
    system = "Windows"
    other_system = "Linux"


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
