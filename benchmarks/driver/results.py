"""The measurements of one run."""

import dataclasses
import statistics


@dataclasses.dataclass(frozen=True)
class Spread:
    median: float
    least: float
    most: float


def spread(values):
    return Spread(statistics.median(values), min(values), max(values)) if values else None


class Results:
    def __init__(self):
        self.values = {}  # (size, row, contender) -> {round: value}

    def add(self, size, round_number, row, contender, value):
        self.values.setdefault((size, row, contender), {})[round_number] = value

    def sizes(self):
        return list(dict.fromkeys(size for size, _, _ in self.values))

    def absolute(self, size, row, contender):
        return spread(list(self.values.get((size, row, contender), {}).values()))

    def ratio(self, size, row, contender, floor, floor_size=None):
        """The spread of the ratios taken inside each round; None without a floor or a measurement."""
        below = self.values.get((floor_size or size, *floor), {}) if floor else {}
        above = self.values.get((size, row, contender), {})
        return spread([value / below[r] for r, value in above.items() if r in below])

    def records(self):
        return [{"size": size, "row": row, "contender": contender, "round": r, "value": value}
                for (size, row, contender), rounds in self.values.items() for r, value in rounds.items()]
