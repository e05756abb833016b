"""Path cache files: written, checked, shown, and used instead of listing folders."""

import os
import shutil
import signal
import subprocess
import unittest

import program
from program import FAILURE, FOUND, NOT_FOUND, FolderTest, run

NASTY = [b"lib/two\nlines.kx", b"lib/tab\t& <x>.kx", b"lib/\xff\xfe.kx", "lib/größe.kx".encode(), b"lib/.hidden", b"lib/noext"]


class CacheCommandTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make("lib/a.kx", "lib/n.kxa", "lib/+pkg/@cls/m.kx", "lib/private/p.kx", "other/o.kx", *NASTY)
        self.folders = ["-p", "lib", "-p", "other"]

    def write(self, *arguments):
        return self.run_here("cache", "write", ".", *self.folders, "-o", "cache", *arguments)

    def test_what_is_written_is_whole_and_says_what_the_disk_says(self):
        self.assertEqual(FOUND, self.write().code)
        self.assertEqual({"ok": True, "folders": 2, "message": ""}, self.run_here("cache", "check", "cache", "--json").json)
        self.assertEqual(b"whole, 2 top-level folders\n", self.run_here("cache", "check", "cache").out)
        shown = self.run_here("cache", "show", "cache", "--json").json
        self.assertTrue(shown["ok"])
        lib, other = shown["folders"]
        self.assertEqual({"name": "other", "folders": [], "files": [{"kind": "C", "name": "o.kx"}]}, other)
        self.assertEqual(["lib/+pkg", "lib/private"], [folder["name"] for folder in lib["folders"]])
        self.assertEqual("lib/+pkg/@cls", lib["folders"][0]["folders"][0]["name"])
        self.assertIn({"kind": "N", "name": "n.kxa"}, lib["files"])
        self.assertIn({"kind": "U", "name": "noext"}, lib["files"])
        self.assertEqual(3 + len(NASTY) - 1, len(lib["files"]))
        self.assertIn(b"lib/+pkg/@cls\n  C m.kx\n", self.run_here("cache", "show", "cache").out)

    def test_answers_from_the_file_are_those_from_the_disk(self):
        self.write()
        cache = ["--cache", "cache", "--root", "."]
        for name in ["a", "n", "p", "m", "größe", "two\nlines", "absent"]:
            arguments = ["find", name, "--scope", "all", "--all", *self.folders]
            self.assertEqual(self.run_here(*arguments).out, self.run_here(*arguments, *cache).out)
        self.assertEqual(self.run_here("entry", "--json", "lib", "other").json,
                         self.run_here("entry", "--json", "lib", "other", *cache).json)

    def test_folders_that_changed_since_are_listed_unless_the_file_is_trusted(self):
        self.write()
        cache = ["--cache", "cache", "--root", "."]
        os.rename(self.path("lib/a.kx"), self.path("lib/b.kx"))
        self.make("lib/private/new.kx")
        for name, file in [("a", None), ("b", "lib/b.kx"), ("new", "lib/private/new.kx"), ("o", "other/o.kx")]:
            result = self.run_here("find", name, "--scope", "all", *self.folders, *cache)
            self.assert_files(result, *([file] if file else []))
        self.assert_files(self.run_here("find", "a", *self.folders, *cache, "--trust-cache"), "lib/a.kx")
        os.rename(self.path("other"), self.path("away"))
        result = self.run_here("entry", "lib", "other", *cache)
        self.assertEqual(NOT_FOUND, result.code)
        self.assertIn(os.fsdecode(self.path("other")), result.err)
        self.assertEqual(FAILURE, self.run_here("find", "a", *self.folders, "--trust-cache").code)

    def test_a_file_that_cannot_be_used_costs_no_answer(self):
        self.write()
        with open(self.path("cache"), "r+b") as cache:
            cache.truncate(os.path.getsize(self.path("cache")) - 5)
        result = self.run_here("find", "a", *self.folders, "--cache", "cache", "--root", ".")
        self.assert_files(result, "lib/a.kx")
        self.assertEqual(1, result.err.count("the cache is not used"))
        for cache in ["missing", "lib"]:
            result = self.run_here("find", "a", *self.folders, "--cache", cache, "--root", ".")
            self.assert_files(result, "lib/a.kx")
            self.assertIn(cache, result.err)

    def test_a_file_of_which_nothing_fits_is_told_once(self):
        self.make("else/lib/a.kx")
        self.write()
        told = "no folder of the path is in the cache file 'cache' below 'else'"
        for trust in ([], ["--trust-cache"]):
            for command in (["find", "a", *self.folders], ["path", *self.folders], ["shadows", *self.folders], ["entry", "lib", "other"]):
                wrong = self.run_here(*command, "--cache", "cache", "--root", "else", *trust)
                self.assertEqual((FOUND, told), (wrong.code, wrong.err.removeprefix("tolvexpath: ").strip()), command)
                self.assertEqual("", self.run_here(*command, "--cache", "cache", "--root", ".", *trust).err)
        missing = self.run_here("find", "a", "-p", "gone", "--cache", "cache", "--root", "else")
        self.assertNotIn(told, missing.err)
        os.rename(self.path("lib/a.kx"), self.path("lib/b.kx"))  # changed since, but in it
        self.assertEqual("", self.run_here("find", "b", "-p", "lib", "--cache", "cache", "--root", ".").err)

    def test_check_and_show_say_where_a_file_is_broken(self):
        self.write()
        with open(self.path("cache"), "rb") as cache:
            whole = cache.read()
        with open(self.path("broken"), "wb") as broken:
            broken.write(whole[:whole.index(b"other") + 20])
        check = self.run_here("cache", "check", "broken", "--json")
        self.assertEqual(NOT_FOUND, check.code)
        self.assertEqual((False, 1), (check.json["ok"], check.json["folders"]))
        self.assertIn("byte", check.json["message"])
        shown = self.run_here("cache", "show", "broken", "--json")
        self.assertEqual((NOT_FOUND, False, ["lib"]),
                         (shown.code, shown.json["ok"], [folder["name"] for folder in shown.json["folders"]]))
        broken = self.run_here("cache", "check", "broken")
        self.assertEqual((NOT_FOUND, True), (broken.code, broken.err.startswith("tolvexpath: 'broken': The path cache file ")))
        for arguments, options in ((["-"], {"stdin": whole}), (["/dev/stdin"], {"stdin": whole})):  # which cannot be gone back in
            self.assertEqual(FOUND, self.run_here("cache", "check", *arguments, **options).code)
        for name, reason in (("missing", "No such file or directory"), ("lib", "Is a directory")):
            refused = self.run_here("cache", "check", name, "--json")
            self.assertEqual((FAILURE, b"", f"tolvexpath: cannot read '{name}': {reason}\n"), (refused.code, refused.out, refused.err))

    def test_a_file_that_never_was_one_is_called_so(self):
        for text in (b"", b"foreign", b" \n", b"<Other>", b"\x7fELF"):
            with open(self.path("foreign"), "wb") as file:
                file.write(text)
            check = self.run_here("cache", "check", "foreign")
            self.assertEqual(NOT_FOUND, check.code)
            self.assertTrue(check.err.startswith("tolvexpath: 'foreign' is not a path cache file: "), check.err)
        with open(self.path("foreign"), "wb") as file:
            file.write(b'<Harrowfen type="Path Cache File" version="9')
        self.assertNotIn("is not a path cache file", self.run_here("cache", "check", "foreign").err)

    def test_a_root_that_does_not_fit_is_told(self):
        missing = self.run_here("cache", "write", "nonexist", *self.folders, "-p", "gone", "-o", "new")
        self.assertEqual((FAILURE, 1), (missing.code, len(missing.err.splitlines())))
        self.assertIn("nonexist", missing.err)
        self.assertIn("name its parent as ROOT", self.run_here("cache", "write", "lib", "-p", "lib", "-o", "new").err)

    def test_refusals_name_the_thing_and_keep_the_old_file(self):
        self.write()
        with open(self.path("cache"), "rb") as cache:
            old = cache.read()
        self.make('lib/say "hi".kx')
        refused = self.write()
        self.assertEqual(FAILURE, refused.code)
        self.assertIn("lib", refused.err)
        self.assertIn("double quote", refused.err)
        with open(self.path("cache"), "rb") as cache:
            self.assertEqual(old, cache.read())
        os.remove(self.path('lib/say "hi".kx'))
        outside = self.run_here("cache", "write", "lib", *self.folders, "-o", "cache")
        self.assertEqual(NOT_FOUND, outside.code)
        self.assertIn("other", outside.err)
        for arguments in [["cache"], ["cache", "write", "."], ["cache", "write", "-p", "lib", "-o", "x"], ["cache", "show"],
                          ["find", "a", "-p", "lib", "--cache", "cache"], ["find", "a", "-p", "lib", "--root", "."]]:
            with self.subTest(arguments):
                self.assertEqual(FAILURE, self.run_here(*arguments).code)

    def test_a_writer_killed_at_any_moment_leaves_a_whole_file(self):
        self.write()
        for number in range(300):
            writer = subprocess.Popen([program.PROGRAM, "cache", "write", ".", *self.folders, "-o", "cache"],
                                      cwd=self.root, stderr=subprocess.DEVNULL)
            # A moment that comes a little later each time, counted in turns of this loop instead of seconds.
            for _ in range(number * 40):
                if writer.poll() is not None:
                    break
            writer.send_signal(signal.SIGKILL)
            writer.wait()
            if number % 10 == 9:
                self.assertTrue(self.run_here("cache", "check", "cache", "--json").json["ok"], number)
        self.assertEqual(FOUND, self.write().code)

    @unittest.skipUnless(shutil.which("strace"), "strace is not installed")
    def test_no_folder_is_listed_or_looked_at_where_the_file_is_trusted(self):
        self.write()
        trace = ["strace", "-f", "-o", self.path("trace"), "-e", "trace=getdents64,openat2,statx"]
        if subprocess.run([*trace, "true"], check=False).returncode != 0:
            self.skipTest("nothing can be traced here")
        subprocess.run([*trace, program.PROGRAM, "find", "p", "--scope", "all", "-p", self.path("lib"), "-p", self.path("other"),
                        "--cache", self.path("cache"), "--root", self.root, "--trust-cache"], check=True, stdout=subprocess.DEVNULL,
                       env=program.environment(ASAN_OPTIONS="detect_leaks=0"))
        with open(self.path("trace"), "rb") as lines:
            calls = [line for line in lines if b"ENOENT" not in line and b"+++" not in line and b"---" not in line]
        self.assertEqual([], [line for line in calls if b"getdents64" in line])
        self.assertEqual([], [line for line in calls if b"/lib\"" in line or b"/other\"" in line])


if __name__ == "__main__":
    unittest.main()
