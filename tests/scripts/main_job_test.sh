#!/usr/bin/env bash
# Runs the main job (scripts/run) against an existing build and checks that
# it exits 0 and shows what it promises: the factories, the switch, the
# port table, the attached nodes, the connections and the port change.
# Usage: main_job_test.sh SOURCE_DIR BUILD_DIR
set -uo pipefail
source_dir=$1
build_dir=$2

out=$(QRX_BUILD_DIR="$build_dir" "$source_dir/scripts/run" 2>&1)
status=$?
failed=0
if [ "$status" -ne 0 ]; then
  echo "scripts/run exited $status"
  failed=1
fi
expect() {
  if ! grep -qE -- "$1" <<<"$out"; then
    echo "missing line matching: $1"
    failed=1
  fi
}
expect '^Built .*libqrxsmis\.so \([0-9]+ bytes\): [0-9]+ CMPI factories$'
expect '^  qrx-cim exit status 255; library log: ERROR: Could not open mq smis_ipc$'
expect '^  library log: Info: init provider and backend lib successfully$'
expect '^== The switch$'
expect '^  DeviceID +PortNumber +PortType +OperationalStatus +EnabledState +Speed$'
expect '^  switch port [0-9a-f]{16} -> node port [0-9a-f]{16}$'
expect '^  \.\.\. [0-9]+ connections$'
expect '^  before: port [0-9]+$'
expect '^      OperationalStatus = \{10\};$'
expect '^  root/interop:QRX_RegisteredProfile\.InstanceID="QRX:Switch\.1\.2\.0"$'
expect '^  root/qrx:QRX_Switch\.CreationClassName="QRX_Switch",Name="[0-9a-f]{16}"$'
expect '^  library log: \[QRX_Switch_Provider_enumInstanceNames, [0-9]+\] class=QRX_Switch '
expect '^  rs_api_client_mq\.get_switch_info +[0-9]+ +[0-9]+ +[0-9]+ +[0-9]+$'
if [ "$failed" -ne 0 ]; then
  echo "---- output of scripts/run"
  echo "$out"
fi
exit "$failed"
