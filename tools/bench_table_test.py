#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""bench_table.py takes medians, picks the clock, and tells a bound that holds from one that is missed."""
import unittest

from bench_table import every_row, medians, read_bounds, table


def run(name, cpu, real, unit="ns", kind="iteration"):
    return {"run_name": name, "run_type": kind, "cpu_time": cpu, "real_time": real, "time_unit": unit}


class BenchTable(unittest.TestCase):
    def test_medians_by_the_right_clock(self):
        found = medians([run("a/b/kx", 1, 90), run("a/b/kx", 3, 90), run("a/b/kx", 20, 90),
                         run("a/b/kx", 1000, 0, kind="aggregate"), run("a/b/peer", 2, 90, "us"),
                         run("s/t/kx/real_time", 1, 5, "ms"), run("m/n/kx/real_time/threads:2", 1, 7)])
        self.assertEqual(found, {"a/b": {"kx": 3, "peer": 2000}, "s/t": {"kx": 5e6}, "m/n": {"kx": 7}})

    def test_bounds(self):
        bounds = read_bounds("# a comment\n\na/b  peer  0.50  # why\n")
        for ours, verdict in ((4, "holds"), (5, "holds"), (6, "MISSED")):
            rows, holds = table({"a/b": {"kx": ours, "peer": 10, "other": 1}}, bounds)
            self.assertEqual({row[1]: row[5] for row in rows[1:]}, {"kx": "", "peer": verdict, "other": ""})
            self.assertEqual(holds, verdict == "holds")

    def test_bounds_on_counters(self):
        text = "a/b share >= 0.77\na/b size <= 1.03\na/c share >= 1\n"
        for share, size, verdicts in ((0.77, 1.0, ["holds", "holds"]), (0.7, 1.1, ["MISSED", "MISSED"])):
            ours, peer = run("a/b/kx", 1, 1) | {"share": share, "size": size}, run("a/b/peer", 1, 1) | {"share": 9}
            rows, holds, missing = every_row([ours, peer], text)
            self.assertEqual([row[5] for row in rows if row[5]], verdicts)
            self.assertEqual((holds, missing), (verdicts[0] == "holds", [("a/c", "share")]))


if __name__ == "__main__":
    unittest.main()
