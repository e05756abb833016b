"""The path command: the path as an environment would have it, and what is not on it."""

import os
import unittest

from program import FOUND, NOT_FOUND, FolderTest, environment


class PathCommandTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make("a/f.kx", "a/+p/g.kx", "a/@C/private/h.kx", "a/plain/unseen.kx", "b/", "inst/box/i.kx", "a/resources/r.txt",
                  "a/private/q.kx", "file", "odd\x1b\n/x.kx")
        os.symlink("a", self.path("link"))

    def run_here(self, *arguments, **variables):
        """As always, with an installation of its own, whose folders are watched less closely."""
        installation = os.fsdecode(self.path("inst"))
        return super().run_here(*arguments, env=environment(TOLVEX_ROOT=installation, **variables))

    def folder(self, name, files, source="disk", watched="notification"):
        return {"folder": os.fsdecode(self.path(name)), "kind": "main", "files": files, "source": source, "watched": watched}

    def test_folders_in_order_and_what_was_left_out(self):
        a, b = self.folder("a", 5), self.folder("b", 0)
        wrong_kind = "TOLVEX:tpath:{}DirectoriesNotAllowedOnPath".format
        missing = "TOLVEX:tpath:nameNonexistentOrNotADirectory"
        cases = [
            (["a", "b"], [a, b], []),
            (["b", "a"], [b, a], []),
            (["link", "b", "a"], [a, b], [("tolvexpath:repeatedFolder", "a")]),  # the first name of a folder counts
            (["gone", "b", "a", "link", "gone", "a/+p", "a/+p", "b"], [b, a],
             [(missing, "gone"), (wrong_kind("package"), "a/+p"),  # one thing to mend is told once
              ("tolvexpath:repeatedFolder", "link"), ("tolvexpath:repeatedFolder", "b")]),
            (["a/plain"], [self.folder("a/plain", 1)], []),
            (["gone", "a", "file"], [a], [(missing, "gone"), (missing, "file")]),
            (["a/+p", "a/@C", "a/private", "b", "a/resources"], [b],
             [(wrong_kind(kind), f"a/{name}") for kind, name in
              (("package", "+p"), ("method", "@C"), ("private", "private"), ("resources", "resources"))]),
            (["gone"], [], [(missing, "gone")]),
        ]
        for names, folders, left_out in cases:
            with self.subTest(names):
                arguments = [part for name in names for part in ("-p", name)]
                result = self.run_here("path", "--json", *arguments)
                self.assertEqual((NOT_FOUND if left_out else FOUND, ""), (result.code, result.err))
                self.assertEqual(folders, result.json["folders"])
                self.assertEqual([identifier for identifier, _ in left_out], [item["id"] for item in result.json["left_out"]])
                text = self.run_here("path", *arguments)
                self.assertEqual((result.code, ""), (text.code, text.err))
                self.assertEqual([folder["folder"] for folder in folders],
                                 [line.split()[-1].decode() for line in text.lines if line[:5].strip().isdigit()])
                found = self.run_here("find", "f", "--scope", "all", *arguments)
                self.assertEqual([item["message"] for item in result.json["left_out"] if item["id"] != "tolvexpath:repeatedFolder"],
                                 [line.removeprefix("tolvexpath: ") for line in found.err.splitlines() if "answers to" not in line])
                for (_, name), item in zip(left_out, result.json["left_out"]):
                    self.assertIn(os.fsdecode(self.path(name)), item["message"])
                    self.assertIn("  " + item["message"], text.out.decode())

    def test_source_and_watching(self):
        self.run_here("cache", "write", ".", "-p", "a", "-o", "cache")
        result = self.run_here("path", "--json", "--cache", "cache", "--root", ".", "--trust-cache", TOLVEXPATH="inst/box:a")
        self.assertEqual([self.folder("inst/box", 1, watched="time check"), self.folder("a", 5, source="cache file")],
                         result.json["folders"])
        self.make("a/new.kx")
        cache = ["--cache", "cache", "--root", "."]
        for arguments, folders in ((["-p", "a"], [self.folder("a", 6)]),
                                   (["-p", "a", "--trust-cache"], [self.folder("a", 5, source="cache file")])):
            self.assertEqual(folders, self.run_here("path", "--json", *arguments, *cache).json["folders"])
        os.rename(self.path("a"), self.path("away"))
        gone = self.run_here("path", "--json", "-p", "a", *cache).json
        self.assertEqual(([], 1), (gone["folders"], len(gone["left_out"])))
        broken = self.run_here("path", "-p", "b", "--cache", "file", "--root", ".")
        self.assertEqual((FOUND, 1), (broken.code, broken.err.count("the cache is not used")))

    def test_text(self):
        result = self.run_here("path", "-p", "odd\x1b\n", "-p", "gone\x1b")
        self.assertEqual((f"""\
place  kind         files  source      watched       folder
    1  main             1  disk        notification  {os.fsdecode(self.root)}/odd\\x1b\\n

Left out:
  The folder '{os.fsdecode(self.root)}/gone\\x1b' does not exist""".splitlines()),
                         result.out.decode().partition(" or is not a folder")[0].splitlines())
        self.assertEqual(b"The path is empty.\n", self.run_here("path", "-p", "gone").out.partition(b"\n\n")[0] + b"\n")


if __name__ == "__main__":
    unittest.main()
