"""What the tests of the packages share. scripts/test-packages runs them; one alone runs as well, with the
packages in dist/ and the builds of the presets programs and windows-programs."""
import contextlib
import functools
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tarfile
import tempfile
import zipfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
DIST = pathlib.Path(os.environ.get("SARVEX_DIST", ROOT / "dist")).resolve()
LINUX_BUILD = pathlib.Path(os.environ.get("SARVEX_LINUX_BUILD", ROOT / "build/programs")).resolve()
WINDOWS_BUILD = pathlib.Path(os.environ.get("SARVEX_WINDOWS_BUILD", ROOT / "build/windows-programs")).resolve()
# The long form has minutes, and asks the network for Debian's packages.
LONG = "SARVEX_LONG_TESTS" in os.environ
VERSION = re.search(r"^project\(SarvexTool VERSION (\d+\.\d+\.\d+) ",
                    (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
TOP = f"SarvexTool-{VERSION}"
ZIP = DIST / f"{TOP}-windows-x64.zip"
MSI = DIST / f"{TOP}-windows-x64.msi"
TAR = DIST / f"{TOP}-linux-x64.tar.gz"
OBJECTS = DIST / f"{TOP}-linux-x64-objects.tar.gz"
DEB = DIST / f"sarvextool_{VERSION}_amd64.deb"
DEV_DEB = DIST / f"sarvextool-dev_{VERSION}_amd64.deb"
WINE = [str(ROOT / "scripts/wine")]
TIMEOUT = 240


def run(*command, **options):
    """A finished command with both outputs as bytes, whatever its exit code."""
    return subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, capture_output=True,
                          check=False, timeout=options.pop("timeout", TIMEOUT), **options)


def require(*command, **options):
    """As run, but the command has to succeed; standard output is returned."""
    done = run(*command, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}: "
                             + (done.stdout + done.stderr).decode(errors="replace"))
    return done.stdout


def temporary_folder(test):
    """A folder that goes with the test, or with the class of tests."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="sarvex-package-"))
    add_cleanup = test.addClassCleanup if isinstance(test, type) else test.addCleanup
    add_cleanup(shutil.rmtree, folder, True)
    return folder


def source_date():
    """The time that the files of the packages carry."""
    with tarfile.open(TAR) as archive:
        return archive.next().mtime


def unpack(package, folder):
    """Unpacks a package of any kind but the installer; the folder that its files are in is returned."""
    if package.suffix == ".deb":
        require("dpkg-deb", "--extract", package, folder)
        return folder
    if package.suffix == ".zip":
        with zipfile.ZipFile(package) as archive:
            archive.extractall(folder)
    else:
        with tarfile.open(package) as archive:
            archive.extractall(folder)
    return folder / TOP


def is_signed(file):
    """Whether a program for Windows or an installer carries a signature, whosoever's."""
    with tempfile.TemporaryDirectory() as folder:
        return run("osslsigncode", "extract-signature", "-in", file, "-out", f"{folder}/signature").returncode == 0


@contextlib.contextmanager
def simulator(*command):
    """Runs a simulated daemon on a free port. The value is its process and the port, of four digits. It is
    to be ended by -exit; whatever is left of it at the end is killed."""
    process = subprocess.Popen([*map(str, command), "--port", "0"], stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, text=True, start_new_session=True)
    try:
        line = process.stdout.readline()
        port = line.strip().rpartition(":")[2]
        if not port.isdigit():
            raise AssertionError(f"{command} said {line!r}")
        yield process, port
    finally:
        if process.poll() is None:
            # scripts/wine has a child.
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        process.stdout.close()


@functools.cache
def way_into_trees():
    """How this user enters another tree of directories: as root, or in a name space of its own."""
    command = ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc"]
    reports = []
    for way in (command, [*command, "--map-root-user"]):
        done = run(*way, "true")
        if done.returncode == 0:
            return way
        reports.append(done.stderr.decode())
    raise AssertionError("this user enters no tree: " + "; ".join(reports))


def enter(tree):
    """The words before a command that is to run with tree as its root directory, and with its /proc."""
    (tree / "proc").mkdir(exist_ok=True)
    return [*way_into_trees(), f"--root={tree}", "--wd=/"]
