"""The check command: what it finds wrong with a path, and the page that shows it."""

import html.parser
import os
import re
import stat
import subprocess
import unittest

from program import FAILURE, FOUND, NOT_FOUND, PROGRAM, FolderTest

NASTY = "<b>&amp;\"'\x1b[2J\n\udcff</script>".replace("/", "_")


class Page(html.parser.HTMLParser):
    """Reads a page strictly: every element is closed in order, every identifier is there once, nothing is loaded."""

    VOID = {"meta", "input", "br", "wbr"}

    def __init__(self, text):
        super().__init__()
        self.open, self.identifiers, self.links, self.items, self.texts, self.arcs, self.pieces = [], [], [], [], [], 0, []
        self.feed(text)
        assert not self.open, self.open
        assert len(self.identifiers) == len(set(self.identifiers))
        assert all(link[1:] in self.identifiers for link in self.links), self.links

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        assert "src" not in attributes and tag != "link"
        if tag not in self.VOID:
            self.open.append(tag)
        if "id" in attributes:
            self.identifiers.append(attributes["id"])
        if "href" in attributes:
            assert attributes["href"].startswith("#")
            self.links.append(attributes["href"])
        if tag == "li":
            self.items.append("")
        self.arcs += attributes.get("class") == "arc"
        if attributes.get("class") in ("f0", "f1"):
            self.pieces.append((float(attributes["x"]), float(attributes["width"])))

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in self.VOID:
            self.handle_endtag(tag)

    def handle_endtag(self, tag):
        assert self.open and self.open.pop() == tag, tag

    def handle_data(self, data):
        if "script" not in self.open and "style" not in self.open:
            self.texts.append(data)
            if "li" in self.open:
                self.items[-1] += data


class CheckCommandTest(FolderTest):
    def check(self, *arguments, **options):
        result = self.run_here("check", "--json", *arguments, **options)
        self.assertEqual((NOT_FOUND if result.json["problems"] else FOUND, ""), (result.code, result.err))
        return [(problem["kind"], problem["subject"].replace(os.fsdecode(self.root) + "/", ""), problem["message"])
                for problem in result.json["problems"]]

    def read_page(self, name="page.html"):
        with open(self.path(name), encoding="utf-8") as page:
            return Page(page.read())

    def test_problems(self):
        self.make("a/f.kx", "a/H.kx", "a/+p/m.kx", "a/private/s.kx", "b/f.kx", "b/h.kx", "b/+p/m.kx", "c/f.kx", 'q/say "hi".kx',
                  'q/+"x/n.kx', "d/alone.kx", "file", *(f"many/{i}/f.kx" for i in range(7)))
        os.symlink("a", self.path("link"))
        cases = [
            (["d"], []),
            (["d", "gone", "file"], [("missing", "gone", "'{}/gone'"), ("missing", "file", "'{}/file'")]),
            (["d", "a/+p", "a/private"], [("wrong-kind", "a/+p", "package folder"), ("wrong-kind", "a/private", "private folder")]),
            (["d", "d", "./d/../d"], [("repeated-folder", "d", "named before;"),
                                      ("repeated-folder", "./d/../d", "named before as '{}/d'")]),
            (["a", "link"], [("repeated-folder", "link", "named before as '{}/a'")]),
            (["a", "b"], [("shadowed-name", "f", "'{0}/a/f.kx' hides '{0}/b/f.kx'."),
                          ("shadowed-name", "p.m", "'{0}/a/+p/m.kx' hides '{0}/b/+p/m.kx'."),
                          ("case-clash", "H", "'{0}/a/H.kx', '{0}/b/h.kx' differ only in case")]),
            (["a", "b", "--scope", "main", "--match", "ignore-case"],
             [("shadowed-name", "H", "'{0}/a/H.kx' hides '{0}/b/h.kx'."), ("shadowed-name", "f", "hides '{0}/b/f.kx'.")]),
            (["a", "b", "--scope", "main", "--ext", ".txt"], []),
            (["c", "b", "--scope", "main"], [("shadowed-name", "f", "'{0}/c/f.kx' hides '{0}/b/f.kx'.")]),
            ([f"many/{i}" for i in range(7)], [("shadowed-name", "f", "'{0}/many/4/f.kx' and 2 more.")]),
            (["q"], [("not-cacheable", 'q/say "hi".kx', "double quote"), ("not-cacheable", 'q/+"x', "double quote")]),
            (["c", "d", "gone", "d", "a", "a/private", "q"],  # in the order of kinds
             [("missing", "gone", ""), ("wrong-kind", "a/private", ""), ("repeated-folder", "d", ""), ("shadowed-name", "f", ""),
              ("not-cacheable", 'q/say "hi".kx', ""), ("not-cacheable", 'q/+"x', "")]),
        ]
        for arguments, problems in cases:
            options = arguments[arguments.index("--scope"):] if "--scope" in arguments else []
            names = arguments[:len(arguments) - len(options)]
            with self.subTest(arguments):
                arguments = [*(part for name in names for part in ("-p", name)), *options]
                found = self.check(*arguments)
                self.assertEqual([(kind, subject) for kind, subject, _ in problems], [problem[:2] for problem in found])
                for (_, _, words), (_, _, message) in zip(problems, found):
                    self.assertIn(words.format(os.fsdecode(self.root)), message)
                text = self.run_here("check", *arguments)
                self.assertEqual((NOT_FOUND if problems else FOUND, ""), (text.code, text.err))
                for _, subject, message in found:
                    self.assertIn(f"\n      {message}\n", text.out.decode())
                    self.assertIn(subject + "\n", text.out.decode())
        # What check says of cache files is what happens.
        for folder, code in (("q", FAILURE), ("a", FOUND)):
            self.assertEqual(code, self.run_here("cache", "write", ".", "-p", folder, "-o", "cache").code)

    def test_text(self):
        self.make("a/f.kx", "a/g.kx", "b/f.kx")
        root = os.fsdecode(self.root)
        self.assertEqual(f"""\
2 folders, 3 files, 2 problems

Missing folders (1)
  {root}/gone
      The folder '{root}/gone' does not exist or is not a folder. Check how the name is spelled.

Names with hidden files (1)
  f
      '{root}/a/f.kx' hides '{root}/b/f.kx'.
""", self.run_here("check", "-p", "a", "-p", "b", "-p", "gone").out.decode())
        self.assertEqual(b"1 folder, 1 file, nothing wrong\n", self.run_here("check", "-p", "b").out)

    def test_watch_limits(self):
        self.make(*(f"many/{number}/" for number in range(30)))
        folders = [part for number in range(30) for part in ("-p", f"many/{number}")]
        for limit, kinds in ((8, ["watch-limit"]), (1000, [])):
            result = self.run_as_nobody("check", "--json", *folders, limit=limit)
            self.assertEqual(kinds, [problem["kind"] for problem in result.json["problems"]])
            for problem in result.json["problems"]:
                self.assertEqual("user.max_inotify_watches", problem["subject"])
                self.assertIn(f"of the {limit} folder watches", problem["message"])
                self.assertIn("sysctl user.max_inotify_watches=", problem["message"])

    def test_unreadable_folders(self):
        self.make("open/+p/f.kx", "shut/f.kx")
        os.chmod(self.root, 0o755)
        for name in ("open/+p", "shut"):
            os.chmod(self.path(name), 0)
        result = self.run_as_nobody("check", "--json", "-p", "open", "-p", "shut")
        if not result.out:
            self.skipTest("the program cannot be run by others here")
        self.assertEqual([("unreadable", self.path(name)) for name in (b"shut", b"open/+p")],
                         [(problem["kind"], os.fsencode(problem["subject"])) for problem in result.json["problems"]])

    def test_page(self):
        self.make("a/f.kx", "a/g.kx", "b/f.kx", "c/+p/f.kx", "empty/", f"{NASTY}/{NASTY}.kx", f"c/{NASTY}.kx")
        arguments = [part for name in ("a", "b", "empty", NASTY, "c", "gone<i>") for part in ("-p", name)]
        self.assertEqual(NOT_FOUND, self.run_here("check", *arguments, "--html", "page.html").code)
        page = self.read_page()
        self.assertIn("5 folders, 6 files, 6 problems", page.texts)
        self.assertEqual(2, page.arcs)
        self.assertEqual(5, len(page.pieces))
        ends = [0, *(start + length for start, length in page.pieces)]
        for (start, length), end in zip(page.pieces, ends):
            self.assertAlmostEqual(start, end, delta=0.02)
            self.assertGreaterEqual(length, 9)
        self.assertAlmostEqual(1000, ends[-1], delta=0.02)
        self.assertIn(f"… stands for {os.fsdecode(self.root)}", "".join(page.texts))
        shown = NASTY.replace("\x1b", "\\x1b").replace("\n", "\\n").replace("\udcff", "\\xff")
        self.assertEqual(1, len([item for item in page.items if item.startswith(f"4…/{shown}1 file")]))
        for problem in self.check(*arguments):
            words = problem[2].replace(NASTY, shown).replace(os.fsdecode(self.root), "…")
            self.assertTrue(any(words in item for item in page.items), words)
        self.assertFalse([text for text in page.texts if re.search("[\x00-\x09\x0b-\x1f]", text)])

    def test_page_of_many_folders_and_of_none(self):
        self.make(*(f"many/{number}/f{number % 2}.kx" for number in range(500)))
        listed = "".join(f"many/{number}\n" for number in range(500)).encode()
        self.run_here("check", "--path-file", "-", "--html", "page.html", stdin=listed)
        page = self.read_page()
        self.assertEqual((500, 300, 502), (len(page.pieces), page.arcs, len(page.items)))
        self.assertIn("300 strongest of 498", "".join(page.texts))
        self.run_here("check", "-p", "gone", "--html", "page.html")
        self.assertIn("The path is empty.", self.read_page().texts)
        self.make("one/only.kx", "void/")
        for folder in ("one", "void"):
            self.run_here("check", "-p", folder, "--html", "page.html")
            page = self.read_page()
            self.assertNotIn("…", "".join(page.texts))
            self.assertEqual([(0, 1000)], page.pieces)
            self.assertIn("None.", page.texts)

    def test_page_is_written_whole_or_not_at_all(self):
        self.make("a/f.kx")
        with open(self.path("page.html"), "w", encoding="ascii") as page:
            page.write("old")
        os.mkfifo(self.path("pipe"))  # which a file would take the place of
        os.symlink("pipe", self.path("link"))
        for target in ("a", "missing/page.html", "/dev/full/page.html", "", "-", "pipe", "link"):
            for command in (["check", "-p", "a", "--html"], ["cache", "write", ".", "-p", "a", "-o"]):
                result = self.run_here(*command, target)
                self.assertEqual((FAILURE, b"", 1), (result.code, result.out, len(result.err.splitlines())))
                self.assertRegex(result.err, f"^tolvexpath: (cannot write '{target}': |The path cache '{target}' could not be saved)")
        self.assertTrue(stat.S_ISFIFO(os.stat(self.path("link")).st_mode))
        # No more than 512 bytes a file: the page does not fit, and the old one stays.
        done = subprocess.run(["sh", "-c", 'trap "" XFSZ; ulimit -f 1; exec "$0" check -p a --html page.html', PROGRAM], cwd=self.root,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        self.assertEqual((FAILURE, b""), (done.returncode, done.stdout))
        self.assertIn(b"cannot write 'page.html'", done.stderr)
        with open(self.path("page.html"), encoding="ascii") as page:
            self.assertEqual("old", page.read())
        self.assertEqual({b"a", b"page.html", b"pipe", b"link"}, set(os.listdir(self.root)))
        self.assertEqual(FOUND, self.run_here("check", "-p", "a", "--html", "page.html").code)
        self.read_page()


if __name__ == "__main__":
    unittest.main()
