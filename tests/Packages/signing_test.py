"""Signatures of Windows programs and of the installer, with a certificate and a time stamp server of the test."""
import http.server
import os
import re
import shutil
import sys
import threading
import unittest

from support import (LINUX_BUILD, MSI, ROOT, WINDOWS_BUILD, WINE, ZIP, is_signed, require, run, source_date,
                     temporary_folder, unpack)

SIGN = ROOT / "packaging/windows/sign"
TOKEN_MODULE = "/usr/lib/softhsm/libsofthsm2.so"
PASSWORD = "a password, with blanks"
# Another time than now, at which certificates that are made today are valid: the beginning of 2030.
MOMENT = "1893456000"
STAMPED = "Timestamp Server Signature verification: ok"
OPENSSL_SETTINGS = """
[req]
distinguished_name = name
[name]
[authority]
basicConstraints = critical, CA:true
keyUsage = critical, keyCertSign
[signer]
extendedKeyUsage = codeSigning
[stamper]
extendedKeyUsage = critical, timeStamping
[tsa]
default_tsa = server
[server]
serial = {folder}/serial
signer_digest = sha256
default_policy = 1.2.3.4.1
digests = sha256
accuracy = secs:1
ess_cert_id_alg = sha256
"""


class TimeStampServer(http.server.HTTPServer):
    """Answers each request by openssl ts, on a free port of this machine."""

    def __init__(self, folder):
        super().__init__(("127.0.0.1", 0), TimeStampRequest)
        self.folder = folder
        self.requests = []
        self.url = f"http://127.0.0.1:{self.server_port}/"
        self.thread = threading.Thread(target=self.serve_forever)
        self.thread.start()

    def stop(self):
        self.shutdown()
        self.thread.join()
        self.server_close()


class TimeStampRequest(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        folder = self.server.folder
        request = self.rfile.read(int(self.headers["Content-Length"]))
        self.server.requests.append(self.headers["Content-Type"])
        (folder / "request").write_bytes(request)
        require("openssl", "ts", "-reply", "-config", folder / "settings", "-queryfile", folder / "request",
                "-signer", folder / "stamper.pem", "-inkey", folder / "stamper.key",
                "-chain", folder / "authority.pem", "-out", folder / "reply")
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.end_headers()
        self.wfile.write((folder / "reply").read_bytes())

    def log_message(self, *_):
        pass


def make_certificates(folder):
    """An authority, and of it a certificate for signing programs and one for time stamps."""
    (folder / "settings").write_text(OPENSSL_SETTINGS.format(folder=folder))
    (folder / "serial").write_text("01\n")
    for name in ("password", "password to write"):
        (folder / name).write_text(PASSWORD + "\n")
    common = ["-config", folder / "settings", "-newkey", "rsa:2048", "-days", "9000"]
    require("openssl", "req", "-x509", *common, "-noenc", "-extensions", "authority", "-subj", "/CN=Test authority",
            "-keyout", folder / "authority.key", "-out", folder / "authority.pem")
    for name, protection in [("signer", ["-passout", f"file:{folder}/password"]), ("stamper", ["-noenc"])]:
        require("openssl", "req", "-x509", *common, *protection, "-extensions", name, "-subj", f"/CN=Test {name}",
                "-CA", folder / "authority.pem", "-CAkey", folder / "authority.key",
                "-keyout", folder / f"{name}.key", "-out", folder / f"{name}.pem")
    (folder / "chain.pem").write_bytes((folder / "signer.pem").read_bytes()
                                       + (folder / "authority.pem").read_bytes())
    require("openssl", "pkcs12", "-export", "-in", folder / "chain.pem", "-inkey", folder / "signer.key",
            "-passin", f"file:{folder}/password", "-passout", f"file:{folder}/password to write",
            "-out", folder / "signer.pfx")


def without_settings():
    """The environment, but for what it says of signing and of the time."""
    return {name: value for name, value in os.environ.items()
            if not name.startswith("SARVEX_SIGN_") and name != "SOURCE_DATE_EPOCH"}


def verify(file, authority):
    done = run("osslsigncode", "verify", "-CAfile", authority, "-TSA-CAfile", authority, "-in", file)
    return done.returncode, done.stdout.decode()


class SigningTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = temporary_folder(cls)
        top = unpack(ZIP, cls.folder)
        cls.originals = {"client.exe": top / "SarvexToolClient.exe", "setup.msi": MSI}
        make_certificates(cls.folder)
        cls.pem = {"SARVEX_SIGN_CERTIFICATE": str(cls.folder / "chain.pem"),
                   "SARVEX_SIGN_KEY": str(cls.folder / "signer.key"),
                   "SARVEX_SIGN_PASSWORD_FILE": str(cls.folder / "password")}
        cls.token = cls.make_token()
        cls.pfx = {"SARVEX_SIGN_CERTIFICATE": str(cls.folder / "signer.pfx"),
                   "SARVEX_SIGN_PASSWORD_FILE": str(cls.folder / "password")}

    @classmethod
    def make_token(cls):
        """A token in software that has the key, and the settings to sign with it."""
        folder = cls.folder / "tokens"
        folder.mkdir()
        settings, pin = cls.folder / "token.conf", cls.folder / "pin"
        settings.write_text(f"directories.tokendir = {folder}\n")
        pin.write_text("4321\n")
        environment = {**os.environ, "SOFTHSM2_CONF": str(settings)}
        require("softhsm2-util", "--init-token", "--free", "--label", "test", "--so-pin", "1234", "--pin", "4321",
                env=environment)
        require("openssl", "pkcs8", "-topk8", "-nocrypt", "-in", cls.folder / "signer.key",
                "-passin", f"file:{cls.folder}/password", "-out", cls.folder / "signer.p8")
        require("softhsm2-util", "--import", cls.folder / "signer.p8", "--token", "test", "--label", "signer",
                "--id", "01", "--pin", "4321", env=environment)
        return {"SOFTHSM2_CONF": str(settings), "SARVEX_SIGN_PKCS11_MODULE": TOKEN_MODULE,
                "SARVEX_SIGN_CERTIFICATE": str(cls.folder / "chain.pem"),
                "SARVEX_SIGN_KEY": "pkcs11:token=test;object=signer", "SARVEX_SIGN_PASSWORD_FILE": str(pin)}

    def copies(self):
        """New copies of a program and of the installer, as they were packed."""
        folder = temporary_folder(self)
        return [shutil.copy(original, folder / name) for name, original in self.originals.items()]

    def sign(self, settings, *files, **more):
        return run(SIGN, *files, env={**without_settings(), **settings, **more})

    def signed_copies(self, settings, **more):
        files = self.copies()
        done = self.sign(settings, *files, **more)
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        return files

    def verify(self, file, authority="authority.pem"):
        return verify(file, self.folder / authority)

    def test_without_a_certificate_nothing_is_signed(self):
        files = self.copies()
        done = self.sign({}, *files)
        self.assertEqual((0, b"sign: SARVEX_SIGN_CERTIFICATE is not set; not signed: client.exe setup.msi\n"),
                         (done.returncode, done.stdout))
        for file, original in zip(files, self.originals.values()):
            self.assertEqual(original.read_bytes(), file.read_bytes())

    def test_programs_and_installers_are_signed(self):
        for kind, settings in [("pem", self.pem), ("pfx", self.pfx), ("token", self.token)]:
            for file in self.signed_copies(settings):
                with self.subTest(kind=kind, file=file.name):
                    code, text = self.verify(file)
                    self.assertEqual(0, code, text)
                    self.assertIn("Subject: /CN=Test signer", text)
                    self.assertRegex(text, "Message digest algorithm *: SHA256")
                    self.assertNotIn(STAMPED, text)
                    # Another authority's certificates do not count, nor a file that was changed.
                    self.assertNotEqual(0, self.verify(file, "stamper.pem")[0])
                    data = bytearray(file.read_bytes())
                    data[len(data) // 2] ^= 1
                    file.write_bytes(data)
                    self.assertNotEqual(0, self.verify(file)[0])

    def test_a_signed_program_runs_as_before(self):
        file, _ = self.signed_copies(self.pem)
        before = run(*WINE, self.originals["client.exe"], "-help")
        after = run(*WINE, file, "-help")
        self.assertEqual((before.returncode, before.stdout), (after.returncode, after.stdout))
        self.assertIn(b"SarvexToolClient.exe [-option1 ", after.stdout)

    def test_the_time_is_that_of_the_sources(self):
        first = self.signed_copies(self.pem, SOURCE_DATE_EPOCH=MOMENT)
        second = self.signed_copies(self.pem, SOURCE_DATE_EPOCH=MOMENT)
        for one, other in zip(first, second):
            with self.subTest(file=one.name):
                self.assertEqual(one.read_bytes(), other.read_bytes())
                self.assertIn("Jan  1 00:00:00 2030", self.verify(one)[1])

    def test_a_signature_gets_a_time_stamp_where_a_server_is_given(self):
        server = TimeStampServer(self.folder)
        self.addCleanup(server.stop)
        files = self.signed_copies(self.pem, SARVEX_SIGN_TIMESTAMP_URL=server.url, no_proxy="127.0.0.1")
        self.assertEqual(["application/timestamp-query"] * 2, server.requests)
        for file in files:
            with self.subTest(file=file.name):
                code, text = self.verify(file)
                self.assertEqual(0, code, text)
                self.assertIn(STAMPED, text)

    def test_a_server_that_does_not_answer_is_an_error(self):
        server = TimeStampServer(self.folder)
        server.stop()
        files = self.copies()
        done = self.sign(self.pem, *files, SARVEX_SIGN_TIMESTAMP_URL=server.url, no_proxy="127.0.0.1")
        self.assertEqual(1, done.returncode)
        self.assertIn(f"sign: {files[0]} could not be signed\n".encode(), done.stderr)
        self.assertEqual(self.originals["client.exe"].read_bytes(), files[0].read_bytes())

    def test_the_password_is_on_no_command_line(self):
        tools = temporary_folder(self)
        (tools / "osslsigncode").write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>{tools}/arguments\n'
                                            f'exec {shutil.which("osslsigncode")} "$@"\n')
        (tools / "osslsigncode").chmod(0o755)
        for settings in (self.pem, self.pfx):
            self.signed_copies(settings, PATH=f"{tools}:{os.environ['PATH']}")
        arguments = (tools / "arguments").read_text()
        self.assertEqual(4, arguments.count(f"-readpass\n{self.folder}/password\n"))
        self.assertNotIn(PASSWORD, arguments)

    def test_a_check_of_the_settings_signs_nothing_and_says_nothing_when_all_is_well(self):
        for settings in ({}, self.pem, self.pfx, self.token):
            done = self.sign(settings, "--check")
            self.assertEqual((0, b"", b""), (done.returncode, done.stdout, done.stderr))
        done = self.sign({**self.pem, "SARVEX_SIGN_KEY": "/nonexistent.key"}, "--check")
        self.assertEqual((1, b"sign: /nonexistent.key cannot be read\n"), (done.returncode, done.stderr))
        tools = temporary_folder(self)
        (tools / "bash").symlink_to(shutil.which("bash"))
        done = self.sign(self.pem, "--check", PATH=str(tools))
        self.assertEqual((1, b"sign: osslsigncode is not installed\n"), (done.returncode, done.stderr))

    def test_what_is_wrong_is_told_and_nothing_is_signed(self):
        for settings, message in [
                ({"SARVEX_SIGN_KEY": "k"}, "SARVEX_SIGN_CERTIFICATE is not set, but other settings are"),
                ({**self.pem, "SARVEX_SIGN_KEY": ""}, "SARVEX_SIGN_KEY is not set"),
                ({**self.pfx, "SARVEX_SIGN_KEY": self.pem["SARVEX_SIGN_KEY"]},
                 f"SARVEX_SIGN_KEY or SARVEX_SIGN_PKCS11_MODULE is set, but {self.folder}/signer.pfx holds a key"),
                ({**self.token, "SARVEX_SIGN_PKCS11_MODULE": "/nonexistent.so"}, "/nonexistent.so cannot be read"),
                ({**self.pem, "SARVEX_SIGN_PASSWORD_FILE": f"{self.folder}/none"}, f"{self.folder}/none cannot be read"),
                ({**self.pem, "SARVEX_SIGN_PASSWORD_FILE": self.folder}, f"{self.folder} cannot be read"),
                ({**self.pem, "SARVEX_SIGN_PASSWORD_FILE": str(self.folder / "serial")},
                 "client.exe could not be signed"),
        ]:
            with self.subTest(message=message):
                files = self.copies()
                done = self.sign(settings, *files)
                self.assertEqual(1, done.returncode)
                self.assertRegex(done.stderr.decode(), rf"(?m)^sign: .*{re.escape(message)}$")
                for file, original in zip(files, self.originals.values()):
                    self.assertEqual(original.read_bytes(), file.read_bytes())


class SignedPackagesTest(unittest.TestCase):
    """What scripts/package makes with a certificate. All paths are relative to where it is called."""

    @classmethod
    def setUpClass(cls):
        cls.folder = temporary_folder(cls)
        make_certificates(cls.folder)
        require(ROOT / "scripts/package", "--out", "signed", LINUX_BUILD, WINDOWS_BUILD, cwd=cls.folder, env={
            **without_settings(), "SOURCE_DATE_EPOCH": str(source_date()), "SARVEX_SIGN_CERTIFICATE": "chain.pem",
            "SARVEX_SIGN_KEY": "signer.key", "SARVEX_SIGN_PASSWORD_FILE": "password"})
        cls.dist = cls.folder / "signed"
        cls.unpacked = unpack(cls.dist / ZIP.name, cls.folder / "unpacked")
        cls.installed = cls.folder / "installed"
        require("msiextract", "--directory", cls.installed, cls.dist / MSI.name)

    def test_the_programs_of_the_zip_those_in_the_installer_and_the_installer_are_signed(self):
        folders = [self.unpacked, self.installed]
        files = [path for folder in folders for path in sorted(folder.rglob("*.exe"))] + [self.dist / MSI.name]
        self.assertEqual(["SarvexToolBench.exe", "SarvexToolClient.exe", "vemo.exe"] * 2 + [MSI.name],
                         [file.name for file in files])
        for file in files:
            with self.subTest(file=file):
                code, text = verify(file, self.folder / "authority.pem")
                self.assertEqual(0, code, text)
                self.assertIn("Subject: /CN=Test signer", text)
                self.assertTrue(is_signed(file))

    def test_nothing_else_of_them_differs_and_the_checksums_are_right(self):
        require("sha256sum", "--check", "--strict", "SHA256SUMS", cwd=self.dist)
        before = unpack(ZIP, self.folder / "before")
        names = [{path.relative_to(folder) for path in folder.rglob("*")} for folder in (before, self.unpacked)]
        self.assertEqual(*names)
        for path in before.rglob("*"):
            if path.is_file() and path.suffix != ".exe":
                self.assertEqual(path.read_bytes(), (self.unpacked / path.relative_to(before)).read_bytes(), path)

    def test_they_are_not_compared_with_what_is_packed_again(self):
        done = run(sys.executable, "-B", ROOT / "tests/Packages/reproducible_test.py", "-v",
                   env={**os.environ, "SARVEX_DIST": str(self.dist)})
        self.assertEqual(0, done.returncode, done.stderr)
        self.assertIn(b"skipped 'the packages are signed", done.stderr)


if __name__ == "__main__":
    unittest.main()
