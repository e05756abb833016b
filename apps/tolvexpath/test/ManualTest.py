"""What the program writes about itself: the manual page and the completions, tried in the shells they are for."""

import re
import shutil
import subprocess
import unittest

from program import FAILURE, FOUND, FolderTest, OnTerminal, environment, run

COMMANDS = (["entry"], ["find"], ["path"], ["shadows"], ["check"], ["cache"], ["cache", "write"], ["cache", "check"], ["cache", "show"], ["package"], ["package", "list"], ["package", "install"], ["package", "update"], ["package", "remove"], ["package", "rescan"],
            ["watch"], ["shell"])


def can_run(*command):
    return shutil.which(command[0]) is not None and subprocess.run(command, capture_output=True, check=False).returncode == 0


class ManualTest(FolderTest):
    def write(self, option):
        result = run(option)
        self.assertEqual((FOUND, ""), (result.code, result.err))
        name = self.path(option.strip("-"))
        with open(name, "wb") as file:
            file.write(result.out)
        return name, result.out.decode()

    def test_the_page_says_what_the_help_says(self):
        page = self.write("--man")[1].replace("\\-", "-").replace("\\e", "\\").replace("\\&", "")
        lines = set(page.splitlines())
        for command in COMMANDS:
            section = page[page.index(".SS " + " ".join(command) + "\n"):]
            for line in run(*command, "--help").out.decode().splitlines():
                for option in re.findall(r"(?<= )--?[a-z0-9][a-z0-9-]*", line.split("  ")[1] if line.startswith("  -") else ""):
                    self.assertIn(rf"\fB{option}\fR", section[:section.index("\n.S", 1)], (command, option))
                if not line.startswith(" ") and line.endswith(".") and "Usage" not in line:
                    self.assertTrue({line, line.strip()} & lines or line + "." in lines, line)

    def test_help_as_a_command(self):
        for command in ([], *COMMANDS):
            text = run(*command, "--help").out
            self.assertEqual(text, run("help", *command).out, command)
            self.assertEqual([], [line for line in text.decode().splitlines()
                                  if len(line) > (79 if line.startswith("  -") or command[:1] not in (["package"], ["shell"]) else 88)], command)
        self.assertEqual(run("--help").out, run("help", "help").out)
        self.assertEqual(run("--version").out, run("-V").out)
        self.assertEqual(FAILURE, run("help", "frob").code)

    def test_wrong_use_is_named_where_it_is(self):
        for arguments, problem, page in (
            ([], "a command is missing: entry, find, path, shadows, check, cache, package, watch, shell", ""),
            (["cache"], "a command is missing: write, check, show", "cache "),
            (["frob"], "'frob' is no command of this program", ""),
            (["fnid"], "'fnid' is no command of this program; did you mean 'find'?", ""),
            (["cache", "wirte"], "'wirte' is no command of cache; did you mean 'write'?", "cache "),
            (["path", "--path-fiel=x"], "'--path-fiel=x' is no option of path; did you mean '--path-file'?", "path "),
            (["find", "-n", "-p", "a"], "'-n' is no option of find; names that begin with '-' go behind '--', at the end", "find "),
            (["find", "--", "-n", "-p"], "'-p' is too much: one NAME at a time; every folder needs its own -p", "find "),
            (["help", "frob"], "'frob' is no command of this program", ""),
            (["--hlep"], "'--hlep' is no option of this program; did you mean '--help'?", ""),
            (["cache", "frob"], "'frob' is no command of cache", "cache "),
            (["cache", "check"], "FILE is required", "cache check "),
            (["cache", "check", "a", "b"], "'b' is too much", "cache check "),
            (["find", "f", "--hlep"], "'--hlep' is no option of find; did you mean '--help'?", "find "),
            (["find", "f", "-p", "a", "b"], "'b' is too much: one NAME at a time; every folder needs its own -p", "find "),
            (["path", "a"], "'a' is too much; every folder needs its own -p", "path "),
        ):
            result = run(*arguments)
            self.assertEqual((FAILURE, f"tolvexpath: {problem}\nTry 'tolvexpath {page}--help'.\n"), (result.code, result.err))

    @unittest.skipUnless(can_run("mandoc", "/dev/null"), "mandoc is not installed")
    def test_the_page_is_well_formed(self):
        lint = subprocess.run(["mandoc", "-Tlint", "-Wwarning", self.write("--man")[0]], capture_output=True, check=False)
        complaints = [line for line in lint.stdout.splitlines() if b"missing date" not in line]  # it has none
        self.assertEqual([], complaints)

    def assert_completed(self, terminal, end_of_folder, joint):
        """`joint` stands between an option that was completed and its value."""
        self.make("alpha/f.kx", "my box/f.kx", "list.txt", "alone/")
        prompt = rb"READY> "
        terminal.wait_for_editing(prompt)
        for keys, words in (
            ("wa\t", ["watch"]),
            ("fi\t-p alp\t", ["find", "-p", "alpha/"]),
            ("find --path=alp\t", ["find", "--path=alpha/"]),
            ("find -p alpha --path-f\tli\t", ["find", "-p", "alpha", f"--path-file{joint}list.txt"]),
            ("entry --fi\tmy\t", ["entry", "--files", "my box/"]),
            ("cache wr\tmy\t --out\tli\t", ["cache", "write", "my box/", f"--output{joint}list.txt"]),
            ("cache sh\tli\t", ["cache", "show", "list.txt"]),
            ("find --match ig\t", ["find", "--match", "ignore-case"]),
            ("find --scope pack\t", ["find", "--scope", "package"]),
            ("shadows --scope main,ud\t", ["shadows", "--scope", "main,udd"]),
            ("--vers\t", ["--version"]),
            ("shell --no-h\t", ["shell", "--no-history"]),
        ):
            expected = "".join(f"<{word}>" for word in words).replace("/", end_of_folder)
            terminal.type(f"tolvexpath {keys}\r".encode())
            try:
                terminal.wait_for(re.escape(expected).replace("/\\?", "/?").encode() + rb"\r\n")
            except AssertionError as error:
                self.fail(f"{keys}: {error}")
            terminal.wait_for_editing(prompt)

    def test_bash(self):
        script = self.write("--bash-completion")[0].decode()
        with open(self.path("rc"), "w", encoding="ascii") as rc:
            rc.write(f"tolvexpath() {{ printf '<%s>' \"$@\"; echo; }}\nsource {script}\nPS1='READY> '\n"
                     "bind 'set bell-style none' 'set enable-bracketed-paste off'\n")
        with OnTerminal("--noprofile", "--rcfile", self.path("rc").decode(), "-i", program=shutil.which("bash"), cwd=self.root,
                        env=environment(TERM="xterm", LC_ALL="C.UTF-8")) as terminal:
            self.assert_completed(terminal, "/", "><")

    @unittest.skipUnless(can_run("zsh", "-c", "true"), "zsh is not installed")
    def test_zsh(self):
        script = self.write("--zsh-completion")[0].decode()
        self.make("functions/", "settings/")
        shutil.move(script, self.path("functions/_tolvexpath"))
        with open(self.path("settings/.zshrc"), "w", encoding="ascii") as rc:
            rc.write(f"fpath=({self.path('functions').decode()} $fpath)\nautoload -Uz compinit\ncompinit -u -D\n"
                     "tolvexpath() { printf '<%s>' \"$@\"; echo }\nPS1='READY> '\nunsetopt beep prompt_sp zle_bracketed_paste\n")
        with OnTerminal("-d", "-i", program=shutil.which("zsh"), cwd=self.root,
                        env=environment(TERM="xterm", LC_ALL="C.UTF-8", ZDOTDIR=self.path("settings").decode())) as terminal:
            self.assert_completed(terminal, "/?", "=")


if __name__ == "__main__":
    unittest.main()
