#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""bench_table.py BOUNDS [--json OUT [--here]] [--all] RESULT.json...: medians of Google Benchmark results, their ratios to peers.

Prints a row per workload and contender: the median, our time over the contender's, and where BOUNDS has a line for the
pair, the bound and whether it holds. Exits 1 if one does not hold or, with --all, was not looked at. --json writes all
results as one file of Google Benchmark's own form, --here with what machine this is. Work on one thread is judged by processor time, which leaves out
what other programs took; work on several threads, in other processes or on the disk by wall time per operation. A bound
on a counter of ours is a line of BOUNDS too: `workload counter >= number` or `<=`.
"""
import argparse
import json
import pathlib
import re
import statistics
import sys

from bench_machine import this_machine

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def read_bounds(text):
    """{(workload, peer): ratio} from lines of `workload peer ratio`; # begins a comment."""
    return {(row[0], row[1]): float(row[2]) for row in bound_lines(text) if len(row) == 3}


def read_counter_bounds(text):
    """{(workload, counter): (">=" or "<=", number)} from lines of `workload counter >= number`."""
    return {(row[0], row[1]): (row[2], float(row[3])) for row in bound_lines(text) if len(row) == 4}


def bound_lines(text):
    rows = (line.split("#")[0].split() for line in text.splitlines())
    return [row for row in rows if row]


def medians(benchmarks):
    """{workload: {who: median in ns}} of the single repetitions."""
    times = {}
    for run in benchmarks:
        if run.get("run_type") != "iteration" or run.get("error_occurred"):
            continue
        parts = run["run_name"].split("/")
        wall = any(re.match(r"(real_time|manual_time|threads:)", part) for part in parts[3:])
        time = run["real_time" if wall else "cpu_time"] * NANOSECONDS[run["time_unit"]]
        times.setdefault("/".join(parts[:2]), {}).setdefault(parts[2], []).append(time)
    return {workload: {who: statistics.median(runs) for who, runs in row.items()} for workload, row in times.items()}


def counters(benchmarks, bounds):
    """{(workload, counter): median of ours} of the counters that have a bound."""
    values = {}
    for run in benchmarks:
        parts = run["run_name"].split("/")
        if run.get("run_type") != "iteration" or run.get("error_occurred") or parts[2] != "kx":
            continue
        for workload, counter in bounds:
            if workload == "/".join(parts[:2]) and counter in run:
                values.setdefault((workload, counter), []).append(run[counter])
    return {bound: statistics.median(runs) for bound, runs in values.items()}


def counter_rows(found, bounds):
    """The rows to print, and whether every bound holds that could be looked at."""
    rows, holds = [], True
    for pair, value in found.items():
        relation, bound = bounds[pair]
        good = value >= bound if relation == ">=" else value <= bound
        holds = holds and good
        rows.append((*pair, f"{value:.3f}", "", f"{relation} {bound:.2f}", "holds" if good else "MISSED"))
    return rows, holds


def readable(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.2f} {unit}"
    return f"{nanoseconds:.2f} ns"


def table(found, bounds):
    """The rows to print, and whether every bound holds that could be looked at."""
    rows, holds = [("workload", "who", "median", "kx / it", "bound", "")], True
    for workload, row in found.items():
        ours = row.get("kx")
        for who, time in sorted(row.items(), key=lambda item: (item[0] != "kx", item[1])):
            ratio = ours / time if ours and who != "kx" else None
            bound = bounds.get((workload, who))
            verdict = ""
            if ratio is not None and bound is not None:
                verdict = "holds" if ratio <= bound else "MISSED"
                holds = holds and ratio <= bound
            rows.append((workload, who, readable(time), f"{ratio:.2f}" if ratio is not None else "",
                         f"{bound:.2f}" if bound is not None else "", verdict))
    return rows, holds


def not_run(found, bounds):
    """The pairs that have a bound and no ratio."""
    return sorted(pair for pair in bounds if not {"kx", pair[1]} <= set(found.get(pair[0], {})))


def every_row(benchmarks, text):
    """All rows, whether every bound holds, and the pairs that were not looked at."""
    found, bounds = medians(benchmarks), read_bounds(text)
    rows, holds = table(found, bounds)
    counter_bounds = read_counter_bounds(text)
    counted = counters(benchmarks, counter_bounds)
    more, more_hold = counter_rows(counted, counter_bounds)
    return rows + more, holds and more_hold, not_run(found, bounds) + sorted(counter_bounds.keys() - counted.keys())


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("bounds", type=pathlib.Path)
    arguments.add_argument("results", type=pathlib.Path, nargs="+")
    arguments.add_argument("--json", type=pathlib.Path)
    arguments.add_argument("--here", action="store_true", help="the results were measured on this machine, just now")
    arguments.add_argument("--all", action="store_true", help="every bound must have been looked at")
    given = arguments.parse_args()
    results = [json.loads(path.read_text(encoding="utf-8")) for path in given.results]
    benchmarks = [run for result in results for run in result["benchmarks"]]
    if given.json:
        context = results[0]["context"] | ({"machine": this_machine()} if given.here else {})
        whole = {"context": context, "benchmarks": benchmarks}
        given.json.write_text(json.dumps(whole, indent=2), encoding="utf-8")
    rows, holds, missing = every_row(benchmarks, given.bounds.read_text(encoding="utf-8"))
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        cells = [cell.ljust(width) if column < 2 else cell.rjust(width)
                 for column, (cell, width) in enumerate(zip(row, widths))]
        print("  ".join(cells).rstrip())
    for workload, who in missing if given.all else []:
        print(f"{workload} was not compared with {who}")
    return 0 if holds and not (given.all and missing) else 1


if __name__ == "__main__":
    sys.exit(main())
