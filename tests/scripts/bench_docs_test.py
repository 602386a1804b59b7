"""Runs the examples of the pages about SarvexToolBench with the real programs, and holds the table of
the problems that check finds against what it tells.

usage: bench_docs_test.py PROGRAM_DIRECTORY [EMULATOR]
"""
import os
import pathlib
import re
import shlex
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests/EndToEnd"))
import free_port  # noqa: E402

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
EMULATOR = sys.argv[2:]
SUFFIX = ".exe" if EMULATOR else ""
PAGES = ("bench.md", "bench-check.md", "bench-formats.md", "run.md", "farm.md", "history.md")
END_OF_OUTPUT = "-- end of its output --"
USUAL_PORT = "8738"
INTERRUPTION = "^C\n"
# A run is interrupted when its journal has so many lines.
FINISHED_LINES = 2


def blocks(page):
    """The code blocks of a page whose kind is session or file, each as its kind, name and text."""
    text = (ROOT / "docs" / page).read_text()
    return re.findall(r"^```(session|file)(?: (\S+))?\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def steps(session):
    """The commands of a session, each with what the page says that it prints."""
    return [tuple(step.split("\n", 1))
            for step in re.split(r"^\$ ", session, flags=re.MULTILINE)[1:]]


class Stage:
    """A directory as a user installs it, on a free port and without the pauses of a test run."""

    def __init__(self, test):
        folder = tempfile.TemporaryDirectory()
        test.addCleanup(folder.cleanup)
        self.test = test
        self.port = USUAL_PORT
        self.folder = pathlib.Path(folder.name)
        (self.folder / "simulator").mkdir()
        self.install("SarvexToolBench", "SarvexToolBench")
        self.install("SarvexToolClientWithoutPauses", "SarvexToolClient")
        self.install("vemo", "simulator/vemo")
        shutil.copytree(ROOT / "examples", self.folder / "examples")

    def install(self, program, name):
        installed = self.folder / (name + SUFFIX)
        shutil.copy(PROGRAMS / (program + SUFFIX), installed)
        if EMULATOR:
            script = self.folder / name
            script.write_text("#!/bin/sh\nexec " + shlex.join([*EMULATOR, str(installed)]) + ' "$@"\n')
            script.chmod(0o755)

    def start_simulator(self, command):
        """What it prints first, with the usual port in the place of its own."""
        simulator = subprocess.Popen(
            [*shlex.split(command), "--port", str(free_port.reserve())], cwd=self.folder, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, start_new_session=True)
        self.test.addCleanup(simulator.stdout.close)
        self.test.addCleanup(self.end, simulator)
        first_line = simulator.stdout.readline()
        self.port = first_line.rstrip("\n").rpartition(":")[2]
        (self.folder / "Socket.cfg").write_text(self.port)
        return first_line.replace(self.port, USUAL_PORT)

    @staticmethod
    def end(simulator):
        """Where a test has not come to its end: the script that starts wine waits for its program, so
        that both are told."""
        if simulator.poll() is None:
            os.killpg(simulator.pid, signal.SIGTERM)
        simulator.wait()

    def run(self, commands):
        """What each command prints; they run in one shell, so that one can ask for another's code."""
        script = "".join(f"{command}\ncode=$?; echo '{END_OF_OUTPUT}'; (exit $code)\n"
                         for command in commands)
        done = subprocess.run(
            ["bash", "-c", script], cwd=self.folder, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return self.as_on_linux(done.stdout).split(END_OF_OUTPUT + "\n")[:-1]

    def interrupt(self, command):
        """What a run prints that gets a Ctrl-C in the middle."""
        arguments = shlex.split(command)
        journal = self.folder / arguments[-1] / "journal.jsonl"
        # Where a shell has started the test in the background, Ctrl-C is ignored otherwise.
        with subprocess.Popen(["env", "--default-signal=INT", *arguments], cwd=self.folder,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT) as run:
            while run.poll() is None:
                if journal.exists() and journal.read_bytes().count(b"\n") >= FINISHED_LINES:
                    os.kill(self.program(run.pid), signal.SIGINT)
                    break
                time.sleep(0.01)
            return self.as_on_linux(run.communicate()[0])

    @staticmethod
    def program(pid):
        """The process of wine, which the script that starts it waits for."""
        children = pathlib.Path(f"/proc/{pid}/task/{pid}/children")
        return int(children.read_text().split()[-1]) if EMULATOR else pid

    def as_on_linux(self, output):
        """With the usual port. Windows ends the lines of the client's files in CR LF and joins names by
        a backslash."""
        text = output.decode().replace("\r\n", "\n").replace(f":{self.port}", f":{USUAL_PORT}")
        return re.sub(r"\\+result\.csv", "/result.csv", text) if EMULATOR else text


class PagesTest(unittest.TestCase):
    maxDiff = None

    @staticmethod
    def without_chance(command, output):
        """What is told without what a busy machine changes: a daemon that is asked for the time of its
        exchanges needs more, and nobody knows how far a run is when its Ctrl-C comes, or it shows its
        progress."""
        if "--daemon" in command:
            output = re.sub(r"takes about \d+ s", "takes about N s", output)
        if " run " in command:
            output = re.sub(r"^\d+/\d+ \(\d+ %\), .*\n", "", output.replace(INTERRUPTION, ""),
                            flags=re.MULTILINE)
        if "it was interrupted" in output:
            output = re.sub(r"after \d+ of|\d+ measure(d|ments?)", "N", output)
        return command, output

    def outputs(self, stage, shown):
        commands = [command for command, _ in shown]
        if commands[0].startswith("simulator/vemo"):
            self.assertEqual(1, len(commands), "the daemon has a console of its own")
            return [stage.start_simulator(commands[0])]
        if INTERRUPTION in shown[0][1]:
            self.assertEqual(1, len(commands), "nothing is typed after Ctrl-C")
            return [stage.interrupt(commands[0])]
        return stage.run(commands)

    def test_the_programs_print_what_the_pages_show(self):
        for page in PAGES:
            stage = Stage(self)
            for kind, name, text in blocks(page):
                if kind == "file":
                    (stage.folder / name).parent.mkdir(exist_ok=True)
                    (stage.folder / name).write_bytes(text.encode())
                    continue
                shown = steps(text)
                with self.subTest(page=page, session=shown[0][0]):
                    found = zip((command for command, _ in shown), self.outputs(stage, shown))
                    self.assertEqual([self.without_chance(*step) for step in shown],
                                     [self.without_chance(*step) for step in found])

    def test_every_page_has_examples(self):
        for page in PAGES:
            with self.subTest(page=page):
                self.assertGreater(len(blocks(page)), 0)


class QueryTest(unittest.TestCase):
    """The query that the page about the history shows for other tools."""

    def test_it_gives_the_powers_of_each_bench_over_time(self):
        stage = Stage(self)
        (stage.folder / "run").mkdir()
        for day, bench, device, powers in (
                ("03", "B1", "DUT-7", "10.5,1"), ("02", "B2", "DUT-7", "11.25,2"), ("09", "B1", "DUT-7", "9,9"),
                ("04", "B1", "DUT-7", "NA,3"), ("05", "B1", "DUT-8", "10,4")):
            (stage.folder / "run/result.csv").write_text(
                f"Band,Chains,Bandwidth,Channel,Rate,Chain-A Power, Chain B Power\n"
                f"5,AB,20,36,MCS0,{powers}\n5,A,20,36,MCS9,8,NA\n5,A,40,36,MCS0,8,NA\n5,A,20,40,MCS0,7,NA\n")
            [output] = stage.run([f"./SarvexToolBench history add run --store history.db --bench {bench} "
                                  f"--device {device} --measured 2026-03-{day}"])
            self.assertIn("Kept run, measured 2026-03-", output)
        [query] = re.findall(r"^```sql\n(.*?)^```$", (ROOT / "docs/history.md").read_text(),
                             re.DOTALL | re.MULTILINE)
        first_day, a_day = 1772409600, 86400
        week = rf"\1 BETWEEN {first_day} AND {first_day + 6 * a_day}"
        query, filters = re.subn(r"\$__unixEpochFilter\((.*?)\)", week, query)
        self.assertEqual(1, filters)
        store = sqlite3.connect(stage.folder / "history.db")
        self.addCleanup(store.close)
        self.assertEqual([(first_day, "B2", 11.25), (first_day + a_day, "B1", 10.5)],
                         store.execute(query).fetchall())


HEADER = "Band,Chains,Channel\n"

# Test files with the problems that the table names, each one at least once.
FAULTY_FILES = (
    "", "\n", HEADER, "\ufeff" + HEADER + "5,A,36\n", "Band;Chains\n5;A\n",
    "Band\tChains\n5\tA\n", HEADER + "5;A;36\n", "Bnd,Chains\n5,A\n", "XYZ,Chains\n5,A\n",
    "sep=,\n" + HEADER + "5,A,36\n",
    "Band,Chains,\r\n5,A,\r\n",
    "Band,,Chains\n5,A,36\n", "Band, ,Chains\n5,A,36\n", "Band,Band\n5,6\n", HEADER + "5,,36\n",
    HEADER + "5,A, \n", HEADER + "5,A\n", HEADER + "5,A,36,1\n", HEADER + "5,A,36\n\n-,-,-\n",
    HEADER.replace("\n", "\r\n") + "5,A,36\r\n\r\n", HEADER + "5,A\r,36\n",
    "Band,Chains\r5,A\r", HEADER + "5,A,3\t6\n", HEADER + "5,A,3\x016\n", HEADER + "5,A,3\x1A6\n",
    HEADER + '"5",A,36\n', HEADER + '5,A,3"6\n', "Band;Chains;Channel\n2,4;A;1\n",
    HEADER + '"a,b",A,36\n', HEADER + "5,AC,36\n", HEADER + "5,XYZ,36\n", HEADER + "5,A,-1\n",
    HEADER + "5,A,$(x)\n", HEADER + "5,A,<36\n", HEADER + "5,A,{int:0x24}\n",
    HEADER + "5,A,36\n" * 40000)
FAULTY_BYTES = (HEADER.encode("utf-16"), (HEADER + "5,A,\xFC\n").encode("latin-1"))


def told(output):
    """The problems in an output, each as its severity and its text."""
    return set(re.findall(r"^.*?: (error|warning): (.*)$", output, re.MULTILINE))


class ProblemTableTest(unittest.TestCase):
    maxDiff = None

    def rows(self):
        """The table's messages; an ellipsis stands for any text."""
        page = (ROOT / "docs" / "bench-check.md").read_text()
        rows = re.findall(r"^\| `(.+?)` \| (error|warning) \|", page, re.MULTILINE)
        self.assertGreater(len(rows), 0)
        return [(severity, re.compile(".*".join(map(re.escape, message.split("…")))))
                for message, severity in rows]

    def problems_of_files(self, stage):
        names = []
        for contents in [*map(str.encode, FAULTY_FILES), *FAULTY_BYTES]:
            names.append(f"{len(names)}.csv")
            (stage.folder / names[-1]).write_bytes(contents)
        return told(stage.run(["./SarvexToolBench check " + " ".join(names)])[0])

    def problems_on_a_daemon(self, stage):
        stage.start_simulator("simulator/vemo --fault 1:return-code=4")
        (stage.folder / "together.csv").write_text(HEADER + "5,A,36\n")
        (stage.folder / "refused.csv").write_text(HEADER + "5,A,500\n")
        (stage.folder / "faulty.csv").write_text("")
        outputs = stage.run(["./SarvexToolBench check --daemon 127.0.0.1 "
                             "together.csv refused.csv faulty.csv", "./SarvexToolClient -exit"])
        return told(outputs[0])

    def test_the_table_holds_what_check_tells_and_nothing_else(self):
        stage = Stage(self)
        rows = self.rows()
        problems = self.problems_of_files(stage) | self.problems_on_a_daemon(stage)
        used = set()
        for severity, text in sorted(problems):
            fitting = [row for row in rows if row[0] == severity and row[1].fullmatch(text)]
            with self.subTest(severity=severity, text=text):
                self.assertEqual(1, len(fitting))
            used.update(fitting)
        self.assertEqual([], [row[1].pattern for row in rows if row not in used])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
