"""The shell as a person meets it: editing, completion, history and keys, on a terminal."""

import os
import signal
import stat
import unittest

from program import FOUND, FolderTest, OnTerminal, environment

PROMPT = rb"tolvexpath> "


class ShellTerminalTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make("alpha/area.kx", "alpha/arena.kx", "alpha/bottom.kx", "alpha/area.txt", "alpha/fl\u00e4che.kx",
                  "it's here/f.kx", "alps/f.kx", ".hidden/f.kx", "home/")

    def shell(self, *arguments, **variables):
        variables = {"TERM": "xterm", "HOME": os.fsdecode(self.path("home")), "XDG_STATE_HOME": None, "LC_ALL": "C.UTF-8",
                     **variables}
        program = OnTerminal("shell", *arguments, cwd=self.root, env=environment(**variables))
        self.addCleanup(program.__exit__)
        program.wait_for_editing(PROMPT)
        return program

    def end(self, program):
        program.type(b"quit\r")
        self.assertEqual(FOUND, program.wait_for_end())

    def assert_answers(self, program, keys, pattern):
        """What follows the line that is typed in."""
        program.type(keys + b"\r")
        program.wait_for(pattern)
        program.wait_for_editing(PROMPT)

    def test_completion(self):
        program = self.shell("-p", "alpha")
        self.assert_answers(program, b"pol\t", rb"mutability all\r\n")
        self.assert_answers(program, b"pol\tmu\tno-\t", rb"\n")
        self.assert_answers(program, b"policy", rb"no-adding-or-removing\r\n")
        self.assert_answers(program, b"policy mutability all", rb"\n")
        self.assert_answers(program, b"add alph\t", rb"\n")
        self.assert_answers(program, b"ad\t'it\t", rb"\n")
        self.assert_answers(program, b"show", rb"1  \S*/it's here\r\n +2  \S*/alpha\r\n")
        self.assert_answers(program, b"remove /\t", rb"\n")  # what both have in common, so not on the path
        self.assert_answers(program, b"find bo\t", rb"/alpha/bottom.kx\r\n")
        self.assert_answers(program, "find fl\u00e4\t".encode(), "/alpha/fl\u00e4che.kx\r\n".encode())
        self.assert_answers(program, b"find are\x01\x05\ta\t", rb"/alpha/area.kx\r\n")
        program.type(b"find ar\t\t")
        program.wait_for(rb"area\r\narena\r\n")
        self.assert_answers(program, b"a", rb"/alpha/area.kx\r\n")
        program.type(b"cd \t")
        program.wait_for(rb"alpha/\r\nalps/\r\nhome/\r\nit's here/\r\n")
        self.assert_answers(program, b".h\t", rb"\n")
        self.assert_answers(program, b"memento save 'my path'", rb"\n")
        self.assert_answers(program, b"memento restore m\t", rb"\n")
        self.assert_answers(program, b"memento list", rb"my path  2 folders\r\n")
        self.assert_answers(program, b"FeatureR\t'n\t)", rb"TimecheckDir\r\n")
        self.assert_answers(program, b"FeatureRemotePathPolicy(\"sta\t) --json", rb"\"None\"\r\n")
        program.type(b"Feat\tCachePath(\t\t")
        program.wait_for(rb"'drop'\r\n'load'\r\n'status'\r\n'write'\r\n")
        self.assert_answers(program, b"\x03help Hid\t", rb"The one name of|one name of")
        self.end(program)

    def test_keys(self):
        program = self.shell("-p", "alpha")
        program.type(b"find bottom\x03")
        program.wait_for_editing(PROMPT)
        program.type(b"\x03")
        program.wait_for_editing(PROMPT)
        self.assert_answers(program, b"find arXa\x1b[D\bx\be", rb"/alpha/area.kx\r\n")
        self.assert_answers(program, b"\x1b[A", rb"/alpha/area.kx\r\n")
        self.assert_answers(program, b"none", rb"tolvexpath: 'none' is no command")
        self.assert_answers(program, b"   ", rb"\n")
        program.type(b"\x04")
        self.assertEqual(FOUND, program.wait_for_end())

    def test_history(self):
        file = self.path("home/.local/state/tolvexpath/history")
        program = self.shell("-p", "alpha")
        self.assert_answers(program, b"find bottom", rb"bottom.kx")
        os.kill(program.process, signal.SIGKILL)
        self.assertEqual(-signal.SIGKILL, program.wait_for_end())
        program = self.shell("-p", "alpha")
        self.assert_answers(program, b"\x1b[A", rb"/alpha/bottom.kx\r\n")
        self.end(program)
        self.assertEqual([0o600, 0o700], [stat.S_IMODE(os.stat(at).st_mode) for at in (file, os.path.dirname(file))])
        with open(file, "rb") as content:
            before = content.read()
        program = self.shell("-p", "alpha", "--no-history")
        self.assert_answers(program, b"find area", rb"area.kx")
        self.end(program)
        with open(file, "rb") as content:
            self.assertEqual(before, content.read())
        for number, place in enumerate(("state", "state")):
            program = self.shell("-p", "alpha", XDG_STATE_HOME=os.fsdecode(self.path(place)))
            self.assert_answers(program, b"\x1b[A\x1b[A" if number else b"find fl\xc3\xa4che", b"fl\xc3\xa4che.kx")
            self.end(program)
        self.assertTrue(os.path.exists(self.path("state/tolvexpath/history")))

    def test_without_a_place_for_the_history(self):
        self.make("file")
        for variables in ({"XDG_STATE_HOME": os.fsdecode(self.path("file"))}, {"HOME": None}, {"XDG_STATE_HOME": "state"}):
            program = self.shell("-p", "alpha", **variables)
            self.assert_answers(program, b"find bottom", rb"bottom.kx")
            self.end(program)
        self.assertFalse(os.path.exists(self.path("state")))


if __name__ == "__main__":
    unittest.main()
