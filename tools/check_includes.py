#!/usr/bin/env python3
"""Holds the direction of includes: every layer sees only the layers below it, and clients see only
the public headers (qto/public_headers.txt), which see nothing else either.

    tools/check_includes.py [ROOT]

Prints one line per finding, file:line: message, and exits 1 when there is any.
"""

import pathlib
import re
import sys

# Every folder with its level; a folder sees its own files and the folders of lower levels that its
# house shows. Of nested folders the longest name counts.
ENGINE_LEVELS = {
    "qto/automation": 0,
    "qto/formula": 1,
    "qto/diagnostics": 2,
    "qto/host": 2,
    "qto/options": 3,
    "qto/links": 3,
    "qto/model": 4,
    "qto/parser/exact": 5,
    "qto/parser": 6,
    "qto/engine": 7,
}

# The embedded host stands beside the engine, not below or above it.
EMBEDDED = "qto/hosts/embedded"
EMBEDDED_LEVELS = {
    EMBEDDED + "/formats": 0,
    EMBEDDED + "/encryption": 0,
    EMBEDDED + "/book": 1,
    EMBEDDED + "/formulas": 2,
    EMBEDDED + "/evaluate": 3,
    EMBEDDED + "/xlsx": 3,
    EMBEDDED + "/functions": 4,
    EMBEDDED + "/recalc": 5,
    EMBEDDED + "/objects/references": 6,
    EMBEDDED + "/objects/checks": 6,
    EMBEDDED + "/objects/cells": 7,
    EMBEDDED + "/objects": 8,
    EMBEDDED + "/objects/editing": 9,
    EMBEDDED: 10,
}
# What crosses between libraries, and a host that is driven by name, over any application.
COM_LEVELS = {"qto/com": 0}
LATE_BOUND_LEVELS = {"qto/hosts/late_bound": 0}
# A host over an office suite: what loads it, and what is loaded.
LIBREOFFICE = "qto/hosts/libreoffice"
LIBREOFFICE_LEVELS = {
    LIBREOFFICE: 0,
    LIBREOFFICE + "/office": 1,
    LIBREOFFICE + "/formulas": 1,
    LIBREOFFICE + "/document": 2,
    LIBREOFFICE + "/objects": 3,
}
# The automation surface stands above the engine and the hosts.
SERVER_LEVELS = {
    "qto/server/tables": 0,
    "qto/server/module": 1,
    "qto/server/reports": 1,
    "qto/server/calls": 2,
    "qto/server/description": 3,
    "qto/server/events": 3,
    "qto/server/wrappers": 4,
    "qto/server/binding": 5,
    "qto/server/engine_tables": 6,
    "qto/server/host_tables": 6,
    "qto/server/registration": 6,
    "qto/server/exports": 7,
}
CLI_LEVELS = {
    "cli/terminal": 0,
    "cli/output": 1,
    "cli/asking": 2,
    "cli/links": 3,
    "cli/answer": 4,
    "cli/book": 5,
    "cli/show": 6,
    "cli": 7,
}

VOCABULARY = ("qto/automation", "qto/formula", "qto/host")
# Levels that belong together, and which other folders they see.
HOUSES = (
    (ENGINE_LEVELS, ()),
    (EMBEDDED_LEVELS, VOCABULARY),
    (COM_LEVELS, ("qto/automation",)),
    (LATE_BOUND_LEVELS, VOCABULARY + ("qto/com",)),
    (LIBREOFFICE_LEVELS, VOCABULARY),
    (SERVER_LEVELS, tuple(ENGINE_LEVELS) + ("qto/com", "qto/hosts/late_bound", EMBEDDED)),
    (CLI_LEVELS, ("qto",)),
)
ALL_LEVELS = {folder: level for levels, _ in HOUSES for folder, level in levels.items()}

# The headers that are installed, and the one among them that includes what most clients need.
PUBLIC_HEADERS = "qto/public_headers.txt"
UMBRELLA = "qto/qto.hpp"
PUBLIC_ONLY = ("cli", "examples")

# Clients of the library: what each sees besides headers under qto/.
CLIENTS = {
    "cli": ("cli",),
    "examples": ("examples",),
    "benchmarks": ("benchmarks",),
    "tests": ("tests", "cli", "examples", "benchmarks"),
}
ROOTS = ("qto",) + tuple(CLIENTS)

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^">]+)[">]')
PRAGMA_ONCE = re.compile(r"^\s*#\s*pragma\s+once\b")


def layer_of(path):
    """The folder of the level tables that holds path, or None."""
    parts = path.split("/")[:-1]
    for length in range(len(parts), 0, -1):
        folder = "/".join(parts[:length])
        if folder in ALL_LEVELS:
            return folder
    return None


def refusal(source, target, public):
    """Why the file source must not include the file target, or None when it may."""
    client, root = source.split("/")[0], target.split("/")[0]
    if root == "qto" and target not in public and (client in PUBLIC_ONLY or source in public):
        return "is not public, see " + PUBLIC_HEADERS
    if source == UMBRELLA or (target == UMBRELLA and client in CLIENTS):
        return None
    if client in CLIENTS:
        if root != "qto" and root not in CLIENTS[client]:
            return f"{client} does not see {root}"
        if client != root or client != "cli":
            return None
    above, below = layer_of(source), layer_of(target)
    if above is None:
        return f"{source} belongs to no layer"
    if below is None:
        return f"{target} belongs to no layer"
    if above == below:
        return None
    for levels, also_sees in HOUSES:
        if above not in levels:
            continue
        if levels.get(below, levels[above]) < levels[above] or below in also_sees:
            return None
    return f"{above} does not see {below}"


def includes_of(text):
    """(line number, bracket, path) of every include."""
    for number, line in enumerate(text.splitlines(), 1):
        found = INCLUDE.match(line)
        if found:
            yield number, found.group(1), found.group(2)


def check_file(path, text, exists, public):
    """The findings of one file as (line, message)."""
    if path.endswith(".hpp") and not any(map(PRAGMA_ONCE.match, text.splitlines())):
        yield 1, "no #pragma once"
    for line, bracket, target in includes_of(text):
        if bracket == "<":
            if target.split("/")[0] in ROOTS and exists(target):
                yield line, f'<{target}> is ours: write "{target}"'
        elif target.split("/")[0] not in ROOTS or ".." in target.split("/"):
            yield line, f'"{target}" is not written from the root'
        elif not exists(target):
            yield line, f'"{target}" does not exist'
        else:
            why = refusal(path, target, public)
            if why:
                yield line, f'"{target}": {why}'


def find_cycles(edges):
    """Include circles among headers, as (file, line, message), one per closing include.

    edges: {file: [(line, included file), ...]}.
    """
    done, on_path = set(), []
    for start in sorted(edges):
        stack = [(start, iter(edges[start]))] if start not in done else []
        on_path = [start]
        while stack:
            file, rest = stack[-1]
            for line, target in rest:
                if target in on_path:
                    circle = on_path[on_path.index(target):] + [target]
                    yield file, line, "include circle: " + " -> ".join(circle)
                elif target not in done and target in edges:
                    stack.append((target, iter(edges[target])))
                    on_path.append(target)
                    break
            else:
                done.add(file)
                stack.pop()
                on_path.pop()


def public_headers(root):
    """The table of public headers with the line of each; empty where there is none."""
    table = pathlib.Path(root, PUBLIC_HEADERS)
    lines = table.read_text(encoding="utf-8").splitlines() if table.is_file() else []
    return {line: number for number, line in enumerate(lines, 1) if not line.startswith("#")}


def check_tree(root):
    """All findings below root, sorted: (file, line, message)."""
    root = pathlib.Path(root)
    texts = {}
    for folder in ROOTS:
        for file in root.glob(folder + "/**/*.[ch]pp"):
            texts[file.relative_to(root).as_posix()] = file.read_text(encoding="utf-8")

    def exists(path):
        return path in texts or (root / path).is_file()

    public = public_headers(root)
    findings = [(PUBLIC_HEADERS, line, f'"{header}" does not exist')
                for header, line in public.items() if header not in texts]
    for path, text in texts.items():
        findings += [(path, line, message)
                     for line, message in check_file(path, text, exists, public)]
    edges = {
        path: [(line, target) for line, _, target in includes_of(text)]
        for path, text in texts.items()
        if path.endswith(".hpp")
    }
    findings += find_cycles(edges)
    return sorted(findings), len(texts)


def main(arguments):
    root = arguments[0] if arguments else pathlib.Path(__file__).resolve().parent.parent
    findings, files = check_tree(root)
    for path, line, message in findings:
        print(f"{path}:{line}: {message}")
    if files == 0:
        print(f"no sources found below {root}")
        return 1
    print(f"includes of {files} files checked, {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
