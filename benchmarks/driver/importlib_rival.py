"""importlib_rival.py PATHFILE: fills the listing caches that Python's own importer keeps for its path."""

import importlib.machinery
import sys

with open(sys.argv[1], encoding="utf-8") as folders:
    finders = [importlib.machinery.FileFinder(folder.rstrip("\n"), (importlib.machinery.SourceFileLoader, [".kx"]))
               for folder in folders]
for finder in finders:
    finder.find_spec("kx_no_such_module")  # the first question is what fills a finder's cache
print("ready", flush=True)
