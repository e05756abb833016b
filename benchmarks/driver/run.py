"""Measures the project, the floors and the rivals side by side and writes the figures down."""

import argparse
import datetime
import json
import pathlib
import shlex
import shutil
import subprocess
import sys
import time

import contenders
import machine
import report
import trees
from results import Results
from rows import ROWS

HOME = pathlib.Path(__file__).resolve().parents[2]
BUILD = HOME / "build" / "bench"
PROGRAMS = BUILD / "benchmarks"
TREES = HOME / "build" / "bench-trees"
TRIAL_REPORT = HOME / "build" / "bench-report"
RIVAL_PROGRAMS = {"find": "find", "fdfind": "fd", "zsh": "zsh", "/usr/bin/python3": "python importlib",
                  "watchman": "watchman"}


def list_of(choices):
    def parse(text):
        chosen = text.split(",")
        for name in chosen:
            if name not in choices:
                raise argparse.ArgumentTypeError(f"{name!r} is none of {', '.join(choices)}")
        return [name for name in choices if name in chosen]
    return parse


def parse_arguments():
    row_ids = (*dict.fromkeys(row.id for row in ROWS), *contenders.ManagerOperations.rows)
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


def measure_in_turn(kinds, made, wanted, arguments, results):
    """All rounds of everybody of these kinds; returns how many answers were checked."""
    measurers = []
    try:
        for tree in made:
            measurers += [(tree.size, kind(tree, PROGRAMS, arguments.rows)) for kind in kinds]
        for round_number in range(1, arguments.rounds + 1):
            print(f"round {round_number} of {arguments.rounds}", file=sys.stderr)
            for size, measurer in measurers:
                for row, contender, value in measurer.measure(round_number):
                    if row in wanted:
                        results.add(size, round_number, row, contender, value)
    finally:
        for _, measurer in measurers:
            measurer.close()
    return sum(getattr(measurer, "answers", 0) for _, measurer in measurers)


def measure(arguments, made):
    """All rounds of all trees; returns the results and how many answers were checked."""
    results = Results()
    wanted = {row.id for row in ROWS if row.id in arguments.rows}
    wanted |= {row.floor[0] for row in ROWS if row.id in wanted and row.floor}
    kinds = [kind for kind in contenders.MEASURERS
             if set(kind.rows) & wanted and getattr(kind, "is_here", lambda: True)()]
    answers = 0
    for disturbs in (False, True):
        answers += measure_in_turn([kind for kind in kinds if getattr(kind, "disturbs", False) == disturbs], made,
                                   wanted, arguments, results)
    return results, answers


def measure_manager(arguments):
    """All rounds of the manager's operations, by the number of folders."""
    results = Results()
    if set(contenders.ManagerOperations.rows) & set(arguments.rows):
        operations = contenders.ManagerOperations(PROGRAMS)
        for round_number in range(1, arguments.rounds + 1):
            for folders, operation, value in operations.measure():
                results.add(folders, round_number, "m1", operation, value)
    return results


def main():
    arguments = parse_arguments()
    subprocess.run([HOME / "scripts" / "build-preset", "bench"], check=True, stdout=sys.stderr)
    made = [trees.make(size, TREES, HOME / "tools" / "gen_tree.py") for size in arguments.sizes]
    time.sleep(trees.SETTLING)  # an earlier run may have changed a folder a moment ago
    for tree in made:
        trees.write_cache_file(tree, BUILD / "apps" / "tolvexpath" / "tolvexpath")
    run = {"date": datetime.date.today().isoformat(), "rounds": arguments.rounds,
           "command": shlex.join(["scripts/bench", *sys.argv[1:]]), "machine": machine.describe(BUILD, TREES),
           "absent": [name for program, name in RIVAL_PROGRAMS.items() if not shutil.which(program)],
           "load before": machine.load_average()}
    results, run["answers"] = measure(arguments, made)
    of_manager = measure_manager(arguments)
    run["load after"] = machine.load_average()
    TRIAL_REPORT.mkdir(exist_ok=True)
    everything = {"run": run, "measurements": results.records(),
                  "manager": of_manager.records()}
    (TRIAL_REPORT / "measurements.json").write_text(json.dumps(everything, indent=1))
    print(report.write(results, of_manager, made, run, arguments.out))


if __name__ == "__main__":
    main()
