"""What Windows reads of the programs before it runs them, in the programs of the zip."""
import unittest
from xml.etree import ElementTree

from pe_file import GROUP_ICON, ICON, MANIFEST, VERSION as VERSION_INFO, PeFile, png_pixels
from support import ROOT, VERSION, ZIP, require, temporary_folder, unpack

DESCRIPTIONS = {
    "SarvexToolClient": "Console client for the SarvexTool daemon",
    "SarvexToolBench": "Checks, runs and judges power tests of the SarvexTool daemon",
    "vemo": "Simulated SarvexTool daemon",
}
ICON_SIZES = [16, 24, 32, 48, 64, 256]
DRAWING = ROOT / "packaging/windows/SarvexTool.svg"
# Two versions of the renderer may round differently.
SAME_COLOUR = 8

V1, V3 = "{urn:schemas-microsoft-com:asm.v1}", "{urn:schemas-microsoft-com:asm.v3}"
COMPATIBILITY = "{urn:schemas-microsoft-com:compatibility.v1}"
SETTINGS = "{http://schemas.microsoft.com/SMI/2016/WindowsSettings}"
WINDOWS_10 = "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"
# Whatever is not here changes how Windows runs a program: its code page, its share of the screen, its rights.
COMMON_MANIFEST = [
    (V1 + "assembly", {"manifestVersion": "1.0"}),
    (V3 + "trustInfo", {}),
    (V3 + "security", {}),
    (V3 + "requestedPrivileges", {}),
    (V3 + "requestedExecutionLevel", {"level": "asInvoker", "uiAccess": "false"}),
    (COMPATIBILITY + "compatibility", {}),
    (COMPATIBILITY + "application", {}),
    (COMPATIBILITY + "supportedOS", {"Id": WINDOWS_10}),
]
LONG_PATHS = [
    (V3 + "application", {}),
    (V3 + "windowsSettings", {}),
    (SETTINGS + "longPathAware", {}),
]


class WindowsResourcesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        top = unpack(ZIP, temporary_folder(cls))
        cls.paths = {path.stem: path for path in sorted(top.rglob("*.exe"))}
        cls.programs = {name: PeFile(path) for name, path in cls.paths.items()}

    def test_all_programs_are_looked_at(self):
        self.assertEqual(sorted(DESCRIPTIONS), sorted(self.programs))

    def test_each_program_has_these_resources_and_no_other(self):
        for name, program in self.programs.items():
            with self.subTest(program=name):
                self.assertEqual(
                    {ICON: len(ICON_SIZES), GROUP_ICON: 1, VERSION_INFO: 1, MANIFEST: 1},
                    {kind: len(entries) for kind, entries in program.resources.items()})

    def test_the_version_is_that_of_the_package(self):
        numbers = (*map(int, VERSION.split(".")), 0)
        for name, program in self.programs.items():
            with self.subTest(program=name):
                self.assertEqual((numbers, numbers), program.fixed_version())

    def test_the_properties_name_program_product_version_and_makers(self):
        for name, program in self.programs.items():
            with self.subTest(program=name):
                self.assertEqual(
                    {
                        "CompanyName": "SarvexTool maintainers",
                        "FileDescription": DESCRIPTIONS[name],
                        "FileVersion": VERSION,
                        "InternalName": name,
                        "LegalCopyright": "Copyright 2026 the SarvexTool maintainers",
                        "OriginalFilename": f"{name}.exe",
                        "ProductName": "SarvexTool",
                        "ProductVersion": VERSION,
                    },
                    program.version_texts())

    def test_the_icon_is_the_drawing_in_all_sizes(self):
        folder = temporary_folder(self)
        drawn = {}
        for size in ICON_SIZES:
            image = folder / f"{size}.png"
            require("rsvg-convert", "--width", size, "--height", size, "--output", image, DRAWING)
            drawn[size] = png_pixels(image.read_bytes())
        for name, program in self.programs.items():
            with self.subTest(program=name):
                icon = program.icon()
                self.assertEqual(ICON_SIZES, sorted(icon))
                for size, image in icon.items():
                    width, height, pixels = png_pixels(image)
                    self.assertEqual((size, size), (width, height))
                    self.assertLessEqual(
                        max(abs(one - other) for one, other in zip(pixels, drawn[size][2])), SAME_COLOUR,
                        "packaging/windows/make-icon makes the icon from the drawing")

    def test_the_manifest_says_nothing_that_is_not_wanted(self):
        for name, program in self.programs.items():
            with self.subTest(program=name):
                root = ElementTree.fromstring(program.resources[MANIFEST][1])
                identity = root.find(V1 + "assemblyIdentity")
                self.assertEqual({"type": "win32", "processorArchitecture": "amd64",
                                  "name": f"SarvexTool.{name}", "version": f"{VERSION}.0"}, identity.attrib)
                root.remove(identity)
                expected = COMMON_MANIFEST + (LONG_PATHS if name == "SarvexToolBench" else [])
                self.assertEqual(expected, [(element.tag, element.attrib) for element in root.iter()])

    def test_long_paths_are_on_for_the_bench_program_alone(self):
        for name, program in self.programs.items():
            with self.subTest(program=name):
                root = ElementTree.fromstring(program.resources[MANIFEST][1])
                self.assertEqual(["true"] if name == "SarvexToolBench" else [],
                                 [element.text for element in root.iter(SETTINGS + "longPathAware")])

    def test_no_program_tells_when_it_was_linked(self):
        for name, program in self.programs.items():
            with self.subTest(program=name):
                self.assertEqual(0, program.time_stamp)

    def test_the_programs_are_for_64_bit_windows(self):
        for name, program in self.programs.items():
            with self.subTest(program=name):
                self.assertEqual(0x8664, program.machine)

    def test_the_client_stays_below_two_mebibytes(self):
        self.assertLessEqual(self.paths["SarvexToolClient"].stat().st_size, 2 * 1024 * 1024)


if __name__ == "__main__":
    unittest.main()
