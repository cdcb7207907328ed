# sfcb for scripts/cimom/run (sourced): sfcb 1.3.11, built once from
# QRX_SFCB_DIR (../shared/sfcb) into the cache with its build.sh. The cached
# tree is only read: every run stages the DMTF schema, the vendor classes
# and the registration into a copy of its stage folder and builds a
# repository of its own, and sfcbd runs with a configuration, sockets and
# a port of its own.
#
# Uses: $om_prefix (the cached sfcb), $dir (this run's folder), $port,
# $install (the project installed for this run), $lib (its library).

om_label=sfcb
om_src=${QRX_SFCB_DIR:-../shared/sfcb}
om_interop=root/interop
om_registration=sfcb/qrxsmis.reg
om_pid=

om_build() {
  "$om_src/build.sh" "$om_prefix"
}

om_start() {
  local share=$install/share/qrxsmis stage=$dir/stage
  cp -r "$om_prefix/var/lib/sfcb/stage" "$stage"
  PATH=$om_prefix/bin:$PATH sfcbstage -s "$stage" -n root/qrx -r "$share/sfcb/qrxsmis.reg" \
    "$om_prefix/share/sfcb/CIM/cim_full.mof" "$share/mof/qrx_classes.mof" >/dev/null
  PATH=$om_prefix/bin:$PATH sfcbstage -s "$stage" -n root/interop "$share/mof/qrx_interop.mof" \
    >/dev/null
  PATH=$om_prefix/bin:$PATH sfcbrepos -f -i -s "$stage" -r "$dir/registration" \
    >"$dir/sfcbrepos.log" 2>&1 || { cat "$dir/sfcbrepos.log"; return 1; }
  # maxMsgLen: sfcb refuses a provider's answer beyond it; 2,500 ports'
  # instances are about 13 MB in its internal form.
  cat >"$dir/sfcb.cfg" <<CFG
enableHttp:      true
httpPort:        $port
httpLocalOnly:   true
httpProcs:       4
enableHttps:     false
doBasicAuth:     false
useChunking:     true
provProcs:       16
maxMsgLen:       100000000
enableInterOp:   true
registrationDir: $dir/registration
providerDirs:    $(dirname "$lib") $om_prefix/lib/sfcb $om_prefix/lib
localSocketPath: $dir/sfcbLocalSocket
httpSocketPath:  $dir/sfcbHttpSocket
traceLevel:      0
traceMask:       0
CFG
  setsid "$om_prefix/sbin/sfcbd" -c "$dir/sfcb.cfg" >"$dir/om.log" 2>&1 &
  om_pid=$!
}

om_stop() {
  [ -n "$om_pid" ] || return 0
  # sfcbd and the provider and HTTP processes it forked share its process
  # group.
  kill -TERM -- "-$om_pid" 2>/dev/null
  for _ in $(seq 50); do kill -0 -- "-$om_pid" 2>/dev/null || break; sleep 0.1; done
  kill -KILL -- "-$om_pid" 2>/dev/null
  wait "$om_pid" 2>/dev/null
  om_pid=
}
