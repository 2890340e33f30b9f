#!/usr/bin/env python3
"""The networks of a wireless adapter, named as the user's connections are, from a mock of NetworkManager."""

import re
import shutil
import subprocess
import unittest

import rig
from network_manager import DRIVER, PYTHON, python_has

SERVICE = "org.freedesktop.NetworkManager"
MOCK = "org.freedesktop.DBus.Mock"
ACTIVE = f"{SERVICE}.Connection.Active"
ACTIVATING, ACTIVATED, DEACTIVATING, DEACTIVATED = range(1, 5)
EXTERNAL = 0x80


class WirelessNetworks(rig.Case):
    def setUp(self):
        super().setUp()
        missing = [tool for tool in ("dbus-daemon", "gdbus") if not shutil.which(tool)]
        if missing or not python_has("dbus", "dbusmock"):
            raise unittest.SkipTest(f"needs {', '.join(missing) or 'dbusmock'}")
        bus = self.home.path / "bus"
        self.home.env["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={bus}"
        self.launch(["dbus-daemon", "--session", "--nofork", f"--address=unix:path={bus}"], stderr=subprocess.DEVNULL)
        rig.wait_for(bus.exists, "the bus")
        self.launch([PYTHON, "-B", "-m", "dbusmock", "--system", "--template", "networkmanager"], stdout=subprocess.DEVNULL)
        subprocess.run(["gdbus", "wait", "--system", "--timeout", "20", SERVICE], env=self.home.env, check=True)

    def call(self, method, *arguments, path="/org/freedesktop"):
        """A method of the mock; the path that it answers with."""
        told = subprocess.run(["gdbus", "call", "--system", "--dest", SERVICE, "--object-path", path, "--method",
                               method if "." in method else f"{MOCK}.{method}", "--", *(str(value) for value in arguments)],
                              env=self.home.env, check=True, capture_output=True, text=True).stdout
        found = re.search("'(/.*)'", told)
        return found and found[1]

    def add_network(self, adapter, name):
        """A network in reach that the user knows; the paths of its profile and of its access point."""
        word = re.sub(r"[^A-Za-z]", "_", name)
        point = self.call("AddAccessPoint", adapter, word, name, "00:11:22:33:44:55", 2, 2412, 54000, 70, 0)
        return self.call("AddWiFiConnection", adapter, word, name, ""), point

    def follow(self, *adapters):
        """Follows the adapters' networks; how to wait for one picture of them."""
        file = self.home.path / "networks"
        with open(file, "w", encoding="utf-8") as output:
            self.launch([DRIVER, "networks", *adapters], stdout=output)
        return lambda told: rig.wait_for(lambda: file.read_text().endswith(told + "\n"), told)

    def test_the_network_is_the_one_that_the_adapter_uses(self):
        wireless = self.call("AddWiFiDevice", "wireless", "wlan0", 30)
        wired = self.call("AddEthernetDevice", "wired", "eth0", 100)
        home, phone = self.add_network(wireless, "Home"), self.add_network(wireless, "Jürgen's phone")
        cable = self.call(f"{SERVICE}.Settings.AddConnection", "{'connection': {'id': <'Cable'>, 'type': <'802-3-ethernet'>, "
                          "'uuid': <'9c6a9c0c-7d4a-4f3b-9a3e-0d4f6f6f0a01'>}, '802-3-ethernet': {'mtu': <uint32 0>}}",
                          path="/org/freedesktop/NetworkManager/Settings")
        await_networks = self.follow("wlan0", "eth0", "none")
        await_networks("wlan0=;eth0=;none=;")
        self.call("AddActiveConnection", f"['{wired}']", cable, "/", "0", ACTIVATED)
        active = self.call("AddActiveConnection", f"['{wireless}']", *home, "1", ACTIVATING)
        await_networks("wlan0=Home;eth0=;none=;")
        for state, name in ((ACTIVATED, "Home"), (DEACTIVATING, ""), (ACTIVATED, "Home"), (DEACTIVATED, "")):
            self.call("SetProperty", active, ACTIVE, "State", f"<uint32 {state}>")
            await_networks(f"wlan0={name};eth0=;none=;")
        self.call("RemoveActiveConnection", wireless, active)
        active = self.call("AddActiveConnection", f"['{wireless}']", *phone, "2", ACTIVATED)
        await_networks("wlan0=Jürgen's phone;eth0=;none=;")
        self.call("AddProperty", ACTIVE, "StateFlags", "<uint32 0>", path=active)
        self.call("SetProperty", active, ACTIVE, "StateFlags", f"<uint32 {EXTERNAL}>")
        await_networks("wlan0=;eth0=;none=;")


if __name__ == "__main__":
    rig.main()
