"""Tests the man pages: that man and mandoc find nothing wrong with them, that they hold what the programs
tell of themselves, and that they lead to each other."""
import functools
import os
import re
import subprocess
import sys
import unittest

import support
from support import ROOT

sys.path.insert(0, str(ROOT / "packaging"))
import help_text  # noqa: E402

PROGRAMS = support.LINUX_BUILD / "bin"
COMMANDS = {"SarvexToolBench.1": ["SarvexToolBench"], "vemo.1": ["vemo"], "sarvextool-vemo.1": ["vemo"]}
COMMANDS |= {
    f"SarvexToolBench-{name}.1": ["SarvexToolBench", name]
    for entry in help_text.of(PROGRAMS / "SarvexToolBench")["subcommands"] for name in entry.names
    if name != "help"}
# The calls of the history that do something, as "history baseline set".
HISTORY = [f"{group} {entry.names[0]}" for group in ("history", "history baseline")
           for entry in help_text.of(PROGRAMS / "SarvexToolBench", *group.split())["subcommands"]
           if entry.names[0] != "baseline"]
# The 2nd of January 1971.
EPOCH = str(366 * 24 * 3600)


def make_pages(folder, *options):
    subprocess.run(
        [ROOT / "packaging/man/make-pages", *options, folder, PROGRAMS], env=os.environ | {"SOURCE_DATE_EPOCH": EPOCH},
        check=True)
    return sorted(folder.glob("man?/*"))


def findings_of_man(page):
    """As lintian asks, at its width and at the usual one."""
    findings = []
    for width in ("80", "120"):
        run = subprocess.run(
            ["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page], check=False,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
            env={"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "MANROFFSEQ": "", "MANWIDTH": width})
        findings += [run.stderr or run.returncode]
    return [finding for finding in findings if finding]


def findings_of_mandoc(page):
    run = subprocess.run(
        ["mandoc", "-T", "lint", "-W", "warning", page], check=False, capture_output=True, text=True)
    return run.stdout + run.stderr or run.returncode


@functools.cache
def shown(page, width=80):
    """The text of a page on a terminal of that width."""
    return subprocess.run(
        ["man", "-l", page], check=True, stdout=subprocess.PIPE, encoding="utf-8",
        env=os.environ | {"LC_ALL": "C.UTF-8", "MANWIDTH": str(width), "MAN_KEEP_FORMATTING": ""}).stdout



def terms_of(text, title):
    """The terms of the list at the beginning of a section: they are indented by seven blanks."""
    body = re.split(r"^(?=\S)", text.split(f"\n{title}\n", 1)[1], flags=re.MULTILINE)[0]
    return re.findall(r"^ {7}(?=\S)(\S.*)$", body, re.MULTILINE)


class ManTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.pages = make_pages(support.temporary_folder(cls))
        cls.by_name = {page.name: page for page in cls.pages}

    def test_each_skeleton_each_program_and_each_subcommand_has_a_page(self):
        skeletons = {path.stem for path in (ROOT / "packaging/man").glob("*.md")}
        self.assertEqual(skeletons | {"vemo.1"}, set(self.by_name))
        self.assertLessEqual(set(COMMANDS) | {"SarvexToolClient.1"}, set(self.by_name))

    def test_man_and_mandoc_find_nothing_wrong(self):
        for page in self.pages:
            with self.subTest(page=page.name):
                self.assertEqual(([], 0), (findings_of_man(page), findings_of_mandoc(page)))

    def test_man_and_mandoc_find_what_is_wrong(self):
        page = support.temporary_folder(self) / "wrong.1"
        page.write_text(self.by_name["vemo.1"].read_text() + ".unknown\n")
        self.assertIn("unknown", str(findings_of_man(page)))
        self.assertIn("unknown", str(findings_of_mandoc(page)))

    def test_a_page_has_the_options_of_its_help_and_no_others(self):
        for name, command in COMMANDS.items():
            with self.subTest(page=name):
                entries = help_text.of(PROGRAMS / command[0], *command[1:])["options"]
                expected = [f"{', '.join(entry.names)} {entry.argument}".strip() for entry in entries]
                terms = [re.split(" {2,}", term)[0].split(" ") for term in terms_of(shown(self.by_name[name]), "OPTIONS")]
                options = [term for term in terms if term[0].startswith("-")]
                known = [entry.split(" ") for entry in expected]
                self.assertEqual(known, [term[:len(entry)] for term, entry in zip(options, known)])
                self.assertEqual(len(known), len(options))

    def test_the_page_of_the_history_calls_each_of_its_subcommands_as_the_help_does(self):
        skeleton = (ROOT / "packaging/man/SarvexToolBench-history.1.md").read_text(encoding="utf-8")
        self.assertEqual(sorted(["history", *HISTORY]),
                         sorted(re.findall(r"^```options\nSarvexToolBench (.*)\n```$", skeleton, re.MULTILINE)))
        text = " ".join(skeleton.split())
        for call in HISTORY:
            with self.subTest(call=call):
                sections = help_text.of(PROGRAMS / "SarvexToolBench", *call.split())
                expected = [entry.names[0] for entry in sections.get("positionals", [])]
                for entry in sections["options"]:
                    expected += [entry.names[0], entry.argument] if entry.required else []
                # As "**SarvexToolBench history report** **-o** *FILE.html* shows".
                called = re.search(rf"\*\*SarvexToolBench {call}\*\*((?: \[?\*\S+)*)", text)
                self.assertIsNotNone(called)
                self.assertEqual(expected, re.findall(r"(?<![\w.=*-])\**(-?\w+)", called[1]))

    def test_the_simulators_page_has_all_faults(self):
        faults = [f"{entry.names[0]}{entry.argument}" for entry in help_text.of(PROGRAMS / "vemo")["faults"]]
        terms = [re.split(" {2,}", term)[0] for term in terms_of(shown(self.by_name["vemo.1"]), "FAULTS")]
        self.assertEqual([], [fault for fault in faults if fault not in terms])

    def test_a_synopsis_names_only_options_of_the_help(self):
        for name, command in COMMANDS.items():
            with self.subTest(page=name):
                entries = help_text.of(PROGRAMS / command[0], *command[1:])["options"]
                options = {option for entry in entries for option in entry.names}
                synopsis = shown(self.by_name[name], 400).split("\nSYNOPSIS\n")[1].split("\nDESCRIPTION\n")[0]
                self.assertIn(" ".join(command), synopsis)
                self.assertEqual(set(), set(re.findall(r"(?<![\w-])--?\w[\w-]*", synopsis)) - options)

    def test_each_page_that_is_referred_to_exists(self):
        for page in self.pages:
            references = re.findall(r"([A-Za-z][\w.-]*)\(([1-9])\)", shown(page, 400))
            with self.subTest(page=page.name):
                self.assertIn(("sarvextool-vemo", "1") if page.name == "vemo.1" else tuple(page.name.rsplit(".", 1)), references)
                self.assertEqual(set(), {".".join(each) for each in references} - set(self.by_name))

    def test_the_overview_and_the_description_of_the_package_tell_of_each_subcommand(self):
        names = [name.removeprefix("SarvexToolBench-")[:-2] for name in COMMANDS if name.startswith("SarvexToolBench-")]
        overview = shown(self.by_name["sarvextool.7"], 400)
        self.assertEqual(names, re.findall(r"SarvexToolBench-(\w+)\(1\)", overview))
        control = (ROOT / "packaging/debian/sarvextool/control.in").read_text()
        for text in (overview, control):
            # "splits a table": each is said as a verb.
            verbs = ["keeps" if name == "history" else f"{name}s" for name in names]
            self.assertEqual([], [verb for verb in verbs if not re.search(rf"\b{verb}\b", text)])

    def test_each_file_of_the_documentation_that_is_named_exists(self):
        for page in self.pages:
            for path in re.findall(r"\b(?:docs|examples)/[\w./-]*\w", shown(page, 400)):
                with self.subTest(page=page.name, path=path):
                    self.assertTrue((ROOT / path).exists())

    def test_no_page_speaks_of_the_tests_or_shows_markdown(self):
        for page in self.pages:
            with self.subTest(page=page.name):
                text = shown(page, 400)
                self.assertNotIn("tests/", text)
                self.assertNotIn(".md#", text)
                self.assertNotRegex(text, r"```|\]\(|\*\*|<!--|^\s*\|")

    def test_each_line_fits_a_terminal_of_80_columns(self):
        for page in self.pages:
            with self.subTest(page=page.name):
                self.assertEqual([], [line for line in shown(page).split("\n") if len(line) > 80])

    def test_the_pages_tell_date_and_version_and_are_the_same_each_time(self):
        project = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
        version = re.search(r"^project\(SarvexTool VERSION (\S+)", project, re.MULTILINE)[1]
        again = make_pages(support.temporary_folder(self))
        self.assertEqual([page.read_bytes() for page in self.pages], [page.read_bytes() for page in again])
        for page in self.pages:
            last_line = shown(page).rstrip("\n").split("\n")[-1]
            with self.subTest(page=page.name):
                self.assertRegex(last_line, rf"^SarvexTool {re.escape(version)} +1971-01-02 ")


class DebianManTest(unittest.TestCase):
    """The pages of Debian's package, in whose folders the examples of the others could not be typed."""

    @classmethod
    def setUpClass(cls):
        cls.usual = {page.name: page for page in make_pages(support.temporary_folder(cls))}
        cls.pages = {page.name: page for page in make_pages(support.temporary_folder(cls), "--debian")}

    def test_there_is_no_page_of_the_name_that_is_not_on_the_path(self):
        self.assertEqual(set(self.usual) - {"vemo.1"}, set(self.pages))

    def test_examples_call_the_programs_by_their_names_on_the_path(self):
        of_a_folder = re.compile(r"\./SarvexTool|(?<!sarvextool/)simulator/vemo|(?<![\w-])vemo --|\$ vemo\b")
        found = {name for name, page in self.usual.items() if of_a_folder.search(shown(page, 400))}
        self.assertLessEqual({"sarvextool-vemo.1", "SarvexToolBench-run.1", "sarvextool-limits.5"}, found)
        for name, page in self.pages.items():
            with self.subTest(page=name):
                self.assertEqual([], [line for line in shown(page, 400).split("\n") if of_a_folder.search(line)])

    def test_nothing_else_is_different(self):
        # Shorter lines are broken elsewhere, or not at all.
        calls = re.compile(r"\./(?=SarvexTool)|simulator/(?=vemo)|sarvextool-(?=vemo)"
                           r"|\(Long lines are broken here\.\)|\s")
        for name, page in self.pages.items():
            with self.subTest(page=name):
                self.assertEqual(*(calls.sub("", shown(each, 400)) for each in (self.usual[name], page)))

    def test_man_and_mandoc_find_nothing_wrong(self):
        for name, page in self.pages.items():
            with self.subTest(page=name):
                self.assertEqual(([], 0), (findings_of_man(page), findings_of_mandoc(page)))


if __name__ == "__main__":
    unittest.main()
