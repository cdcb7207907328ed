#!/usr/bin/env bash
# The shared object may export only the CMPI factories and the debug switch;
# anything else would be visible to the object manager and to every other
# provider it loads.
set -euo pipefail
lib=$1
symbols=$(nm -D --defined-only "$lib" | awk '{print $3}')
echo "$symbols" | grep -qx 'debug_on' || { echo "debug_on is not exported"; exit 1; }
stray=$(echo "$symbols" | grep -v -E '^(debug_on|.+_Create_(Instance|Association|Method|Indication|Property)MI)$' || true)
if [ -n "$stray" ]; then
  echo "unexpected exported symbols:"
  echo "$stray"
  exit 1
fi
echo "exports: $(echo "$symbols" | wc -l) symbols, all expected"
