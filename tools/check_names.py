#!/usr/bin/env python3
"""Holds the names of tracked files to what every system can store, so that a clone works anywhere.

    tools/check_names.py [ROOT]

Prints one line per finding, name: message, and exits 1 when there is any.
"""

import pathlib
import re
import subprocess
import sys

FORBIDDEN = re.compile(r'[\x00-\x1f\x7f"*:<>?\\|]')
# Devices of Windows, with any extension.
RESERVED = re.compile(r"(con|prn|aux|nul|com[1-9]|lpt[1-9])(\..*)?", re.IGNORECASE)


def refusal(path):
    """Why the name of a path, parts parted by "/", cannot be stored everywhere; None when it can."""
    found = FORBIDDEN.search(path)
    if found:
        return f"holds the character {found.group()!r}"
    for part in path.split("/"):
        if part[-1:] in (".", " "):
            return f"'{part}' ends in a dot or a blank"
        if RESERVED.fullmatch(part):
            return f"'{part}' is a device of Windows"
    return None


def check_names(paths):
    """All findings: (path, message)."""
    findings = []
    seen = {}
    for path in sorted(paths):
        why = refusal(path)
        if why:
            findings.append((path, why))
        twin = seen.setdefault(path.casefold(), path)
        if twin != path:
            findings.append((path, f"differs from {twin} by letter case only"))
    return findings


def main(arguments):
    root = arguments[0] if arguments else pathlib.Path(__file__).resolve().parent.parent
    listed = subprocess.run(["git", "-C", str(root), "ls-files", "-z"], check=True,
                            stdout=subprocess.PIPE).stdout
    paths = [name for name in listed.decode("utf-8", "surrogateescape").split("\0") if name]
    findings = check_names(paths)
    for path, message in findings:
        print(f"{path!r}: {message}")
    print(f"names of {len(paths)} files checked, {len(findings)} findings")
    return 1 if findings or not paths else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
