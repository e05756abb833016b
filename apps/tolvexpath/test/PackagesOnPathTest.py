"""Installed packages on the path of the other commands: their places, what other processes do to them, what is told."""

import json
import os
import random
import shutil
import signal
import unittest

from program import FAILURE, FOUND, NOT_FOUND, PackageTest, Running, environment, run

QUIET = ("--quiet", "10")
SEED = int(os.environ.get("TOLVEXPATH_SEED", random.randrange(10**6)))


class PackagesOnPathTest(PackageTest):
    def make_code_package(self, folder, name, version="1.0.0", **changes):
        """A package with the files f.kx and NAME.kx in its root folder."""
        self.make_package(folder, name, version, **changes)
        self.make(f"{folder}/f.kx", f"{folder}/{name}.kx")
        return folder

    def install(self, name, *arguments, action="install", version="1.0.0", **changes):
        """Its root folder."""
        source = self.make_code_package(f"sources/{name}-{version}", name, version, **changes)
        done = self.package(action, source, *arguments, "--json")
        self.assertEqual(FOUND, done.code, done.err)
        return done.json["packages"][0]["root"]

    def remove(self, package):
        self.assertEqual(FOUND, self.package("remove", package).code)

    def ask(self, *arguments, code=FOUND, **options):
        result = self.run_here(*arguments, "--packages", "store", **options)
        self.assertEqual(code, result.code, result.err)
        return result

    def folders(self, *arguments, **options):
        return [entry["folder"] for entry in self.ask("path", "--json", *arguments, **options).json["folders"]]

    def plain(self, *names):
        return [os.fsdecode(self.path(name)) for name in names]

    def spoil(self, root):
        with open(f"{root}/package.json", "w", encoding="utf-8") as file:
            file.write('{\n"name": "x",\n}')


class StartTest(PackagesOnPathTest):
    def test_every_command_has_the_packages_in_their_places(self):
        self.make("a/f.kx", "a/a.kx", "b/f.kx")
        first = self.install("first", properties={"PathPosition": "begin"})
        last = self.install("last")
        self.install("needed", "--dependency")
        foremost = self.install("foremost", properties={"PathPosition": "begin"})
        placed = [foremost, first, *self.plain("a", "b"), last]
        named = ("-p", "a", "-p", "b")
        self.assertEqual(placed, self.folders(*named))
        self.assertEqual([foremost, first, last], self.folders())
        self.assertEqual([f"{folder}/f.kx".encode() for folder in placed], self.ask("find", "f", "--all", *named).lines)
        self.assertEqual([f"{last}/last.kx".encode()], self.ask("find", "last").lines)
        (shadow,) = self.ask("shadows", "--json", *named, code=NOT_FOUND).json
        self.assertEqual(f"{foremost}/f.kx", shadow["winner"])
        hidden = next(one for one in self.ask("check", "--json", *named, code=NOT_FOUND).json["problems"] if one["subject"] == "f")
        self.assertTrue(hidden["message"].startswith(f"'{foremost}/f.kx' hides '{first}/f.kx'"), hidden)
        shown = [line.split(b"  ")[0].decode() for line in self.ask("entry").lines if b"main folder" in line]
        self.assertEqual([foremost, first, last], shown)
        self.assertEqual(1, len(self.ask("entry", "a", "--json").json))
        shell = self.ask("shell", *named, stdin=b"show\n")
        self.assertEqual(placed, [line.split(b"  ")[-1].decode() for line in shell.lines if b"current" not in line])
        by_variable = self.run_here("path", "--json", *named, env=environment(TOLVEX_PACKAGES="store"))
        self.assertEqual(placed, [one["folder"] for one in by_variable.json["folders"]])
        for command in ("path", "shadows", "check", "entry", "watch"):
            self.assertEqual(FAILURE, self.run_here(command).code, command)

    def test_packages_installed_after_a_point(self):
        self.install("one")
        needed, front = self.install("needed", "--dependency"), self.install("front", properties={"PathPosition": "begin"})
        calls = ("[folders, newest] = GetPathForPackagesInstalledAfter(1) --json\n"
                 "[folders, newest] = GetPathForPackagesInstalledAfter('3') --json\n")
        first, second = self.ask("shell", stdin=calls.encode()).json_lines
        self.assertEqual([{"folders": [needed, front], "newest": "3"}, {"folders": [], "newest": "3"}], [first, second])

    def test_folders_of_packages_among_those_that_are_named(self):
        self.make("a/f.kx")
        tool = self.install("tool", "--in-place", properties={"PathPosition": "begin"})
        needed = self.install("needed", "--dependency")
        kept = self.install("kept")
        # A package stands where it is named, also one that is not on the path by itself.
        self.assertEqual([*self.plain("a"), tool, needed, kept], self.folders("-p", "a", "-p", tool, "-p", needed))
        behind = "must stand behind all other folders"
        for command in ("path", "check"):
            result = self.ask(command, "-p", needed, "-p", "a", code=NOT_FOUND)
            self.assertIn(behind, result.out.decode() + result.err)
        for command in ("path", "find", "check"):
            arguments = ["f"] if command == "find" else []
            result = self.ask(command, *arguments, "-p", f"{kept}/lib", "-p", "a", code=FOUND if arguments else NOT_FOUND)
            self.assertIn("belongs to the package 'kept@1.0.0'", result.out.decode() + result.err)
        self.assertEqual([tool, *self.plain("a"), kept], self.folders("-p", f"{kept}/lib", "-p", "a", code=NOT_FOUND))

    def test_a_broken_package_is_told_and_the_others_stay(self):
        self.make("a/f.kx")
        good, bad = self.install("good"), self.install("bad")
        self.spoil(bad)
        told = f"A package was left out, since it cannot be used: '{bad}/package.json', line 3: "
        for command, code, *arguments in (("path", NOT_FOUND), ("check", NOT_FOUND), ("shadows", NOT_FOUND), ("entry", FOUND),
                                          ("find", FOUND, "good"), ("shell", FOUND)):
            named = () if command in ("entry", "shell") else ("-p", "a")
            result = self.ask(command, *arguments, *named, code=code, stdin=b"find good\n")
            self.assertEqual(1, (result.out.decode() + result.err).count(told), command)
            self.assertNotIn(f"{bad}/bad.kx", result.out.decode(), command)
        self.assertEqual([*self.plain("a"), good], self.folders("-p", "a", code=NOT_FOUND))
        self.assertIn("not installed and was not put", self.ask("path", "-p", bad, code=NOT_FOUND).out.decode())
        with open(self.path("store/registry.json"), "a", encoding="utf-8") as file:
            file.write("}")
        for command in (["path"], ["find", "f"], ["watch"], ["shell"], ["entry"]):
            result = self.ask(*command, code=FAILURE)
            self.assertRegex(result.err, "registry.json', line [0-9]+: .*mend the file")

    def test_package_folders_that_changed_after_a_cache_was_written(self):
        self.make("a/f.kx")
        root = self.install("one")
        written = run("cache", "write", ".", "-p", "a", "-p", root, "-o", "cache.xml", cwd=self.root)
        self.assertEqual(FOUND, written.code, written.err)
        self.make(f"{root}/later.kx")
        cached = ("--cache", "cache.xml", "--root", ".")
        for command in (["find", "later"], ["find", "later", "-p", "a"]):
            self.assertEqual([f"{root}/later.kx".encode()], self.ask(*command, *cached).lines)
        counts = {one["folder"]: one["files"] for one in self.ask("path", "--json", "-p", "a", *cached).json["folders"]}
        self.assertEqual({**{folder: 1 for folder in self.plain("a")}, root: 4}, counts)


class OtherProcessTest(PackagesOnPathTest):
    """What another process does is seen by one that runs; each step waits for what the program says."""

    def start(self, *arguments):
        process = Running(*arguments, "--packages", "store", cwd=self.root)
        self.addCleanup(process.__exit__)
        return process

    def start_shell(self, *arguments):
        shell = self.start("shell", *arguments)

        def do(*commands):
            """What the commands write."""
            shell.process.stdin.write("\n".join([*commands, "find end", ""]).encode())
            lines = []
            while not (line := shell.read_line().decode()).endswith("/end.kx\n"):
                lines.append(line.rstrip("\n"))
            return lines
        return shell, do

    def shown(self, do):
        return [line.split("  ")[-1] for line in do("show")]

    def test_the_shell_follows_before_each_command(self):
        self.make("a/f.kx", "a/end.kx")
        shell, do = self.start_shell("-p", "a")
        a = self.plain("a")[0]
        do("policy current none")
        self.assertEqual([a], self.shown(do))
        last = self.install("last")
        self.assertEqual([f"{last}/last.kx"], do("find last"))
        first = self.install("first", properties={"PathPosition": "begin"})
        self.assertEqual([first, a, last], self.shown(do))
        self.install("needed", "--dependency")
        self.assertEqual([first, a, last], self.shown(do))
        # The same version anew keeps its place; another version is another package and goes where new ones do.
        again = self.install("first", action="update")
        self.assertNotEqual(first, again)
        self.assertEqual([again, a, last], self.shown(do))
        other = self.install("other")
        do()
        newer = self.install("last", action="update", version="2.0.0")
        self.assertEqual([again, a, other, newer], self.shown(do))
        self.remove("first")
        self.assertEqual([a, other, newer], self.shown(do))
        # Who takes a package off the path keeps it off, whatever comes later.
        do(f"remove {other}")
        second = self.install("last", version="3.0.0")
        self.assertEqual([a, newer, second], self.shown(do))
        code, _, errors = shell.end(signal.SIGTERM)
        self.assertRegex(errors.decode(), r"several versions of one package: 'last@2.0.0' is used, 'last@3.0.0' is hidden")
        problems = self.ask("check", "--json", code=NOT_FOUND).json["problems"]
        self.assertIn(("several-versions", "last@3.0.0"), [(problem["kind"], problem["subject"]) for problem in problems])

    def test_what_a_change_set_holds(self):
        self.make("end.kx")
        self.install("one")
        shell, do = self.start_shell()
        do("events on")
        told = "path change, {}: {}; {} added, {} removed, 0 reordered, 0 refreshed"

        def stages(*figures):
            return [told.format(stage, *figures) for stage in ("before", "changed", "afterwards")]

        self.install("two")
        self.assertEqual(stages("1 folder, then 2", 1, 0), do())
        self.assertEqual([], do())
        self.assertEqual(FOUND, self.package("rescan").code)
        self.assertEqual([], do())
        self.remove("one")
        self.install("three")
        self.assertEqual(stages("2 folders, then 2", 1, 1), do())
        with open(self.path("store/note.txt"), "w", encoding="utf-8"):
            pass
        self.assertEqual([], do())
        del shell

    def test_what_the_path_refused_comes_with_a_later_refresh(self):
        self.make("a/f.kx", "a/end.kx")
        old = self.install("old")
        shell, do = self.start_shell("-p", "a")
        a = self.plain("a")[0]
        do("policy current none", "policy mutability no-adding-or-removing")
        new = self.install("new")
        self.remove("old")
        self.assertEqual([a, old], self.shown(do))
        do("refresh")
        self.assertEqual([a, old], self.shown(do))
        do("policy mutability all", "refresh")
        self.assertEqual([a, new], self.shown(do))
        _, _, errors = shell.end(signal.SIGTERM)
        self.assertEqual({"Folders cannot be added to the path or removed from it here. Only their order can be changed."},
                         {line.split(": ", 2)[2] for line in errors.decode().splitlines()})

    def test_a_broken_package_is_told_once_and_comes_back(self):
        self.make("end.kx")
        good = self.install("good")
        tool = self.install("tool", "--in-place")
        shell, do = self.start_shell()
        do("policy current none", "add .")
        here = os.fsdecode(self.root)
        self.assertEqual([here, good, tool], self.shown(do))
        self.spoil(tool)
        do("refresh", "refresh")
        self.assertEqual([here, good], self.shown(do))
        self.make_package("sources/tool-1.0.0", "tool")
        do("refresh")
        self.assertEqual([here, good, tool], self.shown(do))
        shutil.copy(self.path("store/registry.json"), self.path("whole"))
        with open(self.path("store/broken"), "w", encoding="utf-8") as file:
            file.write("{")
        os.replace(self.path("store/broken"), self.path("store/registry.json"))
        self.assertEqual([here, good, tool], self.shown(do))
        self.make("new.kx")
        self.assertEqual([f"{here}/new.kx"], do("refresh", "find new"))
        os.replace(self.path("whole"), self.path("store/registry.json"))
        self.remove("good")
        self.assertEqual([here, tool], self.shown(do))
        _, _, errors = shell.end(signal.SIGTERM)
        self.assertEqual(2, len(errors.splitlines()), errors.decode())
        broken, unread = errors.decode().splitlines()
        self.assertRegex(broken, r"line 6: A package was left out, since it cannot be used: '.*/package.json', line 3: ")
        self.assertRegex(unread, r"installed packages could not be read; those on the path stay as they were: '.*/registry.json', line 1: ")

    def test_a_path_that_may_not_change_says_so(self):
        self.make("end.kx")
        shell, do = self.start_shell()
        do("policy mutability no-adding-or-removing")
        self.install("one")
        self.assertEqual([os.fsdecode(self.root) + "  (current folder)"], [line.split("  ", 2)[-1].strip() for line in do("show")])
        _, _, errors = shell.end(signal.SIGTERM)
        self.assertIn("Folders cannot be added to the path", errors.decode())

    def test_watch_tells_what_packages_do_to_the_names(self):
        self.make("a/f.kx")
        watch = self.start("watch", "--json", "-p", "a", *QUIET)
        self.assertEqual({"event": "ready"}, watch.read_json())
        a = self.plain("a")[0]

        def told():
            change = watch.read_json()
            return [change.get("put", []), change.get("taken", []),
                    *([[entry["name"], *(entry[at] for at in ("before", "after") if at in entry)] for entry in change[kind]]
                      for kind in ("added", "removed", "changed"))]

        last = self.install("last")  # makes the store's folder, too
        self.assertEqual([[last], [], [["last", f"{last}/last.kx"]], [], []], told())
        first = self.install("first", properties={"PathPosition": "begin"})
        self.assertEqual([[first], [], [["first", f"{first}/first.kx"]], [], [["f", f"{a}/f.kx", f"{first}/f.kx"]]], told())
        newer = self.install("first", action="update", version="2.0.0", properties={"PathPosition": "begin"})
        self.assertEqual([[newer], [first], [], [], [["f", f"{first}/f.kx", f"{newer}/f.kx"],
                                                     ["first", f"{first}/first.kx", f"{newer}/first.kx"]]], told())
        self.make(f"{newer}/new.kx")
        self.assertEqual([[], [], [["new", f"{newer}/new.kx"]], [], []], told())
        self.remove("first")
        self.assertEqual([[], [newer], [], [["first", f"{newer}/first.kx"], ["new", f"{newer}/new.kx"]],
                          [["f", f"{newer}/f.kx", f"{a}/f.kx"]]], told())
        self.assertEqual((FOUND, b"", b""), watch.end(signal.SIGTERM))

    def test_watch_tells_people_of_packages_and_of_folders_that_moved(self):
        self.make("a/f.kx")
        self.make_code_package("sources/tool-1.0.0", "tool")  # as it will be, so that only the installation is news
        a, tool = self.plain("a", "sources/tool-1.0.0")
        watch = self.start("watch", "-p", tool, "-p", "a", *QUIET)
        self.assertEqual("watching 2 folders\n", watch.read_line().decode())
        self.assertEqual(tool, self.install("tool", "--in-place"))
        lines = [watch.read_line().decode()]
        while not lines[-1].startswith("  ~ f"):
            lines.append(watch.read_line().decode())
        self.assertIn(f"  ~ f  {a}/f.kx, was {tool}/f.kx\n", lines)
        self.assertTrue(any(line.endswith("  (moved on the path)\n") for line in lines), lines)
        other = self.install("other")
        self.assertEqual([f"{other}  (put on the path)\n", f"  + other  {other}/other.kx\n"],
                         [watch.read_line().decode() for _ in range(2)])
        self.remove("other")
        self.assertEqual([f"{other}  (taken off the path)\n", f"  - other  was {other}/other.kx\n"],
                         [watch.read_line().decode() for _ in range(2)])

    def test_two_processes_that_run_and_two_that_install(self):
        """A model of the store beside random changes of it; after each, two shells and a new process say the same."""
        chance = random.Random(SEED)
        self.make("end.kx")
        do = [self.start_shell()[1] for _ in range(2)]
        for shell in do:
            shell("policy current none", "add .")
        installed, wanted = {}, []
        for step in range(25):
            name = chance.choice("abcd")
            if name not in installed:
                front = chance.random() < 0.3
                installed[name] = self.install(name, properties={"PathPosition": "begin" if front else "end"})
                wanted = [installed[name], *wanted] if front else [*wanted, installed[name]]
            elif chance.random() < 0.5:
                root = self.install(name, action="update", properties={"PathPosition": "end"})
                wanted = [root if one == installed[name] else one for one in wanted]
                installed[name] = root
            else:
                self.remove(name)
                wanted.remove(installed.pop(name))
            for shell in do[:1 + step % 2]:  # the second one has several changes to take over at once
                self.assertEqual(sorted(wanted), sorted(set(self.shown(shell)) - {os.fsdecode(self.root)}), f"seed {SEED}")
            self.assertEqual(wanted, [one for one in self.shown(do[0]) if one != os.fsdecode(self.root)], f"seed {SEED}")
        self.assertEqual(sorted(wanted), sorted(self.folders()), f"seed {SEED}")


if __name__ == "__main__":
    unittest.main()
