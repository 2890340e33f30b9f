#!/usr/bin/env python3
"""Dial-up lines of a real NetworkManager: followed and recorded; with the service, without it, and when it goes."""

import socket
import sys
import time

import rig
from network_manager import DRIVER, LineCase

MODEM, LAN, INSTALLED, CONFIGURED = 0x01, 0x02, 0x10, 0x40
UP = MODEM | INSTALLED | CONFIGURED


class DialUpLines(LineCase):
    def watch(self):
        return rig.Watch(self, self.nm.into)

    def await_sent(self, watch, device, address, line=0, already=0):
        """The program tells what the kernel has counted of packets that are sent now."""
        self.nm.run(sys.executable, "-c", rig.SEND, device, 20, address)

        def counted():
            sent = self.nm.counted(device)[1] - already
            return sent > 20_000 and watch.lines()[line]["bytes_transmitted"] == sent and watch.lines()[line]

        return rig.wait_for(counted, "the kernel's counter")

    def follow(self):
        """A process that writes every connected state into a file, and how to wait for one."""
        file = self.home.path / "states"
        with open(file, "w", encoding="utf-8") as output:
            self.launch([DRIVER, "follow"], self.nm.into, stdout=output)

        def await_state(flags):
            rig.wait_for(lambda: file.read_text().endswith(f"{flags:#x}\n"), f"{flags:#x}")

        return await_state, file

    def start_recording(self):
        self.launch([rig.BIN / "korvalin-cli", "record"], self.nm.into)
        rig.wait_for(self.home.store.exists, "the recorder")

    def recorded(self):
        return rig.wait_for(lambda: self.home.json("records", "--closed"), "the record")[0]

    def test_a_line_is_followed_and_recorded_when_the_far_side_hangs_up(self):
        self.nm.add_pppoe("T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names()
        self.nm.up("T-DSL")
        watch.await_names("T-DSL")
        line = self.await_sent(watch, "ppp0", "10.64.64.64")
        self.assertEqual((line["bytes_received"], line["kind"]), (self.nm.counted("ppp0")[0], "dial-up"))
        (self.nm.folder / "ppp.hangup").touch()
        watch.await_names()
        record = self.recorded()
        self.assertEqual(record["line_name"], "T-DSL")
        self.assertGreaterEqual(record["bytes_transmitted"], 20_000)

    def test_a_second_call_over_the_same_modem_begins_at_zero(self):
        self.nm.add_gsm("Umts")
        watch = self.watch()
        for _ in range(2):
            watch.await_names()
            before = self.nm.counted("wwan0")[1]
            self.nm.up("Umts")
            watch.await_names("Umts")
            self.await_sent(watch, "wwan0", "10.78.0.1", already=before)
            self.nm.nmcli("connection", "down", "Umts")

    def test_a_vpn_is_followed_beside_the_line_it_runs_over_which_has_its_age(self):
        self.nm.start_vpn_server()
        self.nm.add_pppoe("T-DSL")
        self.nm.add_vpn("Firma")
        begun = time.monotonic()
        self.nm.up("T-DSL")
        up = time.monotonic()
        rig.wait_for(lambda: time.monotonic() - up > 1.5, "the line to be older")
        watch = self.watch()
        self.start_recording()
        watch.await_names("T-DSL")
        age = watch.history[0][0]["duration_seconds"]
        self.assertTrue(1.5 <= age < time.monotonic() - begun + 10, age)  # a busy machine's kernel dates addresses too early
        self.nm.up("Firma")
        watch.await_names("T-DSL", "Firma")
        self.await_sent(watch, "tun0", "10.99.0.1", line=1)
        self.nm.nmcli("connection", "down", "Firma")
        watch.await_names("T-DSL")
        self.assertEqual(self.recorded()["line_name"], "Firma")

    def test_lines_end_with_the_daemon_and_are_seen_again(self):
        self.nm.add_pppoe("T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names()
        self.nm.up("T-DSL")
        watch.await_names("T-DSL")
        self.nm.stop_daemon()
        watch.await_names()
        seen = len(watch.history)
        rig.wait_for(lambda: len(watch.history) > seen + 1, "two more looks")
        self.assertEqual(watch.lines(), [])  # the kernel still routes over the line, which is no network for that
        self.nm.cut_lines()
        self.assertEqual(self.recorded()["line_name"], "T-DSL")
        self.nm.start_daemon()
        self.nm.up("T-DSL")
        watch.await_names("T-DSL")

    def test_looking_at_the_lines_asks_nobody(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.up("T-DSL")
        once = self.nm.calls_during(DRIVER, "measure", 1)
        self.assertGreater(once, 1)  # the first look
        self.assertLess(self.nm.calls_during(DRIVER, "measure", 2000) - once, 20)

    def test_a_line_never_looks_like_a_network_and_is_found_again_on_a_new_bus(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.add_gsm("Umts")
        await_state, file = self.follow()
        for name, end in (("T-DSL", lambda: self.nm.nmcli("connection", "down", "T-DSL")),
                          ("Umts", lambda: self.nm.nmcli("connection", "down", "Umts")),
                          ("T-DSL", (self.nm.folder / "ppp.hangup").touch)):
            await_state(INSTALLED)
            self.nm.up(name)
            await_state(UP)
            end()
        await_state(INSTALLED)
        self.nm.up("T-DSL")
        await_state(UP)
        self.nm.stop_bus()
        await_state(INSTALLED)
        self.nm.start_bus()
        self.nm.up("T-DSL")
        await_state(UP)
        self.assertEqual([flags for flags in file.read_text().split() if int(flags, 16) & LAN], [])


class WithoutService(rig.Case):
    """No NetworkManager, no bus, a bus that hangs: nothing is shown, nothing complains, nothing waits."""

    def test_lines_are_read_all_the_same(self):
        silent = self.enterContext(socket.socket(socket.AF_UNIX))
        silent.bind(str(self.home.path / "silent"))
        silent.listen()
        for address in ("unix:path=/none", f"unix:path={self.home.path}/silent", self.bus("without")):
            with self.subTest(address):
                self.home.env["DBUS_SYSTEM_BUS_ADDRESS"] = address
                start = time.monotonic()
                run = self.home.run("lines", check=True)
                self.assertLess(time.monotonic() - start, 3)
                self.assertEqual((run.stderr, list(self.home.path.rglob("*.log"))), ("", []))


if __name__ == "__main__":
    rig.main()
