"""Counts what reading a path asks of the system. The figures may not depend on how many files there are."""

import collections
import os
import subprocess
import unittest

import program

CALLS = "openat,openat2,statx,newfstatat,fstat,getdents64,close,readlink,readlinkat,faccessat,faccessat2,access"
ASKING = CALLS + ",read,pread64,poll,ppoll,epoll_wait,inotify_add_watch,inotify_rm_watch"
LOOSE = {"openat", "close"}  # a thread that starts or not makes a few of these more or fewer
FILES_IN_ONE_READ = 400  # names of this length that one listing call surely returns


@unittest.skipUnless(program.can_trace(), "strace is not installed or not allowed here")
class SystemCallsTest(program.FolderTest):
    def trace(self, calls, *arguments, **options):
        """How often the program made each of the calls."""
        log = self.path("log")
        # The leak check of an instrumented program cannot run while it is traced.
        environment = program.environment(ASAN_OPTIONS="detect_leaks=0", LSAN_OPTIONS="detect_leaks=0")
        strace = ["strace", "-f", "-c", "-o", log, "-e", "trace=" + calls]
        done = subprocess.run([*strace, program.PROGRAM, *arguments], env=environment,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False, **options)
        self.assertEqual(program.FOUND, done.returncode, done.stderr)
        with open(log, encoding="utf-8") as lines:
            table = [line.split() for line in lines if line.strip() and line.split()[-1] in calls.split(",")]
        return collections.Counter({words[-1]: int(words[3]) for words in table})

    def count(self, folders):
        return self.trace(CALLS, "find", "wanted", *(argument for folder in folders for argument in ("-p", folder)))

    def folders(self, name, count, files):
        for folder in range(count):
            self.make(*(f"{name}{folder}/file{number}.kx" for number in range(files)))
        self.make(f"{name}0/wanted.kx")
        return [self.path(f"{name}{folder}") for folder in range(count)]

    def test_a_folder_costs_five_calls_and_a_file_none(self):
        few = self.count(self.folders("few", 10, 2))
        many = self.count(self.folders("many", 10, FILES_IN_ONE_READ))
        for call in few.keys() - LOOSE:
            self.assertEqual(few[call], many[call], f"files may cost no {call} of their own")
        more = self.count(self.folders("more", 60, 2))
        a_folder = {call: round((more[call] - few[call]) / 50, None if call in LOOSE else 3) for call in more}
        # Opened, looked at, listed until nothing is left, closed.
        self.assertEqual({"openat2": 1, "statx": 1, "getdents64": 2, "close": 1},
                         {call: cost for call, cost in a_folder.items() if cost})

    def test_a_refresh_that_finds_nothing_changed_costs_one_call(self):
        # Folders that nobody changes meanwhile, and that have been at rest for longer than the disk's clock is coarse.
        def refresh(times):
            script = "set /usr/share /usr/lib\n" + "refresh\n" * times
            return self.trace(ASKING, "shell", input=script.encode(), cwd="/usr")

        few, many = refresh(10), refresh(110)
        a_refresh = {call: round((many[call] - few[call]) / 100) for call in many}  # threads and tools make some more or fewer
        self.assertEqual({"poll": 1}, {call: cost for call, cost in a_refresh.items() if cost})


if __name__ == "__main__":
    unittest.main()
