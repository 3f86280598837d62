#!/bin/bash
# Enters the libraries into the registry, or takes them out and looks that nothing is left:
#   registration.sh register|unregister RUNNER ENGINE HOST
# "RUNNER PROGRAM…" runs a Windows program.
set -euo pipefail
action=$1 run=("$2")
shift 2
libraries=("$@")

keys=('HKCR\QTOEngine.DrillDown' 'HKCR\QTOEngine.DrillDown.1'
  'HKCR\CLSID\{81663611-E4E0-49EC-A3C2-45A1460F4836}'
  'HKCR\CLSID\{81663671-E4E0-49EC-A3C2-45A1460F4836}'
  'HKCR\Interface\{81663612-E4E0-49EC-A3C2-45A1460F4836}'
  'HKCR\TypeLib\{81663601-E4E0-49EC-A3C2-45A1460F4836}'
  'HKCR\QTOHost.Application' 'HKCR\CLSID\{81664611-E4E0-49EC-A3C2-45A1460F4836}'
  'HKCR\TypeLib\{81664601-E4E0-49EC-A3C2-45A1460F4836}')

present() { "${run[@]}" reg query "$1" > /dev/null 2>&1; }

for library in "${libraries[@]}"; do
  if [[ $action == register ]]; then
    "${run[@]}" regsvr32 /s "$library"
  else
    "${run[@]}" regsvr32 /u /s "$library"
  fi
done
wrong=0
for key in "${keys[@]}"; do
  if [[ $action == register ]] && ! present "$key"; then
    echo "missing: $key"
    wrong=1
  elif [[ $action == unregister ]] && present "$key"; then
    echo "left behind: $key"
    wrong=1
  fi
done
if [[ $action == register ]]; then
  "${run[@]}" reg query 'HKCR\CLSID\{81663611-E4E0-49EC-A3C2-45A1460F4836}\InprocServer32' \
    | grep -q 'ThreadingModel.*Apartment' || { echo "no threading model"; wrong=1; }
fi
[[ $wrong == 0 ]] && echo "all checks passed"
exit $wrong
