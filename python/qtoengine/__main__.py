"""Enters the served libraries into the registry, or takes them out:

    python3 -m qtoengine register|unregister [LIBRARY…]

Without names: the libraries installed beside this package, at the same prefix. The registry is the
user's own; QTO_REGISTER=system in the environment asks for the system's.
"""

import ctypes
import pathlib
import sys


def installed_libraries():
    for prefix in pathlib.Path(__file__).resolve().parents:
        found = sorted(prefix.glob("lib/qto/libqto*.so")) + sorted(prefix.glob("lib/*/qto/libqto*.so"))
        if found:
            return found
    return []


def main(arguments):
    exports = {"register": "DllRegisterServer", "unregister": "DllUnregisterServer"}
    if not arguments or arguments[0] not in exports:
        print(__doc__, file=sys.stderr)
        return 2
    libraries = arguments[1:] or installed_libraries()
    if not libraries:
        print("no library found beside the package; name it: python3 -m qtoengine register LIBRARY",
              file=sys.stderr)
        return 1
    for library in libraries:
        try:
            done = getattr(ctypes.CDLL(str(library)), exports[arguments[0]])()
        except OSError as error:
            print(error, file=sys.stderr)
            return 1
        if done < 0:
            why = {0x80070005: "permission denied", 0x80070070: "no space left on the device"}
            print(f"{library}: the registry {registry_file()} cannot be written: "
                  + why.get(done & 0xFFFFFFFF, f"{done & 0xFFFFFFFF:08X}"), file=sys.stderr)
            return 1
        print(f"{library}: {arguments[0]}ed")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
