"""What becomes of a sweep whose GNU parallel is killed, with and without the sweep itself."""
import contextlib
import fcntl
import json
import os
import signal
import time
import unittest

import support
from support import wait_until

load_tests = support.load_tests


class KilledParallel(support.FarmTest):
    def setUp(self):
        super().setUp()
        self.start_devices(2)

    def parallel(self, name="plan"):
        """The process that gives the jobs out; the lock of the folder tells it."""
        file = self.sweep_folder(name) / "sweep.lock"
        lines = file.read_text().splitlines() if file.exists() else []
        return int(lines[1]) if len(lines) == 2 else None

    def kill_parallel(self, number, name="plan"):
        parallel = wait_until(lambda: self.parallel(name), "parallel has begun")
        os.kill(parallel, number)
        wait_until(lambda: not support.is_alive(parallel), "parallel has ended")

    def expect_early_end(self, sweep, name="plan"):
        done = self.expect(3, self.finish(sweep))
        self.assertIn(f" lines: GNU parallel has ended early, or was killed; what it has told is in "
                      f"{self.sweep_folder(name)}/log/parallel.log.\n",
                      done.stdout)
        self.assertNotIn("Killed", done.stderr)

    def jobs(self):
        return list(support.processes_with(f"SARVEX_LOCKS={self.folder}/locks"))

    def outcomes(self, name="plan"):
        """Of a run that was ended by force there is none."""
        return [json.loads((run / "run.json").read_text())["outcome"]
                for run in sorted(self.sweep_folder(name).glob("runs/*/[0-9]"))]

    def test_jobs_that_wait_for_their_benches_begin_no_run(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            name = number.name
            plan = self.write_plan(40, f"{name}.csv")
            before = [device.commands() for device in self.devices]
            with self.subTest(name):
                with contextlib.ExitStack() as locks:
                    for device in self.devices:
                        lock = self.folder / f"locks/sarvextool-{device.daemon.replace(':', '%')}.lock"
                        fcntl.flock(locks.enter_context(open(lock, "w", encoding="ascii")), fcntl.LOCK_EX)
                    sweep = self.start_sweep(plan, "--lines", "10")
                    logs = self.sweep_folder(name) / "log"
                    wait_until(lambda: 2 == sum("waiting for it" in file.read_text() for file in logs.glob("chunk-*")),
                               "both benches are in use")
                    self.kill_parallel(number, name)
                    self.expect_early_end(sweep, name)
                    # While their benches were in use.
                    self.assertEqual([], self.jobs())
                self.assertEqual(before, [device.commands() for device in self.devices])
                self.expect(0, self.sweep(plan))
                self.expect_whole_result(plan, name)

    def test_runs_are_not_ended_by_force_and_the_sweep_stops_them(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            name = number.name
            plan = self.write_plan(400, f"{name}.csv")
            with self.subTest(name):
                # So many that no run ends in a second.
                sweep = self.start_sweep(plan, "--lines", "200")
                # Then no stop is answered.
                self.halt_all()
                self.kill_parallel(number, name)
                wait_until((self.sweep_folder(name) / "stopped").exists, "the sweep has noticed it")
                time.sleep(1)
                self.let_all_go_on()
                self.expect_early_end(sweep, name)
                # A bench may have completed a chunk before the other one transmitted.
                ended = [outcome for outcome in self.outcomes(name) if outcome != "complete"]
                self.assertEqual(["it was interrupted"] * 2, ended)
                self.expect_all_off()
                self.expect(0, self.sweep(plan))
                self.expect_whole_result(plan, name)

    def test_runs_without_a_sweep_are_completed_and_then_the_next_call_goes_on(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            name = number.name
            plan = self.write_plan(200, f"{name}.csv")
            with self.subTest(name):
                sweep = self.start_sweep(plan, "--lines", "25")
                self.halt_all()
                sweep.kill()
                sweep.wait()
                self.kill_parallel(number, name)
                done = self.expect(2, self.sweep(plan))
                self.assertIn(" is under way: its call has ended, and something that it has begun has not\n",
                              done.stderr)
                self.let_all_go_on()
                wait_until(lambda: not self.jobs(), "all jobs have ended")
                self.assertEqual({"complete"}, set(self.outcomes(name)))
                self.assertLess(len(self.runs(name)), 8)
                self.expect(0, self.sweep(plan))
                self.assertEqual(8, len(self.runs(name)))
                self.expect_whole_result(plan, name)

    def test_one_that_was_killed_while_it_counted_what_the_host_can_do_leaves_the_folder_free(self):
        # For that it begins processes that sleep for hours, and ends them at once.
        path = self.environment["PATH"]
        self.addCleanup(lambda: [support.kill(process) for process in self.jobs()])
        for name, killed in (("alone", "$$"), ("with-the-sweep", "$PPID $$")):
            with self.subTest(name):
                self.environment["PATH"] = path
                # The sweep has then written which process it is.
                self.put_before("parallel", "[ $# -eq 1 ] || { sleep 10101 &\n"
                                            "until [ $(wc -l <$SWEEP_DIR/sweep.lock) = 2 ]; do sleep .1; done\n"
                                            f"kill -KILL {killed}; }}")
                plan = self.write_plan(20, f"{name}.csv")
                sweep = self.start_sweep(plan)
                if name == "alone":
                    self.expect_early_end(sweep, name)
                else:
                    self.assertEqual(-signal.SIGKILL, sweep.wait(60))
                    self.assertIn("sleep\x0010101\0", map(support.command_of, self.jobs()))
                self.environment["PATH"] = path
                self.expect(0, self.sweep(plan))
                self.expect_whole_result(plan, name)
                wait_until(lambda: not self.jobs(), "nothing is left")


if __name__ == "__main__":
    unittest.main()
