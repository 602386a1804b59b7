"""The archive of objects: the programs for Linux linked again, with the same C library and with another one."""
import re
import shutil
import unittest

from support import OBJECTS, TAR, TOP, VERSION, require, temporary_folder, unpack

PROGRAMS = {"SarvexToolClient": "SarvexToolClient", "SarvexToolBench": "SarvexToolBench", "vemo": "simulator/vemo"}


class ObjectsTest(unittest.TestCase):
    def setUp(self):
        self.folder = temporary_folder(self)
        unpack(OBJECTS, self.folder)
        self.top, = self.folder.iterdir()

    def test_it_holds_one_folder(self):
        self.assertEqual(f"{TOP}-objects", self.top.name)

    def test_its_page_names_files_that_it_holds_and_the_licence_texts_are_those_of_the_programs(self):
        named = re.findall(r"`(?:\./)?([\w./-]+\.txt)`", (self.top / "README.md").read_text())
        self.assertEqual({"NOTICE.txt", "licences/LGPL-2.1.txt"}, set(named))
        original = unpack(TAR, self.folder / "original")
        files = ["NOTICE.txt", *(path.relative_to(original) for path in (original / "licences").iterdir())]
        self.assertGreater(len(files), 10)
        for name in files:
            self.assertEqual((original / name).read_bytes(), (self.top / name).read_bytes(), name)

    def test_the_programs_that_are_linked_again_are_those_that_are_handed_out(self):
        require(self.top / "link", cwd="/")
        original = unpack(TAR, self.folder / "original")
        for name, path in PROGRAMS.items():
            self.assertEqual((original / path).read_bytes(), (self.top / name).read_bytes(), name)

    def test_the_programs_can_be_linked_with_another_c_library(self):
        library = self.folder / "changed/libc.a"
        library.parent.mkdir()
        shutil.copy(require("g++", "-print-file-name=libc.a").decode().strip(), library)
        # What every program begins with, and some words beside it.
        require("ar", "x", library, "libc-start.o", cwd=self.folder)
        (self.folder / "words.c").write_text('const char words[] = "a changed library";\n')
        require("gcc", "-c", "words.c", cwd=self.folder)
        require("ld", "-r", "libc-start.o", "words.o", "-o", "both.o", cwd=self.folder)
        (self.folder / "both.o").rename(self.folder / "libc-start.o")
        require("ar", "r", library, self.folder / "libc-start.o")
        require(self.top / "link", f"-L{library.parent}", "-Wl,-u,words")
        for name in PROGRAMS:
            self.assertIn(b"a changed library", (self.top / name).read_bytes(), name)
        for name in ["SarvexToolBench", "vemo"]:
            self.assertEqual(f"{name} {VERSION}\n".encode(), require(self.top / name, "--version"))


if __name__ == "__main__":
    unittest.main()
