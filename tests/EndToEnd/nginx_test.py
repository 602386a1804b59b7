#!/usr/bin/env python3
"""A real HTTP server takes the client's request, and its body arrives whole.

usage: nginx_test.py CLIENT
"""
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True
import free_port

CONFIGURATION = """
daemon off;
pid {folder}/pid;
error_log {folder}/error.log;
events {{}}
http {{
    access_log off;
    client_body_temp_path {folder}/body;
    proxy_temp_path {folder}/proxy;
    fastcgi_temp_path {folder}/fastcgi;
    uwsgi_temp_path {folder}/uwsgi;
    scgi_temp_path {folder}/scgi;
    # The client keeps the connection until it has seen the end mark or the end.
    keepalive_timeout 1s;
    client_max_body_size 8m;
    client_body_buffer_size 8m;
    log_format request escape=none '$request_method $request_uri $http_host $content_type\\n$request_body';
    server {{
        listen 127.0.0.1:{front};
        location /api/oemtools/command {{
            access_log {folder}/requests.log request;
            proxy_pass http://127.0.0.1:{back};
        }}
    }}
    server {{
        listen 127.0.0.1:{back};
        location / {{
            default_type text/plain;
            return 200 "Sarvex tool INFO\\nhello from a server\\nSarvex tool RETURN CODE\\n7\\nDone";
        }}
    }}
}}
"""


def wait_until_listening(port):
    for _ in range(500):
        with socket.socket() as probe:
            if probe.connect_ex(("127.0.0.1", port)) == 0:
                return
        time.sleep(0.01)
    raise RuntimeError("nginx does not listen")


class NginxTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="sarvex-nginx-"))
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.client = shutil.copy(client_path, self.folder)
        with free_port.listen() as first, free_port.listen() as second:
            front, back = (listener.getsockname()[1] for listener in (first, second))
        (self.folder / "Socket.cfg").write_bytes(str(front).encode())
        (self.folder / "nginx.conf").write_text(
            CONFIGURATION.format(folder=self.folder, front=front, back=back))
        environment = dict(os.environ, PATH=os.environ["PATH"] + ":/usr/sbin")
        self.server = subprocess.Popen(
            ["nginx", "-p", str(self.folder), "-c", str(self.folder / "nginx.conf"), "-e",
             str(self.folder / "error.log")], env=environment)
        self.addCleanup(self.stop)
        wait_until_listening(front)

    def stop(self):
        self.server.terminate()
        self.server.wait()

    def logged(self):
        """The two lines of a request. They come after the client's answer, a long one in pieces."""
        for _ in range(300):
            text = (self.folder / "requests.log").read_bytes()
            if text.count(b"\n") == 2:
                break
            time.sleep(0.01)
        return text

    def exchange(self, arguments):
        return subprocess.run([self.client, *arguments], capture_output=True, timeout=240)

    def test_request_is_accepted_and_its_body_arrives_whole(self):
        result = self.exchange(["-wifi-band", "5", "a b", "ä\t\\"])
        self.assertEqual(result.stdout, b"hello from a server\n")
        self.assertEqual(result.stderr, b"")
        self.assertEqual(result.returncode, 7)
        self.assertEqual(
            self.logged(),
            b"POST /api/oemtools/command 127.0.0.1:8738 text/plain\n"
            b"CLI -1 -vemo  -wifi-band 5 \"a b\" " + "ä\t\\".encode() + b"\n")

    def test_large_body_arrives_whole(self):
        arguments = [str(number) * 1000 for number in range(100, 400)]
        result = self.exchange(arguments)
        self.assertEqual(result.returncode, 7)
        body = "CLI -1 -vemo  " + " ".join(arguments)
        self.assertEqual(self.logged(),
                         b"POST /api/oemtools/command 127.0.0.1:8738 text/plain\n" + body.encode() + b"\n")


if __name__ == "__main__":
    client_path = sys.argv.pop(1)
    unittest.main()
