#!/usr/bin/env python3
"""The checks of scripts/test-cimom (Python 3, standard library only).

  checks.py expect --cim QRX-CIM --reg REG --out FILE
      what qrx-cim gets from the library for every registered class: the
      object paths of every class in every namespace, and for the first
      instance of every association each end's associators and references;
      also the time of `qrx-cim ei QRX_SwitchFCPort`.
  checks.py check --name NAME --url URL --interop NAMESPACE --expect FILE
                        --sim QRX-SWITCHSIM --lib LIB --trace FILE --deb PACKAGE
                        --results FILE
      the same asked of the object manager with wbemcli (every command under
      `timeout`), a zoning session through extrinsic methods, the debug
      facility in root/interop, a provider process restart, an indication
      subscription made in the object manager's interop NAMESPACE, the
      Debian package's contents; writes the rows of what it checked to the
      results file.
  checks.py unchecked --name NAME --result SKIPPED|FAILED --reason TEXT --results FILE
      the results of an object manager whose checks could not run: skipped
      (its sources are absent) or failed (it could not be built or started).
  checks.py table RESULTS...
      prints one table, a column per object manager, and the details of
      each; exits 1 when any check failed.

Object paths are compared by class and key values, ignoring host and
namespace (references included, recursively) and the case of names.
"""

import argparse
import http.server
import json
import os
import re
import signal
import subprocess
import sys
import threading
import time

TIMEOUT = "60"  # seconds for one wbemcli request

# Classes whose instances are the library process's own (timing records of
# the requests it served): they differ between qrx-cim and the object
# manager's provider process, which only must list some.
VARYING = {"QRX_EnumPerfRecord"}


# --------------------------------------------------------------------------
# Object paths

CLASS_AND_KEY = re.compile(r"([A-Za-z_]\w*)\.([A-Za-z_]\w*)=")
# A reference value without quotes, as wbemcli prints it: [NAMESPACE:]CLASS.
BARE_REF = re.compile(r"(?:[^,\"=]*:)?([A-Za-z_]\w*)\.(?=[A-Za-z_]\w*=)")


def canonical(text):
    """(class, sorted key values) of an object path text in either tool's
    form. Each key value is (role, class, key, value): role and class name
    the reference a key belongs to (empty for the path's own keys); names
    are lower case, host and namespaces are dropped. A key with an empty
    value is left out: an object manager may complete a path with every
    key its class declares (OpenPegasus adds CIM_Location's PhysicalPosition
    to QRX_Location, whose key is Name), empty where the provider has none."""
    m = CLASS_AND_KEY.search(text)
    if not m:
        return (text.rsplit(":", 1)[-1].strip().lower(), ())
    rest, i, keys, role, ref = text[m.end(1) + 1:], 0, [], "", ""
    while i < len(rest):
        eq = rest.find("=", i)
        if eq < 0:
            break
        name, i = rest[i:eq].strip().lower(), eq + 1
        if rest.startswith('"', i):
            j, value = i + 1, ""
            while j < len(rest) and rest[j] != '"':
                if rest[j] == "\\":
                    j += 1
                value += rest[j]
                j += 1
            i = j + 1
            if CLASS_AND_KEY.search(value):
                nested_class, nested = canonical(value)
                keys += [(name, nested_class, k[2], k[3]) for k in nested]
            else:
                keys.append((role, ref, name, value))
        else:
            bare = BARE_REF.match(rest, i)
            if bare:
                role, ref, i = name, bare.group(1).lower(), bare.end()
                continue
            j = rest.find(",", i)
            j = len(rest) if j < 0 else j
            keys.append((role, ref, name, rest[i:j].strip()))
            i = j
        while i < len(rest) and rest[i] in ", \n":
            i += 1
    return (m.group(1).lower(), tuple(sorted(k for k in keys if k[3] != "")))


# --------------------------------------------------------------------------
# Registration

# PG_ProviderCapabilities.ProviderType values.
PROVIDER_TYPES = {"2": "instance", "3": "association", "4": "indication", "5": "method"}


def registrations(reg):
    """[(class, [kinds], [namespaces])] of a provider registration: an sfcb
    registration file (.reg) or an OpenPegasus registration MOF (.mof)."""
    with open(reg) as f:
        text = f.read()
    if reg.endswith(".mof"):
        return pegasus_registrations(text)
    out, current = [], None
    for line in text.splitlines():
        line = line.strip()
        if line.startswith("[") and line.endswith("]"):
            current = [line[1:-1], [], []]
            out.append(current)
        elif current and line.startswith("type:"):
            current[1] = line.split(":", 1)[1].split()
        elif current and line.startswith("namespace:"):
            current[2] += line.split(":", 1)[1].split()
    return [tuple(r) for r in out]


def pegasus_registrations(text):
    """The capabilities of a PG_ProviderCapabilities MOF, in the order of
    an sfcb registration's types (instance, association, method,
    indication)."""
    out = []
    for body in re.findall(r"instance of PG_ProviderCapabilities\s*\{(.*?)\n\};", text, re.S):
        values = dict(re.findall(r"(\w+)\s*=\s*([^;]*);", body))
        kinds = [PROVIDER_TYPES[t] for t in re.findall(r"\d+", values.get("ProviderType", ""))]
        order = ["instance", "association", "method", "indication"]
        out.append((values["ClassName"].strip().strip('"'), sorted(kinds, key=order.index),
                    re.findall(r'"([^"]*)"', values.get("Namespaces", ""))))
    return out


# --------------------------------------------------------------------------
# qrx-cim

def cim_script(cim, lines):
    """Runs qrx-cim over a script of lines, each preceded by a marker; the
    output of each line (stdout, stderr lines of failures) in order."""
    script = "".join("echo @@%d\n%s\n" % (i, line) for i, line in enumerate(lines))
    run = subprocess.run([cim, "run", "-"], input=script, capture_output=True, text=True,
                         timeout=600)
    outputs, current = [[] for _ in lines], None
    for line in run.stdout.splitlines():
        if line.startswith("@@"):
            current = int(line[2:])
        elif current is not None and line.strip():
            outputs[current].append(line)
    return outputs


def expect(args):
    regs = registrations(args.reg)
    targets = [(c, ns) for c, kinds, nss in regs if "instance" in kinds for ns in nss]
    names = cim_script(args.cim, ["-n %s ein %s" % (ns, c) for c, ns in targets])
    paths = {"%s %s" % t: out for t, out in zip(targets, names)}
    # Associations: from both ends of the first instance of each.
    walks = []
    for c, kinds, nss in regs:
        if "association" not in kinds:
            continue
        ns = nss[0]
        first = paths.get("%s %s" % (c, ns)) or []
        if not first:
            continue
        for role in sorted({k[0] for k in canonical(first[0])[1] if k[0]}):
            walks.append((c, ns, role, ref_text(first[0], role)))
    lines = []
    for c, ns, role, end in walks:
        lines.append("-n %s an '%s' --ac %s" % (ns, end, c))
        lines.append("-n %s rn '%s' --rc %s" % (ns, end, c))
    results = cim_script(args.cim, lines)
    assoc = []
    for i, (c, ns, role, end) in enumerate(walks):
        assoc.append({"class": c, "namespace": ns, "role": role, "source": end,
                      "associators": results[2 * i], "references": results[2 * i + 1]})
    ports = subprocess.run([args.cim, "ein", "QRX_SwitchFCPort"], capture_output=True,
                           text=True, check=True, timeout=120).stdout.split()
    start = time.monotonic()
    subprocess.run([args.cim, "ei", "QRX_SwitchFCPort"], capture_output=True, check=True,
                   timeout=120)
    cim_ei = time.monotonic() - start
    with open(args.out, "w") as f:
        json.dump({"registrations": regs, "paths": paths, "associations": assoc,
                   "ports": len(ports), "cim_ei_seconds": cim_ei}, f)


def ref_text(path_text, role):
    """The text of reference key `role` of an association path, unescaped."""
    m = re.search(r'(?i)\b%s="((?:[^"\\]|\\.)*)"' % re.escape(role), path_text)
    return re.sub(r"\\(.)", r"\1", m.group(1))


# --------------------------------------------------------------------------
# wbemcli

class Client:
    def __init__(self, url):
        self.url = url.rstrip("/")

    def target(self, namespace, what):
        """URL form of a class name or of a path (host and namespace of its
        own are dropped)."""
        if not what:
            return "%s/%s" % (self.url, namespace)
        m = CLASS_AND_KEY.search(what)
        if m:
            what = what[m.start():]
        return "%s/%s:%s" % (self.url, namespace, what)

    def run(self, op, namespace, what, *extra):
        cmd = ["timeout", TIMEOUT, "wbemcli", op, "-nl", self.target(namespace, what)] + list(extra)
        done = subprocess.run(cmd, capture_output=True, text=True)
        return done.returncode, done.stdout, done.stderr.strip()

    def paths(self, op, namespace, what, *extra):
        """Object paths of ein, ain, rin (one per line): (ok, [paths], error)."""
        code, out, err = self.run(op, namespace, what, *extra)
        return code == 0, [l for l in out.splitlines() if CLASS_AND_KEY.search(l)], err

    def instances(self, op, namespace, what, *extra):
        """Instances of ei, gi, ai, ri: (ok, [{property: value}], error)."""
        code, out, err = self.run(op, namespace, what, *extra)
        found = []
        for line in out.splitlines():
            if line.startswith("-"):
                name, _, value = line[1:].partition("=")
                found[-1][name] = value.strip('"')
            elif line.strip():
                found.append({"": line})
        return code == 0, found, err


class Table:
    """The rows one object manager's checks produced; or, for one whose
    checks could not run, the result and reason that stand for all."""

    def __init__(self, name):
        self.name, self.rows, self.unchecked = name, [], None

    def add(self, what, ok, detail):
        self.rows.append((what, "ok" if ok is True else ("SKIPPED" if ok is None else "FAILED"),
                          detail))

    def save(self, path):
        with open(path, "w") as f:
            json.dump({"name": self.name, "rows": self.rows, "unchecked": self.unchecked}, f)


def print_table(paths):
    """One table of the results files, a column per object manager (the
    result of one whose checks could not run all the way down), then each
    one's details. The number of failures."""
    tables = []
    for path in paths:
        with open(path) as f:
            tables.append(json.load(f))
    checks = []
    for t in tables:
        checks += [r[0] for r in t["rows"] if r[0] not in checks]
    cells = [{r[0]: r for r in t["rows"]} for t in tables]
    width = max([len(c) for c in checks] + [len("Check")])
    heads = [max(len(t["name"]), 7) for t in tables]
    print("\n%-*s  %s" % (width, "Check", "  ".join("%-*s" % (w, t["name"])
                                                     for w, t in zip(heads, tables))))
    failed = sum(1 for t in tables if t["unchecked"] and t["unchecked"][0] == "FAILED")
    for check in checks:
        results = []
        for t, c in zip(tables, cells):
            result = t["unchecked"][0] if t["unchecked"] else (c[check][1] if check in c else "-")
            failed += result == "FAILED" and not t["unchecked"]
            results.append(result)
        print("%-*s  %s" % (width, check, "  ".join("%-*s" % (w, r)
                                                    for w, r in zip(heads, results))))
    for t, c in zip(tables, cells):
        print("\n%s:" % t["name"])
        if t["unchecked"]:
            print("  %s: %s" % tuple(t["unchecked"]))
        for check in checks:
            if check in c:
                print("  %-*s  %s" % (width, check, c[check][2]))
    print("\n%d checks x %d object managers, %d failed" % (len(checks), len(tables), failed))
    return failed


def wait_for_broker(client, interop):
    for _ in range(300):
        code, _, _ = client.run("ecn", interop, "CIM_ManagedElement")
        if code == 0:
            return True
        time.sleep(0.1)
    return False


def exact(paths, cls):
    """The paths of class `cls` itself: the object manager adds subclasses'."""
    return [p for p in paths if canonical(p)[0] == cls.lower()]


def same(expected, got):
    return sorted(map(canonical, expected)) == sorted(map(canonical, got))


def check_classes(client, exp, table):
    served, instances, mismatched = 0, 0, []
    known = {}
    for c, kinds, nss in exp["registrations"]:
        for ns in nss:
            if ns not in known:
                _, out, _ = client.run("ecn", ns, "")
                known[ns] = {l.rsplit(":", 1)[-1].strip().lower() for l in out.splitlines()}
            if c.lower() not in known[ns]:
                mismatched.append("%s not in %s" % (c, ns))
    table.add("ecn: every registered class in its namespaces", not mismatched,
              "; ".join(mismatched[:3]) or "%d classes" % len(exp["registrations"]))
    count_problems, key_problems, gi_problems = [], [], []
    for target, want in sorted(exp["paths"].items()):
        c, ns = target.split()
        ok, got, err = client.paths("ein", ns, c)
        got = exact(got, c)
        served += 1
        if c in VARYING:
            if not ok or not got:
                count_problems.append("%s: %s" % (target, err[:80] or "no instances"))
            instances += len(got)
            continue
        if not ok:
            count_problems.append("%s: %s" % (target, err[:80]))
            continue
        ok_ei, inst, err = client.instances("ei", ns, c)
        inst = [i for i in inst if canonical(i[""])[0] == c.lower()]
        if not ok_ei or len(inst) != len(want):
            count_problems.append("%s: qrx-cim %d, ein %d, ei %s" % (target, len(want), len(got),
                                                                  len(inst) if ok_ei else err[:60]))
        elif len(got) != len(want):
            count_problems.append("%s: qrx-cim %d, ein %d" % (target, len(want), len(got)))
        elif not same(want, got):
            key_problems.append(target)
        instances += len(got)
        if got:
            ok, one, err = client.instances("gi", ns, got[0])
            if not ok or len(one) != 1:
                gi_problems.append("%s: %s" % (target, err[:80]))
    table.add("ei, ein: instance counts agree with qrx-cim", not count_problems,
              "; ".join(count_problems[:3]) or
              "%d classes x namespaces, %d instances" % (served, instances))
    table.add("ein: key values agree with qrx-cim", not key_problems and not count_problems,
              "; ".join(key_problems[:3]) or "every path of every class")
    table.add("gi: the first instance of every class", not gi_problems,
              "; ".join(gi_problems[:3]) or "%d classes x namespaces" % served)
    return served, instances


def check_associations(client, exp, table):
    """Both ends of the first instance of every association class. Where
    the library asks the broker (the profiles' conforming elements include
    the object manager), its CIM_ObjectManager is the one extra answer."""
    walked, problems, broker_answers = 0, [], 0
    for a in exp["associations"]:
        src, c, ns = a["source"], a["class"], a["namespace"]
        for op, key in (("ain", "associators"), ("rin", "references")):
            want = a[key]
            flag = "-ac" if op == "ain" else "-arc"
            ok, got, err = client.paths(op, ns, src, flag, c)
            walked += 1
            mine = [p for p in got if canonical(p)[0] != "cim_objectmanager"]
            broker_answers += len(got) - len(mine)
            got = mine
            if want and not ok:
                problems.append("%s %s from %s: %s" % (op, c, a["role"], err[:60]))
            elif not same(want, got):
                problems.append("%s %s from %s: qrx-cim %d, wbemcli %d"
                                % (op, c, a["role"], len(want), len(got)))
    classes = len({a["class"] for a in exp["associations"]})
    table.add("ain, rin: both ends of every association", not problems,
              "; ".join(problems[:3]) or "%d requests over %d association classes "
              "(plus %d CIM_ObjectManager from the object manager)" % (walked, classes, broker_answers))
    # The instance forms, from the switch.
    switch = exp["paths"].get("QRX_Switch root/qrx", [None])[0]
    fabric = exp["paths"].get("QRX_Fabric root/qrx", [None])[0]
    ok1, ai, err1 = client.instances("ai", "root/qrx", switch, "-ac", "QRX_PortInSwitch")
    ok2, ri, err2 = client.instances("ri", "root/qrx", fabric, "-arc", "QRX_SwitchInFabric")
    good = ok1 and ok2 and len(ai) == exp["ports"] and len(ri) == 1
    table.add("ai, ri: switch to its ports, fabric to switch", good,
              "%d ports, %d SwitchInFabric" % (len(ai), len(ri)) if good else (err1 or err2)[:80])


def check_zoning(client, sim, table):
    """A session through extrinsic methods and an instance deletion. Only
    methods without reference parameters: sfcb 1.3.11's HTTP process dies
    on a reference parameter (as wbemcli sends it) before any provider is
    called."""
    wwn = json.loads(subprocess.run([sim, "model"], capture_output=True, text=True,
                                    check=True).stdout)["switch"]["name"]
    svc = ('QRX_ZoneService.SystemCreationClassName="QRX_Switch",SystemName="%s",'
           'CreationClassName="QRX_ZoneService",Name="%s"' % (wwn, wwn))
    zone = 'QRX_Zone.InstanceID="0Z0.%s.z_cimom"' % wwn
    failures = []

    def call(method, params):
        code, out, err = client.run("cm", "root/qrx", svc, "%s.%s" % (method, params))
        m = re.search(r"\b%s: (\d+)" % method, out)
        if code != 0 or not m or m.group(1) != "0":
            failures.append("%s %s: %s" % (method, params, (out.strip() or err)[-80:]))

    def zones():
        return len(exact(client.paths("ein", "root/qrx", "QRX_Zone")[1], "QRX_Zone"))

    def on_switch():
        return any(z["name"] == "z_cimom" for z in model_zones(sim))

    before = zones()
    call("SessionControl", "RequestedSessionState=2")
    call("CreateZone", "ZoneName=z_cimom,ZoneType=2,ZoneSubType=1")
    in_session, early = zones(), on_switch()
    call("SessionControl", "RequestedSessionState=3")
    committed = on_switch()
    call("SessionControl", "RequestedSessionState=2")
    code, _, err = client.run("di", "root/qrx", zone)
    if code != 0:
        failures.append("di %s: %s" % (zone, err[-80:]))
    call("SessionControl", "RequestedSessionState=3")
    removed = not on_switch()
    good = (not failures and in_session == before + 1 and not early and committed and removed
            and zones() == before)
    table.add("cm: zoning sessions (create a zone, commit; di it, commit)", good,
              "zones %d -> %d in the session, on the switch only after commit; deleted again"
              % (before, in_session) if good else
              "; ".join(failures[:2]) or "zones %d -> %d, early %s, committed %s, removed %s"
              % (before, in_session, early, committed, removed))


def model_zones(sim):
    model = json.loads(subprocess.run([sim, "model"], capture_output=True, text=True,
                                      check=True).stdout)
    return model["zoning"]["zones"]


def check_debug(client, trace, table):
    ok, inst, err = client.instances("ei", "root/interop", "QRX_DebugFacility")
    path = inst[0].get("LogFilePath") if ok and inst else None
    code, out, err2 = client.run("cm", "root/interop", 'QRX_DebugFacility.InstanceID="QRX:DebugFacility"',
                                 "SetDebugOn.DebugOn=true")
    client.paths("ein", "root/qrx", "QRX_Switch")
    debug_lines = 0
    with open(trace, errors="replace") as f:
        debug_lines = sum(1 for l in f if l.startswith("[QRX_Switch_Provider"))
    good = path == trace and code == 0 and out.strip().endswith("0") and debug_lines > 0
    table.add("debug facility in root/interop (ei, cm SetDebugOn)", good,
              "LogFilePath is the run's trace file; %d debug lines after SetDebugOn" % debug_lines
              if good else "LogFilePath %s; cm: %s" % (path, (out.strip() or err2)[:60]))


def provider_processes(lib):
    """Processes that have the library mapped: the library is installed
    under a path of this run's own, so they are this run's object
    manager's provider processes."""
    found, lib = [], os.path.realpath(lib)
    for pid in os.listdir("/proc"):
        if not pid.isdigit():
            continue
        try:
            with open("/proc/%s/maps" % pid) as f:
                if lib in f.read():
                    found.append(int(pid))
        except (OSError, ProcessLookupError):
            pass
    return found


def loaded_lines(trace):
    """How often the switch's instance factory wrote its "loaded" line."""
    with open(trace, errors="replace") as f:
        return sum(1 for line in f if line.startswith("Info: loaded Instance QRX_Switch\n"))


def check_restart(client, exp, args, table):
    before = provider_processes(args.lib)
    loaded = loaded_lines(args.trace)
    for pid in before:
        os.kill(pid, signal.SIGKILL)
    time.sleep(1)
    want = exp["paths"]["QRX_Switch root/qrx"]
    ok, got, err = False, [], ""
    for _ in range(10):
        ok, got, err = client.paths("ein", "root/qrx", "QRX_Switch")
        if ok and got:
            break
        time.sleep(1)
    after = provider_processes(args.lib)
    again = loaded_lines(args.trace) - loaded
    good = (bool(before) and ok and same(want, got) and bool(after) and
            not set(after) & set(before) and again == 1)
    table.add("provider process killed: factories called again", good,
              "process %s killed; %s loaded the library, called the factory again and "
              "answers" % (before, after) if good
              else "before %s after %s, factory called %d times: %s"
              % (before, after, again, err[:60]))


def check_cmpi2_slots(table):
    """The CMPI 2.0 additions an object manager may leave NULL (sfcb 1.3.11
    does) are never called."""
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    names = re.compile(r"\b(mft|newCMPIError|openMessageFile|closeMessageFile|getMessage2|"
                       r"returnError|setPropertyWithOrigin|CMNewCMPIError|CMOpenMessageFile|"
                       r"CMCloseMessageFile|CMGetMessage2|CMReturnCMPIError|"
                       r"CMSetPropertyWithOrigin|CBGetBrokerVersion)\b")
    uses = []
    for top in ("provider", "support", "common", "tools/codegen"):
        for dirpath, _, files in os.walk(os.path.join(root, top)):
            for name in files:
                if name.endswith((".cpp", ".h", ".py")):
                    with open(os.path.join(dirpath, name), errors="replace") as f:
                        for n, line in enumerate(f, 1):
                            if names.search(line):
                                uses.append("%s:%d" % (os.path.relpath(f.name, root), n))
    table.add("CMPI 2.0 slots a broker may leave NULL: never called", not uses,
              ", ".join(uses[:3]) or "no use in the providers, glue generator or backends")


def check_key_states(trace, table):
    """Keys as the object manager hands them to the providers (flagged as
    keys or not) are read: the object-path
    reader logs "No good value!!!" for a key it skipped."""
    with open(trace, errors="replace") as f:
        skipped = sum(1 for line in f if "No good value" in line)
    table.add("keys as the broker delivers them are read (gi, ain, rin, cm)", skipped == 0,
              "no key skipped by the path reader" if skipped == 0
              else '%d "No good value" lines in the trace' % skipped)


def check_package(deb, table):
    """The Debian package holds the library, MOF, registrations and tools."""
    listing = subprocess.run(["dpkg-deb", "-c", deb], capture_output=True, text=True)
    wanted = ["/cmpi/libqrxsmis.so", "/qrxsmis/mof/qrx_classes.mof", "/qrxsmis/mof/qrx_interop.mof",
              "/qrxsmis/sfcb/qrxsmis.reg", "/qrxsmis/pegasus/qrxsmis-pegasus.mof",
              "/bin/qrx-cim", "/bin/qrx-switchsim"]
    missing = [w for w in wanted if w not in listing.stdout]
    table.add("Debian package (cpack)", listing.returncode == 0 and not missing,
              "%s: %d files" % (os.path.basename(deb), len(wanted)) if not missing
              else "%s lacks %s" % (os.path.basename(deb), ", ".join(missing)))


class Listener(threading.Thread):
    """A CIM-XML listener on loopback that keeps every export request."""

    def __init__(self):
        threading.Thread.__init__(self, daemon=True)
        bodies = self.bodies = []

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                length = int(self.headers.get("Content-Length", "0"))
                bodies.append(self.rfile.read(length).decode("utf-8", "replace"))
                reply = (b'<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" '
                         b'DTDVERSION="2.0"><MESSAGE ID="1" PROTOCOLVERSION="1.0"><SIMPLEEXPRSP>'
                         b'<EXPMETHODRESPONSE NAME="ExportIndication"/></SIMPLEEXPRSP>'
                         b"</MESSAGE></CIM>")
                self.send_response(200)
                self.send_header("Content-Type", 'application/xml; charset="utf-8"')
                self.send_header("CIMExport", "MethodResponse")
                self.send_header("Content-Length", str(len(reply)))
                self.end_headers()
                self.wfile.write(reply)

            def log_message(self, *args):
                pass

        self.server = http.server.HTTPServer(("127.0.0.1", 0), Handler)
        self.port = self.server.server_address[1]

    def run(self):
        self.server.serve_forever()


# Query languages of a CQL filter: the name DMTF gives it and the short
# one; the filter is made with the first the object manager accepts.
QUERY_LANGUAGES = ("DMTF:CQL", "CQL")


def created_path(out):
    """The object path wbemcli ci printed, from its class name on."""
    for line in out.splitlines():
        m = CLASS_AND_KEY.search(line)
        if m:
            return line[m.start():].strip()
    return None


def check_indications(client, args, table):
    """A subscription in the object manager's interop namespace: filter,
    CIM-XML destination (a listener of this check) and subscription, made
    with ci. The object manager may set key values of its own (its system
    name), so each later step uses the path ci answered."""
    what = "indication subscription (ci filter, destination, subscription)"
    listener = Listener()
    listener.start()
    system = 'SystemCreationClassName="CIM_ComputerSystem",SystemName="localhost"'
    filt = ('CIM_IndicationFilter.%s,CreationClassName="CIM_IndicationFilter",'
            'Name="qrx-cimom"' % system)
    dest = ('CIM_ListenerDestinationCIMXML.%s,CreationClassName="CIM_ListenerDestinationCIMXML",'
            'Name="qrx-cimom"' % system)
    made, failure, language = [], None, None

    def create(path, props):
        code, out, err = client.run("ci", args.interop, path, props)
        if code == 0 and created_path(out):
            made.append(created_path(out))
            return made[-1], None
        return None, "ci %s: %s" % (path.split(".")[0], (err or out)[-100:])

    for language in QUERY_LANGUAGES:
        filt_made, failure = create(filt, filt.split(".", 1)[1] +
                                    ',Query="SELECT * FROM CIM_InstModification",'
                                    'QueryLanguage="%s",SourceNamespace="root/qrx"' % language)
        if filt_made:
            break
    if failure is None:
        dest_made, failure = create(dest, dest.split(".", 1)[1] +
                                    ',Destination="http://127.0.0.1:%d"' % listener.port)
    if failure is None:
        # wbemcli takes reference keys unquoted, as it prints them.
        refs = "Filter=%s,Handler=%s" % (filt_made, dest_made)
        _, failure = create("CIM_IndicationSubscription." + refs, refs)
    delivered, waited = [], 0.0
    if failure is None:
        port = json.loads(subprocess.run([args.sim, "model"], capture_output=True, text=True,
                                         check=True).stdout)["ports"][5]["port_index"]
        subprocess.run([args.sim, "event", "port-state", str(port), "offline"],
                       capture_output=True, check=True)
        start = time.monotonic()
        while time.monotonic() - start < 15 and not delivered:
            time.sleep(0.2)
            delivered = [b for b in listener.bodies if "CIM_InstModification" in b]
        waited = time.monotonic() - start
    for path in reversed(made):
        client.run("di", args.interop, path)
    listener.server.shutdown()
    table.add(what, failure is None and bool(delivered),
              failure or ("QueryLanguage %s; CIM_InstModification delivered to the listener "
                          "%.1f s after a port went offline" % (language, waited) if delivered
                          else "nothing delivered within 15 s of a port going offline"))


def check(args):
    with open(args.expect) as f:
        exp = json.load(f)
    client = Client(args.url)
    table = Table(args.name)
    if not wait_for_broker(client, args.interop):
        table.add("the object manager answers", False, "no answer on %s within 30 s" % args.url)
        table.save(args.results)
        return 1
    start = time.monotonic()
    ok, inst, err = client.instances("ei", "root/qrx", "QRX_SwitchFCPort")
    first_ei = time.monotonic() - start
    start = time.monotonic()
    ok, inst, err = client.instances("ei", "root/qrx", "QRX_SwitchFCPort")
    wbem_ei = time.monotonic() - start
    table.add("ei QRX_SwitchFCPort: time", ok and len(inst) == exp["ports"],
              "%d ports: wbemcli %.2f s (first, provider loading: %.2f s), qrx-cim %.2f s"
              % (len(inst), wbem_ei, first_ei, exp["cim_ei_seconds"]))
    checks = [(check_classes, client, exp, table), (check_associations, client, exp, table),
              (check_debug, client, args.trace, table), (check_restart, client, exp, args, table),
              (check_zoning, client, args.sim, table), (check_key_states, args.trace, table),
              (check_cmpi2_slots, table), (check_package, args.deb, table),
              (check_indications, client, args, table)]
    for run, *arguments in checks:
        try:
            run(*arguments)
        except (OSError, ValueError, KeyError, IndexError, subprocess.SubprocessError) as error:
            # A check that could not finish is a failed row; the others run.
            table.add(run.__name__, False, "ended early: %s: %s"
                      % (type(error).__name__, str(error)[:80]))
    table.save(args.results)
    return 1 if any(r[1] == "FAILED" for r in table.rows) else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    sub = parser.add_subparsers(dest="step", required=True)
    e = sub.add_parser("expect")
    e.add_argument("--cim", required=True)
    e.add_argument("--reg", required=True)
    e.add_argument("--out", required=True)
    c = sub.add_parser("check")
    for name in ("--name", "--url", "--interop", "--expect", "--sim", "--lib", "--trace", "--deb",
                 "--results"):
        c.add_argument(name, required=True)
    u = sub.add_parser("unchecked")
    for name in ("--name", "--reason", "--results"):
        u.add_argument(name, required=True)
    u.add_argument("--result", choices=("SKIPPED", "FAILED"), required=True)
    t = sub.add_parser("table")
    t.add_argument("results", nargs="+")
    args = parser.parse_args()
    if args.step == "expect":
        expect(args)
        return 0
    if args.step == "unchecked":
        table = Table(args.name)
        table.unchecked = (args.result, args.reason)
        table.save(args.results)
        return 0
    if args.step == "table":
        return 1 if print_table(args.results) else 0
    return check(args)


if __name__ == "__main__":
    sys.exit(main())
