#!/usr/bin/env python3
"""What is kept stays whole: programs that are killed, many at once, full disks, files that cannot be written,
hostile texts."""
import contextlib
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.dont_write_bytecode = True
import support  # noqa: E402

KILLS = 200
LINES = 300


class Killed:
    kind = None

    def adding(self, store, result):
        return subprocess.Popen([support.BENCH, "history", "add", result, "--store", store],
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=support.environment())

    def seconds_to_add(self, store):
        start = time.monotonic()
        self.assertEqual(0, self.adding(store, self.make_result("first", LINES, 999_999)).wait(support.TIMEOUT))
        return time.monotonic() - start

    def test_whoever_is_killed_while_adding_leaves_whole_runs_only(self):
        store = self.stores(self.kind).new()
        whole = self.seconds_to_add(store)
        chance = random.Random(15)
        results = [self.make_result(f"run-{count}", LINES, count) for count in range(KILLS)]
        killed = 0
        for result in results:
            with self.adding(store, result) as program:
                time.sleep(chance.uniform(0, 1.2 * whole))
                program.send_signal(signal.SIGKILL)
                killed += program.wait(support.TIMEOUT) == -signal.SIGKILL
            self.require_whole(store)
        kept = len(self.runs(store)) - 1
        print(f"{killed} of {KILLS} were killed at work, {kept} runs were kept; one add takes {whole * 1000:.0f} ms")
        # Else nothing was tested.
        self.assertGreater(killed, KILLS // 10)
        self.assertGreater(kept, KILLS // 20)
        self.assertGreaterEqual(kept, KILLS - killed)
        self.history(store, "add", *results)
        runs = self.runs(store)
        self.assertEqual(KILLS + 1, len(runs))
        self.assertEqual(KILLS + 1, len({run["hash"] for run in runs}))
        self.require_whole(store)


class KilledTest(Killed, support.HistoryTest):
    kind = support.FileStores


class KilledOnServerTest(Killed, support.HistoryTest):
    kind = support.ServerStores


class Together:
    kind = None
    PROCESSES = 8
    RUNS = 5

    def test_eight_that_add_at_once_lose_and_double_nothing(self):
        """Each adds runs of its own and some that all add."""
        store = self.stores(self.kind).new()
        shared = [self.make_result(f"shared-{count}", 50, 1000 + count) for count in range(self.RUNS)]
        programs = []
        for process in range(self.PROCESSES):
            own = [self.make_result(f"own-{process}-{count}", 50, process * 10 + count) for count in range(self.RUNS)]
            mixed = [run for pair in zip(own, shared) for run in pair]
            programs.append(subprocess.Popen(
                [support.BENCH, "history", "add", *mixed, "--store", store], stdout=subprocess.PIPE,
                stderr=subprocess.PIPE, env=support.environment(), text=True))
        said = ""
        for program in programs:
            out, err = program.communicate(timeout=support.TIMEOUT)
            self.assertEqual((0, ""), (program.returncode, err))
            said += out
        runs = self.runs(store)
        self.assertEqual(self.RUNS * (self.PROCESSES + 1), len(runs))
        self.assertEqual(len(runs), len({run["hash"] for run in runs}))
        self.assertEqual(len(runs), said.count("Kept result") + said.count("Kept own") + said.count("Kept shared"))
        self.assertEqual(self.RUNS * (self.PROCESSES - 1), said.count("Kept already: "))
        self.require_whole(store)


class TogetherTest(Together, support.HistoryTest):
    kind = support.FileStores


class TogetherOnServerTest(Together, support.HistoryTest):
    kind = support.ServerStores


class StorageTest(support.HistoryTest):
    """In a namespace of its own for disks, which end with it."""

    @contextlib.contextmanager
    def small_disk(self, kilobytes):
        place = self.folder / "disk"
        place.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={kilobytes}k", "tmpfs", place], check=True)
        try:
            yield place
        finally:
            subprocess.run(["umount", place], check=True)

    def test_a_full_disk_is_told_and_harms_nothing_that_is_kept(self):
        small, large = self.make_result("small", 5, 1), self.make_result("large", 20_000, 2)
        with self.small_disk(400) as disk:
            store = str(disk / "history.db")
            self.history(store, "add", small)
            said = self.history(store, "add", large, expected=2)
            self.assertIn("full", said)
            self.assertEqual(1, len(said.strip().splitlines()), said)
            self.assertEqual(["small"], [run["name"] for run in self.runs(store)])
            self.require_whole(store)
            self.assertEqual(["history.db"], os.listdir(disk))

    def test_a_disk_that_can_only_be_read_is_read(self):
        result, other = self.make_result("one", 5, 1), self.make_result("two", 5, 2)
        with self.small_disk(1000) as disk:
            store = str(disk / "history.db")
            self.history(store, "add", result)
            subprocess.run(["mount", "-o", "remount,bind,ro", disk], check=True)
            self.assertEqual(1, len(self.runs(store)))
            self.require_whole(store)
            said = self.history(store, "add", other, expected=2)
            self.assertEqual(1, len(said.strip().splitlines()), said)
            self.assertRegex(said, "read|permission")
            self.history(store, "remove", self.runs(store)[0]["hash"], "--yes", expected=2)
            self.assertEqual(1, len(self.runs(store)))

    def test_a_file_of_something_else_is_not_changed(self):
        store = self.folder / "history.db"
        for content in (b"Band,Chains\n5,A\n" * 100, b"SQLite format 3\0" + b"x" * 5000):
            store.write_bytes(content)
            for arguments in (("list",), ("add", self.make_result(f"run-{len(content)}", 2)), ("check",)):
                said = self.history(str(store), *arguments, expected=2)
                self.assertEqual(1, len(said.strip().splitlines()), said)
            self.assertEqual(content, store.read_bytes())

    def test_a_folder_and_a_place_that_is_not_there_are_told(self):
        result = self.make_result("one", 2)
        for store in (self.folder, self.folder / "none" / "history.db"):
            said = self.history(str(store), "add", result, expected=2)
            self.assertEqual(1, len(said.strip().splitlines()), said)

    def test_a_damaged_file_is_found(self):
        store = pathlib.Path(support.FileStores(self.folder).new())
        self.history(str(store), "add", self.make_result("one", 2000, 1), self.make_result("two", 2000, 2))
        content = store.read_bytes()
        found = 0
        chance = random.Random(1)
        for _ in range(20):
            place = chance.randrange(4096, len(content) - 256)
            damaged = content[:place] + bytes(256) + content[place + 256:]
            if damaged == content:
                continue
            store.write_bytes(damaged)
            ended = subprocess.run([support.BENCH, "history", "check", "--store", store], capture_output=True,
                                   timeout=support.TIMEOUT, env=support.environment())
            self.assertIn(ended.returncode, (0, 1, 2), ended)
            found += ended.returncode != 0
        print(f"{found} of 20 damages were found")
        self.assertGreaterEqual(found, 18)


class Hostile:
    kind = None
    TEXTS = ["'; DROP TABLE runs; --", "\"", "$1", "%s%n", "\x1b[2J", "a\tb\nc", "\udcff", "Ü", "", "a b", "NULL", "\u202e",
             "base64:", "x" * 5000]

    def test_hostile_texts_come_back_as_they_are(self):
        store = self.stores(self.kind).new()
        expected = set()
        for count, text in enumerate(self.TEXTS):
            given = text or "-"
            self.history(store, "add", self.make_result(f"run-{count}", 1, count), "--bench", given, "--device", given,
                         "--firmware", given, "--note", given)
            # JSON has no other bytes than those of UTF-8.
            expected.add(given.replace("\udcff", "\ufffd"))
        runs = self.runs(store)
        self.assertEqual(len(self.TEXTS), len(runs))
        for key in ("bench", "device", "firmware", "note"):
            self.assertEqual(expected, {run[key] for run in runs})
        for text in filter(None, self.TEXTS):
            self.assertEqual(1, len(self.runs(store, "--bench", text, "--firmware", text)), repr(text))
        shown = self.history(store, "list")
        self.assertNotIn("\x1b", shown)
        self.assertNotIn("\u202e", shown)
        self.require_whole(store)

    def test_hostile_cells_are_data(self):
        store = self.stores(self.kind).new()
        folder = self.folder / "hostile"
        folder.mkdir()
        content = support.HEADER.encode() + b"');DELETE FROM runs;--,A\xff,\x01,1,NA\n" + b"\"$1\",B,%s,NA,2\n"
        (folder / "result.csv").write_bytes(content)
        self.history(store, "add", folder)
        self.require_whole(store)
        [run] = self.runs(store)
        self.history(store, "export", run["hash"][:8], "-o", self.folder / "back")
        self.assertEqual(content, (self.folder / "back/result.csv").read_bytes())

    def test_a_run_in_a_folder_of_any_name_is_kept_by_that_name(self):
        store = self.stores(self.kind).new()
        for count, name in enumerate(["'; --", "a b", "ü\n", "\udcff"]):
            self.history(store, "add", self.make_result(name, 1, count))
        self.assertEqual(4, len(self.runs(store)))
        self.assertEqual(1, len(self.runs(store, "--file", "'; --")))


class HostileTest(Hostile, support.HistoryTest):
    kind = support.FileStores


class HostileOnServerTest(Hostile, support.HistoryTest):
    kind = support.ServerStores


class ServerTest(support.HistoryTest):
    def test_a_server_that_is_lost_is_told_without_its_password(self):
        stores = self.stores(support.ServerStores)
        store = stores.new()
        self.history(store, "add", self.make_result("one", 5, 1))
        adding = subprocess.Popen(
            [support.BENCH, "history", "add", self.make_result("large", 30_000, 2), "--store", store],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=support.environment())
        log = stores.folder / "server.log"
        statement = b"INSERT INTO result_lines"
        earlier = log.read_bytes().count(statement)
        end = time.monotonic() + support.TIMEOUT
        while log.read_bytes().count(statement) == earlier:
            self.assertLess(time.monotonic(), end)
            time.sleep(0.01)
        stores.server.send_signal(signal.SIGQUIT)
        out, err = adding.communicate(timeout=support.TIMEOUT)
        stores.server.wait(support.TIMEOUT)
        stores.log.close()
        self.assertEqual((2, ""), (adding.returncode, out), err)
        gone = self.history(store, "list", expected=2)
        for said in (err, gone):
            self.assertEqual(1, len(said.strip().splitlines()), said)
            self.assertNotIn(stores.PASSWORD, said)
            self.assertIn(f"127.0.0.1:{stores.port}", said)
        stores.start()
        self.assertEqual(["one"], [run["name"] for run in self.runs(store)])
        self.require_whole(store)
        self.assertNotIn(stores.PASSWORD, log.read_text())

    def test_a_password_reaches_no_output(self):
        stores = self.stores(support.ServerStores)
        store = stores.new().replace(stores.PASSWORD, "wr0ng")
        for arguments in (("list",), ("add", self.make_result("one", 1)), ("check",), ("show", "abcd")):
            said = self.history(store, *arguments, expected=2)
            self.assertNotIn("wr0ng", said)
            self.assertEqual(1, len(said.strip().splitlines()), said)


class UsualStoreTest(support.HistoryTest):
    def call(self, *arguments, **variables):
        return subprocess.run([support.BENCH, "history", *map(str, arguments)], capture_output=True, text=True,
                              timeout=support.TIMEOUT, env={**support.environment(), **variables})

    def test_without_a_store_nothing_is_kept_yet(self):
        listed = self.call("list", XDG_DATA_HOME=str(self.folder))
        self.assertEqual((0, "No run is kept yet.\n", ""), (listed.returncode, listed.stdout, listed.stderr))
        self.assertEqual(2, self.call("show", "abcd", XDG_DATA_HOME=str(self.folder)).returncode)
        self.assertEqual([], os.listdir(self.folder))

    def test_it_is_in_the_users_folder_for_data_unless_a_variable_names_it(self):
        result = self.make_result("one", 1)
        for variables, place in (({"XDG_DATA_HOME": str(self.folder / "data")}, "data/sarvextool/history.db"),
                                 ({"HOME": str(self.folder / "home")}, "home/.local/share/sarvextool/history.db"),
                                 ({"SARVEXTOOL_STORE": str(self.folder / "own.db")}, "own.db")):
            added = self.call("add", result, **variables)
            self.assertEqual((0, ""), (added.returncode, added.stderr))
            self.assertTrue((self.folder / place).is_file(), place)
            self.assertIn("1 run.", self.call("list", **variables).stdout)


if __name__ == "__main__":
    if "StorageTest" in sys.argv:
        support.get_disks_of_its_own()
    unittest.main()
