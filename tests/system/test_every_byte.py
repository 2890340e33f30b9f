#!/usr/bin/env python3
"""Every byte that the kernel counts is in the sums once, whatever happens to adapters, routes and the program."""

import json
import shutil
import signal
import sys
import time
import unittest

import rig


class EveryByte(rig.RecorderCase):
    def setUp(self):
        super().setUp()
        self.await_carrier = self.network.await_carrier
        self.first = {}  # what each adapter had counted when the program met it

    # ---- the machine

    def ip(self, *arguments, where=None):
        return self.network.inside(where or self.here, "ip", *arguments)

    def add(self, name, address):
        """One more adapter, joined to the other side; a fixed neighbour, so that nothing else travels."""
        self.ip("link", "add", name, "type", "veth", "peer", "name", name + "p", "netns", self.there)
        self.ip("address", "add", f"10.{address}.0.1/24", "dev", name)
        self.ip("address", "add", f"10.{address}.0.2/24", "dev", name + "p", where=self.there)
        self.ip("link", "set", name + "p", "up", where=self.there)
        for where, link, other, other_link, to in ((self.here, name, self.there, name + "p", 2),
                                                   (self.there, name + "p", self.here, name, 1)):
            shown = json.loads(self.network.inside(other, "ip", "-json", "link", "show", other_link).stdout)
            self.ip("neighbour", "replace", f"10.{address}.0.{to}", "lladdr", shown[0]["address"], "dev", link,
                    "nud", "permanent", where=where)
        self.ip("link", "set", name, "up")
        self.await_carrier(name, name + "p")
        self.send(name, 2, address)

    # ---- the program

    def sums(self, period="month", *arguments):
        return self.home.moved("sums", "--period", period, *arguments)

    def meet(self, *names):
        self.first.update({name: self.counted(name) for name in names})

    def moved(self, name):
        return [now - first for now, first in zip(self.counted(name), self.first[name])]

    # ---- what happens

    def test_runs_that_end_and_one_that_is_killed(self):
        self.meet("wire0")
        for how in (signal.SIGTERM, signal.SIGINT, signal.SIGKILL, signal.SIGTERM):
            recorder = self.record()
            self.send("wire0", 700)
            # A kill loses none of what was read, an end reads once more.
            if how == signal.SIGKILL:
                rig.wait_for(lambda: self.sums()["wire0"] == self.moved("wire0"), "its reading")
            self.end(recorder, how)
            self.send("wire0", 50)
        recorder = self.record()
        self.end(recorder)
        self.assertEqual(self.sums(), {"wire0": self.moved("wire0")})
        self.assertEqual(len([r for r in self.records() if "Interrupted" in r["info"]]), 1)

    def test_an_adapter_that_comes_and_goes(self):
        recorder = self.record()
        total = [0, 0]
        for _ in range(4):
            self.add("usb0", "78")
            self.await_lines("wire0", "usb0")
            self.send("usb0", 300, "78")
            total = [a + b for a, b in zip(total, self.counted("usb0"))]
            rig.wait_for(lambda: self.sums()["usb0"] == total, "its reading")
            self.ip("link", "delete", "usb0")
            self.await_lines("wire0")
        self.end(recorder)
        self.assertEqual(self.sums()["usb0"], total)
        self.assertEqual(len([r for r in self.records() if r["line_name"] == "usb0"]), 4, "each is a record of its own")

    def test_an_adapter_that_is_made_anew_within_a_second(self):
        self.add("tun0", "79")
        self.meet("tun0")
        total = [-counted for counted in self.first["tun0"]]
        recorder = self.record("wire0", "tun0")
        for _ in range(3):
            self.send("tun0", 200, "79")
            total = [a + b for a, b in zip(total, self.counted("tun0"))]
            # The kernel forgets what the end of a pair has received when the pair goes, not when the end moves away.
            self.ip("link", "set", "tun0", "netns", self.there)
            self.ip("link", "delete", "tun0", where=self.there)
            self.add("tun0", "79")
        total = [a + b for a, b in zip(total, self.counted("tun0"))]
        self.end(recorder)
        self.assertEqual(self.sums()["tun0"], total)

    def test_an_adapter_that_gets_another_name(self):
        self.meet("wire0")
        recorder = self.record()
        self.send("wire0", 300)
        rig.wait_for(lambda: self.sums()["wire0"] == self.moved("wire0"), "its reading")
        before = self.moved("wire0")
        self.ip("link", "set", "wire0", "down")
        self.ip("link", "set", "wire0", "name", "lan0", "up")
        self.first["lan0"] = self.counted("lan0")
        self.ip("route", "add", "default", "via", "10.77.0.2")
        self.await_carrier("lan0", "wire1")
        self.await_lines("lan0")
        self.network.inside(self.there, sys.executable, "-c", rig.SEND, "wire1", "100", "10.77.0.1")
        self.end(recorder)
        sums = self.sums()
        self.assertEqual(sums, {"wire0": before, "lan0": self.moved("lan0")})

    def test_a_carrier_that_is_lost_and_found(self):
        self.meet("wire0")
        recorder = self.record()
        for _ in range(3):
            self.send("wire0", 200)
            self.ip("link", "set", "wire1", "down", where=self.there)
            self.await_lines()
            self.ip("link", "set", "wire1", "up", where=self.there)
            self.await_carrier("wire0", "wire1")
            self.await_lines("wire0")
        self.end(recorder)
        self.assertEqual(self.sums(), {"wire0": self.moved("wire0")})
        self.assertGreaterEqual(len(self.records()), 3)

    def test_an_adapter_that_comes_while_there_is_no_route(self):
        self.meet("wire0")
        recorder = self.record()
        self.ip("route", "delete", "default")
        self.add("usb0", "78")
        self.await_lines("wire0", "usb0")
        self.send("wire0", 300)
        self.send("usb0", 300, "78")
        self.end(recorder)
        self.assertEqual(self.sums(), {"wire0": self.moved("wire0"), "usb0": self.counted("usb0")})

    def test_a_killed_recorder_whose_adapter_then_goes(self):
        self.add("usb0", "78")
        self.meet("usb0")
        recorder = self.record("wire0", "usb0")
        self.send("usb0", 1000, "78")
        moved = self.moved("usb0")
        rig.wait_for(lambda: self.sums()["usb0"] == moved, "its reading")
        self.end(recorder, signal.SIGKILL)
        self.ip("link", "delete", "usb0")
        self.end(self.record())
        self.assertEqual(self.sums()["usb0"], moved)

    def test_a_bridge_over_an_adapter_and_twelve_containers(self):
        self.ip("link", "add", "br0", "type", "bridge")
        for number in range(12):
            self.ip("link", "add", f"veth{number}", "type", "veth", "peer", "name", f"inside{number}", "netns", self.there)
            self.ip("link", "set", f"veth{number}", "master", "br0", "up")
            self.ip("link", "set", f"inside{number}", "up", where=self.there)
        self.ip("link", "set", "br0", "up")
        self.meet("wire0")
        recorder = self.record(prefix=rig.with_hardware(self.home.path / "net", "wire0"))
        self.send("wire0", 300)
        for number in range(12):
            self.network.inside(self.there, sys.executable, "-c",
                                "import socket,sys;s=socket.socket(socket.AF_PACKET,socket.SOCK_RAW);"
                                f"s.bind(('inside{number}',0));[s.send(b'\\xff'*12+b'\\x88\\xb5'+b'x'*500) for _ in range(20)]")
        rig.wait_for(lambda: self.sums()["wire0"] == self.moved("wire0"), "its reading")
        self.end(recorder)
        self.assertEqual(self.sums(), {"wire0": self.moved("wire0")})
        self.assertNotIn("br0", self.home.cli("settings", "list"), "what is left out gets no alias")

    @unittest.skipUnless(rig.FAKETIME, "libfaketime is not installed")
    def test_a_month_that_ends_while_the_recorder_runs(self):
        self.meet("wire0")
        recorder = self.record(prefix=rig.at_time("2024-11-30 23:59:50"))
        self.send("wire0", 1000)
        november = self.moved("wire0")
        rig.wait_for(lambda: self.sums()["wire0"] == november, "its reading", 8)
        rig.wait_for(lambda: any("Day ended" in r["info"] for r in self.records()), "midnight")
        self.send("wire0", 100)
        self.end(recorder)
        moved = self.moved("wire0")
        months = {row["label"]: [row["bytes_received"], row["bytes_transmitted"]]
                  for row in json.loads(self.home.cli("sums", "--period", "month", "--format", "json"))}
        self.assertEqual(months, {"November 2024": november,
                                  "December 2024": [all_ - before for all_, before in zip(moved, november)]})
        first, second = self.records()
        self.assertEqual(first["log_out"], "2024-11-30T23:59:59+00:00")
        self.assertEqual(second["log_in"], "2024-12-01T00:00:00+00:00")

    def test_open_connections_are_shown_while_they_are_recorded(self):
        recorder = self.record()
        self.assertEqual(self.records("--closed"), [])
        self.assertEqual(self.sums("month", "--closed"), {})
        self.end(recorder)
        self.assertEqual([r["line_name"] for r in self.records("--closed")], ["wire0"])
        self.assertEqual(self.records(), self.records("--closed"), "nobody records")

    def test_the_journal_goes_onto_the_medium_once_a_minute(self):
        strace = shutil.which("strace")
        if not strace:
            self.skipTest("strace is not installed")
        log = self.home.path / "calls"
        recorder = self.record(prefix=(strace, "-D", "-f", "-qq", "-e", "trace=fsync,fdatasync,sync_file_range", "-o", str(log)))
        flushed = len(log.read_text().splitlines())
        started = time.monotonic()
        while time.monotonic() - started < 8:
            self.send("wire0", 5)
        self.assertEqual(len(log.read_text().splitlines()), flushed, "nothing but notes within the minute")
        self.end(recorder)


if __name__ == "__main__":
    rig.main()
