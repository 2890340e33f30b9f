#!/usr/bin/env python3
"""The networks of a wireless adapter, named as the user's connections are, from a mock of NetworkManager."""

import rig
from network_manager import DRIVER
from network_manager_mock import (ACTIVATED, ACTIVATING, ACTIVE, DEACTIVATED, DEACTIVATING, EXTERNAL, SERVICE,
                                  NetworkManagerMock)


class WirelessNetworks(rig.Case):
    def setUp(self):
        super().setUp()
        self.mock = NetworkManagerMock(self)
        self.call = self.mock.call

    def follow(self, *adapters):
        """Follows the adapters' networks; how to wait for one picture of them."""
        file = self.home.path / "networks"
        with open(file, "w", encoding="utf-8") as output:
            self.launch([DRIVER, "networks", *adapters], stdout=output)
        return lambda told: rig.wait_for(lambda: file.read_text().endswith(told + "\n"), told)

    def test_the_network_is_the_one_that_the_adapter_uses(self):
        wireless = self.call("AddWiFiDevice", "wireless", "wlan0", 30)
        wired = self.call("AddEthernetDevice", "wired", "eth0", 100)
        home, phone = self.mock.add_network(wireless, "Home"), self.mock.add_network(wireless, "Jürgen's phone")
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
        active = self.mock.use(wireless, phone, "2")
        await_networks("wlan0=Jürgen's phone;eth0=;none=;")
        self.call("AddProperty", ACTIVE, "StateFlags", "<uint32 0>", path=active)
        self.call("SetProperty", active, ACTIVE, "StateFlags", f"<uint32 {EXTERNAL}>")
        await_networks("wlan0=;eth0=;none=;")


if __name__ == "__main__":
    rig.main()
