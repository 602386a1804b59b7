#!/usr/bin/env python3
"""What the client's executable imports, how large it is and how it is protected.

usage: executable_test.py windows|linux CLIENT OBJDUMP
"""
import os
import re
import subprocess
import sys
import unittest

MEBIBYTE = 1 << 20


def headers(*options):
    return subprocess.run([objdump, *options, client], capture_output=True, text=True,
                          check=True).stdout


class WindowsExecutableTest(unittest.TestCase):
    def test_it_imports_only_what_every_windows_has(self):
        imported = set(re.findall(r"DLL Name: (\S+)", headers("-p")))
        self.assertEqual({"KERNEL32.dll", "msvcrt.dll", "WS2_32.dll"}, imported)

    def test_it_is_at_most_two_mebibytes(self):
        self.assertLessEqual(os.path.getsize(client), 2 * MEBIBYTE)

    def test_address_randomisation_and_data_execution_prevention_are_on(self):
        for protection in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"):
            self.assertIn(protection, headers("-p"))
        # Without relocations the loader could not move the image.
        self.assertRegex(headers("-h"), r"\.reloc")


class LinuxExecutableTest(unittest.TestCase):
    def test_it_needs_only_the_c_library(self):
        needed = set(re.findall(r"NEEDED\s+(\S+)", headers("-p")))
        self.assertLessEqual(needed, {"libc.so.6", "ld-linux-x86-64.so.2"})

    def test_it_is_at_most_one_and_a_half_mebibytes(self):
        self.assertLessEqual(os.path.getsize(client), 1.5 * MEBIBYTE)

    def test_it_is_position_independent_with_read_only_relocations(self):
        self.assertRegex(headers("-f"), r"DYNAMIC")
        program_headers = headers("-p")
        self.assertRegex(program_headers, r"\bRELRO\b")
        self.assertRegex(program_headers, r"FLAGS_1\s+0x0*8000001")
        self.assertRegex(program_headers, r"STACK .*\n.*flags rw-")

    def test_stack_protection_is_used(self):
        self.assertIn("__stack_chk_fail", headers("-T"))


if __name__ == "__main__":
    target, client, objdump = sys.argv[1:4]
    case = {"windows": WindowsExecutableTest, "linux": LinuxExecutableTest}[target]
    suite = unittest.defaultTestLoader.loadTestsFromTestCase(case)
    sys.exit(not unittest.TextTestRunner().run(suite).wasSuccessful())
