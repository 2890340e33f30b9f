"""A template of dbusmock: ModemManager with one modem, whose data port is the interface wwan0.

KORVALIN_MODEM names a file that may hold "delay", seconds to dial, and "error", the name of the error it ends with.
"""

import json
import os
import pathlib
import time

import dbus
import dbusmock

BUS_NAME = MAIN_IFACE = "org.freedesktop.ModemManager1"
MAIN_OBJ = "/org/freedesktop/ModemManager1"
SYSTEM_BUS = IS_OBJECT_MANAGER = True
MODEM, BEARER, SIM = MAIN_OBJ + "/Modem/0", MAIN_OBJ + "/Bearer/0", MAIN_OBJ + "/SIM/0"
MODEM_IFACE, SIMPLE_IFACE, BEARER_IFACE = MAIN_IFACE + ".Modem", MAIN_IFACE + ".Modem.Simple", MAIN_IFACE + ".Bearer"
DISABLED, REGISTERED, CONNECTING, CONNECTED = 3, 8, 10, 11
STATIC_ADDRESS, NO_ADDRESS = 2, 0
U, I, O = dbus.UInt32, dbus.Int32, dbus.ObjectPath


def variants(**values):
    return dbus.Dictionary(values, signature="sv")


def strings(*values):
    return dbus.Array(values, signature="s")


def modem_properties():
    """What NetworkManager asks for, and hardly more."""
    return {
        "Sim": O(SIM), "Bearers": dbus.Array([O(BEARER)], signature="o"), "CurrentCapabilities": U(4),
        "Device": "/sys/devices/test", "DeviceIdentifier": "test", "Drivers": strings("mock"), "Plugin": "generic",
        "PrimaryPort": "ttyS9",
        "Ports": dbus.Array([dbus.Struct(("ttyS9", U(3)), signature="su"), dbus.Struct(("wwan0", U(2)), signature="su")],
                            signature="(su)"),
        "UnlockRequired": U(1), "State": I(REGISTERED), "StateFailedReason": U(0), "SupportedIpFamilies": U(1),
    }


def load(root, _parameters):
    root.AddProperty(MAIN_IFACE, "Version", "1.20.4")
    root.AddObject(SIM, MAIN_IFACE + ".Sim",
                   {"SimIdentifier": "89490200", "OperatorIdentifier": "26201"}, [])
    address = variants(method=U(STATIC_ADDRESS), address="10.78.0.2", prefix=U(24), gateway="10.78.0.1", dns1="10.78.0.1",
                       mtu=U(1500))
    root.AddObject(BEARER, BEARER_IFACE,
                   {"Interface": "wwan0", "Connected": True, "IpTimeout": U(20), "Ip4Config": address,
                    "Ip6Config": variants(method=U(NO_ADDRESS)), "Properties": variants(apn="internet")},
                   [("Connect", "", "", ""), ("Disconnect", "", "", "")])
    root.AddObject(MODEM, MODEM_IFACE, modem_properties(),
                   [("Enable", "b", "", f"self.to({REGISTERED} if args[0] else {DISABLED})"),
                    ("ListBearers", "", "ao", f"ret = ['{BEARER}']"), ("SetPowerState", "u", "", "")])
    modem = dbusmock.get_object(MODEM)

    def to(state):
        old = modem.Get(MODEM_IFACE, "State")
        modem.Set(MODEM_IFACE, "State", I(state))
        modem.EmitSignal(MODEM_IFACE, "StateChanged", "iiu", [I(old), I(state), U(1)])

    def connect():
        to(CONNECTING)
        file = pathlib.Path(os.environ["KORVALIN_MODEM"])
        told = json.loads(file.read_text()) if file.exists() else {}
        time.sleep(told.get("delay", 0.2))
        if "error" in told:
            to(REGISTERED)
            raise dbus.exceptions.DBusException("dial failed", name=told["error"])
        to(CONNECTED)
        return O(BEARER)

    modem.to, modem.connect = to, connect
    modem.AddProperties(MODEM_IFACE + ".Modem3gpp", {"RegistrationState": U(1), "OperatorCode": "26201"})
    modem.AddProperties(SIMPLE_IFACE, {"Test": True})  # an interface without properties is not listed
    modem.AddMethod(SIMPLE_IFACE, "Connect", "a{sv}", "o", "ret = self.connect()")
    modem.AddMethod(SIMPLE_IFACE, "Disconnect", "o", "", f"self.to({REGISTERED})")
    modem.AddMethod(SIMPLE_IFACE, "GetStatus", "", "a{sv}", 'ret = dbus.Dictionary({}, signature="sv")')
