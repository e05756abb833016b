"""Small SVG plots with logarithmic axes, on a plain light panel, so that they read the same on any page."""

import math
from xml.sax.saxutils import escape

WIDTH, HEIGHT = 760, 420
LEFT, RIGHT, TOP, BOTTOM = 70, 540, 50, 370
LABEL_GAP = 16
COLOURS = {"project": ("#0b6e4f", "#1f9d76", "#74b72e"),
           "floor": ("#333333", "#777777"),
           "rival": ("#b5442c", "#c77d1e", "#8a4fa3", "#3f6fb5", "#a8324f"),
           "operation": ("#0b6e4f", "#74b72e", "#333333", "#b5442c", "#c77d1e", "#8a4fa3", "#3f6fb5")}
STROKES = {"project": 'stroke-width="3"',
           "floor": 'stroke-width="2" stroke-dasharray="6 4"',
           "rival": 'stroke-width="1.5"',
           "operation": 'stroke-width="2"'}


class LogScale:
    def __init__(self, values, start, end):
        self.low, self.high = math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)))
        self.high = max(self.high, self.low + 1)
        self.start, self.end = start, end

    def __call__(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.start + share * (self.end - self.start)

    def decades(self):
        return [10.0**n for n in range(self.low, self.high + 1)]


def number(value):
    return f"{value:,.0f}" if value >= 1 else f"{value:.6f}".rstrip("0")


def text(x, y, words, extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" {extra}>{escape(words)}</text>'


def line(x1, y1, x2, y2):
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="#d5d8dc"/>'


def axes(plot, xs, ys):
    yield text(LEFT, 28, f"{plot.title} ({plot.unit})", 'font-size="16" font-weight="bold"')
    for value in xs.decades():
        yield line(xs(value), TOP, xs(value), BOTTOM)
        yield text(xs(value), BOTTOM + 18, number(value), 'text-anchor="middle"')
    yield text((LEFT + RIGHT) / 2, BOTTOM + 38, plot.across, 'text-anchor="middle"')
    for value in ys.decades():
        yield line(LEFT, ys(value), RIGHT, ys(value))
        yield text(LEFT - 8, ys(value) + 4, number(value), 'text-anchor="end"')


def spread_labels(wanted):
    """Moves labels apart that would lie on each other, each as little as its neighbours allow; keeps their order."""
    order = sorted(range(len(wanted)), key=lambda index: wanted[index])
    places = list(wanted)
    for _ in range(200):
        for upper, lower in zip(order, order[1:]):
            push = max(0.0, LABEL_GAP - (places[lower] - places[upper])) / 2
            places[upper] -= push
            places[lower] += push
    return places


def draw(plot, curves):
    """The SVG text of a plot; `curves` are (series, [(files, value)]) with at least one point each."""
    xs = LogScale([x for _, points in curves for x, _ in points], LEFT, RIGHT)
    ys = LogScale([y for _, points in curves for _, y in points], BOTTOM, TOP)
    labels = spread_labels([ys(points[-1][1]) for _, points in curves])
    used = dict.fromkeys(COLOURS, 0)
    parts = list(axes(plot, xs, ys))
    for (series, points), label in zip(curves, labels):
        colour = COLOURS[series.kind][used[series.kind] % len(COLOURS[series.kind])]
        used[series.kind] += 1
        where = " ".join(f"{xs(x):.1f},{ys(y):.1f}" for x, y in points)
        parts.append(f'<polyline points="{where}" fill="none" stroke="{colour}" {STROKES[series.kind]}/>')
        parts += [f'<circle cx="{xs(x):.1f}" cy="{ys(y):.1f}" r="3" fill="{colour}"/>' for x, y in points]
        parts.append(f'<line x1="{xs(points[-1][0]) + 6:.1f}" y1="{ys(points[-1][1]):.1f}" x2="{RIGHT + 22}" '
                     f'y2="{label:.1f}" stroke="{colour}" stroke-width="0.7"/>')
        parts.append(text(RIGHT + 26, label + 4, series.label, f'fill="{colour}"'))
    body = "\n".join(parts)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" height="{HEIGHT}" '
            f'font-family="sans-serif" font-size="12" fill="#222222">\n'
            f'<rect width="{WIDTH}" height="{HEIGHT}" rx="6" fill="#f4f5f6"/>\n{body}\n</svg>\n')
