"""What a sweep refuses, in which words, before anything is sent to a device."""
import json
import os
import shutil
import signal
import subprocess
import unittest

import support

load_tests = support.load_tests


class Refusals(support.FarmTest):
    """Those of both engines, tried with the one that needs no daemons of its own."""

    def setUp(self):
        super().setUp()
        self.table = self.folder / "benches"
        self.table.write_text("bench1 127.0.0.1:1 DUT-1\nbench2 127.0.0.1:2 DUT-2\n")

    def expect_refusal(self, words, plan, *options, **more):
        done = self.expect(2, self.sweep(plan, *options, **more))
        self.assertIn(words, done.stderr)
        self.assertEqual("", done.stdout)
        return done

    def test_the_usage_is_told_for_anything_else(self):
        for arguments in ([], ["--nothing"], ["plan.csv", "other.csv"]):
            done = subprocess.run([support.SWEEPS["parallel"], *arguments], capture_output=True, text=True,
                                  check=False, env=self.environment, cwd=self.folder)
            self.assertEqual((2, "sweep: usage: sweep PLAN [--out DIR] [--table FILE] [--benches N] [--lines N] "
                                 "[-- RUN_OPTIONS...]\n"), (done.returncode, done.stderr), arguments)

    def test_the_usage_is_told_to_whoever_asks(self):
        for option in ("-h", "--help"):
            done = subprocess.run([support.SWEEPS["parallel"], option], capture_output=True, text=True,
                                  check=False, env=self.environment, cwd=self.folder)
            self.assertEqual((0, "usage: sweep PLAN [--out DIR] [--table FILE] [--benches N] [--lines N] "
                                 "[-- RUN_OPTIONS...]\n", ""), (done.returncode, done.stdout, done.stderr))

    def test_a_wrong_option_is_named(self):
        plan = self.write_plan(4)
        for option, words in ((["--lines", "0"], "--lines needs a number of 1 or more, not 0"),
                              (["--lines", "many"], "--lines needs a number of 1 or more, not many"),
                              (["--benches", "-1"], "--benches needs a number of 1 or more, not -1"),
                              (["--", "--fail-fast"], "--fail-fast cannot be given to the runs of a sweep"),
                              (["--", "--help"], "--help cannot be given to the runs of a sweep"),
                              (["--", "-h"], "-h cannot be given to the runs of a sweep"),
                              (["--", "--daemon=x"], "--daemon cannot be given to the runs of a sweep")):
            with self.subTest(option=option):
                self.expect_refusal(words, plan, *option)

    def test_a_file_of_the_runs_options_that_is_not_there_is_named(self):
        plan = self.write_plan(4)
        for option in (["--client", "none"], ["--client=none"], ["--limits", "none"]):
            with self.subTest(option=option):
                words = f"none, the file of {option[0].partition('=')[0]}, cannot be read on this host"
                self.expect_refusal(words, plan, run_options=option)
        self.assertFalse((self.folder / "sweeps").exists())

    def test_a_plan_that_is_not_there_is_named(self):
        self.expect_refusal("cannot be read", self.folder / "none.csv")
        self.assertFalse((self.folder / "sweeps").exists())

    def test_a_wrong_table_is_told_with_its_line(self):
        plan = self.write_plan(4)
        for text, words in (
                ("bench1 127.0.0.1:1\n", ":1: a line needs NAME DAEMON DEVICE"),
                ("# benches\nbench1 h:1 DUT red\n", ":2: more than NAME DAEMON DEVICE: red"),
                ("bench/1 h:1 DUT\n", ":1: the bench's name bench/1: only letters"),
                ("bench1 h:x DUT\n", ":1: the daemon h:x is not of the form HOST[:PORT]"),
                ("bench1 h:1 A\nbench1 h:2 B\n", ":2: there are two lines for the bench bench1"),
                ("bench1 h:1 A\nbench2 h:1 B\n", ":2: bench2 and bench1 have the same daemon, h:1"),
                ("bench1 h:1 #DUT\n", ":1: a line needs NAME DAEMON DEVICE"),
                ("# none\n\n", " names none")):
            with self.subTest(text=text):
                self.table.write_text(text)
                self.expect_refusal(f"the table of benches {self.table}{words}" if words[0] == " "
                                    else f"{self.table}{words}", plan)
        self.table.unlink()
        self.expect_refusal(f"the table of benches {self.table} cannot be read, or is no regular file", plan)

    def test_a_table_that_can_be_read_only_once_is_refused(self):
        done = subprocess.run(["bash", "-c", '"$1" "$2" --table <(cat "$3")', "bash", support.SWEEPS["parallel"],
                               self.write_plan(4), self.table], capture_output=True, text=True, check=False,
                              env=self.environment, cwd=self.folder)
        self.assertEqual(2, done.returncode, done.stderr)
        self.assertRegex(done.stderr, "^sweep: the table of benches /dev/fd/[0-9]+ cannot be read, or is no regular file\n$")
        self.assertFalse((self.folder / "sweeps").exists())

    def test_a_plan_with_errors_is_refused_in_the_words_of_check(self):
        plan = self.folder / "plan.csv"
        plan.write_text("Band,Chanel\n5,36\n")
        done = self.expect_refusal("error: ", plan)
        self.assertIn(f"{plan}:1:2: error: there is no column \"Chanel\"", done.stderr)
        # The corrected one is begun in the same folder.
        self.write_plan(4)
        done = self.expect(3, self.sweep(plan))
        self.assertNotIn("Chanel", done.stderr)

    def test_without_the_program_nothing_is_begun(self):
        self.environment["PATH"] = "/usr/bin:/bin"
        self.expect_refusal("SarvexToolBench is neither in", self.write_plan(4))

    def test_without_the_engine_nothing_is_begun(self):
        tools = self.folder / "tools"
        tools.mkdir()
        for folder in ("/usr/bin", "/bin"):
            for file in os.listdir(folder):
                if file not in ("parallel", "sbatch") and not os.path.lexists(tools / file):
                    (tools / file).symlink_to(f"{folder}/{file}")
        self.environment["PATH"] = f"{support.PROGRAMS}:{tools}"
        for engine, words in (("parallel", "there is no GNU parallel on this host"),
                              ("slurm", "there is no Slurm on this host")):
            with self.subTest(engine=engine):
                self.expect_refusal(words, self.write_plan(4), engine=engine)

    def test_a_parallel_that_is_not_gnus_is_told(self):
        plan = self.write_plan(4)
        self.put_before("parallel", "echo 'parallel: invalid option' >&2; exit 1")
        self.expect_refusal(f"there is no GNU parallel on this host ({self.folder}/before/parallel is another program)",
                            plan)
        self.assertFalse((self.folder / "sweeps").exists())

    def test_a_folder_that_is_not_a_sweeps_is_left_alone(self):
        plan = self.write_plan(4)
        self.expect_refusal("is not empty, and not the folder of a sweep", plan, "--out", self.folder)
        self.assertTrue(plan.exists())

    def test_a_folder_that_cannot_be_written_is_told(self):
        plan = self.write_plan(4)
        (self.folder / "file").write_text("")
        self.expect_refusal("cannot be made", plan, "--out", self.folder / "file/out")
        closed = self.folder / "closed"
        closed.mkdir()
        # As a user who has no permission, also where the tests run as root.
        done = subprocess.run(
            ["unshare", "--user", "--mount", "--map-root-user", "sh", "-c",
             'mount --bind "$1" "$1" && mount -o remount,bind,ro "$1" && shift && exec "$@"', "sh", closed,
             support.SWEEPS["parallel"], plan, "--table", self.table, "--out", closed / "out"],
            env=self.environment, capture_output=True, text=True, check=False)
        self.assertEqual((3, f"sweep: there is no room in {closed}/out, or no permission to write; with room the same "
                             "command goes on\n"), (done.returncode, done.stderr))


class Going(support.FarmTest):
    """What a second call refuses."""

    def test_a_plan_that_has_changed_since_is_not_gone_on_with(self):
        self.start_devices(2)
        # So many that they are not all measured before the interruption.
        plan = self.write_plan(400)
        sweep = self.start_sweep(plan)
        self.wait_for_rows(1)
        os.killpg(sweep.pid, signal.SIGINT)
        self.expect(3, self.finish(sweep))
        self.write_plan(401)
        done = self.expect(2, self.sweep(plan))
        copy = self.sweep_folder() / "plan.csv"
        self.assertEqual(f"sweep: {plan} has changed since the sweep in {self.sweep_folder()} was begun; go on with "
                         f"{copy} --out {self.sweep_folder()}, or give another --out\n", done.stderr)
        self.expect(0, self.sweep(copy, "--out", self.sweep_folder()))
        self.write_plan(400)
        self.expect_whole_result(plan)

    def test_options_that_decide_what_is_measured_stay_those_of_the_chunks_that_are_complete(self):
        self.start_devices(2, latency=20)
        plan = self.write_plan(120)
        first = ["--firmware", "2 b", "--retries", "1", "--", "-wifi-band", "5"]
        sweep = self.start_sweep(plan, "--lines", "10", run_options=first)
        support.wait_until(lambda: list(self.sweep_folder().glob("runs/*/claimed")), "a chunk is complete")
        os.killpg(sweep.pid, signal.SIGINT)
        self.expect(3, self.finish(sweep))
        before = [device.commands() for device in self.devices]
        measured = f"--client '{support.CLIENT}' --firmware '2 b' '--' '-wifi-band' '5'"
        for other, now in ((first[:-1] + ["6"], measured.replace("'5'", "'6'")),
                           (first[:4], measured.partition(" '--'")[0] + " "),
                           (["--firmware=3", *first[2:]], measured.replace("2 b", "3"))):
            with self.subTest(other=other):
                done = self.expect(2, self.sweep(plan, run_options=other))
                self.assertTrue(done.stderr.endswith(
                    "sweep: chunks of this sweep were measured with other options of run, which decide what is "
                    f"measured: {measured}; now: {now}; give the same, or another --out\n"), done.stderr)
        self.assertEqual(before, [device.commands() for device in self.devices])
        # How long is waited, and how often, is for each call to say.
        self.expect(0, self.sweep(plan, run_options=["--firmware=2 b", "--retries", "2", *first[4:]]))
        for run in self.runs():
            self.assertEqual(["-wifi-band", "5"], json.loads((run / "run.json").read_text())["options"]["firstCommand"])

    def test_options_are_the_same_in_each_locale(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        options = ["--firmware", "größer"]
        self.environment["LC_ALL"] = "C.UTF-8"
        self.expect(0, self.sweep(plan, "--lines", "10", run_options=options))
        shutil.rmtree(self.sweep_folder() / "merged")
        shutil.rmtree(self.sweep_folder() / "runs/chunk-0002/1")
        self.environment["LC_ALL"] = "C"
        self.expect(0, self.sweep(plan, run_options=options))

    def test_an_attempt_that_is_taken_away_is_measured_again(self):
        self.start_devices(2)
        plan = self.write_plan(40)
        self.expect(0, self.sweep(plan, "--lines", "10"))
        shutil.rmtree(self.sweep_folder() / "merged")
        shutil.rmtree(self.sweep_folder() / "runs/chunk-0002/1")
        before = [len(device.commands()) for device in self.devices]
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.assertNotEqual(before, [len(device.commands()) for device in self.devices])

    def test_a_sweep_that_is_under_way_is_not_started_again(self):
        self.start_devices(2)
        plan = self.write_plan(60)
        sweep = self.start_sweep(plan)
        support.wait_until(self.devices[0].halt_in_a_transmission, "bench1 transmits", 120)
        done = self.expect(2, self.sweep(plan))
        self.devices[0].go_on()
        self.assertRegex(done.stderr, rf"the sweep in {self.sweep_folder()} is under way: "
                                      rf"process {sweep.pid} on \S+ has it")
        self.expect(0, self.finish(sweep))
        done = self.expect(2, self.sweep(plan))
        self.assertIn(f"this sweep is complete, its result is in {self.sweep_folder()}/merged", done.stderr)
        self.expect_one_run_at_a_time()


class JobOnABadHost(support.FarmTest):
    """The batch script of a chunk where its host lacks something, without Slurm: scontrol only notes its call."""

    def setUp(self):
        super().setUp()
        self.told = self.folder / "told"
        scontrol = self.folder / "tools/scontrol"
        scontrol.parent.mkdir()
        scontrol.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>"{self.told}"\n')
        scontrol.chmod(0o755)
        self.environment.update(PATH=f"{scontrol.parent}:{self.environment['PATH']}", SLURMD_NODENAME="bench1",
                                SLURM_ARRAY_TASK_ID="2")
        self.sweep_dir = self.folder / "a sweep"

    def start_job(self, farm=support.ROOT / "farm", restarts=0):
        self.environment["SLURM_RESTART_COUNT"] = str(restarts)
        job = subprocess.Popen([support.ROOT / "farm/slurm/chunk.sbatch", farm, self.sweep_dir],
                               env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, start_new_session=True)
        self.addCleanup(self.end_job, job)
        return job

    def end_job(self, job):
        if job.poll() is None:
            os.killpg(job.pid, signal.SIGKILL)
        job.wait()

    def expect_bench_out(self, job, code, why):
        self.assertEqual(code, job.wait(60))
        self.assertEqual(f"update\nNodeName=bench1\nState=DRAIN\nReason={why}\n", self.told.read_text())

    def test_a_host_without_the_folder_is_taken_out_and_the_chunk_repeated(self):
        self.expect_bench_out(self.start_job(), 3,
                              f"its host has no folder {self.sweep_dir}, or no permission to write there")

    def test_a_host_without_the_scripts_is_taken_out_and_a_chunk_that_was_repeated_often_held(self):
        (self.sweep_dir / "log").mkdir(parents=True)
        for number in (1, 2):
            (self.sweep_dir / f"chunk-000{number}.csv").write_text("")
        self.expect_bench_out(self.start_job(self.folder / "none", restarts=5), 5, f"its host has no {self.folder}/none")
        self.assertIn("No such file", (self.sweep_dir / "log/chunk-0002.log").read_text())

    def test_a_job_has_the_chunk_with_its_number_also_where_others_are_missing(self):
        (self.sweep_dir / "log").mkdir(parents=True)
        for number in ("0002", "0003", "0012", "0020", "1002"):
            (self.sweep_dir / f"chunk-{number}.csv").write_text("")
        self.assertEqual(3, self.start_job(self.folder / "none").wait(60))
        self.assertEqual(["chunk-0002.log"], os.listdir(self.sweep_dir / "log"))

    def test_a_job_that_the_sweep_ends_blames_no_bench(self):
        job = self.start_job()
        # As Slurm does it, once the job waits for it.
        support.wait_until(lambda: "sleep" in self.children_of(job), "the job waits")
        os.killpg(job.pid, signal.SIGTERM)
        self.assertEqual(3, job.wait(10))
        self.assertFalse(self.told.exists())

    def children_of(self, job):
        return [support.command_of(child).partition("\0")[0]
                for child in support.processes_with("SLURMD_NODENAME=bench1") if support.parent_of(child) == job.pid]


class SlurmSetup(support.FarmTest):
    """A cluster that was not set up for benches."""
    engine = "slurm"

    def setUp(self):
        super().setUp()
        self.start_devices(2)
        self.plan = self.write_plan(8)

    def expect_refusal(self, words, **more):
        done = self.expect(2, self.sweep(self.plan, **more))
        self.assertIn(words, done.stderr)
        for device in self.devices:
            self.assertEqual([], device.commands())

    def test_a_controller_that_does_not_answer_is_told(self):
        (self.folder / "slurm.conf").write_text(
            f"ClusterName=none\nSlurmctldHost=localhost(127.0.0.1)\nSlurmctldPort={support.free_port.reserve()}\n"
            "AuthType=auth/none\nCredType=cred/none\nMessageTimeout=1\n")
        self.environment["SLURM_CONF"] = str(self.folder / "slurm.conf")
        self.expect_refusal("Slurm does not answer: ")

    def test_a_table_and_slurm_that_differ_are_told(self):
        self.start_slurm(["bench1", "bench2"])
        text = self.table.read_text()
        self.table.write_text(text.replace("bench2", "bench7"))
        self.expect_refusal(f"the table of benches {self.table} lacks Slurm's bench2")
        self.table.write_text(text + "bench7 127.0.0.1:7 DUT-7\n")
        self.expect_refusal(f"the table of benches {self.table} names bench7, which Slurm has not")

    def test_two_benches_of_one_host_need_a_table(self):
        self.start_slurm(["bench1", "bench2"])
        done = subprocess.run([support.SWEEPS["slurm"], self.plan], env=self.environment, cwd=self.folder,
                              capture_output=True, text=True, check=False)
        self.assertEqual(2, done.returncode)
        self.assertIn("bench2 and bench1 are on one host", done.stderr)

    def test_a_configuration_that_lacks_something_is_told(self):
        self.start_slurm(["bench1", "bench2"])
        for name, value, words in (("RequeueExit", "3", "slurm.conf has not RequeueExit=3,4"),
                                   ("RequeueExitHold", "6", "slurm.conf has not RequeueExitHold=5"),
                                   ("KillWait", "5", "slurm.conf has KillWait=5;")):
            with self.subTest(name=name):
                before = self.slurm.configure(name, value)
                self.expect_refusal(words)
                self.slurm.configure(name, before)
        self.expect_refusal("slurm.conf has KillWait=60; a run may need 62 seconds to stop its transmission",
                            run_options=["--stop-timeout", "26"])

    def test_only_slurms_account_may_sweep(self):
        if os.geteuid():
            self.skipTest("only root can be another user")
        self.start_slurm(["bench1", "bench2"])
        account = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
        self.folder.chmod(0o755)
        open_folder = self.folder / "open"
        open_folder.mkdir(mode=0o777)
        open_folder.chmod(0o777)
        programs = self.folder / "programs"
        programs.mkdir()
        shutil.copy(support.PROGRAMS / "SarvexToolBench", programs)
        self.environment["PATH"] = f"{programs}:{os.environ['PATH']}"
        self.slurm.folder.chmod(0o755)
        farm = self.folder / "farm"
        shutil.copytree(support.ROOT / "farm", farm)
        done = subprocess.run([*account, farm / "slurm/sweep", self.plan, "--table", self.table, "--out",
                               open_folder / "out"], env=self.environment, cwd=self.folder, capture_output=True,
                              text=True, check=False)
        self.assertEqual(2, done.returncode)
        self.assertIn("only Slurm's own account may take benches out that fail: run this as root", done.stderr)


if __name__ == "__main__":
    unittest.main()
