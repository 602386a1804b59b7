"""Builds the client in a directory tree that holds a compiler, CMake, make and nothing else, and lays
out a build without SarvexToolBench.

The tree holds the files of these packages and of those that they depend on, and is the root directory
of the programs that run in it. Fails where the system lets nobody change the root directory.
"""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

PACKAGES = ["g++", "cmake", "make", "dash"]
ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = ["CMakeLists.txt", "CMakePresets.json", "cmake", "src", "examples", "packaging"]
NOT_NEEDED = ("/usr/share/doc/", "/usr/share/man/", "/usr/share/locale/")
# Who is not the superuser may be it in a name space of his own.
CHANGE_ROOT = ([] if os.geteuid() == 0 else ["unshare", "-r"]) + ["chroot"]
NO_ENVIRONMENT = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def package_files():
    """The files of the packages and of all that they depend on."""
    closure = output_of("apt-cache", "depends", "--recurse", "--installed", "--no-recommends",
                        "--no-suggests", "--no-conflicts", "--no-breaks", "--no-replaces",
                        "--no-enhances", *PACKAGES)
    names = {line for line in closure.splitlines() if line[0].isalnum()}
    installed = output_of("dpkg-query", "-W", "-f=${db:Status-Abbrev}${binary:Package}\n")
    owners = [line[3:] for line in installed.splitlines()
              if line.startswith("ii ") and line[3:].split(":")[0] in names]
    paths = set(output_of("dpkg-query", "-L", *owners).splitlines())
    return sorted(path[1:] for path in paths if not path.startswith(NOT_NEEDED) and
                  (os.path.islink(path) or os.path.isfile(path)))


def make_tree(tree):
    for folder in ["usr/bin", "usr/lib", "usr/lib64", "usr/sbin", "dev", "tmp", "source"]:
        (tree / folder).mkdir(parents=True)
    for folder in ["bin", "lib", "lib64", "sbin"]:
        (tree / folder).symlink_to(f"usr/{folder}")
    (tree / "dev" / "null").touch()
    packed = subprocess.Popen(["tar", "-C", "/", "-c", "-T", "-"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE)
    unpacking = subprocess.Popen(["tar", "-C", tree, "-x"], stdin=packed.stdout)
    packed.stdin.write("\n".join(package_files()).encode())
    packed.stdin.close()
    packed.stdout.close()
    if packed.wait() != 0 or unpacking.wait() != 0:
        raise OSError("the tree cannot be filled")
    for name in SOURCES:
        copy = shutil.copytree if (ROOT / name).is_dir() else shutil.copy
        copy(ROOT / name, tree / "source" / name)


class ClientAloneTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.tree = pathlib.Path(folder.name)
        make_tree(cls.tree)

    def run_inside(self, *command):
        return subprocess.run([*CHANGE_ROOT, self.tree, *command], capture_output=True, text=True,
                              check=False, stdin=subprocess.DEVNULL, env=NO_ENVIRONMENT)

    def succeed_inside(self, *command):
        done = self.run_inside(*command)
        self.assertEqual(0, done.returncode, done.stdout + done.stderr)
        return done.stdout

    def test_the_client_is_built_and_runs(self):
        # A release build, as without any option, but optimised less: it is linked in the same way.
        self.succeed_inside("cmake", "-S", "/source", "-B", "/build", "-DSARVEX_BUILD_SIMULATOR=OFF",
                            "-DSARVEX_BUILD_BENCH=OFF", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG")
        self.succeed_inside("cmake", "--build", "/build", "--parallel", str(os.cpu_count()))
        self.assertEqual("Usage: /build/bin/SarvexToolClient [args]\n",
                         self.succeed_inside("/build/bin/SarvexToolClient"))
        self.succeed_inside("cmake", "--install", "/build", "--prefix", "/installed")
        names = {file.name for file in (self.tree / "installed").iterdir()}
        self.assertEqual({"SarvexToolClient", "Socket.cfg", "examples"}, names)
        self.succeed_inside("cmake", "--install", "/build", "--prefix", "/sdk", "--component", "sdk")
        self.assertEqual({"libsarvextool-framework.a", "libsarvextool-client.a"},
                         {file.name for file in (self.tree / "sdk").rglob("*.a")})

    def test_the_sdk_can_be_left_out(self):
        self.succeed_inside("cmake", "-S", "/source", "-B", "/without", "-DSARVEX_BUILD_SIMULATOR=OFF",
                            "-DSARVEX_BUILD_BENCH=OFF", "-DSARVEX_BUILD_SDK=OFF")
        targets = self.succeed_inside("cmake", "--build", "/without", "--target", "help")
        self.assertIn("SarvexToolClient", targets)
        self.assertNotIn("Sdk", targets)

    def test_what_the_others_need_is_not_there(self):
        for name, left_out in [("all", []), ("bench", ["-DSARVEX_BUILD_SIMULATOR=OFF"]),
                               ("simulator", ["-DSARVEX_BUILD_BENCH=OFF"])]:
            with self.subTest(left_out=left_out):
                done = self.run_inside("cmake", "-S", "/source", "-B", f"/{name}", *left_out)
                self.assertNotEqual(0, done.returncode)
                self.assertIn("/usr/include/boost is missing", done.stderr)


class LeftOutTest(unittest.TestCase):
    def test_the_tests_of_the_others_are_laid_out_without_the_bench_program(self):
        with tempfile.TemporaryDirectory() as build:
            done = subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DSARVEX_BUILD_BENCH=OFF"],
                                  capture_output=True, text=True, check=False,
                                  stdin=subprocess.DEVNULL)
            self.assertEqual((0, ""), (done.returncode, done.stderr))


if __name__ == "__main__":
    unittest.main()
