#!/usr/bin/env python3
"""Runs that keep themselves: with a simulated device, run --keep and what becomes of it."""
import contextlib
import json
import os
import pathlib
import shlex
import signal
import sqlite3
import subprocess
import sys
import time
import unittest

sys.dont_write_bytecode = True
import support  # noqa: E402

sys.path.insert(0, str(support.ROOT / "tests/EndToEnd"))
import free_port  # noqa: E402

PLAN = "Band,Bandwidth,Channel,Chains,Rate,Bandwidth Mode\n" + "2.4,20,1,A,11,legacy\n" * 6


class KeepTest(support.HistoryTest):
    def setUp(self):
        super().setUp()
        self.port = free_port.reserve()
        self.store = str(self.folder / "history.db")
        self.plan = self.folder / "plan.csv"
        self.plan.write_text(PLAN)

    def start_device(self, *options):
        device = subprocess.Popen(
            ["setpriv", "--pdeathsig", "TERM", support.PROGRAMS / "SimulatedDaemon", "--port", str(self.port), *options],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.assertIn("listens on", device.stdout.readline())

        def end():
            device.terminate()
            device.wait()
            device.stdout.close()
        self.addCleanup(end)
        return device

    def running(self, *arguments):
        return subprocess.Popen(
            [support.BENCH, "run", *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, text=True, env=support.environment(), cwd=self.folder)

    def run_new(self, *arguments):
        return self.running(self.plan, "--out", "run", "--daemon", f"127.0.0.1:{self.port}", "--client",
                            support.PROGRAMS / "SarvexToolClientWithoutPauses", *arguments)

    def wait_for_lines(self, program, count):
        journal = self.folder / "run/journal.jsonl"
        end = time.monotonic() + support.TIMEOUT
        while not journal.exists() or journal.read_text().count("\n") < count:
            self.assertLess(time.monotonic(), end)
            self.assertIsNone(program.poll())
            time.sleep(0.02)

    def wait_until_open(self, program, file):
        folder = pathlib.Path(f"/proc/{program.pid}/fd")
        end = time.monotonic() + support.TIMEOUT
        while os.path.realpath(file) not in self.open_files(folder):
            self.assertLess(time.monotonic(), end)
            self.assertIsNone(program.poll())
            time.sleep(0.02)

    @staticmethod
    def open_files(folder):
        files = set()
        for link in folder.iterdir():
            # It may be closed meanwhile.
            with contextlib.suppress(FileNotFoundError):
                files.add(os.readlink(link))
        return files

    def ended(self, program):
        out, err = program.communicate(timeout=support.TIMEOUT)
        return program.returncode, out, err

    def test_a_run_keeps_itself_with_what_was_told_of_it(self):
        self.start_device()
        code, out, err = self.ended(self.run_new("--keep", "--store", self.store, "--bench", "b", "--device", "d",
                                                 "--firmware", "2.1", "--note", "after the repair"))
        self.assertEqual(0, code, out + err)
        self.assertIn("\nKept plan.csv, measured ", err)
        [run] = self.runs(self.store)
        self.assertEqual(("b", "d", "2.1", "after the repair", "complete", 6, 6),
                         tuple(run[key] for key in ("bench", "device", "firmware", "note", "outcome", "lines", "measured")))
        facts = json.loads((self.folder / "run/run.json").read_text())
        self.assertEqual(("2.1", "after the repair", True, self.store),
                         (facts["firmware"], facts["note"], facts["options"]["keep"], facts["options"]["store"]))
        self.history(self.store, "add", self.folder / "run")
        self.assertEqual(1, len(self.runs(self.store)))
        self.history(self.store, "export", run["hash"], "-o", self.folder / "back")
        for file in (self.folder / "back").iterdir():
            self.assertEqual(file.read_bytes(), (self.folder / "run" / file.name).read_bytes())
        self.require_whole(self.store)

    def test_its_verdict_and_its_exit_code_are_those_of_its_limits(self):
        self.start_device()
        limits = self.folder / "limits.csv"
        limits.write_text("Chain,Min,Max\n*,90,99\n")
        code, _, err = self.ended(self.run_new("--keep", "--store", self.store, "--limits", limits))
        self.assertEqual(1, code, err)
        self.assertEqual(["fail"], [run["verdict"] for run in self.runs(self.store)])

    def test_a_store_that_cannot_be_used_is_told_before_anything_is_measured(self):
        self.start_device()
        (self.folder / "place").mkdir()
        for store in "place", "nowhere/history.db":
            code, _, err = self.ended(self.run_new("--keep", "--store", store))
            self.assertEqual(2, code, err)
            self.assertIn(store, err)
            self.assertFalse((self.folder / "run").exists())

    def test_where_it_cannot_be_kept_the_command_that_keeps_it_later_is_told(self):
        self.start_device("--latency", "300")
        program = self.run_new("--keep", "--store", "two words")
        self.wait_for_lines(program, 2)
        (self.folder / "two words").unlink()
        (self.folder / "two words").mkdir()
        code, _, err = self.ended(program)
        self.assertEqual(1, code, err)
        self.assertIn("The run is not kept in the history. To keep it later:\n", err)
        command = shlex.split(err.rstrip("\n").splitlines()[-1])
        self.assertEqual(["SarvexToolBench", "history", "add", "run", "--store"], command[:5])
        (self.folder / "two words").rmdir()
        subprocess.run([support.BENCH, *command[1:]], check=True, cwd=self.folder, env=support.environment(),
                       stdout=subprocess.DEVNULL)
        self.assertEqual(1, len(self.runs(str(self.folder / "two words"))))

    def test_a_run_whose_stop_was_not_confirmed_is_kept_once_when_it_is(self):
        device = self.start_device("--fault", "text=-wifi-stop:return-code=5")
        code, _, err = self.ended(self.run_new("--keep", "--store", self.store, "--stop-timeout", "1"))
        self.assertEqual(4, code, err)
        self.assertTrue(err.endswith("The transmitter may still be ON: the daemon has not confirmed the stop.\n"), err)
        self.assertEqual([], self.runs(self.store))
        device.terminate()
        device.wait()
        self.start_device()
        code, _, err = self.ended(self.running("--resume", "run"))
        self.assertEqual(0, code, err)
        self.assertEqual([6], [run["measured"] for run in self.runs(self.store)])

    def test_an_interruption_ends_the_wait_for_a_store_in_use(self):
        self.start_device("--latency", "300")
        program = self.run_new("--keep", "--store", self.store)
        self.wait_for_lines(program, 2)
        with contextlib.closing(sqlite3.connect(self.store)) as other:
            other.execute("begin exclusive")
            said = ""
            while "confirmed the last stop" not in said:
                line = program.stdout.readline()
                self.assertTrue(line, said)
                said += line
            self.wait_until_open(program, self.store)
            program.send_signal(signal.SIGINT)
            code, _, err = self.ended(program)
            self.assertEqual(1, code, err)
            self.assertIn("The run may not be kept in the history. To keep it for certain:\n"
                          "  SarvexToolBench history add run --store ", err)
        self.assertEqual([], self.runs(self.store))

    def test_a_run_that_ended_early_is_kept_when_it_has_been_gone_on_with(self):
        self.start_device("--latency", "300")
        program = self.run_new("--keep", "--store", self.store)
        self.wait_for_lines(program, 2)
        said = self.history(self.store, "add", self.folder / "run", expected=2)
        self.assertIn("is in use by process", said)
        self.assertIn("in use", self.history(self.store, "add", self.folder / "run", "--partial", expected=2))
        program.send_signal(signal.SIGINT)
        code, _, err = self.ended(program)
        self.assertEqual(3, code, err)
        self.assertIn("The run is kept in the history when it is complete.\n", err)
        self.assertEqual([], self.runs(self.store))
        self.assertIn("--partial", self.history(self.store, "add", self.folder / "run", expected=2))
        code, _, err = self.ended(self.running("--resume", "run"))
        self.assertEqual(0, code, err)
        self.assertEqual([6], [run["measured"] for run in self.runs(self.store)])


if __name__ == "__main__":
    unittest.main()
