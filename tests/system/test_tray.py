#!/usr/bin/env python3
"""The icon in the tray over both protocols: what it shows, what clicks on it do, hosts that come late and go, closing."""

import signal
import subprocess
import time

import rig

# What a cell of the icon shows at full rates; there is nothing to tell of the month's use.
CELLS = {8: "008000", 13: "FF0000", 5: "A9D1E9"}
ENTRIES = ["Statistics", "Settings", "About", "Show title bar", "Title bar only", "Always on top", "Exit"]


class EmbeddedIcon:
    """In a panel that embeds icons."""

    def __init__(self, case):
        rig.need("trayer")
        self.case = case
        self.process = case.launch(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height", "26"],
                                   stderr=subprocess.DEVNULL)

    def there(self):
        return self.case.find(lambda place: 10 < place["WIDTH"] < 64 and place["Y"] < 26, "--onlyvisible")

    def shows(self, cells):
        size = self.case.display.geometry(self.there())
        bottom = (size["HEIGHT"] + min(size["WIDTH"], size["HEIGHT"])) // 2 - 2
        return all(self.case.color(self.there(), int((cell + 0.5) * size["WIDTH"] / 16), bottom) == color
                   for cell, color in cells.items())

    def click(self, button="1", place=2):
        self.case.click(self.there(), place, place, button)

    def choose(self, entry):
        self.click("3", 10)
        rig.wait_for(self.case.menu, "the menu")
        self.case.display.tool("xdotool", "key", {"Statistics": "s", "About": "a", "Exit": "x"}[entry])


class NotifierIcon(rig.NotifierHost):
    """In a panel that is told of icons."""

    there = rig.NotifierHost.item

    def shows(self, cells):
        def color(picture, cell, row):
            size = picture["size"][0]
            return picture["argb"][8 * (row * size + int((cell + 0.5) * size / 16)):][2:8].upper()

        return all(color(picture, cell, row) == expected for picture in self.item()["pictures"]
                   for row in (0, picture["size"][0] - 1) for cell, expected in cells.items())

    def click(self, *_):
        self.tell("activate")

    def choose(self, entry):
        self.tell("choose", entry)


class Tray(rig.DesktopCase):
    def network_with_traffic(self):
        network = self.enterContext(rig.Network())
        self.launch(rig.sender("wire0", 60_000, "10.77.0.2", rate=100), network.prefix())
        self.launch(rig.sender("wire0p", 60_000, "10.77.0.1", rate=100), network.prefix(network.there))
        return network.prefix()

    def place(self):
        stored = [self.home.get(f"MON_{name}") for name in ("Left_1024", "Top_768", "Width", "Height")]
        return self.display.geometry(self.main_window()), stored

    def stack(self):
        listed = self.display.tool("xprop", "-root", "_NET_CLIENT_LIST_STACKING").partition("#")[2]
        return [str(int(number, 16)) for number in listed.split(",") if number.strip()]

    def test_the_icon_shows_the_rates_and_obeys_the_mouse(self):
        prefix = self.network_with_traffic()
        for make in (EmbeddedIcon, NotifierIcon):
            with self.subTest(make.__name__):
                icon = make(self)
                process = self.start(prefix=prefix, TrayMaxRate=1, AutoShow="False", ShowTitle="True", MON_Left_1024=3000,
                                     MON_Top_768=3000)
                rig.wait_for(lambda: icon.there() and icon.shows(CELLS), "full bars")
                if make == NotifierIcon:
                    item = icon.item()
                    self.assertEqual([picture["size"] for picture in item["pictures"]], [[22, 22], [32, 32]])
                    self.assertRegex(item["tip"], r"(?s)wire0.*Rate UL [\d.]+ DL [\d.]+ KB")
                    self.assertEqual(icon.tell("menu"), ENTRIES)
                    self.assertIsNone(self.any_window(), "never on the screen before it is asked for")
                icon.click()
                window = self.main_window()
                rig.wait_for(lambda: self.home.get("MON_CaptionHeight") not in ("", "0"), "the frame")
                before = rig.wait_for(lambda: (found := self.place()) == self.place() and found, "a place that is kept")
                # The program stays in the tray when its last window goes, and a box stays above one that comes back.
                self.close(window)
                self.wait_for_state("Withdrawn")
                icon.click()
                icon.choose("About")
                box = self.titled("^Korvalin - About$")
                for clicked, shown in ((10, False), (2, True)):  # two places make no double click
                    icon.click("1", clicked)
                    rig.wait_for(lambda: (window in self.stack()) == shown, "the window to come or go")
                rig.wait_for(lambda: self.stack().index(box) > self.stack().index(window), "the box above the window")
                self.answer("^Korvalin - About$", "Escape")
                icon.click("1", 10)
                self.wait_for_state("Withdrawn")
                icon.choose("Statistics")
                self.close(self.titled("^Statistics"))
                icon.click()
                self.choose(self.main_window(), "Escape")  # the chart has the menu too
                rig.wait_for(lambda: self.place() == before, "the same place")
                icon.choose("Exit")
                self.assertEqual(process.wait(timeout=10), 0)
                rig.wait_for(lambda: not icon.there(), "the icon to go")
                self.assertEqual(process.stderr.read(), "", "also without a session bus there is nothing to complain about")
                rig.ended(icon.process)

    def test_hosts_may_come_late_and_go(self):
        for make in (EmbeddedIcon, NotifierIcon):
            with self.subTest(make.__name__):
                rig.ended(make(self).process)  # with the bus that the program knows
                process = self.start(AutoShow="False")
                self.wait_for_state("Iconic")
                for _ in range(2):
                    icon = make(self)
                    rig.wait_for(icon.there, "the icon")
                    self.wait_for_state("Withdrawn")
                    rig.ended(icon.process)
                    self.wait_for_state("Iconic")
                icon = make(self)
                rig.wait_for(icon.there, "the icon")
                icon.click()
                self.main_window()
                for ended in (process, icon.process):
                    rig.ended(ended)

    def test_a_starting_desktop_is_waited_for_although_its_stand_in_is_there(self):
        stand_in, host = EmbeddedIcon(self), NotifierIcon(self, host=False)
        self.start()
        self.main_window()
        host.tell("host")
        rig.wait_for(host.item, "the icon")
        self.assertIsNone(stand_in.there())

    def test_a_host_that_hangs_holds_nobody_up(self):
        host = NotifierIcon(self)
        host.process.send_signal(signal.SIGSTOP)
        self.start()
        self.main_window(seconds=4)
        time.sleep(6)  # longer than anyone waits for the answer
        host.process.send_signal(signal.SIGCONT)
        rig.wait_for(host.item, "the icon")


if __name__ == "__main__":
    rig.main()
