#!/usr/bin/env python3
"""Runs every fuzzer of build/fuzz from its seeds and tells what came of it.

    tools/run_fuzzers.py [--seconds N] [NAME...]

What they learn is kept in build/fuzz/corpus, what fails in build/fuzz/findings. Exits 1 when
anything failed.
"""

import argparse
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = ROOT / "tests" / "fuzz"
BUILD = ROOT / "build" / "fuzz"
DICTIONARIES = {"formula": "formula", "evaluate": "formula", "drill": "formula", "part": "part"}


def run(name, seconds):
    """One fuzzer; prints a line, true when nothing was found."""
    corpus = BUILD / "corpus" / name
    findings = BUILD / "findings"
    corpus.mkdir(parents=True, exist_ok=True)
    findings.mkdir(parents=True, exist_ok=True)
    command = [
        BUILD / "bin" / f"fuzz_{name}", corpus, SOURCES / "seeds" / name,
        f"-max_total_time={seconds}", "-timeout=20", "-rss_limit_mb=2048", "-print_final_stats=1",
        "-verbosity=1", f"-artifact_prefix={findings}/{name}-",
    ]
    if name in DICTIONARIES:
        command.append(f"-dict={SOURCES / 'dictionaries' / DICTIONARIES[name]}.dict")
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False)
    executions = re.search(r"number_of_executed_units: (\d+)", done.stderr)
    covered = re.findall(r"cov: (\d+)", done.stderr)
    print(f"{name:10} {int(executions[1]) if executions else 0:>10,} executions"
          f" {int(covered[-1]) if covered else 0:>7,} edges"
          f"  {'ok' if done.returncode == 0 else 'FAILED'}", flush=True)
    if done.returncode != 0:
        print(done.stderr[-4000:], file=sys.stderr)
    return done.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seconds", type=int, default=10)
    parser.add_argument("names", nargs="*")
    arguments = parser.parse_args()
    names = arguments.names or sorted(source.stem for source in SOURCES.glob("*.cpp"))
    sys.exit(0 if all([run(name, arguments.seconds) for name in names]) else 1)


if __name__ == "__main__":
    main()
