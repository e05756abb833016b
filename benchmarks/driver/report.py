"""Writes the figures of a run into performance.md, between two marks, and the plots beside it."""

import math

import plots
from rows import MANAGER_FOLDERS, MANAGER_OPERATIONS, MANAGER_PLOT, PLOTS, ROWS

START, END = "<!-- figures -->", "<!-- end of figures -->"


def rounded(value):
    """Three significant digits."""
    if value == 0:
        return "0"
    digits = max(0, 2 - math.floor(math.log10(abs(value))))
    return f"{value:,.{digits}f}"


def times(spread):
    return f"{rounded(spread.median)} ({rounded(spread.least)} .. {rounded(spread.most)})" if spread else "-"


def verdict(row, value):
    if row.goal is None:
        return "-"
    if row.stretch is not None and value <= row.stretch:
        return "stretch"
    return "goal" if value <= row.goal else "**missed**"


def limit(row, value):
    if value is None:
        return "-"
    return f"{value:g}" if row.floor else f"{value:g} {row.unit}"


def absolute(results, size, key, unit):
    spread = results.absolute(size, *key) if key else None
    return f"{rounded(spread.median)} {unit}" if spread else "-"


def ratios_of(contenders, results, size, row):
    """(median ratio, contender) of those who were there, best first."""
    ratios = [(results.ratio(size, row.id, contender, row.floor), contender) for contender in contenders]
    return sorted((ratio.median, contender) for ratio, contender in ratios if ratio)


def table_line(results, size, row):
    floor_size, own_size = row.growth or (size, size)
    own = results.absolute(size, row.id, row.contender) if own_size == size else None
    ratio = results.ratio(size, row.id, row.contender, row.floor, floor_size)
    if own is None or (row.floor and ratio is None):
        return None
    best = ratios_of(row.rivals, results, size, row)[:1]
    cells = [row.id, row.operation, absolute(results, floor_size, row.floor, row.unit),
             f"{rounded(own.median)} {row.unit}", times(ratio), limit(row, row.goal), limit(row, row.stretch),
             f"{best[0][1]} {rounded(best[0][0])}" if best else "-",
             verdict(row, ratio.median if ratio else own.median)]
    return "| " + " | ".join(cells) + " |"


def table(results, size):
    yield "| row | operation | floor | project | ratio (least .. most) | goal | stretch | best rival | verdict |"
    yield "|---|---|---|---|---|---|---|---|---|"
    yield from filter(None, (table_line(results, size, row) for row in ROWS))


def rivals_table(results, size):
    yield "| row | rival | absolute | ratio to the floor | project's ratio |"
    yield "|---|---|---|---|---|"
    for row in ROWS:
        own = results.ratio(size, row.id, row.contender, row.floor)
        if own is None or row.contender == "manager":  # the path's line has the same rivals
            continue
        for _, rival in ratios_of(row.rivals + row.beside, results, size, row):
            yield (f"| {row.id} | {rival} | {absolute(results, size, (row.id, rival), row.unit)} | "
                   f"{times(results.ratio(size, row.id, rival, row.floor))} | {rounded(own.median)} |")


def sizes_table(results, sizes):
    yield "| row | operation | " + " | ".join(sizes) + " |"
    yield "|---|---|" + "---|" * len(sizes)
    for row in ROWS:
        if row.growth:
            continue
        cells = []
        for size in sizes:
            ratio = results.ratio(size, row.id, row.contender, row.floor)
            value = absolute(results, size, (row.id, row.contender), row.unit)
            cells.append(f"{value}, {rounded(ratio.median)}" if ratio else value)
        if any(cell != "-" for cell in cells):
            yield f"| {row.id} | {row.operation} | " + " | ".join(cells) + " |"


def manager_table(results):
    """How the manager's operations grow; the last column compares the longest path with the one before it."""
    shorter, longest = MANAGER_FOLDERS[-2:]
    yield "| operation | " + " | ".join(f"{folders:,} folders" for folders in MANAGER_FOLDERS) + " | growth |"
    yield "|---|" + "---|" * (len(MANAGER_FOLDERS) + 1)
    for line in MANAGER_OPERATIONS:
        cells = [absolute(results, folders, ("m1", line.benchmark), "µs") for folders in MANAGER_FOLDERS]
        growth = results.ratio(longest, "m1", line.benchmark, ("m1", line.benchmark), shorter)
        yield f"| {line.operation} | " + " | ".join(cells) + f" | {times(growth)} |"


def draw_plot(results, plot, across_by_size, folder):
    """True when it was drawn; a plot needs two sizes."""
    curves = []
    for series in plot.series:
        points = [(across, results.absolute(size, series.row, series.contender))
                  for size, across in across_by_size.items()]
        points = [(across, spread.median) for across, spread in points if spread]
        if len(points) > 1:
            curves.append((series, points))
    if curves:
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{plot.name}.svg").write_text(plots.draw(plot, curves), encoding="utf-8")
    return bool(curves)


def figures(results, of_manager, trees, run, drawn):
    """The generated part, line by line."""
    sizes = [tree.size for tree in trees]
    largest = trees[-1]
    facts = largest.facts
    yield f"Measured on {run['date']} by `{run['command']}`: {run['rounds']} rounds, everybody once a round, in turn."
    if run["answers"]:
        yield f"{run['answers']:,} questions were answered in the same run, and every answer was right."
    yield ""
    yield from (f"- {what}: {value}" for what, value in run["machine"])
    yield f"- load average: {run['load before']} before, {run['load after']} after"
    yield ""
    yield (f"### {largest.size}: {facts['main_folders']:,} main folders, {facts['folders']:,} folders, "
           f"{facts['files']:,} files")
    yield ""
    yield from table(results, largest.size)
    yield ""
    yield "### Rivals"
    yield ""
    yield from rivals_table(results, largest.size)
    if run["absent"]:
        yield ""
        yield f"Not on this machine, hence left out: {', '.join(run['absent'])}."
    if len(sizes) > 1:
        yield ""
        yield "### Against the size of the tree"
        yield ""
        yield "The project's time or memory, and its ratio to the floor."
        yield ""
        yield from sizes_table(results, sizes)
    if of_manager.sizes():
        yield ""
        yield "### A manager's operations against the length of the path"
        yield ""
        yield ("Folders of five files each, in memory and watched; the medians, and how many times as long the longest "
               "path takes as the one before it.")
        yield ""
        yield from manager_table(of_manager)
    for plot in drawn:
        yield ""
        yield f"![{plot.title}](performance/{plot.name}.svg)"


def write(results, of_manager, trees, run, folder):
    """Replaces what stands between the marks of performance.md in `folder`, or writes a page of nothing else."""
    files_by_size = {tree.size: tree.facts["files"] for tree in trees}
    drawn = [plot for plot in PLOTS if draw_plot(results, plot, files_by_size, folder / "performance")]
    lengths = {length: length for length in MANAGER_FOLDERS}
    drawn += [MANAGER_PLOT] if draw_plot(of_manager, MANAGER_PLOT, lengths, folder / "performance") else []
    page = folder / "performance.md"
    folder.mkdir(parents=True, exist_ok=True)
    old = page.read_text(encoding="utf-8") if page.exists() else f"# Figures\n\n{START}\n{END}\n"
    before, found, rest = old.partition(START)
    _, ended, after = rest.partition(END)
    if not found or not ended:
        raise RuntimeError(f"{page} has no place for figures: {START} ... {END}")
    generated = "\n".join(figures(results, of_manager, trees, run, drawn))
    page.write_text(f"{before}{START}\n\n{generated}\n\n{END}{after}", encoding="utf-8")
    return page
