"""Checks the bills of materials and the notice that packages carry."""
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

from support import LINUX_BUILD, OBJECTS, ROOT, WINDOWS_BUILD, run, temporary_folder

VALIDATOR = ROOT / "tests/Packages/cyclonedx"
MAKE_SBOM = ROOT / "packaging/make-sbom"
BUILDS = {"linux": LINUX_BUILD, "windows": WINDOWS_BUILD}
PLATFORMS = list(BUILDS)
PROGRAMS = ["SarvexToolClient", "SarvexToolBench", "vemo"]
# Archives of a build that are not made of the project's own sources, and whose they are.
OTHERS_IN_BUILD = {"libexpat.a": "Expat", "libpq.a": "libpq", "libsqlite.a": "SQLite",
                   "resolver/libresolver.a": "GNU C Library"}


def make(folder, moment="1700000000"):
    subprocess.run([MAKE_SBOM, LINUX_BUILD, WINDOWS_BUILD, folder], check=True,
                   env={**os.environ, "SOURCE_DATE_EPOCH": moment})


def names_in_map(build, program):
    """The object files and archives of which a section is in the linker's map of the memory, as it names them."""
    text = (build / "bin" / f"{program}.map").read_text()
    return set(re.findall(r"^ .*0x[0-9a-f]+ +0x[0-9a-f]+ (\S+?\.(?:a|o|obj))(?:\(.*\))?$", text, re.MULTILINE))


def component_version(package):
    """The version of the sources that a package was made of, as it is in an address."""
    version = run("dpkg-query", "-W", "-f=${source:Version}", package).stdout.decode()
    return version.replace("+", "%2B")


def contents(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


class SbomTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.folder = pathlib.Path(cls.temporary.name) / "made"
        make(cls.folder)
        cls.bills = {platform: json.loads((cls.folder / f"sbom-{platform}.cdx.json").read_text())
                     for platform in PLATFORMS}
        cls.validator = ROOT / "build/cyclonedx"
        cls.validator.mkdir(parents=True, exist_ok=True)
        for file in VALIDATOR.iterdir():
            if file.is_file():
                shutil.copy(file, cls.validator)
        subprocess.run(["npm", "ci", "--silent", "--no-audit", "--no-fund"], cwd=cls.validator, check=True)

    def validate(self, *files):
        return subprocess.run(["node", "validate.mjs", *files], cwd=self.validator, capture_output=True, text=True)

    def components(self, platform):
        return {component["name"]: component for component in self.bills[platform]["components"]}

    def test_both_are_valid(self):
        result = self.validate(*self.folder.glob("*.cdx.json"))
        self.assertEqual((result.returncode, result.stdout), (0, ""), result.stderr)

    def test_the_validator_finds_what_is_wrong(self):
        broken = self.folder.parent / "broken.cdx.json"
        bill = json.loads((self.folder / "sbom-linux.cdx.json").read_text())
        bill["components"][0]["licenses"] = [{"license": {"id": "no-such-licence"}}]
        broken.write_text(json.dumps(bill))
        result = self.validate(broken)
        self.assertEqual(result.returncode, 1)
        self.assertIn("licenses", result.stdout)

    def test_each_folder_of_other_projects_is_named(self):
        for platform in PLATFORMS:
            names = self.components(platform)
            for folder in filter(pathlib.Path.is_dir, (ROOT / "third_party").iterdir()):
                if (platform, folder.name) == ("windows", "libpq"):
                    self.assertNotIn("libpq", names)
                    continue
                name, version = re.match(r"# (\S+) (\S+)", (folder / "README.md").read_text()).groups()
                self.assertEqual(names[name]["version"], version)

    def test_each_header_library_of_the_build_is_named(self):
        folders = re.search(r"foreach\(folder ([^)]*)\)", (ROOT / "cmake/HeaderOnly.cmake").read_text())[1].split()
        for platform in PLATFORMS:
            files = [file["name"] for component in self.bills[platform]["components"]
                     for file in component["components"]]
            for folder in folders:
                self.assertIn(f"/usr/include/{folder} (all files)", files)

    def test_runtime_libraries_are_those_of_the_target(self):
        linux, windows = (set(self.components(platform)) for platform in PLATFORMS)
        self.assertIn("GNU C Library", linux)
        self.assertNotIn("GNU C Library", windows)
        self.assertIn("MinGW-w64 winpthreads", windows)
        self.assertNotIn("MinGW-w64 winpthreads", linux)
        self.assertNotEqual(self.components("linux")["GNU Standard C++ Library"]["version"],
                            self.components("windows")["GNU Standard C++ Library"]["version"])

    def test_each_component_has_version_licence_and_hashes(self):
        for bill in self.bills.values():
            for component in bill["components"]:
                with self.subTest(component["name"]):
                    self.assertTrue(component["version"])
                    self.assertEqual(len(component["licenses"]), 1)
                    self.assertTrue(component["components"])
                    for file in component["components"]:
                        self.assertRegex(file["hashes"][0]["content"], r"^[0-9a-f]{64}$")

    def works_in(self, platform, program):
        """What the bill says that a program holds: the names of the works, and name and hash of each file."""
        bill = self.bills[platform]
        held, = (entry["dependsOn"] for entry in bill["dependencies"] if entry["ref"].endswith(f"#{program}"))
        works = [component for component in bill["components"] if component["bom-ref"] in held]
        return ({work["name"] for work in works},
                {(file["name"], file["hashes"][0]["content"]) for work in works for file in work["components"]})

    def test_each_file_in_a_map_of_the_linker_is_named_with_its_hash(self):
        for platform, build in BUILDS.items():
            for program in PROGRAMS:
                works, files = self.works_in(platform, program)
                names = names_in_map(build, program)
                self.assertGreater(sum(name.startswith("/usr/") for name in names), 7)
                for name in names:
                    with self.subTest(platform=platform, program=program, name=name):
                        if name.startswith("/usr/"):
                            path = pathlib.Path(name)
                            self.assertIn((path.name, hashlib.sha256(path.read_bytes()).hexdigest()), files)
                        elif not name.startswith("src/"):
                            self.assertIn(OTHERS_IN_BUILD[name], works)

    def test_a_linked_file_that_no_work_knows_is_an_error_and_so_is_a_build_without_maps(self):
        build = temporary_folder(self)
        (build / "bin").mkdir()
        library = run("g++", "-print-file-name=libanl.a").stdout.decode().strip()
        text = f"Archive member included\n\n{library}(gai_misc.o)\n"
        for program in PROGRAMS:
            (build / "bin" / f"{program}.map").write_text(text)
        made = temporary_folder(self)
        done = run(MAKE_SBOM, build, WINDOWS_BUILD, made)
        self.assertEqual(1, done.returncode)
        self.assertRegex(done.stderr.decode(), r"^make-sbom: \S*/libanl\.a of libc6-dev is linked; name its work")
        (build / "bin/SarvexToolClient.map").unlink()
        done = run(MAKE_SBOM, build, WINDOWS_BUILD, made)
        self.assertEqual((1, f"make-sbom: {build}/bin has no SarvexToolClient.map: build the programs again\n"),
                         (done.returncode, done.stderr.decode()))
        self.assertEqual([], [path for path in made.rglob("*") if path.is_file()])

    def test_the_notice_leads_to_a_licence_text_for_each_component(self):
        notice = (self.folder / "NOTICE.txt").read_text()
        for bill in self.bills.values():
            for component in bill["components"]:
                self.assertIn(f"{component['name']} {component['version']}", notice)
        for name in re.findall(r"text in (licences/\S+)", notice):
            self.assertGreater((self.folder / name).stat().st_size, 300, name)

    def test_each_text_that_another_one_refers_to_is_there(self):
        folder = self.folder / "licences"
        references = {(file.name, name) for file in folder.iterdir()
                      for name in re.findall(r"common-licenses/([^\s'\"`,;)]*[^\s'\"`,;.)])", file.read_text())}
        self.assertGreater(len(references), 6)
        for file, name in sorted(references):
            with self.subTest(file=file, name=name):
                self.assertEqual(pathlib.Path("/usr/share/common-licenses", name).read_text(),
                                 (folder / f"{name}.txt").read_text())
        self.assertIn("/usr/share/common-licenses/NAME, that is licences/NAME.txt",
                      (self.folder / "NOTICE.txt").read_text())

    def test_winpthreads_has_the_licences_of_all_its_files(self):
        licence, = self.components("windows")["MinGW-w64 winpthreads"]["licenses"]
        self.assertEqual({"expression": "MIT AND BSD-3-Clause"}, licence)
        page = pathlib.Path("/usr/share/doc/mingw-w64-x86-64-dev/copyright").read_text()
        self.assertRegex(page, r"winpthreads/include/pthread\.h\n(?: .*\n)*Copyright: .*\nLicense: BSD-3-clause")

    def test_the_notice_tells_where_each_source_is_and_how_to_link_the_programs_again(self):
        notice = (self.folder / "NOTICE.txt").read_text()
        for bill in self.bills.values():
            for component in bill["components"]:
                reference, = component["externalReferences"]
                self.assertEqual("source-distribution", reference["type"])
                self.assertIn(f"      source code at {reference['url']}\n", notice)
        self.assertIn(f"/glibc/{component_version('libc6-dev')}/\n", notice)
        self.assertIn(f"{OBJECTS.name}, which is handed out", notice)

    def test_the_same_time_gives_the_same_files(self):
        again, later = self.folder.parent / "again", self.folder.parent / "later"
        make(again)
        self.assertEqual(contents(again), contents(self.folder))
        make(later, "1800000000")
        self.assertNotEqual(contents(later), contents(self.folder))


if __name__ == "__main__":
    unittest.main()
