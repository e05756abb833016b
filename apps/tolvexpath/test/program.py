"""Runs the program under test and reads what it says."""

import json
import os
import pty
import re
import select
import shutil
import subprocess
import tempfile
import termios
import unittest
import uuid

PROGRAM = os.environ["TOLVEXPATH_PROGRAM"]
for setting in ("TOLVEXPATH", "TOLVEX_PACKAGES"):  # of whoever runs the tests
    os.environ.pop(setting, None)
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


def can_trace():
    return shutil.which("strace") and subprocess.run(["strace", "-o", os.devnull, "true"], check=False).returncode == 0


class Running:
    """A program that runs beside the test; what it says is read as it comes. Leave it by `with`."""

    def __init__(self, *arguments, before=(), **options):
        self.process = subprocess.Popen([*before, PROGRAM, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, bufsize=0, **options)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        for pipe in (self.process.stdin, self.process.stdout, self.process.stderr):
            pipe.close()

    def read_line(self):
        line = b""
        while not line.endswith(b"\n"):
            assert select.select([self.process.stdout], [], [], 60)[0], "nothing comes"
            byte = self.process.stdout.read(1)
            assert byte, f"the program ended: {self.process.stderr.read()}"
            line += byte
        return line

    def read_json(self):
        return json.loads(self.read_line().decode("utf-8"))

    def end(self, signal):
        """Its exit code, and what it said since the last line that was read."""
        self.process.send_signal(signal)
        out, err = self.process.communicate(timeout=60)
        return self.process.returncode, out, err


class OnTerminal:
    """A program, that under test or another, that runs on a terminal of its own; leave it by `with`."""

    def __init__(self, *arguments, cwd, env, program=PROGRAM):
        self.shown = b""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(cwd)
            os.execve(program, [program, *arguments], env)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.terminal)
        if self.process:
            os.kill(self.process, 9)
            os.waitpid(self.process, 0)

    def type(self, keys):
        os.write(self.terminal, keys)

    def wait_for(self, pattern):
        """Reads until the text fits; gives all up to the end of what fits and forgets it."""
        while not (found := re.search(pattern, self.shown)):
            assert select.select([self.terminal], [], [], 60)[0], f"{pattern} does not come: {self.shown}"
            try:
                self.shown += os.read(self.terminal, 65536)
            except OSError:  # the other side is closed
                raise AssertionError(f"the program ended: {self.shown}") from None
        text, self.shown = self.shown[: found.end()], self.shown[found.end():]
        return text

    def wait_for_editing(self, prompt):
        """Waits for the prompt, then until keys reach the program one by one."""
        self.wait_for(prompt)
        while termios.tcgetattr(self.terminal)[3] & termios.ICANON:
            assert not os.waitid(os.P_PID, self.process, os.WEXITED | os.WNOHANG | os.WNOWAIT), "the program ended"

    def wait_for_end(self):
        """The exit code; what was shown last is left in `shown`."""
        try:
            while chunk := os.read(self.terminal, 65536):
                self.shown += chunk
        except OSError:
            pass
        process, self.process = self.process, 0
        return os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])


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

    def run_as_nobody(self, *arguments, limit=None):
        """Runs the program in a user namespace, as somebody who may not do everything, and with few watches."""
        who = ["--map-root-user"] if limit else []
        script = f"echo {limit} >/proc/sys/user/max_inotify_watches && exec \"$@\"" if limit else 'exec "$@"'
        done = subprocess.run(["unshare", "--user", *who, "sh", "-c", script, "sh", PROGRAM, *arguments], cwd=self.root,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False, env=environment(TOLVEX_ROOT="/nowhere"))
        if b"unshare" in done.stderr or b"sh:" in done.stderr:
            self.skipTest("no user namespaces here")
        result = Result(done)
        if not result.out and not result.err:
            self.skipTest("the program cannot be run by others here")
        return result


class PackageTest(FolderTest):
    """A test with packages, and a folder "store" to install them in."""

    def make_package(self, folder, name, version="1.0.0", files=1, **changes):
        """A package whose files all hold its name and version."""
        os.makedirs(self.path(folder + "/lib"), exist_ok=True)
        manifest = {"name": name, "version": version, "id": str(uuid.uuid5(uuid.NAMESPACE_DNS, name)), "folders": [".", "lib"]}
        with open(self.path(folder + "/package.json"), "w", encoding="utf-8") as file:
            json.dump({**manifest, **changes}, file, indent=1)
        for number in range(files):
            with open(self.path(f"{folder}/lib/f{number}.kx"), "w", encoding="utf-8") as file:
                file.write(f"{name}@{version}")
        return folder

    def package(self, *arguments, **options):
        return self.run_here("package", *arguments, "--packages", "store", **options)
