#!/usr/bin/env python3
"""Compiles every source by itself: what a unity build hides, a missing include say, shows.

    tools/compile_alone.py [--jobs N] BUILD [FOLDER...]

BUILD holds a compile_commands.json of a build that takes each source alone. clang-tidy looks at the
sources of the product, with the checks of .clang-tidy, and compiles them with clang by the way; tests
are compiled by the build's own compiler.
FOLDERs, written from the root, narrow it. Prints what is found and exits 1 when there is anything.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# Their warnings cost as much as all the rest, and find little: assertions are macros.
ONLY_COMPILED = ("tests", "benchmarks")


def sources(build, folders):
    """(path from the root, entry of the database) of every source of ours, each once."""
    found = {}
    for entry in json.loads(pathlib.Path(build, "compile_commands.json").read_text("utf-8")):
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if not path.is_relative_to(ROOT) or path.is_relative_to(ROOT / "build"):
            continue  # made by the build
        name = path.relative_to(ROOT).as_posix()
        if not folders or any(name.startswith(folder.rstrip("/") + "/") for folder in folders):
            found.setdefault(name, entry)
    return sorted(found.items())


def command_for(name, entry, build):
    """What looks at one source."""
    if name.split("/")[0] not in ONLY_COMPILED:
        return ["clang-tidy", "--quiet", "-p", str(build), str(ROOT / name)]
    return [*shlex.split(entry["command"]), "-fsyntax-only"]


def look_at(name, entry, build):
    run = subprocess.run(command_for(name, entry, build), cwd=entry["directory"],
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if run.returncode == 0:
        return ""
    # clang-tidy tells on standard error only how many warnings it kept to itself, unless it failed.
    return run.stdout or run.stderr or f"{name}: ended with {run.returncode}\n"


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("build")
    parser.add_argument("folders", nargs="*")
    options = parser.parse_args(arguments)
    build = pathlib.Path(options.build).resolve()
    listed = sources(build, options.folders)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for told in pool.map(lambda source: look_at(*source, build), listed):
            if told:
                failed += 1
                print(told.replace(f"{ROOT}/", ""), flush=True)
    print(f"{len(listed)} sources compiled alone, findings in {failed}")
    return 1 if failed or not listed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
