#!/usr/bin/env python3
"""Compares what dump_workbook finds in workbooks with facts that other readers found.

A facts file names its workbook and lists, for two independent readers, the sheets with their
visibility and counts, the number of names, and sample cells. Prints one line per workbook and
every difference; the exit status is 1 when there is any.
"""

import argparse
import json
import pathlib
import subprocess
import sys

COUNTS = ("formulas", "datatable", "numbers", "texts", "booleans", "errors")


def dump(program, workbook):
    run = subprocess.run([program, "--cells", workbook], capture_output=True, text=True,
                         check=False)
    if run.returncode != 0:
        return None, run.stderr.strip()
    return [json.loads(line) for line in run.stdout.splitlines()], ""


def same_value(found, wanted):
    if isinstance(found, dict):
        return found["e"] == (wanted.get("e") if isinstance(wanted, dict) else wanted)
    if isinstance(found, (int, float)) and isinstance(wanted, (int, float)):
        return abs(found - wanted) <= 1e-9 * max(1.0, abs(wanted))
    return found == wanted


def sheet_differences(found, small, office):
    """`small` counts what stands in the file, `office` what an application made of it."""
    name = small["name"]
    if small["kind"] not in (None, found["kind"]):
        yield f"{name}: kind {found['kind']}, expected {small['kind']}"
    if found["state"] != small["state"]:
        yield f"{name}: state {found['state']}, expected {small['state']}"
    if found["protected"] not in (small["protected"], office and office["protected"]):
        yield f"{name}: protected {found['protected']}, expected {small['protected']}"
    for key in COUNTS:
        count = found[key] + (found["members"] if key == "formulas" else 0)
        if count != small[key] and not (office and count == office.get(key)):
            yield f"{name}: {key} {count}, expected {small[key]}"
    for key in ("charts", "pivots"):
        if office and found[key] != office[key]:
            yield f"{name}: {key} {found[key]}, expected {office[key]}"


def name_differences(records, facts):
    names = [r for r in records if "scope" in r]
    own = sum(1 for r in names if r["scope"])
    found = (len(names) - own, own)
    small = (facts["mini"]["names"], facts["mini"]["sheet_names"])
    visible = [r for r in names if not r["hidden"]]
    if found != small:
        yield f"names {found} ({len(visible)} visible), expected {small}"


def value_differences(records, facts):
    cells = {(r["at"], r["cell"]): r["value"] for r in records if "cell" in r}
    for sheet, address, wanted, _ in facts["sample"]:
        found = cells.get((sheet, address))
        if not same_value(found, wanted):
            yield f"{sheet}!{address}: {found!r}, expected {wanted!r}"


def differences(records, facts):
    sheets = [r for r in records if "sheet" in r]
    small = facts["mini"]["sheets"]
    office = {s["name"]: s for s in facts["libreoffice"]["sheets"]}
    if [s["sheet"] for s in sheets] != [s["name"] for s in small]:
        yield f"sheets {[s['sheet'] for s in sheets]}, expected {[s['name'] for s in small]}"
        return
    if records[0]["date1904"] != facts["mini"]["date1904"]:
        yield f"date1904 {records[0]['date1904']}"
    for found, wanted in zip(sheets, small):
        yield from sheet_differences(found, wanted, office.get(wanted["name"]))
    yield from name_differences(records, facts)
    yield from value_differences(records, facts)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", help="dump_workbook")
    parser.add_argument("workbooks", type=pathlib.Path, help="folder of the workbooks")
    parser.add_argument("facts", type=pathlib.Path, help="folder of the .json files")
    arguments = parser.parse_args()
    agreeing = total = 0
    for path in sorted(arguments.facts.glob("*.json")):
        facts = json.loads(path.read_text())
        records, failure = dump(arguments.program, arguments.workbooks / facts["workbook"])
        found = [failure] if records is None else list(differences(records, facts))
        total += 1
        agreeing += not found
        print(f"{'differs' if found else 'agrees '} {facts['workbook']}")
        for difference in found:
            print(f"    {difference}")
    print(f"{agreeing} of {total} agree")
    return 0 if agreeing == total else 1


if __name__ == "__main__":
    sys.exit(main())
