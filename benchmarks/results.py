"""What was measured, and the ratios in it."""

from statistics import median, quantiles
from typing import NamedTuple


class Ratio(NamedTuple):
    """The median of the rounds' ratios, and the ends of their middle half."""

    median: float
    low: float
    high: float


class Comparison:
    """One line of a benchmark's output: each side's nanoseconds in every round."""

    def __init__(self, program, line):
        self.program = program
        self.name = line["name"]
        self.sides = line["sides"]
        self.left = line["left"]

    def ratio(self, side, reference):
        """Of the turns of one round, which other load on the machine disturbed alike."""
        rounds = [a / b for a, b in zip(self.sides[side], self.sides[reference])]
        low, _, high = quantiles(rounds, n=4) if len(rounds) > 1 else rounds * 3
        return Ratio(median(rounds), low, high)

    def is_growth(self):
        """Whether the sides are sizes of the same work."""
        return all(side.isdecimal() for side in self.sides)

    def smallest(self):
        """The smallest size of a growth."""
        return min(self.sides, key=int)

    def pairs(self, reference=None):
        """Sides and references: the others beside `reference`, or beside the smallest size; without
        either, the first side beside each other one."""
        if self.is_growth():
            reference = self.smallest()
        if reference in self.sides:
            return [(side, reference) for side in self.sides if side != reference]
        first, *others = self.sides
        return [(first, other) for other in others]


class Verdict(NamedTuple):
    """A bar and what was measured for it; without a ratio it was not measured."""

    bar: object
    ratio: Ratio

    @property
    def is_met(self):
        return self.ratio is not None and self.ratio.median <= self.bar.most


def judge(bars, comparisons):
    """A verdict for each bar."""
    by_name = {one.name: one for one in comparisons}
    return [Verdict(bar, by_name[bar.comparison].ratio(bar.side, bar.reference)
                    if bar.comparison in by_name else None) for bar in bars]
