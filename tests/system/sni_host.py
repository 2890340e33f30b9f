#!/usr/bin/python3
"""A desktop's list of StatusNotifierItem icons and the panel that shows them, without a picture: calls the method of Host
that it is told on standard input, one a line, and answers with one line of JSON.
"""

import json
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"


class Watcher(dbus.service.Object):
    """The list. The toolkit reads a property only when it is introspectable."""

    def __init__(self, bus, has_host):
        self.items, self.has_host = [], has_host
        self.name = dbus.service.BusName(WATCHER, bus)
        super().__init__(bus, "/StatusNotifierWatcher")
        bus.add_signal_receiver(self.owner_changed, "NameOwnerChanged", "org.freedesktop.DBus")

    def owner_changed(self, name, _, owner):
        if not owner:
            self.items = [item for item in self.items if item[0] != name]

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender):
        self.items.append((sender, service if service.startswith("/") else "/StatusNotifierItem"))

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _, name):
        return {"IsStatusNotifierHostRegistered": self.has_host, "ProtocolVersion": dbus.Int32(0)}[name]

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, out_signature="s")
    def Introspect(self):
        return (f'<node><interface name="{WATCHER}"><property name="IsStatusNotifierHostRegistered" type="b" '
                'access="read"/><method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>'
                "</interface></node>")


class Host:
    """The panel."""

    def __init__(self, bus, watcher):
        self.bus, self.watcher = bus, watcher

    def host(self):
        """It registers with the list; with the argument "host" it is there from the start."""
        self.watcher.has_host = True
        self.watcher.StatusNotifierHostRegistered()

    def part(self, path, interface):
        name, item = self.watcher.items[-1]
        return dbus.Interface(self.bus.get_object(name, path or item, introspect=False), interface)

    def properties(self):
        return self.part(None, dbus.PROPERTIES_IFACE).GetAll(ITEM)

    def item(self):
        """The icon: its tooltip and pictures; nothing while there is none."""
        if not self.watcher.items:
            return None
        found = self.properties()
        return {"tip": found["ToolTip"][2],
                "pictures": [{"size": [int(width), int(height)], "argb": bytes(pixels).hex()}
                             for width, height, pixels in found["IconPixmap"]]}

    def activate(self):
        self.part(None, ITEM).Activate(10, 10)

    def layout(self):
        menu = self.part(self.properties()["Menu"], MENU)
        menu.AboutToShow(0)
        entries = menu.GetLayout(0, -1, dbus.Array([], signature="s"))[1][2]
        return menu, {str(shown["label"]).replace("_", ""): number for number, shown, _ in entries
                      if shown.get("visible", True) and "label" in shown}

    def menu(self):
        return list(self.layout()[1])

    def choose(self, label):
        menu, entries = self.layout()
        menu.Event(entries[label], "clicked", dbus.String("", variant_level=1), dbus.UInt32(0))


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
session, loop = dbus.SessionBus(), GLib.MainLoop()
panel = Host(session, Watcher(session, "host" in sys.argv[1:]))


def obey(*_):
    words = sys.stdin.readline().split()
    if not words:
        loop.quit()
        return False
    try:
        answer = getattr(panel, words[0])(*words[1:])
    except dbus.DBusException as error:  # the program is ending
        answer = {"error": str(error)}
    print(json.dumps(answer), flush=True)
    return True


GLib.io_add_watch(sys.stdin, GLib.IO_IN | GLib.IO_HUP, obey)
print(json.dumps("ready"), flush=True)
loop.run()
