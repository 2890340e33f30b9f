#!/usr/bin/env python3
"""Lines of a real NetworkManager: dialed, followed and recorded; with the service, without it, and when it goes."""

import socket
import subprocess
import time

import rig
from network_manager import DRIVER, LineCase

MODEM, LAN, INSTALLED, CONFIGURED = 0x01, 0x02, 0x10, 0x40
UP = MODEM | INSTALLED | CONFIGURED
FORCE_PROMPT, UNATTENDED = 0x2000, 0x8000
LINE, ERROR = "result 0 line", "org.freedesktop.ModemManager1.Error.Connection."


class DialService(LineCase):
    def dial(self, name, *options, flags=0):
        """What the dial showed, and its result."""
        *shown, result, alive = self.drive("dial", name, "--flags", flags, *options).splitlines()
        self.assertEqual(alive, "windows alive")
        return shown, result

    def check(self, result, name, *options, flags=0):
        self.assertEqual(self.dial(name, *options, flags=flags)[1], result)

    def check_asked(self, name, user="u", password="p"):
        """The line comes up with the login that is asked for."""
        shown, result = self.dial(name, "--user", user, "--password", password, flags=FORCE_PROMPT)
        self.assertEqual((shown[0].split(" for ")[0], result), (f"asked {name}", LINE))

    def test_a_dial_shows_its_stages_and_starts_nothing_else(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.add_pppoe("Andere")
        self.nm.add_gsm("Umts")
        shown, result = self.dial("T-DSL", flags=UNATTENDED)
        self.assertEqual((shown[0], shown[-1], result), ("begin T-DSL", "end", LINE))
        self.assertLessEqual({"stage connecting", "stage getting address"}, set(shown))
        self.assertEqual(self.nm.active(), ["T-DSL", "lo", "ppp0"])
        self.assertEqual(self.drive("dial", "T-DSL"), LINE)  # at once: it is up
        self.assertEqual(self.drive("dial", "Nirgends"), "failed Nirgends 623\nresult 623 none")

    def test_a_wrong_password_is_asked_for_and_kept(self):
        self.nm.add_pppoe("T-DSL", "falsch")
        shown, result = self.dial("T-DSL", flags=UNATTENDED)
        self.assertEqual(result, "result 691 none")
        self.assertNotIn("asked", " ".join(shown))
        self.assertEqual(self.drive("dial", "T-DSL", "--flags", FORCE_PROMPT), "asked T-DSL for u\nresult 1223 none")
        self.check_asked("T-DSL")
        self.nm.nmcli("connection", "down", "T-DSL")
        self.check(LINE, "T-DSL", flags=UNATTENDED)
        self.assertNotIn("password=p", (self.nm.folder / "nm.log").read_text())

    def test_every_kind_of_line_asks_for_a_refused_or_missing_login(self):
        self.nm.start_vpn_server()
        self.nm.add_pppoe("Eigene", "falsch", "ifname", "dsl0", "pppoe.parent", "wan0")
        self.nm.add_gsm("Umts", "gsm.username", "u", "gsm.pin", "1234", "gsm.password-flags", "1")  # which nobody has
        self.nm.add_pppoe("T-DSL")
        self.nm.add_vpn("Firma", "falsch")
        for name, *login in (("Eigene",), ("Umts", "ich", "neu"), ("Firma", "alice", "secret")):
            with self.subTest(name):
                if name == "Firma":
                    self.nm.up("T-DSL")  # what it runs over
                self.check("result 691 none", name, "--clock-rate", 45 if name == "Umts" else 1)
                self.nm.await_end(name)
                self.check_asked(name, *login)
                self.nm.nmcli("connection", "down", name)
        kept = (self.nm.folder / "profiles/Umts.nmconnection").read_text().splitlines()
        self.assertLessEqual({"username=ich", "password=neu", "pin=1234", "apn=internet"}, set(kept))

    def test_failures_have_their_numbers(self):
        self.nm.add("ethernet", "LAN", "ifname", "wan0", "ipv4.method", "manual", "ipv4.addresses", "10.66.0.2/24")
        self.nm.add_pppoe("T-DSL")
        self.nm.add_pppoe("Falsch", "falsch")
        self.nm.add_gsm("Umts")
        self.nm.add_gsm("Andere")
        self.nm.add_vpn("Firma")
        for before, far, told, name, number in (
                (None, "modem", {"error": ERROR + "NoDialtone"}, "Umts", 680),
                (None, "modem", {"error": ERROR + "NoCarrier"}, "Umts", 678),
                (None, "modem", {"error": ERROR + "Busy"}, "Umts", 676),
                (None, "ppp", {"fails": 16}, "T-DSL", 678),  # nobody answered, so no password is to blame
                (None, "ppp", {}, "Firma", 611),  # there is nothing that it could run over
                # What the device did before is not why a dial failed.
                ("LAN", "ppp", {}, "Falsch", 691), ("Umts", "modem", {"error": ERROR + "NoDialtone"}, "Andere", 680)):
            with self.subTest(name=name, number=number):
                if before:
                    self.nm.tell("modem")
                    self.nm.up(before)
                self.nm.tell(far, **told)
                self.check(f"result {number} none", name)
        shown, result = self.dial("T-DSL", "--user", "", "--password", "p", flags=FORCE_PROMPT)  # cannot be kept
        self.assertEqual((shown[-1], result), ("failed T-DSL 635", "result 635 none"))

    def test_a_number_that_changes_while_the_login_is_asked_for_is_not_dialed(self):
        uuid = self.nm.add_gsm("Umts")
        shown, result = self.dial("Umts", "--user", "ich", "--password", "neu", "--when-asked",
                                  f"nmcli connection modify {uuid} gsm.apn teuer", flags=FORCE_PROMPT)
        self.assertEqual(result, "result 1237 none")
        self.assertNotIn("failed", " ".join(shown))  # it is asked about, then dialed again
        self.assertNotIn("Umts", self.nm.active())
        self.assertEqual(self.nm.nmcli("-g", "gsm.username", "connection", "show", uuid), "")

    def test_a_dial_ends_before_its_line_is_up(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.add_gsm("Umts")
        self.nm.tell("ppp", delay=1)
        self.nm.tell("modem", delay=6)
        for name, options, result, least, most in (
                ("T-DSL", ("--cancel-at", "begin"), 1223, 0, 2), ("T-DSL", ("--cancel-at", "connecting"), 1223, 0, 2),
                ("Umts", ("--clock-rate", 45), 678, 1.9, 10)):  # given up after ninety seconds
            with self.subTest(options):
                start = time.monotonic()
                self.check(f"result {result} none", name, *options)
                self.assertTrue(least <= time.monotonic() - start < most)
                self.nm.await_end(name)

    def test_a_daemon_that_stops_ends_the_dial(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.tell("ppp", delay=2)
        driver = self.nm.start(DRIVER, "dial", "T-DSL", stdout=subprocess.PIPE, text=True)
        rig.wait_for(lambda: "T-DSL" in self.nm.active(), "the dial")
        self.nm.stop_daemon()
        self.assertRegex(driver.communicate(timeout=10)[0], "result 6.. none")


class DialUpLines(LineCase):
    def watch(self):
        return rig.Watch(self, self.nm.into)

    def await_sent(self, watch, device, address, line=0):
        """The program tells what the kernel has counted of packets that are sent now."""
        self.nm.run(*rig.sender(device, 20, address))

        def counted():
            sent = self.nm.counted(device)[1]
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

    def recorded(self, name, *options):
        return rig.wait_for(lambda: next((record for record in self.home.json("records", *options)
                                          if record["line_name"] == name), None), f"the record of {name}")

    def test_a_line_is_followed_and_recorded_when_the_far_side_hangs_up(self):
        self.nm.add_pppoe("T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names()
        self.nm.up("T-DSL")
        watch.await_names("T-DSL")
        line = self.await_sent(watch, "ppp0", "10.64.64.64")
        self.assertEqual((line["bytes_received"], line["kind"]), (self.nm.counted("ppp0")[0], "dial-up"))
        self.recorded("T-DSL")  # which is open
        (self.nm.folder / "ppp.hangup").touch()
        watch.await_names()
        self.assertGreaterEqual(self.recorded("T-DSL", "--closed")["bytes_transmitted"], 20_000)

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
        self.recorded("Firma")
        self.nm.nmcli("connection", "down", "Firma")
        watch.await_names("T-DSL")
        self.recorded("Firma", "--closed")

    def test_lines_end_with_the_daemon_and_are_seen_again(self):
        self.nm.add_pppoe("T-DSL")
        watch = self.watch()
        self.start_recording()
        watch.await_names()
        self.nm.up("T-DSL")
        watch.await_names("T-DSL")
        self.recorded("T-DSL")
        self.nm.stop_daemon()
        watch.await_names()
        seen = len(watch.history)
        rig.wait_for(lambda: len(watch.history) > seen + 1, "two more looks")
        self.assertEqual(watch.lines(), [])  # the kernel still routes over the line, which is no network for that
        self.nm.cut_lines()
        self.recorded("T-DSL", "--closed")
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
        down = lambda name: self.nm.nmcli("connection", "down", name)
        hang_up = lambda _: (self.nm.folder / "ppp.hangup").touch()
        for name, end in (("T-DSL", down), ("Umts", down), ("T-DSL", hang_up), ("T-DSL", None)):
            await_state(INSTALLED)
            self.nm.up(name)
            await_state(UP)
            if end:
                end(name)
        self.assertEqual([flags for flags in file.read_text().split() if int(flags, 16) & LAN], [])
        self.nm.stop_bus()
        await_state(INSTALLED)
        self.nm.start_bus()
        self.nm.up("T-DSL")
        await_state(UP)


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
