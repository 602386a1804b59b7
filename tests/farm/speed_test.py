"""How much faster four benches are than one: from the call of the sweep to its exit, and from the call of a
single run to its exit. To be measured on a machine that does nothing else; scripts/test-farm --long does it."""
import subprocess
import time
import unittest

import support
from support import LONG

LINES = 2000
LATENCY = 50


@unittest.skipUnless(LONG, "takes six minutes")
class Speed(support.FarmTest):
    def seconds_of(self, command):
        started = time.monotonic()
        done = subprocess.run(command, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False, timeout=900)
        self.assertEqual(0, done.returncode, done.stderr)
        return time.monotonic() - started

    def test_four_benches_are_at_least_3_4_times_as_fast_as_one(self):
        self.start_devices(4, LATENCY)
        self.start_slurm([device.name for device in self.devices])
        plan = self.write_plan(LINES)
        one = self.seconds_of([support.PROGRAMS / "SarvexToolBench", "run", plan, "--out", self.folder / "one",
                               "--daemon", self.devices[0].daemon, "--client", support.CLIENT])
        print(f"\none bench, SarvexToolBench run: {one:.1f} s")
        for engine, sweep in support.SWEEPS.items():
            with self.subTest(engine=engine):
                four = self.seconds_of([sweep, plan, "--table", self.table, "--out", self.folder / engine, "--",
                                        "--client", support.CLIENT])
                print(f"four benches, {engine}: {four:.1f} s, {one / four:.2f} times as fast")
                self.assertGreaterEqual(one / four, 3.4)


if __name__ == "__main__":
    unittest.main()
