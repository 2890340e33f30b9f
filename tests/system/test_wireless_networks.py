#!/usr/bin/env python3
"""The line of a wireless adapter is named as the user's network is, from a mock of NetworkManager."""

import rig
from network_manager_mock import (ACTIVATED, ACTIVATING, ACTIVE, DEACTIVATED, DEACTIVATING, EXTERNAL, NetworkManagerMock)


class WirelessNetworks(rig.Case):
    def test_the_network_is_the_one_that_the_adapter_uses(self):
        network, mock = self.enterContext(rig.Network()), NetworkManagerMock(self)
        network.join("wire1", 78)
        network.ip("route replace default via 10.78.0.2")
        for name, net in (("wire0", 77), ("wire1", 78)):
            network.send(name, 2, net)
        wireless, wired = mock.call("AddWiFiDevice", "wireless", "wire0", 30), mock.call("AddEthernetDevice", "wired", "wire1", 100)
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


if __name__ == "__main__":
    rig.main()
