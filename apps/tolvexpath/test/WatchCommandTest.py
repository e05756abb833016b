"""The watch command: what it tells of each change, what it passes over, and how it ends."""

import os
import shutil
import signal
import subprocess
import unittest

from program import FAILURE, FOUND, NOT_FOUND, FolderTest, OnTerminal, Running, environment

QUIET = ("--quiet", "10")


def can_inject():
    return shutil.which("strace") and subprocess.run(["strace", "-o", os.devnull, "true"], check=False).returncode == 0


class WatchCommandTest(FolderTest):
    def watch(self, *arguments, **options):
        program = Running("watch", "--json", *arguments, cwd=self.root, **options)
        self.addCleanup(program.__exit__)
        self.assertEqual({"event": "ready"}, program.read_json())
        return program

    def told(self, change):
        """A change with file names as the test writes them."""
        def name(file):
            return os.path.relpath(file, os.fsdecode(self.root))

        self.assertEqual("change", change.pop("event"))
        change["folders"] = [name(folder) for folder in change["folders"]]
        for kind in ("added", "removed", "changed"):
            change[kind] = [[entry["name"], *(name(entry[at]) for at in ("before", "after") if at in entry)]
                            for entry in change[kind]]
        return change

    def move(self, old, new):
        os.rename(self.path(old), self.path(new))

    def test_tells_each_change_by_what_is_answered(self):
        self.make("a/f.kx", "b/f.kx", "b/g.kx", "aside/+p/h.kx", "aside/+p/@C/m.kx", "aside/private/x.kx", "aside/new.kx",
                  "aside/f.kxa", "aside/notes.txt", "aside/\udcff.kx", "aside/resources/r.kx")
        steps = [  # what is moved where; folders, added, removed, changed
            ("aside/new.kx", "b/new.kx", "b", [["new", "b/new.kx"]], [], []),
            ("b/new.kx", "a/new.kx", "a b", [], [], [["new", "b/new.kx", "a/new.kx"]]),
            ("a/new.kx", "a/old.kx", "a", [["old", "a/old.kx"]], [["new", "a/new.kx"]], []),
            ("a/f.kx", "aside/f.kx", "a", [], [], [["f", "a/f.kx", "b/f.kx"]]),
            ("aside/f.kxa", "b/f.kxa", "b", [], [], [["f", "b/f.kx", "b/f.kxa"]]),
            ("aside/f.kx", "a/f.kx", "a", [], [], [["f", "b/f.kxa", "a/f.kx"]]),
            ("b/f.kx", "b/F.kx", "b", [["F", "b/F.kx"]], [], []),
            ("aside/notes.txt", "a/notes.txt", "a", [], [], []),
            ("aside/\udcff.kx", "a/\udcff.kx", "a", [["\udcff", "a/\udcff.kx"]], [], []),
            ("aside/+p", "b/+p", "b", [["+p/@C/m", "b/+p/@C/m.kx"], ["+p/h", "b/+p/h.kx"]], [], []),
            ("b/+p/h.kx", "b/+p/@C/h.kx", "b", [["+p/@C/h", "b/+p/@C/h.kx"]], [["+p/h", "b/+p/h.kx"]], []),
            ("aside/private", "b/private", "b", [["b/private/x", "b/private/x.kx"]], [], []),
            ("aside/resources", "b/+p/resources", "b", [["b/+p/resources/r", "b/+p/resources/r.kx"]], [], []),
            ("b/private", "a/private", "a b", [["a/private/x", "a/private/x.kx"]], [["b/private/x", "b/private/x.kx"]], []),
            ("a", "gone", "a", [], [["a/private/x", "a/private/x.kx"], ["old", "a/old.kx"], ["\udcff", "a/\udcff.kx"]],
             [["f", "a/f.kx", "b/f.kxa"]]),
            ("gone", "a", "a", [["a/private/x", "a/private/x.kx"], ["old", "a/old.kx"], ["\udcff", "a/\udcff.kx"]], [],
             [["f", "b/f.kxa", "a/f.kx"]]),
        ]
        program = self.watch("-p", "a", "-p", "b", *QUIET)
        for old, new, folders, added, removed, changed in steps:
            self.move(old, new)
            expected = {"folders": folders.split(), "added": added, "removed": removed, "changed": changed}
            self.assertEqual(expected, self.told(program.read_json()), (old, new))
        self.assertEqual((FOUND, b"", b""), program.end(signal.SIGTERM))

    def test_a_burst_is_told_at_once_and_a_file_that_stays_hidden_not_at_all(self):
        self.make("a/first.kx", "outside/f.kx")
        program = self.watch("-p", "a", "--quiet", "300")
        names = [f"n{number:03}" for number in range(500)]
        for name in names:
            self.make(f"a/{name}.kx", "outside/g.kx", "a/passing.kx")
            os.remove(self.path("a/passing.kx"))
        change = self.told(program.read_json())
        self.assertEqual(["a"], change["folders"])
        self.assertEqual([[name, f"a/{name}.kx"] for name in names], change["added"])
        self.assertEqual((FOUND, b"", b""), program.end(signal.SIGINT))

    def test_folders_that_nothing_tells_of_are_looked_at(self):
        if not can_inject():
            self.skipTest("strace is not installed or not allowed here")
        self.make("a/f.kx")
        for call, error in (("inotify_add_watch", "ENOSPC"), ("inotify_init1", "EMFILE")):
            strace = ["strace", "-f", "-o", os.devnull, "-e", f"trace={call}", "-e", f"inject={call}:error={error}"]
            program = self.watch("-p", "a", "--interval", "0.05", *QUIET, before=strace,
                                 env=environment(ASAN_OPTIONS="detect_leaks=0", LSAN_OPTIONS="detect_leaks=0"))
            self.make(f"a/{call}.kx")
            self.assertEqual([[call, f"a/{call}.kx"]], self.told(program.read_json())["added"])
            program.process.stdout.close()
            self.assertEqual(FOUND, program.process.wait(60))
            self.assertRegex(program.process.stderr.read().decode(), "^tolvexpath: .*inotify")

    def test_ends_when_nobody_reads_any_more(self):
        self.make("a/f.kx")
        program = self.watch("-p", "a", *QUIET)
        program.process.stdout.close()
        self.assertEqual(FOUND, program.process.wait(60))
        self.assertEqual(b"", program.process.stderr.read())

    def test_is_stopped_and_goes_on(self):
        self.make("a/f.kx")
        program = self.watch("-p", "a", *QUIET)
        program.process.send_signal(signal.SIGSTOP)
        os.waitid(os.P_PID, program.process.pid, os.WSTOPPED | os.WNOWAIT)
        self.make("a/g.kx")
        program.process.send_signal(signal.SIGCONT)
        self.assertEqual([["g", "a/g.kx"]], self.told(program.read_json())["added"])
        self.assertEqual((FOUND, b"", b""), program.end(signal.SIGHUP))

    def test_for_people_on_a_terminal(self):
        self.make("a/f.kx", "b/f.kx", "aside/g\x1b[2J.kx")
        with OnTerminal("watch", "-p", "a", "-p", "b", *QUIET, cwd=self.root, env=environment(TERM="xterm")) as program:
            program.wait_for(rb"watching 2 folders\r\n")
            self.move("aside/g\x1b[2J.kx", "a/g\x1b[2J.kx")
            program.wait_for(rb"/a\r\n  \+ g\\x1b\[2J  /\S*/a/g\\x1b\[2J.kx\r\n")
            os.remove(self.path("a/f.kx"))
            program.wait_for(rb"/a\r\n  ~ f  /\S*/b/f.kx, was /\S*/a/f.kx\r\n")
            os.remove(self.path("b/f.kx"))
            program.wait_for(rb"/b\r\n  - f  was /\S*/b/f.kx\r\n")
            self.make("a/notes.txt")
            program.wait_for(rb"/a  \(no name changed\)\r\n")
            self.move("a", "away")
            program.wait_for(rb"/a  \(folder is gone\)\r\n  - g")
            program.type(b"\x03")
            self.assertEqual(FOUND, program.wait_for_end())

    def test_what_cannot_be_watched(self):
        self.make("a/f.kx", "+p/f.kx")
        program = self.watch("-p", "none", "-p", "a", "-p", "+p")
        code, _, errors = program.end(signal.SIGTERM)
        self.assertEqual(FOUND, code)
        self.assertRegex(errors.decode(), r"'[^']*/none' does not exist.*\n.*\+p' is a package folder")
        for arguments, code, message in (
            (["-p", "none"], NOT_FOUND, "/none' does not exist"),
            (["-p", "a", "--quiet", "0"], FAILURE, "--quiet"),
            (["-p", "a", "--interval", "0"], FAILURE, "--interval"),
            ([], FAILURE, "no folder is named"),
        ):
            result = self.run_here("watch", *arguments)
            self.assertEqual((code, b""), (result.code, result.out), arguments)
            self.assertIn(message, result.err)


if __name__ == "__main__":
    unittest.main()
