"""What holds for a sweep on each engine: its result is that of one client, a bench that dies loses nothing,
nothing transmits afterwards, no two runs have one bench."""
import json
import os
import shutil
import signal
import subprocess
import unittest

import support
from support import LONG, wait_until

load_tests = support.load_tests


class Sweeps:
    """The tests that each engine has to pass."""

    def setUp(self):
        super().setUp()
        self.start_farm()

    def test_the_result_is_that_of_one_client_wherever_the_plan_is_cut(self):
        plan = self.write_plan(600 if LONG else 60, "a plan; 50 % of 'it'.csv")
        for size in (7, 10, 25, 100, 600) if LONG else (17, None):
            name = f"a 50 % \\%a {{}} {{.}} {{%}} sweep of {size}"
            with self.subTest(name):
                options = ["--lines", str(size)] if size else []
                self.expect(0, self.sweep(plan, *options, "--out", self.sweep_folder(name)))
                self.expect_whole_result(plan, name)
        self.expect_all_off()

    def test_each_measurement_keeps_where_it_comes_from(self):
        plan = self.write_plan(40)
        self.expect(0, self.sweep(plan, "--lines", "10", "--benches", "2"))
        facts = json.loads((self.sweep_folder() / "merged/run.json").read_text())
        benches = [device.name for device in self.devices[:2 if self.engine == "parallel" else 4]]
        self.assertEqual([(2, 11), (12, 21), (22, 31), (32, 41)],
                         [(source["firstLine"], source["lastLine"]) for source in facts["sources"]])
        for source in facts["sources"]:
            self.assertIn(source["bench"], benches)
            self.assertEqual(source["bench"].replace("bench", "DUT-"), source["device"])
            self.assertEqual(1, source["attempt"])
        self.expect_one_run_at_a_time()
        times = [(source["started"], source["ended"]) for source in facts["sources"]]
        for moment, _ in times:
            self.assertLessEqual(sum(begin <= moment <= end for begin, end in times), 2, times)

    def test_a_line_that_the_device_refuses_is_not_repeated(self):
        plan = self.write_plan(20)
        plan.write_text(plan.read_text() + "2.4,A,20,100,HE,MCS0,SISO,242,0,none\n")
        self.expect(1, self.sweep(plan, "--lines", "7"))
        self.assertEqual(3, len(self.runs()))
        self.expect_whole_result(plan)

    def test_a_bench_that_dies_for_good_is_taken_out_and_loses_nothing(self):
        plan = self.write_plan(700)
        sweep = self.start_sweep(plan, "--lines", "20", wait=1, run_options=["--stop-timeout", "1"])
        self.wait_for_rows(20)
        self.devices[1].kill()
        done = self.finish(sweep)
        failed = [run for run in self.runs() if not self.is_complete(run)]
        # Had it a transmission when it died, or not? It may have been that of a chunk's last line.
        left_on = [run for run in self.runs() if json.loads((run / "run.json").read_text())["exitCode"] == 4]
        transmits = bool(left_on)
        self.expect(4 if transmits else 0, done)
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()
        self.assertRegex(done.stderr, r"\nsweep: bench2 is out of use: .*(the daemon is gone|its transmission cannot be stopped)")
        self.assertEqual(transmits, done.stderr.endswith(
            "\nsweep: these benches may still be transmitting: bench2\n"), done.stderr)
        # The later attempts end before they have a folder where the transmission cannot be stopped.
        self.assertEqual(len([run for run in left_on if run in failed]) if transmits else 3, len(failed))
        facts = json.loads((self.sweep_folder() / "merged/run.json").read_text())
        self.assertEqual(sorted(str(run.relative_to(self.sweep_folder())) for run in failed),
                         sorted(attempt["directory"] for attempt in facts["otherAttempts"]))
        for device in self.devices[:1] + self.devices[2:]:
            self.assertTrue(device.is_off(), device.name)

    def test_a_daemon_that_restarts_costs_nothing(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        self.wait_for_rows(20)
        self.devices[1].kill()
        self.devices[1].start()
        self.expect(0, self.finish(sweep))
        self.expect_whole_result(plan)
        self.expect_all_off()

    def test_when_all_benches_are_out_of_use_the_sweep_ends_and_can_go_on(self):
        plan = self.write_plan(12)
        for device in self.devices:
            device.end()
        done = self.expect(3, self.sweep(plan, "--lines", "1", wait=1))
        self.assertIn("The sweep ended early, after 0 of 12 lines: all benches are out of use", done.stdout)
        for device in self.devices:
            self.assertIn(f"sweep: {device.name} is out of use: ", done.stderr)
        for device in self.devices:
            device.start()
        self.bring_back()
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.expect_all_off()

    def test_an_interrupted_sweep_stops_all_transmitters_and_goes_on(self):
        plan = self.write_plan(600)
        for number in (signal.SIGINT, signal.SIGTERM) if LONG else (signal.SIGINT,):
            before = self.rows()
            sweep = self.start_sweep(plan, "--lines", "50")
            self.wait_for_rows(before + 20)
            self.halt_all()
            # As a terminal does: all that is in its foreground gets it.
            os.killpg(sweep.pid, number)
            self.let_all_go_on()
            done = self.expect(3, self.finish(sweep))
            self.assertRegex(done.stdout, r"The sweep ended early, after \d+ of 600 lines: it was interrupted\.\n")
            self.assertIn(f"To go on with them:\n  {support.SWEEPS[self.engine]} {plan}", done.stdout)
            self.expect_all_off()
            self.expect_nothing_left()
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()

    @unittest.skipUnless(LONG, "as an interruption")
    def test_a_console_that_closes_stops_all_transmitters(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        self.wait_for_rows(20)
        sweep.stdout.close()
        sweep.stderr.close()
        os.killpg(sweep.pid, signal.SIGHUP)
        self.assertEqual(3, sweep.wait(60))
        self.expect_all_off()
        self.expect_nothing_left()

    def test_relative_names_in_the_options_of_run_are_those_of_the_sweep(self):
        plan = self.write_plan(12)
        (self.folder / "limits.csv").write_text("Chain,Min,Max\n*,0,30\n")
        self.expect(0, self.sweep(plan, run_options=["--limits", "limits.csv"]))

    def test_a_run_that_is_killed_is_stopped_and_repeated(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        wait_until(self.devices[0].halt_in_a_transmission, "bench1 transmits", 120)
        _, _, run, chunk = self.running_state("bench1")
        support.kill(run)
        self.devices[0].go_on()
        self.expect(0, self.finish(sweep))
        self.assertGreater(len(list((self.sweep_folder() / "runs" / chunk).parent.glob("[1-9]"))), 1)
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()
        self.expect_all_off()

    def test_a_mistake_in_the_options_ends_the_sweep_at_once(self):
        plan = self.write_plan(40)
        done = self.expect(2, self.sweep(plan, "--lines", "10", run_options=["--retries", "many"]))
        self.assertRegex(done.stdout, r"The sweep ended early, after 0 of 40 lines: chunk-\d+, attempt \d+ on bench\d "
                                      r"ended with 2: .*--retries")
        self.assertEqual([], [device.name for device in self.devices if device.commands()])
        self.expect(0, self.sweep(plan))

    def test_the_first_command_of_the_client_is_that_of_each_run(self):
        plan = self.write_plan(20)
        self.expect(0, self.sweep(plan, wait=None, run_options=["--", "-wifi-band", "5"]))
        for run in self.runs():
            options = json.loads((run / "run.json").read_text())["options"]
            self.assertEqual((["-wifi-band", "5"], True, 60),
                             (options["firstCommand"], options["firstCommandAccepted"], options["wait"]))

    # What the tests look at.

    def is_complete(self, run):
        return json.loads((run / "run.json").read_text()).get("outcome") == "complete"

    def running_state(self, bench):
        """The host, the process of run-chunk, that of the run, and the chunk."""
        def state():
            words = (self.sweep_folder() / "benches" / bench / "running").read_text().split()
            return (words[0], int(words[1]), int(words[2]), words[3]) if words[2] != "0" else None
        return wait_until(state, f"{bench} runs something")

    def expect_nothing_left(self):
        for process in support.processes_with(f"SARVEX_LOCKS={self.folder}/locks"):
            self.fail(f"still there: {support.command_of(process)}")


class ParallelSweep(Sweeps, support.FarmTest):
    def bring_back(self):
        pass

    def test_the_shell_and_the_settings_of_the_user_are_not_those_of_the_jobs(self):
        self.environment["PARALLEL"] = "--dry-run"
        for name, shell in (("no shell", None), ("a shell of no use", "/bin/true"), ("another one", "/bin/false")):
            with self.subTest(name):
                self.environment.pop("SHELL", None)
                if shell:
                    self.environment["SHELL"] = shell
                plan = self.write_plan(8, f"{name}.csv")
                self.expect(0, self.sweep(plan))
                self.expect_whole_result(plan, name)


class SlurmSweep(Sweeps, support.FarmTest):
    engine = "slurm"

    def bring_back(self):
        for device in self.devices:
            self.slurm.ask("scontrol", "update", f"NodeName={device.name}", "State=RESUME")

    def expect_nothing_left(self):
        self.assertEqual([], self.slurm.jobs())
        self.assertEqual([], list(self.slurm.processes_of_jobs()))

    def test_a_job_that_is_requeued_by_hand_is_repeated(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        self.halt_all()
        self.slurm.ask("scontrol", "requeue", self.slurm.running()["bench1"])
        self.let_all_go_on()
        self.expect(0, self.finish(sweep))
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()
        self.expect_all_off()
        self.assertEqual(9, len(self.runs()))

    def test_jobs_that_are_cancelled_by_hand_are_stopped_and_left_to_the_next_call(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        self.halt_all()
        self.slurm.ask("scancel", *self.slurm.running().values())
        self.let_all_go_on()
        done = self.expect(3, self.finish(sweep))
        self.assertIn("4 of 8 chunks have no complete run.", done.stdout)
        self.expect_all_off()
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()

    def test_a_controller_that_restarts_loses_nothing(self):
        plan = self.write_plan(600)
        sweep = self.start_sweep(plan, "--lines", "50")
        self.wait_for_rows(20)
        self.slurm.kill_process("slurmctld")
        # The runs go on without it.
        self.wait_for_rows(120)
        self.slurm.start_controller()
        self.expect(0, self.finish(sweep))
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()
        self.expect_all_off()

    def test_a_host_that_dies_loses_nothing(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        wait_until(self.devices[0].halt_in_a_transmission, "bench1 transmits", 120)
        self.slurm.kill_node("bench1")
        self.devices[0].go_on()
        done = self.expect(0, self.finish(sweep))
        self.expect_whole_result(plan)
        # Nobody stopped its device but the end of the sweep.
        self.assertIn("stopping the transmissions of bench1", done.stderr)
        self.expect_all_off()
        self.expect_one_run_at_a_time()

    def test_a_sweep_that_is_killed_leaves_its_jobs_to_the_next_call(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        wait_until(self.devices[0].halt_in_a_transmission, "bench1 transmits", 120)
        sweep.kill()
        sweep.wait()
        next_call = self.start_sweep(plan)
        self.assertTrue(any("the jobs of an earlier call go on" in line for line in next_call.stderr))
        self.devices[0].go_on()
        self.expect(0, self.finish(next_call))
        self.expect_whole_result(plan)
        self.assertEqual(8, len(self.runs()))
        self.expect_all_off()

    def test_jobs_are_found_again_when_the_plan_has_another_name(self):
        plan = self.write_plan(400, "first.csv")
        out = ["--out", self.sweep_folder("first")]
        sweep = self.start_sweep(plan, "--lines", "50", *out)
        self.halt_all()
        sweep.kill()
        sweep.wait()
        copy = self.sweep_folder("first") / "plan.csv"
        # A refused call leaves the benches to the jobs, which transmit.
        done = self.expect(4, self.sweep(copy, *out, run_options=["--firmware", "2"]))
        self.assertIn("chunks of this sweep were measured with other options of run", done.stderr)
        next_call = self.start_sweep(copy, *out)
        self.assertTrue(any("the jobs of an earlier call go on" in line for line in next_call.stderr))
        os.killpg(next_call.pid, signal.SIGINT)
        self.let_all_go_on()
        self.expect(3, self.finish(next_call))
        self.expect_nothing_left()
        self.expect_all_off()

    def test_a_job_whose_script_is_killed_gives_its_bench_up_only_with_its_run(self):
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        wait_until(self.devices[0].halt_in_a_transmission, "bench1 transmits", 120)
        _, script, _, _ = self.running_state("bench1")
        support.kill(support.parent_of(script))
        support.kill(script)
        # Slurm gives the bench to the next job, which waits for it.
        log = self.sweep_folder() / "log"
        wait_until(lambda: [file for file in log.glob("chunk*") if "in use by another job" in file.read_text()],
                   "a job waits for bench1", 120)
        self.devices[0].go_on()
        done = self.finish(sweep)
        self.assertIn(done.returncode, (0, 3))
        # Its result counts if its run was complete.
        self.expect(0, self.sweep(plan) if done.returncode else done)
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()
        self.expect_all_off()

    @unittest.skipUnless(LONG, "takes more than a minute")
    def test_a_node_daemon_that_dies_alone_leaves_two_runs_of_a_chunk_of_which_one_counts(self):
        for device in self.devices:
            device.end()
            device.options[-1] = "120"
            device.start()
        plan = self.write_plan(600)
        # One bench is free for the job that is given up.
        sweep = self.start_sweep(plan, "--lines", "200")
        self.wait_for_rows(20)
        self.slurm.kill_process("bench1")
        self.expect(0, self.finish(sweep))
        self.expect_whole_result(plan)
        self.assertEqual(4, len([run for run in self.runs() if self.is_complete(run)]))
        self.assertEqual(1, len(list((self.sweep_folder() / "surplus").iterdir())))
        self.expect_one_run_at_a_time()
        self.expect_all_off()

    @unittest.skipUnless(LONG, "takes a minute")
    def test_hosts_that_lack_what_the_chunks_need_are_taken_out_and_no_chunk_is_lost(self):
        if os.geteuid():
            self.skipTest("only root can hide a folder from a host")
        self.slurm.start_node_without("bench1", self.folder)
        self.slurm.start_node_without("bench2", self.folder / "locks")
        client = self.folder / "client" / support.CLIENT.name
        client.parent.mkdir()
        shutil.copy(support.CLIENT, client)
        self.slurm.start_node_without("bench3", client.parent)
        plan = self.write_plan(400)
        done = self.expect(0, self.sweep(plan, "--lines", "20", client=client))
        self.expect_whole_result(plan)
        self.assertIn(f"bench1 is out of use: its host has no folder {self.sweep_folder()}, or no permission",
                      done.stderr)
        self.assertRegex(done.stderr, r"bench2 is out of use: 3 failures in a row; the lock of bench2, \S+, "
                                      r"cannot be made\n")
        self.assertIn(f"bench3 is out of use: 3 failures in a row; the host of bench3 has no client {client}\n",
                      done.stderr)
        for device in self.devices[:3]:
            self.assertEqual([], device.commands())

    def test_the_first_sweep_after_the_setup(self):
        # As installed: the programs beside the scripts, the table where it is looked for.
        programs = self.folder / "sarvextool"
        shutil.copytree(support.ROOT / "farm", programs / "farm")
        shutil.copytree(support.ROOT / "examples", programs / "examples")
        shutil.copy(support.PROGRAMS / "SarvexToolBench", programs)
        # Without the pauses of the real client, which take minutes here.
        shutil.copy(support.CLIENT, programs / "SarvexToolClient")
        self.environment["SARVEX_BENCHES"] = str(self.table)
        done = subprocess.run(["farm/slurm/sweep", "examples/sweep.csv"], env=self.environment, cwd=programs,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False, timeout=600)
        self.assertEqual(0, done.returncode, done.stdout + done.stderr)
        merged = programs / "sweeps/sweep/merged"
        self.assertEqual(self.client_alone(programs / "examples/sweep.csv"),
                         [(merged / file).read_bytes() for file in ("result.csv", "result.xml")])
        self.expect_all_off()

    def test_settings_of_slurms_commands_do_not_hide_the_jobs(self):
        self.environment.update(SQUEUE_STATES="FAILED", SQUEUE_USERS="nobody", SINFO_PARTITION="none",
                                SCANCEL_INTERACTIVE="1")
        plan = self.write_plan(20)
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)

    def test_settings_of_sbatch_do_not_change_the_jobs(self):
        self.environment.update(SBATCH_EXPORT="NONE", SBATCH_NO_REQUEUE="1", SBATCH_PARTITION="none",
                                SBATCH_ARRAY_INX="1-1", SBATCH_GRES="none")
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan, "--lines", "50")
        self.wait_for_rows(20)
        for job in self.slurm.running().values():
            self.assertRegex(self.slurm.ask("scontrol", "show", "job", job), " Requeue=1 ")
        self.expect(0, self.finish(sweep))
        self.expect_whole_result(plan)
        self.expect_one_run_at_a_time()

    @unittest.skipUnless(LONG, "takes a minute")
    def test_a_chunk_that_always_fails_is_given_up(self):
        # A return code that is no number ends the client.
        for device in self.devices:
            device.end()
            device.start("--fault", "text=-wifi-channel 6 :return-code=abc")
        plan = self.write_plan(12)
        done = self.expect(3, self.sweep(plan, "--lines", "3"))
        self.assertIn("chunks have failed on every attempt and are held", done.stdout)


if __name__ == "__main__":
    unittest.main()
