#!/usr/bin/env python3
"""The window through many days of a minute each: what it takes must stay level, and no byte may be lost.

    soak.py PROGRAM-FOLDER [MINUTES]

A day begins five seconds before midnight. Adapters with and without a device come, carry something, get another name and
go, a cable is pulled, a line dialed and ended, and every seventh day the program stands still while the network goes on.
Each day's figures are a line; the exit status is 1 when one of them grew, or when bytes are not as the kernel counted them.
"""

import contextlib
import datetime
import os
import pathlib
import signal
import statistics
import subprocess
import sys
import time
import unittest

import network_manager
import rig

FIRST_EVENING = datetime.datetime(2024, 1, 31, 23, 59, 55, tzinfo=datetime.timezone.utc)
DAY = 60  # seconds that one takes
STANDS_STILL = 7  # days from one time to the next
# What the last quarter's median may be above the first quarter's; nothing where it is to grow, or depends on who else has
# the same libraries in memory.
TOLERANCES = {"dirty kB": 1024, "private kB": None, "pss kB": None, "server kB": 2048, "files": 2, "threads": 1, "cpu s": 0.05,
              "store kB": 16, "settings": 0, "journal kB": 64, "wal kB": 8300, "log B": 4096, "records": None, "bytes off": 0}
# Each adapter's other end, and the addresses of both.
FAR = {**{name: (f"far{net}", f"10.{net}.0.1", f"10.{net}.0.2") for name, net in
          (("lan0", 77), ("usb0", 79), ("usb1", 79), ("veth5", 80))}, "ppp0": ("ras0", "10.64.64.65", "10.64.64.64")}


class Machine:
    """The adapters, the line that dials, the clock and the window."""

    def __init__(self, stack):
        if not rig.FAKETIME:
            raise unittest.SkipTest("libfaketime is not installed")
        self.home, self.display = stack.enter_context(rig.Home()), stack.enter_context(rig.Display())
        self.nm = stack.enter_context(network_manager.NetworkManager(self.home.path))
        self.env = self.home.env
        self.env.update(DISPLAY=self.display.name, DBUS_SYSTEM_BUS_ADDRESS=self.nm.env["DBUS_SYSTEM_BUS_ADDRESS"], TZ="UTC")
        self.moved = {}  # what each line has received and sent so far
        self.clock, self.net = self.home.path / "clock", self.home.path / "net"
        self.prepare_network()
        desktop = rig.Case()
        desktop.home = self.home
        stack.callback(desktop.doCleanups)
        rig.NotifierHost(desktop)
        self.set_clock(0)
        self.start_window()

    def prepare_network(self):
        (self.nm.folder / "conf.d/soak.conf").write_text(f"[keyfile]\nunmanaged-devices={';'.join(FAR)}\n")
        self.nm.nmcli("general", "reload", "conf")
        self.nm.add_pppoe("DSL")
        self.nm.nmcli("connection", "modify", "DSL", "ipv6.method", "disabled")
        for where in (self.nm.here, self.nm.there):
            # IPv6 would send packets of its own.
            self.nm.inside(where, "sh", "-c", "for f in /proc/sys/net/ipv6/conf/*/disable_ipv6; do [ ! -e $f ] || echo 1 > $f; done")
        for name in ("wan0", "lan0", "usb0", "usb1"):
            (self.net / name / "device").mkdir(parents=True)
        (self.net / "ppp0").symlink_to("/sys/devices/virtual/net/ppp0")  # its counters are read there
        self.add("lan0")
        self.nm.ip("route add default via 10.77.0.2")
        self.before = self.nm.counted("lan0")

    def start_window(self):
        # The threshold is above what comes over wan0 of itself: followed and never pulled, it would keep the line that dials
        # over it from being looked for.
        self.home.set(Language="ENG", AutoStart="False", AutoUpdate="False", LANActive=1000)
        faked = ("env", f"LD_PRELOAD={rig.FAKETIME}", f"FAKETIME_TIMESTAMP_FILE={self.clock}", "FAKETIME_CACHE_DURATION=1",
                 "DONT_FAKE_MONOTONIC=1", "NO_FAKE_STAT=1", "ASAN_OPTIONS=verify_asan_link_order=0")
        mounted = "unshare", "--mount", "sh", "-c", f'mount --bind {self.net} /sys/class/net && exec "$@"', "sh"
        self.window = self.nm.start(*mounted, *faked, rig.BIN / "korvalin", env=self.env)
        rig.wait_for(lambda: "Running" in self.home.cli("records", "--format", "csv"), "the first line", 60)

    def set_clock(self, day):
        beside = self.clock.with_suffix(".new")
        beside.write_text(f"{FIRST_EVENING.timestamp() + day * 86400 - time.time():+.0f}\n")  # from the true time
        beside.rename(self.clock)

    def add(self, name):
        far, near_address, far_address = FAR[name]
        self.nm.ip(f"link add {name} type veth peer name {far} netns {self.nm.there}")
        for where, link, address in ((self.nm.there, far, far_address), (self.nm.here, name, near_address)):
            self.nm.ip(f"address add {address}/24 dev {link}", where)
            self.nm.ip(f"link set {link} address {self.hardware_address(address)} up", where)
        self.plugged_in(name)
        self.send(name, 2)

    @staticmethod
    def hardware_address(address):
        return "02:00:" + ":".join(f"{int(part):02x}" for part in address.split("."))

    def plugged_in(self, name):
        """With a fixed neighbour: no ARP at odd times."""
        far, near_address, far_address = FAR[name]
        for where, link, other in ((self.nm.there, far, near_address), (self.nm.here, name, far_address)):
            self.nm.ip(f"neighbour replace {other} lladdr {self.hardware_address(other)} dev {link} nud permanent", where)
        rig.wait_for(lambda: self.nm.link(name)["operstate"] == "UP", f"the carrier of {name}")

    def send(self, name, packets):
        far, near_address, far_address = FAR[name]
        for where, link, to in ((self.nm.there, far, near_address), (self.nm.here, name, far_address)):
            self.nm.inside(where, *rig.sender(link, packets, to))

    def account(self, line, link, since=(0, 0)):
        """Until the statistics have what the line's adapter carried since; its counters."""
        counted = self.nm.counted(link)
        self.moved[line] = [a + b - c for a, b, c in zip(self.moved.get(line, (0, 0)), counted, since)]
        with contextlib.suppress(AssertionError):  # it is in the figures then
            rig.wait_for(lambda: self.bytes_off(line) == 0, f"the bytes of {line}", 15)
        return counted

    def bytes_off(self, *lines):
        """How far the statistics are from what these lines carried; without any, all that there are."""
        found, none = self.home.moved("sums"), (0, 0)
        return sum(abs(a - b) for line in lines or {*found, *self.moved}
                   for a, b in zip(self.moved.get(line, none), found.get(line, none)))

    # ---- a day

    def pass_day(self, stands_still):
        self.pass_midnight(stands_still)
        self.change_adapters()
        self.dial()

    def pass_midnight(self, stands_still):
        self.send("lan0", 300)
        if stands_still:
            self.window.send_signal(signal.SIGSTOP)
        time.sleep(7)
        self.send("lan0", 300)
        self.window.send_signal(signal.SIGCONT)
        self.before = self.account("lan0", "lan0", self.before)

    def change_adapters(self):
        self.add("veth5")
        self.add("usb0")
        self.send("usb0", 200)
        before = self.account("usb0", "usb0")
        self.nm.ip("link set usb0 down")
        self.nm.ip("link set usb0 name usb1 up")
        self.plugged_in("usb1")
        self.send("usb1", 200)
        before = self.account("usb1", "usb1", before)
        self.account("usb1", "usb1", before)  # what asks for a neighbour meanwhile
        for name in ("usb1", "veth5"):
            self.nm.ip(f"link delete {name}")

    def dial(self):
        self.nm.ip("link set far77 down", self.nm.there)  # while it is plugged in, adapters are followed
        self.nm.nmcli("connection", "up", "DSL")
        # Until it is looked for, what it moves belongs to the adapter that carries it, which is not followed here.
        rig.wait_for(lambda: '"DSL"' in self.home.cli("records", "--format", "json"), "the line that was dialed")
        self.send("ppp0", 50)
        self.account("DSL", "ppp0")
        self.nm.nmcli("connection", "down", "DSL")
        self.nm.ip("link set far77 up", self.nm.there)
        self.plugged_in("lan0")

    def tidy(self):
        """After a day that was broken off."""
        self.window.send_signal(signal.SIGCONT)
        for name in ("usb0", "usb1", "veth5"):
            with contextlib.suppress(subprocess.CalledProcessError):
                self.nm.ip(f"link delete {name}")
        self.nm.nmcli("connection", "down", "DSL", check=False)
        self.nm.ip("link set far77 up", self.nm.there)
        self.plugged_in("lan0")

    # ---- what it takes

    @staticmethod
    def kilobytes(pid, *names):
        rows = (line.split() for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:])
        return sum(int(row[1]) for row in rows if row[0][:-1] in names)

    def size(self, pattern, *folders):
        return sum(path.stat().st_size for folder in (self.home.path, *folders) for path in folder.rglob(pattern))

    def cpu_seconds(self):
        fields = pathlib.Path(f"/proc/{self.window.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def figures(self):
        pid, dirty = self.window.pid, ("Private_Dirty", "Swap")
        records = next(self.home.path.rglob("Korvalin_Stats.db"), None)
        return {"dirty kB": self.kilobytes(pid, *dirty), "private kB": self.kilobytes(pid, "Private_Clean", *dirty),
                "pss kB": self.kilobytes(pid, "Pss", "SwapPss"), "server kB": self.kilobytes(self.display.server.pid, *dirty),
                "files": len(os.listdir(f"/proc/{pid}/fd")), "threads": len(os.listdir(f"/proc/{pid}/task")),
                "cpu s": self.cpu_seconds(), "settings": len(self.home.cli("settings", "list").splitlines()),
                "store kB": self.size("registry.db") // 1024, "journal kB": self.size("Korvalin_Journal.db") // 1024,
                "wal kB": self.size("*.db-wal") // 1024, "log B": self.size("*_ErrorLog.txt", rig.BIN),
                "records": len(records.read_bytes().splitlines()) if records else 0, "bytes off": self.bytes_off()}


def figures_of_days(machine, days):
    """A line for each as soon as it is over."""
    print("   day  " + "  ".join(TOLERANCES), flush=True)
    begun, taken, cpu = time.monotonic(), [], machine.cpu_seconds()
    for day in range(days):
        machine.set_clock(day)
        try:
            machine.pass_day(stands_still=day % STANDS_STILL == STANDS_STILL - 1)
        except (AssertionError, subprocess.SubprocessError) as error:  # as on a machine that is too busy
            print(f"day {day + 1} was broken off: {error}", flush=True)
            machine.tidy()
        time.sleep(max(0, begun + (day + 1) * DAY - time.monotonic()))
        if machine.window.poll() is not None:
            sys.exit(f"the window ended with {machine.window.returncode}")
        figures = machine.figures()
        cpu, figures["cpu s"] = figures["cpu s"], round(figures["cpu s"] - cpu, 2)
        taken.append(figures)
        print(f"{day + 1:6}  " + "  ".join(f"{figures[name]:>{len(name)}}" for name in TOLERANCES), flush=True)
    return taken


def summary(taken):
    """The figures that grew, told beside all of them."""
    quarter, grown = max(1, len(taken) // 4), []
    print(f"\n{'':12}{'first quarter':>14}{'last quarter':>14}{'an hour':>12}{'may grow by':>13}")
    for name, tolerance in TOLERANCES.items():
        values = [figures[name] for figures in taken]
        first, last = statistics.median(values[:quarter]), statistics.median(values[-quarter:])
        slope = statistics.linear_regression(range(len(values)), values).slope * 3600 / DAY if len(values) > 1 else 0
        if tolerance is not None and last - first > tolerance:
            grown.append(name)
        print(f"{name:12}{first:14.2f}{last:14.2f}{slope:12.2f}{'' if tolerance is None else tolerance:>13}"
              f"{'  GREW' * (name in grown)}")
    return grown


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # what was started ends too
    with contextlib.ExitStack() as stack:
        try:
            machine = Machine(stack)
        except unittest.SkipTest as reason:
            sys.exit(f"cannot run here: {reason}")
        taken = figures_of_days(machine, int(sys.argv[2]) if len(sys.argv) > 2 else 120)
        grown, off = summary(taken), taken[-1]["bytes off"]
        print(f"\n{sum(map(sum, machine.moved.values()))} bytes of {', '.join(machine.moved)}: {off} not as the kernel counted")
        sys.exit(1 if grown or off else 0)


if __name__ == "__main__":
    main()
