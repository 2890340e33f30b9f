#!/usr/bin/env python3
"""Dialing through a real NetworkManager: what is shown, how it ends, and that nothing else is started."""

import subprocess
import time

import rig
from network_manager import DRIVER, LineCase

FORCE_PROMPT, UNATTENDED = 0x2000, 0x8000


class DialService(LineCase):
    def dial(self, name, *options, flags=0):
        """What the dial showed, and its result."""
        *shown, result, alive = self.drive("dial", name, "--flags", flags, *options).splitlines()
        self.assertEqual(alive, "windows alive")
        return shown, result

    def test_a_dial_shows_its_stages_and_starts_nothing_else(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.add_pppoe("Andere")
        self.nm.add_gsm("Umts")
        shown, result = self.dial("T-DSL", flags=UNATTENDED)
        self.assertEqual((shown[0], shown[-1], result), ("begin T-DSL", "end", "result 0 line"))
        self.assertIn("stage connecting", shown)
        self.assertIn("stage getting address", shown)
        self.assertEqual(self.nm.active(), ["T-DSL", "lo", "ppp0"])
        self.assertEqual(self.drive("dial", "T-DSL"), "result 0 line")  # at once: it is up
        self.drive("hangup")
        rig.wait_for(lambda: "T-DSL" not in self.nm.active(), "its end")
        self.assertEqual(self.dial("Umts")[1], "result 0 line")
        self.assertEqual(self.drive("dial", "Nirgends"), "failed Nirgends 623\nresult 623 none")

    def test_a_wrong_password_is_asked_for_and_kept(self):
        self.nm.add_pppoe("T-DSL", password="falsch")
        shown, result = self.dial("T-DSL", flags=UNATTENDED)
        self.assertEqual(result, "result 691 none")
        self.assertNotIn("asked", " ".join(shown))
        self.assertEqual(self.drive("dial", "T-DSL", "--flags", FORCE_PROMPT), "asked T-DSL for u\nresult 1223 none")
        shown, result = self.dial("T-DSL", "--user", "u", "--password", "p", flags=FORCE_PROMPT)
        self.assertEqual((shown[0], result), ("asked T-DSL for u", "result 0 line"))
        self.drive("hangup")
        self.assertEqual(self.dial("T-DSL", flags=UNATTENDED)[1], "result 0 line")
        self.assertNotIn("password=p", (self.nm.folder / "nm.log").read_text())

    def test_other_secrets_outlive_a_new_password(self):
        uuid = self.nm.add_gsm("Umts")
        self.nm.nmcli("connection", "modify", uuid, "gsm.pin", "1234", "gsm.password-flags", "1")
        self.assertEqual(self.dial("Umts", "--user", "ich", "--password", "neu", flags=FORCE_PROMPT)[1], "result 0 line")
        kept = (self.nm.folder / "profiles/Umts.nmconnection").read_text().splitlines()
        for line in ("username=ich", "password=neu", "pin=1234", "apn=internet"):
            self.assertIn(line, kept)

    def test_failures_have_their_numbers(self):
        self.nm.add_gsm("Umts")
        self.nm.add_vpn("Firma")
        for error, number in (("NoDialtone", 680), ("NoCarrier", 678), ("Busy", 676)):
            with self.subTest(error):
                self.nm.tell("modem", error=f"org.freedesktop.ModemManager1.Error.Connection.{error}")
                self.assertEqual(self.dial("Umts")[1], f"result {number} none")
        self.assertEqual(self.dial("Firma")[1], "result 611 none")  # there is nothing that it could run over

    def test_what_the_device_did_before_is_not_why_a_dial_failed(self):
        self.nm.add("ethernet", "LAN", "ifname", "wan0", "ipv4.method", "manual", "ipv4.addresses", "10.66.0.2/24")
        self.nm.nmcli("connection", "up", "LAN")
        self.nm.add_pppoe("T-DSL", password="falsch")
        self.assertEqual(self.dial("T-DSL")[1], "result 691 none")
        self.nm.add_gsm("Umts")
        self.nm.nmcli("connection", "up", "Umts")
        self.nm.add_gsm("Andere")
        self.nm.tell("modem", error="org.freedesktop.ModemManager1.Error.Connection.NoDialtone")
        self.assertEqual(self.dial("Andere")[1], "result 680 none")

    def test_a_number_that_changes_while_the_login_is_asked_for_is_not_dialed(self):
        uuid = self.nm.add_gsm("Umts")
        asked = ("--user", "ich", "--password", "neu", "--when-asked")
        shown, result = self.dial("Umts", *asked, f"nmcli connection modify {uuid} gsm.apn teuer", flags=FORCE_PROMPT)
        self.assertEqual(result, "result 1237 none")
        self.assertNotIn("failed", " ".join(shown))  # it is asked about, then dialed again
        self.assertNotIn("Umts", self.nm.active())
        self.assertEqual(self.nm.nmcli("-g", "gsm.username", "connection", "show", uuid), "")
        renamed = self.drive("dial", "Umts", "--flags", FORCE_PROMPT, *asked, f"nmcli connection modify {uuid} connection.id Neu")
        self.assertTrue(renamed.endswith("failed Umts 623\nresult 623 none"), renamed)
        self.assertEqual(self.dial("Neu", *asked[:-1], flags=FORCE_PROMPT)[1], "result 0 line")

    def test_a_login_that_cannot_be_kept_is_told(self):
        self.nm.add_pppoe("T-DSL")
        shown, result = self.dial("T-DSL", "--user", "", "--password", "p", flags=FORCE_PROMPT)
        self.assertEqual((shown[-1], result), ("failed T-DSL 635", "result 635 none"))

    def test_a_login_refused_over_an_interface_of_its_own_is_asked_for(self):
        self.nm.add("pppoe", "T-DSL", "ifname", "dsl0", "pppoe.parent", "wan0", "username", "u", "password", "falsch")
        self.assertEqual(self.dial("T-DSL")[1], "result 691 none")
        self.assertEqual(self.dial("T-DSL", "--user", "u", "--password", "p", flags=FORCE_PROMPT)[1], "result 0 line")

    def test_no_password_is_asked_for_when_nobody_answered(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.tell("ppp", fails=16)
        self.assertEqual(self.dial("T-DSL", flags=UNATTENDED)[1], "result 678 none")

    def test_a_refused_vpn_login_is_asked_for(self):
        self.nm.start_vpn_server()
        self.nm.add_pppoe("T-DSL")
        self.nm.add_vpn("Firma", password="falsch")
        self.nm.nmcli("connection", "up", "T-DSL")
        self.assertEqual(self.dial("Firma")[1], "result 691 none")
        shown, result = self.dial("Firma", "--user", "alice", "--password", "secret", flags=FORCE_PROMPT)
        self.assertEqual((shown[0], result), ("asked Firma for alice", "result 0 line"))

    def test_a_dial_can_be_cancelled_at_any_stage(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.tell("ppp", delay=1)
        for stage in ("begin", "connecting"):
            with self.subTest(stage):
                start = time.monotonic()
                self.assertEqual(self.dial("T-DSL", "--cancel-at", stage)[1], "result 1223 none")
                self.assertLess(time.monotonic() - start, 2)
                rig.wait_for(lambda: "T-DSL" not in self.nm.active(), "the end of what was begun")

    def test_a_dial_is_given_up_after_ninety_seconds(self):
        self.nm.add_gsm("Umts")
        self.nm.tell("modem", delay=6)
        start = time.monotonic()
        self.assertEqual(self.dial("Umts", "--clock-rate", 45)[1], "result 678 none")
        self.assertGreater(time.monotonic() - start, 1.9)
        rig.wait_for(lambda: "Umts" not in self.nm.active(), "the end of what was begun")

    def test_a_login_that_nobody_has_is_asked_for(self):
        uuid = self.nm.add_gsm("Umts")
        self.nm.nmcli("connection", "modify", uuid, "gsm.username", "u", "gsm.password-flags", "1")
        self.assertEqual(self.dial("Umts", "--clock-rate", 45)[1], "result 691 none")
        rig.wait_for(lambda: "Umts" not in self.nm.active(), "the end of what was begun")
        self.assertEqual(self.dial("Umts", "--user", "u", "--password", "p", flags=FORCE_PROMPT)[1], "result 0 line")

    def test_a_daemon_that_stops_ends_the_dial(self):
        self.nm.add_pppoe("T-DSL")
        self.nm.tell("ppp", delay=2)
        driver = self.nm.start(DRIVER, "dial", "T-DSL", stdout=subprocess.PIPE, text=True)
        rig.wait_for(lambda: "T-DSL" in self.nm.active(), "the dial")
        self.nm.stop_daemon()
        self.assertRegex(driver.communicate(timeout=10)[0], "result 6.. none")


if __name__ == "__main__":
    rig.main()
