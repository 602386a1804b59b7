"""A Windows of a test's own, in which something may be installed."""
import os
import pathlib
import re
import shutil
import tempfile

from support import ROOT, WINE, require, run

BUILD = ROOT / "build"
PRISTINE = BUILD / "wine-pristine"

# What is installed must not turn up in the menus of whoever runs the tests.
OVERRIDES = {"WINEDLLOVERRIDES": "mscoree,mshtml=;winemenubuilder.exe=d"}


class WinePrefix:
    """A copy of a fresh prefix; it goes with the test or the class of tests, and so do its processes."""

    def __init__(self, test):
        self.environment = {**os.environ, **OVERRIDES, "WINEPREFIX": str(PRISTINE)}
        if not (PRISTINE / ".ready").exists():
            require(*WINE, env=self.environment)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="wine-", dir=BUILD))
        add_cleanup = test.addClassCleanup if isinstance(test, type) else test.addCleanup
        add_cleanup(shutil.rmtree, self.folder, True)
        self.environment["WINEPREFIX"] = str(self.folder)
        # The system's files are hundreds of megabytes, and nobody writes to them; the registry is written.
        shutil.copytree(PRISTINE, self.folder, symlinks=True, dirs_exist_ok=True, copy_function=link)
        self.drive = self.folder / "drive_c"
        add_cleanup(self.stop)

    def settings(self):
        """For env, before a command that is to run in it."""
        return [f"{name}={self.environment[name]}" for name in (*OVERRIDES, "WINEPREFIX")]

    def run(self, *command, **options):
        return run(*WINE, *command, env=self.environment, **options)

    def stop(self):
        """Ends whatever still runs, and writes the registry."""
        run("wineserver", "-k", env=self.environment)
        run("wineserver", "-w", env=self.environment)

    def files(self):
        """All files and folders of the drive, relative to it, but temporary ones."""
        return {path.relative_to(self.drive).as_posix() for path in self.drive.rglob("*")
                if not path.relative_to(self.drive).as_posix().startswith(("windows/temp/", "users/"))
                or "Start Menu" in path.parts}

    def registry(self):
        """All keys and values of the machine and the user, as lines. Ends whatever still runs."""
        self.stop()
        lines, key = set(), ""
        for name in ("system.reg", "user.reg"):
            for line in (self.folder / name).read_text(encoding="utf-8", errors="replace").splitlines():
                if line.startswith("["):
                    key = re.sub(r"\] \d+$", "]", line)
                    lines.add(f"{name} {key}")
                elif line.startswith(('"', "@")):
                    lines.add(f"{name} {key} {line}")
        return lines

    def registry_value(self, key, name):
        """The text of a value, or None."""
        done = self.run("reg", "query", key, "/v", name)
        match = re.search(rf"^    {re.escape(name)}    REG_\w+    (.*?)\r?$", done.stdout.decode(), re.MULTILINE)
        return match[1] if match else None


def link(source, target):
    if source.endswith(".reg"):
        shutil.copy2(source, target)
    else:
        os.link(source, target, follow_symlinks=False)
