#!/bin/bash
# Drills a workbook by a script under Wine and compares what it writes with what was found elsewhere:
#   drill.sh RUNNER SCRIPT BOOK EXPECTED
set -euo pipefail
windows_path() { echo "Z:${1//\//\\}"; }
"$1" cscript //nologo "$(windows_path "$2")" "$(windows_path "$3")" | tr -d '\r' | diff "$4" -
echo "all checks passed"
