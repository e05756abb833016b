"""The folders that are measured: made once by tools/gen_tree.py, kept between runs."""

import dataclasses
import hashlib
import json
import pathlib
import shutil
import subprocess
import sys
import time

SIZES = ("small", "medium", "large")
SEED = 7
SPARE_NAME = "kxSpareOfAll"
SETTLING = 2.5  # seconds; a cache file does not speak for folders that changed two seconds before it was written


@dataclasses.dataclass(frozen=True)
class Tree:
    size: str
    home: pathlib.Path

    @property
    def root(self):
        return self.home / "tree"

    @property
    def queries(self):
        return self.home / "queries"

    @property
    def path_file(self):
        """The main folders, absolute."""
        return self.home / "main-folders.txt"

    @property
    def all_folders_file(self):
        """The main folders and their special child folders, absolute."""
        return self.home / "all-folders.txt"

    @property
    def spare_folder(self):
        """A folder as large as a usual one, which is not on the path and holds SPARE_NAME; it shadows no other name."""
        return self.home / "spare"

    @property
    def cache_file(self):
        """A path cache file of the main folders for `root`, written by the project."""
        return self.home / "path.cache"

    @property
    def facts(self):
        return json.loads((self.home / "meta.json").read_text())

    def questions(self, name, count):
        """(name, absolute file) pairs."""
        lines = (self.queries / f"{name}.txt").read_text().splitlines()[:count]
        return [(stem, str(self.root / file)) for stem, file in (line.split("\t") for line in lines)]


def make(size, folder, generator):
    """The tree of a size below `folder`; takes a minute or two the first time a large one is wanted."""
    home = folder / size
    made = home / "made-by"
    signature = f"{hashlib.sha256(generator.read_bytes()).hexdigest()} seed {SEED}\n"
    if not made.exists() or made.read_text() != signature:
        print(f"making the {size} tree", file=sys.stderr)
        shutil.rmtree(home / "tree", ignore_errors=True)
        subprocess.run([sys.executable, generator, "--preset", size, "--seed", str(SEED), "--cache", "--out", home],
                       check=True, stdout=subprocess.DEVNULL)
        made.write_text(signature)
        time.sleep(SETTLING)
    tree = Tree(size, home.resolve())
    folders = (tree.home / "path.txt").read_text().splitlines()
    tree.path_file.write_text("".join(f"{tree.root / folder}\n" for folder in folders))
    listed = (line.split("\t")[1] for line in (tree.home / "folders.txt").read_text().splitlines())
    tree.all_folders_file.write_text("".join(f"{tree.root / folder}\n" for folder in listed))
    make_spare(tree)
    return tree


def write_cache_file(tree, command_line):
    subprocess.run([command_line, "cache", "write", tree.root, "--path-file", tree.path_file, "--output",
                    tree.cache_file], check=True, stdout=subprocess.DEVNULL)


def make_spare(tree):
    tree.spare_folder.mkdir(exist_ok=True)
    for number in ("", *range(1, 100)):
        (tree.spare_folder / f"{SPARE_NAME}{number}.kx").touch()
