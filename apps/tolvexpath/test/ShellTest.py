"""The shell's commands by scripts: each with what it shows, what it tells and whether it failed."""

import json
import os
import unittest

from program import FAILURE, FOUND, NOT_FOUND, FolderTest, Running, environment, run


FUNCTIONS = ("FeatureRemotePathPolicy", "FeatureDirChangeHandleWarn", "HiddenCanonicalizepath", "FeatureCachePath",
             "FeatureDumpMainSearchPath", "GetPathForPackagesInstalledAfter")


class ShellTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make("a/f.kx", "b/f.kx", "b/g.kx", "c c/h.kx", "here/k.kx", "here/+p/x.kx", "it's/i.kx")

    def run_script(self, *lines, arguments=(), **options):
        script = "".join(line + "\n" for line in lines).encode("utf-8", "surrogateescape")
        result = run("shell", *arguments, stdin=script, cwd=self.path("here"), **options)
        text = result.out.decode("utf-8", "surrogateescape").replace(os.fsdecode(self.root) + "/", "")
        return result.code, text.splitlines(), result.err.replace(os.fsdecode(self.root) + "/", "").splitlines()

    def assert_shown(self, lines, expected, **options):
        self.assertEqual((FOUND, expected, []), self.run_script(*lines, **options), lines)

    def assert_fails(self, line, message, before=(), shown=()):
        """The line fails with the message, and the next one is done."""
        place = f"tolvexpath: the standard input, line {len(before) + 1}: "
        code, out, err = self.run_script(*before, line, "events on", "set")
        changes = [text for text in out if not text.startswith("path change")]
        self.assertEqual((NOT_FOUND, list(shown)), (code, changes), line)
        self.assertEqual(1, len(err), err)
        self.assertEqual(place + message, err[0])

    def paths(self, *folders, current="here"):
        shown = [f"   -  {current}  (current folder)"] if current else []
        return shown + [f"{number:4}  {folder}" for number, folder in enumerate(folders, 1)]

    def test_each_change_of_the_path(self):
        changes = [  # lines, the path then
            (["set ../a ../b"], ["a", "b"]),
            (["set ../a ../b ../a/. '../c c'"], ["a", "b", "c c"]),
            (["set ../a", "set"], []),
            (["add ../a ../b"], ["a", "b"]),
            (["add ../a", "add ../b"], ["b", "a"]),
            (["add --end ../a", "add ../b --end"], ["a", "b"]),
            (["set ../a ../b", "add ../b"], ["b", "a"]),
            (["set ../a ../b", "add --end ../a"], ["b", "a"]),
            (["set ../a ../b", "remove ../a"], ["b"]),
            (["set ../a ../b ../it\\'s", "remove -- \"../it's\" ../a"], ["b"]),
            (["set ../a ../b ../c\\ c", "move ../c\\ c --begin"], ["c c", "a", "b"]),
            (["set ../a ../b ../c\\ c", "move --end ../a"], ["b", "c c", "a"]),
            (["set ../a ../b ../c\\ c", "move ../a --to 2", "move ../b --to 1 # stays"], ["b", "a", "c c"]),
            (["set ../a", "memento save 'one folder'", "add ../b", "memento restore one\\ folder"], ["a"]),
            (["set ../a", "policy mutability no-adding-or-removing", "set ../a"], ["a"]),
            (["set ../a ../b", "policy mutability no-adding-or-removing", "move ../b --begin", "add ../a"], ["a", "b"]),
            (["", "  # nothing", "set ../a", "\t set ../b \r"], ["b"]),
        ]
        for lines, expected in changes:
            self.assert_shown([*lines, "show"], self.paths(*expected))
        self.assert_shown(["show"], self.paths("b", "a"), arguments=["-p", "../b", "--path", "../a"])
        for variable, folders in (("../b:../a", ["b", "a"]), (":", [])):
            self.assert_shown(["show"], self.paths(*folders), env=environment(TOLVEXPATH=variable))

    def test_the_current_folder(self):
        self.assert_shown(["find k", "cd ..", "show", "cd here", "find k"],
                          ["here/k.kx", f"   -  {os.fsdecode(self.root)}  (current folder)", "here/k.kx"])
        self.assert_shown(["policy current none", "show", "set ../a", "cd ../b", "find f", "policy current track", "find f"],
                          ["a/f.kx", "b/f.kx"])
        self.assert_shown(["set . ../a", "show"], self.paths("here", "a", current=None))
        self.assert_shown(["policy", "policy current none", "policy mutability no-adding-or-removing", "policy"],
                          ["mutability all", "current track", "mutability no-adding-or-removing", "current none"])

    def test_what_is_found(self):
        path = ["-p", "../a", "-p", "../b"]
        self.assert_shown(["find f", "find --all f", "find +p/x"], ["a/f.kx", "a/f.kx", "b/f.kx", "here/+p/x.kx"],
                          arguments=path)
        self.assert_shown(["memento list", "memento save y", "memento save x", "set", "memento save y", "memento list"],
                          ["x  2 folders", "y  0 folders"], arguments=path)
        self.assert_shown(["help quit", "quit", "find none"], ["quit", "End the shell."])
        shown = self.run_script("help")[1]
        for command in "set add remove move cd refresh find show policy memento events help quit".split():
            self.assertEqual(1, sum(line.startswith(command + " ") for line in shown), command)
            self.assertTrue(self.run_script("help " + command)[1][0].startswith(command))

    def test_changes_on_the_disk_are_seen_by_a_refresh(self):
        with Running("shell", "-p", "../a", cwd=self.path("here")) as program:
            def do(lines):
                program.process.stdin.write(lines.encode() + b"\n")

            for refresh in ("", " current", " all"):
                name = "new" + refresh.strip()
                do("find f")
                self.assertEqual(self.path("a/f.kx") + b"\n", program.read_line())
                self.make(f"a/{name}.kx", f"here/{name}_here.kx")
                do(f"find {name}\nrefresh{refresh}\nfind {name}\nfind {name}_here")
                self.assertEqual([self.path(f"a/{name}.kx") + b"\n", self.path(f"here/{name}_here.kx") + b"\n"],
                                 [program.read_line(), program.read_line()])
            program.process.stdin.close()
            self.assertEqual(NOT_FOUND, program.process.wait(60))

    def test_changes_are_told_in_three_stages(self):
        told = "path change, {}: {}; {} added, {} removed, {} reordered, {} refreshed{}"

        def stages(*figures):
            return [told.format(stage, *figures) for stage in ("before", "changed", "afterwards")]

        self.assert_shown(["events on", "set ../a ../b", "move ../b --begin", "events off", "set", "events on", "cd ..", "add a"],
                          [*stages("0 folders, then 2", 2, 0, 0, 0, ""), *stages("2 folders, then 2", 0, 0, 1, 0, ""),
                           *stages("0 folders, then 0", 0, 0, 0, 0, "; another current folder"),
                           *stages("0 folders, then 1", 1, 0, 0, 0, "")])

    def test_refusals_by_the_failure_handler_and_by_single_folders(self):
        set_two = ("set ../a ../b", "policy mutability no-adding-or-removing")
        not_supported = "Folders cannot be added to the path or removed from it here. Only their order can be changed."
        for line in ("set ../a", "add ../here", "remove ../a"):
            self.assert_refused([*set_two, line], not_supported, ["a", "b"])
        self.assert_refused(["memento save m", *set_two, "memento restore m"], not_supported, ["a", "b"])
        misspelt = "The folder '{}' does not exist or is not a folder. Check how the name is spelled."
        self.assert_refused(["set ../a", "add ../bb ../b"], misspelt.format("bb"), ["b", "a"])
        self.assert_refused(["set ../aa ../b"], misspelt.format("aa"), ["b"])
        self.assert_refused(["set ../a ../a/f.kx"], misspelt.format("a/f.kx"), ["a"])
        self.assert_refused(["set ../a", "cd none"], misspelt.format("here/none"), ["a"])
        package = "The folder 'here/+p' is a package folder and was not put on the path. Put the folder that holds it on the path."
        self.assert_refused(["set ../a", "add +p ../b"], package, ["b", "a"])

    def test_a_list_in_which_nothing_may_stand_on_the_path_leaves_it_as_it_was(self):
        for folders, refusals in (("../aa", 1), ("+p", 1), ("../aa +p ../a/f.kx", 3)):
            code, out, err = self.run_script("set ../b ../a", f"set {folders}", "show")
            self.assertEqual((NOT_FOUND, self.paths("b", "a"), refusals + 1), (code, out, len(err)), folders)
            self.assertTrue(err[-1].endswith("line 2: set: none of these folders can be put on the path; it stays as it was"), err)
            self.assertEqual(refusals, len(self.run_script(f"set {folders}")[2]), "nothing was there to stay")

    def assert_refused(self, lines, message, path):
        expected = (NOT_FOUND, self.paths(*path), [f"tolvexpath: the standard input, line {len(lines)}: {message}"])
        self.assertEqual(expected, self.run_script(*lines, "show"), lines)

    def test_wrong_lines(self):
        for line, message in (
            ("sett", "'sett' is no command; 'help' lists what there is"),
            ("set 'a", "the line ends inside a quoted word"),
            ('set "a\\"', "the line ends inside a quoted word"),
            ("set a\\", "the line ends inside a quoted word"),
            ("set ''", "set: a folder's name is empty"),
            ("add", "add: a folder is missing"),
            ("add --front ../a", "add: '--front' is no option of this command"),
            ("remove ../a", "remove: 'a' is not on the path"),
            ("move ../a", "move: one of --begin, --end and --to has to say where the folder goes"),
            ("move ../a --begin --end", "move: one of --begin, --end and --to has to say where the folder goes"),
            ("move --begin", "move: a folder is missing"),
            ("move ../a --begin", "move: 'a' is not on the path"),
            ("move ../a --to", "move: --to needs a value"),
            ("move ../a --to 1", "move: --to: '1' is no number from 1 to 0"),
            ("cd", "cd: a folder is missing"),
            ("cd .. ..", "cd: '..' is too much"),
            ("refresh everything", "refresh: 'everything' is neither 'current' nor 'all'"),
            ("find", "find: a name is missing"),
            ("find none", "nothing on the path answers to 'none'"),
            ("find K", "nothing on the path answers to 'K'; 'here/k.kx' differs in case (--match ignore-case finds it)"),
            ("find none\\x1b", "nothing on the path answers to 'nonex1b'"),
            ("find 'none\x1b'", "nothing on the path answers to 'none\\x1b'"),
            ("show all", "show: 'all' is too much"),
            ("policy speed", "policy: the policy's value is missing"),
            ("policy speed high", "policy: 'speed' is neither 'mutability' nor 'current'"),
            ("policy current all", "policy: 'all' is neither 'track' nor 'none'"),
            ("policy mutability none", "policy: 'none' is neither 'all' nor 'no-adding-or-removing'"),
            ("memento", "memento: 'save', 'restore' or 'list' is missing"),
            ("memento save", "memento: a name is missing"),
            ("memento restore x", "memento: nothing was saved as 'x'"),
            ("memento drop x", "memento: 'drop' is none of 'save', 'restore' and 'list'"),
            ("events maybe", "events: 'maybe' is neither 'on' nor 'off'"),
            ("help sett", "help: 'sett' is no command"),
            ("quit now", "quit: 'now' is too much"),
            ("Feature('status')", f"there is no built-in function 'Feature', only {', '.join(FUNCTIONS)}"),
            ("featureremotepathpolicy('status')",
             f"there is no built-in function 'featureremotepathpolicy', only {', '.join(FUNCTIONS)}"),
            ("FeatureCachePath", "'FeatureCachePath' is a built-in function; write FeatureCachePath(...)"),
            ("FeatureCachePath(status)",
             "'status' is no input: texts need quotes, else it has to be a number, true or false"),
        ):
            self.assert_fails(line, message)

    def test_built_in_functions_answer(self):
        here = "here"
        for lines, expected in (
            (["FeatureRemotePathPolicy('status')"] * 2, ["TimecheckDir"] * 2),
            (["FeatureRemotePathPolicy('none')", "FeatureRemotePathPolicy(\"RELOAD\") --json", "FeatureRemotePathPolicy('Status')"],
             ["TimecheckDir", '"None"', "Reload"]),
            (["[before] = FeatureDirChangeHandleWarn('never')", "[before] = FeatureDirChangeHandleWarn('status') --json"],
             ["before:", "  once", '{"before":"never"}']),
            (["cd \"../it's\"", "HiddenCanonicalizepath('../it''s/i.kx')", "HiddenCanonicalizepath(\"../b/./g.kx\")"],
             ["it's/i.kx", "b/g.kx"]),
        ):
            self.assert_shown(lines, expected)
        _, shown, _ = self.run_script("set ../a", "FeatureDumpMainSearchPath()", "FeatureDumpMainSearchPath() --json")
        self.assertIn("search path: 2 main folders, 1 set by the user", shown)
        self.assertEqual(shown[:-1], json.loads(shown[-1]).splitlines())
        self.assertIn(f"working folder: {here}", shown)

    def test_the_path_cache_of_the_installation(self):
        variables = environment(XDG_CACHE_HOME=os.fsdecode(self.path("caches")), TOLVEX_ROOT=os.fsdecode(self.path("a")))
        code, shown, errors = self.run_script(
            "set ../a", "FeatureCachePath('write', 'cache.xml')", "FeatureCachePath('load', 'cache.xml')",
            "FeatureCachePath('status')", "FeatureCachePath('drop')", "FeatureCachePath('load', 'none.xml')", env=variables)
        self.assertEqual((NOT_FOUND, ["here/cache.xml", "here/cache.xml"], "here/cache.xml"), (code, shown[:2], shown[-1]))
        self.assertIn("loaded: here/cache.xml", shown)
        self.assertIn("line 6: FeatureCachePath: TOLVEX:CachePath:FailedToLoad: The path cache 'here/none.xml'", errors[0])

    def test_an_error_of_a_built_in_function_changes_nothing(self):
        settings = ["FeatureRemotePathPolicy('status')", "FeatureDirChangeHandleWarn('status')", "FeatureCachePath('status')", "show"]
        before = ["FeatureRemotePathPolicy('none')", "FeatureDirChangeHandleWarn('always')", "set ../a ../b"]
        first = self.run_script(*before, *settings)[1]
        for call, identifier in (
            ("FeatureRemotePathPolicy('reloa')", "TOLVEX:RemotePolicy:UnknownPolicy"),
            ("FeatureRemotePathPolicy(0)", "TOLVEX:RemotePolicy:UnknownPolicy"),
            ("FeatureRemotePathPolicy('reload', 'none')", "TOLVEX:arguments:maxrhs"),
            ("FeatureRemotePathPolicy()", "TOLVEX:arguments:minrhs"),
            ("[a, b] = FeatureRemotePathPolicy('reload')", "TOLVEX:arguments:maxlhs"),
            ("FeatureDirChangeHandleWarn()", "TOLVEX:ChangeHandleWarning:notEnoughInputs"),
            ("FeatureDirChangeHandleWarn(true)", "TOLVEX:ChangeHandleWarning:InvalidOption"),
            ("HiddenCanonicalizepath(1)", "TOLVEX:string:MustBeStringScalarOrCharacterVector"),
            ("HiddenCanonicalizepath('')", "TOLVEX:tpath:invalidLocation"),
            ("FeatureCachePath('read')", "TOLVEX:CachePath:InvalidOption"),
            ("FeatureCachePath('load', 1)", "TOLVEX:CachePath:InvalidFile"),
            ("GetPathForPackagesInstalledAfter(0)", "TOLVEX:tpath:TPMFeatureOff"),
        ):
            code, shown, errors = self.run_script(*before, call, *settings)
            self.assertEqual((NOT_FOUND, first), (code, shown), call)
            name = call.split("(")[0].split(" ")[-1]
            self.assertTrue(errors[0].startswith(f"tolvexpath: the standard input, line 4: {name}: {identifier}: "), errors)
        self.assertEqual(NOT_FOUND, self.run_script("FeatureCachePath('x')", "show", arguments=["--stop"])[0])

    def test_help_about_built_in_functions(self):
        code, shown, _ = self.run_script("help", *(f"help {name}" for name in FUNCTIONS))
        self.assertEqual(FOUND, code)
        for name in FUNCTIONS:
            self.assertEqual(2, sum(line.startswith(name) for line in shown), name)

    def test_a_failure_ends_a_script_when_that_is_wanted(self):
        lines = ["find none", "find k"]
        self.assertEqual((NOT_FOUND, ["here/k.kx"]), self.run_script(*lines)[:2])
        self.assertEqual((NOT_FOUND, []), self.run_script(*lines, arguments=["--stop"])[:2])
        self.assertEqual((NOT_FOUND, []), self.run_script("find k", arguments=["--stop", "-p", "none"])[:2])
        self.assertEqual((NOT_FOUND, ["here/k.kx"]), self.run_script("find k", arguments=["-p", "none"])[:2])
        self.assertEqual((FOUND, [], []), self.run_script(arguments=["--stop"]))
        code, _, errors = self.run_script("show", arguments=["--path-file", "-"])
        self.assertEqual(FAILURE, code)
        self.assertIn("cannot be both", errors[0])

    def test_scripts_leave_no_history(self):
        self.run_here("shell", stdin=b"show\n", env=environment(XDG_STATE_HOME=os.fsdecode(self.path("state"))))
        self.assertFalse(os.path.exists(self.path("state")))


if __name__ == "__main__":
    unittest.main()
