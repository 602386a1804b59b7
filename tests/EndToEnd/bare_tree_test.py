#!/usr/bin/env python3
"""The programs run in a directory tree that holds them and no library at all.

usage: bare_tree_test.py CLIENT SIMULATOR
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest

sys.dont_write_bytecode = True
import free_port

# A system may allow the one, the other, or both: to root, or to a user in a name space of its own.
WAYS_IN = (["unshare"], ["unshare", "--map-root-user"])
# Services without a library: a program that asked them would find nothing.
NAME_SERVICES = "hosts: elsewhere\nservices: elsewhere\n"


class AnsweringPeer:
    """Answers one request on 127.0.0.1 and keeps what it said."""

    def __init__(self):
        self.listener = free_port.listen()
        self.port = self.listener.getsockname()[1]
        self.request = b""
        self.thread = threading.Thread(target=self.serve, daemon=True)
        self.thread.start()

    def serve(self):
        connection, _ = self.listener.accept()
        with connection:
            while not self.request.endswith(b"-wifi-stop"):
                self.request += connection.recv(65536)
            connection.sendall(b"Sarvex tool INFO\nhello\nSarvex tool RETURN CODE\n7\nDone")

    def close(self):
        self.listener.close()


class BareTreeTest(unittest.TestCase):
    def setUp(self):
        self.tree = pathlib.Path(tempfile.mkdtemp(prefix="sarvex-tree-"))
        self.addCleanup(shutil.rmtree, self.tree, True)
        self.way_in = None
        shutil.copy(client_path, self.tree / "SarvexToolClient")
        shutil.copy(simulator_path, self.tree / "simulator")
        self.way_in = self.find_way_in()

    def inside(self, way_in, *command):
        # Without /proc the programs look for their files in the working directory.
        return [*way_in, f"--root={self.tree}", "--wd=/", *command]

    def find_way_in(self):
        reports = []
        for way_in in WAYS_IN:
            run = subprocess.run(self.inside(way_in, "/simulator", "--help"), capture_output=True,
                                 text=True, timeout=240, check=False)
            if run.returncode == 0:
                return way_in
            reports.append(f"{' '.join(way_in)}: {run.stderr.strip()}")
        self.fail("the tree cannot be entered, or the programs do not run in it: "
                  + "; ".join(reports))

    def run_client(self, *arguments):
        return subprocess.run(self.inside(self.way_in, "/SarvexToolClient", *arguments),
                              capture_output=True, text=True, timeout=240, check=False)

    def test_the_tree_holds_nothing_but_the_programs(self):
        self.assertEqual({"SarvexToolClient", "simulator"}, set(os.listdir(self.tree)))
        run = self.run_client("-x")
        self.assertEqual(
            (1, "", "Failed to connect to daemon. Please ensure that daemon was started.\n"),
            (run.returncode, run.stdout, run.stderr))

    def test_a_name_is_found_in_the_hosts_of_the_tree_whatever_name_services_it_asks_for(self):
        (self.tree / "etc").mkdir()
        (self.tree / "etc" / "nsswitch.conf").write_text(NAME_SERVICES)
        (self.tree / "etc" / "hosts").write_text("127.0.0.1 daemon-of-the-tree\n")
        peer = AnsweringPeer()
        self.addCleanup(peer.close)
        (self.tree / "Socket.cfg").write_text(str(peer.port))
        run = self.run_client("-remoteDaemon", "daemon-of-the-tree", "-wifi-stop")
        self.assertEqual((7, "hello\n", ""), (run.returncode, run.stdout, run.stderr))
        self.assertIn(b"\r\n\r\nCLI -1 -vemo  -wifi-stop", peer.request)

    def test_the_client_talks_to_the_simulated_daemon(self):
        simulator = subprocess.Popen(self.inside(self.way_in, "/simulator", "--port", "0"),
                                     stdout=subprocess.PIPE, text=True)
        self.addCleanup(simulator.stdout.close)
        self.addCleanup(simulator.wait)
        self.addCleanup(simulator.kill)
        (self.tree / "Socket.cfg").write_text(simulator.stdout.readline().strip().rpartition(":")[2])
        run = self.run_client("-wifi-band", "5", "-wifi-channel", "36")
        self.assertEqual((0, "Band: 5\nChannel: 36\n", ""),
                         (run.returncode, run.stdout, run.stderr))
        self.assertEqual(0, self.run_client("-exit").returncode)
        self.assertEqual(0, simulator.wait(60))


if __name__ == "__main__":
    client_path, simulator_path = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
