"""find --explain: every verdict, held against what find itself gives."""

import json
import os
import random
import unittest

from program import FAILURE, FOUND, NOT_FOUND, FolderTest

SEED = int(os.environ.get("TOLVEXPATH_SEED", random.randrange(10**6)))
ANSWERS = {"winner", "hidden", "less-wanted-extension", "later-in-folder"}
KINDS = {"private": "private", "resources": "resources"}


def kind_of(file):
    folder = file.split("/")[-2]
    return "package" if folder[0] == "+" else "method" if folder[0] == "@" else KINDS.get(folder, "main")


class ExplainTest(FolderTest):
    def explain(self, name, *arguments):
        result = self.run_here("find", name, "--explain", "--json", *arguments)
        self.assertEqual("", result.err)
        self.assertEqual(FOUND if result.json["winner"] else NOT_FOUND, result.code)
        return result.json

    def named(self, files):
        return [os.path.relpath(file, os.fsdecode(self.root)) for file in files]

    def test_verdicts(self):
        self.make("a/f.kx", "a/f.kxp", "a/F.kx", "a/f.txt", "a/f", "a/private/f.kx", "a/+p/f.kx", "b/f.kxa", "b/F.KX", "c/sub/f.kx")
        os.symlink("a", self.path("again"))
        path = ["-p", "a", "-p", "b", "-p", "c"]
        plain = [("a/f.kxp", 1, "winner"), ("a/f.kx", 1, "less-wanted-extension"), ("a/F.kx", 1, "other-case"),
                 ("a/f", 1, "extension-not-wanted"), ("a/f.txt", 1, "extension-not-wanted"), ("a/+p/f.kx", 1, "kind-out-of-scope"),
                 ("a/private/f.kx", 1, "kind-out-of-scope"), ("b/f.kxa", 2, "hidden"), ("b/F.KX", 2, "other-case")]
        cases = [
            (["f", *path], plain),
            (["f", "--match", "ignore-case", "--ext", ".kx", "-p", "a", "-p", "b"],
             [("a/F.kx", 1, "winner"), ("a/f.kx", 1, "later-in-folder"), ("a/f", 1, "extension-not-wanted"),
              ("a/f.kxp", 1, "extension-not-wanted"), ("a/f.txt", 1, "extension-not-wanted"),
              ("a/+p/f.kx", 1, "kind-out-of-scope"), ("a/private/f.kx", 1, "kind-out-of-scope"),
              ("b/F.KX", 2, "hidden"), ("b/f.kxa", 2, "extension-not-wanted")]),
            (["b/f", *path],
             [("a/f.kxp", 1, "other-folder"), ("a/f.kx", 1, "other-folder"), ("a/F.kx", 1, "other-folder"),
              ("a/f", 1, "other-folder"), ("a/f.txt", 1, "other-folder"), ("a/+p/f.kx", 1, "other-folder"),
              ("a/private/f.kx", 1, "other-folder"), ("b/f.kxa", 2, "winner"), ("b/F.KX", 2, "other-case")]),
            (["f", "--match", "ignore-case", "--ext", ".kx,.KX", "-p", "b"],
             [("b/F.KX", 1, "winner"), ("b/f.kxa", 1, "extension-not-wanted")]),
            (["f", "-p", "b", "-p", "gone", "-p", "b"],
             [("b/f.kxa", 1, "winner"), ("b/F.KX", 1, "other-case"), ("b/f.kxa", 1, "repeated-folder"), ("b/F.KX", 1, "other-case")]),
            (["f", "-p", "gone", "-p", "a/+p", "-p", "again", "-p", "c/sub", "-p", "b", "--scope", "all", "--ext", ".kxp,.kxa"],
             [("a/+p/f.kx", None, "extension-not-wanted"), ("a/f.kxp", 1, "winner"), ("a/F.kx", 1, "extension-not-wanted"),
              ("a/f", 1, "extension-not-wanted"), ("a/f.kx", 1, "extension-not-wanted"), ("a/f.txt", 1, "extension-not-wanted"),
              ("a/+p/f.kx", 1, "extension-not-wanted"), ("a/private/f.kx", 1, "extension-not-wanted"),
              ("c/sub/f.kx", 2, "extension-not-wanted"), ("b/f.kxa", 3, "hidden"), ("b/F.KX", 3, "extension-not-wanted")]),
        ]
        for arguments, candidates in cases:
            with self.subTest(arguments):
                result = self.run_here("find", *arguments, "--explain", "--json").json
                found = list(zip(self.named(c["file"] for c in result["candidates"]), (c["place"] for c in result["candidates"]),
                                 (c["verdict"] for c in result["candidates"])))
                self.assertEqual(candidates, found)
                self.assertEqual([], result["near"])
        reasons = {self.named([c["file"]])[0]: c["reason"] for c in self.explain("f", *path)["candidates"]}
        for file, words in (("a/f.kx", ["'.kx'", "'.kxp'"]), ("b/f.kxa", [os.fsdecode(self.path("a/f.kxp"))]),
                            ("a/f.txt", ["--ext .txt"]), ("a/private/f.kx", ["--scope private"]), ("a/F.kx", ["--match ignore-case"])):
            for word in words:
                self.assertIn(word, reasons[file])

    def test_near_misses(self):
        self.make("a/Area.kx", "a/data.txt", "a/private/secret.kx", "a/one/deep.kx", "a/one/two/Deep.kx", "a/one/+p/in.kx",
                  "a/one/private/deep.kx", "a/one/+p/g.txt", "a/+shapes/square.kx", "a/+shapes/@Prism/Prism.kx", "a/@Poly/side.kx",
                  "a/@Poly/@Corner/turn.kx")
        os.symlink("..", self.path("a/one/up"))
        off = "folder-not-on-path"
        cases = [
            (["area"], [("a/Area.kx", "other-case", "ignore-case")]),
            (["data"], [("a/data.txt", "extension-not-wanted", ".txt")]),
            (["secret"], [("a/private/secret.kx", "kind-out-of-scope", "private")]),
            (["Area.kx"], [("a/Area.kx", "extension-in-name", "'Area'")]),
            (["deep"], [("a/one/deep.kx", off, "a/one'"), ("a/one/two/Deep.kx", off, "a/one/two'")]),
            (["+p/in"], [("a/one/+p/in.kx", off, "a/one'")]),
            (["two/deep"], [("a/one/two/Deep.kx", off, "a/one/two'")]),
            (["deep", "--scope", "private"], [("a/one/private/deep.kx", off, "a/one'")]),
            (["g"], []),
            (["shapes.square"], [("a/+shapes/square.kx", "qualified-name", "'shapes.square' is +shapes/square")]),
            (["Poly.side"], [("a/@Poly/side.kx", "qualified-name", "is @Poly/side")]),
            (["Poly.Corner.turn"], [("a/@Poly/@Corner/turn.kx", "qualified-name", "is @Poly/@Corner/turn")]),
            (["shapes.Prism"], [("a/+shapes/@Prism/Prism.kx", "qualified-name", "is +shapes/@Prism/Prism")]),
            (["shapes/square"], [("a/+shapes/square.kx", "other-folder", "does not end in 'shapes' but in '+shapes'")]),
            (["hapes.square"], []), ([".square"], []), (["shapes.area"], []), (["shapes."], []),
        ]
        for arguments, near in cases:
            with self.subTest(arguments):
                result = self.explain(*arguments, "-p", "a")
                self.assertEqual([(file, kind) for file, kind, _ in near],
                                 list(zip(self.named(n["file"] for n in result["near"]), (n["kind"] for n in result["near"]))))
                for (_, _, word), miss in zip(near, result["near"]):
                    self.assertIn(word, miss["reason"])
                self.assertTrue(result["near_is_complete"])
        # Each cure that is offered works.
        for arguments in (["area", "--match", "ignore-case", "-p", "a"], ["data", "--ext", ".txt", "-p", "a"],
                          ["secret", "--scope", "private", "-p", "a"], ["deep", "-p", "a", "-p", "a/one"],
                          ["+p/in", "-p", "a", "-p", "a/one"],
                          ["+shapes/square", "-p", "a"], ["@Poly/@Corner/turn", "-p", "a"], ["+shapes/@Prism/Prism", "-p", "a"]):
            self.assertEqual(FOUND, self.run_here("find", *arguments).code, arguments)

    def test_the_search_off_the_path_has_a_bound(self):
        for number in range(10_001):
            os.makedirs(self.path(f"wide/{number // 100}/{number}"))
        result = self.explain("absent", "-p", "wide")
        self.assertEqual(([], False), (result["near"], result["near_is_complete"]))
        self.assertIn(b"Only 10000 folders", self.run_here("find", "absent", "--explain", "-p", "wide").out)
        os.rename(self.path("wide/1"), self.path("narrow"))
        self.assertTrue(self.explain("absent", "-p", "narrow")["near_is_complete"])

    def test_text(self):
        self.make("a/f.kx", "b/f.kx", "b/sub/g\x1b.kx")
        root = os.fsdecode(self.root)
        self.assertEqual(f"""\
'f' is {root}/a/f.kx

place  file
    1  {root}/a/f.kx
       winner: the first that answers
    2  {root}/b/f.kx
       hidden: hidden by '{root}/a/f.kx', which stands earlier on the path
""", self.run_here("find", "f", "--explain", "-p", "a", "-p", "b").out.decode())
        self.assertEqual(f"""\
Nothing on the path answers to 'g\\x1b'.

Near, but not on the path under this name:
       {root}/b/sub/g\\x1b.kx
       folder-not-on-path: '{root}/b/sub' is not on the path
""", self.run_here("find", "g\x1b", "--explain", "-p", "a", "-p", "b").out.decode())
        for arguments in (["-0"], ["--all"], ["--queries", "-"]):
            self.assertEqual(FAILURE, self.run_here("find", "f", "--explain", *arguments, "-p", "a").code)
        self.assertEqual(FAILURE, self.run_here("find", "--explain", "-p", "a").code)

    def test_verdicts_agree_with_find(self):
        choose = random.Random(SEED)
        for _ in range(25):
            tree = f"tree{choose.randrange(10**9)}"
            folders = [f"{tree}/{name}" for name in "abc"]
            self.make(*(folder + "/" for folder in folders))
            below = ["", "/+p", "/@C", "/private", "/resources", "/sub", "/sub/private"]
            for _ in range(choose.randrange(30)):
                stem, extension = choose.choice(["f", "F", "g"]), choose.choice([".kx", ".KX", ".kxp", ".txt", ""])
                self.make(choose.choice(folders) + choose.choice(below) + "/" + stem + extension)
            path = [part for _ in range(4) for part in ("-p", choose.choice(folders))]
            name = choose.choice(["f", "F", "f", "a/f", "+p/f", "sub/f", "a/private/F"])
            match = choose.choice(["exact", "ignore-case", "native"])
            arguments = [*path, "--match", match, "--ext", choose.choice([".kx,.kxp", ".kxp,.kx", ".txt,", ".KX", ".kx"]),
                         *choose.choice([[], ["--scope", "all"], ["--scope", "main"], ["--scope", "package,private"]])]
            with self.subTest(json.dumps([name, *arguments]), seed=SEED):
                explained = self.explain(name, *arguments)
                answers = [found["file"] for found in self.run_here("find", name, "--all", "--json", *arguments).json]
                first = [found["file"] for found in self.run_here("find", name, "--json", *arguments).json]
                candidates = explained["candidates"]
                self.assertEqual(answers, [c["file"] for c in candidates if c["verdict"] in ANSWERS])
                self.assertEqual(first, [c["file"] for c in candidates if c["verdict"] == "winner"])
                self.assertEqual(first, [explained["winner"]] if explained["winner"] else [])
                wanted = arguments[arguments.index("--ext") + 1].split(",")
                for candidate in candidates:
                    self.assertEqual(list(dict.fromkeys(path[1::2]))[candidate["place"] - 1],
                                     "/".join(self.named([candidate["file"]])[0].split("/")[:2]))
                    extension = os.path.splitext(candidate["file"])[1]
                    if candidate["verdict"] == "extension-not-wanted":
                        self.assertNotIn(extension.lower(), [known.lower() for known in wanted])
                    if candidate["verdict"] == "kind-out-of-scope" and "--scope" in arguments:
                        self.assertNotIn(kind_of(candidate["file"]), arguments[-1].split(","))


if __name__ == "__main__":
    unittest.main()
