"""How a sweep shows itself and ends where something is in its way: on a terminal, with a second Ctrl-C, on a full
disk, beside a run by hand."""
import contextlib
import fcntl
import os
import pathlib
import pty
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import termios
import time
import unittest

import support
from support import wait_until

load_tests = support.load_tests


class Progress(support.FarmTest):
    def setUp(self):
        super().setUp()
        self.start_devices(2, latency=20)

    def test_on_a_terminal_it_is_one_line_that_fits(self):
        plan = self.write_plan(150)
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 40, 0, 0))
        sweep = subprocess.Popen(
            [support.SWEEPS["parallel"], plan, "--table", self.table, "--lines", "15", "--", "--client", support.CLIENT],
            cwd=self.folder, env=self.environment, stdin=slave, stdout=subprocess.PIPE, stderr=slave, text=True)
        os.close(slave)
        shown = b""
        with contextlib.suppress(OSError):
            while piece := os.read(master, 4096):
                shown += piece
        sweep.communicate()
        self.assertEqual(0, sweep.returncode, shown)
        lines = shown.decode().split("\r\n")
        progress = [line for line in lines if re.search(r"\d/150", line)]
        self.assertEqual(1, len(progress), lines)
        states = [state.rstrip() for state in progress[0].split("\r") if state.strip()]
        for state in states:
            self.assertRegex(state, r"^\d+/150 \(\d+ %\), \d:\d\d(, about \d:\d\d left|; |$)")
            self.assertLess(len(state), 40)
        self.assertRegex(states[-1], r"^150/150 \(100 %\)")
        done = [int(state.partition("/")[0]) for state in states]
        self.assertEqual(sorted(done), done)
        self.assertGreater(len(set(done)), 3)

    def test_elsewhere_it_is_a_line_at_the_beginning_and_one_at_the_end(self):
        done = self.expect(0, self.sweep(self.write_plan(60), "--lines", "15"))
        # Not how long it would take on other numbers of benches than there are.
        self.assertEqual(f"{self.sweep_folder()}: 4 chunks of 15 lines, each about 15 s", done.stdout.splitlines()[0])
        progress = [line for line in done.stderr.splitlines() if "/60 (" in line]
        self.assertRegex(progress[0], r"^0/60 \(0 %\), \d:\d\d; \d on benches$")
        self.assertRegex(progress[-1], r"^60/60 \(100 %\), \d:\d\d; 0 on benches$")
        minutes, seconds = map(int, re.search(r" (\d+):(\d\d);", progress[-1]).groups())
        self.assertLessEqual(len(progress), 2 + (60 * minutes + seconds) // 30)


class EndingTest(support.FarmTest):
    def slow_down(self, command, condition):
        """The file that is there as soon as a sweep first calls this, where it then stays until it is removed."""
        begun = pathlib.Path(tempfile.mkdtemp(dir=self.folder)) / f"{command} has begun"
        self.put_before(command, f'[[ ! {condition} ]] || ! mkdir "{begun}.once" 2>/dev/null || '
                                 f'{{ touch "{begun}"; while [ -e "{begun}" ]; do sleep .1; done; }}')
        return begun

    def interrupt_at(self, sweep, begun):
        """Ctrl-C while it waits there."""
        wait_until(begun.exists, f"{begun.name}")
        os.killpg(sweep.pid, signal.SIGINT)
        time.sleep(1)
        begun.unlink()


class Endings(EndingTest):
    def test_a_second_ctrl_c_leaves_at_once_and_the_jobs_stop_by_themselves(self):
        self.start_devices(2)
        plan = self.write_plan(100)
        sweep = self.start_sweep(plan, "--lines", "25")
        # Then no stop is answered.
        self.halt_all()
        os.killpg(sweep.pid, signal.SIGINT)
        time.sleep(2)
        os.killpg(sweep.pid, signal.SIGINT)
        sweep.wait(60)
        self.let_all_go_on()
        done = self.expect(4, self.finish(sweep))
        self.assertIn("left at once: jobs may still be stopping their transmitters", done.stderr)
        self.assertIn(f"switch the device of bench1 off, or on {os.uname().nodename}: "
                      f"SarvexToolBench stop --daemon {self.devices[0].daemon}\n", done.stderr)
        self.assertTrue(done.stderr.endswith("\nsweep: these benches may still be transmitting: bench1 bench2\n"),
                        done.stderr)
        self.wait_for_the_jobs()
        self.expect_all_off()

    def test_a_second_ctrl_c_while_nothing_transmits_is_an_early_end(self):
        self.start_devices(2)
        looking = self.folder / "looking"
        # In the jobs, which have no note yet.
        self.put_before("df", f"[[ ${{!#}} != */benches/* ]] || {{ echo >>{looking}; sleep 8; }}")
        sweep = self.start_sweep(self.write_plan(40), "--lines", "10")
        wait_until(lambda: looking.exists() and looking.read_text() == "\n\n", "both benches have a job")
        os.killpg(sweep.pid, signal.SIGINT)
        time.sleep(2)
        os.killpg(sweep.pid, signal.SIGINT)
        done = self.expect(3, self.finish(sweep))
        self.assertTrue(done.stderr.endswith("left at once: jobs may still be stopping their transmitters\n"),
                        done.stderr)
        self.wait_for_the_jobs()
        for device in self.devices:
            self.assertEqual([], device.commands())

    def test_jobs_that_wait_for_a_bench_end_with_the_sweep(self):
        self.start_devices(2)
        plan = self.write_plan(40)
        with contextlib.ExitStack() as locks:
            for device in self.devices:
                name = f"locks/sarvextool-{device.daemon.replace(':', '%')}.lock"
                fcntl.flock(locks.enter_context(open(self.folder / name, "w")), fcntl.LOCK_EX)
            sweep = self.start_sweep(plan, "--lines", "10")
            log = self.sweep_folder() / "log"
            wait_until(lambda: 2 == sum("waiting for it" in file.read_text() for file in log.glob("chunk-*")),
                       "both benches are in use")
            os.killpg(sweep.pid, signal.SIGINT)
            self.expect(3, self.finish(sweep))
            mark = f"SARVEX_LOCKS={self.folder}/locks"
            self.assertEqual([], [support.command_of(process) for process in support.processes_with(mark)])
        for device in self.devices:
            self.assertEqual([], device.commands())

    def test_ctrl_c_in_the_middle_of_a_look_is_told_as_such(self):
        self.start_devices(2, latency=50)
        plan = self.write_plan(100)
        looking = self.folder / "looking"
        self.put_before("df", f"[ ${{!#}} != {self.sweep_folder()} ] || {{ touch {looking}; sleep 30; }}")
        sweep = self.start_sweep(plan, "--lines", "25")
        wait_until(looking.exists, "the sweep looks for room")
        os.killpg(sweep.pid, signal.SIGINT)
        done = self.expect(3, self.finish(sweep))
        self.assertIn(" lines: it was interrupted.\n", done.stdout)
        self.assertNotIn(".sh: line", done.stderr)
        self.expect_all_off()

    def test_ctrl_c_before_the_first_chunk_is_an_early_end(self):
        self.start_devices(2)
        begun = self.folder / "begun"
        self.put_before("realpath", f"[ $1 != {self.sweep_folder().relative_to(self.folder)} ] || "
                                    f"{{ touch {begun}; sleep 30; }}")
        sweep = self.start_sweep(self.write_plan(20))
        wait_until(begun.exists, "the sweep's folder is made")
        os.killpg(sweep.pid, signal.SIGINT)
        done = self.expect(3, self.finish(sweep))
        self.assertTrue(done.stderr.startswith("sweep: stopping; "), done.stderr)
        for device in self.devices:
            self.assertEqual([], device.commands())

    def test_under_nohup_parallel_is_ended_before_it_begins_a_chunk(self):
        self.start_devices(1)
        begun = self.slow_down("parallel", "$# -gt 1")
        sweep = self.start_sweep(self.write_plan(40), "--lines", "10",
                                 preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        wait_until(begun.exists, "parallel is about to begin")
        lock = self.sweep_folder() / "sweep.lock"
        parallel = wait_until(lambda: lock.read_text().splitlines()[1:], "the sweep knows it")
        os.kill(sweep.pid, signal.SIGTERM)
        wait_until(lambda: not support.is_alive(int(parallel[0])), "parallel has ended")
        done = self.expect(3, self.finish(sweep))
        self.assertIn(" lines: it was interrupted.\n", done.stdout)
        self.assertEqual([], list(self.sweep_folder().glob("log/chunk-*")))

    def test_ctrl_c_while_the_options_are_compared_is_told_as_such(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        self.expect(0, self.sweep(plan, "--lines", "10"))
        before = [device.commands() for device in self.devices]
        shutil.rmtree(self.sweep_folder() / "merged")
        shutil.rmtree(self.sweep_folder() / "runs/chunk-0002")
        comparing = self.slow_down("realpath", "$1 = --")
        sweep = self.start_sweep(plan)
        self.interrupt_at(sweep, comparing)
        done = self.expect(3, self.finish(sweep))
        self.assertIn("The sweep ended early, after 10 of 20 lines: it was interrupted.\n", done.stdout)
        self.assertNotIn("options of run", done.stderr)
        self.assertEqual(before, [device.commands() for device in self.devices])

    def test_ctrl_c_before_a_refusal_is_told_as_such(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        self.expect(0, self.sweep(plan, "--lines", "10"))
        shutil.rmtree(self.sweep_folder() / "merged")
        path = self.environment["PATH"]
        for command, condition in (("tr", "$2 = \\\\r"), ("cmp", "$1 = -s"), ("mkdir", f"$2 = {self.sweep_folder()}"),
                                   ("ln", "$1 = -sfT"), ("cp", "$2 = */bench-table.new")):
            with self.subTest(command):
                self.environment["PATH"] = path
                sweep_at = self.slow_down(command, condition)
                sweep = self.start_sweep(plan, "--out", self.sweep_folder())
                self.interrupt_at(sweep, sweep_at)
                done = self.expect(3, self.finish(sweep))
                self.assertEqual("sweep: stopping; this takes until all transmitters are off (press Ctrl-C again to "
                                 "leave at once)\n", done.stderr)

    def test_ctrl_c_while_runs_are_made_to_count_leaves_none_out(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        self.expect(0, self.sweep(plan, "--lines", "10"))
        before = [device.commands() for device in self.devices]
        shutil.rmtree(self.sweep_folder() / "merged")
        for link in self.sweep_folder().glob("runs/*/claimed"):
            link.unlink()
        linking = self.slow_down("ln", "${!#} = */chunk-0001/claimed")
        sweep = self.start_sweep(plan)
        self.interrupt_at(sweep, linking)
        done = self.expect(0, self.finish(sweep))
        self.assertNotIn("cannot be made", done.stderr)
        self.expect_whole_result(plan)
        self.assertEqual(before, [device.commands() for device in self.devices])

    def test_a_full_disk_ends_the_sweep_and_blames_no_bench(self):
        self.start_devices(2)
        plan = self.write_plan(400)
        disk = self.folder / "disk"
        disk.mkdir()
        script = ('mount -t tmpfs -o size=40m none "$0" || exit 9\n'
                  '(until cat "$0"/out/runs/*/1/journal.jsonl 2>/dev/null | grep -q .; do sleep .1; done\n'
                  ' cat /dev/zero >"$0/filler" 2>/dev/null) &\n'
                  'code=0; "$@" || code=$?; ls "$0"/out/benches/* >&2; exit $code')
        done = self.sweep_on_disk(disk, script, plan, "--lines", "50")
        self.assertEqual(3, done.returncode, done.stdout + done.stderr)
        self.assertRegex(done.stdout, r"after \d+ of 400 lines: there is no room in \S+, or no permission to write\.\n")
        self.assertNotIn("failures", done.stderr)
        self.expect_all_off()

    def test_on_a_disk_that_is_full_from_the_start_a_sweep_is_ended_to_be_gone_on_with(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        disk = self.folder / "disk"
        disk.mkdir()
        # At the first call, when all but the merge is done, and when a chunk is to be measured.
        script = ('mount -t tmpfs -o size=40m none "$0" || exit 9\n'
                  'again() { code=0; "$@" || code=$?; echo "ended with $code" >&2; }\n'
                  'cat /dev/zero >"$0/filler" 2>/dev/null; again "$@"\n'
                  'rm "$0/filler"; again "$@"\n'
                  'rm -r "$0/out/merged"; cat /dev/zero >"$0/filler" 2>/dev/null; again "$@"\n'
                  'rm -r "$0/out/runs/chunk-0001/claimed"; again "$@"\n'
                  'rm "$0/filler"; again "$@"')
        done = self.sweep_on_disk(disk, script, plan, "--lines", "10")
        self.assertEqual(["3", "0", "3", "3", "0"], re.findall(r"^ended with (\d)$", done.stderr, re.MULTILINE),
                         done.stdout + done.stderr)
        no_room = f"there is no room in {disk}/out, or no permission to write"
        self.assertEqual(3, (done.stderr + done.stdout).count(no_room), done.stdout + done.stderr)
        self.expect_all_off()

    def test_a_disk_that_becomes_full_or_read_only_before_the_first_chunk_can_be_gone_on_with(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        disk = self.folder / "disk"
        disk.mkdir()
        # No inode for the folder, none for the chunks, and no permission when it is gone on with.
        script = ('mount -t tmpfs -o size=40m,nr_inodes=1 none "$0" || exit 9\n'
                  'again() { code=0; "$@" || code=$?; echo "ended with $code" >&2; ls "$0/out" >&2; }\n'
                  'again "$@"; mount -o remount,nr_inodes=9 "$0"; again "$@"\n'
                  'mount -o remount,ro "$0"; again "$@"\n'
                  'mount -o remount,rw,nr_inodes=9999 "$0"; again "$@"')
        done = self.sweep_on_disk(disk, script, plan, "--lines", "1")
        self.assertEqual(["3", "3", "3", "0"], re.findall(r"^ended with (\d)$", done.stderr, re.MULTILINE),
                         done.stdout + done.stderr)
        no_room = (f"sweep: there is no room in {disk}/out, or no permission to write; with room the same command "
                   "goes on")
        self.assertEqual(3, done.stderr.splitlines().count(no_room), done.stderr)
        self.assertNotIn(".sh: line", done.stderr)

    def test_a_merge_that_has_no_room_is_gone_on_with(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        program = self.folder / "programs/SarvexToolBench"
        program.parent.mkdir()
        full = self.folder / "full"
        # A disk that is full at this moment only.
        program.write_text(f'#!/bin/sh\n[ "$1" != merge ] || [ ! -e "{full}" ] ||\n'
                           '{ echo "SarvexToolBench: cannot write result.xml: No space left on device" >&2; exit 2; }\n'
                           f'exec "{support.PROGRAMS}/SarvexToolBench" "$@"\n')
        program.chmod(0o755)
        self.environment["PATH"] = f"{program.parent}:{self.environment['PATH']}"
        full.touch()
        done = self.expect(3, self.sweep(plan))
        self.assertIn("cannot write result.xml: No space left on device\n", done.stderr)
        self.assertIn(f"All chunks are measured, and not merged: there is no room in {self.sweep_folder()}, or no "
                      f"permission to write.\nTo merge them:\n  {support.SWEEPS['parallel']} {plan} ", done.stdout)
        full.unlink()
        before = [device.commands() for device in self.devices]
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.assertEqual(before, [device.commands() for device in self.devices])

    def test_output_that_nobody_reads_changes_neither_the_work_nor_the_code(self):
        self.start_devices(2)
        refused = "2.4,A,20,100,HE,MCS0,SISO,242,0,none\n"
        for number, (script, more, code) in enumerate((('"$@" | true; exit ${PIPESTATUS[0]}', "", 0),
                                                       ('"$@" | head -n 1; exit ${PIPESTATUS[0]}', refused, 1),
                                                       ('"$@" >/dev/full', "", 0), ('"$@" >/dev/full', refused, 1),
                                                       ('"$@" >&-', "", 0), ('"$@" >&- 2>&- <&-', refused, 1))):
            with self.subTest(script):
                plan = self.write_plan(12, f"plan{number}.csv")
                plan.write_text(plan.read_text() + more)
                done = subprocess.run(["bash", "-c", script, "bash", support.SWEEPS["parallel"], plan, "--table",
                                       self.table, "--", "--client", support.CLIENT], env=self.environment,
                                      cwd=self.folder, capture_output=True, text=True, check=False)
                self.expect(code, done)
                self.assertNotIn(".sh: line", done.stderr)
                merged = self.sweep_folder(plan.stem) / "merged"
                self.assertEqual(plan.read_bytes(), (merged / "test-file.csv").read_bytes())

    def test_a_folder_without_links_is_told_before_anything_is_measured(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        path = self.environment["PATH"]
        self.put_before("ln", "exit 1")
        done = self.expect(3, self.sweep(plan))
        self.assertTrue(done.stderr.endswith(f"sweep: no symbolic link can be made in {self.sweep_folder()}, which a "
                                             "sweep needs; with links the same command goes on\n"), done.stderr)
        for device in self.devices:
            self.assertEqual([], device.commands())
        self.environment["PATH"] = path
        self.expect(0, self.sweep(plan))

    def test_complete_runs_that_cannot_be_made_to_count_are_kept_until_they_can(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        path = self.environment["PATH"]
        self.put_before("ln", "[[ ${!#} != */claimed ]] || exit 1")
        done = self.expect(3, self.sweep(plan, "--lines", "10"))
        runs = self.sweep_folder() / "runs"
        self.assertIn(f"sweep: the link {runs}/chunk-0001/claimed cannot be made\n", done.stderr)
        self.assertIn(f"after 0 of 20 lines: complete runs cannot be made to count in {runs}.\n", done.stdout)
        self.assertEqual([runs / "chunk-0001/1", runs / "chunk-0002/1"], sorted(runs.glob("*/[0-9]")))
        self.assertFalse((self.sweep_folder() / "surplus").exists())
        self.assertEqual([], list(self.sweep_folder().glob("benches/*/failures")))
        before = [device.commands() for device in self.devices]
        self.expect(3, self.sweep(plan))
        self.environment["PATH"] = path
        self.expect(0, self.sweep(plan))
        self.assertEqual(before, [device.commands() for device in self.devices])
        self.expect_whole_result(plan)

    def test_runs_that_cannot_be_merged_are_wrong_input(self):
        self.start_devices(2)
        plan = self.write_plan(20)
        foreign = self.sweep_folder() / "runs/by hand"
        foreign.mkdir(parents=True)
        (self.sweep_folder() / "sweep.lock").touch()
        (foreign / "run.json").write_text("{}")
        done = self.expect(2, self.sweep(plan))
        self.assertIn("the facts of the run runs/by hand cannot be used", done.stderr)
        self.assertNotIn("All chunks are measured", done.stdout)

    def sweep_on_disk(self, disk, script, plan, *options):
        """What a script ends with that has the disk and the command of a sweep on it."""
        return subprocess.run(
            ["unshare", "--user", "--mount", "--map-root-user", "bash", "-c", script, disk,
             support.SWEEPS["parallel"], plan, "--table", self.table, "--out", disk / "out", *options, "--",
             "--client", support.CLIENT],
            env=self.environment, cwd=self.folder, capture_output=True, text=True, check=False, timeout=240)

    def wait_for_the_jobs(self):
        mark = f"SARVEX_LOCKS={self.folder}/locks"
        wait_until(lambda: not list(support.processes_with(mark)), "all jobs have ended", 120)

    def test_a_bench_that_somebody_uses_by_hand_is_left_to_him(self):
        self.start_devices(2, latency=20)
        plan = self.write_plan(120)
        # Longer than the sweep, however busy the machine is.
        by_hand = subprocess.Popen(
            [support.PROGRAMS / "SarvexToolBench", "run", self.write_plan(3000, "long.csv"), "--daemon", self.devices[0].daemon, "--out",
             self.folder / "by hand", "--client", support.CLIENT], env=self.environment,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(by_hand.wait)
        self.addCleanup(by_hand.terminate)
        wait_until(lambda: len(self.devices[0].commands()) > 4, "the run by hand goes on")
        done = self.expect(0, self.sweep(plan, "--lines", "15"))
        self.assertRegex(done.stderr, "bench1 is out of use: .* is in use by process")
        self.expect_whole_result(plan)
        by_hand.terminate()
        self.assertEqual(3, by_hand.wait(60))
        self.expect_all_off()

    def test_a_sweep_that_is_killed_is_under_way_until_its_runs_have_ended(self):
        self.start_devices(2, latency=20)
        plan = self.write_plan(100)
        sweep = self.start_sweep(plan, "--lines", "25")
        self.halt_all()
        sweep.kill()
        sweep.wait()
        done = self.expect(2, self.sweep(plan))
        self.assertRegex(done.stderr, "is under way: its call was killed, and its jobs go on; after kill [0-9]+ no ")
        os.kill(int(re.search("kill ([0-9]+)", done.stderr)[1]), signal.SIGTERM)
        self.let_all_go_on()
        self.wait_for_the_jobs()
        self.assertLess(len(self.runs()), 4)
        self.expect(0, self.sweep(plan))
        self.expect_whole_result(plan)
        self.expect_all_off()


class SlurmEndings(EndingTest):
    engine = "slurm"

    def test_a_second_ctrl_c_before_the_jobs_are_cancelled_cancels_them(self):
        self.start_farm(2)
        plan = self.write_plan(200)
        cancelling = self.folder / "cancelling"
        self.put_before("scancel", f"trap '' INT; touch {cancelling}; sleep 3")
        sweep = self.start_sweep(plan, "--lines", "50")
        self.halt_all()
        rows = self.rows()
        os.killpg(sweep.pid, signal.SIGINT)
        wait_until(cancelling.exists, "the sweep begins to cancel")
        time.sleep(2)
        os.killpg(sweep.pid, signal.SIGINT)
        sweep.wait(60)
        self.let_all_go_on()
        done = self.expect(4, self.finish(sweep))
        self.assertIn("left at once: jobs may still be stopping their transmitters", done.stderr)
        self.assertTrue(done.stderr.endswith("\nsweep: these benches may still be transmitting: bench1 bench2\n"),
                        done.stderr)
        wait_until(lambda: not self.slurm.jobs(), "all jobs have ended")
        # The line of each bench, and one whose row was not written yet.
        self.assertLessEqual(self.rows(), rows + 4)
        self.expect_all_off()

    def test_ctrl_c_while_slurm_answers_slowly_is_told_as_such(self):
        self.start_farm(2)
        plan = self.write_plan(20)
        path = self.environment["PATH"]
        for command in ("scontrol", "sinfo", "squeue", "sbatch"):
            with self.subTest(command):
                asked = self.folder / command
                self.environment["PATH"] = path
                self.put_before(command, f"[ -e {asked} ] || {{ touch {asked}; sleep 30; }}")
                sweep = self.start_sweep(plan)
                wait_until(asked.exists, f"the sweep waits for {command}")
                os.killpg(sweep.pid, signal.SIGINT)
                done = self.expect(3, self.finish(sweep))
                self.assertIn("sweep: stopping; this takes until all transmitters are off", done.stderr)
                self.assertNotIn("Slurm ", done.stdout + done.stderr)
                self.assertEqual([], self.slurm.jobs())

    def test_ctrl_c_before_the_jobs_of_an_earlier_call_are_found_ends_them(self):
        self.start_farm(2)
        plan = self.write_plan(400)
        path = self.environment["PATH"]
        # While they are named, looked for, and compared with what this call would measure, and before a refusal.
        for command, condition in (("sha256sum", "$# = 0"), ("squeue", "$* = -h*"), ("realpath", "$1 = --"),
                                   ("cmp", "$1 = -s")):
            with self.subTest(command):
                self.environment["PATH"] = path
                sweep = self.start_sweep(plan, "--lines", "100")
                self.halt_all()
                sweep.kill()
                sweep.wait()
                begun = self.slow_down(command, condition)
                next_call = self.start_sweep(plan)
                self.interrupt_at(next_call, begun)
                self.let_all_go_on()
                done = self.expect(3, self.finish(next_call))
                if command != "cmp":
                    self.assertIn(" of 400 lines: it was interrupted.\n", done.stdout)
                if command in ("cmp", "squeue"):
                    self.assertNotIn("an earlier call", done.stderr)
                self.assertEqual([], self.slurm.jobs())
                self.expect_all_off()

    def test_ctrl_c_before_the_last_stop_on_another_host_is_begun_leaves_it_to_be_done(self):
        self.start_farm(2)
        plan = self.write_plan(12)
        self.expect(0, self.sweep(plan))
        self.put_before("uname", "[ -z \"${SLURM_JOB_ID:-}\" ] || { echo node; exit; }")
        note = self.sweep_folder() / "benches/bench1/running"
        note.write_text(f"node 0 0 chunk-0001/1 {self.devices[0].daemon}\n")
        sending = self.slow_down("sbatch", "1 = 1")
        sweep = self.start_sweep(plan)
        self.interrupt_at(sweep, sending)
        self.expect(0, self.finish(sweep))
        self.assertFalse(note.exists())

    def test_a_controller_that_misses_the_first_question_about_jobs_is_asked_again(self):
        self.start_farm(2)
        asked = self.folder / "asked"
        self.put_before("squeue", f"[ -e {asked} ] || {{ touch {asked}; exit 1; }}")
        plan = self.write_plan(20)
        done = self.expect(0, self.sweep(plan))
        self.assertIn("sweep: Slurm's controller does not answer; waiting\n", done.stderr)
        # Which a later call is held to.
        self.assertIn("--client ", (self.sweep_folder() / "run-options").read_text())
        self.expect_whole_result(plan)

    def test_benches_that_have_never_answered_are_told(self):
        self.start_farm(2)
        plan = self.write_plan(20)
        for name in ("bench1", "bench2", "slurmctld"):
            self.slurm.kill_process(name)
        self.slurm.start_controller("-c")
        wait_until(self.slurm.states, "the controller answers")
        sweep = self.start_sweep(plan)
        self.assertIn("0/20 (0 %), 0:0", line := self.line_with(sweep, "on benches"))
        self.assertIn("; 0 on benches, down: bench1 bench2", line)
        sweep.terminate()
        self.expect(3, self.finish(sweep))

    def line_with(self, sweep, words):
        return next(line for line in sweep.stderr if words in line)


if __name__ == "__main__":
    unittest.main()
