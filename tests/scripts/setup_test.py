"""Runs scripts/setup with a package manager that only notes what it is asked."""
import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "setup"
FOR_DEMO = ["cmake", "g++", "libboost-dev", "libcli11-dev", "ninja-build", "nlohmann-json3-dev",
            "zlib1g-dev"]
# None of the commands that would change the machine is the real one.
COMMANDS = {
    "dpkg-query": 'for package in $INSTALLED; do echo "installed $package"; done',
    "apt-get": 'echo "$*" >>"$NOTES"; [ "$FAILING" = "" ] || [ "${*#*$FAILING}" = "$*" ]',
    "id": "echo 0",
    "tee": "cat >/dev/null",
    "chmod": ":",
    "mkdir": ":",
    "rm": ":",
    "systemctl": ":",
}


class SetupTest(unittest.TestCase):
    def run_setup(self, *arguments, installed="", failing=""):
        """The run, and the words of each call of the package manager from its command on."""
        with tempfile.TemporaryDirectory() as folder:
            notes = pathlib.Path(folder) / "notes"
            notes.touch()
            for name, script in COMMANDS.items():
                command = pathlib.Path(folder) / name
                command.write_text(f"#!/bin/sh\n{script}\n")
                command.chmod(0o755)
            environment = {"PATH": f"{folder}{os.pathsep}{os.environ['PATH']}", "NOTES": str(notes),
                           "INSTALLED": installed, "FAILING": failing}
            done = subprocess.run([SCRIPT, *arguments], capture_output=True, text=True, check=False,
                                  env=environment)
            calls = [call.split() for call in notes.read_text().splitlines()]
        return done, [call[call.index("DPkg::Lock::Timeout=300") + 1:] for call in calls]

    def packages(self, call):
        self.assertEqual(["install", "-y", "--no-install-recommends"], call[:3])
        return sorted(call[3:])

    def test_the_demo_gets_only_what_it_needs_after_new_package_lists(self):
        done, calls = self.run_setup("demo")
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        self.assertEqual(["update"], calls[0])
        self.assertEqual(FOR_DEMO, self.packages(calls[1]))
        self.assertEqual(2, len(calls))

    def test_without_an_argument_all_is_installed(self):
        done, calls = self.run_setup()
        self.assertEqual(0, done.returncode)
        everything = set(self.packages(calls[1]))
        self.assertLess(set(FOR_DEMO) | {"googletest", "wine64", "clang", "git", "zip"}, everything)

    def test_packaging_gets_what_building_for_all_systems_needs_and_nothing_for_tests(self):
        done, calls = self.run_setup("package")
        self.assertEqual(0, done.returncode)
        packages = set(self.packages(calls[1]))
        self.assertLess(set(FOR_DEMO) | {"g++-mingw-w64-x86-64-posix", "zip", "pandoc"}, packages)
        self.assertEqual(set(), packages & {"googletest", "wine64", "clang", "chromium"})

    def test_only_what_is_missing_is_installed(self):
        _, calls = self.run_setup("demo", installed=" ".join(set(FOR_DEMO) - {"cmake"}))
        self.assertEqual(["cmake"], self.packages(calls[1]))

    def test_nothing_is_asked_for_when_all_is_there(self):
        done, calls = self.run_setup("demo", installed=" ".join(FOR_DEMO))
        self.assertEqual((0, [], "setup: everything needed is installed\n"),
                         (done.returncode, calls, done.stdout))

    def test_a_failure_of_the_package_manager_is_told(self):
        done, calls = self.run_setup("demo", failing="update")
        self.assertEqual((1, 1), (done.returncode, len(calls)))
        self.assertIn("setup: the package lists could not be fetched", done.stderr)
        done, calls = self.run_setup("demo", failing="install")
        self.assertEqual(1, done.returncode)
        self.assertIn("setup: apt-get could not install: g++ cmake", done.stderr)

    def test_another_argument_is_refused(self):
        done, calls = self.run_setup("everything")
        self.assertEqual((1, [], "setup: usage: scripts/setup [demo|package]\n"),
                         (done.returncode, calls, done.stderr))


if __name__ == "__main__":
    unittest.main()
