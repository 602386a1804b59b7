"""What becomes of a bench that an earlier call could not stop: its note is kept until its own daemon has confirmed
a stop, and each call that ends with one open has the code 4 and names the bench last."""
import fcntl
import os
import shutil
import signal
import subprocess
import unittest

import support
from support import ROOT

load_tests = support.load_tests

REFUSED_STOP = ("--fault", "text=-wifi-stop:return-code=7")


class StopTest(support.FarmTest):
    def restart(self, device, *options):
        device.end()
        device.start(*options)

    def write_table(self, **devices):
        self.table.write_text("".join(f"{bench} {device.daemon} DUT\n" for bench, device in devices.items()))

    def note_file(self, bench):
        return self.sweep_folder() / "benches" / bench / "running"

    def write_note(self, bench, text):
        """As a call has left it that was killed."""
        self.note_file(bench).parent.mkdir(parents=True, exist_ok=True)
        (self.sweep_folder() / "sweep.lock").touch()
        self.note_file(bench).write_text(text)

    def note(self, bench, daemon, host=os.uname().nodename):
        self.write_note(bench, f"{host} 0 0 chunk-0001/1 {daemon}\n")

    def fast_sweep(self, plan, *options):
        return self.sweep(plan, *options, wait=1, run_options=["--stop-timeout", "1"])

    def expect_open(self, bench, daemon, done, host=os.uname().nodename):
        self.expect(4, done)
        self.assertTrue(done.stderr.endswith(
            f"sweep: switch the device of {bench} off, or on {host}: SarvexToolBench stop --daemon {daemon}\n"
            f"sweep: these benches may still be transmitting: {bench}\n"), done.stderr)
        self.assertTrue(self.note_file(bench).exists())

    def expect_stopped(self, bench, device):
        self.assertEqual(["-wifi-stop"], [command.split()[-1] for command in device.commands()])
        self.assertFalse(self.note_file(bench).exists())


class Notes(StopTest):
    def test_a_bench_with_another_daemon_by_now_is_stopped_at_the_one_that_it_had(self):
        self.start_devices(2)
        old, new = self.devices
        plan = self.write_plan(12)
        self.restart(old, *REFUSED_STOP)
        self.write_table(bench3=old)
        self.expect_open("bench3", old.daemon, self.fast_sweep(plan))
        self.write_table(bench3=new)
        self.expect_open("bench3", old.daemon, self.fast_sweep(plan))
        self.assertEqual([], new.commands())
        self.restart(old)
        before = len(old.commands())
        self.expect(0, self.fast_sweep(plan))
        self.assertEqual(["-wifi-stop"], [command.split()[-1] for command in old.commands()[before:]])
        self.assertFalse(self.note_file("bench3").exists())
        self.expect_whole_result(plan)
        self.expect_all_off()

    def test_benches_that_have_changed_their_daemons_wait_for_each_others_and_not_for_ever(self):
        self.start_devices(2, latency=20)
        one, two = self.devices
        self.note("bench1", two.daemon)
        self.note("bench2", one.daemon)
        plan = self.write_plan(60)
        self.expect(0, self.sweep(plan, "--lines", "15"))
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()
        self.expect_all_off()

    def test_a_bench_that_the_table_lacks_is_stopped_too(self):
        self.start_devices(2)
        self.write_table(bench1=self.devices[0])
        self.note("bench2", self.devices[1].daemon)
        plan = self.write_plan(12)
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.expect_stopped("bench2", self.devices[1])

    def test_a_complete_sweep_is_called_until_its_benches_are_stopped(self):
        self.start_devices(2)
        self.write_table(bench1=self.devices[0])
        broken = self.devices[1]
        self.restart(broken, *REFUSED_STOP)
        self.note("bench2", broken.daemon)
        plan = self.write_plan(12)
        plan.write_text(plan.read_text() + "2.4,A,20,100,HE,MCS0,SISO,242,0,none\n")
        self.expect_open("bench2", broken.daemon, self.fast_sweep(plan))
        self.expect_whole_result(plan)
        complete = f"this sweep is complete, its result is in {self.sweep_folder()}/merged"
        done = self.fast_sweep(plan)
        self.assertIn(complete, done.stderr)
        self.expect_open("bench2", broken.daemon, done)
        self.restart(broken)
        # What the first call would have ended with: a line was refused.
        done = self.expect(1, self.fast_sweep(plan))
        self.assertIn(complete, done.stderr)
        self.assertFalse(self.note_file("bench2").exists())
        done = self.expect(2, self.fast_sweep(plan))
        self.assertIn(complete, done.stderr)

    def test_a_daemon_that_another_host_has_for_its_own_is_not_taken_for_this_hosts(self):
        self.start_devices(2)
        self.write_table(bench1=self.devices[0])
        self.note("bench2", self.devices[1].daemon, "elsewhere")
        self.expect_open("bench2", self.devices[1].daemon, self.sweep(self.write_plan(12)), "elsewhere")
        self.assertEqual([], self.devices[1].commands())

    def test_a_note_without_words_is_of_the_tables_daemon(self):
        self.start_devices(2)
        self.write_note("bench2", "")
        plan = self.write_plan(12)
        self.expect(0, self.sweep(plan, "--benches", "1"))
        self.expect_stopped("bench2", self.devices[1])

    def test_a_call_that_is_refused_stops_what_is_left_from_before(self):
        self.start_devices(2)
        self.note("bench2", self.devices[1].daemon)
        (self.sweep_folder() / "manifest.json").touch()
        (self.sweep_folder() / "plan.csv").write_text("another one")
        plan = self.write_plan(12)
        done = self.expect(2, self.sweep(plan))
        self.assertIn("has changed since the sweep", done.stderr)
        self.expect_stopped("bench2", self.devices[1])
        self.restart(self.devices[1], *REFUSED_STOP)
        self.note("bench2", self.devices[1].daemon)
        self.table.write_text("bench1\n")
        done = self.fast_sweep(plan)
        self.assertIn("a line needs NAME DAEMON DEVICE", done.stderr)
        self.expect_open("bench2", self.devices[1].daemon, done)

    def test_ctrl_c_during_the_last_stop_waits_for_it(self):
        self.start_devices(2)
        self.write_table(bench1=self.devices[0])
        slow = self.devices[1]
        self.restart(slow, "--fault", "text=-wifi-stop:delay=4000")
        self.note("bench2", slow.daemon)
        plan = self.write_plan(12)
        sweep = self.start_sweep(plan, run_options=["--stop-timeout", "20"])
        self.assertTrue(any("stopping the transmissions of bench2" in line for line in sweep.stderr))
        support.wait_until(slow.commands, "the stop has begun")
        os.killpg(sweep.pid, signal.SIGINT)
        done = self.expect(0, self.finish(sweep))
        self.assertIn("stopping; this takes until all transmitters are off", done.stderr)
        self.expect_stopped("bench2", slow)
        self.expect_whole_result(plan)

    def test_the_last_stop_takes_the_time_that_the_runs_have_for_theirs(self):
        self.start_devices(2)
        self.write_table(bench1=self.devices[0])
        self.note("bench2", self.devices[1].daemon)
        told = self.folder / "told"
        program = self.folder / "programs/SarvexToolBench"
        program.parent.mkdir()
        program.write_text(f'#!/bin/sh\n[ "$1" != stop ] || echo "$@" >>"{told}"\n'
                           f'exec "{support.PROGRAMS}/SarvexToolBench" "$@"\n')
        program.chmod(0o755)
        self.environment["PATH"] = f"{program.parent}:{self.environment['PATH']}"
        self.expect(0, self.sweep(self.write_plan(12), run_options=["--stop-timeout=2.5"]))
        self.assertEqual(f"stop --daemon {self.devices[1].daemon} --stop-timeout 2.5\n", told.read_text())


class SlurmNotes(StopTest):
    engine = "slurm"

    def test_jobs_that_slurm_refuses_leave_no_bench_transmitting(self):
        self.start_farm(2)
        # As sbatch does for an array that is too large.
        self.put_before("sbatch", "echo 'sbatch: error: Batch job submission failed: Invalid array' >&2; exit 1")
        plan = self.write_plan(12)
        self.note("bench1", self.devices[0].daemon)
        done = self.expect(2, self.sweep(plan))
        self.assertIn("Slurm has not accepted the jobs: sbatch: error: Batch job submission failed", done.stdout)
        self.expect_stopped("bench1", self.devices[0])
        self.restart(self.devices[0], *REFUSED_STOP)
        self.note("bench1", self.devices[0].daemon)
        self.expect_open("bench1", self.devices[0].daemon, self.fast_sweep(plan))

    def test_jobs_that_slurm_has_taken_and_not_confirmed_are_ended(self):
        self.start_farm(2, latency=20)
        # As sbatch does when the controller answers too late.
        transmits = f"grep -q wifi-start '{self.devices[0].log_file}'"
        self.put_before("sbatch", f"[[ $* = *--array* ]] || exec {shutil.which('sbatch')} \"$@\"\n"
                                  f"{shutil.which('sbatch')} \"$@\"; until {transmits}; do sleep .1; done\n"
                                  "echo 'sbatch: error: Batch job submission failed: Socket timed out' >&2; exit 1")
        done = self.expect(2, self.sweep(self.write_plan(400), "--lines", "50"))
        self.assertIn(" of 400 lines: Slurm has not accepted the jobs: ", done.stdout)
        self.assertIn("sbatch: error: Batch job submission failed: Socket timed out", done.stdout)
        self.assertIn("\nsweep: Slurm has not accepted the jobs; waiting until it has none of them\n", done.stderr)
        self.assertEqual([], self.slurm.jobs())
        self.assertEqual([], list(self.slurm.processes_of_jobs()))
        self.assertLess(self.rows(), 200)
        self.expect_all_off()

    def test_a_bench_of_another_host_is_stopped_by_a_job_there(self):
        self.start_farm(2)
        self.put_before("uname", "[ -z \"${SLURM_JOB_ID:-}\" ] || { echo node; exit; }")
        plan = self.write_plan(12)
        self.expect(0, self.sweep(plan))
        self.note("bench1", self.devices[0].daemon, "node")
        before = len(self.devices[0].commands())
        done = self.expect(0, self.fast_sweep(plan))
        self.assertIn("stopping the transmissions of bench1\n", done.stderr)
        self.assertEqual(["-wifi-stop"], [command.split()[-1] for command in self.devices[0].commands()[before:]])
        self.assertFalse(self.note_file("bench1").exists())
        self.assertIn("has confirmed the stop", (self.sweep_folder() / "log/stop-bench1.log").read_text())
        # A job cannot go there while its node is out of use.
        self.slurm.ask("scontrol", "update", "NodeName=bench1", "State=DRAIN", "Reason=maintenance")
        self.note("bench1", self.devices[0].daemon, "node")
        done = self.fast_sweep(plan)
        self.assertIn("sweep: bench1 is out of use in Slurm: a job can stop it after scontrol update NodeName=bench1 "
                      "State=RESUME\n", done.stderr)
        self.expect_open("bench1", self.devices[0].daemon, done, "node")
        self.slurm.ask("scontrol", "update", "NodeName=bench1", "State=RESUME")
        self.expect(0, self.fast_sweep(plan))
        self.assertFalse(self.note_file("bench1").exists())


class Chunk(support.FarmTest):
    """run-chunk without a sweep around it."""

    def setUp(self):
        super().setUp()
        self.start_devices(1)
        self.sweep_dir = self.folder / "a sweep"
        subprocess.run([support.PROGRAMS / "SarvexToolBench", "split", self.write_plan(10), "--lines", "5", "-o",
                        self.sweep_dir], check=True, capture_output=True)
        (self.sweep_dir / "bench-table").write_text(self.table.read_text())
        self.programs = self.folder / "programs"
        self.programs.mkdir()

    def run_chunk(self, *options, before=()):
        command = [*before, ROOT / "farm/run-chunk", self.sweep_dir, "chunk-0001", "bench1", "--", *options]
        return subprocess.run(command, env=self.environment, cwd=self.folder, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)

    def install(self, *names):
        for name in names:
            shutil.copy(support.PROGRAMS / name, self.programs / name.replace("WithoutPauses", ""))
        self.environment["PATH"] = f"{self.programs}:{os.environ['PATH']}"

    def expect_bench_fails(self, words, done):
        self.assertEqual(3, done.returncode, done.stderr)
        self.assertEqual((f"run-chunk: {words}\n", f"{words}\n"),
                         (done.stderr, (self.sweep_dir / "benches/bench1/why").read_text()))
        self.assertEqual("1\n", (self.sweep_dir / "benches/bench1/failures").read_text())
        (self.sweep_dir / "benches/bench1/failures").unlink()
        self.assertFalse((self.sweep_dir / "stopped").exists())
        self.assertEqual([], self.devices[0].commands())

    def test_a_host_without_the_client_is_a_failure_of_its_bench(self):
        self.install("SarvexToolBench")
        self.expect_bench_fails(f"the host of bench1 has no client {self.programs}/SarvexToolClient", self.run_chunk())
        self.expect_bench_fails("the host of bench1 has no client ./none", self.run_chunk("--client", "./none"))
        self.expect_bench_fails("the host of bench1 has no limits none.csv",
                                self.run_chunk(f"--client={support.CLIENT}", "--limits=none.csv"))
        self.install(support.CLIENT.name)
        self.assertEqual(0, self.run_chunk().returncode)

    def test_a_host_without_the_program_is_a_failure_of_its_bench(self):
        self.environment["PATH"] = "/usr/bin:/bin"
        self.expect_bench_fails(f"SarvexToolBench is neither in {ROOT} nor on the PATH", self.run_chunk())

    def test_a_host_without_a_port_is_a_failure_of_its_bench(self):
        (self.sweep_dir / "bench-table").write_text("bench1 127.0.0.1 DUT-1\n")
        self.install("SarvexToolBench", support.CLIENT.name)
        port_file = self.programs / "Socket.cfg"
        words = f"the host of bench1 has no port in {port_file}, and the table none after 127.0.0.1"
        self.expect_bench_fails(words, self.run_chunk())
        port_file.write_text("none")
        self.expect_bench_fails(words, self.run_chunk())
        port_file.write_text(str(self.devices[0].port))
        done = self.run_chunk()
        self.assertEqual(0, done.returncode, done.stderr)

    def test_a_host_on_which_somebody_has_the_folder_of_the_locks_is_a_failure_of_its_bench(self):
        # A user of a number that nobody has.
        user = 1_000_000_000 + os.getpid()
        folder = f"/tmp/SarvexToolBench-{user}"
        done = self.run_chunk("--client", support.CLIENT, before=["unshare", "--user", f"--map-user={user}"])
        self.addCleanup(shutil.rmtree, folder, True)
        self.assertEqual(0, done.returncode, done.stderr)
        os.chmod(folder, 0o755)
        before = self.devices[0].commands()
        shutil.rmtree(self.sweep_dir / "runs/chunk-0001")
        done = self.run_chunk("--client", support.CLIENT, before=["unshare", "--user", f"--map-user={user}"])
        self.assertEqual(3, done.returncode, done.stderr)
        self.assertEqual(f"run-chunk: {folder} on the host of bench1 is not a folder of this user alone\n", done.stderr)
        self.assertFalse((self.sweep_dir / "stopped").exists())
        self.assertEqual(before, self.devices[0].commands())

    def test_a_sweep_that_stops_between_the_look_and_the_note_begins_no_run(self):
        self.put_before("df", f"echo 'it was interrupted' >'{self.sweep_dir}/stopped'")
        done = self.run_chunk("--client", support.CLIENT)
        self.assertEqual((3, "run-chunk: the sweep was stopped: it was interrupted\n"), (done.returncode, done.stderr))
        self.assertFalse((self.sweep_dir / "benches/bench1/running").exists())
        self.assertEqual([], self.devices[0].commands())

    def test_a_count_of_failures_that_had_no_room_takes_no_bench_out(self):
        state = self.sweep_dir / "benches/bench1"
        state.mkdir(parents=True)
        (state / "failures").touch()
        (state / "why").write_text("it failed\n")
        (self.sweep_dir / "log").mkdir()
        (self.sweep_dir / "bench-list").write_text("1/bench1\n1/bench2\n")
        # So this chunk neither fails nor is measured.
        (self.sweep_dir / "stopped").write_text("it was interrupted\n")
        self.environment.update(SWEEP_FARM=str(ROOT / "farm"), SWEEP_DIR=str(self.sweep_dir), PARALLEL_SSHHOST="bench1",
                                SWEEP_OPTIONS=f"--client '{support.CLIENT}'")
        done = subprocess.run([ROOT / "farm/parallel/chunk", "chunk-0001"], env=self.environment, cwd=self.folder,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
        self.assertEqual((3, "", "run-chunk: the sweep was stopped: it was interrupted\n"),
                         (done.returncode, done.stderr, (self.sweep_dir / "log/chunk-0001.log").read_text()))
        self.assertFalse((state / "out").exists())
        self.assertEqual("1/bench1\n1/bench2\n", (self.sweep_dir / "bench-list").read_text())

    def test_a_stop_that_waits_in_vain_for_another_sweeps_run_is_not_sent_into_it(self):
        daemon = self.devices[0].daemon
        note = self.sweep_dir / "benches/bench1/running"
        note.parent.mkdir(parents=True)
        note.write_text(f"{os.uname().nodename} 0 0 chunk-0001/1 {daemon}\n")
        lock = self.folder / f"locks/sarvextool-{daemon.replace(':', '%')}.lock"
        with open(lock, "w", encoding="ascii") as run:
            fcntl.flock(run, fcntl.LOCK_EX)
            stop = subprocess.Popen([ROOT / "farm/run-chunk", "--stop", self.sweep_dir, "bench1"],
                                    env=self.environment, cwd=self.folder, stdin=subprocess.DEVNULL,
                                    stderr=subprocess.DEVNULL, start_new_session=True)
            mark = f"SARVEX_LOCKS={self.folder}/locks"
            support.wait_until(lambda: any(support.command_of(process) == "flock\0009\0"
                                           for process in support.processes_with(mark)), "it waits for the lock")
            # As timeout does it, and Slurm.
            os.killpg(stop.pid, signal.SIGTERM)
            self.assertEqual(4, stop.wait(60))
        self.assertTrue(note.exists())
        self.assertEqual([], self.devices[0].commands())


if __name__ == "__main__":
    unittest.main()
