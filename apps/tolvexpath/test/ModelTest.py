"""Compares the program with a model of the rules: on generated trees, on trees of odd names, and on the machine's own.
TOLVEXPATH_MODEL=large takes ten times as many files."""

import json
import os
import random
import shutil
import socket
import subprocess
import sys
import unittest
import urllib.parse

from path_model import CODE_EXTENSIONS, Entry, Path, fold, MAIN, IGNORE_CASE
from program import FOUND, FolderTest, ask, run

LARGE = os.environ.get("TOLVEXPATH_MODEL") == "large"
SEED = int(os.environ.get("TOLVEXPATH_SEED", random.randrange(10**6)))


class ModelTest(FolderTest):
    maxDiff = None

    def setUp(self):
        super().setUp()
        self.random = random.Random(SEED)

    def compare_entries(self, folders):
        """Each folder with everything below, as the program shows it and as the model has it."""
        entries = [Entry(os.path.realpath(folder)) for folder in folders]
        for start in range(0, len(folders), 500):
            shown = run("entry", "--json", "--", *folders[start:start + 500])
            self.assertEqual((FOUND, ""), (shown.code, shown.err))
            nodes = shown.json
            self.assertEqual(len(entries[start:start + 500]), len(nodes))
            for entry, node in zip(entries[start:start + 500], nodes):
                self.take_iris(node)
                self.assertEqual(entry.as_json(), node, f"seed {SEED}")
        return entries

    def take_iris(self, node):
        iri = node.pop("iri")
        self.assertRegex(iri, r"^file:///[^\x00- \x7f\ud800-\udfff\"<>\\^`{|}?#]*$")
        self.assertEqual(os.fsencode(node["path"]), urllib.parse.unquote_to_bytes(iri[len("file://"):]))
        for child in [*node["packages"], *node["methods"], *node["uddClasses"], node["private"], node["resources"]]:
            if child:
                self.take_iris(child)

    def compare_answers(self, entries, count):
        path = Path(entries)
        questions = [self.make_question(path) for _ in range(count)]
        list_file = self.path("list of folders")
        with open(list_file, "wb") as lines:
            lines.writelines(os.fsencode(entry.path) + b"\n" for entry in entries)
        for question, answer in zip(questions, ask(questions, "--path-file", list_file), strict=True):
            self.assertEqual(path.find(question), answer, f"{json.dumps(question)}, seed {SEED}")

    def make_question(self, path):
        choose = self.random
        entry = choose.choice(path.entries)
        stem, extension = choose.choice(entry.files or [("none", ".kx")])
        change = choose.choice([str, str, str, str.swapcase, fold, lambda name: name + "x", str.upper])
        extensions = choose.sample([extension, ".kx", ".kxp", ".KX", ".txt", "", extension.swapcase()], choose.randrange(5))
        name = change(stem)
        if choose.random() < 0.3:
            name = "/".join([*entry.path.split("/")[-choose.randrange(1, 4):], name])
        return {"name": name, "extensions": choose.choice([CODE_EXTENSIONS, [extension], extensions]),
                "policy": choose.randrange(3), "scope": choose.choice([[MAIN], [entry.kind], list(range(6)),
                                                                       choose.sample(range(6), choose.randrange(7))]),
                "all": choose.random() < 0.5}

    def test_generated_tree(self):
        out = os.fsdecode(self.path("generated"))
        preset, queries = ("medium", "100000") if LARGE else ("small", "10000")
        subprocess.run([sys.executable, os.environ["GEN_TREE"], "--out", out, "--preset", preset, "--queries", queries],
                       check=True, stdout=subprocess.DEVNULL)
        shutil.copy(out + "/path.txt", out + "/tree/")
        tree, usual = out + "/tree", {"extensions": CODE_EXTENSIONS, "policy": IGNORE_CASE, "scope": [MAIN]}
        for subject in ("front", "back", "absent", "hits"):
            with open(f"{out}/queries/{subject}.txt", encoding="utf-8") as lines:
                expected = [line.rstrip("\n").split("\t") for line in lines]
            answers = ask([{"name": stem, **usual} for stem, _ in expected], "--path-file", tree + "/path.txt")
            for (stem, file), answer in zip(expected, answers, strict=True):
                self.assertEqual([] if file == "-" else [f"{tree}/{file}"], [found["file"] for found in answer], stem)
        with open(out + "/path.txt", encoding="utf-8") as lines:
            folders = [f"{tree}/{line.rstrip()}" for line in lines]
        self.compare_answers(self.compare_entries(folders), 20000 if LARGE else 5000)

    def test_odd_names(self):
        for _ in range(20 if LARGE else 8):
            root = os.path.join(self.root, b"%d" % self.random.randrange(10**9))
            folders = [os.path.join(root, folder) for folder in (b"one", b"two \xff", "drei/\u00e4".encode(), b"+main", b"@a/@b")]
            for folder in folders:
                self.grow(folder, 4)
            folders = [os.fsdecode(folder) for folder in folders]
            inner = self.find_inner_folders(folders)
            folders += [folders[0], *self.random.sample(inner, min(5, len(inner)))]
            self.compare_answers(self.compare_entries(folders), 1000)

    def find_inner_folders(self, folders):
        """Folders below, to be asked for as if they were main folders. One that a link leads back up from has more in it
        then: below a main folder such a link is left out, from the inner folder alone it leads to one more folder."""
        below = {entry.path for folder in folders for entry in Entry(folder).walk()}
        return sorted({os.path.realpath(path) for path in below})

    def grow(self, folder, depth):
        """Fills a folder with files, folders of every kind and things that are neither, with names that are hard to
        take apart, to fold, to sort and to spell."""
        stems = ["a", "A", "\u00df", "\u1e9e", "k", "\u212a", "\u017f", "s", "i", "\u0130", "\u0131", "e\u0301", "\u00e9",
                 "\U00010400", "\U00010428", "\uff21", "\uffff", "a b", "a\nb", 'a"\\b', "\x7f\x1b[1m", "\udcff", "\udcc3",
                 "x\udced\udca0\udc80", ".", "..", "%41", "\u03c3", "\u03c2", "\u03a3"]
        names = [stem + extension for stem in stems for extension in ("", ".kx", ".KX", ".kxp", ".kxa", ".", "..kx", ".\u017f")]
        kinds = ["+p", "+P", "+\udcfe", "+", "@c", "@C", "@\U00010400", "@", "private", "Private", "resources", "plain", "+@q"]
        os.makedirs(folder)
        for name in self.random.sample(sorted(set(names) - {".", ".."}), self.random.randrange(25)):
            with open(os.path.join(folder, os.fsencode(name)), "wb"):
                pass
        for name in self.random.sample(kinds, self.random.randrange(6) if depth > 0 else 0):
            child = os.path.join(folder, os.fsencode(name))
            if self.random.random() < 0.8:
                self.grow(child, depth - 1)
            else:
                self.make_link(folder, child)
        self.make_link(folder, os.path.join(folder, b"a link.kx"))

    def make_link(self, folder, name):
        above = os.path.dirname(folder)
        os.symlink(self.random.choice([b".", b"..", above, b"nowhere", os.path.basename(name), b"/etc/hostname", b"/dev/null",
                                       b"../+p", b"+P"]), name)

    def test_neither_file_nor_folder(self):
        self.make("box/real.kx")
        os.mkfifo(self.path("box/pipe.kx"))
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(os.fsdecode(self.path("box/socket.kx")))
        self.compare_entries([os.fsdecode(self.path("box"))])

    def test_folders_of_this_machine(self):
        most = 5000 if LARGE else 1200
        for root in ("/usr/share", "/usr/include"):
            folders = [folder for folder, _, _ in os.walk(root)]
            folders = self.random.sample(folders, min(most, len(folders)))
            self.compare_answers(self.compare_entries(folders), 5000 if LARGE else 2000)


if __name__ == "__main__":
    unittest.main()
