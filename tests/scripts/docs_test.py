"""Checks the pages against the tree: what they point at exists, and the first session that the
readme shows is what the programs print.

usage: docs_test.py PROGRAM_DIRECTORY
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests/EndToEnd"))
import free_port  # noqa: E402

PROGRAMS = pathlib.Path(sys.argv[1])
PAGES = [*sorted(ROOT.glob("*.md")), *sorted((ROOT / "docs").glob("*.md"))]
SOURCE_FOLDERS = ("Modules/", "Tools/")
TREE_FOLDERS = ("src/", "tests/", "benchmarks/", "fuzz/", "docs/", "examples/", "farm/", "scripts/", "cmake/")


def links(page):
    """The relative links of a page, without their anchors."""
    targets = re.findall(r"\]\(([^)#\s]+)[^)]*\)", page.read_text())
    return [target for target in targets if "://" not in target]


def named_paths(page):
    """What is in backticks and reads like a path of this tree."""
    for text in re.findall(r"`([\w./-]+)`", page.read_text()):
        if text.startswith(TREE_FOLDERS):
            yield text, ROOT / text
        elif text.startswith(SOURCE_FOLDERS):
            yield text, ROOT / "src" / text


def session_blocks():
    """The code blocks of the readme's first session, each as (command, output) pairs."""
    section = (ROOT / "README.md").read_text().split("## A first session\n")[1].split("\n## ")[0]
    for block in re.findall(r"```\n(.*?)```", section, re.DOTALL):
        steps = re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]
        yield [tuple(step.split("\n", 1)) for step in steps]


class DocsTest(unittest.TestCase):
    maxDiff = None

    def test_every_link_leads_somewhere(self):
        for page in PAGES:
            for target in links(page):
                with self.subTest(page=page.name, target=target):
                    self.assertTrue((page.parent / target).exists())

    def test_every_named_path_exists(self):
        for page in PAGES:
            for text, path in named_paths(page):
                with self.subTest(page=page.name, path=text):
                    self.assertTrue(path.exists())

    def test_the_readme_leads_to_every_page(self):
        reached = set(links(ROOT / "README.md")) | {"README.md"}
        self.assertEqual(set(), {str(page.relative_to(ROOT)) for page in PAGES} - reached)

    def test_the_changelog_begins_with_the_version_of_the_programs(self):
        project = (ROOT / "CMakeLists.txt").read_text()
        version = re.search(r"^project\(SarvexTool VERSION (\S+)", project, re.MULTILINE)[1]
        versions = re.findall(r"^## \[(.+?)\]", (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE)
        self.assertEqual(version, versions[0])


class FirstSessionTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.stage = pathlib.Path(folder.name)
        (self.stage / "simulator").mkdir()
        for program in ("SarvexToolClient", "SarvexToolBench"):
            shutil.copy(PROGRAMS / program, self.stage)
        shutil.copy(PROGRAMS / "vemo", self.stage / "simulator")
        shutil.copytree(ROOT / "examples", self.stage / "examples")

    def start_simulator(self):
        command = [self.stage / "simulator" / "vemo", "--port", str(free_port.reserve())]
        simulator = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.addCleanup(simulator.stdout.close)
        self.addCleanup(simulator.wait)
        self.addCleanup(simulator.terminate)
        first_line = simulator.stdout.readline()
        port = first_line.rstrip("\n").rpartition(":")[2]
        (self.stage / "Socket.cfg").write_text(port)
        return first_line.replace(port, "8738")

    def run_lines(self, lines):
        """What each line prints; they run in one shell, so that one can ask for another's code."""
        end = "-- end of its output --"
        script = "".join(f"{line}\ncode=$?; echo '{end}'; (exit $code)\n" for line in lines)
        run = subprocess.run(
            ["bash", "-c", script], cwd=self.stage, text=True, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return run.stdout.split(end + "\n")[:-1]

    def test_the_programs_print_what_the_readme_shows(self):
        first_block, *others = session_blocks()
        self.assertEqual([("simulator/vemo", self.start_simulator())], first_block)
        shown = [step for block in others for step in block]
        self.assertGreater(len(shown), 2)
        lines = [line for line, _ in shown]
        self.assertEqual(shown, list(zip(lines, self.run_lines(lines))))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
