"""From where a sweep works, by which names, and with which scripts around it, tried with the engine that needs no
daemons of its own."""
import os
import pathlib
import shutil
import subprocess
import unittest

import support

load_tests = support.load_tests


class Places(support.FarmTest):
    def setUp(self):
        super().setUp()
        self.start_devices(2)

    def copy_farm(self, name):
        farm = self.folder / name
        shutil.copytree(support.ROOT / "farm", farm)
        return farm

    def sweep_of(self, farm, plan, *options, cwd=None):
        return subprocess.run([farm / "parallel/sweep", plan, "--table", self.table, *options, "--", "--client",
                               support.CLIENT], cwd=cwd or self.folder, env=self.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False, timeout=600)

    def test_a_chunk_of_which_nothing_was_run_is_repeated(self):
        farm = self.copy_farm("farm")
        # Its own failure, as where it cannot fork.
        (farm / "run-chunk").write_text('#!/bin/sh\nmkdir "$1/$2-failed" 2>/dev/null && exit 1\n'
                                        f'exec "{support.ROOT}/farm/run-chunk" "$@"\n')
        plan = self.write_plan(20)
        self.expect(0, self.sweep_of(farm, plan, "--lines", "5"))
        self.expect_whole_result(plan)
        self.assertEqual(4, len(list(self.sweep_folder().glob("*-failed"))))

    def test_names_that_begin_with_a_hyphen_are_no_options(self):
        plan = self.write_plan(20)
        (self.folder / "-t").write_text(self.table.read_text())
        self.expect(0, self.sweep(plan, "--table", "-t", "--out", "-a"))
        self.assertEqual(self.client_alone(plan)[0], (self.folder / "-a/merged/result.csv").read_bytes())

    def test_it_works_from_its_own_folder_with_a_path_for_cd(self):
        farm = self.copy_farm("place/farm")
        self.environment["CDPATH"] = str(self.folder / "place")
        plan = self.write_plan(20)
        done = self.sweep_of(pathlib.Path("farm"), plan, "--out", self.sweep_folder(), cwd=farm.parent)
        self.expect(0, done)
        self.expect_whole_result(plan)

    def test_it_works_from_a_folder_with_any_name(self):
        farm = self.copy_farm("a farm; $HOME & 'more' \"than\" that {} {%}")
        plan = self.write_plan(20)
        self.expect(0, self.sweep_of(farm, plan))
        self.expect_whole_result(plan)

    def test_a_client_is_the_same_by_any_of_its_names(self):
        plan = self.write_plan(20)
        other = self.folder / "other"
        other.mkdir()
        for folder in (self.folder, other):
            shutil.copy(support.CLIENT, folder / "c")
        self.expect(0, self.sweep(plan, "--lines", "10", client="./c"))
        shutil.rmtree(self.sweep_folder() / "merged")
        shutil.rmtree(self.sweep_folder() / "runs/chunk-0002/1")
        # The other one in the place where the first one was named so.
        os.rename(self.folder / "c", self.folder / "first")
        (self.folder / "c").symlink_to(other / "c")
        done = self.expect(2, self.sweep(plan, client="./c"))
        self.assertIn(f"--client '{self.folder}/c' ; now: --client '{other}/c' ;", done.stderr)
        os.replace(self.folder / "first", self.folder / "c")
        self.expect(0, self.sweep(plan, client=self.folder / "other/../c"))
        self.expect_whole_result(plan)


if __name__ == "__main__":
    unittest.main()
