"""Has served libraries enter themselves into the registry: register.py LIBRARY…"""

import ctypes
import sys

for library in sys.argv[1:]:
    if ctypes.CDLL(library).DllRegisterServer() < 0:
        sys.exit(f"{library}: the registry file cannot be written")
