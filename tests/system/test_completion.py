#!/usr/bin/env python3
"""What the shells complete, and what the manual tells, is what korvalin-cli says of itself."""

import re
import unittest

import rig

PACKAGING = rig.ROOT / "packaging"
COMPLETIONS = PACKAGING / "completions"
COMMANDS = ([], ["settings"], ["settings", "get"], ["lines"], ["network"], ["records"], ["sums"], ["repair"], ["record"])
CHOICES = (["lines", "--format"], ["records", "--format"], ["sums", "--format"], ["sums", "--period"])


def help_of(*command):
    return rig.run(rig.BIN / "korvalin-cli", *command, "--help").stdout


def words_behind(command):
    """The commands and options that --help lists, or the words that an option takes."""
    if command[-1:] and command[-1].startswith("--"):
        return set(re.search(rf"{command[-1]} (\S+)", help_of(*command[:-1]))[1].split("|"))
    text = help_of(*command)
    options = set(re.findall(r"(?<![\w-])--?[a-z]+(?=[, \n])", text.split("Options:")[1]))
    return options | set(re.findall(r"^  ([a-z]+)\s", text.partition("Subcommands:")[2], re.MULTILINE))


class Completion(unittest.TestCase):
    def check(self, complete):
        """`complete` gives what a shell offers behind these words."""
        for command in (*COMMANDS, *CHOICES):
            with self.subTest(command):
                self.assertEqual(complete(command), words_behind(command))

    def test_bash(self):
        script = (f'. {COMPLETIONS}/korvalin-cli.bash; COMP_WORDS=(korvalin-cli "$@" ""); COMP_CWORD=$(($# + 1)); '
                  '_korvalin_cli; printf "%s\\n" "${COMPREPLY[@]}"')
        self.check(lambda words: set(rig.run("bash", "-c", script, "bash", *words).stdout.split()))

    def test_fish(self):
        rig.need("fish")

        def complete(words):
            offered = set()
            # Options are offered only behind a dash, and where no option waits for its word.
            for word in [""] if words[-1:] and words[-1].startswith("--") else ["", "-", "--"]:
                line = " ".join(["korvalin-cli", *words, word])
                script = f"source {COMPLETIONS}/korvalin-cli.fish; complete -C '{line}'"
                offered |= {text.split("\t")[0] for text in rig.run("fish", "--no-config", "-c", script).stdout.splitlines()}
            return offered

        self.check(complete)

    def test_every_word_is_in_all_files(self):
        words = set().union(*map(words_behind, (*COMMANDS, *CHOICES))) - {"-h", "--help"}
        manual = (PACKAGING / "korvalin-cli.1.in").read_text().replace("\\-", "-")
        fish = re.sub(r"-l (\w+)", r"--\1", (COMPLETIONS / "korvalin-cli.fish").read_text())
        for name, text in (("manual", manual), ("fish", fish), ("zsh", (COMPLETIONS / "_korvalin-cli").read_text())):
            with self.subTest(name):
                self.assertEqual({word for word in words if not re.search(rf"(?<![\w-]){word}(?!\w)", text)}, set())


if __name__ == "__main__":
    rig.main()
