#!/usr/bin/env python3
"""The program as a user has it: on a display with a window manager, with mouse and keyboard, started, killed, started again."""

import json
import signal
import time
import xml.etree.ElementTree

import rig

BACKGROUND = "A9D1E9"
SERVICE = "org.example.korvalin"
PANEL = f"""
import dbus, dbus.mainloop.glib, json, sys
from gi.repository import GLib
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
program = dbus.SessionBus().get_object("{SERVICE}", "/Korvalin", introspect=False)
program.connect_to_signal("PropertiesChanged", lambda _, changed, gone: print(json.dumps(changed), flush=True),
                          dbus.PROPERTIES_IFACE)
if "watch" in sys.argv:
    program.Watch(dbus_interface="{SERVICE}")
print(json.dumps(program.GetAll("{SERVICE}", dbus_interface=dbus.PROPERTIES_IFACE)), flush=True)
GLib.MainLoop().run()
"""


class Desktop(rig.DesktopCase):
    def wait_for_chart(self, window):
        rig.wait_for(lambda: self.color(window, 40, 30) == BACKGROUND, "the chart")

    def test_the_first_start_asks_for_the_language_and_shows_the_chart(self):
        for how in (signal.SIGTERM, signal.SIGINT):
            process = self.start(Language="")
            self.titled("^Choose language$")
            self.assertEqual(self.end(process, how), 0, "also while it asks")
            self.assertEqual(self.home.get("Language"), "")
        self.start(Language="")
        question = self.titled("^Choose language$")
        self.display.tool("xdotool", "windowminimize", "--sync", question)
        self.assertEqual(self.start(Language="").wait(timeout=10), 0)
        self.press(self.titled("^Choose language$"), "g", "Return")
        self.setting("Language", "GER")
        self.answer("^Willkommen bei Korvalin$", "Return")
        self.wait_for_chart(self.main_window())
        autostart = (self.home.path / "config/autostart/korvalin.desktop").read_text()
        self.assertIn(f'Exec="{rig.BIN}/korvalin"', autostart)

    def test_the_menu_switches_caption_and_chart_and_ends_the_program(self):
        process, window = self.start(), self.main_window()
        before = self.display.geometry(window)
        self.choose(window, "b")
        self.setting("ShowTitle", "True")
        self.titled("^Korvalin  UL/DL")
        self.assertEqual(self.display.geometry(window)["HEIGHT"], before["HEIGHT"])
        self.choose(window, "b")
        self.setting("ShowTitle", "False")
        rig.wait_for(lambda: self.display.geometry(window) == before, "the inner area where it was")
        self.choose(window, "o")  # the title alone
        rig.wait_for(lambda: self.display.geometry(window)["HEIGHT"] < 5, "the chart's end")
        self.titled("^Korvalin  UL/DL")
        # No chart to click on: the keyboard's menu key opens the menu.
        self.again(lambda: self.press(window, "Menu"), self.menu, "the menu")
        self.display.tool("xdotool", "key", "o")
        rig.wait_for(lambda: abs(self.display.geometry(window)["HEIGHT"] + 20 - before["HEIGHT"]) < 25, "the height")
        self.wait_for_chart(window)
        self.choose(window, "p")
        self.setting("ForeGround", "False")
        self.choose(window, "x")
        self.assertEqual(process.wait(timeout=10), 0)

    def inner_area(self):
        return [self.display.geometry(self.main_window())[name] for name in ("X", "Y", "WIDTH", "HEIGHT")]

    def stored_place(self):
        return [self.home.get(f"MON_{name}") for name in ("Left_1024", "Top_768", "Width", "Height")]

    def test_the_place_is_the_same_at_every_start(self):
        self.home.set(ShowTitle="True", MultiScreen="True", MON_Left_1024=3000, MON_Top_768=3000)
        inner = stored = None
        for auto_show in ("True", "True", "False", "False"):
            process = self.start(AutoShow=auto_show)
            if auto_show == "False":
                self.wait_for_state("Iconic")
                self.display.tool("xdotool", "windowactivate", self.any_window())
            rig.wait_for(lambda: self.home.get("MON_CaptionHeight") not in ("", "0"), "the caption's height")
            rig.wait_for(lambda: self.inner_area()[1] > 200 and inner in (None, self.inner_area()), "the place")
            inner = inner or self.inner_area()
            self.end(process)
            stored = stored or self.stored_place()
            self.assertEqual(self.stored_place(), stored, auto_show)

    def test_a_second_start_raises_the_first_ones_window_and_a_killed_one_is_no_hindrance(self):
        process = self.start(AutoShow="False")
        self.wait_for_state("Iconic")
        self.assertEqual(self.start().wait(timeout=10), 0)
        self.main_window()
        self.assertIsNone(process.poll())
        rig.ended(process)
        third = self.start(AutoShow="True")
        self.main_window()
        self.start(MultiInstance="True")
        rig.wait_for(lambda: len(self.windows(lambda place: place["WIDTH"] > 200, "--onlyvisible")) == 2, "a second window")
        self.assertIsNone(third.poll())

    def panel(self, name, *words):
        """A client on the bus; a function that gives all that it was told."""
        file = self.home.path / name
        with open(file, "w", encoding="utf-8") as output:
            process = self.launch([rig.PYTHON, "-B", "-c", PANEL, *words], stdout=output)
        return process, lambda: [json.loads(line) for line in file.read_text().splitlines()]

    def test_panels_on_the_session_bus_read_watch_and_bring_the_window(self):
        rig.need("gdbus", modules=("dbus", "gi"))
        self.home.env["DBUS_SESSION_BUS_ADDRESS"] = self.bus("session-bus")
        network = self.enterContext(rig.Network())
        network.send("wire0", 20)
        self.start(prefix=network.prefix(), AutoShow="False", wire0_FreeVolume=5, wire0_Up1MB="False")
        self.wait_for_state("Iconic")
        watcher, watched = self.panel("watcher", "watch")
        first = rig.wait_for(watched, "the properties")[0]
        self.assertEqual([first[name] for name in ("LineName", "Alias", "Allowance")], ["wire0", "wire0", 5e6])
        listener, heard = self.panel("listener")
        rig.wait_for(heard, "the listener")
        began = time.monotonic()
        self.launch(rig.sender("wire0", 1000, "10.77.0.2", 100), network.prefix())
        self.launch(rig.sender("wire0p", 1000, "10.77.0.1", 100), network.prefix(network.there))
        for name in ("TransmittedPerSecond", "UsedToday", "UsedInPeriod"):
            rig.wait_for(lambda: any(told.get(name, 0) > first[name] for told in heard()[1:]), f"more {name}")
        self.assertLess(len(heard()), time.monotonic() - began + 3, "one a second")
        rig.ended(watcher)
        time.sleep(1)
        count = len(heard())
        time.sleep(2.5)
        self.assertEqual(len(heard()), count, "nobody watches any more")
        self.check_description(("gdbus", "introspect", "--session", "--dest", SERVICE, "--object-path", "/Korvalin", "--xml"))
        rig.run("gdbus", "call", "--session", "--dest", SERVICE, "--object-path", "/Korvalin", "--method",
                f"{SERVICE}.ShowWindow", env=self.home.env)
        self.main_window()

    def check_description(self, introspect):
        """The program has what the installed description says."""
        written = (rig.ROOT / f"packaging/{SERVICE}.xml").read_text()
        found = [sorted((part.tag, part.get("name"), part.get("type"))
                        for part in xml.etree.ElementTree.fromstring(text).find(f"interface[@name='{SERVICE}']")
                        if part.tag != "annotation")
                 for text in (written, rig.run(*introspect, env=self.home.env).stdout)]
        self.assertEqual(*found)

    def test_an_error_at_the_end_holds_nobody_up_and_is_told_at_the_next_start(self):
        network = self.enterContext(rig.Network())
        process = self.start(prefix=network.prefix())
        statistics = self.home.data / "Korvalin_Stats.db"
        network.send("wire0", 20)
        rig.wait_for(lambda: "wire0" in self.home.cli("records"), "something that is counted")
        statistics.unlink(missing_ok=True)
        statistics.mkdir()
        began = time.monotonic()
        self.assertEqual(self.end(process), 0)
        self.assertLess(time.monotonic() - began, 2)
        self.assertIn(statistics.name, self.home.get("LeftMessage"))
        self.assertIn(statistics.name, (self.home.data / "Korvalin_ErrorLog.txt").read_text())
        statistics.rmdir()
        self.start()
        self.setting("LeftMessage", "")


if __name__ == "__main__":
    rig.main()
