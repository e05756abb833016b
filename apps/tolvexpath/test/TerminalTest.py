"""What differs when a person looks on: colour, escapes, and nothing of either elsewhere."""

import os
import pty
import subprocess
import unittest

from program import FOUND, PROGRAM, FolderTest, environment


class TerminalTest(FolderTest):
    def run_on_terminal(self, *arguments, **variables):
        """What arrives on a terminal to which both output channels are connected."""
        ours, theirs = pty.openpty()
        with subprocess.Popen([PROGRAM, *arguments], cwd=self.root, stdin=theirs, stdout=theirs, stderr=theirs,
                              env=environment(**{"TERM": "xterm", "NO_COLOR": None, **variables})) as program:
            os.close(theirs)
            shown = b""
            try:
                while chunk := os.read(ours, 65536):
                    shown += chunk
            except OSError:  # the other side is closed
                pass
            os.close(ours)
            self.assertEqual(FOUND, program.wait())
        return shown.replace(b"\r\n", b"\n")

    def test_colour_only_where_it_can_be_seen_and_is_wanted(self):
        self.make("box/+p/f.kx", "box/@C/")
        plain = self.run_here("entry", "box", env=environment(TERM="xterm", NO_COLOR=None)).out
        self.assertNotIn(b"\x1b", plain)
        for variables in ({"NO_COLOR": "1"}, {"TERM": "dumb"}, {"TERM": None}):
            self.assertEqual(plain, self.run_on_terminal("entry", "box", **variables), variables)
        for variables in ({}, {"NO_COLOR": ""}):
            coloured = self.run_on_terminal("entry", "box", **variables)
            self.assertIn(b"\x1b[1;34m+p\x1b[0m", coloured)
        self.assertNotIn(b"\x1b", self.run_on_terminal("entry", "--json", "box"))

    def test_names_cannot_command_a_terminal(self):
        self.make("box/f\x1b[2J\n.kx")
        for arguments in (["entry", "--files", "box"], ["find", "f\x1b[2J\n", "-p", "box"]):
            shown = self.run_on_terminal(*arguments, NO_COLOR="1")
            self.assertNotIn(b"\x1b", shown)
            self.assertIn(rb"f\x1b[2J\n.kx", shown)
        missing = self.run_here("find", "f", "-p", "gone\x1b[2J\n")
        self.assertIn(r"gone\x1b[2J\n", missing.err)

    def test_quick_work_shows_no_progress(self):
        self.make("box/f.kx")
        self.assertEqual(self.path("box/f.kx") + b"\n", self.run_on_terminal("find", "f", "-p", "box"))


if __name__ == "__main__":
    unittest.main()
