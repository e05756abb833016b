"""Every command's exit codes and messages: one table of what is asked, how it ends and what is said."""

import os
import unittest

from program import FAILURE, FOUND, NOT_FOUND, FolderTest, environment

MISSING = "The folder '{}/gone' does not exist or is not a folder. Check how the name is spelled."
NO_FOLDER = "no folder is named; give -p or --path-file, or set TOLVEXPATH"
SCOPES = "main, package, method, private, udd, resources"
LIST_ERRORS = [
    ([], NO_FOLDER), (["-p", ""], "a folder's name is empty"), (["--path-file", "gone"], "cannot read 'gone': No such file or directory"),
    (["--path-file", "a"], "cannot read 'a': Is a directory"), (["--path-file", ""], "cannot read '': No such file or directory"),
    (["--path-file", "nothing"], "no folder is named in 'nothing'"),
]
# Those that a parser of arguments finds are followed by where to read more.
PARSE_ERRORS = [
    (["-p"], "--path: 1 required FOLDER missing"), (["-p", "a", "--xml"], "'--xml' is no option of {}; names that begin with '-' go behind '--', at the end"),
    (["-p", "a", "--jsno"], "'--jsno' is no option of {}; did you mean '--json'?"),
]
CACHE_ERRORS = [
    (["--cache", "cache"], "--cache requires --root"), (["--root", "."], "--root requires --cache"),
    (["--trust-cache"], "--trust-cache requires --cache"),
]


class ExitCodesTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make("a/f.kx", "a/G.kx", "b/f.kx", "a/+p/deep.kx", "nothing", "-dash/")
        self.run_here("cache", "write", ".", "-p", "a", "-o", "cache")

    def check(self, command, arguments, code, *messages, stdin=b"", hint=None, **variables):
        """`hint`: the command whose help is pointed to."""
        with self.subTest(command=command, arguments=arguments):
            result = self.run_here(*command, *arguments, stdin=stdin, env=environment(**variables))
            lines = [f"tolvexpath: {message}".replace("{}", os.fsdecode(self.root)) for message in messages]
            lines += [f"Try 'tolvexpath {hint} --help'."] if hint is not None else []
            self.assertEqual((code, lines), (result.code, result.err.splitlines()))
            if code == FAILURE and stdin == b"":
                self.assertEqual(b"", result.out)
            elif "--json" in arguments:
                self.assertIsNotNone(result.json)
            return result

    def test_folders_cannot_be_named_so(self):
        for command in (["find", "f"], ["path"], ["shadows"], ["check"], ["watch"], ["entry"], ["cache", "write", ".", "-o", "new"]):
            name = command[0] if command[0] != "cache" else "cache write"
            for arguments, message in LIST_ERRORS:
                self.check(command, arguments, FAILURE, message)
            for arguments, message in PARSE_ERRORS:
                if "--jsno" in arguments and name == "cache write":
                    continue
                said = message.replace("{}", name)
                if command[0] not in ("find", "entry", "cache"):
                    said = said.replace("; names that begin with '-' go behind '--', at the end", "")
                self.check(command, arguments, FAILURE, said, hint=name)
            if name != "cache write":
                for arguments, message in CACHE_ERRORS[:2 if name == "watch" else 3]:
                    self.check(command, ["-p", "a", *arguments], FAILURE, message, hint=name)
        self.assertFalse(os.path.exists(self.path("new")))

    def test_find(self):
        here = ["-p", "a", "-p", "b"]
        miss = "nothing on the path answers to '{0}'".format
        for arguments, code, *messages in (
            (["f", *here], FOUND), (["f", *here, "--json", "--all"], FOUND), (["f", *here, "--explain", "--json"], FOUND),
            (["f", "-p", "gone", *here], FOUND, MISSING),
            (["f", "-p", "gone", "-p", "gone", "--json"], NOT_FOUND, MISSING, miss("f")),
            (["g", *here, "--json"], NOT_FOUND, miss("g") + "; '{}/a/G.kx' differs in case (--match ignore-case finds it)"),
            (["f.kx", *here], NOT_FOUND, miss("f.kx") + "; '{}/a/f.kx' answers to the name without its extension"),
            (["deep", *here], NOT_FOUND, miss("deep") + "; '{}/a/+p/deep.kx' lies in another kind of folder (--scope all finds it)"),
            (["none", *here, "--explain", "--json"], NOT_FOUND),
            (here, FAILURE, "find needs a NAME or --queries"), (["", *here], FAILURE, "the name is empty"),
            (["f", *here, "--match", "loose"], FAILURE, "--match: 'loose' is none of exact, ignore-case, native"),
            (["f", *here, "--scope", "main,folders"], FAILURE, f"--scope: 'folders' is none of {SCOPES}"),
            (["f", *here, "--scope", ""], FAILURE, f"--scope: '' is none of all, {SCOPES}"),
            (["f", *here, "--ext", "kx"], FAILURE, "--ext: 'kx' has no dot; write '.kx'"),
            (["--queries", "gone", *here], FAILURE, "cannot read 'gone': No such file or directory"),
            (["--queries", "a", *here], FAILURE, "cannot read 'a': Is a directory"),
            (["--queries", "-", "--path-file", "-"], FAILURE, "the standard input cannot be both the list of folders and the questions"),
        ):
            self.check(["find"], arguments, code, *messages)
        for arguments, message in (
            (["f", "g", *here], "'g' is too much: one NAME at a time; every folder needs its own -p"),
            (["f", *here, "--queries", "-"], "NAME excludes --queries"), (["f", *here, "--json", "-0"], "--json excludes --print0"),
            (["f", *here, "--explain", "--all"], "--all excludes --explain"), (["f", *here, "--explain", "-0"], "--print0 excludes --explain"),
            ([*here, "--explain"], "--explain requires NAME"), (["f", *here, "--ext"], "--ext: 1 required .A,.B missing"),
        ):
            self.check(["find"], arguments, FAILURE, message, hint="find")
        for line, message in (
            ("f", "not JSON: incomplete JSON"), ("{}", 'not an object with a "name"'), ('{"name":1}', '"name" has to be a text'),
            ('{"name":"f","policy":3}', '"policy" has to be a number from 0 to 2'), ('{"name":"f","al":true}', 'unknown member "al"'),
            ('{"name":"f","scope":[6]}', 'a kind in "scope" has to be a number from 0 to 5'), ('{"name":"f","scope":0}', '"scope" has to be an array'),
            ('{"name":"f","extensions":["kx"]}', 'the extension "kx" has no dot; write ".kx"'),
            ('{"name":"f","all":1}', '"all" has to be true or false'),
        ):
            self.check(["find"], ["--queries", "-", *here], FAILURE, f"the standard input, line 2: {message}; this line and the rest were not answered",
                       stdin=b'{"name":"f"}\n' + line.encode() + b"\n")

    def test_looks_at_a_path(self):
        wrong_scope = "--scope: files of private and resources folders hide nothing; name main, package, method or udd"
        for command, arguments, code, *messages in (
            ("entry", ["a", "b"], FOUND), ("entry", ["a", "--json"], FOUND), ("entry", ["--path-file", "-"], FAILURE,
                                                                              "no folder is named in the list on the standard input"),
            ("entry", ["gone", "a", "--json"], NOT_FOUND, MISSING), ("entry", [""], FAILURE, "a folder's name is empty"),
            ("path", ["-p", "a", "-p", "b", "--json"], FOUND), ("path", ["-p", "a", "-p", "gone", "--json"], NOT_FOUND),
            ("path", ["-p", "a", "-p", "a"], NOT_FOUND),
            ("shadows", ["-p", "a", "--json"], FOUND), ("shadows", ["-p", "a", "-p", "gone"], FOUND, MISSING),
            ("shadows", ["-p", "a", "-p", "b", "--json"], NOT_FOUND), ("shadows", ["-p", "a", "--scope", "private"], FAILURE, wrong_scope),
            ("check", ["-p", "a", "--json"], FOUND), ("check", ["-p", "a", "-p", "b", "--json"], NOT_FOUND), ("check", ["-p", "gone"], NOT_FOUND),
            ("check", ["-p", "a", "--scope", "resources"], FAILURE, wrong_scope),
            ("check", ["-p", "a", "--html", "-"], FAILURE,
             "cannot write '-': the standard output is not for it; name a file, './-' for one that is called so"),
            ("check", ["-p", "a", "--html", "gone/x"], FAILURE, "cannot write 'gone/x': No such file or directory"),
            ("check", ["-p", "a", "--html", "/dev/full"], FAILURE, "cannot write '/dev/full': it is no ordinary file, which could be replaced"),
            ("watch", ["-p", "gone"], NOT_FOUND, MISSING),
        ):
            if "/dev/full" not in arguments or os.getuid() != 0:  # who may make devices may lose them, too
                self.check([command], arguments, code, *messages)
        for command, arguments, message in (
            ("entry", ["a", "--json", "-f"], "--files excludes --json"), ("path", ["a"], "'a' is too much; every folder needs its own -p"),
            ("entry", ["-dash"], "'-dash' is no option of entry; names that begin with '-' go behind '--', at the end"),
            ("shadows", ["a"], "'a' is too much; every folder needs its own -p"), ("check", ["-p", "a", "--html"], "--html: 1 required FILE missing"),
            ("check", ["a"], "'a' is too much; every folder needs its own -p"), ("check", ["-p", "a", "--all"], "'--all' is no option of check"),
            ("watch", ["-p", "a", "--quiet", "0"], "--quiet: '0' is no whole number from 1 to 60000"),
            ("watch", ["-p", "a", "--quiet", "1.5"], "--quiet: '1.5' is no whole number from 1 to 60000"),
            ("watch", ["-p", "a", "--interval", "soon"], "--interval: 'soon' is no number from 0.01 to 86400"),
            ("watch", ["-p", "a", "--trust-cache"], "'--trust-cache' is no option of watch"),
        ):
            self.check([command], arguments, FAILURE, message, hint=command)

    def test_cache(self):
        with open(self.path("cache"), "rb") as cache:
            whole = cache.read()
        with open(self.path("half"), "wb") as half:
            half.write(whole[:-3])
        foreign = "'nothing' is not a path cache file: The path cache file ends after byte 0, where"
        not_used = "the cache is not used, the folders are read instead: "
        for arguments, code, *messages in (
            (["write", ".", "-p", "a", "-o", "new"], FOUND), (["write", ".", "-p", "a", "-p", "gone", "-o", "new"], NOT_FOUND, MISSING),
            (["write", "b", "-p", "a", "-o", "new"], NOT_FOUND, "'{}/a' is left out: only main folders below '{}/b' are recorded"),
            (["write", "gone", "-p", "a", "-o", "new"], FAILURE, MISSING), (["write", "", "-p", "a", "-o", "new"], FAILURE, "a folder's name is empty"),
            (["write", ".", "-p", "a", "-o", "a"], FAILURE, "cannot write 'a': Is a directory"),
            (["write", ".", "-p", "a", "-o", ""], FAILURE, "cannot write '': the name is empty"),
            (["write", ".", "-p", "a", "-o", "gone/x"], FAILURE, "The path cache 'gone/x' could not be saved; nothing was changed there. Reason: No such file or directory."),
            (["check", "cache"], FOUND), (["show", "cache", "--json"], FOUND), (["check", "half", "--json"], NOT_FOUND),
            (["check", "gone"], FAILURE, "cannot read 'gone': No such file or directory"),
            (["show", "a", "--json"], FAILURE, "cannot read 'a': Is a directory"),
        ):
            self.check(["cache"], arguments, code, *messages)
        for arguments, message, hint in (
            ([], "a command is missing: write, check, show", "cache"), (["frob"], "'frob' is no command of cache", "cache"),
            (["write", "-p", "a", "-o", "new"], "ROOT is required", "cache write"), (["write", ".", "-p", "a"], "--output is required", "cache write"),
            (["check"], "FILE is required", "cache check"), (["show", "a", "b"], "'b' is too much", "cache show"),
        ):
            self.check(["cache"], arguments, FAILURE, message, hint=hint)
        for name, beginning in (("nothing", foreign), ("half", "'half': The path cache file ends after byte"),
                                ("/dev/zero", "'/dev/zero' is not a path cache file: ")):  # which has no end
            result = self.run_here("cache", "check", name)
            self.assertEqual((NOT_FOUND, True), (result.code, result.err.startswith(f"tolvexpath: {beginning}")), result.err)
        for name in ("gone", "nothing", "half"):
            used = self.run_here("find", "f", "-p", "a", "--cache", name, "--root", ".")
            self.assertEqual((FOUND, True, 1), (used.code, used.err.startswith(f'tolvexpath: {not_used}'), used.err.count(name)), used.err)

    def test_help_tells_the_exit_codes(self):
        for command in (["find"], ["path"], ["shadows"], ["check"], ["watch"], ["entry"], ["shell"], ["package"], ["cache"], ["cache", "write"],
                        ["cache", "check"], ["cache", "show"], []):
            text = self.run_here(*command, "--help").out.decode()
            self.assertIn("Exit status:", text, command)
            self.assertTrue(command[1:] or "xample" in text, command)


if __name__ == "__main__":
    unittest.main()
