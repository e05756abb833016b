"""A worker that starts with a path cache file answers as one that has listed every folder, and both notice what changes
after the file was written. On generated trees; TOLVEXPATH_SEED names one."""

import io
import itertools
import os
import random
import subprocess
import sys
import time
import unittest

from path_model import CODE_EXTENSIONS, NATIVE, MAIN, Entry, Path
from program import FOUND, FolderTest, Running, environment, run

FIRST = int(os.environ.get("TOLVEXPATH_SEED", random.randrange(10**6)))
SEEDS = [FIRST + number for number in range(1 if "TOLVEXPATH_SEED" in os.environ else 5)]


class Worker:
    """A shell that is asked for names."""

    def __init__(self, test, tree, *first_lines):
        self.program = Running("shell", cwd=tree, env=environment(TOLVEX_ROOT=tree))
        test.addCleanup(self.program.__exit__)
        self.written = io.BufferedReader(self.program.process.stdout)
        test.addCleanup(self.written.detach)
        self.do("policy current none", *first_lines)

    def do(self, *lines):
        """What each of the lines writes. All of them, and what is told of them, have to fit into a pipe."""
        end = b"HiddenCanonicalizepath('/end')\n"
        self.program.process.stdin.write(b"".join(line.encode() + b"\n" + end for line in lines))
        read = iter(lambda: self.written.readline().decode().rstrip("\n"), "")
        return [list(itertools.takewhile(lambda line: line != "/end", read)) for _ in lines]

    def find(self, names):
        """The files that answer to each name, winners first."""
        return dict(zip(names, self.do(*(f'find --all "{name}"' for name in names))))

    def count_sources(self):
        """How many of the path's main folders come from where."""
        kinds = [line.split()[:2] for line in self.do("FeatureDumpMainSearchPath()")[0] if line.startswith("  main ")]
        return {source: kinds.count(["main", source]) for source in ("cache", "disk")}


class Tree:
    """A generated tree, and what happens to it."""

    def __init__(self, out, seed):
        subprocess.run([sys.executable, os.environ["GEN_TREE"], "--out", out, "--preset", "tiny", "--seed", str(seed),
                        "--queries", "10"],
                       check=True, stdout=subprocess.DEVNULL)
        self.root, self.chance, self.touched = out + "/tree", random.Random(seed), set()
        with open(out + "/path.txt", encoding="utf-8") as lines:
            self.folders = [line.rstrip("\n") for line in lines]
        self.new_names = (f"new{number}" for number in itertools.count())

    def is_old_enough(self):
        """Stamps that are younger than this when the file is written prove nothing."""
        newest = max(os.stat(folder).st_ctime for folder, _, _ in os.walk(self.root))
        return time.time() - newest > 2.5

    def change(self):
        """One change of one main folder or of what is special below it."""
        main = self.chance.choice(self.folders)
        folder = f"{self.root}/{main}"
        files = [name for name in sorted(os.listdir(folder)) if os.path.isfile(f"{folder}/{name}")]
        kind = self.chance.randrange(5)
        name = next(self.new_names)
        if kind == 0 and files:
            os.remove(f"{folder}/{self.chance.choice(files)}")
        elif kind == 1 and files:
            os.rename(f"{folder}/{self.chance.choice(files)}", f"{folder}/{name}.kx")
        elif kind == 2:
            os.makedirs(f"{folder}/+{name}")
            self.make(f"{folder}/+{name}/{name}.kx")
        elif kind == 3 and files:  # a name that another folder has, so that the winner may be another one
            other = self.chance.choice(self.folders)
            self.make(f"{self.root}/{other}/{os.path.splitext(self.chance.choice(files))[0]}.kxa")
            main = other
        else:
            self.make(f"{folder}/{name}.kx")
        self.touched.add(main)

    @staticmethod
    def make(name):
        with open(name, "wb"):
            pass

    def read_model(self):
        return Path([Entry(f"{self.root}/{folder}") for folder in self.folders])


class CachedStartTest(FolderTest):
    maxDiff = None

    def find_in_model(self, path, names):
        question = {"extensions": CODE_EXTENSIONS, "policy": NATIVE, "scope": [MAIN], "all": True}

        def find(name):
            scope = list(range(6)) if "/" in name else [MAIN]
            return [found["file"] for found in path.find({**question, "name": name, "scope": scope})]
        return {name: find(name) for name in names}

    def names_of(self, path):
        names = {stem for entry in path.entries if entry.kind == MAIN for stem, extension in entry.files
                 if extension in CODE_EXTENSIONS}
        special = {f"{entry.path.rsplit('/', 1)[1]}/{entry.files[0][0]}" for entry in path.entries
                   if entry.kind != MAIN and entry.files}
        return sorted(names) + sorted(special)

    def assert_agree(self, tree, workers, more_names, seed):
        """All that there are, and those that were there before."""
        path = tree.read_model()
        names = self.names_of(path) + more_names
        expected = self.find_in_model(path, names)
        for worker in workers:
            self.assertEqual(expected, worker.find(names), f"seed {seed}")
        return names

    def start_workers(self, tree, cache):
        set_path = "set " + " ".join(f"'{folder}'" for folder in tree.folders)
        return (Worker(self, tree.root, set_path, "refresh"),
                Worker(self, tree.root, f"FeatureCachePath('load', '{cache}')", set_path, "refresh"))

    def write_cache(self, tree, cache):
        written = run("cache", "write", ".", *(f"-p{folder}" for folder in tree.folders), "-o", cache, cwd=tree.root)
        self.assertEqual(FOUND, written.code, written.err)

    def test_a_cached_start_answers_as_a_listing(self):
        trees = [(seed, Tree(os.fsdecode(self.path(f"tree{seed}")), seed)) for seed in SEEDS]
        caches = {seed: os.fsdecode(self.path(f"cache{seed}.xml")) for seed in SEEDS}
        for seed, tree in trees:
            while not tree.is_old_enough():
                tree.read_model()
            self.write_cache(tree, caches[seed])
        for seed, tree in trees:
            self.check_tree(tree, caches[seed], seed)

    def check_tree(self, tree, cache, seed):
        count = len(tree.folders)
        listing, cached = self.start_workers(tree, cache)
        names = self.assert_agree(tree, (listing, cached), ["absent"], seed)
        self.assertEqual([{"cache": 0, "disk": count}, {"cache": count, "disk": 0}],
                         [worker.count_sources() for worker in (listing, cached)], f"seed {seed}")
        # While they run, and then also for those that start afterwards with the old file.
        for _ in range(3):
            for _ in range(4):
                tree.change()
            for worker in (listing, cached):
                worker.do("refresh")
            names = self.assert_agree(tree, (listing, cached), random.Random(seed).sample(names, 50), seed)
            later, started = self.start_workers(tree, cache)
            self.assert_agree(tree, (later, started), [], seed)
            for worker in (cached, started):
                self.assertEqual({"cache": count - len(tree.touched), "disk": len(tree.touched)}, worker.count_sources(),
                                 f"seed {seed}")


if __name__ == "__main__":
    unittest.main()
