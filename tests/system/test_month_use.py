#!/usr/bin/env python3
"""What the window tells of a month's use: over the month's end, and for each network of a wireless adapter."""

import csv
import subprocess
import unittest

import rig
from network_manager_mock import NetworkManagerMock

BLUE, GREEN, RED = "0000FF", "008000", "FF0000"
LINE_AND_MONTH = 1 + 64  # of the tooltip's parts


@unittest.skipUnless(rig.FAKETIME, "libfaketime is not installed")
class MonthUse(rig.DesktopCase):
    def setUp(self):
        super().setUp()
        self.panel = rig.NotifierHost(self)
        self.network = self.enterContext(rig.Network())
        self.network.send("wire0", 2)
        # To the byte, in the window and in the tray.
        self.home.set(Language="ENG", AutoStart="False", UnitMB="Byte", TrayTexts=LINE_AND_MONTH, z_optStatSum=2,
                      **{f"{line}_Up1MB": "False" for line in ("wire0", "Home", "Phone")})

    def show(self, *prefix):
        """The window, which records."""
        self.launch([*prefix, rig.BIN / "korvalin"], self.network.prefix(), stderr=subprocess.PIPE)

    def send(self, packets):
        return self.network.moved("wire0", packets)

    def await_tip(self, line, used, free=None):
        expected = f"{line}\nMonth {used:,} Byte" + (f" Free {free:,} Byte" if free is not None else "")
        rig.wait_for(lambda: (self.panel.item() or {}).get("tip") == expected, expected)

    def volume_bar(self):
        """The icon's first bar: its colour, and how many of sixteen cells it is high."""
        picture = self.panel.item()["pictures"][-1]
        size = picture["size"][0]
        pixels = [picture["argb"][8 * (y * size + size // 10):][2:8].upper() for y in range(size)]
        return pixels[-1], pixels.count(pixels[-1]) * 16 // size

    def sums(self, window):
        """The months in the statistics, as the user exports them."""
        path = self.home.path / "sums.txt"
        list_menu = lambda: self.find(lambda place: 200 < place["WIDTH"] < 300, "--onlyvisible")
        self.open_menu(window, 200, 250, list_menu)  # the records are loaded then
        self.display.tool("xdotool", "key", "Escape", "key", "alt+s")
        self.open_menu(window, 200, 250, list_menu)
        self.display.tool("xdotool", "key", "t")
        dialog = self.titled("^Save As$")
        self.press(dialog, "ctrl+a")
        self.display.tool("xdotool", "type", path)
        self.press(dialog, "Return")
        rows = rig.wait_for(lambda: path.exists() and path.read_text().splitlines(), "the export")
        return list(csv.DictReader(rows, delimiter="\t"))

    def test_a_month_that_ends_while_the_window_runs(self):
        self.show(*rig.at_time("2024-11-30 23:59:50"))
        self.await_tip("wire0", 0)
        november = self.send(1000)
        self.await_tip("wire0", sum(november))
        self.await_tip("wire0", 0)
        december = self.send(100)
        self.await_tip("wire0", sum(december))
        self.choose(self.main_window(), "s")
        sums = self.sums(self.titled("^Statistics$"))
        self.picture("months")
        figures = [[row[name] for name in ("Period", "Received", "Sent", "Total")] for row in sums]
        self.assertEqual(figures, [[month, *(f"{bytes_:,}.00" for bytes_ in (*moved, sum(moved)))]
                                   for month, moved in (("December 2024", december), ("November 2024", november))])

    def test_each_network_of_a_wireless_adapter_has_its_own_use(self):
        self.home.set(Phone_FreeVolume=3, Phone_TrayVol="True")
        mock = NetworkManagerMock(self)
        adapter = mock.call("AddWiFiDevice", "wireless", "wire0", 100)
        home, phone = mock.add_network(adapter, "Home"), mock.add_network(adapter, "Phone")
        mock.use(adapter, home, 1)
        # Late in the month, when there is enough left of what is free.
        self.show(*rig.with_hardware(self.home.path / "net", "wire0"), *rig.at_time("2024-12-31 12:00:00"))
        self.await_tip("Home", 0)
        at_home = self.send(1500)
        self.await_tip("Home", sum(at_home))
        self.assertEqual(self.volume_bar(), (BLUE, 1))
        mock.use(adapter, phone, 2)
        self.await_tip("Phone", 0, 3_000_000)
        on_phone = self.send(1000)
        left = 3_000_000 - sum(on_phone)
        self.await_tip("Phone", sum(on_phone), left)
        self.assertEqual(self.volume_bar(), (GREEN, round(16 * left / 3_000_000)))
        self.picture("phone")
        on_phone = [a + b for a, b in zip(on_phone, self.send(500))]
        self.await_tip("Phone", sum(on_phone), 3_000_000 - sum(on_phone))
        self.assertEqual(self.volume_bar(), (RED, 1))
        mock.use(adapter, home, 3)
        self.await_tip("Home", sum(at_home))
        for command in (("records",), ("sums", "--period", "month")):
            self.assertEqual(self.home.moved(*command), {"Home": at_home, "Phone": on_phone}, command)


if __name__ == "__main__":
    rig.main()
