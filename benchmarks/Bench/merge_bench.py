#!/usr/bin/env python3
"""Measures what it costs to merge the runs of a plan's chunks: processor time and peak of memory of the
whole program, for plans of some sizes. The chunks have 250 lines, and each its run.

usage: merge_bench.py PROGRAM [LINES ...]      (10,000, 100,000 and 1,000,000 lines unless others are given)
"""
import hashlib
import json
import multiprocessing
import os
import pathlib
import sys
import tempfile

LINES_OF_A_CHUNK = 250
BENCHES = 12
HEADER = ("Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource unit,"
          "Large RU Size")
TIME = "2026-03-09T08:05:00.007Z"
OPTIONS = {"segment": 500, "answerTimeout": 60.0, "retries": 2, "wait": 300.0, "stopTimeout": 10.0, "failFast": False,
           "force": False, "client": "/opt/SarvexToolClient", "firstCommand": [], "firstCommandAnswered": False,
           "firstCommandAccepted": False}


def settings_of(number):
    """The cells of a line; no two lines of a million have the same."""
    return (("5", "6")[number // 9000 % 2], ("A", "B", "AB")[number % 3], ("20", "40", "80")[number // 3 % 3],
            str(36 + 4 * (number // 9 % 25)), "HE", f"HE-MCS{number // 225 % 40}", "SISO", "242",
            str(number // 18000), "none")


def write(path, text):
    path.write_text(text)
    return hashlib.sha256(text.encode()).hexdigest()


def write_plan(folder, count):
    """Each line writes only what differs from the line before."""
    lines, last = [HEADER], ("",) * 10
    for number in range(count):
        cells = settings_of(number)
        lines.append(",".join("-" if cell == old else cell for cell, old in zip(cells, last)))
        last = cells
    return {"name": str(folder / "plan.csv"), "sha256": write(folder / "plan.csv", "\n".join(lines) + "\n"),
            "lines": count}


def write_run(folder, chunk, number, lines):
    folder.mkdir(parents=True)
    rows, journal = HEADER + ",Chain-A Power, Chain B Power\n", []
    for line, cells in enumerate(lines, 2):
        on = {chain: {"outcome": "measured" if chain in cells[1] else "chain not active"} for chain in "AB"}
        rows += ",".join((*cells, "17.25" if "A" in cells[1] else "NA", "16.5" if "B" in cells[1] else "NA")) + "\n"
        journal.append(json.dumps({"line": line, "accepted": True, "a": on["A"], "b": on["B"], "csvEnd": len(rows),
                                   "started": TIME, "seconds": 1.021}, separators=(",", ":")))
    write(folder / "result.csv", rows)
    write(folder / "journal.jsonl", "\n".join(journal) + "\n")
    write(folder / "run.json", json.dumps({
        "format": 1, "programVersion": "1", "clientSha256": "", "user": "", "host": "", "started": TIME, "ended": TIME,
        "testFile": {"name": chunk["file"], "sha256": chunk["sha256"]}, "daemon": "", "attempt": 1,
        "bench": f"bench-{number % BENCHES}", "options": OPTIONS, "startPassedOn": True, "stopConfirmed": True,
        "linesTotal": len(lines), "linesDone": len(lines), "outcome": "complete", "notes": [],
        "closesIdleConnections": False}))


def write_parts(folder, count):
    """What split makes of a plan of so many lines, and the runs of its chunks."""
    folder.mkdir()
    plan, chunks = write_plan(folder, count), []
    for number, first in enumerate(range(0, count, LINES_OF_A_CHUNK), 1):
        last = min(first + LINES_OF_A_CHUNK, count)
        lines = [settings_of(line) for line in range(first, last)]
        chunk = {"file": f"chunk-{number:04}.csv", "firstLine": first + 2, "lastLine": last + 1}
        chunk["sha256"] = write(folder / chunk["file"], "\n".join([HEADER, *(",".join(cells) for cells in lines)]) + "\n")
        write_run(folder / "runs" / f"chunk-{number:04}" / "1", chunk, number, lines)
        chunks.append(chunk)
    write(folder / "manifest.json",
          json.dumps({"format": 1, "programVersion": "1", "plan": plan, "chunks": chunks}))


def measure(command):
    """Processor time in seconds and peak of memory in MB."""
    process = os.posix_spawn(command[0], command, os.environ,
                             file_actions=[(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)])
    _, status, usage = os.wait4(process, 0)
    if status != 0:
        sys.exit(f"merge_bench.py: merge ended with {os.waitstatus_to_exitcode(status)}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1000


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    for count in [int(lines) for lines in sys.argv[2:]] or [10_000, 100_000, 1_000_000]:
        with tempfile.TemporaryDirectory() as name:
            parts = pathlib.Path(name) / "parts"
            # In a process of its own: a program's peak of memory begins with that of what starts it.
            writer = multiprocessing.Process(target=write_parts, args=(parts, count))
            writer.start()
            writer.join()
            seconds, megabytes = measure([program, "merge", str(parts), "-o", f"{name}/all"])
            what = f"merge, {count:,} lines"
            print(f"| {what:38} | {seconds * 1000:10.0f} ms | {megabytes:10.1f} MB peak            | {'':7} |")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main()
