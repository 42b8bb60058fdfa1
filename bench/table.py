#!/usr/bin/env python3
"""Measures with the program `bench`, a process for each row and heap, and prints tables (Markdown).

To compare two builds of the library, name the directory of the other one's libqzsvggen.so.1 with
--beside: the same program then runs with each in turn. LD_LIBRARY_PATH=DIRECTORY measures another
build alone.
"""
import argparse
import json
import os
import pathlib
import re
import subprocess
import sys

# By workload and N: what the library has to reach in both heaps. F is the floor's time; growth is
# that of an element's time since the workload's first row.
ROWS = {
    "s": {10: "3.2 F"},  # a page of N lines; its time is the page's
    "a": {10_000: "1 F", 100_000: "1.1 F", 1_000_000: "1.2 F, 1.25 growth"},
    "b": {10_000: "1 F", 100_000: "1.1 F", 1_000_000: "1.2 F, 1.25 growth"},
    "c": {10_000: "0.6 F", 100_000: "0.6 F", 1_000_000: "0.6 F, 1.25 growth"},
    "d": {10_000: "0.6 F", 100_000: "0.6 F", 1_000_000: "0.6 F, 1.25 growth"},
    "e": {10_000: "0.8 F", 100_000: "0.8 F", 1_000_000: "0.8 F, 1.25 growth"},
    "f": {10_000: "1.3 F"},
    "g": {1: "1.3 F", 200: "25000 ns"},
    "h": {1_000: "1.4 F", 20_000: "1.4 F, 1.15 growth"},
    "i": {10_000: "0.9 F", 100_000: "0.9 F"},
    "j": {20_000: "200 ns"},
    "k": {5_000: "2500 ns"},
    "k2": {5_000: "15000 ns"},
    "l": {1: "1200000 ns", 200: "30000 ns"},
    "t": {200: "", 10_000: ""},  # pages a second, on one thread and on one a core
}
HEAPS = {"default": "",
         "kept": "glibc.malloc.trim_threshold=1099511627776:glibc.malloc.mmap_max=0"}
FORMAT = {"ns": ",.1f", "F": ".2f", "growth": ".2f"}
PEERS = {"cairo": "Cairo", "mupdf": "MuPDF"}
DOCS = pathlib.Path(__file__).parent.parent / "docs/performance.md"


class Bench:
    """Runs the program; keeps the reports in a file, and measures nothing that it holds."""

    def __init__(self, program, quick, file):
        self.program, self.file = program, file
        self.speed = (5, 0.01) if quick else (9, 0.03)  # repetitions, seconds of each
        self.reports = json.loads(file.read_text()) if file and file.exists() else {}

    def report(self, heap, library, command):
        environment = {**os.environ, "GLIBC_TUNABLES": HEAPS[heap]}
        if library:
            environment["LD_LIBRARY_PATH"] = library
        key = " ".join([heap, library, *command])
        if key not in self.reports:
            result = subprocess.run([self.program, *command], env=environment,
                                    capture_output=True, text=True)
            if result.returncode != 0:
                sys.exit(result.stderr or f"bench ended with {result.returncode}: {key}")
            # Without the peers that are asked for there is no report.
            self.reports[key] = json.loads(result.stdout or '{"benchmarks": []}')
            if self.file:
                self.file.write_text(json.dumps(self.reports, indent=1))
        return self.reports[key]

    def measure(self, workload, count, heap, subjects, threads=1, library=""):
        """Elements a second by subject and number of threads, and the report's context."""
        repetitions, seconds = self.speed
        if count > 100_000:
            repetitions = 4  # each takes seconds
        report = self.report(heap, library, [
            workload, str(count), str(threads), f"--benchmark_filter={subjects}",
            f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={seconds}",
            "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"])
        fastest = {}
        for run in report["benchmarks"]:
            if run["run_type"] == "iteration":
                key = run["name"].split("/")[0], run["threads"]
                fastest[key] = max(fastest.get(key, 0), run["items_per_second"])
        return fastest, report.get("context")


class Table:
    def __init__(self, titles):
        self.titles = titles
        self.lines = []
        self.row(titles)
        self.row(["--:"] * len(titles))

    def row(self, cells):
        line = "| " + " | ".join(f"{c:>{len(t)}}" for c, t in zip(cells, self.titles)) + " |"
        print(line, flush=True)
        self.lines.append(line)


def times(bench, rows, other):
    """The table of a thread's times."""
    table = Table(["workload", "      N", "   F ns", *(
        title for heap in HEAPS for title in (f"{heap}: ns", "  / F", *["other /"] * bool(other))),
        "growth    ", "peak / doc", "Cairo /", "MuPDF /", "reach", "missed"])
    first = {}  # time of the workload's first row
    for workload, count, reach in rows:
        cells, growths, missed = [], [], []
        for heap in HEAPS:
            rates, context = bench.measure(workload, count, heap, "library|floor")
            library, floor = rates["library", 1], rates["floor", 1]
            first.setdefault((workload, heap), library)
            seen = {"ns": 1e9 / library, "F": floor / library,
                    "growth": first[workload, heap] / library}
            cells += [f"{seen['ns']:{FORMAT['ns']}}", f"{seen['F']:.2f}"]
            if other:
                rates, _ = bench.measure(workload, count, heap, "library|floor", library=other)
                cells.append(f"{library / rates['library', 1]:.2f}")
            growths.append(f"{seen['growth']:.2f}")
            missed += [f"**{heap}: {seen[unit]:{FORMAT[unit]}} {unit}**"
                       for limit, unit in re.findall(r"([\d.]+) (\w+)", reach)
                       if seen[unit] > float(limit)]
            if heap == "default":
                start = [workload, f"{count}", f"{1e9 / floor:{FORMAT['ns']}}"]
                peak = int(context["peak_bytes"]) / int(context["document_bytes"])
                # Of a small page the code and stack that a process happens to touch blur it.
                peak = f"{peak:.2f}" if int(context["document_bytes"]) > 4e6 else ""
                own = library
        peers = {}
        if workload in "sabcde" and count <= 10_000:
            peers, _ = bench.measure(workload, count, "default", "cairo|mupdf")
        table.row([*start, *cells, ", ".join(growths) if "growth" in reach else "", peak,
                   *(f"{own / peers[peer, 1]:.0f}" if (peer, 1) in peers else "" for peer in PEERS),
                   reach, ", ".join(missed)])
    return table


def throughput(bench, rows, cores):
    """The table of pages a second."""
    table = Table(["elements a page", "writer ", *(
        title for heap in HEAPS
        for title in (f"{heap}: 1 thread", f"{cores} threads", "scales"))])
    for workload, count, _ in rows:
        rates = {heap: {**bench.measure(workload, count, heap, "library|floor", cores)[0],
                        **bench.measure(workload, count, heap, "cairo|mupdf", cores)[0]}
                 for heap in HEAPS}
        for subject, name in {"library": "library", "floor": "F", **PEERS}.items():
            if (subject, 1) not in rates["default"]:
                continue
            cells = [f"{count}", name]
            for heap in HEAPS:
                one, all_ = rates[heap][subject, 1], rates[heap][subject, cores]
                cells += [f"{one:.0f}", f"{all_:.0f}", f"{all_ / one:.2f}"]
            table.row(cells)
    return table


def processor():
    text = pathlib.Path("/proc/cpuinfo").read_text()
    name = re.search(r"model name\s*: (.*)", text)
    return name[1] if name else "unknown processor"


def versions():
    return subprocess.run(["dpkg-query", "-W", "-f=${Package} ${Version}, ", "libcairo2-dev",
                           "libmupdf-dev"], capture_output=True, text=True).stdout


def main():
    parser = argparse.ArgumentParser(prog="./dev bench", description=__doc__)
    parser.add_argument("bench", help=argparse.SUPPRESS)
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD", help="without one: all")
    parser.add_argument("--quick", action="store_true", help="fewer repetitions, no millions")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE",
                        help="keep Google Benchmark's reports there, and go on from what it holds")
    parser.add_argument("--beside", default="", metavar="DIRECTORY",
                        help="of another build of the library; 'other /' is its time / this one's")
    parser.add_argument("--docs", action="store_true", help="put the tables in docs/performance.md")
    options = parser.parse_intermixed_args()
    if options.docs and options.workloads:
        parser.error("--docs needs all workloads")
    for name in set(options.workloads) - set(ROWS):
        parser.error(f"there is no workload {name}; there are {', '.join(ROWS)}")
    rows = [(workload, count, reach) for workload in options.workloads or ROWS
            for count, reach in ROWS[workload].items()
            if not (options.quick and count > 100_000)]
    bench = Bench(options.bench, options.quick, options.json)

    cores = os.cpu_count()
    head = [f"{versions()}{processor()}, {cores} cores; load {os.getloadavg()[0]:.1f} at the start"
            f"{', fewer repetitions (--quick)' if options.quick else ''}.", "",
            "Two heaps side by side. *default*: glibc's allocator as processes get it. *kept*:",
            f"told to keep what is freed (`GLIBC_TUNABLES={HEAPS['kept']}`).", ""]
    print("\n".join(head))
    lines = head
    if single := [row for row in rows if row[0] != "t"]:
        lines += times(bench, single, options.beside).lines + [""]
        print()
    if several := [row for row in rows if row[0] == "t"]:
        lines += throughput(bench, several, cores).lines + [""]
    if options.docs:
        start, end = "end mark -->\n", "<!-- end -->"
        before, _, rest = DOCS.read_text().partition(start)
        DOCS.write_text(before + start + "\n" + "\n".join(lines) + end + rest.partition(end)[2])


main()
