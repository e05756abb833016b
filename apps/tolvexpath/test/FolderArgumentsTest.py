"""How a command line names the folders of a path: singly, in lists and in the environment."""

import os
import subprocess
import unittest

from program import FAILURE, PROGRAM, FolderTest, environment, run


class FolderArgumentsTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make(*(f"{folder}/f.kx" for folder in ("a", "b", "c", "lists/a", "lists/ b", "lists/#c", "lists/below/d")))

    def write(self, name, text):
        with open(self.path(name), "wb") as file:
            file.write(os.fsencode(text) if isinstance(text, str) else text)

    def find(self, *arguments, **options):
        return self.run_here("find", "f", "--all", *arguments, **options)

    def test_lists(self):
        lists = self.path("lists")
        cases = [
            ("relative names start from the list's folder", "a\nbelow/d\n../c", ["lists/a", "lists/below/d", "c"]),
            ("absolute names", self.path("b") + b"\n" + self.path("a"), ["b", "a"]),
            ("comments and blank lines", "# one\n\n  # two\n \t\r\na\n\t#\n./#c\n./ b\n", ["lists/a", "lists/#c", "lists/ b"]),
            ("blanks belong to a name", " b\n", ["lists/ b"]),
            ("lines may end in two characters", "a\r\n# \r\n\r\n../c\r\n b\r", ["lists/a", "c", "lists/ b"]),
            ("an editor's mark of UTF-8", b"\xef\xbb\xbfa\n../b\n", ["lists/a", "b"]),
            ("a mark inside a name is none", "../lists/#c\n", ["lists/#c"]),
        ]
        for title, text, folders in cases:
            self.write("lists/list", text)
            for spelling, cwd in (("lists/list", self.root), (lists + b"/list", b"/"), ("list", lists), ("../list", lists + b"/below")):
                with self.subTest(title, spelling=spelling):
                    result = run("find", "f", "--all", "--path-file", spelling, cwd=cwd)
                    self.assert_files(result, *(f"{folder}/f.kx" for folder in folders))

    def test_likely_slips_in_names_that_no_folder_has(self):
        self.make("x:y/f.kx", "~z/f.kx", "'q'/f.kx")
        for name, hint in (("~/lib", "write the folder in full"), ('"a"', "quotes"), ("'a'", "quotes"), ("a ", "blanks"),
                           ("\ta", "blanks"), ("a:b", "its own -p"), ("gone", None)):
            self.write("list", f"a\n{name}\n")
            listed = self.find("--path-file", "list")
            self.assert_files(listed, "a/f.kx")
            self.assertEqual(hint is not None, listed.err.startswith("tolvexpath: 'list', line 2: there is no folder '"), listed.err)
            self.assertIn(hint or "", listed.err)
            self.assertIn(hint or "", self.find("-p", name, "-p", "a").err)
        self.assertEqual("", self.find("-p", "x:y", "-p", "~z", "-p", "'q'", "-p", "lists/ b").err)

    def test_a_list_that_is_no_file_starts_from_the_working_folder(self):
        self.assert_files(self.find("--path-file", "-", stdin=b"#\nb\na\n"), "b/f.kx", "a/f.kx")
        self.assert_files(self.find("--path-file", "/dev/stdin", stdin=b"b\n"), "b/f.kx")
        piped = subprocess.run(["bash", "-c", '"$0" find f --path-file <(echo c)', PROGRAM], cwd=self.root, check=True,
                               stdout=subprocess.PIPE)
        self.assertEqual(self.path("c/f.kx") + b"\n", piped.stdout)

    def test_the_environment_names_the_path_when_nothing_else_does(self):
        self.write("list", "b\n")
        cases = [
            ("c:a", [], ["c", "a"]),
            (self.path("b"), [], ["b"]),
            (":c::b:", [], ["c", "b"]),
            ("lists/ b:lists/#c", [], ["lists/ b", "lists/#c"]),
            ("c", ["-p", "a"], ["a"]),
            ("c", ["--path-file", "list"], ["b"]),
        ]
        for value, arguments, folders in cases:
            with self.subTest(value, arguments=arguments):
                result = self.find(*arguments, env=environment(TOLVEXPATH=os.fsdecode(value)))
                self.assert_files(result, *(f"{folder}/f.kx" for folder in folders))
        for value, arguments, folders in (("c", ["a"], ["a"]), ("c:b", [], ["c", "b"]), ("c", ["--path-file", "list"], ["b"])):
            shown = self.run_here("entry", *arguments, "--json", env=environment(TOLVEXPATH=value)).json
            self.assertEqual([os.fsdecode(self.path(folder)) for folder in folders], [entry["path"] for entry in shown])

    def test_no_folder_at_all(self):
        self.write("empty", "# nothing\n\n")
        for value, arguments, hint in ((None, [], "TOLVEXPATH"), ("", [], "TOLVEXPATH"), ("::", [], "TOLVEXPATH"),
                                       ("a", ["--path-file", "empty"], "no folder")):
            result = self.find(*arguments, env=environment(TOLVEXPATH=value))
            self.assertEqual((FAILURE, b""), (result.code, result.out))
            self.assertIn(hint, result.err)
        self.assertEqual("tolvexpath: no folder is named in 'empty'\n", self.find("--path-file", "empty").err)
        self.assertEqual("tolvexpath: no folder is named in the list on the standard input\n", self.find("--path-file", "-").err)
        self.write("zero", b"a\nb\0c\n")
        zero = self.find("--path-file", "zero")
        self.assertEqual((FAILURE, True), (zero.code, zero.err.startswith("tolvexpath: 'zero', line 2: a zero byte ")))
        self.assertIn(b"TOLVEXPATH", self.run_here("find", "--help").out)


if __name__ == "__main__":
    unittest.main()
