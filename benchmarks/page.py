"""Writes docs/performance.md: what was measured as ratios and growth, in tables and plots."""

import subprocess
from typing import NamedTuple

INTRODUCTION = """# Performance

`./dev bench` measures what the library, the stand-ins and the command cost beside what one would
take instead, and writes this page. Every number is a ratio of two times that were measured in
alternation, in one run; 1 is a draw, and less than 1 is faster. Between the brackets are the ends of
the middle half of all rounds. Nothing here is promised: times differ from machine to machine, and
ratios a little.
"""


class Section(NamedTuple):
    """Part of the page: the comparisons of some programs beside one reference, or each beside its own."""

    file: str
    title: str
    text: str
    programs: tuple
    reference: str = None


SECTIONS = (
    Section("names", "Naming", """Without a log, beside a plain implementation of the same contract
(`benchmarks/plain_names.cpp`). The name of a partition also beside libfdisk's `fdisk_partname`, which
looks for nodes when the disk is below `/dev/mapper`. A host that does not know the owner of a disk
asks the manager, which asks every driver first.""", ("names_benchmark",), "libfdisk"),
    Section("runner", "Running a program", """All sides deliver the same lines. `posix_spawn` is the
least that runs a program: no limit, no session of its own, and the host's descriptors left open. What
ours does is in [command-runner.md](command-runner.md).

The kernel may share the processor between sessions. On a machine under load, a program in a session
of its own then waits longer than one in the host's: twice as long was seen. The runs have real-time
priority, where that is allowed, so that this is not measured here.""",
            ("runner_benchmark", "runner_host_benchmark"), "posix_spawn"),
    Section("trace", "Tracing and loading", """A line to a file, beside the same line made with `vsnprintf` and
written at once by a host itself. The bare `write` of a finished line is the kernel's share.

Only the log knows which lines it wants. So each traced operation calls it for the entering and the
exiting line, and counts a reference to it. Even with a log that returns at once, `claim` takes
1.5 times as long as without one.

To load the library is `dlopen`, beside that of an empty library with the same dependencies.""",
            ("trace_benchmark", "load_benchmark")),
    Section("rows", "Rows of `show -`", """Processor time beside a minimal host that asks the library
the same questions and prints raw rows with stdio (`benchmarks/rows_host.cpp`).""",
            ("rows_benchmark",), "minimal host"),
    Section("strings", "Strings", """The bounded string functions beside functions of the same arguments
that check no pointers and are in no other library, and a row of a table cut into words beside
`strtok_r`.""", ("strings_benchmark", "vstring_benchmark")),
)

GROWTH = """Time in proportion to the work is the dashed line: ten times the devices, lines or digits
take ten times as long."""

JOBS = """`dmpclaim active` looks up 64 disks whose mappings are stale. Lookups mostly wait, so that more
jobs take less time. The dashed line is N jobs in an Nth of the time."""

LIMIT = """A program ignores SIGTERM, and so does another one that it has started. It is to be ended
after a second. Runners without a limit get one from `timeout -k 1 1`. Ours waits two seconds
between SIGTERM and SIGKILL, so that a tool can end its work."""


def gnuplot(script):
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def settings(path, height):
    return f"""set terminal svg noenhanced size 1000,{height} font "sans-serif,13" background "white"
set output "{path}"
set grid linecolor rgb "#dddddd"
"""


def block(rows):
    """Rows as gnuplot reads them, with quoted texts."""
    lines = (" ".join(f'"{cell}"' if isinstance(cell, str) else f"{cell:.5g}" for cell in row)
             for row in rows)
    return "\n".join(lines) + "\ne\n"


def plot_ratios(path, rows):
    """A point for each ratio, with its middle half, on a logarithmic axis with a line at 1."""
    common = {reference for _, _, reference, _ in rows}
    points = [(-number, ratio.median, ratio.low, ratio.high,
               f"{one.name}: {side}" + (f" / {reference}" if len(common) > 1 else ""))
              for number, (one, side, reference, ratio) in enumerate(rows)]
    least = min(0.5, *(point[2] for point in points))
    most = max(2, *(point[3] for point in points))
    gnuplot(settings(path, 120 + 22 * len(rows)) + f"""set logscale x
set xrange [{least / 1.2}:{most * 1.2}]
set xtics (0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50, 100)
set yrange [{-len(rows)}:1]
set ytics font ",11"
set arrow from 1,graph 0 to 1,graph 1 nohead linecolor rgb "#888888"
set xlabel "times as long{f" as {common.pop()}" if len(common) == 1 else ""}"
plot "-" using 2:1:3:4:ytic(5) with xerrorbars pointtype 7 pointsize 0.7 \
    linecolor rgb "#1f5fa8" notitle
""" + block(points))


def plot_growth(path, comparisons, exponent):
    """A line for each comparison, in multiples of its first side, and what is expected of them."""
    curves = [f'"-" using 1:2 with linespoints pointtype {number + 4} title "{one.name}"'
              for number, one in enumerate(comparisons)]
    data = [[(int(side) / int(one.smallest()), one.ratio(side, one.smallest()).median)
             for side in one.sides] for one in comparisons]
    gnuplot(settings(path, 480) + f"""set logscale xy
set key left {"top" if exponent > 0 else "bottom"}
set xlabel "times as much"
set ylabel "times as long"
plot x**{exponent} linecolor rgb "#888888" dashtype 2 title "in proportion", {", ".join(curves)}
""" + "".join(block(rows) for rows in data))


def table(heads, rows):
    lines = [heads, ["---"] * len(heads), *rows]
    return "".join(f"| {' | '.join(row)} |\n" for row in lines)


def text_of(ratio):
    return f"{ratio.median:.2f} ({ratio.low:.2f} to {ratio.high:.2f})"


def ratio_section(section, comparisons, folder):
    rows = [(one, side, reference, one.ratio(side, reference)) for one in comparisons
            if one.program in section.programs and not one.is_growth()
            for side, reference in one.pairs(section.reference)]
    plot_ratios(folder / f"{section.file}.svg", rows)
    return (f"\n## {section.title}\n\n{section.text}\n\n![{section.title}](performance/"
            f"{section.file}.svg)\n\n" +
            table(["what", "who", "beside", "ratio"],
                  [[one.name, side, reference, text_of(ratio)]
                   for one, side, reference, ratio in rows]))


def growth_section(file, title, text, comparisons, exponent, folder):
    plot_growth(folder / f"{file}.svg", comparisons, exponent)
    rows = [[one.name, side, first, text_of(one.ratio(side, first))]
            for one in comparisons for side, first in one.pairs()]
    return (f"\n## {title}\n\n{text}\n\n![{title}](performance/{file}.svg)\n\n" +
            table(["what", "size", "beside", "ratio"], rows))


def limit_section(comparisons):
    rows = [[side, f"{nanoseconds[0] / 1e9:.1f}", str(one.left[side])]
            for one in comparisons if one.left for side, nanoseconds in one.sides.items()]
    return (f"\n## At the limit\n\n{LIMIT}\n\n" +
            table(["runner", "seconds", "processes left running"], rows))


def bars_section(verdicts):
    rows = [[str(one.bar), f"{one.bar.most:.2f}", f"{one.ratio.median:.2f}",
             "yes" if one.is_met else "**no**"] for one in verdicts if one.ratio]
    return ("\n## Bars\n\n`./dev bench --check` measures again, says which bar falls short, and ends "
            "with 1 when one does.\n\n" + table(["bar", "at most", "measured", "met"], rows))


def write(docs, comparisons, verdicts):
    """Writes performance.md, and the plots into the folder beside it."""
    folder = docs / "performance"
    folder.mkdir(exist_ok=True)
    growing = [one for one in comparisons if one.is_growth()]
    jobs = [one for one in growing if one.program == "jobs_benchmark"]
    sizes = [one for one in growing if one.program != "jobs_benchmark"]
    ratios = {section.file: ratio_section(section, comparisons, folder) for section in SECTIONS}
    ratios["runner"] += limit_section(comparisons)
    (docs / "performance.md").write_text(
        INTRODUCTION + bars_section(verdicts) + "".join(ratios.values()) +
        growth_section("growth", "Growth", GROWTH, sizes, 1, folder) +
        growth_section("jobs", "Jobs", JOBS, jobs, -1, folder))
