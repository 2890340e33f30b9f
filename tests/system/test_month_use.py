#!/usr/bin/env python3
"""How the line of a wireless adapter is named, and what the window tells of a month's use."""

import re
import subprocess
import unittest

import rig

LINE_AND_MONTH = 1 + 64  # of the tooltip's parts
SERVICE = "org.freedesktop.NetworkManager"
ACTIVE = f"{SERVICE}.Connection.Active"
ACTIVATING, ACTIVATED, DEACTIVATING, DEACTIVATED = range(1, 5)
EXTERNAL = 0x80


class NetworkManagerMock:
    """NetworkManager with adapters and the networks that they are on, on a system bus of its own; ends with the test case."""

    def __init__(self, case):
        rig.need("gdbus", modules=("dbus", "dbusmock"))
        self.env = case.home.env
        self.env["DBUS_SYSTEM_BUS_ADDRESS"] = case.bus("system-bus")
        case.launch([rig.PYTHON, "-B", "-m", "dbusmock", "--system", "--template", "networkmanager"],
                    stdout=subprocess.DEVNULL)
        rig.run("gdbus", "wait", "--system", "--timeout", 20, SERVICE, env=self.env)

    def call(self, method, *arguments, path="/org/freedesktop"):
        """A method of the mock; the path that it answers with."""
        told = rig.run("gdbus", "call", "--system", "--dest", SERVICE, "--object-path", path, "--method",
                       f"org.freedesktop.DBus.Mock.{method}", "--", *arguments, env=self.env).stdout
        found = re.search("'(/.*)'", told)
        return found and found[1]

    def add_network(self, adapter, name):
        """A network in reach that the user knows; the paths of its profile and of its access point."""
        word = re.sub(r"[^A-Za-z]", "_", name)
        point = self.call("AddAccessPoint", adapter, word, name, "00:11:22:33:44:55", 2, 2412, 54000, 70, 0)
        return self.call("AddWiFiConnection", adapter, word, name, ""), point

    def use(self, adapter, network, number, state=ACTIVATED):
        """The adapter is on the network; the path of the active connection."""
        return self.call("AddActiveConnection", f"['{adapter}']", *network, number, state)

    def become(self, active, name, value):
        self.call("SetProperty", active, ACTIVE, name, f"<uint32 {value}>")


class WirelessNetworks(rig.Case):
    def test_the_network_is_the_one_that_the_adapter_uses(self):
        network, mock = self.enterContext(rig.Network()), NetworkManagerMock(self)
        network.join("wire1", 78)
        network.ip("route replace default via 10.78.0.2")
        for name, net in (("wire0", 77), ("wire1", 78)):
            network.send(name, 2, net)
        wireless = mock.call("AddWiFiDevice", "wireless", "wire0", 30)
        wired = mock.call("AddEthernetDevice", "wired", "wire1", 100)
        home, phone = mock.add_network(wireless, "Home"), mock.add_network(wireless, "Jürgen's phone")
        mock.use(wired, home, 1)  # whatever a cable is used for
        watch = rig.Watch(self, [*network.prefix(), *rig.with_hardware(self.home.path / "net", "wire0", "wire1")])

        def check(name):
            """The name once the adapter comes back: while it is up it keeps the one that it had."""
            for state, names in (("down", ()), ("up", (name,))):
                network.ip(f"link set wire0 {state}")
                watch.await_names(*names, "wire1")

        check("wire0")
        active = mock.use(wireless, home, 2, ACTIVATING)
        watch.await_names("Home", "wire1")
        for state, name in ((ACTIVATED, "Home"), (DEACTIVATING, "wire0"), (ACTIVATED, "Home"), (DEACTIVATED, "wire0")):
            mock.become(active, "State", state)
            check(name)
        mock.call("RemoveActiveConnection", wireless, active)
        active = mock.use(wireless, phone, 3)
        watch.await_names("Jürgen's phone", "wire1")
        mock.call("AddProperty", ACTIVE, "StateFlags", "<uint32 0>", path=active)
        mock.become(active, "StateFlags", EXTERNAL)
        check("wire0")


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
        """What the adapter has moved by that."""
        before = self.network.counted("wire0")
        self.network.send("wire0", packets)
        return rig.grown(self.network.counted("wire0"), before)

    def await_tip(self, line, used, free=None):
        expected = f"{line}\nMonth {used:,} Byte" + (f" Free {free:,} Byte" if free is not None else "")
        rig.wait_for(lambda: (self.panel.item() or {}).get("tip") == expected, expected)

    def test_a_month_that_ends_while_the_window_runs(self):
        self.show(*rig.at_time("2024-11-30 23:59:50"))
        self.await_tip("wire0", 0)
        november = self.send(1000)
        self.await_tip("wire0", sum(november))
        self.await_tip("wire0", 0)
        december = self.send(100)
        self.await_tip("wire0", sum(december))
        sums = {row["label"]: [row["bytes_received"], row["bytes_transmitted"]]
                for row in self.home.json("sums", "--period", "month")}
        self.assertEqual(sums, {"November 2024": november, "December 2024": december})

    def test_each_network_of_a_wireless_adapter_has_its_own_use(self):
        self.home.set(Phone_FreeVolume=3)
        mock = NetworkManagerMock(self)
        adapter = mock.call("AddWiFiDevice", "wireless", "wire0", 100)
        home, phone = mock.add_network(adapter, "Home"), mock.add_network(adapter, "Phone")
        mock.use(adapter, home, 1)
        # Late in the month, when there is enough left of what is free.
        self.show(*rig.with_hardware(self.home.path / "net", "wire0"), *rig.at_time("2024-12-31 12:00:00"))
        self.await_tip("Home", 0)
        at_home = self.send(1500)
        self.await_tip("Home", sum(at_home))
        mock.use(adapter, phone, 2)
        self.await_tip("Phone", 0, 3_000_000)
        on_phone = self.send(1000)
        self.await_tip("Phone", sum(on_phone), 3_000_000 - sum(on_phone))
        on_phone = [a + b for a, b in zip(on_phone, self.send(500))]
        self.await_tip("Phone", sum(on_phone), 3_000_000 - sum(on_phone))
        mock.use(adapter, home, 3)
        self.await_tip("Home", sum(at_home))
        for command in (("records",), ("sums", "--period", "month")):
            self.assertEqual(self.home.moved(*command), {"Home": at_home, "Phone": on_phone}, command)


if __name__ == "__main__":
    rig.main()
