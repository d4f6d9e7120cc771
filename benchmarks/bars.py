"""The bars that `./dev bench --check` holds: ratios, because times mean nothing on another machine."""

from typing import NamedTuple


class Bar(NamedTuple):
    """In the comparison of this name, `side` takes at most `most` times as long as `reference`."""

    comparison: str
    side: str
    reference: str
    most: float

    def __str__(self):
        return f"{self.comparison}: {self.side} beside {self.reference}"


NAMES = (
    ("/dev/sdc", "/dev/sdc2", 1.0),
    ("/dev/emcpowerc", "/dev/emcpowerc2", 0.6),
    ("/dev/mapper/mpathb", "/dev/mapper/mpathbp2", 0.05),
)


def naming_bars():
    for disk, partition, beside_libfdisk in NAMES:
        for question in (f"claim {disk}", f"is {partition} a partition",
                         f"append 2 to {disk}", f"strip {partition}"):
            yield Bar(question, "ours", "plain", 1.10)
        yield Bar(f"name partition 2 of {disk}", "ours", "libfdisk", beside_libfdisk)


def runner_bars():
    for run in ("an empty run", "a run of ten lines", "a run of 1 MiB"):
        yield Bar(run, "ours", "posix_spawn", 1.10)
    for host in ("in a host of 1 GiB", "under a limit of 20000 descriptors"):
        yield Bar(f"an empty run {host}", "ours", "ours, in an ordinary host", 1.10)


def trace_bars():
    yield Bar("a line to a file", "ours", "vsnprintf and write", 1.5)
    for operation in ("an operation that traces", "claim /dev/sdc with a log"):
        yield Bar(operation, "log that wants nothing", "no log", 1.3)


def growth_bars():
    for log in ("without a log", "with a log"):
        yield Bar(f"read a table {log}", "1000", "100", 11)
    for machine in ("list so many disks", "paths of so many disks", "doctor with so many disks"):
        yield Bar(machine, "32800", "3280", 12)
    yield Bar("look 64 stale disks up with so many jobs", "8", "1", 1 / 7)


def row_bars():
    for form, most in (("raw", 4), ("table", 8), ("JSON", 6), ("JSON lines", 6)):
        yield Bar("show - for 100000 paths", form, "minimal host", most)


BARS = [
    *naming_bars(),
    *runner_bars(),
    *trace_bars(),
    *growth_bars(),
    *row_bars(),
    Bar("load the library", "ours", "empty library", 1.15),
]
