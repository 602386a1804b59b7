#!/usr/bin/env python3
"""What the client's executable imports, how large it is and how it is protected.

usage: executable_test.py windows|linux CLIENT OBJDUMP SOCKETS_LIBRARY DEBUG_PRINT_LIBRARY
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


def names_in(library):
    return subprocess.run([objdump, "-t", library], capture_output=True, text=True, check=True).stdout


def segments():
    """(kind, start, size, flags) of each program header."""
    found = re.findall(
        r"^ *(\S+) off .* vaddr (0x[0-9a-f]+) .*\n.* memsz (0x[0-9a-f]+) flags (\S+)$",
        headers("-p"), re.MULTILINE)
    return [(kind, int(start, 16), int(size, 16), flags) for kind, start, size, flags in found]


def segment(wanted):
    return next((start, size) for kind, start, size, _ in segments() if kind == wanted)


def section(name):
    """Where a section starts in memory."""
    line = re.search(rf"^ *\d+ {re.escape(name)} +[0-9a-f]+ +([0-9a-f]+)", headers("-h"), re.MULTILINE)
    return int(line[1], 16)


class ExecutableTest(unittest.TestCase):
    def test_it_holds_the_process_wide_null_streams(self):
        # Nothing in the client names their types but the two objects, which are made before main.
        with open(client, "rb") as file:
            content = file.read()
        for character in (b"c", b"w"):
            name = b"N7Streams12null_ostreamI%bSt11char_traitsI%bEEE" % (character, character)
            self.assertIn(name, content)


class WindowsExecutableTest(ExecutableTest):
    def test_it_imports_only_what_every_windows_has(self):
        imported = set(re.findall(r"DLL Name: (\S+)", headers("-p")))
        # ADVAPI32 gives the compiler's stack protection its random guard.
        self.assertEqual({"ADVAPI32.dll", "KERNEL32.dll", "msvcrt.dll", "WS2_32.dll"}, imported)
        self.assertIn("CryptGenRandom", headers("-p"))

    def test_it_is_at_most_two_mebibytes(self):
        self.assertLessEqual(os.path.getsize(client), 2 * MEBIBYTE)

    def test_address_randomisation_and_data_execution_prevention_are_on(self):
        for protection in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"):
            self.assertIn(protection, headers("-p"))
        # Without relocations the loader could not move the image.
        self.assertRegex(headers("-h"), r"\.reloc")


class LinuxExecutableTest(ExecutableTest):
    def test_it_needs_no_library_and_no_loader(self):
        program_headers = headers("-p")
        self.assertIn("Dynamic Section", program_headers)
        self.assertNotRegex(program_headers, r"\bNEEDED\b")
        self.assertNotRegex(program_headers, r"\bINTERP\b")

    def test_it_is_at_most_two_and_a_half_mebibytes(self):
        self.assertLessEqual(os.path.getsize(client), 2.5 * MEBIBYTE)

    def test_it_is_position_independent_with_read_only_relocations(self):
        self.assertRegex(headers("-f"), r"DYNAMIC")
        program_headers = headers("-p")
        self.assertRegex(program_headers, r"\bRELRO\b")
        # Bound at once (1), position independent (8000000).
        self.assertRegex(program_headers, r"FLAGS_1\s+0x0*8000001\b")
        # What is bound at once is read-only from then on, the table of functions too.
        start, size = segment("RELRO")
        got = section(".got")
        self.assertTrue(start <= got < start + size)
        self.assertEqual(0, len(re.findall(r"\.got\.plt", headers("-h"))))

    def test_only_code_can_be_executed_and_nothing_that_can_be_executed_is_writable(self):
        flags = [flags for kind, _, _, flags in segments() if kind in ("LOAD", "STACK")]
        self.assertEqual(["r--", "r-x", "r--", "rw-", "rw-"], flags)
        executable = [(start, size) for kind, start, size, flags in segments()
                      if kind == "LOAD" and "x" in flags]
        for name in (".rodata", ".eh_frame", ".gcc_except_table", ".data.rel.ro"):
            for start, size in executable:
                with self.subTest(section=name):
                    self.assertFalse(start <= section(name) < start + size)

    # The program holds no names, and the C library in it would have these anyway: the two tests look
    # at the libraries that it is linked from.

    def test_the_stack_is_protected_where_bytes_from_the_network_arrive(self):
        self.assertIn("__stack_chk_fail", names_in(sockets_library))

    def test_calls_that_fill_buffers_check_the_buffers_size(self):
        self.assertIn("__vsnprintf_chk", names_in(debug_print_library))


if __name__ == "__main__":
    target, client, objdump, sockets_library, debug_print_library = sys.argv[1:6]
    case = {"windows": WindowsExecutableTest, "linux": LinuxExecutableTest}[target]
    suite = unittest.defaultTestLoader.loadTestsFromTestCase(case)
    sys.exit(not unittest.TextTestRunner().run(suite).wasSuccessful())
