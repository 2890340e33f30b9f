"""The journal of script/bench: how often it waits for a medium, and how much a long one delays a start."""

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


def flushes(row, program, env, seconds):
    """How often a minute the window waits for a medium."""
    if not shutil.which("strace"):
        return
    with tempfile.NamedTemporaryFile(mode="r") as calls:
        with running("strace", "-f", "-qq", "-e", "trace=fsync,fdatasync,sync_file_range", "-o", calls.name, program,
                     env=env):
            count = lambda: pathlib.Path(calls.name).read_text().count("sync")
            time.sleep(SETTLED)
            before = count()
            time.sleep(seconds)
            row("window with a journal: flushes a minute", (count() - before) * 60 / seconds, "", target=1)


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


def starting(row, settings, start, place):
    with user(settings, **place) as env:
        found = starts(env, start)
    row(f"start with a journal of {LINES:,} lines", found["long"], "ms", "empty", found["empty"])
    row(f"start after a kill with {LINES:,} lines", found["killed"], "ms", "empty", found["empty"])
