#!/usr/bin/env python3
"""Compares the direct precedents that `qto tree` gives with lists made by another program.

usage: compare_precedents.py QTO LISTS BOOKS    (folders of *.json lists and of workbooks)

A list is {"workbook", "cells": [{"sheet", "cell", "direct": ["Sheet!A1:B2", ...]}]}, or several of
them. Ranges are spread out to cells and defined names are followed to their cells.
"""

import json
import pathlib
import re
import subprocess
import sys

ADDRESS = re.compile(r"([A-Z]+)(\d+)(?::([A-Z]+)(\d+))?$")


def column_number(letters):
    number = 0
    for letter in letters:
        number = number * 26 + ord(letter) - 64
    return number


def cells_of(reference):
    """(sheet, row, column) of every cell of "Sheet!A1:B2"."""
    sheet, _, address = reference.rpartition("!")
    match = ADDRESS.match(address)
    if not match:
        raise ValueError(reference)
    first_column, first_row, last_column, last_row = match.groups()
    columns = range(column_number(first_column), column_number(last_column or first_column) + 1)
    rows = range(int(first_row), int(last_row or first_row) + 1)
    return {(sheet.casefold(), row, column) for row in rows for column in columns}


def quoted(sheet):
    return "'" + sheet.replace("'", "''") + "'"


def found_cells(answer):
    """The cells among the start's precedents, names replaced by what they refer to."""
    parts = {part["UniqueKey"]: part for part in answer["parts"]}
    cells = set()
    waiting = list(answer["precedents"].get(answer["start"]["UniqueKey"], []))
    seen = set()
    while waiting:
        key = waiting.pop()
        if key in seen:
            continue
        seen.add(key)
        part = parts[key]
        if part["ObjectType"] == "Name":
            waiting += answer["precedents"].get(key, [])
        elif not part["IsUnknown"]:
            cells |= cells_of(part["WorkSheetName"] + "!" + part["AddressShort"])
    return cells


def shown(cells, limit=6):
    some = [f"{sheet}!R{row}C{column}" for sheet, row, column in sorted(cells)[:limit]]
    return " ".join(some) + (" ..." if len(cells) > limit else "")


def tree(qto, book, start, depth):
    run = subprocess.run([qto, "tree", str(book), start, "--depth", str(depth), "--json"],
                         capture_output=True, text=True, timeout=120, check=False)
    return json.loads(run.stdout)


def compare(qto, book, entry):
    start = quoted(entry["sheet"]) + "!" + entry["cell"]
    label = f"{book.name} {start}"
    answer = tree(qto, book, start, 1)
    if "error" in answer:
        return f"{label}: refused: {answer['error']}"
    if any(part["ObjectType"] == "Name" for part in answer["parts"]):
        answer = tree(qto, book, start, 3)
    found = found_cells(answer)
    wanted = set().union(*(cells_of(reference) for reference in entry["direct"]))
    if found == wanted:
        return None
    return (f"{label}: {entry['formula'][:120]!r}\n"
            f"    missing {len(wanted - found)}: {shown(wanted - found)}\n"
            f"    more {len(found - wanted)}: {shown(found - wanted)}")


def main(qto, lists, books):
    same = differing = 0
    for path in sorted(pathlib.Path(lists).glob("*.json")):
        content = json.loads(path.read_text())
        for workbook in content if isinstance(content, list) else [content]:
            for entry in workbook["cells"]:
                if not entry.get("direct"):
                    continue
                difference = compare(qto, pathlib.Path(books) / workbook["workbook"], entry)
                same += difference is None
                differing += difference is not None
                if difference:
                    print(difference)
    print(f"{same} cells agree, {differing} differ")
    return 1 if differing else 0


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
