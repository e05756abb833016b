"""The package command: what it installs, what it refuses, and what is left when it is killed or has company."""

import json
import os
import random
import shutil
import signal
import subprocess
import threading
import unittest
import uuid

import program
from program import FAILURE, FOUND, NOT_FOUND, PROGRAM, PackageTest, can_trace, environment, run

SEED = int(os.environ.get("TOLVEXPATH_SEED", random.randrange(10**6)))


class PackageCommandTest(PackageTest):
    def names(self):
        listed = self.package("list", "--json")
        self.assertEqual(FOUND, listed.code, listed.err)
        return [f"{one['name']}@{one['version']}" for one in listed.json["packages"]]

    def assert_whole(self, files=1):
        """Every listed package holds all its files, and nothing else lies in the store but what the next change removes."""
        for one in self.package("list", "--json").json["packages"]:
            for number in range(files):
                with open(f"{one['root']}/lib/f{number}.kx", encoding="utf-8") as file:
                    self.assertEqual(f"{one['name']}@{one['version']}", file.read())

    def assert_tidy(self):
        listed = self.package("list", "--json").json["packages"]
        self.assertEqual(sorted([os.path.basename(one["root"]) for one in listed if not one["inPlace"]] +
                                ["registry.json", "registry.lock"]), sorted(map(os.fsdecode, os.listdir(self.path("store")))))

    def test_a_package_comes_changes_and_goes(self):
        self.make_package("one", "größe", properties={"PathPosition": "begin"})
        self.make_package("two", "größe", "2.0.0-rc.1")
        self.make_package("tool", "tool")
        installed = self.package("install", "one", "--json")
        self.assertEqual(FOUND, installed.code, installed.err)
        (one,) = installed.json["packages"]
        self.assertEqual(("größe", "1.0.0", [".", "lib"], False, True, None),
                         (one["name"], one["version"], one["folders"], one["inPlace"], one["askedFor"], one["problem"]))
        self.assertEqual(os.fsdecode(self.path("store")), os.path.dirname(one["root"]))
        (tool,) = self.package("install", "tool", "--in-place", "--dependency", "--json").json["packages"]
        self.assertEqual((os.fsdecode(self.path("tool")), True, False), (tool["root"], tool["inPlace"], tool["askedFor"]))
        self.assertLess(one["order"], tool["order"])
        (updated,) = self.package("update", "two", "--json").json["packages"]
        self.assertEqual((one["order"], "2.0.0-rc.1"), (updated["order"], updated["version"]))
        self.assertFalse(os.path.exists(one["root"]))
        shown = self.package("list").out.decode("utf-8").splitlines()
        self.assertEqual([f"größe@2.0.0-rc.1  {updated['root']}", f"tool@1.0.0  {tool['root']}, in place, not asked for"], shown)
        self.assertEqual(FOUND, self.package("remove", "größe").code)
        self.assertEqual(FOUND, self.package("remove", "tool@1.0.0").code)
        self.assertTrue(os.path.exists(tool["root"]))
        self.assertEqual([], self.names())
        self.assert_tidy()

    def test_refusals_name_the_thing_and_change_nothing(self):
        self.make_package("one", "one")
        self.make_package("two", "one", "2.0.0")
        self.make_package("three", "one", "3.0.0")
        self.make_package("other", "other")
        self.make_package("bad", "bad", version="1")
        self.make_package("up", "up", folders=[".", "../one"])
        self.make("plain/x.kx")
        for folder in ("one", "two"):
            self.assertEqual(FOUND, self.package("install", folder).code)
        before = self.package("list", "--json").out
        for arguments, code, *texts in [
                (["install", "one"], FAILURE, "one@1.0.0", "installed already"),
                (["install", "bad"], FAILURE, "bad/package.json', line 3", "no version"),
                (["install", "up"], FAILURE, "up/package.json', line 7", "inside the package"),
                (["install", "plain"], FAILURE, "plain/package.json", "missing"),
                (["install", "missing"], FAILURE, "missing", "no folder"),
                (["install", "."], FAILURE, "package.json", "missing"),
                (["update", "three"], FAILURE, "several versions"),
                (["update", "three", "--replace", "x"], FAILURE, "'x' is no version"),
                (["update", "three", "--replace", "9.0.0"], FAILURE, "no version of 'one'"),
                (["update", "two", "--replace", "1.0.0"], FAILURE, "one@2.0.0", "installed already"),
                (["update", "other"], FAILURE, "other", "install it"),
                (["remove", "one"], FAILURE, "'one@1.0.0' or 'one@2.0.0'"),
                (["remove", "one@3.0.0"], NOT_FOUND, "'one@3.0.0' is not installed", "package list"),
                (["remove", "one@"], FAILURE, "no version"),
                ([], FAILURE), (["install"], FAILURE), (["list", "one"], FAILURE)]:
            with self.subTest(arguments):
                result = self.package(*arguments) if arguments else self.run_here("package")
                self.assertEqual((code, b""), (result.code, result.out))
                for text in texts:
                    self.assertIn(text, result.err)
        self.assertEqual(before, self.package("list", "--json").out)
        self.assert_tidy()
        with open(self.path("store/registry.json"), "r+b") as registry:
            registry.truncate(os.path.getsize(self.path("store/registry.json")) - 3)
        for arguments in (["list"], ["install", "other"], ["remove", "one@1.0.0"]):
            result = self.package(*arguments)
            self.assertEqual(FAILURE, result.code)
            self.assertRegex(result.err, "store/registry.json', line [0-9]+: .*mend the file")

    def test_what_others_spoil_or_change_is_told_and_the_rest_is_usable(self):
        for name in ("one", "two", "three"):
            self.assertEqual(FOUND, self.package("install", self.make_package(name, name), "--in-place").code)
        self.make_package("one", "one", "1.1.0")
        with open(self.path("two/package.json"), "a", encoding="utf-8") as file:
            file.write("\n}")
        for action, changed in (("list", True), ("rescan", True), ("rescan", False)):
            result = self.package(action, "--json")
            one, two, three = result.json["packages"]
            # The first rescan records the change before it lists.
            self.assertEqual(("1.1.0", changed and action == "list"), (one["version"], one["changed"]))
            self.assertEqual(10, two["problem"]["line"])
            self.assertIn("two/package.json', line 10", result.err)
            self.assertEqual((NOT_FOUND, None, False), (result.code, three["problem"], three["changed"]))
        self.assertEqual(FOUND, self.package("remove", "two").code)
        self.assertEqual(["one@1.1.0", "three@1.0.0"], self.names())

    def test_where_packages_are_installed(self):
        self.make_package("one", "one")
        home = {"HOME": self.path("home"), "XDG_DATA_HOME": None, "TOLVEX_PACKAGES": None}
        for changes, place in [({}, "home/.local/share/tolvex/packages"), ({"XDG_DATA_HOME": self.path("data")}, "data/tolvex/packages"),
                               ({"XDG_DATA_HOME": self.path("data"), "TOLVEX_PACKAGES": "here"}, "here")]:
            result = self.run_here("package", "install", "one", "--json", env=program.environment(**{**home, **changes}))
            self.assertEqual(FOUND, result.code, result.err)
            self.assertEqual(os.fsdecode(self.path(place)), result.json["folder"])
        nowhere = self.run_here("package", "list", env=program.environment(**{**home, "HOME": None}))
        self.assertEqual(FAILURE, nowhere.code)
        self.assertIn("--packages", nowhere.err)
        self.assertEqual([], self.package("list", "--json").json["packages"])
        self.assertFalse(os.path.exists(self.path("store")))

    def test_two_at_once_lose_nothing(self):
        count = 50
        failures = []

        def install(side):
            for number in range(count):
                done = self.package("install", self.make_package(f"{side}{number}", f"{side}{number}"))
                if done.code != FOUND:
                    failures.append(done.err)

        sides = [threading.Thread(target=install, args=(side,)) for side in "ab"]
        for side in sides:
            side.start()
        for side in sides:
            side.join()
        self.assertEqual([], failures)
        names = self.names()
        for side in "ab":  # each side's own order is kept
            self.assertEqual([f"{side}{number}@1.0.0" for number in range(count)], [name for name in names if name[0] == side])
        self.assertEqual(2 * count, len({one["order"] for one in self.package("list", "--json").json["packages"]}))
        self.assert_whole()
        self.assert_tidy()

    def test_killed_at_any_moment_each_package_is_whole(self):
        files = 20
        for name in "abc":
            for version in "12":
                self.make_package(name + version, name, version + ".0.0", files)
        choice = random.Random(SEED)
        kills = 0
        whole = 0  # how long a change takes, in turns of the loop below: moments are counted in turns, not in seconds
        for number in range(120):
            name = choice.choice("abc")
            action = choice.choice([["install", name + choice.choice("12")], ["update", name + choice.choice("12")], ["remove", name]])
            end = choice.randrange(whole) if whole and choice.randrange(4) else None
            changer = subprocess.Popen([program.PROGRAM, "package", *action, "--packages", "store"], cwd=self.root,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            turns = 0
            while changer.poll() is None and turns != end:
                turns += 1
            changer.send_signal(signal.SIGKILL)
            ended = changer.wait()
            kills += ended == -signal.SIGKILL
            if ended == FOUND:
                whole = (whole + turns) // 2 if whole else turns
            with self.subTest(action=action, number=number, seed=SEED):
                self.names()
                self.assert_whole(files)
        self.assertGreater(kills, 10)
        self.make_package("last", "last")
        self.assertEqual(FOUND, self.package("install", "last").code)
        self.assert_tidy()

    def test_help(self):
        text = run("package", "--help").out.decode("utf-8")
        self.assertIn("Examples:", text)
        self.assertIn("Exit status:", text)


class OddPlacesTest(PackageTest):
    def test_what_is_no_store_and_no_manifest_is_named(self):
        self.assertEqual((FOUND, "tolvexpath: no packages are installed in '%s'\n" % os.fsdecode(self.path("store"))),
                         (lambda r: (r.code, r.err))(self.package("list")))
        self.assertEqual([], self.package("list", "--json").json["packages"])
        self.assertEqual(FOUND, self.package("rescan").code)
        self.assertFalse(os.path.exists(self.path("store")))
        self.make("store")
        for command in (["list"], ["rescan"], ["install", self.make_package("one", "one")]):
            result = self.package(*command)
            self.assertEqual(FAILURE, result.code, command)
            self.assertIn(os.fsdecode(self.path("store")), result.err)
        os.remove(self.path("store"))
        os.rename(self.path("one/package.json"), self.path("one/kept"))
        os.mkfifo(self.path("one/package.json"))
        self.assertIn("is no file", self.package("install", "one").err)
        os.remove(self.path("one/package.json"))
        self.assertIn("is missing", self.package("install", "one").err)
        with open(self.path("one/kept"), encoding="utf-8") as kept, open(self.path("one/package.json"), "w", encoding="utf-8-sig") as file:
            file.write(kept.read())
        self.assertEqual(FOUND, self.package("install", "one").code)
        with open(self.path("one/kept"), encoding="utf-8") as kept:
            id = json.load(kept)["id"]
        self.assertIn("'one@1.0.0' is installed already; update or remove it, or give 'two@1.0.0' an id of its own",
                      self.package("install", self.make_package("two", "two", id=id)).err)


class ChoiceTest(PackageTest):
    def test_packages_of_one_name_and_version_are_told_apart_by_their_ids(self):
        ids = [str(uuid.uuid5(uuid.NAMESPACE_DNS, name)) for name in ("first", "second")]
        for place, id in zip(("one", "two"), ids):
            done = self.package("install", self.make_package(place, "same", id=id), "--json")
            self.assertEqual([id], [package["id"] for package in done.json["packages"]])
        result = self.package("remove", "same@1.0.0")
        self.assertEqual(FAILURE, result.code)
        for id in ids:
            self.assertIn("'same@1.0.0' --id " + id, result.err)
        self.assertEqual(FOUND, self.package("remove", "same", "--id", ids[0]).code)
        self.assertEqual([ids[1]], [package["id"] for package in self.package("list", "--json").json["packages"]])
        self.assertEqual(NOT_FOUND, self.package("remove", "same", "--id", ids[0]).code)


@unittest.skipUnless(can_trace(), "strace is not installed or not allowed here")
class FailingDiskTest(PackageTest):
    def test_what_is_refused_is_not_done(self):
        """Whichever file cannot be put in place: the exit status says what became of the package."""
        codes = set()
        for number in range(1, 9):
            for action, arguments, there in (("install", ["new"], True), ("remove", ["tool"], False), ("update", ["tool2"], True)):
                name, version = ("new", "1.0.0") if action == "install" else ("tool", "2.0.0" if there else "1.0.0")
                shutil.rmtree(self.path("store"), ignore_errors=True)
                for place, *what in (("tool", "tool"), ("tool2", "tool", "2.0.0"), ("new", "new")):
                    self.make_package(place, *what)
                self.assertEqual(FOUND, self.package("install", "tool").code)
                done = subprocess.run(["strace", "-f", "-o", os.devnull, "-e", f"inject=/^rename:error=EIO:when={number}", PROGRAM,
                                       "package", action, *arguments, "--packages", "store"], cwd=self.root,
                                      env=environment(ASAN_OPTIONS="detect_leaks=0", LSAN_OPTIONS="detect_leaks=0"),
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
                codes.add(done.returncode)
                installed = [(one["name"], one["version"]) for one in self.package("list", "--json").json["packages"]]
                with self.subTest(action=action, number=number):
                    self.assertIn(done.returncode, (FOUND, FAILURE), done.stderr)
                    self.assertEqual((done.returncode == FOUND) == there, (name, version) in installed, done.stderr)
        self.assertEqual({FOUND, FAILURE}, codes)


if __name__ == "__main__":
    unittest.main()
