#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""performance_page.py ROOT [--check] [--results FILE] [--charts FILE]: what was measured, for people.

--results takes ./dev bench's results: it keeps their medians in docs/performance.json, with the machine they come from.
The marked part of docs/performance.md is made from that and from benchmarks/bounds.txt; --check only says whether it is
what is there, and exits 1 if not. --charts writes the charts that benchmarks/plot draws. Results that lack a pair that
has a bound are not of a whole run: they make charts, but leave page and figures alone, and the exit status is 1.
"""
import argparse
import json
import pathlib
import sys
import textwrap

from bench_machine import PEERS, this_machine
from bench_table import counters, medians, not_run, read_bounds, read_counter_bounds
from bench_table import readable as ascii_time

BEGIN = "<!-- Made by ./dev bench --plot and ./dev docs, from docs/performance.json -->"
END = "<!-- The end of what is made -->"

SERVICES = [  # chart, title, the first parts of the workloads in it
    ("objects", "Objects and lists", ("operation", "list")),
    ("notifications", "Notifications", ("notify",)),
    ("language", "Settings and texts by key", ("defaults", "strings")),
    ("dates", "Dates and times", ("calendar", "time")),
    ("memory-cache", "Memory cache", ("memory-cache",)),
    ("disk-cache", "Disk cache", ("disk-cache",)),
    ("gif", "Animated GIFs", ("gif", "gif-two-threads", "gif-first-frame")),
    ("pictures", "Pictures", ("resize", "grey", "jpeg-thumbnail")),
    ("text", "Texts measured and outlined", ("text-measure", "text-outline")),
    ("views", "Views and whole programs", ("view", "process", "start")),
]

def readable(nanoseconds):
    return ascii_time(nanoseconds).replace(" us", " µs")


def ratio_text(ratio):
    return f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


# ---- what was measured ----------------------------------------------------------------------------------------

def measured(results, counter_bounds):
    context = results["context"]
    machine = context.get("machine") or this_machine()
    shared = max((cache["size"] for cache in context["caches"]), default=0)
    return {"date": context["date"][:10], "repetitions": max(run.get("repetitions", 1) for run in results["benchmarks"]),
            "processors": context["num_cpus"], "megahertz": context["mhz_per_cpu"], "cache": shared,
            "machine": machine, "medians": medians(results["benchmarks"]),
            "counters": [[*pair, value] for pair, value in counters(results["benchmarks"], counter_bounds).items()]}


def by_service(workloads):
    """(chart, title, workloads in the order of their first parts); what no service knows is a chart of its own."""
    def first(workload):
        return workload.split("/")[0]
    known = {part for _, _, parts in SERVICES for part in parts}
    others = dict.fromkeys(first(workload) for workload in workloads if first(workload) not in known)
    for name, title, parts in SERVICES + [(part, part, (part,)) for part in others]:
        found = [workload for part in parts for workload in sorted(workloads) if first(workload) == part]
        if found:
            yield name, title, found


def contenders(row):
    return sorted(row, key=lambda who: (who != "kx", who))


# ---- the charts -----------------------------------------------------------------------------------------------

def chart_group(workload, row, bounds):
    ours = row.get("kx")
    bars, marks = [], []
    for who in contenders(row):
        bar = {"who": who, "length": row[who], "text": readable(row[who])}
        bound = bounds.get((workload, who))
        if who != "kx" and ours:
            ratio = ours / row[who]
            bar["text"] += f"    ours / its {ratio_text(ratio)}" + (f", at most {bound:.2f}" if bound else "")
            bar["missed"] = bool(bound and ratio > bound)
        if bound:
            marks.append(bound * row[who])
        bars.append(bar)
    return {"title": workload, "bars": bars, "marks": marks}


def charts(figures, bounds):
    found = figures["medians"]
    return {"charts": [{"name": name, "title": title,
                        "groups": [chart_group(workload, found[workload], bounds) for workload in workloads]}
                       for name, title, workloads in by_service(found)]}


# ---- the page -------------------------------------------------------------------------------------------------

def machine_in_words(figures):
    machine = figures["machine"]
    kind = "a virtual machine with " if machine["virtual"] else ""
    words = (f"Measured on {figures['date']} on {kind}{figures['processors']} processors of the kind {machine['cpu']} at "
             f"{figures['megahertz'] / 1000:.1f} GHz, {figures['cache'] >> 20} MiB of shared cache, under "
             f"{machine['system']}, Linux {machine['linux']}; compiled by {machine['compiler']} with `-O2`. Each figure is "
             f"the median of {figures['repetitions']} repetitions.")
    return textwrap.fill(words, 120, break_on_hyphens=False)


def service_table(figures, bounds, counter_bounds, workloads):
    yield "| workload | who | median | ours / its | at most |"
    yield "|---|---|---:|---:|---:|"
    for workload in workloads:
        row = figures["medians"][workload]
        for who in contenders(row):
            ratio = row["kx"] / row[who] if who != "kx" and "kx" in row else None
            bound = bounds.get((workload, who))
            missed = " **missed**" if bound and ratio and ratio > bound else ""
            yield (f"| {workload if who == contenders(row)[0] else ''} | {who} | {readable(row[who])} | "
                   f"{ratio_text(ratio) if ratio else ''} | {f'{bound:.2f}{missed}' if bound else ''} |")
        for counted, counter, value in figures["counters"]:
            if counted == workload and (counted, counter) in counter_bounds:
                relation, number = counter_bounds[counted, counter]
                missed = "" if (value >= number if relation == ">=" else value <= number) else " **missed**"
                yield f"| | `{counter}` of ours | {value:.3f} | | {relation} {number:.2f}{missed} |"


def peers_table(figures):
    met = sorted({who for row in figures["medians"].values() for who in row} - {"kx"})
    yield "| name | what it is | version |"
    yield "|---|---|---|"
    for who in met:
        what, package = PEERS.get(who, (who, None))
        yield f"| {who} | {what} | {figures['machine']['packages'].get(package, '')} |"


def made_part(figures, bounds_text):
    bounds, counter_bounds = read_bounds(bounds_text), read_counter_bounds(bounds_text)
    lines = [machine_in_words(figures), ""]
    for name, title, workloads in by_service(figures["medians"]):
        lines += [f"### {title}", "", f"![{title}: ours and its peers' times as bars](images/performance/{name}.png)", ""]
        lines += [*service_table(figures, bounds, counter_bounds, workloads), ""]
    lines += ["### The peers", "", *peers_table(figures)]
    return "\n".join(lines)


def with_made_part(page, part):
    before, rest = page.split(BEGIN)
    return before + BEGIN + "\n\n" + part + "\n\n" + END + rest.split(END)[1]


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("root", type=pathlib.Path)
    arguments.add_argument("--check", action="store_true")
    arguments.add_argument("--results", type=pathlib.Path)
    arguments.add_argument("--charts", type=pathlib.Path)
    given = arguments.parse_args()
    kept, page = given.root / "docs/performance.json", given.root / "docs/performance.md"
    bounds_text = (given.root / "benchmarks/bounds.txt").read_text(encoding="utf-8")
    if given.results:
        results = json.loads(given.results.read_text(encoding="utf-8"))
        figures = measured(results, read_counter_bounds(bounds_text))
    else:
        figures = json.loads(kept.read_text(encoding="utf-8"))
    if given.charts:
        given.charts.write_text(json.dumps(charts(figures, read_bounds(bounds_text)), ensure_ascii=False), encoding="utf-8")
    if given.results and not_run(figures["medians"], read_bounds(bounds_text)):
        return 1
    old = page.read_text(encoding="utf-8")
    new = with_made_part(old, made_part(figures, bounds_text))
    if given.check:
        if old != new:
            print("docs/performance.md differs from what its figures and benchmarks/bounds.txt make: ./dev docs renews it")
        return 0 if old == new else 1
    if given.results:
        kept.write_text(json.dumps(figures, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")
    page.write_text(new, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
