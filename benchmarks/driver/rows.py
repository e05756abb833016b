"""What is measured: the rows of the table and the lines of the plots. A new row is a line here and a contender that
reports it."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Row:
    """One line of the table. `floor` is (row, contender) of what it is divided by; None where the goal is absolute.
    Without a goal it is there to be known. `growth` is a pair of sizes: the figure of the second is divided by the
    floor of the first."""

    id: str
    contender: str
    operation: str
    unit: str
    floor: tuple | None
    goal: float | None = None
    stretch: float | None = None
    rivals: tuple = ()
    beside: tuple = ()  # shown with the rivals, but none of them
    growth: tuple | None = None


SCAN_RIVALS_1 = ("find", "fd -j1", "python importlib", "zsh rehash")
SCAN_RIVALS_2 = ("fd -j2",)
LOOKUP_RIVALS = ("tbb accessor", "tbb equal_range")
CHANGE_RIVALS = ("watchman", "python importlib")
CACHE_RIVALS = ("libxml2 SAX",)
LEANEST = ("leanest table",)
WALK = ("a1", "walk")
READ = ("c2", "read")


def lookup_rows(row, operation, goal, stretch):
    """The same question to the path itself and to the manager's, which has the working folder in front."""
    return tuple(Row(row, contender, words, "ns", (row, "flat map"), goal, stretch, LOOKUP_RIVALS, LEANEST)
                 for contender, words in (("path", operation), ("manager", "the same through the manager")))


ROWS = (
    Row("a1", "project", "a new process scans until its path answers, 1 thread", "ms", WALK, 2.0, 1.6, SCAN_RIVALS_1),
    Row("a1", "manager", "the same through the manager", "ms", WALK, 2.0, 1.6),
    Row("a2", "project", "the same, 2 threads", "ms", WALK, 1.2, 0.9, SCAN_RIVALS_2),
    Row("a2", "manager", "the same, 2 threads, through the manager", "ms", WALK, 1.2, 0.9),
    *lookup_rows("b1", "100,000 shuffled hits", 2.5, 1.7),
    *lookup_rows("b2", "100,000 absent names", 1.7, 1.2),
    *lookup_rows("b3", "16 hot names, 1 thread", 3.0, 1.5),
    *lookup_rows("b4", "16 hot names, 2 threads", 3.0, 1.6),
    Row("c1", "project", "every record of a path cache file delivered", "ms", ("c1", "pugixml"), 0.6, 0.45,
        CACHE_RIVALS),
    Row("c2", "1 thread", "a new process starts from the cache file until its path answers, 1 thread", "ms", READ, 10.0,
        6.0),
    Row("c2", "2 threads", "the same, 2 threads", "ms", READ, 10.0, 6.0),
    Row("c2", "first look", "after it, the first look at every folder, beside d2", "ms", ("d2", "statx")),
    Row("c3", "1 thread", "the start from the cache file, 1 thread, beside a1", "ms", ("a1", "project"), 0.5, 0.35),
    Row("d1", "project", "a refresh that finds nothing changed, every folder watched", "ms", ("d1", "flags"), 0.02, 0.003),
    Row("d2", "project", "a refresh that finds nothing changed, by looking at every folder", "ms", ("d2", "statx"), 0.6,
        0.3),
    Row("e1", "added", "a file added to one folder, until the manager's path answers right", "ms", ("e1", "events"), 25,
        6, CHANGE_RIVALS),
    Row("e1", "removed", "the same, the file removed", "ms", ("e1", "events, removed"), 25, 6),
    Row("e2", "added", "growth of e1, added, from the medium tree to the large one", "ms", ("e2", "added"), 4, 2,
        growth=("medium", "large")),
    Row("f1", "built", "resident bytes a file, once the path answers", "B", ("f1", "names"), 4.0, 2.8),
    Row("f1", "handed out", "the same after every item was handed out", "B", ("f1", "names"), 10.0),
    Row("g1", "project", "caller's time to release the last handle of the path", "ms", ("g1", "plain"), 0.01, 0.001),
    Row("x1", "project", "a path made from the one before, one main entry replaced", "ms", None, 1.0),
)


@dataclasses.dataclass(frozen=True)
class Series:
    """One line of a plot; `kind` is project, floor, rival or operation."""

    row: str
    contender: str
    label: str
    kind: str


@dataclasses.dataclass(frozen=True)
class Plot:
    name: str
    title: str
    unit: str
    series: tuple
    across: str = "files"


PLOTS = (
    Plot("scan", "From nothing to an answering path", "ms", (
        Series("a1", "project", "project, 1 thread", "project"),
        Series("a2", "project", "project, 2 threads", "project"),
        Series("c2", "1 thread", "project, cache file, 1 thread", "project"),
        Series("a1", "walk", "floor: getdents64 walk", "floor"),
        Series("c2", "read", "floor: read() of the cache file", "floor"),
        Series("a1", "find", "find", "rival"),
        Series("a1", "fd -j1", "fd -j1", "rival"),
        Series("a2", "fd -j2", "fd -j2", "rival"),
        Series("a1", "python importlib", "python importlib", "rival"),
        Series("a1", "zsh rehash", "zsh rehash", "rival"))),
    Plot("look-up", "One look-up", "ns", (
        Series("b1", "path", "project: hit", "project"),
        Series("b1", "manager", "project: hit, manager", "project"),
        Series("b2", "path", "project: absent", "project"),
        Series("b1", "flat map", "floor: hit", "floor"),
        Series("b2", "flat map", "floor: absent", "floor"),
        Series("b1", "tbb accessor", "tbb accessor: hit", "rival"),
        Series("b1", "tbb equal_range", "tbb equal_range: hit", "rival"))),
    Plot("memory", "Resident memory for each file", "B", (
        Series("f1", "built", "project: path answers", "project"),
        Series("f1", "handed out", "project: items handed out", "project"),
        Series("f1", "names", "floor: names alone", "floor"))),
    Plot("change", "Changing a path and letting go of it", "ms", (
        Series("e1", "added", "project: one folder changed", "project"),
        Series("x1", "project", "project: one entry replaced", "project"),
        Series("g1", "project", "project: last handle released", "project"),
        Series("e1", "events", "floor: one folder changed", "floor"),
        Series("g1", "plain", "floor: plain model dropped", "floor"),
        Series("e1", "watchman", "watchman: one folder changed", "rival"),
        Series("e1", "python importlib", "importlib: one folder changed", "rival"))),
)


@dataclasses.dataclass(frozen=True)
class ManagerOperation:
    """One line of the table of growth; `benchmark` is its name among the single operations."""

    benchmark: str
    operation: str
    label: str


MANAGER_FOLDERS = (100, 1000, 10_000)
MANAGER_OPERATIONS = (
    ManagerOperation("SetAll", "set a path of these folders, which are read", "set all"),
    ManagerOperation("AddOne", "put one more folder in front, which is read", "add one"),
    ManagerOperation("Reverse", "reverse the path", "reverse"),
    ManagerOperation("RefreshUnchanged", "refresh, nothing changed", "refresh, 0 changed"),
    ManagerOperation("RefreshOneChanged", "refresh, 1 folder changed", "refresh, 1 changed"),
    ManagerOperation("RefreshHundredChanged", "refresh, 100 folders changed", "refresh, 100 changed"),
    ManagerOperation("EnterFolder", "another working folder, which is not on the path", "enter folder"),
)
MANAGER_PLOT = Plot("manager", "A manager's operations", "µs", tuple(
    Series("m1", operation.benchmark, operation.label, "operation") for operation in MANAGER_OPERATIONS), "folders")
