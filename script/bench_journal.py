"""The journal of script/bench: what it takes of a window's CPU time, what it writes, and how much a long one delays a start.

Two windows run at the same time. One finds its data folder held by another recorder, so it keeps no journal. From round to
round they take turns in who comes first and in who has which place, as a place on the screen has a cost of its own.
"""

import contextlib
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import tempfile
import time

import bench_statistics

FILE_NAME = "Korvalin_Journal.db"
LINES = 1_000
ROUNDS = 4
STARTS = 7
SETTLED = 6  # seconds until the first things are done


@contextlib.contextmanager
def running(*command, env):
    process = subprocess.Popen(command, env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True)
    try:
        yield process
    finally:
        os.killpg(process.pid, signal.SIGKILL)  # what is traced would outlive its tracer
        process.wait()


@contextlib.contextmanager
def user(settings, **values):
    """A user's environment: folders on the disk of the checkout, and one for the session in memory."""
    with tempfile.TemporaryDirectory(dir=bench_statistics.ROOT / "build", prefix="bench-") as home, \
            tempfile.TemporaryDirectory(dir="/dev/shm") as session:
        os.makedirs(f"{home}/data/Korvalin")
        yield dict(settings(home, **values), XDG_RUNTIME_DIR=session)


def data(env):
    return pathlib.Path(env["XDG_DATA_HOME"], "Korvalin")


def written(pid):
    """Calls that write, and bytes on their way to a disk."""
    found = dict(line.split(": ") for line in pathlib.Path(f"/proc/{pid}/io").read_text().splitlines())
    return [int(found["syscw"]), int(found["write_bytes"])]


def compare(program, users, places, cpu_milliseconds, seconds):
    """CPU milliseconds, writing calls and written bytes a second of both windows."""
    sums = {name: [0, 0, 0] for name in users}
    span = 0
    for number in range(ROUNDS):
        order = list(users) if number % 2 else list(users)[::-1]
        for name, place in zip(users, places if number < ROUNDS / 2 else places[::-1]):
            for setting, value in place.items():
                subprocess.run([f"{program}-cli", "settings", "set", setting, str(value)], env=users[name], check=True,
                               stdout=subprocess.DEVNULL)
        with contextlib.ExitStack() as stack:
            pids = {name: stack.enter_context(running(program, env=users[name])).pid for name in order}
            figures = lambda pid: [cpu_milliseconds(pid), *written(pid)]
            time.sleep(SETTLED)
            before, start = {name: figures(pid) for name, pid in pids.items()}, time.monotonic()
            time.sleep(seconds)
            span += time.monotonic() - start
            for name, pid in pids.items():
                sums[name] = [total + now - then for total, now, then in zip(sums[name], figures(pid), before[name])]
    return {name: [total / span for total in totals] for name, totals in sums.items()}


def flushes(program, env, seconds):
    """How often a minute the window waits for a medium."""
    with tempfile.NamedTemporaryFile(mode="r") as calls:
        with running("strace", "-f", "-qq", "-e", "trace=fsync,fdatasync,sync_file_range", "-o", calls.name, program,
                     env=env):
            count = lambda: pathlib.Path(calls.name).read_text().count("sync")
            time.sleep(SETTLED)
            before = count()
            time.sleep(seconds)
            return (count() - before) * 60 / seconds


def starts(env, start):
    """Medians of starts with an empty journal, a long one, and one of a run that was killed with as many lines."""
    with tempfile.TemporaryDirectory() as kept:
        kinds = {"empty": (0,), "long": (LINES,), "killed": (LINES, "killed")}
        for kind, words in kinds.items():
            os.mkdir(f"{kept}/{kind}")
            bench_statistics.statbench("journal", f"{kept}/{kind}", *words)
        times = {kind: [] for kind in kinds}
        for _ in range(STARTS):
            for kind, found in times.items():
                shutil.rmtree(data(env))
                os.mkdir(data(env))
                shutil.copy(f"{kept}/{kind}/{FILE_NAME}", data(env))
                found.append(start(env))
        return {kind: statistics.median(found) for kind, found in times.items()}


def running_costs(row, program, settings, cpu_milliseconds, seconds, places):
    with user(settings, **places[0]) as keeping, user(settings, **places[1]) as looking, \
            running(f"{program}-cli", "record", env=looking):
        while not (data(looking) / FILE_NAME).exists():
            time.sleep(0.1)
        found = compare(program, {"with": keeping, "without": looking}, places, cpu_milliseconds, seconds)
        units = ("CPU a second", "ms"), ("writing calls a second", ""), ("bytes to a disk, a second", "")
        for number, (what, unit) in enumerate(units):
            row(f"window with a journal: {what}", found["with"][number], unit, "without", found["without"][number],
                target=1.05 if number == 0 else None)
        if shutil.which("strace"):
            row("window with a journal: flushes a minute", flushes(program, keeping, 2 * seconds), "", target=1)


def starting(row, settings, start, place):
    with user(settings, **place) as env:
        found = starts(env, start)
    row(f"start with a journal of {LINES:,} lines", found["long"], "ms", "empty", found["empty"])
    row(f"start after a kill with {LINES:,} lines", found["killed"], "ms", "empty", found["empty"])
