"""What the tests of the history share: stores, runs to keep, and calls of the program."""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = pathlib.Path(os.environ.get("SARVEX_PROGRAMS", ROOT / "build/linux/bin")).resolve()
BENCH = PROGRAMS / "SarvexToolBench"
HEADER = "Band,Chains,Channel,Chain-A Power, Chain B Power\n"
TIMEOUT = 120


class FileStores:
    """Stores in files of a folder."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.count = 0

    def new(self):
        """The name of a store that is not there yet."""
        self.count += 1
        return str(self.folder / f"history-{self.count}.db")


def environment():
    """That of the test, without a store or a folder of its user's."""
    kept = {name: value for name, value in os.environ.items()
            if not name.startswith(("PG", "SARVEXTOOL", "XDG"))}
    return {**kept, "HOME": "/nowhere"}


class HistoryTest(unittest.TestCase):
    """Calls the program, with a folder for its files."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="sarvex-history-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def history(self, store, *arguments, expected=0, text=""):
        """What history prints; its exit code is the expected one."""
        ended = subprocess.run(
            [BENCH, "history", *map(str, arguments), "--store", store], input=text.encode(), capture_output=True,
            timeout=TIMEOUT, env=environment())
        out, err = (stream.decode("utf-8", "surrogateescape") for stream in (ended.stdout, ended.stderr))
        self.assertEqual(expected, ended.returncode, f"{arguments}\n{out}{err}")
        return out if expected == 0 else out + err

    def runs(self, store, *filters):
        return json.loads(self.history(store, "list", "--json", "-", *filters))["runs"]

    def make_result(self, name, lines, seed=0):
        """A result of the client in a folder of its own, unlike that of any other seed."""
        folder = self.folder / name
        folder.mkdir()
        rows = "".join(f"5,AB,{line},{10 + seed % 7}.{line % 97:02},{9 + seed % 5}.{seed:06}\n" for line in range(lines))
        (folder / "result.csv").write_text(HEADER + rows)
        return folder

    def require_whole(self, store):
        """Fails when something in the store is not as it was kept."""
        self.assertIn("all is as it was kept", self.history(store, "check"))
