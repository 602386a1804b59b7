"""Tests the completion of the programs' command lines: in a real bash, with and without the package
bash-completion; the script for PowerShell, which has not been run, by a grammar and by what it is made of."""
import fcntl
import json
import os
import pathlib
import pty
import re
import select
import shlex
import shutil
import struct
import sys
import termios
import time
import unittest

import support

sys.path.insert(0, str(support.ROOT / "packaging"))
import help_text  # noqa: E402

PROGRAMS = support.LINUX_BUILD / "bin"
SCRIPTS = support.ROOT / "packaging/completion"
BASH_COMPLETION = pathlib.Path("/usr/share/bash-completion/bash_completion")
GRAMMAR = pathlib.Path(__file__).parent / "powershell"
SUBCOMMANDS = [entry.names[0] for entry in help_text.of(PROGRAMS / "SarvexToolBench")["subcommands"]]
NESTED = [f"{name} {entry.names[0]}" for name in ("history", "history baseline")
          for entry in help_text.of(PROGRAMS / "SarvexToolBench", *name.split())["subcommands"]]
CALLS = {"SarvexToolBench": help_text.of(PROGRAMS / "SarvexToolBench"), "vemo": help_text.of(PROGRAMS / "vemo")}
CALLS |= {f"SarvexToolBench {name}": help_text.of(PROGRAMS / "SarvexToolBench", *name.split())
          for name in SUBCOMMANDS + NESTED}
# What the script for PowerShell calls besides its own functions.
CMDLETS = {"ForEach-Object", "Get-ChildItem", "Join-Path", "Register-ArgumentCompleter", "Select-Object",
           "Test-Path", "Where-Object"}
# What completes the values of an option where there are no files.
CHOICES = {"KIND": {"text", "json"}, "PART": {"bench", "device", "attempt"}, "VERDICT": {"pass", "fail"},
           "WHICH:FAULT": {"*:", "text="}}
FILES = ["plan.csv", "OLD.CSV", "two words.csv", "notes.txt", "junit.xml", "page.html", "verdict.json",
         "exchanges.jsonl", "first/run.json", "first/result.csv", "runs/second/run.json", "pictures/one.png"]
FOLDERS = {"first/", "runs/", "pictures/"}
TABLES = {"plan.csv", "OLD.CSV", "two words.csv"}

INSERT_ALL, TO_THE_BEGINNING, INTERRUPT = "\x1b*", "\x01", b"\x03"


class Bash:
    """A bash on a terminal of its own, into which lines are typed."""

    def __init__(self, folder, environment):
        process, self.terminal = pty.fork()
        if process == 0:
            os.chdir(folder)
            os.execvpe("bash", ["bash", "--norc", "--noprofile", "-i"], environment)
        self.process = process
        # So wide that no line is broken.
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 8000, 0, 0))
        self.run("PS1=; shown() { printf '\\n=%s=\\n' begin; printf '<%s>\\n' \"$@\"; printf '=%s=\\n' end; }")

    def close(self):
        os.close(self.terminal)
        os.waitpid(self.process, 0)

    def run(self, command):
        return self._answer(f"{command}\nshown\n")

    def words_after(self, keys):
        """The arguments that the line has after these keys, the name of the command included."""
        return self._answer(f"{keys}{TO_THE_BEGINNING}shown \n")

    def _answer(self, keys):
        os.write(self.terminal, keys.encode())
        text = b""
        end = time.monotonic() + 10
        while not text.endswith(b"=end=\r\n"):
            ready, _, _ = select.select([self.terminal], [], [], max(0, end - time.monotonic()))
            if not ready:
                os.write(self.terminal, INTERRUPT)
                raise AssertionError(f"bash has not answered: {text!r}")
            text += os.read(self.terminal, 65536)
        lines = text.decode().split("=begin=\r\n")[1].split("=end=")[0].split("\r\n")
        return [line[1:-1] for line in lines if line.startswith("<")]


class BashTests:
    """The tests of both ways in which bash gets the script."""
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = support.temporary_folder(cls)
        (cls.folder / "empty").mkdir()
        for file in FILES:
            path = cls.folder / "full" / file
            path.parent.mkdir(parents=True, exist_ok=True)
            path.touch()
        environment = {"PATH": os.environ["PATH"], "HOME": str(cls.folder / "full"), "TERM": "dumb",
                       "LC_ALL": "C.UTF-8", "INPUTRC": "/dev/null", "HISTFILE": ""}
        cls.bash = Bash(cls.folder, environment | cls.variables())
        cls.addClassCleanup(cls.bash.close)
        cls.prepare()

    def completions(self, line, folder="empty"):
        """What the last word of the line may become."""
        self.bash.run(f"cd '{self.folder / folder}'")
        before = shlex.split(line)
        after = self.bash.words_after(line + INSERT_ALL)
        if before == after:
            return set()
        first, *others = after[len(before) - (not line.endswith(" ")):]
        # Bash inserts only what is after the last = or :, so that the others lack what is before it.
        start = re.match("(.*[=:])?", line.split(" ")[-1])[0]
        return {first, *(f"{start}{other}" for other in others)}

    def test_the_options_are_those_of_the_help(self):
        for call, sections in CALLS.items():
            with self.subTest(call=call):
                expected = {name for entry in sections["options"] for name in entry.names}
                self.assertEqual(expected, self.completions(f"{call} -"))

    def test_the_subcommands_are_those_of_the_help(self):
        self.assertEqual(set(SUBCOMMANDS), self.completions("SarvexToolBench "))
        self.assertEqual(set(SUBCOMMANDS), self.completions("SarvexToolBench help "))
        self.assertEqual({"compare"}, self.completions("SarvexToolBench co"))
        for name in ("history", "history baseline"):
            expected = {call.split()[-1] for call in NESTED if call.rpartition(" ")[0] == name}
            self.assertEqual(expected, self.completions(f"SarvexToolBench {name} "))

    def test_after_an_option_comes_its_value_or_another_option(self):
        for call, sections in CALLS.items():
            options = {name for entry in sections["options"] for name in entry.names}
            for entry in sections["options"]:
                for name in entry.names:
                    with self.subTest(call=call, option=name):
                        self.assertEqual(set() if entry.argument else options, self.completions(f"{call} {name} -"))
                        if entry.argument:
                            choices = CHOICES.get(entry.argument, set())
                            self.assertEqual(choices, self.completions(f"{call} {name} "))

    def test_a_value_may_follow_an_equals_sign(self):
        self.assertEqual({"--progress=text", "--progress=json"}, self.completions("SarvexToolBench run --progress="))
        self.assertEqual({"--progress=json"}, self.completions("SarvexToolBench run --progress=j"))
        self.assertEqual({"--limits=plan.csv"}, self.completions("SarvexToolBench run --limits=pl", "full"))
        self.assertEqual({"--fault=3:crlf"}, self.completions("vemo --fault=3:cr"))

    def test_the_faults_are_those_of_the_help(self):
        expected = set()
        for entry in CALLS["vemo"]["faults"]:
            name, argument = entry.names[0], entry.argument
            expected |= {f"3:{name}="} if argument else {f"3:{name}"}
            expected |= {f"3:{name}"} if argument.startswith("[") else set()
        self.assertEqual(expected, self.completions("vemo --fault 3:"))
        self.assertEqual({"3:close-before", "3:close-after="}, self.completions("vemo --fault 3:clo"))

    def test_a_fault_is_completed_after_each_way_to_say_which(self):
        for which in ("17", "text=-wifi-start", "text=a=b"):
            with self.subTest(which=which):
                self.assertEqual({f"{which}:crlf"}, self.completions(f"vemo --noise 0 --fault {which}:cr"))
        for quoted, which in {"'*": "*", '"text=two words': "text=two words"}.items():
            with self.subTest(which=which):
                self.assertEqual(["--fault", f"{which}:crlf", "x"],
                                 self.bash.words_after(f"vemo --fault {quoted}:cr\tx")[1:])
        self.assertEqual({"1:missing-chain=A", "1:missing-chain=B"},
                         self.completions("vemo --fault 1:missing-chain="))
        self.assertEqual({"1:raw=notes.txt"}, self.completions("vemo --fault 1:raw=no", "full"))

    def test_a_space_follows_what_is_whole(self):
        self.bash.run(f"cd '{self.folder}/empty'")
        for keys, expected in {
                "SarvexToolBench run --prog\tx": ["run", "--progress", "x"],
                "SarvexToolBench run --progress j\tx": ["run", "--progress", "json", "x"],
                "vemo --fault 3:del\t5": ["--fault", "3:delay=5"],
                "vemo --fault 3:cr\t5": ["--fault", "3:crlf", "5"],
                "vemo --fault 3:missing-chain=A\t5": ["--fault", "3:missing-chain=A", "5"],
        }.items():
            with self.subTest(keys=keys):
                self.assertEqual(expected, self.bash.words_after(keys)[1:])

    def test_files_are_offered_by_their_kind(self):
        for line, expected in {
                "SarvexToolBench check ": TABLES | FOLDERS,
                "SarvexToolBench check plan.csv ": TABLES | FOLDERS,
                "SarvexToolBench run pl": {"plan.csv"},
                "SarvexToolBench run --limits ": TABLES | FOLDERS,
                "SarvexToolBench run --out ": FOLDERS,
                "SarvexToolBench run --resume ": {"first/", "runs/"},
                "SarvexToolBench run --resume runs/": {"runs/second/"},
                "SarvexToolBench run --client no": {"notes.txt"},
                "SarvexToolBench judge f": {"first/"},
                "SarvexToolBench judge first/": {"first/result.csv"},
                "SarvexToolBench judge first --junit ": {"junit.xml"} | FOLDERS,
                "SarvexToolBench judge first --json ": {"verdict.json"} | FOLDERS,
                "SarvexToolBench report first --baseline r": {"runs/"},
                "SarvexToolBench report first -o ": {"page.html"} | FOLDERS,
                "SarvexToolBench compare first ": TABLES | FOLDERS,
                "SarvexToolBench check two": {"two words.csv"},
                "SarvexToolBench check two\\ w": {"two words.csv"},
                "vemo --replay ": {"exchanges.jsonl"} | FOLDERS,
                "vemo --request-log no": {"notes.txt"},
        }.items():
            with self.subTest(line=line):
                found = self.completions(line, "full")
                # Whether a folder gets its slash here is the reader's own affair.
                self.assertEqual(expected, {f"{name}/" if f"{name}/" in expected else name for name in found})

    def test_a_file_name_in_quotes_is_found(self):
        self.bash.run(f"cd '{self.folder}/full'")
        for typed in ("'two w", '"two w', "two\\ w"):
            with self.subTest(typed=typed):
                self.assertEqual(["check", "two words.csv", "x"],
                                 self.bash.words_after(f"SarvexToolBench check {typed}\tx")[1:])

    def test_a_file_in_the_home_folder_is_found(self):
        home = self.folder / "full"
        self.assertEqual({str(home / "plan.csv")}, self.completions("SarvexToolBench check ~/pl"))
        self.assertEqual({f"{home}/first"},
                         {path.rstrip("/") for path in self.completions("SarvexToolBench run --resume ~/f")})

    def test_nothing_is_offered_for_another_program(self):
        self.assertEqual(set(), self.completions("SarvexToolBench run plan.csv -- ", "full"))
        self.assertEqual(set(), self.completions("SarvexToolBench run plan.csv -- -"))

    def test_each_name_of_the_programs_is_served(self):
        (self.folder / "empty/simulator").mkdir()
        self.addCleanup((self.folder / "empty/simulator").rmdir)
        for name in ("SarvexToolBench", "./SarvexToolBench", "/opt/SarvexTool/SarvexToolBench"):
            with self.subTest(name=name):
                self.assertEqual({"--version"}, self.completions(f"{name} --v"))
        for name in ("vemo", "sarvextool-vemo", "simulator/vemo"):
            with self.subTest(name=name):
                self.assertEqual({"--latency"}, self.completions(f"{name} --lat"))

    def test_settings_of_the_shell_do_not_matter(self):
        self.bash.run("saved=$IFS; IFS=-; set -u; shopt -s nullglob failglob nocasematch extglob")
        self.addCleanup(self.bash.run, "IFS=$saved; set +u; shopt -u nullglob failglob nocasematch extglob")
        self.assertEqual({"--fail-fast"}, self.completions("SarvexToolBench run --fail"))
        self.assertEqual({"run"}, self.completions("SarvexToolBench ru"))
        self.assertEqual({"3:crlf"}, self.completions("vemo --fault 3:cr"))
        self.assertEqual({"plan.csv"}, self.completions("SarvexToolBench judge pl", "full"))

    def test_words_are_found_without_the_usual_word_breaks(self):
        self.bash.run("saved=$COMP_WORDBREAKS; COMP_WORDBREAKS=${COMP_WORDBREAKS//[=:]/}")
        self.addCleanup(self.bash.run, "COMP_WORDBREAKS=$saved")
        self.assertEqual({"3:crlf"}, self.completions("vemo --fault 3:cr"))
        self.assertEqual({"--progress=json"}, self.completions("SarvexToolBench run --progress=j"))


class BareBashTest(BashTests, unittest.TestCase):
    """The script is sourced, and there is no bash-completion."""

    @classmethod
    def variables(cls):
        return {}

    @classmethod
    def prepare(cls):
        cls.bash.run(f"source '{SCRIPTS}/sarvextool.bash'")


class InstalledInBashTest(BashTests, unittest.TestCase):
    """The script is in the folder from which bash-completion loads it when it is needed."""

    @classmethod
    def variables(cls):
        return {"BASH_COMPLETION_USER_DIR": str(cls.folder / "user")}

    @classmethod
    def prepare(cls):
        completions = cls.folder / "user/completions"
        completions.mkdir(parents=True)
        (completions / "SarvexToolBench").write_bytes((SCRIPTS / "sarvextool.bash").read_bytes())
        for name in ("vemo", "sarvextool-vemo"):
            (completions / name).symlink_to("SarvexToolBench")
        cls.bash.run(f"source {BASH_COMPLETION}")


class PowerShellTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.script = SCRIPTS / "sarvextool.ps1"
        cls.text = cls.script.read_text()
        cls.reader = support.ROOT / "build/powershell"
        shutil.copytree(GRAMMAR, cls.reader, dirs_exist_ok=True)
        support.require("npm", "ci", "--silent", "--ignore-scripts", "--no-audit", "--no-fund", cwd=cls.reader)

    def parse(self, script):
        # The better compiler would work for half a minute on the grammar's one long function.
        return json.loads(support.require("node", "--liftoff-only", "parse.mjs", script, cwd=self.reader))

    def parse_changed(self, old, new):
        self.assertIn(old, self.text)
        script = support.temporary_folder(self) / "changed.ps1"
        script.write_text(self.text.replace(old, new, 1))
        return self.parse(script)

    def table(self, name):
        """The entries of a table of the script, or its one text."""
        block = re.search(rf"^    \${name} = (@\{{$.*?^    \}}$|.*?'$)", self.text, re.MULTILINE | re.DOTALL)[1]
        block = re.sub(r"' \+\s+'", "", block)
        entries = re.findall(r"^        '([\w -]*)' = '(.*)'$", block, re.MULTILINE)
        return dict(entries) or block[1:-1]

    def of_bash(self, call):
        command = f"source '{SCRIPTS}/sarvextool.bash'; {call}"
        return support.require("bash", "--norc", "--noprofile", "-c", command).decode().strip()

    def test_it_is_powershell(self):
        found = self.parse(self.script)
        self.assertEqual([], found["problems"])
        self.assertEqual(set(), set(found["commands"]) - set(found["functions"]) - CMDLETS)
        self.assertEqual(set(), set(found["functions"]) - set(found["commands"]))
        self.assertEqual(set(), (set(found["set"]) ^ set(found["used"])) - {"_", "null", "true", "false"})

    def test_what_is_no_powershell_is_found(self):
        for right, wrong in {"foreach ($item in": "foreach ($item on", "    if (": "    if ", "'--'": "'--"}.items():
            with self.subTest(wrong=wrong):
                self.assertNotEqual([], self.parse_changed(right, wrong)["problems"])
        self.assertIn("esle", self.parse_changed("    } else {", "    } esle {")["commands"])
        self.assertIn("kindd", self.parse_changed("$name, $kind =", "$name, $kindd =")["set"])
        self.assertIn("itme", self.parse_changed("$item.Name", "$itme.Name")["used"])

    def test_it_is_ascii_so_that_each_version_reads_the_same(self):
        self.assertTrue(self.text.isascii())

    def test_it_serves_each_name_of_the_programs(self):
        names = re.search(r"-CommandName @\((.*?)\)", self.text, re.DOTALL)[1]
        self.assertEqual({"SarvexToolBench", "SarvexToolBench.exe", "vemo", "vemo.exe", "sarvextool-vemo"},
                         set(re.findall(r"'(.*?)'", names)))

    def test_it_completes_what_the_script_for_bash_does(self):
        options, arguments = self.table("benchOptions"), self.table("benchArguments")
        self.assertEqual({"", *SUBCOMMANDS, *NESTED}, set(options))
        self.assertEqual({"", *SUBCOMMANDS, *NESTED}, set(arguments))
        for name in options:
            with self.subTest(subcommand=name):
                self.assertEqual(self.of_bash(f"_sarvextool_bench_options '{name}'"), options[name])
                self.assertEqual(self.of_bash(f"_sarvextool_bench_argument '{name}'"), arguments[name])
        self.assertEqual(self.of_bash("_sarvextool_vemo_options"), self.table("vemoOptions"))

    def test_its_options_are_those_of_the_help(self):
        tables = {f"SarvexToolBench {name}".strip(): text for name, text in self.table("benchOptions").items()}
        tables["vemo"] = self.table("vemoOptions")
        for call, sections in CALLS.items():
            with self.subTest(call=call):
                expected = {(name, bool(entry.argument)) for entry in sections["options"] for name in entry.names}
                self.assertEqual(expected, {(word.split(":")[0], ":" in word) for word in tables[call].split()})

    def test_its_faults_are_those_of_the_help(self):
        expected = []
        for entry in CALLS["vemo"]["faults"]:
            name, argument = entry.names[0], entry.argument
            expected += [name] if not argument.startswith("=") else []
            expected += [f"{name}="] if argument else []
        self.assertEqual(sorted(expected), sorted(self.table("faults").split()))


if __name__ == "__main__":
    unittest.main()
