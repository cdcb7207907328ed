#!/usr/bin/env python3
"""Prints the table of scripts/bench from the benchmarks' JSON results.

Usage: bench_table.py DIR   (DIR holds round_trip.json, enum_<ports>.json,
zoning.json, storm.json, idle.json and, after a full run, cimom.json)

Exits 1 when a result is missing or a benchmark reported an error.
"""
import json
import os
import sys


def load(directory, name):
    """The benchmarks of one result file, by name; exits on errors."""
    path = os.path.join(directory, name + ".json")
    with open(path) as handle:
        data = json.load(handle)
    if "error" in data:
        return {"error": data["error"]}
    found = {}
    for bench in data.get("benchmarks", []):
        if bench.get("error_occurred"):
            sys.exit("bench: %s: %s" % (bench["name"], bench.get("error_message", "error")))
        found[bench["name"]] = bench
    if not found:
        sys.exit("bench: %s has no results" % path)
    return found


def only(benchmarks, prefix):
    for name, bench in benchmarks.items():
        if name.startswith(prefix):
            return bench
    sys.exit("bench: no result for %s" % prefix)


class Table:
    def __init__(self):
        self.rows = []
        self.failed = False

    def add(self, figure, library, floor, ratio, goal, met):
        self.rows.append((figure, library, floor, ratio, goal, met))

    def ratio_row(self, figure, library, floor, unit, goal):
        ratio = library / floor if floor > 0 else float("inf")
        self.add(figure, "%.3g %s" % (library, unit), "%.3g %s" % (floor, unit),
                 "%.3fx" % ratio, "<= %.2gx" % goal, "yes" if ratio <= goal else "NO")

    def show(self):
        head = ("Figure", "Library", "Floor", "Ratio", "Goal", "Met")
        widths = [max(len(str(row[i])) for row in self.rows + [head]) for i in range(len(head))]
        line = lambda row: "| " + " | ".join(str(c).ljust(w) for c, w in zip(row, widths)) + " |"
        print(line(head))
        print("|" + "|".join("-" * (w + 2) for w in widths) + "|")
        for row in self.rows:
            print(line(row))


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    directory = sys.argv[1]
    table = Table()

    trips = load(directory, "round_trip")
    for size, what in (("0", "8-byte reply"), ("100", "3.7 KiB reply")):
        bench = only(trips, "BM_RemoteCallVersusRawPingPong/%s/" % size)
        table.ratio_row("Remote call round trip, %s" % what, bench["library_us"], bench["floor_us"],
                        "us", 1.1)

    per_port = {}
    for name in sorted(os.listdir(directory)):
        if not (name.startswith("enum_") and name.endswith(".json")):
            continue
        bench = only(load(directory, name[:-5]), "BM_EnumerateSwitchFCPorts")
        ports = int(bench["ports"])
        per_port[ports] = bench
    for ports in sorted(per_port):
        bench = per_port[ports]
        read = bench.get("switch_read_us", -1)
        table.ratio_row("Enumeration, %d ports (per port: %.0f us vs %.0f us; switch read %s)" %
                        (ports, bench["library_us_per_port"], bench["floor_us_per_port"],
                         "%.0f us" % read if read >= 0 else "unknown"),
                        bench["library_ms"], bench["floor_ms"], "ms", 1.2)
    if len(per_port) > 1:
        small, large = min(per_port), max(per_port)
        table.ratio_row("Enumeration per port, %d against %d ports" % (large, small),
                        per_port[large]["library_us_per_port"],
                        per_port[small]["library_us_per_port"], "us", 1.2)

    zoning = only(load(directory, "zoning"), "BM_CommitSessionOf10000Operations")
    table.ratio_row("Zoning commit, 10,000 operations against 500 round trips",
                    zoning["real_time"], zoning["round_trip_us"] * 500 / 1000.0, "ms", 1.3)

    storm = only(load(directory, "storm"), "BM_StormOf10000PortEvents")
    table.add("Event storm, 10,000 events over 48 ports (%.0f events/s)" % storm["events_per_second"],
              "%.4g ms" % storm["real_time"], "-", "-", "report", "final states right")

    idle = only(load(directory, "idle"), "BM_IdleLibraryAndFirstEvent")
    cpu = idle["idle_cpu_percent"]
    table.add("Idle cost, library loaded, switch quiet (%.0f s)" % idle["real_time"],
              "%.3f%% CPU" % cpu, "0", "-", "<= 0.5%", "yes" if cpu <= 0.5 else "NO")
    delay = idle["first_event_ms"]
    table.add("First event after a quiet time (mean; max %.2f ms)" % idle["first_event_max_ms"],
              "%.3g ms" % delay, "-", "-", "<= 1.5 ms (before)", "yes" if delay <= 1.5 else "NO")

    if os.path.exists(os.path.join(directory, "cimom.json")):
        with open(os.path.join(directory, "cimom.json")) as handle:
            cimom = json.load(handle)
        if "error" in cimom or "skipped" in cimom:
            table.add("sfcb: ei QRX_SwitchFCPort against a trivial provider",
                      cimom.get("error", cimom.get("skipped")), "-", "-", "report", "-")
        else:
            table.add("sfcb: ei QRX_SwitchFCPort, %d instances, against a trivial provider (%s)" %
                      (cimom["instances"], "per instance: %.0f us vs %.0f us" %
                       (1000 * cimom["library_ms"] / cimom["instances"],
                        1000 * cimom["floor_ms"] / cimom["instances"])),
                      "%.4g ms" % cimom["library_ms"], "%.4g ms" % cimom["floor_ms"],
                      "%.2fx" % (cimom["library_ms"] / cimom["floor_ms"]), "report", "-")
    table.show()


if __name__ == "__main__":
    main()
