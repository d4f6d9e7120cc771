"""Holds measure.py against benchmarks whose results are known.

usage: measure_test.py BENCHMARKS
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

BENCHMARKS = pathlib.Path(sys.argv.pop(1))
sys.path.insert(0, str(BENCHMARKS))

from bars import Bar  # pylint: disable=wrong-import-position
from results import Comparison, judge  # pylint: disable=wrong-import-position


def comparison(**sides):
    return Comparison("some_benchmark", {"name": "claim /dev/sdc", "sides": sides, "left": {}})


class Ratios(unittest.TestCase):
    def test_are_those_of_the_turns_of_one_round(self):
        # The second and third rounds were disturbed, and both sides alike.
        ratio = comparison(ours=[20, 200, 600], plain=[10, 100, 400]).ratio("ours", "plain")
        self.assertEqual(ratio.median, 2)

    def test_have_the_ends_of_their_middle_half(self):
        ratio = comparison(ours=[1, 2, 3, 4, 5, 6, 7], plain=[1] * 7).ratio("ours", "plain")
        self.assertEqual(ratio, (4, 2, 6))

    def test_of_growth_are_those_to_the_smallest_size(self):
        sizes = {"100": [20], "10": [2], "1000": [200]}
        self.assertEqual(comparison(**sizes).pairs("plain"), [("100", "10"), ("1000", "10")])

    def test_of_a_single_round_have_no_width(self):
        self.assertEqual(comparison(ours=[3], plain=[2]).ratio("ours", "plain"), (1.5, 1.5, 1.5))


class Verdicts(unittest.TestCase):
    def verdict(self, ours, name="claim /dev/sdc"):
        return judge([Bar(name, "ours", "plain", 1.1)], [comparison(ours=[ours], plain=[100])])[0]

    def test_are_that_a_bar_is_met_up_to_its_ratio(self):
        self.assertTrue(self.verdict(110).is_met)
        self.assertFalse(self.verdict(111).is_met)

    def test_on_what_was_not_measured_are_that_it_is_not_met(self):
        self.assertFalse(self.verdict(1, "claim /dev/sdd").is_met)


class TheCheck(unittest.TestCase):
    def run_with(self, script, *arguments):
        """Runs it with a build whose only benchmark is a script of the shell."""
        with tempfile.TemporaryDirectory() as build:
            program = pathlib.Path(build, "bin", "names_benchmark")
            program.parent.mkdir()
            program.write_text(f"#!/bin/sh\n{script}\n")
            program.chmod(0o700)
            run = subprocess.run([sys.executable, BENCHMARKS / "measure.py", *arguments, build],
                                 capture_output=True, text=True, check=False)
            file = pathlib.Path(build, "benchmarks.json")
            return run, json.loads(file.read_text()) if file.exists() else None

    def check(self, ours):
        line = {"name": "claim /dev/sdc", "sides": {"ours": [ours], "plain": [100]}, "left": {}}
        return self.run_with(f"printf '%s\\n' '{json.dumps(line)}'", "--check", "names")

    def test_ends_with_0_when_the_bars_are_met(self):
        run, result = self.check(105)
        self.assertEqual(run.returncode, 0)
        self.assertIn("ours / plain: 1.050 (1.050 to 1.050)", run.stdout)
        self.assertEqual([bar["met"] for bar in result["bars"]], [True])

    def test_says_which_bar_falls_short_and_ends_with_1(self):
        run, result = self.check(120)
        self.assertEqual(run.returncode, 1)
        self.assertIn("falls short: claim /dev/sdc: ours beside plain takes 1.200 times as long, "
                      "at most 1.100", run.stderr)
        self.assertEqual([bar["met"] for bar in result["bars"]], [False])
        self.assertEqual(result["comparisons"][0]["sides"]["ours"], [120])

    def test_of_a_benchmark_that_fails_ends_with_2(self):
        run, result = self.run_with("exit 3", "--check", "names")
        self.assertEqual(run.returncode, 2)
        self.assertIn("names_benchmark failed with status 3", run.stderr)
        self.assertIsNone(result)

    def test_of_benchmarks_that_do_not_exist_ends_with_2(self):
        run, _ = self.run_with("exit 0", "nothing")
        self.assertEqual(run.returncode, 2)
        self.assertIn("no benchmark has 'nothing' in its name", run.stderr)


if __name__ == "__main__":
    unittest.main()
