"""The dial-up lines of script/bench: a second's reading with 20 profiles and 3 lines of a real NetworkManager, and the calls
that it makes on the bus."""

import json
import pathlib
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
BENCH = ROOT / "build/release/bench/bench_core"
DRIVER = ROOT / "build/release/tests/dialdriver"
PASSES = 10_000


def bring_up(nm):
    nm.start_vpn_server()
    nm.add_pppoe("T-DSL")
    nm.add_gsm("Umts")
    nm.add_vpn("Firma")
    for number in range(17):
        nm.add_gsm(f"Umts {number}")
    for name in ("T-DSL", "Umts", "Firma"):
        nm.nmcli("connection", "up", name)


def reading(nm, home):
    """What the core's benchmark tells about a second's reading."""
    file = home.path / "reading.json"
    nm.run(BENCH, "--benchmark_filter=DialUpLines", "--benchmark_out_format=json", f"--benchmark_out={file}", env=home.env)
    found = json.loads(file.read_text())["benchmarks"][0]
    assert found.get("lines") == 3, f"three lines were to be read: {found}"
    return found["cpu_time"] / {"ns": 1000, "us": 1, "ms": 0.001}[found["time_unit"]]


def measure(row):
    sys.path.insert(0, str(ROOT / "tests/system"))
    import network_manager
    import rig

    try:
        with rig.Home() as home, network_manager.NetworkManager(home.path) as nm:
            bring_up(nm)
            row("20 profiles, 3 lines: a second's reading", reading(nm, home), "us", target=100)
            calls = nm.calls_during(DRIVER, "measure", PASSES) - nm.calls_during(DRIVER, "measure", 1)
            row("  calls on the bus per reading", calls / PASSES, "", target=0)
    except unittest.SkipTest as reason:
        print(f"dial-up lines: skipped, {reason}")
