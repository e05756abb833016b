"""Everybody who is measured. A measurer belongs to one tree; each round it yields (row, contender, value)."""

import dataclasses
import json
import os
import pathlib
import shutil
import subprocess
import time

import trees

HERE = pathlib.Path(__file__).resolve().parent
MILLISECONDS = 1000.0
ZSH_REHASH = 'path=("${(@f)$(<$1)}"); rehash; print ready $#commands'


def read_records(lines):
    return [(r["row"], r["contender"], r["value"]) for r in map(json.loads, lines)]


@dataclasses.dataclass(frozen=True)
class Program:
    """A fresh process. What counts is the time from its start to its line "ready", or to its end where it has none."""

    row: str
    contender: str
    command: tuple
    says_ready: bool = True
    working_folder: pathlib.Path | None = None

    def measure(self):
        start = time.perf_counter()
        output = subprocess.PIPE if self.says_ready else subprocess.DEVNULL
        with subprocess.Popen(self.command, stdout=output, text=True, cwd=self.working_folder) as process:
            said = process.stdout.readline() if self.says_ready else "ready"
            if not self.says_ready:
                process.wait()
            taken = time.perf_counter() - start
            more = process.stdout.read().splitlines() if self.says_ready else []
        if process.returncode != 0 or not said.startswith("ready"):
            raise RuntimeError(f"{self.contender} failed: {' '.join(map(str, self.command))[:200]}")
        return [(self.row, self.contender, taken * MILLISECONDS), *read_records(more)]


class Starts:
    """Rows a, what the scanned path weighs and costs to release, and the start from a cache file."""

    rows = ("a1", "a2", "c2", "c3", "f1", "g1")

    def __init__(self, tree, programs, rows):
        self.tree = tree
        from_cache = ("--cache", tree.cache_file, "--root", tree.root)
        built = [Program("a1", "walk", (programs / "scan_floor", tree.path_file)),
                 Program("a1", "project", self.start_command(programs, 1)),
                 Program("a2", "project", self.start_command(programs, 2)),
                 *(Program(f"a{n}", "manager", self.start_command(programs, n, "--manager"),
                           working_folder=tree.spare_folder) for n in (1, 2)),
                 Program("c2", "read", (programs / "read_floor", tree.cache_file)),
                 Program("c2", "1 thread", self.start_command(programs, 1, *from_cache)),
                 Program("c2", "2 threads", self.start_command(programs, 2, *from_cache))]
        # a1 always: its walk is the floor of a2, its project that of c3, and its process reports f1 and g1.
        wanted = {"a1", *rows} | ({"c2"} if "c3" in rows else set())
        self.programs = [program for program in built if program.row in wanted]
        self.programs += [rival for rival in self.rivals() if rival.row in rows]
        for program in built:
            if program.contender in ("walk", "read"):
                program.measure()  # so that the folders and the file are in memory

    def start_command(self, programs, threads, *options):
        known = [*self.tree.questions("front", 10), *self.tree.questions("back", 10), *self.tree.questions("hits", 10)]
        return (programs / "scan_project", "--threads", str(threads), *options, "--", self.tree.path_file,
                *(text for question in known for text in question))

    def rivals(self):
        root, path_file = str(self.tree.root), str(self.tree.all_folders_file)
        everybody = [
            Program("a1", "find", ("find", root, "-type", "f"), says_ready=False),
            *(Program(f"a{n}", f"fd -j{n}", ("fdfind", "--unrestricted", "--type", "f", "--threads", str(n), ".", root),
                      says_ready=False) for n in (1, 2)),
            Program("a1", "python importlib", ("/usr/bin/python3", "-I", HERE / "importlib_rival.py", path_file)),
            Program("a1", "zsh rehash", ("zsh", "-f", "-c", ZSH_REHASH, "zsh", path_file))]
        return [rival for rival in everybody if shutil.which(rival.command[0])]

    def measure(self, round_number):
        turn = round_number % len(self.programs)
        for program in self.programs[turn:] + self.programs[:turn]:
            for row, contender, value in program.measure():
                yield row, contender, value
                if row == "c2" and contender == "1 thread":
                    yield "c3", contender, value  # the same start, beside another floor

    def close(self):
        pass


class PlainDrops:
    """The floors of f1 and g1."""

    rows = ("f1", "g1")

    def __init__(self, tree, programs, _rows):
        self.command = (programs / "plain_drop", tree.path_file)

    def measure(self, _round_number):
        done = subprocess.run(self.command, check=True, capture_output=True, text=True)
        return read_records(done.stdout.splitlines())

    def close(self):
        pass


class Rounds:
    """One process that lives through all rounds; `variables` are added to its environment."""

    def __init__(self, *command, working_folder=None, variables=None):
        self.program = pathlib.Path(command[0]).name
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        cwd=working_folder, env={**os.environ, **(variables or {})})

    def read_line(self):
        line = self.process.stdout.readline()
        if not line:
            raise RuntimeError(f"{self.program} ended early")
        return line

    def measure(self, round_number):
        print(round_number, file=self.process.stdin, flush=True)
        lines = list(iter(self.read_line, "done\n"))
        return read_records(lines)

    def close(self):
        self.process.stdin.close()
        if self.process.wait() != 0:
            raise RuntimeError(f"{self.program} failed")


class Lookups(Rounds):
    """Rows b and x."""

    rows = ("b1", "b2", "b3", "b4", "x1")

    def __init__(self, tree, programs, _rows):
        super().__init__(programs / "lookup_rounds", tree.root, tree.path_file, tree.queries, tree.spare_folder,
                         trees.SPARE_NAME)
        self.answers = json.loads(self.read_line())["answers"]


class CacheReadings(Rounds):
    """Row c1."""

    rows = ("c1",)

    def __init__(self, tree, programs, _rows):
        super().__init__(programs / "cache_rounds", tree.cache_file)


class Refreshes(Rounds):
    """Row d2: what lies below the installation folder is not watched but looked at."""

    rows = ("d2",)

    def __init__(self, tree, programs, _rows):
        super().__init__(programs / "refresh_rounds", tree.path_file, tree.all_folders_file,
                         working_folder=tree.spare_folder, variables={"TOLVEX_ROOT": str(tree.root)})


class WatchedRefreshes(Rounds):
    """Row d1."""

    rows = ("d1",)

    def __init__(self, tree, programs, _rows):
        super().__init__(programs / "refresh_rounds", "--watched", tree.path_file, tree.all_folders_file,
                         working_folder=tree.spare_folder)


class Changes(Rounds):
    """Rows e. A change of a folder would disturb those who measure that nothing has changed."""

    rows = ("e1", "e2")
    disturbs = True
    answers = 0

    def __init__(self, tree, programs, _rows):
        super().__init__(programs / "change_rounds", tree.root, tree.path_file, tree.all_folders_file, tree.queries,
                         working_folder=tree.spare_folder)

    def measure(self, round_number):
        for row, contender, value in super().measure(round_number):
            if row == "answers":
                self.answers += int(value)
                continue
            yield row, contender, value
            yield "e2", contender, value  # for the growth from tree to tree


class ImportlibChanges(Rounds):
    """A rival of e1."""

    rows = ("e1",)
    disturbs = True
    program_name, contender = "/usr/bin/python3", "importlib"

    def __init__(self, tree, _programs, _rows):
        super().__init__("/usr/bin/python3", "-I", HERE / "change_rival.py", self.contender, tree.path_file, tree.root)

    @classmethod
    def is_here(cls):
        return shutil.which(cls.program_name) is not None


class WatchmanChanges(ImportlibChanges):
    """A rival of e1."""

    program_name = contender = "watchman"


class ManagerOperations:
    """What a manager's operations cost on paths of different lengths; of no tree."""

    rows = ("m1",)

    def __init__(self, programs):
        self.command = (programs / "micro", "--benchmark_filter=^ManagerBenchmark/", "--benchmark_format=json",
                        "--benchmark_min_time=0.05")

    def measure(self):
        """(folders, operation, microseconds) of all operations."""
        done = subprocess.run(self.command, check=True, capture_output=True, text=True)
        for run in json.loads(done.stdout)["benchmarks"]:
            _, operation, folders, *_ = run["name"].split("/")
            if run.get("error_occurred") or run["time_unit"] != "us":
                raise RuntimeError(f"{run['name']}: {run.get('error_message', 'not in microseconds')}")
            yield int(folders), operation, run["real_time"]


MEASURERS = (Starts, PlainDrops, Lookups, CacheReadings, WatchedRefreshes, Refreshes, Changes, ImportlibChanges,
             WatchmanChanges)
