"""What is handed out: that dist/ holds these files and their checksums, what is in the archives, and that
nothing of the machine that has made them is."""
import gzip
import hashlib
import os
import re
import subprocess
import tarfile
import time
import unittest
import zipfile

from support import (DEB, DEV_DEB, DIST, LINUX_BUILD, MSI, OBJECTS, ROOT, TAR, TOP, VERSION, WINDOWS_BUILD, ZIP,
                     require, source_date, temporary_folder, unpack)

NOTICES = {"NOTICE.txt", "sbom-linux.cdx.json", "sbom-windows.cdx.json"}
PAGES = {"README.md", "CHANGELOG.md", "CONTRIBUTING.md"}
PORT_FILES = {"Socket.cfg", "simulator/Socket.cfg"}
# Folders whose content the rules of installing choose, or their makers.
WHOLE_FOLDERS = ("docs", "licences", "man", "completion", "sdk", "farm")


def folder_of_sources(name, pattern="**/*"):
    return {str(path.relative_to(ROOT)) for path in (ROOT / name).glob(pattern) if path.is_file()}


def programs(suffix):
    return {f"SarvexToolClient{suffix}", f"SarvexToolBench{suffix}", f"simulator/vemo{suffix}"}


def made_by(maker, folder, *arguments):
    """What one of the scripts in packaging makes of the same builds, at the time of the packages."""
    require(ROOT / "packaging" / maker, *arguments, env=os.environ | {"SOURCE_DATE_EPOCH": str(source_date())})
    return folder


def files_of(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_symlink() or not path.is_dir()}


def contents(folder, pattern="**/*"):
    """The bytes of each file in a folder by its name; of compressed ones, those that were compressed."""
    found = {}
    for path in folder.glob(pattern):
        if path.is_file():
            data, name = path.read_bytes(), path.relative_to(folder).as_posix()
            found[name.removesuffix(".gz")] = gzip.decompress(data) if name.endswith(".gz") else data
    return found


class DistTest(unittest.TestCase):
    def test_it_holds_these_files(self):
        self.assertEqual(
            {"SHA256SUMS", f"{TOP}-windows-x64.zip", f"{TOP}-windows-x64.msi", f"{TOP}-linux-x64.tar.gz", OBJECTS.name,
             f"sarvextool_{VERSION}_amd64.deb", f"sarvextool-dev_{VERSION}_amd64.deb"},
            files_of(DIST))

    def test_the_checksums_are_right_and_name_each_file(self):
        lines = [f"{hashlib.sha256((DIST / name).read_bytes()).hexdigest()}  {name}\n"
                 for name in sorted(files_of(DIST) - {"SHA256SUMS"})]
        self.assertEqual("".join(lines), (DIST / "SHA256SUMS").read_text())


class ContentsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = temporary_folder(cls)
        cls.zip = unpack(ZIP, cls.folder / "zip")
        cls.tar = unpack(TAR, cls.folder / "tar")
        unpack(OBJECTS, cls.folder / "objects")
        cls.objects = cls.folder / "objects" / f"{TOP}-objects"
        cls.deb = unpack(DEB, cls.folder / "deb")
        cls.dev_deb = unpack(DEV_DEB, cls.folder / "dev-deb")
        cls.doc = cls.deb / "usr/share/doc/sarvextool"
        cls.msi = cls.folder / "msi"
        require("msiextract", "--directory", cls.msi, MSI)
        cls.installed = cls.msi / "SarvexTool"

    def test_the_archives_hold_the_programs_their_configuration_examples_and_pages(self):
        for folder, suffix, own_folders in [(self.zip, ".exe", {"sdk"}), (self.tar, "", {"man", "farm"})]:
            with self.subTest(folder=folder):
                found = files_of(folder)
                self.assertEqual(
                    programs(suffix) | NOTICES | PAGES | PORT_FILES | folder_of_sources("examples", "*.csv"),
                    {name for name in found if not name.startswith(tuple(f"{name}/" for name in WHOLE_FOLDERS))})
                self.assertEqual(folder_of_sources("docs"), {name for name in found if name.startswith("docs/")})
                self.assertEqual(folder_of_sources("packaging/completion"),
                                 {f"packaging/{name}" for name in found if name.startswith("completion/")})
                self.assertEqual({"docs", "licences", "completion", *own_folders},
                                 {name.partition("/")[0] for name in found} & set(WHOLE_FOLDERS))

    def test_the_deb_holds_them_where_debian_looks_for_them(self):
        found = files_of(self.deb)
        library = "usr/lib/sarvextool/"
        self.assertEqual(programs(""),
                         {name.removeprefix(library) for name in found if name.startswith(library)})
        completions = self.deb / "usr/share/bash-completion/completions"
        self.assertEqual({"SarvexToolBench", "sarvextool-vemo"}, files_of(completions))
        self.assertEqual((completions / "SarvexToolBench").read_bytes(),
                         (completions / "sarvextool-vemo").read_bytes())
        self.assertEqual(
            {"SarvexToolClient": "../lib/sarvextool/SarvexToolClient",
             "SarvexToolBench": "../lib/sarvextool/SarvexToolBench",
             "sarvextool-vemo": "../lib/sarvextool/simulator/vemo"},
            {path.name: os.readlink(path) for path in (self.deb / "usr/bin").iterdir()})
        doc = "usr/share/doc/sarvextool/"
        self.assertEqual(
            {"copyright", "changelog.gz", "examples"} | NOTICES | PAGES | folder_of_sources("docs"),
            {name.removeprefix(doc) for name in found
             if name.startswith(doc) and not name.startswith(f"{doc}licences/")})
        # Also where a container has no /usr/share/doc.
        self.assertEqual({"Socket.cfg"} | folder_of_sources("examples", "*.csv") | folder_of_sources("farm"),
                         files_of(self.deb / "usr/share/sarvextool"))
        self.assertEqual("../../sarvextool/examples", os.readlink(self.deb / doc / "examples"))

    def test_the_farm_is_for_linux_and_can_be_run(self):
        for folder in [self.tar, self.deb / "usr/share/sarvextool"]:
            with self.subTest(folder=folder):
                names = {name for name in files_of(folder) if name.startswith("farm/")}
                self.assertEqual(folder_of_sources("farm"), names)
                for name in names:
                    self.assertEqual((ROOT / name).stat().st_mode & 0o111 != 0,
                                     (folder / name).stat().st_mode & 0o111 != 0, name)
                done = subprocess.run([folder / "farm/parallel/sweep"], capture_output=True, text=True, check=False)
                self.assertIn("usage: sweep PLAN", done.stderr)

    def test_the_libraries_are_those_that_the_build_installs(self):
        doc = "usr/share/doc/"
        for build, found in [(WINDOWS_BUILD, self.zip / "sdk"), (LINUX_BUILD, self.dev_deb / "usr")]:
            with self.subTest(build=build):
                installed = self.folder / f"sdk of {found.name}"
                require("cmake", "--install", build, "--prefix", installed, "--component", "sdk")
                names = files_of(installed)
                self.assertEqual(names, {name for name in files_of(found) if not name.startswith("share/")})
                for name in names:
                    self.assertEqual((installed / name).read_bytes(), (found / name).read_bytes(), name)
        self.assertEqual({f"{doc}sarvextool-dev"}, {str(path.relative_to(self.dev_deb))
                                                   for path in (self.dev_deb / doc).iterdir()})

    def test_the_man_pages_of_all_sections_are_those_that_are_made(self):
        for found, options in [(self.tar / "man", []), (self.deb / "usr/share/man", ["--debian"])]:
            with self.subTest(found=found):
                folder = temporary_folder(self)
                made = contents(made_by("man/make-pages", folder, *options, folder, LINUX_BUILD / "bin"))
                self.assertEqual({"man1", "man5", "man7"}, {name.partition("/")[0] for name in made})
                self.assertIn("man5/Socket.cfg.5", made)
                self.assertEqual(made, contents(found))

    def test_licences_notice_and_bills_of_materials_are_those_that_are_made(self):
        folder = temporary_folder(self)
        made = contents(made_by("make-sbom", folder, LINUX_BUILD, WINDOWS_BUILD, folder))
        self.assertEqual(NOTICES, {name for name in made if not name.startswith("licences/")})
        self.assertGreater(len(made), len(NOTICES) + 10)
        for package in [self.zip, self.installed, self.tar, self.objects, self.doc]:
            with self.subTest(package=package):
                self.assertEqual(made, {name: data for name, data in contents(package).items()
                                        if name in NOTICES or name.startswith("licences/")})

    def test_each_package_holds_the_files_that_its_notice_names(self):
        for package in [self.zip, self.installed, self.tar, self.objects, self.doc]:
            with self.subTest(package=package):
                text = (package / "NOTICE.txt").read_text()
                # NAME is any of them.
                named = set(re.findall(r"\blicences/[\w.-]*\w|\b[\w-]+\.cdx\.json", text)) - {"licences/NAME.txt"}
                self.assertLessEqual(NOTICES - {"NOTICE.txt"} | {"licences/LGPL-2.1.txt"}, named)
                self.assertEqual([], sorted(name for name in named if not (package / name).is_file()))

    def test_pages_and_examples_are_those_of_the_sources(self):
        expected = {name: (ROOT / name).read_bytes()
                    for name in PAGES | folder_of_sources("docs") | folder_of_sources("examples", "*.csv")}
        for package in [self.zip, self.tar, self.doc]:
            with self.subTest(package=package):
                self.assertEqual([], [name for name, data in expected.items() if (package / name).read_bytes() != data])

    def test_all_packages_hold_the_same_programs(self):
        for name in programs(""):
            with self.subTest(name=name):
                built = (LINUX_BUILD / "bin" / name.rpartition("/")[2]).read_bytes()
                self.assertEqual(built, (self.tar / name).read_bytes())
                self.assertEqual(built, (self.deb / "usr/lib/sarvextool" / name).read_bytes())

    def test_each_link_of_a_page_leads_to_a_file_of_the_package(self):
        link = re.compile(r"\]\((?!https?:|#)([^)#\s]+)")
        pages = 0
        for folder in [self.zip, self.tar, self.deb / "usr/share/doc/sarvextool",
                       self.dev_deb / "usr/share/doc/sarvextool-dev"]:
            for page in folder.rglob("*.md"):
                pages += 1
                text = re.sub(r"^```.*?^```", "", page.read_text(), flags=re.MULTILINE | re.DOTALL)
                for target in link.findall(text):
                    with self.subTest(page=page, target=target):
                        self.assertTrue((page.parent / target).resolve().is_relative_to(folder.resolve()))
                        self.assertTrue((page.parent / target).exists())
        self.assertGreater(pages, 40)

    def test_no_file_tells_where_it_was_made(self):
        traces = {f"{ROOT}/src/", f"{ROOT}/build/", f"{LINUX_BUILD}/", f"{WINDOWS_BUILD}/"}
        traces = {trace.encode(encoding) for trace in traces for encoding in ["utf-8", "utf-16le"]}
        looked_at = 0
        for folder in [*self.folder.iterdir(), DIST]:
            for name, data in contents(folder).items():
                looked_at += 1
                self.assertEqual([], [trace for trace in traces if trace in data], (folder, name))
        self.assertGreater(looked_at, 400)


class ArchiveEntriesTest(unittest.TestCase):
    def test_the_tars_have_one_time_one_owner_and_no_odd_modes(self):
        scripts = {name for name in folder_of_sources("farm") if (ROOT / name).stat().st_mode & 0o111}
        for package, executables in [(TAR, programs("") | scripts), (OBJECTS, {"link"})]:
            with tarfile.open(package) as archive:
                for entry in archive:
                    with self.subTest(package=package.name, name=entry.name):
                        self.assertTrue(entry.isfile() or entry.isdir())
                        self.assertEqual((source_date(), 0, 0), (entry.mtime, entry.uid, entry.gid))
                        executable = entry.isdir() or entry.name.partition("/")[2] in executables
                        self.assertEqual(0o755 if executable else 0o644, entry.mode)

    def test_the_zip_has_the_same_time_in_steps_of_two_seconds(self):
        moment = time.gmtime((source_date() + 1) // 2 * 2)
        with zipfile.ZipFile(ZIP) as archive:
            self.assertEqual({moment[:6]}, {entry.date_time for entry in archive.infolist()})

    def test_the_debs_have_the_same_time_and_belong_to_root(self):
        for package in [DEB, DEV_DEB]:
            data = subprocess.Popen(["dpkg-deb", "--fsys-tarfile", package], stdout=subprocess.PIPE)
            with data.stdout, tarfile.open(fileobj=data.stdout, mode="r|") as archive:
                for entry in archive:
                    with self.subTest(package=package.name, name=entry.name):
                        self.assertEqual((source_date(), 0, 0), (entry.mtime, entry.uid, entry.gid))
            self.assertEqual(0, data.wait())


if __name__ == "__main__":
    unittest.main()
