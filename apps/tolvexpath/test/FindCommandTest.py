"""The find command asked for one name."""

import os
import unittest

from program import FOUND, NOT_FOUND, FolderTest


class FindCommandTest(FolderTest):
    def test_first_and_all_in_path_order(self):
        self.make("one/f.kx", "one/f.kxp", "one/+p/f.kx", "one/private/f.kx", "two/f.kxa", "two/F.kx", "two/f.txt", "two/f")
        cases = [
            (["f"], ["one/f.kxp"]),
            (["f", "-a"], ["one/f.kxp", "one/f.kx", "two/f.kxa"]),
            (["f", "--all", "--scope", "all"],
             ["one/f.kxp", "one/f.kx", "one/+p/f.kx", "one/private/f.kx", "two/f.kxa"]),
            (["f", "--all", "--scope", "private,package"], ["one/+p/f.kx", "one/private/f.kx"]),
            (["f", "--all", "--match", "ignore-case"], ["one/f.kxp", "one/f.kx", "two/f.kxa", "two/F.kx"]),
            (["F", "--all", "--match", "exact"], ["two/F.kx"]),
            (["f", "--ext", ".kx,.kxp"], ["one/f.kx"]),
            (["f", "--ext", ".txt,"], ["two/f.txt"]),
            (["f", "--ext", ""], ["two/f"]),
            (["one/f"], ["one/f.kxp"]),
            (["+p/f"], ["one/+p/f.kx"]),
            (["one/+p/f", "--scope", "main"], []),
            (["one/private/f"], ["one/private/f.kx"]),
            (["g"], []),
        ]
        for arguments, files in cases:
            with self.subTest(arguments):
                self.assert_files(self.run_here("find", "-p", "one", "-p", "two", *arguments), *files)

    def test_folders_keep_the_order_of_the_command_line(self):
        folders = ["a", "b", "c", "d", "e"]
        self.make(*(f"{name}/f.kx" for name in folders))
        with open(self.path("list"), "wb") as lines:
            lines.write(b"\nd\n\n" + self.path("b"))
        os.symlink("d", self.path("link"))  # the first name of a folder counts
        result = self.run_here("find", "--all", "f", "-p", "e", "--path-file", "list", "-pc", "-plink", "-p./e", "--path-file", "-",
                               stdin=b"a\n")
        self.assert_files(result, "e/f.kx", "d/f.kx", "b/f.kx", "c/f.kx", "a/f.kx")

    def test_a_missing_folder_is_told_and_passed_over(self):
        self.make("a/f.kx")
        result = self.run_here("find", "f", "-p", "gone", "-p", "a")
        self.assert_files(result, "a/f.kx")
        self.assertIn(os.fsdecode(self.path("gone")), result.err)
        self.assert_files(self.run_here("find", "f", "-p", "gone"))

    def test_a_folder_that_may_not_stand_on_a_path_is_told_and_looked_into(self):
        self.make("a/@C/f.kx", "a/+p/f.kx", "a/private/f.kx", "b/f.kx")
        for name in ("a/@C", "a/+p", "a/private"):
            result = self.run_here("find", "f", "--all", "--scope", "all", "-p", name, "-p", "b")
            self.assert_files(result, f"{name}/f.kx", "b/f.kx")
            left_out = self.run_here("path", "--json", "-p", name, "-p", "b").json["left_out"]
            self.assertEqual([f"tolvexpath: {item['message']}" for item in left_out], result.err.splitlines())

    def test_a_miss_names_what_would_have_been_found(self):
        self.make("a/Area.kx", "a/+p/deep.kx", "a/+p/@C/m.kx")
        for name, hint in (("p.deep", "+p/deep.kx"), ("p/deep", "+p/deep.kx"), ("p.C.m", "+p/@C/m.kx"), ("area", "Area.kx"), ("Area.kx", "Area.kx"), ("deep", "+p/deep.kx"), ("none", None)):
            result = self.run_here("find", name, "-p", "a", "--json")
            self.assertEqual((NOT_FOUND, []), (result.code, result.json))
            self.assertEqual(1, len(result.err.splitlines()))
            self.assertEqual(hint is not None, os.fsdecode(self.path(f"a/{hint}")) in result.err, result.err)

        self.assertIn("'p.C.m' is +p/@C/m, in '", self.run_here("find", "p.C.m", "-p", "a").err)
        absolute = os.fsdecode(self.path("a"))
        for name, folder in (("./a/Area", "./a"), (f"{absolute}/Area", absolute), ("../x/Area", "../x"), ("/Area", "/")):
            self.assertIn(f"find 'Area' -p '{folder}'", self.run_here("find", name, "-p", "a/+p").err)

    def test_names_are_bytes(self):
        names = ["caf\udce9", "line\nfeed", "caf\u00e9", 'quo"te\\', "\U0001f600", "tab\t\x7f"]
        self.make(*(f"\udcff/{name}.kx" for name in names))
        for name in names:
            self.assertEqual(self.path(f"\udcff/{name}.kx") + b"\0", self.run_here("find", "-0", "-p", "\udcff", name).out)
            self.assertEqual(self.path(f"\udcff/{name}.kx") + b"\n", self.run_here("find", "-p", "\udcff", name).out)
            found = self.run_here("find", "--json", "-p", "\udcff", name).json
            folder = os.fsdecode(self.path("\udcff"))
            self.assertEqual([{"entry": folder, "stem": name, "extension": ".kx", "file": f"{folder}/{name}.kx"}], found)

    def test_names_of_commands_and_options_can_be_found(self):
        self.make("a/find.kx", "a/entry.kx", "a/-p.kx", "a/[x,y].kx", "a/{}.kx")
        for name in ("find", "entry", "[x,y]", "{}"):
            self.assertEqual(FOUND, self.run_here("find", name, "-p", "a").code, name)
        self.assert_files(self.run_here("find", "-p", "a", "--", "-p"), "a/-p.kx")


if __name__ == "__main__":
    unittest.main()
