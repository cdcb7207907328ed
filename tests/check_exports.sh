#!/usr/bin/env bash
# check_exports.sh <library> <factory table>
# The shared object exports exactly the CMPI factories of the table and the
# debug switch: anything else would be visible to the object manager and to
# every other provider it loads, and a missing factory is a class the object
# manager cannot serve.
set -euo pipefail
lib=$1
table=$2
actual=$(nm -D --defined-only "$lib" | awk '{print $3}' | sort)
expected=$( { echo debug_on
  grep -v '^#' "$table" | while read -r class kinds; do
    for kind in $kinds; do echo "${class}_Provider_Create_${kind}MI"; done
  done; } | sort)
if [ "$actual" != "$expected" ]; then
  echo "exported symbols differ from $table (< expected, > exported):"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
echo "exports: $(echo "$actual" | wc -l) symbols, as the table says"
