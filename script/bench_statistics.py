"""The statistics of script/bench: loading, summing and recording on generated files of several sizes.

A sort of the same file by the system's own sort is the peer. Runs alternate and the median counts, as the machine may
be busy with other things. The files lie on the disk of the checkout: what is flushed to it is to reach a medium.
"""

import contextlib
import json
import math
import os
import pathlib
import statistics
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
STATBENCH = ROOT / "build/release/bench/statbench"
FILE_NAME = "Korvalin_Stats.db"
MANY = 1_000_000
SIZES = (10_000, 100_000, MANY, 4_000_000)
RUNS = 3


def statbench(*words):
    run = subprocess.run([STATBENCH, *map(str, words)], capture_output=True, text=True, check=True)
    return json.loads(run.stdout)


@contextlib.contextmanager
def data_folder(records, *order):
    """A data folder with a statistics file of so many records."""
    with tempfile.TemporaryDirectory(dir=ROOT / "build", prefix="bench-") as folder:
        statbench("generate", records, f"{folder}/{FILE_NAME}", *order)
        yield folder


def sort_milliseconds(folder):
    start = time.monotonic()
    subprocess.run(["sort", "--parallel=1", "-t,", "-k1,1", "-k2,2", f"{folder}/{FILE_NAME}"], check=True,
                   stdout=subprocess.DEVNULL, env=dict(os.environ, LC_ALL="C"))
    return (time.monotonic() - start) * 1000


def medians(**measures):
    """Each measure's median, taken in turn."""
    figures = {name: [] for name in measures}
    for _ in range(RUNS):
        for name, measure in measures.items():
            figures[name].append(measure())
    return {name: statistics.median(values) for name, values in figures.items()}


def file_megabytes(folder):
    return pathlib.Path(folder, FILE_NAME).stat().st_size / 1e6


def against_sort(row, name, *order):
    """Loading a million records and the sums of their days, beside a sort of the file."""
    with data_folder(MANY, *order) as folder:
        loads = []

        def load():
            loads.append(statbench("load", folder))
            return loads[-1]["milliseconds"]

        found = medians(load=load, sums=lambda: statbench("sums", folder)["milliseconds"],
                        sort=lambda: sort_milliseconds(folder))
        row(f"{name}: load", found["load"], "ms", "sort", found["sort"], target=1 / 2)
        row(f"{name}: sums by day", found["sums"], "ms", "sort", found["sort"], target=1 / 3)
        peak = max(run["peak_bytes"] for run in loads) / 1e6
        row(f"{name}: load, peak memory", peak, "MB", "file", file_megabytes(folder), target=2.5)


def growth(row):
    """Where nothing grows faster than n log n, the time of a step stays about the same."""
    for records in SIZES:
        with data_folder(records) as folder:
            for work in ("load", "sums"):
                milliseconds = statistics.median(statbench(work, folder)["milliseconds"] for _ in range(RUNS))
                row(f"{work}, {records:,} records", milliseconds, "ms")
                row("  a step of n log n", milliseconds * 1e6 / (records * math.log2(records)), "ns")


def flushing_milliseconds(folder, count):
    """The median of what the disk itself takes: a line appended to each of two files and flushed."""
    files = [os.open(f"{folder}/flushed{i}", os.O_WRONLY | os.O_CREAT | os.O_APPEND) for i in range(2)]
    times = []
    for _ in range(count):
        start = time.monotonic()
        for file in files:
            os.write(file, b"x" * 95 + b"\n")
            os.fdatasync(file)
        times.append((time.monotonic() - start) * 1000)
    for file in files:
        os.close(file)
    return statistics.median(times)


def waiting(row):
    """How long a window stands still, and the writing of an ended connection keeps the program."""
    with data_folder(100_000) as folder:
        gaps = [statbench("load", folder)["longest_gap_milliseconds"] for _ in range(RUNS)]
        row("load, 100,000 records: longest without events", max(gaps), "ms", target=50)
        row("two lines appended and flushed, by the system", flushing_milliseconds(folder, 200), "ms")
        recorded = statbench("record", folder, 200)
        row("recording a connection, median of 200", recorded["median_milliseconds"], "ms", target=5)
        row("recording a connection, slowest", recorded["maximum_milliseconds"], "ms")


def measure(row):
    """Prints all figures with `row`."""
    against_sort(row, "1,000,000 records")
    against_sort(row, "shuffled", "shuffled")
    growth(row)
    waiting(row)
