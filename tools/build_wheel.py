#!/usr/bin/env python3
"""Packs the Python package with its libraries into a wheel:

    tools/build_wheel.py PACKAGE VERSION OUT LIBRARY…

PACKAGE is the folder of the build tree that holds `qtoengine` and the registry `qto/servers` of the
libraries; the wheel is written to the folder OUT. Nothing is fetched, and equal input gives an equal
file.
"""

import base64
import hashlib
import pathlib
import sys
import sysconfig
import zipfile

SUFFIXES = (".py", ".pyi", ".txt", ".typed")
DISTRIBUTION = "qtoengine"


def bundled_registry(package, libraries):
    """The registry with the libraries named as they lie beside it."""
    names = {str(library.resolve()): library.name for library in libraries}
    lines = []
    for line in (package / "qto/servers").read_text(encoding="utf-8").splitlines():
        program, class_id, path = line.split("\t")
        resolved = str(pathlib.Path(path).resolve())
        if resolved in names:
            lines.append(f"{program}\t{class_id}\t{names[resolved]}\n")
    return "".join(lines).encode()


def contents(package, version, libraries):
    """(path in the wheel, bytes) of every file but the record."""
    folder = package / DISTRIBUTION
    for file in sorted(folder.iterdir()):
        if file.suffix in SUFFIXES:
            yield f"{DISTRIBUTION}/{file.name}", file.read_bytes()
    for library in sorted(libraries):
        yield f"{DISTRIBUTION}/lib/{library.name}", library.read_bytes()
    yield f"{DISTRIBUTION}/lib/servers", bundled_registry(package, libraries)
    info = f"{DISTRIBUTION}-{version}.dist-info"
    yield f"{info}/METADATA", (
        f"Metadata-Version: 2.1\nName: {DISTRIBUTION}\nVersion: {version}\n"
        "Summary: Audits the formulas of spreadsheets\nRequires-Python: >=3.9\n").encode()
    yield f"{info}/WHEEL", (
        f"Wheel-Version: 1.0\nGenerator: build_wheel\nRoot-Is-Purelib: false\nTag: {tag()}\n").encode()


def tag():
    platform = sysconfig.get_platform().replace("-", "_").replace(".", "_")
    return f"py3-none-{platform}"


def digest(data):
    return base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()


def write_wheel(package, version, out, libraries):
    out.mkdir(parents=True, exist_ok=True)
    wheel = out / f"{DISTRIBUTION}-{version}-{tag()}.whl"
    record = []
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        def add(name, data):
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, data)

        for name, data in contents(package, version, libraries):
            add(name, data)
            record.append(f"{name},sha256={digest(data)},{len(data)}\n")
        name = f"{DISTRIBUTION}-{version}.dist-info/RECORD"
        add(name, "".join([*record, f"{name},,\n"]).encode())
    return wheel


def main(arguments):
    if len(arguments) < 4:
        print(__doc__, file=sys.stderr)
        return 2
    package, version, out, *libraries = arguments
    print(write_wheel(pathlib.Path(package), version, pathlib.Path(out),
                      [pathlib.Path(library) for library in libraries]))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
