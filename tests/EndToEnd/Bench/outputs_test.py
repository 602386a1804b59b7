#!/usr/bin/env python3
"""What judge and compare write for other programs, read by other programs: JSON by a validator with the
schemas of docs/, JUnit by xmllint with the schema of Jenkins and by a reader of JUnit, CSV by Python.

usage: outputs_test.py [LAUNCHER] PROGRAM      (LAUNCHER runs a program of another system)
"""
import base64
import csv
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema
import junitparser

HERE = pathlib.Path(__file__).resolve().parent
DOCS = HERE.parents[2] / "docs"
PROGRAM = [str(pathlib.Path(argument).resolve()) for argument in sys.argv[1:]]

HEADER = b"Band,Chains,Bandwidth,Channel,Rate,Chain-A Power, Chain B Power\n"
RUN = HEADER + b"""\
5,AB,80,42,MCS0,15.5,9.75
5,A,80,58,MCS0,25.000000001,NA
2.4,A,20,6,MCS7,12,3
6,A,20,500,MCS7,NA,NA
-,-,-,1,MCS7,12,NA
7,A,20,1,MCS7,12,NA
5,AB,80,42,MCS0,15.25,10
"""
OLD = HEADER + b"""\
6,A,20,500,MCS7,12,NA
5,AB,80,42,MCS0,15.5,10.75
5,AB,80,42,MCS0,15.5,10.75
5,AB,80,42,MCS0,15.25,10.25
2.4,A,20,6,MCS7,12.75,NA
"""
LIMITS = b"Band,Chain,Min,Max\n5|6,*,10,20\n2.4,*,*,14\n"
ANY_LIMIT = b"Chain,Min,Max\n*,*,1\n"

# Each is the channel of a line. None may be more than a text to what reads the outputs.
HOSTILE = [
    b"\x1b[31mred\x1b[0m", b"\x00\x01\x02", b"\xff\xfe\xc0\x80", b"\xed\xa0\x80", b"\xef\xbf\xbf",
    b"<script>alert(1)</script>", b"]]>", b"&amp;&bogus;", b"\"'`", b"=1+1", b"@SUM(A1)", b"+cmd|' /C calc'!A0",
    b"-2+3", b"\xe2\x80\xae", b"\\u0000", b"{}", b"a\rb", b"a\tb", b"$(Band)", b"%s%n", b"\xc3\xa4",
]


def journal(result, refusals):
    """The journal of a run that wrote this result, each line of which was refused with those bytes."""
    lines, end = [], len(HEADER)
    rows = result[len(HEADER):].split(b"\n")[:-1]
    for number, (row, refusal) in enumerate(zip(rows, refusals, strict=True), 2):
        end += len(row) + 1
        chain = {"outcome": "refused", "textBase64": base64.b64encode(refusal).decode("ascii")}
        lines.append(json.dumps({"line": number, "accepted": False, "a": chain, "b": chain, "csvEnd": end,
                                 "started": "2026-11-22T07:30:00Z", "seconds": 1.25}))
    return "".join(line + "\n" for line in lines).encode("ascii")


class OutputsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.write("result.csv", RUN)
        self.write("old.csv", OLD)
        self.write("limits.csv", LIMITS)

    def write(self, name, content):
        (self.folder / name).write_bytes(content)

    def run_program(self, *arguments):
        return subprocess.run([*PROGRAM, *arguments], cwd=self.folder, capture_output=True, timeout=240)

    def judge(self, *arguments):
        return self.run_program("judge", "result.csv", "--limits", "limits.csv", *arguments)

    def write_hostile(self):
        lines = b"".join(b"5,A,80," + cell + b",MCS0,9,NA\n" for cell in HOSTILE)
        self.write("result.csv", HEADER + lines)
        self.write("limits.csv", ANY_LIMIT)

    def check_json(self, name, schema_name):
        schema = json.loads((DOCS / schema_name).read_text())
        jsonschema.Draft202012Validator.check_schema(schema)
        document = json.loads((self.folder / name).read_text(encoding="utf-8"))
        jsonschema.Draft202012Validator(schema).validate(document)
        return document

    def check_junit(self, name):
        """Valid, and counted alike; returns the number of cases and of failed ones."""
        path = self.folder / name
        subprocess.run(["xmllint", "--noout", "--schema", HERE / "jenkins-junit.xsd", path], check=True,
                       capture_output=True)
        report = junitparser.JUnitXml.fromfile(str(path))
        written = report.tests, report.failures, report.errors, report.skipped
        suites = [(suite.tests, suite.failures, suite.errors, suite.skipped) for suite in report]
        for suite in report:
            suite.update_statistics()
        report.update_statistics()
        self.assertEqual(written[:3], (report.tests, report.failures, report.errors))
        self.assertEqual(suites, [(suite.tests, suite.failures, suite.errors, suite.skipped)
                                  for suite in report])
        names = [(case.classname, case.name) for suite in report for case in suite]
        self.assertEqual(len(names), len(set(names)), "each case has a name of its own")
        return report.tests, report.failures

    def test_judgement_is_what_its_schema_says(self):
        self.assertEqual(self.judge("--json", "out.json").returncode, 1)
        document = self.check_json("out.json", "judgement.schema.json")
        self.assertEqual(document["counts"],
                         {"pass": 4, "tooLow": 1, "tooHigh": 1, "notMeasured": 2, "noLimit": 1})
        self.assertEqual(len(document["measurements"]), 9)
        self.assertEqual(document["result"]["unexpectedPowers"], 1)
        self.assertEqual(document["measurements"][2]["power"], 25.000000001)

    def test_schema_refuses_what_is_not_a_judgement(self):
        self.judge("--json", "out.json")
        document = json.loads((self.folder / "out.json").read_text())
        schema = json.loads((DOCS / "judgement.schema.json").read_text())
        del document["measurements"][0]["power"]
        with self.assertRaises(jsonschema.ValidationError):
            jsonschema.Draft202012Validator(schema).validate(document)

    def test_comparison_is_what_its_schema_says(self):
        ended = self.run_program("compare", "old.csv", "result.csv", "--json", "out.json")
        self.assertEqual(ended.returncode, 1)
        document = self.check_json("out.json", "comparison.schema.json")
        self.assertEqual({difference["kind"] for difference in document["differences"]},
                         {"changed", "measuredInOldOnly", "inOldOnly", "inNewOnly"})
        self.assertFalse(document["alike"])
        self.assertIsNotNone(document["noise"])

    def test_junit_of_judge_is_counted_alike(self):
        self.assertEqual(self.judge("--junit", "out.xml").returncode, 1)
        self.assertEqual(self.check_junit("out.xml"), (9, 5))

    def test_junit_of_compare_is_counted_alike(self):
        self.run_program("compare", "old.csv", "result.csv", "--junit", "out.xml")
        tests, failures = self.check_junit("out.xml")
        document = json.loads(self.run_program("compare", "old.csv", "result.csv", "--json", "-").stdout)
        self.assertEqual(failures, len(document["differences"]))
        self.assertEqual(tests, 8 + sum(difference["kind"] == "inNewOnly"
                                        for difference in document["differences"]))

    def test_nothing_that_passes_fails_a_case(self):
        self.write("result.csv", HEADER + b"5,A,80,42,MCS0,15,NA\n")
        self.assertEqual(self.judge("--junit", "out.xml").returncode, 0)
        self.assertEqual(self.check_junit("out.xml"), (1, 0))

    def test_csv_has_a_row_for_each_measurement(self):
        self.judge("--csv", "out.csv")
        with open(self.folder / "out.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual(len(rows), 9)
        self.assertEqual(rows[1]["Power"], "9.75")
        self.assertEqual(rows[1]["Verdict"], "too low")
        self.assertEqual(rows[5]["Reason"], "Band is uncertain since line 5")

    def test_hostile_cells_are_texts_everywhere(self):
        self.write_hostile()
        ended = self.judge("--json", "out.json", "--junit", "out.xml", "--csv", "out.csv")
        self.assertEqual(ended.returncode, 1, ended.stderr)
        self.assertEqual(self.check_junit("out.xml"), (len(HOSTILE), len(HOSTILE)))
        document = self.check_json("out.json", "judgement.schema.json")
        self.assertEqual(len(document["measurements"]), len(HOSTILE))
        self.assertEqual(document["measurements"][5]["settings"]["Channel"], HOSTILE[5].decode())
        table = (self.folder / "out.csv").read_bytes()
        for shown in (ended.stdout, ended.stderr, table, (self.folder / "out.xml").read_bytes()):
            self.assertEqual([byte for byte in set(shown) if byte < 0x20 and byte != 0x0A], [])
            self.assertNotIn("\u202e", shown.decode("utf-8"))
        rows = list(csv.DictReader(table.decode("utf-8").splitlines()))
        self.assertEqual(len(rows), len(HOSTILE))
        for row in rows:
            for key in ("Channel", "Reason"):
                self.assertFalse(row[key].startswith(("=", "+", "-2", "@")), row)

    def test_words_of_the_daemon_are_nothing_but_texts(self):
        result = HEADER + b"".join(b"5,A,80,%d,MCS0,NA,NA\n" % channel for channel in range(len(HOSTILE)))
        self.write("result.csv", result)
        self.write("journal.jsonl", journal(result, HOSTILE))
        self.write("run.json", b'{"linesTotal": 100}')
        ended = self.judge("--json", "out.json", "--junit", "out.xml", "--csv", "out.csv")
        self.assertEqual(ended.returncode, 1, ended.stderr)
        document = self.check_json("out.json", "judgement.schema.json")
        self.assertEqual(document["result"]["endedEarly"],
                         {"linesDone": len(HOSTILE), "linesTotal": 100})
        self.assertEqual({shown["cause"] for shown in document["measurements"]}, {"refused"})
        self.assertEqual(document["measurements"][5]["reason"],
                         "the daemon refused the line: " + HOSTILE[5].decode())
        self.assertEqual(self.check_junit("out.xml"), (len(HOSTILE) + 1, len(HOSTILE) + 1))
        for shown in (ended.stdout, (self.folder / "out.csv").read_bytes(),
                      (self.folder / "out.xml").read_bytes()):
            self.assertEqual([byte for byte in set(shown) if byte < 0x20 and byte != 0x0A], [])
            self.assertNotIn("\u202e", shown.decode("utf-8"))

    def test_comparison_of_runs_that_ended_early_fits_its_schema(self):
        rows = RUN[len(HEADER):].count(b"\n")
        self.write("journal.jsonl", journal(RUN, [b"No."] * rows))
        ended = self.run_program("compare", "old.csv", "result.csv", "--json", "out.json")
        self.assertEqual(ended.returncode, 1, ended.stderr)
        document = self.check_json("out.json", "comparison.schema.json")
        self.assertEqual(document["new"]["endedEarly"], {"linesDone": rows, "linesTotal": None})

    def test_places_and_groups_fit_their_schemas(self):
        rows = RUN[len(HEADER):].count(b"\n")
        self.write("journal.jsonl", journal(RUN, [b"No."] * rows))
        self.write("run.json", json.dumps({"linesTotal": rows, "sources": [
            {"firstLine": 2, "lastLine": 3, "bench": "=1+1", "attempt": 2},
            {"firstLine": 5, "lastLine": 6, "device": "\u202e"}]}).encode("ascii"))
        for part, names in (("bench", [None, "=1+1"]), ("device", [None, "\u202e"]),
                            ("attempt", [None, "2"])):
            with self.subTest(part=part):
                ended = self.judge("--group-by", part, "--json", "out.json", "--csv", "out.csv")
                self.assertEqual(ended.returncode, 1, ended.stderr)
                document = self.check_json("out.json", "judgement.schema.json")
                self.assertEqual([group["name"] for group in document["groups"]], names)
                self.assertEqual(document["measurements"][0]["bench"], "=1+1")
                self.assertNotIn("device", document["measurements"][0])
                table = (self.folder / "out.csv").read_text(encoding="utf-8")
                first, *_, last = csv.DictReader(table.splitlines())
                self.assertEqual((first["Bench"], first["Attempt"]), ("'=1+1", "2"))
                self.assertEqual((last["Bench"], last["Device"]), ("", ""))
                self.assertNotIn("\u202e", table)
                ended = self.run_program("compare", "old.csv", "result.csv", "--group-by", part,
                                         "--json", "out.json")
                self.assertEqual(ended.returncode, 1, ended.stderr)
                self.assertEqual(self.check_json("out.json", "comparison.schema.json")["groupBy"], part)

    def test_outputs_are_the_same_bytes_as_on_standard_output(self):
        for option in ("--json", "--junit", "--csv"):
            with self.subTest(option=option):
                self.judge(option, "out")
                self.assertEqual(self.judge(option, "-").stdout, (self.folder / "out").read_bytes())

    def test_text_ends_in_line_feeds_alone(self):
        self.assertNotIn(b"\r", self.judge().stdout)

    def test_names_may_hold_any_character(self):
        name = "r\u00e4um \u65e5\u672c.csv"
        self.write(name, RUN)
        ended = self.run_program("judge", name, "--limits", "limits.csv", "--json", "\u00fc.json")
        self.assertEqual(ended.returncode, 1, ended.stderr)
        self.assertEqual(self.check_json("\u00fc.json", "judgement.schema.json")["result"]["file"], name)

    def test_standard_input_is_either_file(self):
        for arguments, given in ((("judge", "-", "--limits", "limits.csv"), RUN),
                                 (("judge", "result.csv", "--limits", "-"), LIMITS),
                                 (("compare", "-", "result.csv"), OLD)):
            with self.subTest(arguments=arguments):
                ended = subprocess.run([*PROGRAM, *arguments], cwd=self.folder, capture_output=True,
                                       timeout=240, input=given)
                self.assertEqual(ended.returncode, 1, ended.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
