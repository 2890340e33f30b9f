"""A mock of NetworkManager: adapters, and the networks that they are on."""

import re
import subprocess

import rig

SERVICE = "org.freedesktop.NetworkManager"
ACTIVE = f"{SERVICE}.Connection.Active"
ACTIVATING, ACTIVATED, DEACTIVATING, DEACTIVATED = range(1, 5)
EXTERNAL = 0x80


class NetworkManagerMock:
    """On a system bus of its own; ends with the test case."""

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
