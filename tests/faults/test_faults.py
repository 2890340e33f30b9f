#!/usr/bin/env python3
"""Every call that changes a file is made to fail, cut short or the program's last one, operation by operation; and of what
was written without a flush a power loss leaves any part. The next start finds every record once and every setting.

test_faults.py BIN [--all] [OPERATION...]: without --all a sample of the calls is tried."""

import argparse
import concurrent.futures
import datetime
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

from power_loss import Disk, read_log

CALL_KINDS = ("ENOSPC", "EIO", "kill", "full")
KINDS = (*CALL_KINDS, "short", "torn")
SEEDS = ("least", "most", 1, 2, 3)
SAMPLE = 30
LINE = re.compile(r'"([^"]*)",#([-0-9]+)( ?[:0-9]*#,#[:0-9]+)#,0,(\d+),"[^"]*","[^"]*"\r\n')
LAST = 101  # step of the next start
STATS = "Korvalin_Stats.db"
HOME = "share/Korvalin"


class Fault(Exception):
    """What a try has left is wrong."""


def expect(holds, what):
    if not holds:
        raise Fault(what)


def numbered(*numbers):
    """Records of one line, an hour apart; the number is what they have received."""
    begin = datetime.datetime(2020, 1, 1, 0, 30)
    return "".join(f'"eth0",#{begin + datetime.timedelta(hours=n)}#,#00:00:30#,0,{n},"",""\r\n' for n in numbers)


def records(path):
    """The whole records of a file: line, day of log-in, received."""
    found = LINE.findall(path.read_bytes().decode()) if path.exists() else []
    expect(len(set(found)) == len(found), f"a record is written twice: {found}")
    return [(name, day, int(count)) for name, day, _, count in found]


def received(path):
    """In thousands, of both lines."""
    return tuple(sum(count for name, _, count in records(path) if name == line) / 1000 for line in ("eth0", "wlan0"))


class Try:
    """One copy of an operation's folder."""

    def __init__(self, programs, folder):
        self.programs, self.path = programs, folder
        self.env = dict(os.environ, XDG_CONFIG_HOME=f"{folder}/config", XDG_DATA_HOME=f"{folder}/share", HOME=str(folder),
                        XDG_RUNTIME_DIR=f"{folder}/run", LANG="C.UTF-8", ASAN_OPTIONS="verify_asan_link_order=0")

    def __truediv__(self, name):
        return self.path / name

    def run(self, *command, fault="", log=""):
        """Exit code and everything that was said."""
        beside = self.programs.parent / "tests"
        words = [self.programs / "korvalin-cli", *command[1:]] if command[0] == "cli" else [
            beside / "faultdriver", self.path, command[1]]
        env = dict(self.env, LD_PRELOAD=str(beside / "faults.so"), KORVALIN_FAULTS_BELOW=str(self.path), KORVALIN_FAULT=fault,
                   KORVALIN_FAULTS_LOG=str(log)) if fault or log else self.env
        done = subprocess.run(words, env=env, capture_output=True, text=True, timeout=60, check=False)
        logs = "".join(file.read_text() for file in self.path.glob("**/*_ErrorLog.txt"))
        return done.returncode, done.stdout, done.stderr + logs

    def well(self, *command):
        code, shown, said = self.run(*command)
        expect(code == 0, f"{command} ends with {code}: {said}")
        return shown


# An operation is where it begins, a command and what must be true afterwards. `check` comes at once, with whether it was
# told that it has failed (None: it was killed); `after` is the next start, `marks` what a power loss may have cost.


class Recording:
    def begin(self, at):
        at.well("core", "begin")

    def __init__(self, name):
        self.name, self.command = name, ("core", name)

    def check(self, at, told):
        whole = self.name == "journal" or received(at / HOME / STATS) == (10, 10)
        expect(whole or told in (True, None), "not everything was recorded, and nobody was told")

    def after(self, at, marks=None):
        home, chart_max, *loaded = at.well("core", "boot" if marks else "next").splitlines()
        expect(chart_max == "77", f"a setting is {chart_max}")
        rows = [row.split("\t") for row in loaded]
        for name, begin, end, _ in rows:
            expect(begin[:10] == end[:10], f"over midnight: {name} {begin} {end}")
        expect(len({(name, begin) for name, begin, *_ in rows}) == len(rows), f"a record twice: {loaded}")
        least, most = marks or ((LAST, LAST), (LAST, LAST))
        since_boot = 5 + LAST if marks else 0
        for line, kept, seen in zip(("eth0", "wlan0"), least, most):
            found = sum(float(count) for name, *_, count in rows if name == line) / 1000 - since_boot
            expect(kept <= found <= seen, f"{line} has {found}, kept were {kept}, seen {seen}")
        if marks is None and self.name != "move":  # the export stays where it is
            written = (pathlib.Path(home) / "Korvalin_Stats.csv").read_bytes().decode()
            for name in ("eth0", "wlan0"):
                expect(written.count(f"\n{name},") >= sum(row[0] == name for row in rows), "the export lacks a record")


class Moving(Recording):
    def check(self, at, told):
        whole = [path for path in (at / HOME / STATS, at / "moved" / STATS) if received(path) == (4, 4)]
        expect(whole or told in (True, None), "not everything was recorded, and nobody was told")


class Rewriting:
    """The statistics file is replaced by a better one."""

    def __init__(self, name, command, before, after):
        self.name, self.command, self.old, self.new = name, command, before, after

    def begin(self, at):
        (at / HOME / STATS).write_bytes(self.old.encode())

    def check(self, at, told):
        left = (at / HOME / STATS).read_bytes().decode()
        expect(left in (self.old, self.new), "half a file")
        expect(left == self.new or told in (True, None), "it was not done, and nobody was told")
        self.kept(at)

    def kept(self, at):
        kept = [path.read_bytes().decode() for path in (at / HOME).glob(STATS + "_*")]
        is_old = (at / HOME / STATS).read_bytes().decode() == self.old
        expect(is_old or self.old in kept, f"the old file is not among the {len(kept)} that are kept")

    def after(self, at, marks=None):
        if (at / HOME / STATS).read_bytes().decode() != self.new:
            at.run(*self.command)
        expect((at / HOME / STATS).read_bytes().decode() == self.new, "the next start does not do it")
        self.kept(at)


class Converting:
    name, command = "conversion", ("cli", "repair")
    old = "".join(f"eth0\t2020-01-01 {n:02}:30:00\t2020-01-01 {n:02}:30:30\t00:00:30\t0\t{n}\t\r\n" for n in range(1, 20))

    def begin(self, at):
        (at / HOME / "Korvalin_Stats.txt").write_bytes(self.old.encode())

    def check(self, at, told):
        expect((at / HOME / STATS).exists() or told in (True, None), "nothing was converted, and nobody was told")

    def after(self, at, marks=None):
        at.well(*self.command)
        expect((at / HOME / STATS).read_bytes().decode() == numbered(*range(1, 20)), "not every record was converted")
        expect((at / HOME / "Korvalin_Stats.txt").read_bytes().decode() == self.old, "the older file has changed")


class FirstStart:
    """Statistics beside the program move to the user's folder, or join those that are there."""

    command = ("core", "home")

    def __init__(self, name, *there):
        self.name, self.there = name, there

    def begin(self, at):
        (at / "program" / STATS).write_bytes(numbered(*range(1, 21)).encode())
        if self.there:
            (at / HOME / STATS).write_bytes(numbered(*self.there).encode())

    def check(self, at, told):
        arrived = len(records(at / HOME / STATS)) == len({*range(1, 21), *self.there})
        expect(arrived or told in (True, None), "not everything has arrived, and nobody was told")

    def after(self, at, marks=None):
        home = pathlib.Path(at.well("core", "home").strip())
        at.well("core", "boot" if marks else "next")
        found = [count for _, day, count in records(home / STATS) if day < "2024"]
        expect(sorted(found) == sorted({*range(1, 21), *self.there}), f"of the records there are {sorted(found)}")


class Storing:
    name, command = "setting", ("cli", "settings", "set", "ChartMax", "55")
    others = {"FontSize": "11", "GMaxPeriods": "30", "UnitKB": "kilo"}

    def begin(self, at):
        for name, value in {"ChartMax": "44", **self.others}.items():
            at.well("cli", "settings", "set", name, value)

    def check(self, at, told):
        expect(told is not False or at.well("cli", "settings", "get", "ChartMax").strip() == "55",
               "it was not stored, and nobody was told")

    def after(self, at, marks=None):
        for name, value in self.others.items():
            expect(at.well("cli", "settings", "get", name).strip() == value, f"{name} is another one")
        expect(at.well("cli", "settings", "get", "ChartMax").strip() in ("44", "55"), "it is neither the old nor the new one")
        at.well(*self.command)
        expect(at.well("cli", "settings", "get", "ChartMax").strip() == "55", "it cannot be stored any more")


class Updating:
    name, command = "update", ("core", "update")
    old, new = b"o" * 210_000, b"n" * 220_000

    def begin(self, at):
        texts = (at / "program/Korvalin.lng").read_bytes()
        for name, content, age in (("Korvalin.exe", self.old, 100), ("Korvalin_new.exe", self.new, 50)):
            (at / "program" / name).write_bytes(content)
            (at / "program" / name).chmod(0o700)
            os.utime(at / "program" / name, (1.7e9 - age, 1.7e9 - age))
        (at / "program/KorvalinLng_new.lng").write_bytes(texts + b"new\r\n")

    def check(self, at, told):
        program = (at / "program/Korvalin.exe").read_bytes()
        is_new = (at / "program/Korvalin.lng").read_bytes().endswith(b"new\r\n")
        expect(program in (self.old, self.new), "half a program")
        expect(is_new or program == self.old, "a new program with old texts")
        expect(program == self.new or told in (True, None), "it was not installed, and nobody was told")

    def after(self, at, marks=None):
        self.check(at, None)
        if (at / "program/Korvalin.exe").read_bytes() == self.old:
            at.well(*self.command)
        self.check(at, False)
        expect(not (at / "program/Korvalin.exe.part").exists() or marks, "a copy is left")


REPAIRED = numbered(*range(1, 3001))
OPERATIONS = [
    Recording("record"), Recording("day"), Recording("journal"), Moving("move"),
    Rewriting("repair", ("cli", "repair"), "damaged\r\n" + REPAIRED + "damaged\r\n" + numbered(7), REPAIRED),
    Rewriting("delete", ("core", "delete"), numbered(*range(1, 3001)), numbered(*range(1, 3001, 2))),
    Converting(), FirstStart("first start"), FirstStart("joining", *range(15, 31)), Storing(), Updating()]


class Trial:
    """One operation in a folder of its own, where each try begins anew: the settings name the folder."""

    def __init__(self, programs, operation, folder):
        self.operation, self.at = operation, Try(programs, folder)
        for name in ("program/settings", "config", "run", HOME, "moved"):
            (folder / name).mkdir(parents=True)
        shutil.copy(programs / "Korvalin.lng", folder / "program/Korvalin.lng")
        operation.begin(self.at)
        self.disk = Disk(folder)
        log = folder.with_suffix(".log")
        code, _, said = self.at.run(*operation.command, log=log)
        self.events = read_log(log, folder)
        expect(code == 0, f"without a fault it ends with {code}: {said}")
        operation.check(self.at, False)
        operation.after(self.at)

    def faults(self, is_all):
        """All, or of each call of each file one."""
        calls = [event for event in self.events if event.call != "mark"]
        found = {}
        for number, event in enumerate(calls, 1):
            file = re.sub(r"\.new-.*", ".new-", event.path)
            for kind in KINDS if event.call == "write" else CALL_KINDS:
                found.setdefault((kind, event.call, file), []).append((kind, number))
        chance = random.Random(7)
        return [attempt for group in found.values() for attempt in (group if is_all else [chance.choice(group)])]

    def losses(self, is_all):
        """Before and behind every flush and at some other moments."""
        chance = random.Random(7)
        ends = [n for n, event in enumerate(self.events, 1) if event.call == "flush"]
        ends += [n - 1 for n in ends] + chance.choices(range(len(self.events)), k=20) + [len(self.events)]
        found = [("loss", n, seed) for n in sorted(set(ends)) for seed in SEEDS]
        return found if is_all else chance.sample(found, min(SAMPLE, len(found)))

    def attempt(self, kind, number, seed=None):
        """What is wrong afterwards; nothing when all is well."""
        shutil.rmtree(self.at.path)
        try:
            if seed:
                self.operation.after(self.at, self.disk.leave(self.events, number, seed, self.at.path))
                return []
            self.disk.leave([], 0, "most", self.at.path)
            code, shown, said = self.at.run(*self.operation.command, fault=f"{number} {kind}")
            told = None if code < 0 else code != 0 or bool(said) or "not rewritten" in shown
            self.operation.check(self.at, told)
            self.operation.after(self.at)
        except Fault as fault:
            return [f"{self.operation.name}, {kind} {number} {seed or ''}: {fault}"]
        return []


def try_all(pool, programs, operation, folder, is_all):
    """What is wrong, and a row of figures."""
    trials = [Trial(programs, operation, folder / f"{operation.name} {number}") for number in range(os.cpu_count())]
    faults, losses = trials[0].faults(is_all), trials[0].losses(is_all)
    share = lambda n: [wrong for attempt in (faults + losses)[n::len(trials)] for wrong in trials[n].attempt(*attempt)]
    wrong = sum(pool.map(share, range(len(trials))), [])
    calls = sum(event.call != "mark" for event in trials[0].events)
    print(f"{operation.name:12} {calls:6} {len(faults):13} {len(losses):13} {len(wrong):6}", flush=True)
    return wrong


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("operations", nargs="*")
    chosen = parser.parse_intermixed_args()
    # What is flushed need not wait for a disk.
    where = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    wrong = []
    print(f"{'operation':12} {'calls':>6} {'faults tried':>13} {'losses tried':>13} {'wrong':>6}")
    with tempfile.TemporaryDirectory(prefix="korvalin-", dir=where) as folder, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for operation in OPERATIONS:
            if operation.name in chosen.operations or not chosen.operations:
                wrong += try_all(pool, chosen.programs.resolve(), operation, pathlib.Path(folder).resolve(), chosen.all)
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
