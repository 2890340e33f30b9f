#!/usr/bin/env python3
"""Dial-up lines of a real NetworkManager: listed, followed and recorded; with the service, without it, and when it goes."""

import json
import socket
import subprocess
import sys
import time

import rig
from network_manager import DRIVER, LineCase

MODEM, LAN, INSTALLED, CONFIGURED = 0x01, 0x02, 0x10, 0x40

class DialUpLines(LineCase):
    def cli(self, *arguments):
        return self.nm.run(rig.BIN / "korvalin-cli", *arguments, env=self.home.env)

    def send(self, device, address, packets):
        self.nm.run(sys.executable, "-c", rig.SEND, device, packets, address)

    def start(self, command, **options):
        process = self.nm.start(*command, env={**self.nm.env, **self.home.env}, **options)
        self.addCleanup(rig.ended, process)
        return process

    def watch(self):
        return rig.Watch(self.home, self.start)

    def follow(self):
        """A process that writes every connected state into a file, and how to wait for one."""
        file = self.home.path / "states"
        with open(file, "w", encoding="utf-8") as output:
            self.start([DRIVER, "follow"], stdout=output)

        def await_state(flags):
            rig.wait_for(lambda: file.read_text().endswith(f"{flags:#x}\n"), f"{flags:#x}")

        return await_state, file

    def start_recording(self):
        self.start([rig.BIN / "korvalin-cli", "record"])
        rig.wait_for(lambda: list(self.home.path.rglob("registry.db")), "the recorder")

    def records(self):
        return json.loads(self.cli("records", "--closed", "--format", "json"))

    def test_profiles_are_entries_each_name_once(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.add("ethernet", "LAN", "ifname", "wan0")
        uuids = sorted((self.nm.add_gsm("Umts", number="*1#"), self.nm.add_gsm("Umts", number="*2#")))
        self.nm.add("wireguard", "Umts (2)", "ifname", "wg7")
        self.nm.add("vpn", "Firma", "vpn-type", "vpnc")
        self.nm.add("gsm", "Neu", "ifname", "*", "apn", "net.example")
        numbers = [self.nm.nmcli("-g", "gsm.number", "connection", "show", uuid) for uuid in uuids]
        self.assertCountEqual(self.drive("entries").splitlines(), [
            "T-DSL|PPPoE|", "Umts (2)|vpn|", "Firma|vpn|", "Neu|modem|net.example",
            f"Umts|modem|{numbers[0]} (internet)", f"Umts (3)|modem|{numbers[1]} (internet)"])

    def test_a_line_is_followed_and_recorded_when_the_far_side_hangs_up(self):
        self.nm.add_pppoe("T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names()
        self.nm.nmcli("connection", "up", "T-DSL")
        watch.await_names("T-DSL")
        self.send("ppp0", "10.64.64.64", 20)

        def counted():
            line, sent = watch.lines()[0], self.nm.counter("ppp0", "tx_bytes")
            return sent > 20_000 and line["bytes_transmitted"] == sent and line

        line = rig.wait_for(counted, "the kernel's counter")
        self.assertEqual(line["bytes_received"], self.nm.counter("ppp0", "rx_bytes"))
        self.assertEqual(line["kind"], "dial-up")
        (self.nm.folder / "ppp.hangup").touch()
        watch.await_names()
        record = rig.wait_for(self.records, "the record")[0]
        self.assertEqual(record["line_name"], "T-DSL")
        self.assertGreaterEqual(record["bytes_transmitted"], 20_000)

    def test_a_second_call_over_the_same_modem_begins_at_zero(self):
        self.nm.add_gsm("Umts")
        watch = self.watch()
        watch.await_names()
        for _ in range(2):
            before = self.nm.counter("wwan0", "tx_bytes")
            self.nm.nmcli("connection", "up", "Umts")
            watch.await_names("Umts")
            self.send("wwan0", "10.78.0.1", 5)

            def counted(already=before):
                sent = self.nm.counter("wwan0", "tx_bytes") - already
                return sent > 5000 and watch.lines()[0]["bytes_transmitted"] == sent

            rig.wait_for(counted, "the bytes of this call alone")
            self.nm.nmcli("connection", "down", "Umts")
            watch.await_names()

    def test_a_vpn_is_followed_beside_the_line_it_runs_over(self):
        self.nm.start_vpn_server()
        self.nm.add_pppoe("T-DSL")
        self.nm.add_vpn("Firma")
        self.nm.nmcli("connection", "up", "T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names("T-DSL")
        self.nm.nmcli("connection", "up", "Firma")
        watch.await_names("T-DSL", "Firma")
        self.send("tun0", "10.99.0.1", 20)
        rig.wait_for(lambda: watch.lines()[1]["bytes_transmitted"] == self.nm.counter("tun0", "tx_bytes") > 20_000,
                     "the tunnel's counter")
        self.nm.nmcli("connection", "down", "Firma")
        watch.await_names("T-DSL")
        self.assertEqual([record["line_name"] for record in rig.wait_for(self.records, "the record")], ["Firma"])

    def test_a_line_that_is_older_than_the_program_has_its_age(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.nmcli("connection", "up", "T-DSL")
        up = time.monotonic()
        rig.wait_for(lambda: time.monotonic() - up > 1.5, "the line to be older")
        milliseconds, link = (int(field) for field in self.drive("lines").split("|")[5:])
        self.assertEqual(link, int(self.nm.run("cat", "/sys/class/net/ppp0/ifindex")))
        self.assertGreaterEqual(milliseconds, 1500)
        self.assertLess(milliseconds, (time.monotonic() - up + 2) * 1000)
        self.assertEqual(int(self.drive("state"), 16) & (MODEM | INSTALLED), MODEM | INSTALLED)

    def test_lines_end_with_the_daemon_and_are_seen_again(self):
        self.nm.add_pppoe("T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names()
        self.nm.nmcli("connection", "up", "T-DSL")
        watch.await_names("T-DSL")
        self.nm.stop_daemon()
        watch.await_names()
        seen = len(watch.history)
        rig.wait_for(lambda: len(watch.history) > seen + 1, "two more looks")
        self.assertEqual(watch.lines(), [])  # the kernel still routes over the line, which is no network for that
        self.nm.cut_lines()
        rig.wait_for(lambda: int(self.drive("state"), 16) == INSTALLED, "nothing that is up")
        self.assertEqual(self.drive("entries"), "")
        self.assertEqual(rig.wait_for(self.records, "the record")[0]["line_name"], "T-DSL")
        self.nm.start_daemon()
        self.nm.nmcli("connection", "up", "T-DSL")
        watch.await_names("T-DSL")
        self.assertIsNone(watch.process.poll())

    def test_a_bus_that_was_restarted_is_found_again(self):
        self.nm.add_pppoe("T-DSL")
        await_state, _ = self.follow()
        await_state(INSTALLED)
        self.nm.nmcli("connection", "up", "T-DSL")
        await_state(MODEM | INSTALLED | CONFIGURED)
        self.nm.stop_bus()
        await_state(INSTALLED)
        self.nm.start_bus()
        await_state(INSTALLED)
        self.nm.nmcli("connection", "up", "T-DSL")
        await_state(MODEM | INSTALLED | CONFIGURED)

    def test_looking_at_the_lines_asks_nobody(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.nmcli("connection", "up", "T-DSL")
        once = self.nm.calls_during(DRIVER, "measure", 1)
        self.assertGreater(once, 1)  # the first look
        self.assertLess(self.nm.calls_during(DRIVER, "measure", 2000) - once, 20)

    def test_a_line_never_looks_like_a_network(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.add_gsm("Umts")
        await_state, file = self.follow()
        for name in ("T-DSL", "Umts"):
            await_state(INSTALLED)
            self.nm.nmcli("connection", "up", name)
            await_state(MODEM | INSTALLED | CONFIGURED)
            self.nm.nmcli("connection", "down", name)
        await_state(INSTALLED)
        self.nm.nmcli("connection", "up", "T-DSL")
        await_state(MODEM | INSTALLED | CONFIGURED)
        (self.nm.folder / "ppp.hangup").touch()
        await_state(INSTALLED)
        self.assertEqual([flags for flags in file.read_text().split() if int(flags, 16) & LAN], [])


class WithoutService(rig.Case):
    """No NetworkManager, no bus, a bus that hangs: nothing is shown, nothing complains, nothing waits."""

    def lines_over(self, address):
        self.home.env["DBUS_SYSTEM_BUS_ADDRESS"] = address
        start = time.monotonic()
        run = subprocess.run([rig.BIN / "korvalin-cli", "lines"], env=self.home.env, text=True, capture_output=True,
                             check=True, timeout=30)
        self.assertLess(time.monotonic() - start, 3)
        self.assertEqual(run.stderr, "")
        self.assertEqual(list(self.home.path.rglob("*.log")), [])

    def test_no_bus(self):
        self.lines_over(f"unix:path={self.home.path}/none")

    def test_a_bus_that_hangs(self):
        with socket.socket(socket.AF_UNIX) as silent:
            silent.bind(str(self.home.path / "silent"))
            silent.listen()
            self.lines_over(f"unix:path={self.home.path}/silent")

    def test_a_bus_without_the_service(self):
        bus = f"unix:path={self.home.path}/bus"
        self.launch(["dbus-daemon", "--session", "--nofork", f"--address={bus}"], stderr=subprocess.DEVNULL)
        rig.wait_for((self.home.path / "bus").exists, "the bus")
        self.lines_over(bus)


if __name__ == "__main__":
    rig.main()
