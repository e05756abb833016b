"""The shadows command: who wins and who is hidden, held against what find gives."""

import json
import os
import random
import unittest

from program import FAILURE, FOUND, NOT_FOUND, FolderTest

SEED = int(os.environ.get("TOLVEXPATH_SEED", random.randrange(10**6)))


class ShadowsCommandTest(FolderTest):
    def shadows(self, *arguments):
        result = self.run_here("shadows", "--json", *arguments)
        self.assertEqual(NOT_FOUND if result.json else FOUND, result.code, result.err)
        named = [os.path.relpath(file, os.fsdecode(self.root)) for entry in result.json for file in [entry["winner"], *entry["hidden"]]]
        files = iter(named)
        return [(entry["name"], next(files), [next(files) for _ in entry["hidden"]]) for entry in result.json]

    def test_conflicts(self):
        self.make("a/f.kx", "a/f.kxp", "a/g.kx", "a/H.kx", "a/note.txt", "a/+p/f.kx", "a/+p/+q/m.kx", "a/@C/C.kx", "a/@C/m.kx",
                  "a/@C/@D/u.kx", "a/private/s.kx", "b/f.kxa", "b/f.kx", "b/h.kx", "b/note.txt", "b/+p/f.kxp", "b/+p/+q/m.kx",
                  "b/@C/m.kx", "b/@C/@D/u.kx", "b/private/s.kx", "b/+C/m.kx", "b/@p/f.kx", "b/plain/g.kx", "c/f.KX", "c/G.kx")
        path = ["-p", "a", "-p", "b", "-p", "c"]
        f = ("f", "a/f.kxp", ["b/f.kxa", "b/f.kx"])
        members = [("p.f", "a/+p/f.kx", ["b/+p/f.kxp"]), ("p.q.m", "a/+p/+q/m.kx", ["b/+p/+q/m.kx"]),
                   ("C.m", "a/@C/m.kx", ["b/@C/m.kx"]), ("C.D.u", "a/@C/@D/u.kx", ["b/@C/@D/u.kx"])]
        cases = [
            (path, [f, *members]),
            ([*path, "--scope", "main"], [f]),
            ([*path, "--scope", "package,udd"], [members[0], members[1], members[3]]),
            ([*path, "--scope", "main", "--forms"], [("f", "a/f.kxp", ["a/f.kx", "b/f.kxa", "b/f.kx"])]),
            ([*path, "--scope", "main", "--match", "exact", "--ext", ".txt"], [("note", "a/note.txt", ["b/note.txt"])]),
            ([*path, "--scope", "main", "--match", "ignore-case"],
             [("H", "a/H.kx", ["b/h.kx"]), ("f", "a/f.kxp", ["b/f.kxa", "b/f.kx", "c/f.KX"]), ("g", "a/g.kx", ["c/G.kx"])]),
            (["-p", "b", "-p", "a", "--scope", "main"], [("f", "b/f.kxa", ["a/f.kxp", "a/f.kx"])]),
            (["-p", "a", "-p", "a"], []),
            (["-p", "c"], []),
        ]
        for arguments, conflicts in cases:
            with self.subTest(arguments):
                self.assertEqual(conflicts, self.shadows(*arguments))

    def test_text_and_wrong_use(self):
        self.make("a/f\x1b.kx", "b/f\x1b.kx")
        root = os.fsdecode(self.root)
        result = self.run_here("shadows", "-p", "a", "-p", "gone", "-p", "b")
        self.assertEqual((NOT_FOUND, f"f\\x1b\n  is    {root}/a/f\\x1b.kx\n  hides {root}/b/f\\x1b.kx\n"),
                         (result.code, result.out.decode()))
        self.assertIn(f"'{root}/gone'", result.err)
        self.assertEqual((FOUND, b"No file is hidden.\n"), (lambda r: (r.code, r.out))(self.run_here("shadows", "-p", "a")))
        for arguments in ([], ["f", "-p", "a"], ["-p", "a", "--scope", "private"], ["-p", "a", "--scope", "all"], ["-p", "a", "-a"],
                          ["-p", "a", "--match", "loose"]):
            result = self.run_here("shadows", *arguments)
            self.assertEqual((FAILURE, b""), (result.code, result.out), arguments)
        self.assertIn(b"Examples:", self.run_here("shadows", "--help").out)

    def test_conflicts_agree_with_find(self):
        for seed in (5, SEED):  # 5 has files of one folder that a search does not tell apart
            self.compare_with_find(seed)

    def compare_with_find(self, seed):
        choose = random.Random(seed)
        for _ in range(25):
            tree = f"tree{choose.randrange(10**9)}"
            folders = [f"{tree}/{name}" for name in "abcd"]
            self.make(*(folder + "/" for folder in folders))
            for _ in range(choose.randrange(40)):
                stem = choose.choice(["f", "F", "g", "G", "ſ", "s", "S"])
                self.make(choose.choice(folders) + "/" + stem + choose.choice([".kx", ".KX", ".kxp", ".txt"]))
            path = [part for folder in choose.sample(folders, 4) for part in ("-p", folder)]
            rules = ["--match", choose.choice(["exact", "ignore-case", "native"]), "--ext", choose.choice([".kx,.kxp", ".kxp", ".KX"])]
            expected = {}
            for stem in {name.rsplit(".", 1)[0] for folder in folders for name in os.listdir(self.path(folder).decode())}:
                files = [found["file"] for found in self.run_here("find", stem, "--all", "--json", *path, *rules).json]
                if len(files) > 1:
                    expected[tuple(files)] = stem
            with self.subTest(json.dumps([*path, *rules]), seed=seed):
                result = self.run_here("shadows", "--json", "--forms", *path, *rules).json
                told = {(entry["winner"], *entry["hidden"]): entry["name"] for entry in result}
                self.assertEqual(len(result), len(told))
                self.assertEqual(set(expected), set(told))
                for files, name in told.items():
                    self.assertEqual(os.path.basename(files[0]).rsplit(".", 1)[0].casefold(), name.casefold())


if __name__ == "__main__":
    unittest.main()
