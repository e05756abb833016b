"""The rules of the search path, written down once more as plainly as can be: folders are listed with os.scandir, found by
looking at everything, and sorted by brute force. Names are str as Python makes them of file names, in which a lone
surrogate stands for a byte that is no UTF-8."""

import os

MAIN, PACKAGE, METHOD, PRIVATE, UDD, RESOURCES = range(6)
EXACT, IGNORE_CASE, NATIVE = range(3)
CODE_EXTENSIONS = [".kxa", ".kxp", ".kx"]
ITEM_KINDS = {".kx": 0, ".kxp": 0, ".kxa": 1}
CHILDREN = {
    MAIN: (PACKAGE, METHOD, UDD, PRIVATE, RESOURCES),
    PACKAGE: (PACKAGE, METHOD, UDD, PRIVATE, RESOURCES),
    METHOD: (UDD, PRIVATE, RESOURCES),
    UDD: (PRIVATE,),
    PRIVATE: (),
    RESOURCES: (),
}
WALK_ORDER = (PACKAGE, METHOD, UDD, PRIVATE, RESOURCES)
CASE_FOLDING = "/usr/share/unicode/CaseFolding.txt"


def read_case_folding():
    table = {}
    with open(CASE_FOLDING, encoding="utf-8") as lines:
        for line in lines:
            fields = [field.strip() for field in line.split("#")[0].split(";")]
            if len(fields) > 2 and fields[1] in ("C", "S"):
                table[int(fields[0], 16)] = int(fields[2], 16)
    return table


FOLDING = read_case_folding()


def fold(text):
    return text.lower() if text.isascii() else text.translate(FOLDING)


def units(text):
    """Sorts as the text's UTF-16 code units do."""
    return text.encode("utf-16-be", "surrogatepass")


def split_name(name):
    dot = name.rfind(".")
    return (name[:dot], name[dot:]) if dot > 0 else (name, "")


def kind_of(parent_name, name):
    if name.startswith("+") and len(name) > 1:
        return PACKAGE
    if name.startswith("@") and len(name) > 1:
        return UDD if parent_name.startswith("@") and len(parent_name) > 1 else METHOD
    return {"private": PRIVATE, "resources": RESOURCES}.get(name, MAIN)


def leads_to(question):
    try:
        return question()
    except OSError:  # a link that leads in circles
        return False


class Entry:
    def __init__(self, path, kind=None, targets=()):
        self.path, self.name = path, os.path.basename(path)
        self.kind = kind_of(os.path.basename(os.path.dirname(path)), self.name) if kind is None else kind
        self.files, self.children = [], {kind: [] for kind in WALK_ORDER}
        targets = (*targets, os.path.realpath(path))
        with os.scandir(path) as listing:
            for found in listing:
                if leads_to(found.is_file):
                    self.files.append(split_name(found.name))
                elif leads_to(found.is_dir):
                    self.add_child(found, targets)
        self.files.sort(key=lambda file: (units(fold(file[0])), units(file[0]), units(file[1])))
        for children in self.children.values():
            children.sort(key=lambda child: units(child.name))

    def add_child(self, found, targets):
        kind = kind_of(self.name, found.name)
        if kind in CHILDREN[self.kind] and os.path.realpath(found.path) not in targets:
            self.children[kind].append(Entry(found.path, kind, targets))

    def walk(self):
        yield self
        for kind in WALK_ORDER:
            for child in self.children[kind]:
                yield from child.walk()

    def describe(self):
        owner, name = os.path.split(self.path)
        return describe(owner, name)

    def as_json(self):
        def nodes(kind):
            return [child.as_json() for child in self.children[kind]]

        return {
            "path": self.path, "name": self.name, "type": self.kind, "descriptor": self.describe(),
            "items": [{"stem": stem, "extension": extension, "normalizedStem": fold(stem),
                       "kind": ITEM_KINDS.get(extension, 2)} for stem, extension in self.files],
            "packages": nodes(PACKAGE), "methods": nodes(METHOD), "uddClasses": nodes(UDD),
            "private": next(iter(nodes(PRIVATE)), None), "resources": next(iter(nodes(RESOURCES)), None),
        }


def describe(owner, name):
    """Main folders are called by their path, packages and classes by their dotted name, others by their owner's."""
    owner_of_owner, owner_name = os.path.split(owner)
    kind = kind_of(owner_name, name)
    if kind == MAIN:
        return os.path.join(owner, name)
    if kind in (PRIVATE, RESOURCES):
        return describe(owner_of_owner, owner_name) + "/" + name
    if kind_of(os.path.basename(owner_of_owner), owner_name) in (PACKAGE, METHOD, UDD):
        return describe(owner_of_owner, owner_name) + "." + name[1:]
    return name[1:]


class Path:
    def __init__(self, mains):
        mains = {main.path: main for main in mains}.values()  # of two names of one folder the first counts
        self.entries = [entry for main in mains for entry in main.walk()]
        # What any policy calls equal is equal when folded, so this leaves nothing out. Path order within one name.
        self.by_name = {}
        for entry in self.entries:
            names = {}
            for file in entry.files:
                names.setdefault(fold(file[0]), []).append(file)
            for name, files in names.items():
                self.by_name.setdefault(name, []).append((entry, files))

    def find(self, question):
        """The answer to a question as the program takes it, with every member given."""
        wanted, folders = question["name"], []
        if wanted.find("/") > 0:
            before, wanted = wanted.rsplit("/", 1)
            folders = [name for name in before.split("/") if name]

        def equal(a, b):
            return fold(a) == fold(b) if question["policy"] == IGNORE_CASE else a == b

        answer = []
        for entry, files in self.by_name.get(fold(wanted), []):
            if entry.kind not in question["scope"] or not ends_with(entry.path, folders):
                continue
            for extension in question["extensions"]:
                answer += [(entry, file) for file in files if equal(file[0], wanted) and equal(file[1], extension)]
        answer = [{"entry": entry.path, "stem": file[0], "extension": file[1], "file": entry.path + "/" + "".join(file)}
                  for entry, file in answer]
        return answer if question["all"] else answer[:1]


def ends_with(path, folders):
    return not folders or path.split("/")[1:][-len(folders):] == folders
