"""Measures the project, the floors and the rivals side by side and writes the figures down."""

import argparse
import datetime
import json
import pathlib
import shlex
import shutil
import subprocess
import sys

import contenders
import machine
import report
import trees
from results import Results
from rows import ROWS

HOME = pathlib.Path(__file__).resolve().parents[2]
BUILD = HOME / "build" / "bench"
TREES = HOME / "build" / "bench-trees"
TRIAL_REPORT = HOME / "build" / "bench-report"
RIVAL_PROGRAMS = {"find": "find", "fdfind": "fd", "zsh": "zsh", "/usr/bin/python3": "python importlib"}


def list_of(choices):
    def parse(text):
        chosen = text.split(",")
        for name in chosen:
            if name not in choices:
                raise argparse.ArgumentTypeError(f"{name!r} is none of {', '.join(choices)}")
        return [name for name in choices if name in chosen]
    return parse


def parse_arguments():
    row_ids = tuple(dict.fromkeys(row.id for row in ROWS))
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__, epilog=(
        "A run of all rows and sizes goes to docs/performance.md, any other to build/bench-report/performance.md."))
    parser.add_argument("--rounds", type=int, help="how often everybody is measured (5)")
    parser.add_argument("--rows", type=list_of(row_ids), default=list(row_ids), help="rows to measure, such as a1,b1")
    parser.add_argument("--sizes", type=list_of(trees.SIZES), help="trees to measure: small, medium, large")
    parser.add_argument("--quick", action="store_true", help="the small tree, two rounds: only to see that it runs")
    parser.add_argument("--out", type=pathlib.Path, help="the folder that gets performance.md and the plots")
    arguments = parser.parse_args()
    arguments.sizes = arguments.sizes or (["small"] if arguments.quick else list(trees.SIZES))
    arguments.rounds = arguments.rounds or (2 if arguments.quick else 5)
    if arguments.rounds < 1:
        parser.error("--rounds: at least 1")
    is_whole = arguments.sizes == list(trees.SIZES) and arguments.rows == list(row_ids) and arguments.rounds >= 5
    arguments.out = arguments.out or (HOME / "docs" if is_whole else TRIAL_REPORT)
    return arguments


def measure(arguments, made):
    """All rounds of all trees; returns the results and how many answers were checked."""
    measurers = []
    results = Results()
    wanted = {row.id for row in ROWS if row.id in arguments.rows}
    wanted |= {row.floor[0] for row in ROWS if row.id in wanted and row.floor}
    try:
        for tree in made:
            measurers += [(tree.size, kind(tree, BUILD / "benchmarks", arguments.rows))
                          for kind in contenders.MEASURERS if set(kind.rows) & wanted]
        for round_number in range(1, arguments.rounds + 1):
            print(f"round {round_number} of {arguments.rounds}", file=sys.stderr)
            for size, measurer in measurers:
                for row, contender, value in measurer.measure(round_number):
                    if row in wanted:
                        results.add(size, round_number, row, contender, value)
    finally:
        for _, measurer in measurers:
            measurer.close()
    return results, sum(getattr(measurer, "answers", 0) for _, measurer in measurers)


def main():
    arguments = parse_arguments()
    subprocess.run([HOME / "scripts" / "build-preset", "bench"], check=True, stdout=sys.stderr)
    made = [trees.make(size, TREES, HOME / "tools" / "gen_tree.py") for size in arguments.sizes]
    for tree in made:
        trees.write_cache_file(tree, BUILD / "apps" / "tolvexpath" / "tolvexpath")
    run = {"date": datetime.date.today().isoformat(), "rounds": arguments.rounds,
           "command": shlex.join(["scripts/bench", *sys.argv[1:]]), "machine": machine.describe(BUILD, TREES),
           "absent": [name for program, name in RIVAL_PROGRAMS.items() if not shutil.which(program)],
           "load before": machine.load_average()}
    results, run["answers"] = measure(arguments, made)
    run["load after"] = machine.load_average()
    TRIAL_REPORT.mkdir(exist_ok=True)
    everything = {"run": run, "measurements": results.records()}
    (TRIAL_REPORT / "measurements.json").write_text(json.dumps(everything, indent=1))
    print(report.write(results, made, run, arguments.out))


if __name__ == "__main__":
    main()
