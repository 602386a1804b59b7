#!/usr/bin/env python3
"""What the linked Windows client sends to the debugger, as wine shows it.

usage: debug_output_test.py WINE CLIENT
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


class AnsweringPeer:
    """Answers every connection on a free four-digit port with the same text."""

    def __init__(self):
        self.listener = free_port.listen()
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        self.connections = []
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            self.connections.append(connection)
            connection.recv(65536)
            connection.sendall(b"okDone")


class DebugOutputTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="sarvex-debug-"))
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.client = shutil.copy(client_path, self.folder)

    def debugger_lines(self, *arguments):
        """The texts of the debugger messages that wine reports, without their line feeds."""
        run = subprocess.run(
            [wine, self.client, *arguments], cwd=self.folder, capture_output=True, text=True,
            timeout=240, env=dict(os.environ, WINEDEBUG="+debugstr"), check=False)
        marker = "OutputDebugStringA \""
        return [line.split(marker, 1)[1].rstrip().removesuffix("\"").removesuffix("\\n")
                for line in run.stderr.splitlines() if marker in line]

    def test_an_error_is_one_line_in_the_brief_format(self):
        lines = self.debugger_lines("-x")
        self.assertIn(
            "[OEMERROR]| Utilities::xFrameworkStreams::Sockets::SocketClientStream::"
            "SocketClientStream | Failed Creating socket", lines)

    def test_a_test_run_is_traced(self):
        peer = AnsweringPeer()
        self.addCleanup(peer.listener.close)
        (self.folder / "Socket.cfg").write_text(str(peer.port))
        (self.folder / "test.csv").write_text("Band\n")
        lines = self.debugger_lines("-wifi-test-by-file", "test.csv")
        traced = [line for line in lines if "ProcessHeaderTestFile" in line]
        self.assertEqual(
            ["[OEMINFO] | DynamicTest::ProcessHeaderTestFile       | --------------------->Enter",
             "[OEMINFO] | DynamicTest::ProcessHeaderTestFile       | <---------------------Exit"],
            traced)


if __name__ == "__main__":
    wine, client_path = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=sys.argv[:1])
