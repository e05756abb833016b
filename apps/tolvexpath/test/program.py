"""Runs the program under test and reads what it says."""

import json
import os
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["TOLVEXPATH_PROGRAM"]
os.environ.pop("TOLVEXPATH", None)  # the default path of whoever runs the tests
FOUND, NOT_FOUND, FAILURE = 0, 1, 2


def environment(**changes):
    """The test's environment with changes; a value of None takes a variable out."""
    result = {**os.environ, **{name: value for name, value in changes.items() if value is not None}}
    for name, value in changes.items():
        if value is None:
            result.pop(name, None)
    return result


class Result:
    def __init__(self, done):
        self.code = done.returncode
        self.out = done.stdout
        self.err = done.stderr.decode("utf-8")  # messages are valid UTF-8 whatever the names hold

    @property
    def json(self):
        return json.loads(self.out.decode("utf-8"))

    @property
    def json_lines(self):
        return [json.loads(line) for line in self.out.decode("utf-8").splitlines()]

    @property
    def lines(self):
        return self.out.split(b"\n")[:-1]


def run(*arguments, stdin=b"", **options):
    return Result(subprocess.run([PROGRAM, *arguments], input=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                 timeout=250, check=False, **options))


def ask(questions, *arguments, **options):
    """The answers to a list of questions, one list of found files each."""
    lines = "".join(json.dumps(question) + "\n" for question in questions)
    result = run("find", "--queries", "-", *arguments, stdin=lines.encode("ascii"), **options)
    assert result.code == FOUND, result.err
    return result.json_lines


class FolderTest(unittest.TestCase):
    """A test with a folder of its own; names are bytes."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.realpath(os.fsencode(folder.name))

    def path(self, name):
        return os.path.join(self.root, os.fsencode(name))

    def make(self, *names):
        """Makes empty files and the folders they lie in; a name that ends in "/" is a folder."""
        for name in map(os.fsencode, names):
            os.makedirs(self.path(os.path.dirname(name)), exist_ok=True)
            if not name.endswith(b"/"):
                with open(self.path(name), "wb"):
                    pass

    def run_here(self, *arguments, **options):
        return run(*arguments, cwd=self.root, **options)

    def assert_files(self, result, *names):
        self.assertEqual([self.path(name) for name in names], result.lines, result.err)
        self.assertEqual(FOUND if names else NOT_FOUND, result.code)
