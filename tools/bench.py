#!/usr/bin/env python3
"""Measures whole runs of the command on large generated books and prints a markdown table.

The yardstick is the plain pass: inflate and tokenize every XML part, keep nothing. The ratio is
the wall time of a run over that of the plain pass on the same book.
"""

import argparse
import os
import pathlib
import signal
import statistics
import subprocess
import sys
import time
import typing

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = ROOT / "build/release/bin"
BOOKS = ROOT / "build/bench"


# Arguments of make_books.py, whose default sizes every published figure is about, and the cell
# that the operations start from.
CASES = {
    "chain": (["chain"], "Sheet1!B1000000"),
    "chain_shared": (["chain", "--shared"], "Sheet1!B1000000"),
    "fan": (["fan"], "Sums!B1"),
    "grid": (["grid"], "Sheet1!ALL1000"),
    "model": (["model"], "Total!B1"),
}
OPERATIONS = ("part", "inputs", "errors", "tree")


class Run(typing.NamedTuple):
    wall: float  # seconds
    cpu: float  # seconds
    peak: float  # MB
    status: int  # exit status, negative for a signal


def run_once(command, limit):
    """One run, its output thrown away. The child is stopped after limit seconds."""
    started = time.perf_counter()
    child = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)

    def stop(*_):
        child.kill()

    signal.signal(signal.SIGALRM, stop)
    signal.alarm(limit)
    _, status, usage = os.wait4(child.pid, 0)
    signal.alarm(0)
    child.returncode = os.waitstatus_to_exitcode(status)
    return Run(time.perf_counter() - started, usage.ru_utime + usage.ru_stime,
               usage.ru_maxrss / 1024, child.returncode)


def run_often(command, runs, limit):
    """The median of each figure; a failing command is run once only."""
    results = [run_once(command, limit)]
    while len(results) < runs and results[0].status == 0:
        results.append(run_once(command, limit))
    worst = next((r.status for r in results if r.status), 0)
    return Run(*(statistics.median(figures) for figures in list(zip(*results))[:3]), worst)


def book_path(name):
    """The generated book, kept until the scripts that write it change."""
    path = BOOKS / f"{name}.xlsx"
    newest = max(file.stat().st_mtime for file in (ROOT / "tools/books").glob("*.py"))
    if not path.exists() or path.stat().st_mtime < newest:
        BOOKS.mkdir(parents=True, exist_ok=True)
        unfinished = path.with_suffix(".part")
        # In its own process: a child's peak memory counts from that of its parent at the fork.
        subprocess.run([sys.executable, str(ROOT / "tools/make_books.py"), *CASES[name][0],
                        str(unfinished)], check=True)
        unfinished.replace(path)
    return path


def table_row(book, what, run, yardstick):
    if run.status != 0:
        return f"| {book} | {what} | failed, exit {run.status} | | | |"
    return (f"| {book} | {what} | {run.wall:.2f} s | {run.cpu:.2f} s | {run.peak:.0f} MB "
            f"| {run.wall / yardstick.wall:.1f} |")


def measure(names, operations, runs, limit):
    """False when a run failed."""
    print("| book | run | wall | processor | peak memory | times the plain pass |")
    print("|---|---|---|---|---|---|")
    good = True
    for name in names:
        path = str(book_path(name))
        plain = run_often([str(PROGRAMS / "plain_pass"), path], runs, limit)
        print(table_row(name, "plain pass", plain, plain), flush=True)
        good = good and plain.status == 0
        for operation in operations:
            command = [str(PROGRAMS / "qto"), operation, path, CASES[name][1], "--json"]
            run = run_often(command, runs, limit)
            print(table_row(name, f"qto {operation}", run, plain), flush=True)
            good = good and run.status == 0
    return good


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--books", nargs="+", choices=CASES, default=list(CASES))
    parser.add_argument("--operations", nargs="+", choices=OPERATIONS, default=OPERATIONS)
    parser.add_argument("--runs", type=int, default=3, help="runs per figure; the median counts")
    parser.add_argument("--limit", type=int, default=300, help="seconds after which a run is ended")
    options = parser.parse_args()
    missing = [name for name in ("plain_pass", "qto") if not (PROGRAMS / name).exists()]
    if missing:
        sys.exit(f"{', '.join(missing)} not built below {PROGRAMS}: run `make bench`")
    if not measure(options.books, options.operations, options.runs, options.limit):
        sys.exit(1)


if __name__ == "__main__":
    main()
