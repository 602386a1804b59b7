"""Feeds scripts/check-layers trees that break one rule each, and one that breaks none."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "scripts" / "check-layers"
# The layers of the project itself are what the trees below are checked against.
LAYERS = {file.relative_to(ROOT / "src").as_posix(): file.read_text()
          for file in (ROOT / "src").rglob("CMakeLists.txt")}
FRAMEWORK = "Modules/xFramework/"
CLIENT = "Tools/SarvexTool/Client/"
SIMULATOR = "Tools/Vemo/VemoSimulator/"
DYNAMIC_TEST = "Tools/Vemo/VemoClient/DynamicTest/"
NAMES = {
    FRAMEWORK + "OSAL/": "OSALInterface",
    FRAMEWORK + "DebugPrint/": "DebugPrint",
    FRAMEWORK + "Streams/": "Streams",
    FRAMEWORK + "SyncObjectsOSAL/": "SyncObjectsOSAL",
    FRAMEWORK + "Utilities/": "Utilities",
    FRAMEWORK + "Streams/Sockets/": "Sockets",
    FRAMEWORK + "XML/": "XML",
    FRAMEWORK + "Core/Classes/": "Core",
    CLIENT: "Client",
    DYNAMIC_TEST: "DynamicTest",
    SIMULATOR: "VemoSimulatorLib",
}

# Every layer has a header that others may try to include.
HEADERS = [
    FRAMEWORK + "OSAL/File.h",
    FRAMEWORK + "OSAL/Windows/WideText.h",
    FRAMEWORK + "DebugPrint/CDebugPrint.h",
    FRAMEWORK + "Streams/DebugStream.h",
    FRAMEWORK + "Streams/Sockets/SocketStream.h",
    FRAMEWORK + "SyncObjectsOSAL/ICriticalSection.h",
    FRAMEWORK + "Utilities/Format.h",
    FRAMEWORK + "XML/Node.h",
    FRAMEWORK + "Core/Classes/Value.h",
    CLIENT + "CliClient.h",
    CLIENT + "Program/EntryPoint.h",
    DYNAMIC_TEST + "DynamicTest.h",
    SIMULATOR + "Device.h",
]


def not_for(layer, included):
    return f'"{included}" is not in a layer that {NAMES[layer]} may use'


def quoted(path):
    return f'#include "{path}"\n'


def make_tree(root, files):
    for path, text in {**LAYERS, **dict.fromkeys(HEADERS, "#pragma once\n"), **files}.items():
        (root / path).parent.mkdir(parents=True, exist_ok=True)
        (root / path).write_text(text)


def check(root, *options):
    run = subprocess.run(
        [sys.executable, SCRIPT, *options, root], capture_output=True, text=True, check=False)
    return run.returncode, run.stdout.replace(f"{root}/", ""), run.stderr.replace(f"{root}", "ROOT")


class CheckLayersTest(unittest.TestCase):
    maxDiff = None

    def expect(self, files, output):
        with tempfile.TemporaryDirectory() as folder:
            make_tree(pathlib.Path(folder), files)
            count, offences = len({*HEADERS, *files}), output.count("\n")
            expected = output + f"check-layers: {count} files, {offences} offences\n"
            self.assertEqual((1 if offences else 0, expected, ""), check(folder))

    def expect_offence(self, path, text, line, offence):
        with self.subTest(path=path, text=text):
            self.expect({path: text}, f"{path}:{line}: {offence}\n")

    def expect_clean(self, path, text):
        with self.subTest(path=path, text=text):
            self.expect({path: text}, "")

    def test_each_layer_may_use_those_below(self):
        for path, included in [
            (FRAMEWORK + "Streams/A.cpp", FRAMEWORK + "OSAL/File.h"),
            (FRAMEWORK + "SyncObjectsOSAL/A.cpp", FRAMEWORK + "DebugPrint/CDebugPrint.h"),
            (FRAMEWORK + "Utilities/A.cpp", FRAMEWORK + "SyncObjectsOSAL/ICriticalSection.h"),
            (FRAMEWORK + "Streams/Sockets/A.cpp", FRAMEWORK + "Utilities/Format.h"),
            (FRAMEWORK + "XML/A.cpp", FRAMEWORK + "XML/Node.h"),
            (FRAMEWORK + "Core/Classes/A.cpp", FRAMEWORK + "Utilities/Format.h"),
            (CLIENT + "A.cpp", FRAMEWORK + "Streams/Sockets/SocketStream.h"),
            (DYNAMIC_TEST + "A.cpp", CLIENT + "CliClient.h"),
            (CLIENT + "Program/main.cpp", CLIENT + "Program/EntryPoint.h"),
            (CLIENT + "Program/EntryPoint.cpp", DYNAMIC_TEST + "DynamicTest.h"),
            (SIMULATOR + "A.cpp", FRAMEWORK + "OSAL/File.h"),
            (FRAMEWORK + "OSAL/Windows/A.cpp", FRAMEWORK + "OSAL/Windows/WideText.h"),
        ]:
            self.expect_clean(path, "#include <string>\n" + quoted(included))

    def test_no_layer_may_use_those_above_or_beside(self):
        for layer, name, included in [
            (FRAMEWORK + "OSAL/", "A.h", FRAMEWORK + "Streams/DebugStream.h"),
            (FRAMEWORK + "DebugPrint/", "A.h", FRAMEWORK + "OSAL/File.h"),
            (FRAMEWORK + "SyncObjectsOSAL/", "A.h", FRAMEWORK + "Streams/DebugStream.h"),
            (FRAMEWORK + "Utilities/", "A.h", FRAMEWORK + "Streams/DebugStream.h"),
            (FRAMEWORK + "Streams/", "A.h", FRAMEWORK + "SyncObjectsOSAL/ICriticalSection.h"),
            (FRAMEWORK + "Streams/", "A.h", FRAMEWORK + "Streams/Sockets/SocketStream.h"),
            (FRAMEWORK + "SyncObjectsOSAL/", "A.h", FRAMEWORK + "Utilities/Format.h"),
            (FRAMEWORK + "Utilities/", "A.h", FRAMEWORK + "Core/Classes/Value.h"),
            (FRAMEWORK + "Streams/Sockets/", "A.h", FRAMEWORK + "XML/Node.h"),
            (FRAMEWORK + "XML/", "A.h", FRAMEWORK + "OSAL/File.h"),
            (FRAMEWORK + "XML/", "A.h", FRAMEWORK + "Utilities/Format.h"),
            (FRAMEWORK + "Core/Classes/", "A.h", FRAMEWORK + "Streams/Sockets/SocketStream.h"),
            (FRAMEWORK + "Core/Classes/", "A.h", CLIENT + "CliClient.h"),
            (CLIENT, "A.h", DYNAMIC_TEST + "DynamicTest.h"),
            (CLIENT, "A.h", CLIENT + "Program/EntryPoint.h"),
            (DYNAMIC_TEST, "A.h", CLIENT + "Program/EntryPoint.h"),
            (DYNAMIC_TEST, "A.h", SIMULATOR + "Device.h"),
            (SIMULATOR, "A.h", FRAMEWORK + "Utilities/Format.h"),
        ]:
            self.expect_offence(layer + name, quoted(included), 1, not_for(layer, included))

    def test_one_platforms_header_stays_with_its_implementation(self):
        header = FRAMEWORK + "OSAL/Windows/WideText.h"
        for path in [FRAMEWORK + "OSAL/Posix/A.cpp", FRAMEWORK + "OSAL/A.h", CLIENT + "A.cpp"]:
            self.expect_offence(
                path, quoted(header), 1, f'"{header}" belongs to one platform\'s implementation')

    def test_includes_are_written_from_the_source_folder(self):
        around = FRAMEWORK + "XML/../Utilities/Format.h"
        for included in [
            "Format.h", "../Utilities/Format.h", FRAMEWORK + "Utilities/NoSuch.h", around,
        ]:
            self.expect_offence(
                FRAMEWORK + "Utilities/A.cpp", "\n" + quoted(included), 2,
                f'"{included}" is not a file below the source folder')

    def test_system_headers_stand_only_in_the_implementations_of_the_seam(self):
        self.expect_clean(FRAMEWORK + "OSAL/Windows/A.cpp", "#include <windows.h>\n")
        self.expect_clean(FRAMEWORK + "OSAL/Posix/A.cpp", "#include <unistd.h>\n")
        for path, header in [
            (FRAMEWORK + "OSAL/File.h", "windows.h"),
            (FRAMEWORK + "Utilities/A.cpp", "unistd.h"),
            (CLIENT + "A.cpp", "sys/socket.h"),
            (SIMULATOR + "A.cpp", "signal.h"),
            (DYNAMIC_TEST + "A.cpp", "string.h"),
        ]:
            self.expect_offence_in(path, header)

    def test_libraries_are_for_the_simulator_alone(self):
        for header in ["boost/asio.hpp", "CLI/CLI.hpp", "nlohmann/json.hpp"]:
            self.expect_clean(SIMULATOR + "A.cpp", f"  #  include  <{header}>\n")
            self.expect_offence_in(CLIENT + "A.cpp", header)

    def expect_offence_in(self, path, header):
        with self.subTest(path=path, header=header):
            text = f"#include <string>\n#include <{header}>\n"
            offence = f"<{header}> is neither of the standard library nor of a library of this layer"
            self.expect_offence(path, text, 2, offence)

    def test_conditions_on_the_platform_stand_only_in_the_implementations_of_the_seam(self):
        for condition, name in [
            ("#ifdef _WIN32", "_WIN32"),
            ("#if defined(__linux__) && 1", "__linux__"),
            ("  # ifndef _MSC_VER", "_MSC_VER"),
            ("#if 0\n#elif defined \\\n __MINGW32__", "__MINGW32__"),
            ("#if __has_include(<windows.h>)", "__has_include"),
        ]:
            text = condition + "\n#endif\n"
            self.expect_clean(FRAMEWORK + "OSAL/Posix/A.cpp", text)
            self.expect_offence(
                CLIENT + "A.cpp", text, condition.count("\n") + 1,
                f"a condition on the platform ({name}) is outside its implementation")

    def test_other_conditions_and_comments_are_nobodys_offence(self):
        self.expect_clean(CLIENT + "A.cpp", "#if 1\n#endif\n// #include <windows.h> on _WIN32\n")

    def test_an_include_through_a_macro_is_an_offence(self):
        self.expect_offence(
            CLIENT + "A.cpp", "#include HEADER\n", 1,
            "an include through a macro cannot be checked: HEADER")

    def test_a_file_outside_every_layer_is_an_offence(self):
        self.expect_offence("Tools/Other/A.cpp", "", 1, "the file belongs to no layer")

    def test_all_offences_of_all_files_are_told(self):
        first, second = CLIENT + "A.cpp", FRAMEWORK + "XML/A.h"
        included = SIMULATOR + "Device.h"
        self.expect(
            {first: quoted(included), second: "#include X\n" + quoted(included)},
            f"{second}:1: an include through a macro cannot be checked: X\n"
            f"{second}:2: {not_for(FRAMEWORK + 'XML/', included)}\n"
            f"{first}:1: {not_for(CLIENT, included)}\n")

    def test_the_layers_are_what_the_build_says(self):
        lists = FRAMEWORK + "XML/CMakeLists.txt"
        for build, is_clean in [
            ("add_layer(XML SOURCES Node.cpp)", False),
            ("add_layer(XML SOURCES Node.cpp USES SyncObjectsOSAL)", False),
            ("add_layer(XML SOURCES Node.cpp USES Utilities)", True),
            # Sockets uses Utilities.
            ("# USES Core\nadd_layer(XML\n  SOURCES Node.cpp\n  USES Sockets)", True),
            ("add_layer(XML SOURCES Node.cpp) # USES Utilities", False),
        ]:
            with self.subTest(build=build), tempfile.TemporaryDirectory() as folder:
                make_tree(pathlib.Path(folder), {
                    lists: build, FRAMEWORK + "XML/A.h": quoted(FRAMEWORK + "Utilities/Format.h")})
                self.assertEqual(0 if is_clean else 1, check(folder)[0])

    def test_a_layer_of_single_files_shares_its_folder(self):
        lists = FRAMEWORK + "XML/CMakeLists.txt"
        build = "add_layer(XML SOURCES Node.cpp)\nadd_layer(Show SOURCES Show.cpp USES XML Utilities)\n"
        included = quoted(FRAMEWORK + "Utilities/Format.h")
        with tempfile.TemporaryDirectory() as folder:
            make_tree(pathlib.Path(folder), {lists: build, FRAMEWORK + "XML/Show.h": included})
            self.assertEqual(0, check(folder)[0])
            make_tree(pathlib.Path(folder), {lists: build, FRAMEWORK + "XML/Other.h": included})
            self.assertEqual(1, check(folder)[0])

    def test_layers_that_use_each_other_are_an_offence(self):
        with tempfile.TemporaryDirectory() as folder:
            make_tree(pathlib.Path(folder), {
                FRAMEWORK + "XML/CMakeLists.txt": "add_layer(XML USES Client)",
                CLIENT + "CMakeLists.txt": "add_layer(Client USES XML)",
                FRAMEWORK + "XML/A.h": ""})
            self.assertIn(FRAMEWORK + "XML/CMakeLists.txt:1: XML uses itself\n", check(folder)[1])

    def test_the_list_names_each_layer_with_what_it_uses(self):
        lines = check(ROOT / "src", "--list")[1].splitlines()
        self.assertIn(f"DebugPrint: {FRAMEWORK}DebugPrint/", lines)
        self.assertIn(
            f"SyncObjectsOSAL: {FRAMEWORK}SyncObjectsOSAL/, uses OSALInterface DebugPrint", lines)

    def test_the_architecture_page_names_the_folder_of_every_layer(self):
        page = (ROOT / "docs" / "architecture.md").read_text()
        for line in check(ROOT / "src", "--list")[1].splitlines():
            folder = line.split(": ")[1].split(", uses ")[0].removesuffix("/")
            self.assertIn(f"`{folder}`", page)

    def test_a_folder_without_layers_is_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "A.h").write_text("")
            self.assertEqual((2, "", "check-layers: ROOT holds no layers\n"), check(folder))

    def test_a_folder_without_sources_is_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual((2, "", "check-layers: ROOT holds no sources\n"), check(folder))


if __name__ == "__main__":
    unittest.main()
