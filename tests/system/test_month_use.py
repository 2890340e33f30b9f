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
    def test_a_month_that_ends_while_the_window_runs(self):
        panel, network = rig.NotifierHost(self), self.enterContext(rig.Network())
        network.send("wire0", 2)
        # To the byte, in the window and in the tray.
        self.home.set(Language="ENG", AutoStart="False", UnitMB="Byte", TrayTexts=LINE_AND_MONTH, wire0_Up1MB="False")
        self.launch([*rig.at_time("2024-11-30 23:59:50"), rig.BIN / "korvalin"], network.prefix(), stderr=subprocess.PIPE)

        def await_tip(used):
            expected = f"wire0\nMonth {used:,} Byte"
            rig.wait_for(lambda: (panel.item() or {}).get("tip") == expected, expected)

        moved = {}
        for month, packets in (("November 2024", 1000), ("December 2024", 100)):
            await_tip(0)
            before = network.counted("wire0")
            network.send("wire0", packets)
            moved[month] = rig.grown(network.counted("wire0"), before)
            await_tip(sum(moved[month]))
        sums = {row["label"]: [row["bytes_received"], row["bytes_transmitted"]]
                for row in self.home.json("sums", "--period", "month")}
        self.assertEqual(sums, moved)


if __name__ == "__main__":
    rig.main()
