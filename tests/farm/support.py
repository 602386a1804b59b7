"""What the tests of the farm share: simulated devices, a private Slurm on loopback, and what the devices'
request logs tell. All that is started is ended by its process id, also when a test fails."""
import contextlib
import itertools
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/EndToEnd"))
import free_port  # noqa: E402

PROGRAMS = pathlib.Path(os.environ.get("SARVEX_PROGRAMS", ROOT / "build/linux/bin")).resolve()
# The long form has minutes.
LONG = "SARVEX_LONG_TESTS" in os.environ
CLIENT = PROGRAMS / "SarvexToolClientWithoutPauses"
SWEEPS = {"slurm": ROOT / "farm/slurm/sweep", "parallel": ROOT / "farm/parallel/sweep"}
HEADER = ("Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource unit,"
          "Large RU Size")
TIMEOUT = 600
# Nothing that a test starts outlives it, however it ends.
WITH_TEST = ["setpriv", "--pdeathsig", "TERM"]

# Whoever has started the tests in the background ignores these, and all that they start would too.
signal.signal(signal.SIGINT, signal.default_int_handler)
signal.signal(signal.SIGHUP, signal.SIG_DFL)


def wait_until(condition, what, seconds=60):
    """Whatever the condition gives in the end."""
    deadline = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"in {seconds} s it was not so: {what}")
        time.sleep(0.05)
    return value


def is_alive(process):
    """Whether there is such a process that has not ended: one that nobody has waited for counts as ended."""
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    return False


def end_process(process, seconds=30):
    """In order, and by force when that takes too long."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        with contextlib.suppress(ProcessLookupError):
            os.kill(process, number)
        deadline = time.monotonic() + seconds
        while is_alive(process):
            if time.monotonic() > deadline:
                break
            time.sleep(0.02)
        else:
            return


def plan_lines(count):
    """Different lines, of which no simulated device refuses one. Most cells are carried over from the lines
    before; the first line sets all, so that nothing depends on the device's own values."""
    channels = {"2.4": range(1, 12), "5": range(36, 65, 4), "6": range(1, 94, 4)}
    rates = [f"{name}{index}" for name in ("MCS", "R") for index in range(12)]
    lines = []
    before = None
    for band, chains, rate, place in itertools.product(channels, ("A", "B", "AB"), rates, range(24)):
        if place >= len(channels[band]):
            continue
        cells = [band, chains, "20", str(channels[band][place]), "HE", rate, "SISO", "242", "0", "none"]
        # Every seventh line is written out.
        lines.append(",".join("-" if before and len(lines) % 7 and new == old else new
                              for new, old in zip(cells, before or cells)))
        before = cells
        if len(lines) == count:
            return lines
    raise ValueError(f"there are only {len(lines)} lines")


def write_plan(path, count):
    path.write_text("\n".join([HEADER, *plan_lines(count)]) + "\n")
    return path


class Device:
    """A simulated daemon with a port of its own, which keeps its log when it is started again."""

    def __init__(self, folder, number, latency):
        self.name = f"bench{number}"
        self.log_file = folder / f"requests-{number}.jsonl"
        self.port = free_port.reserve()
        self.options = ["--port", str(self.port), "--latency", str(latency)]
        self.earlier = []
        self.process = None
        self.start()

    def start(self, *options):
        if self.log_file.exists():
            self.earlier += self.log_file.read_text().splitlines()
        self.process = subprocess.Popen(
            # Also one that is halted.
            ["setpriv", "--pdeathsig", "KILL", PROGRAMS / "SimulatedDaemon", *self.options, *options, "--request-log",
             self.log_file],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        assert "listens on" in self.process.stdout.readline()

    def kill(self):
        self.process.kill()
        self.end()

    def end(self):
        end_process(self.process.pid)
        self.process.wait()
        self.process.stdout.close()

    def halt_in_a_transmission(self):
        """Whether it does not run any more, and transmits: then no run on it can end."""
        self.process.send_signal(signal.SIGSTOP)
        if self.is_off():
            self.go_on()
            return False
        return True

    def go_on(self):
        self.process.send_signal(signal.SIGCONT)

    @property
    def daemon(self):
        return f"127.0.0.1:{self.port}"

    def commands(self):
        """Of all requests that came, also to the processes that were killed."""
        lines = self.earlier + (self.log_file.read_text().splitlines() if self.log_file.exists() else [])
        return [json.loads(line)["command"] for line in lines if line.endswith("}")]

    def is_off(self):
        """Whether the last start of a transmission was followed by a stop."""
        transmits = False
        for command in self.commands():
            if "-wifi-start" in command:
                transmits = True
            elif "-wifi-stop" in command:
                transmits = False
        return not transmits


class Slurm:
    """A controller and node daemons on loopback, with the lab's own slurm.conf but for names, ports, folders
    and times."""

    def __init__(self, folder, benches):
        self.folder = folder
        self.benches = benches
        self.processes = {}
        for name in ("state", "spool", "log", "munge", "key"):
            (folder / name).mkdir()
        (folder / "key").chmod(0o700)
        (folder / "munge").chmod(0o755)
        self.write_configuration()
        self.environment = {**os.environ, "SLURM_CONF": str(folder / "slurm.conf")}
        try:
            self.start_munge()
            self.start_controller("-c")
            for bench in benches:
                self.start_node(bench)
            wait_until(lambda: self.states() == {bench: "idle" for bench in benches}, "all benches are idle")
        except BaseException:
            self.end()
            raise

    def write_configuration(self):
        user = subprocess.check_output(["id", "-un"], text=True).strip()
        host = os.uname().nodename.split(".")[0]
        values = {
            "SlurmctldHost": f"{host}(127.0.0.1)", "SlurmUser": user, "SlurmdUser": user,
            "SlurmctldPort": free_port.reserve(), "StateSaveLocation": self.folder / "state",
            "SlurmdSpoolDir": self.folder / "spool/%n", "SlurmctldPidFile": self.folder / "slurmctld.pid",
            "SlurmdPidFile": self.folder / "slurmd-%n.pid", "SlurmctldLogFile": self.folder / "log/slurmctld",
            "SlurmdLogFile": self.folder / "log/slurmd-%n", "JobCompLoc": self.folder / "log/jobs",
            "AuthInfo": f"socket={self.folder}/munge/socket,cred_expire=5",
            # What a lab can wait for.
            "SlurmdTimeout": 5, "SlurmctldTimeout": 10}
        text = (ROOT / "farm/slurm/slurm.conf").read_text()
        for name, value in values.items():
            text, count = re.subn(rf"^{name}=.*$", lambda _: f"{name}={value}", text, flags=re.MULTILINE)
            assert count == 1, name
        text = re.sub(r"^NodeName=.*\n", "", text, flags=re.MULTILINE)
        for bench in self.benches:
            text += (f"NodeName={bench} NodeHostname={host} NodeAddr=127.0.0.1 Port={free_port.reserve()} "
                     f"CPUs=1 Gres=bench:1\n")
        (self.folder / "slurm.conf").write_text(text)
        gres = (ROOT / "farm/slurm/gres.conf").read_text()
        (self.folder / "gres.conf").write_text(
            re.sub(r"^NodeName=\S+", "NodeName=" + ",".join(self.benches), gres, flags=re.MULTILINE))

    def start_munge(self):
        key = self.folder / "key"
        (key / "key").write_bytes(os.urandom(1024))
        (key / "key").chmod(0o400)
        # A folder of tests is below /tmp, which others may write.
        self.start_process("munged", "munged", "--force", "--foreground", f"--key-file={key}/key",
                           f"--socket={self.folder}/munge/socket", f"--pid-file={self.folder}/munge/pid",
                           f"--log-file={key}/log", f"--seed-file={key}/seed", "--num-threads=2")
        wait_until((self.folder / "munge/socket").exists, "munged listens")

    def start_process(self, name, *command):
        with open(self.folder / "log" / f"{name}.out", "ab") as output:
            self.processes[name] = subprocess.Popen(
                [*WITH_TEST, *command], env=self.environment, stdin=subprocess.DEVNULL, stdout=output,
                stderr=subprocess.STDOUT, start_new_session=True)

    def start_controller(self, *options):
        self.start_process("slurmctld", "slurmctld", "-D", *options)

    def start_node(self, bench, *surroundings):
        self.start_process(bench, *surroundings, "slurmd", "-D", "-N", bench)

    def start_node_without(self, bench, folder):
        """As a host that has nothing in a folder, where nobody may write."""
        log = self.folder / "log" / f"slurmd-{bench}"
        starts = log.read_text().count("slurmd started")
        self.kill_process(bench, signal.SIGTERM)
        self.start_node(bench, "unshare", "--mount", "sh", "-c",
                        'mount -t tmpfs -o ro none "$0" && exec "$@"', folder)
        wait_until(lambda: log.read_text().count("slurmd started") > starts, f"slurmd of {bench} has started again")

    def kill_process(self, name, number=signal.SIGKILL):
        process = self.processes.pop(name)
        process.send_signal(number)
        process.wait(30)

    def kill_node(self, bench):
        """All of it, as if the host had lost its power: the node daemon, its job and the job's parent."""
        job = [process for process in self.processes_of_jobs()
               if f"SLURMD_NODENAME={bench}" in environment_of(process)]
        parents = [parent_of(process) for process in job]
        self.kill_process(bench)
        for process in parents:
            if command_of(process).startswith("slurmstepd"):
                kill(process)
        for process in job:
            kill(process)

    def processes_of_jobs(self):
        """Those that have this Slurm's configuration and a job in their environment."""
        for process in processes_with(f"SLURM_CONF={self.folder}/slurm.conf"):
            if any(part.startswith("SLURM_JOB_ID=") for part in environment_of(process)):
                yield process

    def configure(self, name, value):
        """Changes a setting while all goes on; what it was before is returned."""
        file = self.folder / "slurm.conf"
        text = file.read_text()
        before = re.search(rf"^{name}=(.*)$", text, re.MULTILINE)[1]
        file.write_text(re.sub(rf"^{name}=.*$", f"{name}={value}", text, flags=re.MULTILINE))
        self.ask("scontrol", "reconfigure")
        return before

    def ask(self, *command, check=True):
        done = subprocess.run(command, env=self.environment, capture_output=True, text=True, check=False,
                              stdin=subprocess.DEVNULL, timeout=TIMEOUT)
        if check and done.returncode:
            raise AssertionError(f"{command} ended with {done.returncode}: {done.stderr}")
        return done.stdout

    def states(self):
        lines = self.ask("sinfo", "-h", "-N", "-o", "%N %T", check=False).splitlines()
        return dict(line.split() for line in lines)

    def reasons(self):
        lines = self.ask("sinfo", "-h", "-N", "-o", "%N|%E").splitlines()
        return dict(line.split("|", 1) for line in lines)

    def jobs(self):
        """Their states by task; empty when there are none, or no controller."""
        lines = self.ask("squeue", "-h", "-r", "-o", "%i %T %N", check=False).splitlines()
        return [line.split(" ") for line in lines]

    def running(self):
        return {node: job for job, state, node in self.jobs() if state == "RUNNING"}

    def end(self):
        self.kill_jobs()
        for name in sorted(self.processes, key=lambda name: name == "munged"):
            end_process(self.processes[name].pid)
            self.processes[name].wait()
        self.kill_jobs()

    def kill_jobs(self):
        """With them their parents end, which are no children of ours."""
        for process in self.processes_of_jobs():
            kill(process)


def processes_with(mark):
    """Those that have this in their environment."""
    for entry in pathlib.Path("/proc").iterdir():
        if entry.name.isdigit() and mark in environment_of(entry.name):
            yield int(entry.name)


def kill(process):
    with contextlib.suppress(ProcessLookupError):
        os.kill(process, signal.SIGKILL)


def parent_of(process):
    with contextlib.suppress(OSError):
        return int(pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[1])
    return 0


def environment_of(process):
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/environ").read_bytes().decode(errors="replace").split("\0")
    return []


def command_of(process):
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/cmdline").read_bytes().decode(errors="replace")
    return ""


class FarmTest(unittest.TestCase):
    """A folder, simulated devices and the programs; a derived class says of which engine."""
    maxDiff = None
    engine = "parallel"
    latency = 5

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="sarvex-farm-"))
        self.addCleanup(shutil.rmtree, self.folder, True)
        (self.folder / "locks").mkdir()
        self.devices = []
        self.environment = {**os.environ, "PATH": f"{PROGRAMS}{os.pathsep}{os.environ['PATH']}",
                            "SARVEX_LOCKS": str(self.folder / "locks"),
                            "SARVEX_BENCHES": str(self.folder / "no benches")}
        self.slurm = None

    def start_devices(self, count, latency=None):
        for number in range(1, count + 1):
            device = Device(self.folder, number, self.latency if latency is None else latency)
            self.addCleanup(device.end)
            self.devices.append(device)
        self.table = self.folder / "benches"
        self.table.write_text("".join(f"{device.name} {device.daemon} DUT-{number}\n"
                                      for number, device in enumerate(self.devices, 1)))

    def start_slurm(self, benches):
        self.slurm = Slurm(pathlib.Path(tempfile.mkdtemp(prefix="sarvex-slurm-")), benches)
        self.addCleanup(shutil.rmtree, self.slurm.folder, True)
        self.addCleanup(self.slurm.end)
        self.environment["SLURM_CONF"] = self.slurm.environment["SLURM_CONF"]

    def put_before(self, command, words):
        """In sweeps that begin later, these words of a shell are run before each such command. Bash goes on after a
        Ctrl-C that comes just as what it waits for has ended; such a command would not."""
        folder = self.folder / "before"
        folder.mkdir(exist_ok=True)
        script = folder / command
        script.write_text("#!/usr/bin/env bash\ntrap 'trap - INT; kill -INT $$' INT\n"
                          f'{words}\nexec {shutil.which(command)} "$@"\n')
        script.chmod(0o755)
        self.environment["PATH"] = f"{folder}{os.pathsep}{self.environment['PATH']}"

    def start_farm(self, count=4, latency=None):
        self.start_devices(count, latency)
        if self.engine == "slurm":
            self.start_slurm([device.name for device in self.devices])

    def write_plan(self, count, name="plan.csv"):
        return write_plan(self.folder / name, count)

    def start_sweep(self, plan, *options, run_options=(), wait=5, engine=None, client=CLIENT, **more):
        """In a session of its own, so that a signal for its group reaches all that a terminal would reach."""
        command = [*WITH_TEST, SWEEPS[engine or self.engine], plan, "--table", self.table, *options, "--",
                   "--client", client, *(["--wait", str(wait)] if wait else []), *run_options]
        sweep = subprocess.Popen(command, cwd=self.folder, stdin=subprocess.DEVNULL, text=True,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True,
                                 env=self.environment, **more)
        self.addCleanup(self.end_sweep, sweep)
        return sweep

    def end_sweep(self, sweep):
        if sweep.poll() is None:
            end_process(sweep.pid, 60)
        sweep.wait()
        sweep.stdout.close()
        sweep.stderr.close()

    def finish(self, sweep):
        """What the sweep ended with."""
        output, errors = sweep.communicate(timeout=TIMEOUT)
        return subprocess.CompletedProcess(sweep.args, sweep.returncode, output, errors)

    def sweep(self, plan, *options, **more):
        return self.finish(self.start_sweep(plan, *options, **more))

    def expect(self, code, done):
        self.assertEqual(code, done.returncode, done.stdout + done.stderr + self.logs())
        return done

    def logs(self):
        """For the reader of a failure."""
        texts = [f"--- {file}\n{file.read_text(errors='replace')[-2000:]}"
                 for file in sorted(self.folder.glob("sweeps/*/log/*")) if file.stat().st_size]
        return "\n" + "\n".join(texts[:20])

    def sweep_folder(self, name="plan"):
        return self.folder / "sweeps" / name

    def rows(self, name="plan"):
        """How many there are of all attempts."""
        journals = self.sweep_folder(name).glob("runs/*/*/journal.jsonl")
        return sum(len(journal.read_text().splitlines()) for journal in journals)

    def halt_all(self):
        """Then each bench has a run that cannot end."""
        for device in self.devices:
            wait_until(device.halt_in_a_transmission, f"{device.name} transmits", 120)

    def let_all_go_on(self):
        for device in self.devices:
            device.go_on()

    def wait_for_rows(self, count):
        """Until the runs have so many rows in all: then the sweep is in the middle of its work."""
        wait_until(lambda: self.rows() >= count, f"{count} rows are there", 120)

    def client_alone(self, plan):
        """The results of one undisturbed client over the whole plan."""
        folder = self.folder / "alone"
        if not folder.exists():
            folder.mkdir()
            device = Device(folder, 0, 0)
            try:
                shutil.copy(CLIENT, folder)
                (folder / "Socket.cfg").write_text(str(device.port))
                subprocess.run([folder / CLIENT.name, "-wifi-test-by-file", plan], cwd=folder, check=True,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, timeout=TIMEOUT)
            finally:
                device.end()
        return [(folder / name).read_bytes() for name in ("result.csv", "result.xml")]

    def expect_whole_result(self, plan, name="plan"):
        """Byte for byte what one client writes, so each line once."""
        merged = self.sweep_folder(name) / "merged"
        self.assertEqual(self.client_alone(plan), [(merged / file).read_bytes()
                                                   for file in ("result.csv", "result.xml")])
        self.assertEqual(plan.read_bytes(), (merged / "test-file.csv").read_bytes())

    def expect_all_off(self):
        for device in self.devices:
            self.assertTrue(device.is_off(), f"{device.name} transmits: {device.commands()[-3:]}")

    def runs(self, name="plan"):
        """The folders of all runs, those that did not count too."""
        folder = self.sweep_folder(name)
        return [file.parent for pattern in ("runs/*/*/run.json", "surplus/*/run.json")
                for file in folder.glob(pattern) if not file.parent.is_symlink()]

    def expect_one_run_at_a_time(self, name="plan"):
        """In each device's log, the commands of one run come without those of another in between."""
        for device in self.devices:
            runs = [exchanges_of(run) for run in self.runs(name)
                    if json.loads((run / "run.json").read_text())["daemon"] == device.daemon]
            runs = sorted((run for run in runs if run), key=lambda run: run[0]["time"])
            self.assertEqual([], foreign_commands(device.commands(), runs), device.name)


def exchanges_of(run):
    lines = (run / "exchanges.jsonl").read_text().splitlines()
    return [json.loads(line) for line in lines if line.endswith("}")]


def foreign_commands(commands, runs):
    """The commands of a log that are not the next ones of the runs, one run after the other. A run that was
    killed has not recorded its last command, and a stop may have been sent for it."""
    foreign = []
    place = 0
    for run in runs:
        for number, exchange in enumerate(run):
            answered = exchange["end"] == "answered"
            skipped = []
            while place + len(skipped) < len(commands) and commands[place + len(skipped)] != exchange["command"]:
                skipped.append(commands[place + len(skipped)])
            if place + len(skipped) == len(commands):
                # What had no answer may not have come.
                if answered:
                    foreign.append(f"missing: {exchange['command']}")
                continue
            if not answered and skipped:
                continue
            place += len(skipped) + 1
            strange = [command for command in skipped if "-wifi-stop" not in command]
            # The first command of a run may come after the last one of a killed run.
            foreign += strange[1:] if number == 0 else strange
    # So may the end of the log.
    foreign += [command for command in commands[place:] if "-wifi-stop" not in command][1:]
    return foreign


def each_test(suite):
    for part in suite:
        if isinstance(part, unittest.TestSuite):
            yield from each_test(part)
        else:
            yield part


def load_tests(loader, tests, pattern):
    """With SARVEX_SHARD=I/N, every Nth test of a file, from the one with the number I on; for unittest."""
    number, count = map(int, os.environ.get("SARVEX_SHARD", "0/1").split("/"))
    return unittest.TestSuite(list(each_test(tests))[number::count])
