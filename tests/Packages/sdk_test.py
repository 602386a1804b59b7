"""The SDK in the packages for both systems: compiles and runs the programs of docs/sdk.md with it, and tries
what it has to refuse."""
import concurrent.futures
import os
import pathlib
import re
import shlex
import subprocess
import tempfile
import unittest

from support import DEB, DEV_DEB, LONG, ROOT, VERSION, WINE, ZIP, require, run, simulator, temporary_folder, unpack

PAGE = (ROOT / "docs" / "sdk.md").read_text()
EXAMPLES = ROOT / "tests/Modules/xFramework/Core/Classes/Examples"
PAGE_PREFIX = "/opt/sarvextool"
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion",
            "-Wold-style-cast", "-Wnon-virtual-dtor", "-Werror"]
PUBLIC = "// Public, stable within a major version"

# What the simulated daemon answers in each of the ways that a client tells apart: information, and errors
# with a code. The last one is channel 36 to a program whose framework is ready, and nothing to any other.
COMMANDS = [
    ["-wifi-get-mac-type"],
    ["-wifi-mode", "a b"],
    ["-no-such-option"],
    ["-wifi-get-mcc"],
    ["-wifi-band", "5"],
    ["-wifi-channel", "{uint16:0x24}"],
]
FAULTS = ["return-code=7", "uncalibrated", "close-before", "crlf", "no-mark", "long-line=5000"]


def blocks(language):
    """The code blocks of a language, in the order of the page."""
    found = re.findall(r"^```(\w*)\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)
    return [text for name, text in found if name == language]


COMMAND_PROGRAM, CLIENT_PROGRAM, FRAMEWORK_PROGRAM = blocks("cpp")
[CONSUMER] = blocks("cmake")
CMAKE_LINUX, CMAKE_WINDOWS, PKG_CONFIG_LINUX, PKG_CONFIG_WINDOWS = blocks("sh")
# The page's CMakeLists.txt with a static library of the program's own between.
[CMAKE_MINIMUM] = re.findall(r"cmake_minimum_required.*", CONSUMER)
THROUGH_LIBRARY = f"""{CMAKE_MINIMUM}
project(Through LANGUAGES CXX)
find_package(SarvexTool CONFIG REQUIRED)
add_library(own STATIC own.cpp)
target_link_libraries(own PRIVATE SarvexTool::Framework)
add_executable(through main.cpp)
target_link_libraries(through PRIVATE own)
"""
READY_OUTPUT, NOT_READY_OUTPUT = [text for text in blocks("") if text.startswith("[OEMINFO]")]
[CLIENT_OUTPUT] = [text for text in blocks("") if text.startswith("Mac Type")]


class Sdk:
    """What is tested for one target."""

    package_with_programs: pathlib.Path
    programs_folder: str
    package_with_sdk: pathlib.Path
    sdk_folder: str
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
        cls.stage = temporary_folder(cls)
        # Not where the packages want it to be, and below a name with a blank.
        cls.root = unpack(cls.package_with_sdk, cls.stage / "of programmers") / cls.sdk_folder
        cls.includes = cls.root / "include" / "sarvextool"
        cls.libraries = cls.root / cls.library_folder
        cls.package = cls.libraries / "cmake" / "SarvexTool"
        cls.environment = {**os.environ, "PKG_CONFIG_LIBDIR": str(cls.libraries / "pkgconfig")}
        # As the page wants it for its lines with pkg-config.
        cls.without_blanks = cls.stage / "without_blanks"
        cls.without_blanks.symlink_to(cls.root)
        cls.programs = unpack(cls.package_with_programs, cls.stage / "of users") / cls.programs_folder
        cls.client = cls.programs / f"SarvexToolClient{cls.suffix}"
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
        for lines in (cls.cmake_lines, cls.pkg_config_lines):
            cls.do_as_the_page(lines, sources)
        program = f"command{cls.suffix}"
        return {"cmake": sources / cls.cmake_folder / program, "pkg-config": sources / program}

    @classmethod
    def do_as_the_page(cls, lines, folder):
        script = lines.replace(PAGE_PREFIX, shlex.quote(str(cls.root)))
        settings = {"PKG_CONFIG_LIBDIR": str(cls.without_blanks / cls.library_folder / "pkgconfig")}
        require("bash", "-ec", script, cwd=folder, env={**cls.environment, **settings})

    def flags(self, package):
        return shlex.split(
            require("pkg-config", "--cflags", "--libs", package, env=self.environment).decode())

    def compile(self, name, text):
        """An object file, made with the public headers alone."""
        made = self.sources / f"{name}.o"
        (self.sources / f"{name}.cpp").write_text(text)
        require(self.compilers[0], "-std=c++20", *WARNINGS, "-c", self.sources / f"{name}.cpp", "-o", made,
                "-I", self.includes)
        return made

    def link(self, name, *objects_and_flags):
        program = self.sources / f"{name}{self.suffix}"
        require(self.compilers[0], "-o", program, *self.link_options, *objects_and_flags)
        return program

    def run_program(self, program, *arguments):
        return run(*self.emulator, program, *arguments, cwd=program.parent)

    def output_of(self, program):
        done = self.run_program(program)
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        return done.stdout.decode().replace(self.line_end, "\n")

    def told_by(self, program, arguments, port):
        (program.parent / "Socket.cfg").write_text(port)
        done = self.run_program(program, *arguments)
        return done.returncode, done.stdout, done.stderr

    def start_simulator(self, *options):
        return simulator(*self.emulator, self.programs / "simulator" / f"vemo{self.suffix}", *options)

    def told_by_client_and_programs(self, arguments, port):
        """What the client tells; and, by the way it was made, what the page's program tells."""
        programs = self.made.items()
        return (self.told_by(self.client, arguments, port),
                {way: self.told_by(program, arguments, port) for way, program in programs})

    def test_the_program_tells_what_the_client_tells(self):
        different = set()
        with self.start_simulator() as (_, port):
            for arguments in COMMANDS:
                with self.subTest(arguments=arguments):
                    expected, told = self.told_by_client_and_programs(arguments, port)
                    self.assertEqual(dict.fromkeys(self.made, expected), told)
                    different.add(expected)
        self.assertEqual(len(COMMANDS), len(different))

    def test_the_program_takes_faulty_answers_as_the_client_does(self):
        for fault in FAULTS:
            with self.subTest(fault=fault), self.start_simulator("--fault", f"*:{fault}") as (_, port):
                expected, told = self.told_by_client_and_programs(COMMANDS[0], port)
                self.assertEqual(dict.fromkeys(self.made, expected), told)

    def test_a_return_code_that_is_no_number_is_told_and_nothing_else(self):
        with self.start_simulator("--fault", "*:return-code=seven") as (_, port):
            told = self.told_by(self.made["cmake"], COMMANDS[0], port)
        self.assertEqual((1, b"", b"invalid stoi argument"), (*told[:2], told[2].rstrip()))

    def test_the_program_prints_what_the_page_shows(self):
        [session] = blocks("session")
        shown = ""
        with self.start_simulator() as (_, port):
            for line in re.findall(r"^\$ (.*)$", session, re.MULTILINE):
                shown += f"$ {line}\n"
                if line == "echo $?":
                    shown += f"{code}\n"
                    continue
                name, *arguments = shlex.split(line)
                self.assertEqual("./command", name)
                code, out, err = self.told_by(self.made["cmake"], arguments, port)
                shown += (out + err).decode().replace(self.line_end, "\n")
        self.assertEqual(session, shown)

    def test_without_a_port_the_program_says_so(self):
        told = self.told_by(self.made["cmake"], COMMANDS[0], "")
        self.assertEqual((1, b"", b"Failed Creating socket"), (*told[:2], told[2].rstrip()))

    def test_the_client_object_tells_what_the_page_shows(self):
        program = self.link("client", self.compile("client", CLIENT_PROGRAM), *self.flags("sarvextool-client"))
        with self.start_simulator() as (_, port):
            code, out, err = self.told_by(program, [], port)
        self.assertEqual((0, CLIENT_OUTPUT, b""), (code, out.decode().replace(self.line_end, "\n"), err))
        # The daemon has gone.
        self.assertEqual((1, b"", b""), self.told_by(program, [], port))

    def test_the_framework_program_prints_what_the_page_shows(self):
        made = self.compile("framework", FRAMEWORK_PROGRAM)
        flags = self.flags("sarvextool-framework")
        self.assertEqual(READY_OUTPUT, self.output_of(self.link("framework", made, *flags)))
        # A link that names the libraries alone makes nothing ready.
        flags.remove("-Wl,-u,SarvexToolStartUp")
        self.assertEqual(NOT_READY_OUTPUT, self.output_of(self.link("not_ready", made, *flags)))

    def test_a_program_that_links_it_through_a_library_of_its_own_is_ready_too(self):
        folder = self.stage / "through"
        folder.mkdir()
        (folder / "CMakeLists.txt").write_text(THROUGH_LIBRARY)
        (folder / "own.cpp").write_text(FRAMEWORK_PROGRAM.replace("int main() {", "void Run() {"))
        (folder / "main.cpp").write_text("void Run();\nint main() { Run(); }\n")
        self.do_as_the_page(self.cmake_lines, folder)
        self.assertEqual(READY_OUTPUT, self.output_of(folder / self.cmake_folder / f"through{self.suffix}"))

    def test_values_variables_factories_and_services_do_what_their_page_tells(self):
        sources = sorted(EXAMPLES.glob("*.cpp"))
        names = [source.stem for source in sources]
        calls = "".join(f"std::cout << Examples::{name}() << std::endl;\n" for name in names)
        # One file, for the headers are what takes long to compile. None of them is found in the tree.
        text = "".join(f'#include "{source}"\n' for source in sources)
        (self.sources / "examples.cpp").write_text(f"{text}#include <iostream>\nint main() {{\n{calls}}}\n")
        program = self.link("examples", "-std=c++20", self.sources / "examples.cpp", "-iquote", ROOT,
                            *self.flags("sarvextool-framework"))
        results = self.output_of(program).splitlines()
        self.assertEqual(len(names), len(results))
        page = (ROOT / "docs" / "framework.md").read_text()
        for name, result in zip(names, results):
            with self.subTest(name=name):
                self.assertIn(f"`{result}`", page)

    def test_the_version_is_that_of_the_project(self):
        major, minor, patch = map(int, VERSION.split("."))
        made = self.compile("version", f"""
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
            """)
        self.assertEqual(VERSION + "\n", self.output_of(self.link("version", made)))
        for package in ("sarvextool-framework", "sarvextool-client"):
            self.assertEqual(VERSION.encode() + b"\n",
                             require("pkg-config", "--modversion", package, env=self.environment))

    def test_each_header_compiles_alone_and_twice(self):
        headers = sorted(str(file.relative_to(self.includes)) for file in self.includes.rglob("*.h"))
        self.assertGreater(len(headers), 30)

        def errors(compiler, header):
            return subprocess.run(
                [compiler, "-std=c++20", *WARNINGS, "-fsyntax-only", "-I", self.includes, "-x", "c++", "-"],
                input=f"#include <{header}>\n#include <{header}>\n", text=True, capture_output=True,
                check=False).stderr

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            jobs = {(compiler, header): pool.submit(errors, compiler, header)
                    for compiler in self.compilers[:None if LONG else 1] for header in headers}
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

    def test_the_page_names_each_header_once(self):
        rows = re.findall(r"^\| [^|]+ \| `([\w/]+)` \| (`\w+\.h`.*) \|$", PAGE, re.MULTILINE)
        named = sorted(f"{folder}/{header}" for folder, headers in rows
                       for header in re.findall(r"`(\w+\.h)`", headers.partition(";")[0]))
        installed = {str(file.relative_to(self.includes)) for file in self.includes.rglob("*.h")}
        self.assertEqual(sorted(installed - {"Modules/xFramework/OSAL/Socket.h"}), named)

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
        folders = {file.relative_to(self.root).parts[0] for file in self.root.rglob("*") if file.is_file()}
        # What Debian wants of every package is in share.
        self.assertEqual({"include", "lib"}, folders - {"share"})

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
        major, minor, _ = map(int, VERSION.split("."))
        for asked in ["", f"{major}", f"{major}.0", VERSION, f"{major}.0...{major}.99"]:
            with self.subTest(asked=asked):
                code, told = self.find_package(f"{asked} CONFIG REQUIRED")
                self.assertEqual(0, code, told)
                self.assertIn(f"found 1 {VERSION}", told)
        for asked in [f"{major + 1}.0", f"{major - 1}.9", f"{major}.{minor + 1}"]:
            with self.subTest(asked=asked):
                self.assert_refused(self.find_package(f"{asked} CONFIG REQUIRED"),
                                    'compatible with requested version', f"version: {VERSION}")

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
    package_with_programs = DEB
    programs_folder = "usr/lib/sarvextool"
    package_with_sdk = DEV_DEB
    sdk_folder = "usr"
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

    def test_clang_compiles_and_links_it(self):
        (self.sources / "by_clang.cpp").write_text(FRAMEWORK_PROGRAM)
        program = self.sources / "by_clang"
        require("clang++", "-std=c++20", self.sources / "by_clang.cpp", "-o", program,
                *self.flags("sarvextool-framework"))
        self.assertEqual(READY_OUTPUT, self.output_of(program))


class WindowsSdkTest(Sdk, unittest.TestCase):
    package_with_programs = ZIP
    programs_folder = ""
    package_with_sdk = ZIP
    sdk_folder = "sdk"
    compilers = ["x86_64-w64-mingw32-g++-posix"]
    emulator = WINE
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
    unittest.main()
