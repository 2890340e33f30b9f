#!/usr/bin/env python3
"""What the shells complete, and what the manual tells, is what korvalin-cli says of itself."""

import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import rig

PACKAGING = pathlib.Path(__file__).resolve().parents[2] / "packaging"
COMPLETIONS = PACKAGING / "completions"


def words_of_help(*command):
    """The commands and options that --help lists."""
    text = subprocess.run([rig.BIN / "korvalin-cli", *command, "--help"], check=True, capture_output=True, text=True).stdout
    options = set(re.findall(r"(?<![\w-])--?[a-z]+(?:-[a-z]+)*(?=[, \n])", text.split("Options:")[1]))
    return options | set(re.findall(r"^  ([a-z]+)\s", text.partition("Subcommands:")[2], re.MULTILINE))


def choices_of_help(command, option):
    """The words that an option takes."""
    text = subprocess.run([rig.BIN / "korvalin-cli", command, "--help"], check=True, capture_output=True, text=True).stdout
    return set(re.search(rf"{option} (\S+)", text)[1].split("|"))


COMMANDS = ([], ["settings"], ["settings", "get"], ["lines"], ["network"], ["records"], ["sums"], ["repair"], ["record"],
            ["status"], ["metrics"], ["import"], ["import", "vnstat"])
CHOICES = (("lines", "--format"), ("records", "--format"), ("sums", "--format"), ("sums", "--period"), ("status", "--format"))


class Completion(unittest.TestCase):
    def check(self, complete):
        """`complete` gives what a shell offers behind these words."""
        for command in COMMANDS:
            with self.subTest(command):
                self.assertEqual(complete(command), words_of_help(*command))
        for command, option in CHOICES:
            with self.subTest(command=command, option=option):
                self.assertEqual(complete([command, option]), choices_of_help(command, option))
        self.assertEqual(complete(["completion"]), words_of_help("completion") | choices_of_help("completion", "SHELL"))

    def test_bash(self):
        def complete(words):
            script = (f'. {COMPLETIONS}/korvalin-cli.bash; COMP_WORDS=(korvalin-cli "$@" ""); COMP_CWORD=$(($# + 1)); '
                      '_korvalin_cli; printf "%s\\n" "${COMPREPLY[@]}"')
            return set(subprocess.run(["bash", "-c", script, "bash", *words], check=True, capture_output=True,
                                      text=True).stdout.split())

        self.check(complete)

    def test_fish(self):
        if not shutil.which("fish"):
            self.skipTest("fish is not installed")

        def complete(words):
            offered = set()
            # Options are offered only behind a dash, and where no option waits for its word.
            for word in [""] if words[-1:] and words[-1].startswith("--") else ["", "-", "--"]:
                line = " ".join(["korvalin-cli", *words, word])
                script = f"source {COMPLETIONS}/korvalin-cli.fish; complete -C '{line}'"
                with tempfile.TemporaryDirectory() as empty:  # files are offered too
                    out = subprocess.run(["fish", "--no-config", "-c", script], check=True, capture_output=True, text=True,
                                         cwd=empty).stdout
                offered |= {text.split("\t")[0] for text in out.splitlines()}
            return offered

        self.check(complete)

    def test_the_program_prints_them(self):
        for shell, name in (("bash", "korvalin-cli.bash"), ("zsh", "_korvalin-cli"), ("fish", "korvalin-cli.fish")):
            printed = subprocess.run([rig.BIN / "korvalin-cli", "completion", shell], check=True, capture_output=True).stdout
            self.assertEqual(printed, (COMPLETIONS / name).read_bytes())

    def test_every_word_is_in_all_files(self):
        words = set().union(*(words_of_help(*command) for command in COMMANDS),
                            *(choices_of_help(*choice) for choice in CHOICES)) - {"-h", "--help"}
        manual = (PACKAGING / "korvalin-cli.1.in").read_text().replace("\\-", "-")
        fish = re.sub(r"-l ([\w-]+)", r"--\1", (COMPLETIONS / "korvalin-cli.fish").read_text())
        for name, text in (("manual", manual), ("fish", fish), ("zsh", (COMPLETIONS / "_korvalin-cli").read_text())):
            with self.subTest(name):
                self.assertEqual({word for word in words if not re.search(rf"(?<![\w-]){word}(?!\w)", text)}, set())


if __name__ == "__main__":
    rig.main()
