"""Checks that the files of other projects are those that their readme says they are."""
import hashlib
import pathlib
import re
import unittest

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "third_party"


class ThirdPartyTest(unittest.TestCase):
    def test_each_file_has_the_checksum_of_its_readme(self):
        for folder in filter(pathlib.Path.is_dir, FOLDER.iterdir()):
            written = re.findall(r"^([0-9a-f]{64})  (\S+)$", (folder / "README.md").read_text(), re.MULTILINE)
            present = [(hashlib.sha256(file.read_bytes()).hexdigest(), file.relative_to(folder).as_posix())
                       for file in folder.rglob("*")
                       if file.is_file() and file.name not in ("README.md", "LICENSE")]
            with self.subTest(folder=folder.name):
                self.assertEqual(sorted(written), sorted(present))
                self.assertTrue((folder / "LICENSE").is_file())


if __name__ == "__main__":
    unittest.main()
