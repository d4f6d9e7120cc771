#!/usr/bin/env python3
"""Runs the benchmarks of a build and says what came out.

usage: measure.py [--quick] [--check] [NAME] BUILD

Runs those whose names contain NAME, prints their ratios, writes BUILD/benchmarks.json, and says
which bars of bars.py fall short. When all have run, writes docs/performance.md and its plots.

--quick   gives each comparison a fifth of the time
--check   writes no page, and ends with 1 when a bar falls short

Ends with 2 when a benchmark cannot run.
"""

import argparse
import json
import os
import subprocess
import sys
from pathlib import Path

import page
from bars import BARS
from results import Comparison, judge

HERE = Path(__file__).parent


def programs(build, name):
    """The commands of the benchmarks whose names contain `name`, by their names."""
    sources = sorted(HERE.glob("*_benchmark.cpp"))
    found = {source.stem: [build / "bin" / source.stem] for source in sources}
    found["jobs_benchmark"] = [HERE / "jobs_benchmark.sh", build]
    return {key: command for key, command in found.items() if name in key}


def show(comparison):
    print(comparison.name)
    for side, reference in comparison.pairs():
        ratio = comparison.ratio(side, reference)
        print(f"    {side} / {reference}: {ratio.median:.3f} ({ratio.low:.3f} to {ratio.high:.3f})")
    for side, count in comparison.left.items():
        print(f"    {side} leaves {count} processes running")


def measure(build, name, seconds):
    """Runs the benchmarks one after another, and returns their comparisons."""
    environment = {**os.environ, "BENCHMARK_SECONDS": str(seconds)}
    comparisons = []
    for program, command in programs(build, name).items():
        run = subprocess.run(command, env=environment, stdout=subprocess.PIPE, check=False)
        if run.returncode != 0:
            print(f"{program} failed with status {run.returncode}", file=sys.stderr)
            sys.exit(2)
        for line in run.stdout.splitlines():
            comparisons.append(Comparison(program, json.loads(line)))
            show(comparisons[-1])
    return comparisons


def document(comparisons, verdicts):
    """What is written for other programs: all that was measured, and the bars."""
    return {
        "schema": 1,
        "processors": os.cpu_count(),
        "load": os.getloadavg()[1],
        "comparisons": [vars(one) for one in comparisons],
        "bars": [{**one.bar._asdict(), "ratio": one.ratio and one.ratio.median, "met": one.is_met}
                 for one in verdicts],
    }


def falls_short(verdict):
    """A line about a bar that is not met."""
    bar, ratio = verdict
    if ratio is None:
        return f"not measured: {bar}"
    return f"falls short: {bar} takes {ratio.median:.3f} times as long, at most {bar.most:.3f}"


def main():
    parser = argparse.ArgumentParser(usage=__doc__.partition("usage: ")[2])
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("name", nargs="?", default="")
    parser.add_argument("build", type=Path)
    order = parser.parse_args()

    if not programs(order.build, order.name):
        parser.error(f"no benchmark has '{order.name}' in its name")
    comparisons = measure(order.build.resolve(), order.name, 0.2 if order.quick else 1)
    verdicts = judge(BARS, comparisons)
    if order.name:
        verdicts = [one for one in verdicts if one.ratio is not None]
    result = document(comparisons, verdicts)
    (order.build / "benchmarks.json").write_text(json.dumps(result, indent=1) + "\n")
    if not order.name and not order.check:
        page.write(HERE.parent / "docs", comparisons, verdicts)
    short = [one for one in verdicts if not one.is_met]
    for one in short:
        print(falls_short(one), file=sys.stderr)
    print(f"{len(verdicts) - len(short)} of {len(verdicts)} bars are met", file=sys.stderr)
    return 1 if order.check and short else 0


if __name__ == "__main__":
    sys.exit(main())
