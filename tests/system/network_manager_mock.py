"""A mock of NetworkManager: adapters, and the networks that they are on."""

import re
import shutil
import subprocess
import unittest

import rig

SERVICE = "org.freedesktop.NetworkManager"
MOCK = "org.freedesktop.DBus.Mock"
ACTIVE = f"{SERVICE}.Connection.Active"
ACTIVATING, ACTIVATED, DEACTIVATING, DEACTIVATED = range(1, 5)
EXTERNAL = 0x80


class NetworkManagerMock:
    """On a system bus of its own; ends with the test case."""

    def __init__(self, case):
        missing = [tool for tool in ("dbus-daemon", "gdbus") if not shutil.which(tool)]
        if missing or not rig.python_has("dbus", "dbusmock"):
            raise unittest.SkipTest(f"needs {', '.join(missing) or 'dbusmock'}")
        bus = case.home.path / "system-bus"
        self.env = case.home.env
        self.env["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={bus}"
        case.launch(["dbus-daemon", "--session", "--nofork", f"--address=unix:path={bus}"], stderr=subprocess.DEVNULL)
        rig.wait_for(bus.exists, "the bus")
        case.launch([rig.PYTHON, "-B", "-m", "dbusmock", "--system", "--template", "networkmanager"],
                    stdout=subprocess.DEVNULL)
        subprocess.run(["gdbus", "wait", "--system", "--timeout", "20", SERVICE], env=self.env, check=True)

    def call(self, method, *arguments, path="/org/freedesktop"):
        """A method of the mock; the path that it answers with."""
        told = subprocess.run(["gdbus", "call", "--system", "--dest", SERVICE, "--object-path", path, "--method",
                               method if "." in method else f"{MOCK}.{method}", "--", *(str(value) for value in arguments)],
                              env=self.env, check=True, capture_output=True, text=True).stdout
        found = re.search("'(/.*)'", told)
        return found and found[1]

    def add_network(self, adapter, name):
        """A network in reach that the user knows; the paths of its profile and of its access point."""
        word = re.sub(r"[^A-Za-z]", "_", name)
        point = self.call("AddAccessPoint", adapter, word, name, "00:11:22:33:44:55", 2, 2412, 54000, 70, 0)
        return self.call("AddWiFiConnection", adapter, word, name, ""), point

    def use(self, adapter, network, number):
        """The adapter is on the network; the path of the active connection."""
        return self.call("AddActiveConnection", f"['{adapter}']", *network, number, ACTIVATED)
