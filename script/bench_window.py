"""The lists of script/bench: what a user waits for with a large file, until the list is painted again.

Sorts have the system's own sort by the same column of the file as their peer, copying an awk that writes the same rows
with the same decimals, deleting the load of the same file. Runs alternate and the median counts.
"""

import json
import os
import shutil
import statistics
import subprocess
import time

import bench_statistics

WINDOWBENCH = bench_statistics.ROOT / "build/release/bench/windowbench"
COPIED = 100_000
ADAPTERS = 1_000
AWK = ('{ printf "%s\\t%s\\t%s\\t%.2f\\t%.2f\\t%.2f\\t%s\\n", $1, $2, $3, $4 / 1e6, $5 / 1e6, ($4 + $5) / 1e6, $6 }')


def windowbench(*words):
    run = subprocess.run([WINDOWBENCH, *map(str, words)], capture_output=True, text=True, check=True,
                         env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
    return json.loads(run.stdout)


def milliseconds_of(*command):
    start = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env=dict(os.environ, LC_ALL="C"))
    return (time.monotonic() - start) * 1000


def operate_on_a_copy(folder):
    """The operations; they delete records, so the file is a copy."""
    copy = f"{folder}/copy"
    os.mkdir(copy)
    shutil.copy(f"{folder}/{bench_statistics.FILE_NAME}", copy)
    try:
        return windowbench("operate", copy)
    finally:
        shutil.rmtree(copy)


def measured_in_turn(folder, work, peers):
    """Medians of the figures that `work` gives, and of the peers."""
    runs = []
    for _ in range(bench_statistics.RUNS):
        found = work(folder)
        for name, command in peers.items():
            found[name] = milliseconds_of(*command, f"{folder}/{bench_statistics.FILE_NAME}")
        runs.append(found)
    return {name: statistics.median(run[name] for run in runs) for name in runs[0]}


def sort_by(field):
    return ("sort", "--parallel=1", "-s", "-t,", f"-k{field},{field}")


def operations(row):
    with bench_statistics.data_folder(bench_statistics.MANY) as folder:
        found = measured_in_turn(folder, operate_on_a_copy,
                                 {"by name": sort_by(1), "by date": sort_by(2), "by note": sort_by(6)})
    row("rows and sums of days visible after the load", found["visible"], "ms", target=500)
    row("another unit", found["unit"], "ms", target=150)
    row("a filter", found["filter"], "ms", target=150)
    row("no filter", found["filter_off"], "ms", target=150)
    row("a filter, list sorted by date", found["date_filter"], "ms", target=150)
    row("no filter, list sorted by note", found["note_filter_off"], "ms", target=150)
    row("another start of the month", found["month_start"], "ms")
    row("sort by date", found["sort_date"], "ms", "sort", found["by date"])
    row("sort by alias", found["sort_alias"], "ms", "sort", found["by name"])
    row("sort by note", found["sort_note"], "ms", "sort", found["by note"])
    row("delete 10 records", found["delete"], "ms", "load", found["load"], target=1.5)


def copying(row):
    with bench_statistics.data_folder(COPIED) as folder:
        found = measured_in_turn(folder, lambda copied: windowbench("copy", copied), {"awk": ("awk", "-F,", AWK)})
    row(f"select and copy {COPIED:,} rows", found["select"] + found["copy"], "ms", "awk", found["awk"])
    row("  the same", found["select"] + found["copy"], "ms", target=500)
    row(f"export {COPIED:,} rows as a page", found["html"], "ms", "awk", found["awk"])


def adapters(row):
    runs = [windowbench("adapters", ADAPTERS) for _ in range(bench_statistics.RUNS)]
    for name in ("first", "again"):
        row(f"table of {ADAPTERS:,} adapters, {name}", statistics.median(run[name] for run in runs), "ms", target=300)


def measure(row):
    """Prints all figures with `row`."""
    operations(row)
    copying(row)
    adapters(row)
