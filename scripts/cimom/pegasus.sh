# OpenPegasus for scripts/cimom/run (sourced): OpenPegasus 2.14, built once
# from QRX_PEGASUS_DIR (../shared/pegasus) into the cache with its build.sh.
# Every run has a home of its own (the cached programs and libraries linked
# in, a copy of the cached repository, its own configuration files, which
# the server rewrites), installs the project the way README says (cimmof
# of the DMTF schema and the vendor classes into root/qrx and root/interop,
# of the registration into root/PG_InterOp, the library in providerDir) and
# runs cimserver on a port of its own. The server's pid file, start lock
# and local socket are compiled into the cached build (PREFIX/run): one
# server per cache at a time, which the lock scripts/test-cimom holds
# around this object manager's stage ensures.
#
# Uses: $om_prefix (the cached OpenPegasus), $dir (this run's folder),
# $port, $install (the project installed for this run), $lib (its library).

om_label=OpenPegasus
om_src=${QRX_PEGASUS_DIR:-../shared/pegasus}
om_interop=root/PG_InterOp
om_registration=pegasus/qrxsmis-pegasus.mof
om_pid=

om_build() {
  "$om_src/build.sh" "$om_prefix"
}

# A command of the cached OpenPegasus, with this run's home.
pegasus() {
  (. "$om_prefix/env.sh" && PEGASUS_HOME=$dir/home "$@")
}

om_start() {
  local share=$install/share/qrxsmis schema=$om_prefix/src/pegasus/Schemas/CIM241
  local home=$dir/home
  mkdir -p "$home/trace"
  ln -s "$om_prefix/home/bin" "$om_prefix/home/lib" "$home/"
  cp "$om_prefix/home/cimserver_planned.conf" "$home/"
  cp -r "$om_prefix/home/repository" "$home/repository"
  # Agents (forceProviderProcesses, the default): the library runs in a
  # cimprovagt process of its own, which inherits the server's environment.
  pegasus cimserver enableHttpConnection=true enableHttpsConnection=false \
    enableAuthentication=false httpPort="$port" listenAddress=127.0.0.1 \
    providerDir="lib:$(dirname "$lib")" >"$dir/om.log" 2>&1 || { cat "$dir/om.log"; return 1; }
  om_pid=$(grep -o '[0-9]*' "$om_prefix/run/cimserver_start.conf" | head -n 1)
  {
    pegasus cimmof -n root/qrx -I "$schema" "$schema/CIM_Schema.mof" &&
      pegasus cimmof -n root/qrx "$share/mof/qrx_classes.mof" &&
      pegasus cimmof -n root/interop -I "$schema" "$schema/CIM_Schema.mof" &&
      pegasus cimmof -n root/interop "$share/mof/qrx_interop.mof" &&
      pegasus cimmof -n root/PG_InterOp "$share/pegasus/qrxsmis-pegasus.mof"
  } >"$dir/cimmof.log" 2>&1 || { cat "$dir/cimmof.log"; return 1; }
}

om_stop() {
  [ -n "$om_pid" ] || return 0
  # cimserver -s ends the server and its provider agents; a server that
  # does not answer is killed with its agents (its children).
  pegasus timeout 30 cimserver -s >/dev/null 2>&1
  if kill -0 "$om_pid" 2>/dev/null; then
    for agent in $(ps -o pid= --ppid "$om_pid"); do kill -KILL "$agent" 2>/dev/null; done
    kill -KILL "$om_pid" 2>/dev/null
  fi
  om_pid=
}
