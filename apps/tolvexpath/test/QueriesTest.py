"""The find command asked many questions, by a file and by a program that waits for each answer."""

import json
import os
import select
import subprocess
import unittest

from program import FAILURE, FOUND, PROGRAM, FolderTest, ask


class QueriesTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.make("a/f.kx", "a/F.txt", "a/+p/f.kx", "a/+p/g.kx", "b/f.kxp", "b/\udcff.kx", "b/\U0001f600.kx", "b/\u00e9.kx",
                  "b/\\udcff.kx")

    def names(self, answers):
        return [[os.path.relpath(found["file"], os.fsdecode(self.root)) for found in answer] for answer in answers]

    def test_members_that_are_left_out_are_what_the_command_line_says(self):
        path = ["-p", "a", "-p", "b"]
        questions = [{"name": "f"}, {"name": "+p/g"}, {"name": "f", "all": True}, {"name": "f", "extensions": [".TXT"], "policy": 1},
                     {"name": "f", "scope": [1]}, {"name": "f", "extensions": []}, {"name": "f", "scope": [], "all": False}]
        self.assertEqual([["a/f.kx"], ["a/+p/g.kx"], ["a/f.kx", "b/f.kxp"], ["a/F.txt"], ["a/+p/f.kx"], [], []],
                         self.names(ask(questions, *path, cwd=self.root)))
        changed = ["--all", "--ext", ".txt,.kxp", "--match", "ignore-case", "--scope", "main"]
        self.assertEqual([["a/F.txt", "b/f.kxp"], [], ["a/F.txt", "b/f.kxp"], ["a/F.txt"], [], [], []],
                         self.names(ask(questions, *path, *changed, cwd=self.root)))

    def test_escapes_stand_for_bytes_and_characters(self):
        written = {r"\udcff": "\udcff", r"\uDCFF": "\udcff", r"\ud83d\ude00": "\U0001f600", r"\udcc3\udca9": "\u00e9",
                   r"\u00e9": "\u00e9", r"\\udcff": "\\udcff", r"\u0066": None}
        lines = "".join('{"name":"%s"}\n' % name for name in written)
        with open(self.path("questions"), "w", encoding="ascii") as file:
            file.write(lines)
        result = self.run_here("find", "--queries", "questions", "-p", "b", "--ext", ".kx")
        self.assertEqual([[f"b/{name}.kx"] if name else [] for name in written.values()], self.names(result.json_lines))
        self.assertEqual(FOUND, result.code)

    def test_a_bad_line_ends_it_and_is_told_by_its_number(self):
        for line in ("", "f", "{", "[]", "{}", '{"name":1}', '{"name":"f","policy":3}', '{"name":"f","policy":-1}',
                     '{"name":"f","scope":[6]}', '{"name":"f","scope":0}', '{"name":"f","extensions":".kx"}', r'{"name":"\ud800"}', '{"name":"f","extensions":["kx"]}',
                     '{"name":"f","all":1}', '{"name":"f","al":true}', '{"name":"f"} {', '{"name":"f\\', r'{"name":"\ud83d', "\xff"):
            good = b'{"name":"f"}\n \n\r\n{"name":"f"}\n'
            result = self.run_here("find", "--queries", "-", "-p", "a", stdin=good + line.encode("latin-1") + b"\n" + good)
            self.assertEqual(2 if line else 4, len(result.json_lines), line)
            self.assertEqual(FAILURE if line else FOUND, result.code, line)
            self.assertRegex(result.err, r"^tolvexpath: .*\bline 5: .* the rest were not answered\n$" if line else "^$")

    def test_each_answer_comes_before_more_is_asked(self):
        long_name = "x" * 300_000  # more than is read at once
        conversation = [
            ('{"name":"f"}\n', [["a/f.kx"]]),
            ('{"name":"f"}\n{"name":"none"}\n{"na', [["a/f.kx"], []]),
            ('me":"f"}\n', [["a/f.kx"]]),
            ('{"name":"%s"}\n{"name":"f"}\n' % long_name, [[], ["a/f.kx"]]),
            ('{"name":"f","all":true,"scope":[1,0]}', []),
        ]
        with subprocess.Popen([PROGRAM, "find", "--queries", "-", "-p", "a"], cwd=self.root, stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, bufsize=0) as program:
            for question, answers in conversation:
                program.stdin.write(question.encode("ascii"))
                self.assertEqual(answers, self.names([json.loads(self.read_line(program.stdout)) for _ in answers]))
            program.stdin.close()
            self.assertEqual([["a/f.kx", "a/+p/f.kx"]], self.names([json.loads(self.read_line(program.stdout))]))
            self.assertEqual(b"", program.stdout.read())
            self.assertEqual(FOUND, program.wait())

    def read_line(self, pipe):
        line = b""
        while not line.endswith(b"\n"):
            self.assertTrue(select.select([pipe], [], [], 60)[0], "no answer comes")
            byte = pipe.read(1)
            self.assertTrue(byte, "the program ended")
            line += byte
        return line


if __name__ == "__main__":
    unittest.main()
