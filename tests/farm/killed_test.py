"""What becomes of a sweep whose GNU parallel is killed, with and without the sweep itself."""
import contextlib
import fcntl
import os
import signal
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
        self.assertIn(f" lines: GNU parallel has ended early; {self.sweep_folder(name)}/log/parallel.log tells why.\n",
                      done.stdout)
        self.assertNotIn("Killed", done.stderr)

    def wait_for_the_jobs(self):
        mark = f"SARVEX_LOCKS={self.folder}/locks"
        wait_until(lambda: not list(support.processes_with(mark)), "all jobs have ended")

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
                self.wait_for_the_jobs()
                self.assertEqual(before, [device.commands() for device in self.devices])
                self.expect(0, self.sweep(plan))
                self.expect_whole_result(plan, name)


if __name__ == "__main__":
    unittest.main()
