"""The entry command: what it draws, what it writes and what it says of folders that are not there."""

import os
import subprocess
import unittest

from program import FAILURE, FOUND, NOT_FOUND, PROGRAM, FolderTest, run


class EntryCommandTest(FolderTest):
    def test_draws_a_tree(self):
        self.make("box/b.kx", "box/a.kxa", "box/n.txt", "box/+p/+q/x.kx", "box/@C/@D/private/y.kx", "box/@C/resources/",
                  "box/private/z\n\udcff.kxp", "box/plain/unseen.kx")
        result = self.run_here("entry", "--files", "box")
        self.assertEqual(f"""\
{os.fsdecode(self.root)}/box  main folder: 1 code, 1 native, 1 other
│  a.kxa
│  b.kx
│  n.txt
├─ +p  package p: empty
│  └─ +q  package p.q: 1 code
│        x.kx
├─ @C  class C: empty
│  ├─ @D  UDD class C.D: empty
│  │  └─ private  private folder: 1 code
│  │        y.kx
│  └─ resources  resources folder: empty
└─ private  private folder: 1 code
      z\\n\\xff.kxp
""", result.out.decode("utf-8"))
        without_files = [line for line in result.lines if b"folder" in line or b"package" in line or b"class" in line]
        self.assertEqual(without_files, self.run_here("entry", "box").lines)

    def test_kind_follows_from_the_name_when_asked_for_directly(self):
        kinds = {"box": 0, "box/+p": 1, "box/@C": 2, "box/private": 3, "box/@C/@D": 4, "box/resources": 5}
        self.make(*(name + "/" for name in kinds))
        nodes = self.run_here("entry", "--json", *kinds).json
        self.assertEqual(list(kinds.values()), [node["type"] for node in nodes])
        self.assertEqual([os.path.basename(name) for name in kinds], [node["name"] for node in nodes])

    def test_unreadable_folders_are_told_and_left_out(self):
        self.make("a/", "file", "z/")
        os.symlink("circle", self.path("circle"))
        for style in ([], ["--json"]):
            result = self.run_here("entry", *style, "a", "missing", "file", "circle", "z")
            self.assertEqual(NOT_FOUND, result.code)
            messages = result.err.splitlines()
            self.assertEqual(3, len(messages), result.err)
            for name, message in zip(("missing", "file", "circle"), messages):
                self.assertRegex(message, f"^tolvexpath: .*{os.fsdecode(self.path(name))}\\b")
        self.assertEqual(["a", "z"], [node["name"] for node in result.json])
        self.assertEqual([], self.run_here("entry", "--json", "missing").json)

    def test_special_folders_that_cannot_be_read_are_told(self):
        self.make("box/f.kx", "box/private/x.kx", "box/+p/")
        os.chmod(self.root, 0o755)
        os.chmod(self.path("box/private"), 0)
        entry = self.run_as_nobody("entry", "box")
        self.assertEqual((NOT_FOUND, 1, 3), (entry.code, entry.err.count("/box/private' may not be read"), len(entry.lines)))
        written = self.run_as_nobody("cache", "write", ".", "-p", "box", "-o", "/dev/shm/none/cache")
        self.assertEqual((FAILURE, 1), (written.code, written.err.count("/box/private' may not be read")))

    def test_folders_are_taken_as_spelled(self):
        # Arguments that a parser of command lines may take for its own, and a ".." that only the disk can resolve.
        odd = ["[a,b]", "{}", "%%", "entry", "find", "a=b", "\udcff", " ", "--", "-p"]
        self.make(*(f"./{name}/" for name in odd), "real/below/", "real/other/")
        os.symlink("real/below", self.path("link"))
        nodes = self.run_here("entry", "--json", "link/../other", *odd[:-2], "--", "--", "-p").json
        self.assertEqual(["real/other", *odd], [os.path.relpath(node["path"], os.fsdecode(self.root)) for node in nodes])

    def test_a_working_folder_that_is_gone_is_named(self):
        self.make("here/", "a/")
        gone = ["sh", "-c", 'cd "$1" && rmdir "$1" && shift && exec "$@"', "sh", self.path("here"), PROGRAM]
        for arguments, code in ((["entry", "../a"], FAILURE), (["entry", self.path("a")], FOUND)):
            os.makedirs(self.path("here"), exist_ok=True)
            done = subprocess.run([*gone, *arguments], capture_output=True, check=False)
            self.assertEqual((code, code == FAILURE), (done.returncode, b"the working folder is gone; change to" in done.stderr))

    def test_output_that_fails_is_a_failure(self):
        with open("/dev/full", "wb") as full:
            for arguments in (["entry", "/"], ["find", "x", "-p", "/", "--json"], ["--help"], ["help", "find"], ["--version"], ["--man"]):
                self.assertEqual(FAILURE, os.waitstatus_to_exitcode(os.waitpid(os.posix_spawn(
                    PROGRAM, ["tolvexpath", *arguments], os.environ,
                    file_actions=[(os.POSIX_SPAWN_DUP2, full.fileno(), 1), (os.POSIX_SPAWN_OPEN, 2, "/dev/null", 1, 0)]),
                    0)[1]))

    def test_help_and_version(self):
        for command in ("entry", "find"):
            text = run(command, "--help").out.decode("utf-8")
            self.assertIn("Examples:", text)
            self.assertIn(command, run("--help").out.decode("utf-8"))
        self.assertRegex(run("--version").out, rb"^tolvexpath \d+\.\d+\.\d+\n$")
        self.assertEqual(FOUND, run("--version").code)


if __name__ == "__main__":
    unittest.main()
