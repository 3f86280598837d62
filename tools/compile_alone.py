#!/usr/bin/env python3
"""Looks at every source: what a unity build hides, a missing include say, and what clang-tidy finds.

    tools/compile_alone.py [--jobs N] [--tidy TOGETHER] ALONE [FOLDER...]

ALONE is the folder of a build that takes each source alone: its compiler takes every source once more
and only looks. TOGETHER is that of a unity build: clang-tidy looks at the sources of the product there,
with the checks of .clang-tidy, because reading the same headers for each source anew would take most
of its time. FOLDERs, written from the root, narrow what is compiled alone. Prints what is found and
exits 1 when there is anything.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
# The assertions of tests are macros: their warnings cost as much as all the rest and find little.
NOT_TIDIED = ("tests", "benchmarks")


def entries(build):
    """(path from the root, entry) of the build's database of commands, each source once."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text("utf-8")):
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if path.is_relative_to(ROOT):
            found.setdefault(path.relative_to(ROOT).as_posix(), entry)
    return sorted(found.items())


def lone_sources(build, folders):
    """(name, folder, command) for every source of ours."""
    for name, entry in entries(build):
        if name.startswith("build/"):
            continue  # made by the build
        if not folders or any(name.startswith(folder.rstrip("/") + "/") for folder in folders):
            yield name, entry["directory"], [*shlex.split(entry["command"]), "-fsyntax-only"]


def tidied_sources(build):
    """(name, folder, command) for every source that the build puts together, and those it leaves alone."""
    for name, entry in entries(build):
        inside = name.removeprefix(build.relative_to(ROOT).as_posix() + "/")
        if name.startswith("build/") and "/Unity/" not in name:
            continue
        if inside.split("/")[0] not in NOT_TIDIED:
            yield name, entry["directory"], ["clang-tidy", "--quiet", "-p", str(build), str(ROOT / name)]


def look_at(name, folder, command):
    run = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if run.returncode == 0:
        return ""
    # clang-tidy tells on standard error only how many warnings it kept to itself, unless it failed.
    return run.stdout or run.stderr or f"{name}: ended with {run.returncode}\n"


def look_at_all(what, sources, jobs):
    """Whether there are sources, and none has findings."""
    started = time.monotonic()
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for told in pool.map(lambda source: look_at(*source), sources):
            if told:
                failed += 1
                print(told.replace(f"{ROOT}/", ""), flush=True)
    took = time.monotonic() - started
    print(f"{what}: {len(sources)} sources, findings in {failed}, {took:.0f} s", flush=True)
    return bool(sources) and not failed


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--tidy", metavar="TOGETHER", type=pathlib.Path)
    parser.add_argument("alone", metavar="ALONE", type=pathlib.Path)
    parser.add_argument("folders", metavar="FOLDER", nargs="*")
    options = parser.parse_args(arguments)
    passed = look_at_all("compiled alone", [*lone_sources(options.alone.resolve(), options.folders)],
                         options.jobs)
    if options.tidy:
        tidied = [*tidied_sources(options.tidy.resolve())]
        passed = look_at_all("clang-tidy", tidied, options.jobs) and passed
    return 0 if passed else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
