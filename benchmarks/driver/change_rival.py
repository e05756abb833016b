"""change_rival.py CONTENDER PATHFILE ROOT: for each number read from standard input one folder of the path gets a new
file and loses it again, and CONTENDER (importlib, watchman) is asked after each change until it answers rightly. Prints
what that took in milliseconds, then "done"."""

import importlib.machinery
import json
import pathlib
import random
import socket
import statistics
import subprocess
import sys
import tempfile
import time

STEM, EXTENSION = "kxNewOfAll", ".kx"
CHANGES = 3
PATIENCE = 30  # seconds


class Importlib:
    """Python's own importer, told that something has changed: without that it takes a folder that changed twice within
    one tick of the file system's clock for unchanged. It lists the folders of its path until one has the module."""

    def __init__(self, folders, _root):
        loader = (importlib.machinery.SourceFileLoader, [EXTENSION])
        self.finders = [importlib.machinery.FileFinder(folder, loader) for folder in folders]
        self.find()

    def find(self):
        for finder in self.finders:
            finder.invalidate_caches()
            if module := finder.find_spec(STEM):
                return module.origin
        return None

    def close(self):
        pass


class Watchman:
    """The file watching service, asked what has changed since it was asked last."""

    def __init__(self, _folders, root):
        self.root = root
        self.home = tempfile.TemporaryDirectory()
        home = pathlib.Path(self.home.name)
        self.service = subprocess.Popen(
            ("watchman", "--foreground", "--no-save-state", "--sockname", home / "socket", "--pidfile", home / "pid",
             "--logfile", home / "log"), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.socket = self.connect(str(home / "socket"))
        self.answers = self.socket.makefile("r", encoding="utf-8")
        self.ask("watch", root)
        self.clock = self.ask("clock", root, {"sync_timeout": PATIENCE * 10_000})["clock"]
        self.found = set()

    @staticmethod
    def connect(address):
        deadline = time.monotonic() + PATIENCE
        while True:
            try:
                client = socket.socket(socket.AF_UNIX)
                client.connect(address)
                return client
            except OSError:
                client.close()
                if time.monotonic() > deadline:
                    raise
                time.sleep(0.05)

    def ask(self, *command):
        self.socket.sendall(json.dumps(command).encode() + b"\n")
        answer = json.loads(self.answers.readline())
        if "error" in answer:
            raise RuntimeError(f"watchman: {answer['error']}")
        return answer

    def find(self):
        answer = self.ask("query", self.root, {"since": self.clock, "fields": ["name", "exists"],
                                               "expression": ["name", STEM + EXTENSION]})
        self.clock = answer["clock"]
        for file in answer["files"]:
            (self.found.add if file["exists"] else self.found.discard)(f"{self.root}/{file['name']}")
        return next(iter(self.found), None)

    def close(self):
        self.socket.close()
        self.service.terminate()
        self.service.wait()
        self.home.cleanup()


def measure(rival, expected):
    """Milliseconds until the rival gives the right answer, which takes it more than one question at times."""
    start = time.perf_counter()
    while rival.find() != expected:
        if time.perf_counter() - start > PATIENCE:
            raise RuntimeError(f"wrong answer after a change: {expected} was expected")
    return (time.perf_counter() - start) * 1000.0


def measure_change(rival, folder):
    file = pathlib.Path(folder, STEM + EXTENSION)
    file.touch(exist_ok=False)
    try:
        taken = measure(rival, str(file))
    finally:
        file.unlink()
    measure(rival, None)
    return taken


def main():
    contender, path_file, root = sys.argv[1:]
    folders = pathlib.Path(path_file).read_text(encoding="utf-8").splitlines()
    rival = {"importlib": Importlib, "watchman": Watchman}[contender](folders, root)
    name = "python importlib" if contender == "importlib" else contender
    try:
        for line in sys.stdin:
            chosen = random.Random(int(line)).sample(folders, CHANGES)
            value = statistics.median([measure_change(rival, folder) for folder in chosen])
            print(json.dumps({"row": "e1", "contender": name, "value": value}))
            print("done", flush=True)
    finally:
        rival.close()


if __name__ == "__main__":
    main()
