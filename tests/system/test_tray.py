#!/usr/bin/env python3
"""The icon in the tray over both protocols: what it shows, what clicks on it do, hosts that come late and go, closing."""

import os
import shutil
import signal
import subprocess
import sys
import time
import unittest

import rig

BACKGROUND, BLUE, GREEN, RED = "A9D1E9", "0000FF", "008000", "FF0000"
# A steady stream in one direction; the argument is its destination.
SENDER = """
import socket, sys, time
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
while True:
    out.sendto(b"x" * 1000, (sys.argv[1], 9))
    time.sleep(0.01)
"""


class EmbeddingHost:
    """A panel that embeds icons."""

    def __init__(self, display):
        if not shutil.which("trayer"):
            raise unittest.SkipTest("trayer is not installed")
        self.process = subprocess.Popen(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height", "26"],
                                        env=dict(os.environ, DISPLAY=display.name), stderr=subprocess.DEVNULL)

    def close(self):
        rig.ended(self.process)


class Tray(rig.DesktopCase):
    def setUp(self):
        super().setUp()
        self.home.env.pop("DBUS_SESSION_BUS_ADDRESS", None)

    def network_with_traffic(self):
        network = self.enter(rig.Network())
        for name, address in ((network.here, "10.77.0.2"), (network.there, "10.77.0.1")):
            self.launch([sys.executable, "-c", SENDER, address], name)
        return network.here

    def icon(self):
        return self.find(lambda place: 10 < place["WIDTH"] < 64 and place["Y"] < 26, "--onlyvisible")

    def come_and_go(self, make, icon_at):
        """Hosts that come late and go, until one stays: that one and the icon there."""
        self.start(AutoShow="False")
        self.wait_for_state("Iconic")
        for _ in range(2):
            host = self.host(make())
            rig.wait_for(lambda: icon_at(host), "the icon")
            self.wait_for_state("Withdrawn")
            host.close()
            self.wait_for_state("Iconic")
        host = self.host(make())
        return host, rig.wait_for(lambda: icon_at(host), "the icon")

    # Over XEmbed

    def test_a_box_that_stays_on_top_is_not_covered_by_the_window_that_comes_back(self):
        self.host(EmbeddingHost(self.display))
        self.start()
        icon, window = rig.wait_for(self.icon, "the icon"), self.main_window()
        middle = self.display.geometry(icon)["WIDTH"] // 2
        self.click(icon, middle, middle, "3")
        rig.wait_for(self.menu, "the menu")
        self.display.tool("xdotool", "key", "a")
        box = rig.wait_for(lambda: self.display.window("^Korvalin - About$"), "the about box")

        def stack():
            listed = self.display.tool("xprop", "-root", "_NET_CLIENT_LIST_STACKING").partition("#")[2]
            return [str(int(number, 16)) for number in listed.split(",") if number.strip()]

        self.click(icon, middle, middle)
        rig.wait_for(lambda: window not in stack(), "the window's end")
        self.click(icon, 2, 2)
        rig.wait_for(lambda: window in stack(), "the window")
        rig.wait_for(lambda: stack().index(box) > stack().index(window), "the box above the window")

    def test_an_embedded_icon_shows_the_rates_and_obeys_the_mouse(self):
        self.host(EmbeddingHost(self.display))
        process = self.start(inside=self.network_with_traffic(), TrayMaxRate=1)
        icon = rig.wait_for(self.icon, "the icon")
        size = self.display.geometry(icon)
        bottom = (size["HEIGHT"] + min(size["WIDTH"], size["HEIGHT"])) // 2 - 2
        column = lambda cell: int((cell + 0.5) * size["WIDTH"] / 16)
        for cell, color in ((8, GREEN), (13, RED), (5, BACKGROUND)):
            rig.wait_for(lambda c=cell, e=color: self.color(icon, column(c), bottom) == e, f"{color} in cell {cell}")
        middle = size["WIDTH"] // 2
        self.main_window()
        self.click(icon, middle, middle)
        self.wait_for_state("Withdrawn")
        self.click(icon, 2, 2)  # elsewhere, or it might make a double click
        self.main_window()
        self.click(icon, middle, middle, "3")
        menu = rig.wait_for(self.menu, "the menu")
        self.click(menu, 30, self.display.geometry(menu)["HEIGHT"] - 12)  # Exit is its last entry
        self.assertEqual(process.wait(timeout=10), 0)
        self.assertIsNone(self.icon())
        self.assertEqual(process.stderr.read(), "", "also without a session bus there is nothing to complain about")

    def test_an_embedding_host_may_come_late_and_go(self):
        _, icon = self.come_and_go(lambda: EmbeddingHost(self.display), lambda _: self.icon())
        self.click(icon, 10, 10)
        self.main_window()

    def test_closing_leaves_the_program_in_the_tray_or_ends_it(self):
        self.host(EmbeddingHost(self.display))
        process = self.start()
        rig.wait_for(self.icon, "the icon")
        self.close(self.main_window())
        self.wait_for_state("Withdrawn")
        time.sleep(0.5)  # long enough to have ended
        self.assertIsNone(process.poll())
        rig.ended(process)
        process = self.start(CloseTrayOnly="False")
        self.close(self.main_window())
        self.assertEqual(process.wait(timeout=10), 0)
        rig.wait_for(lambda: not self.icon(), "the icon to go")

    # Over StatusNotifierItem

    def test_a_notifier_icon_shows_the_rates_and_obeys_its_host(self):
        self.session_bus()
        host = self.host(rig.NotifierHost(self.home.env))
        process = self.start(inside=self.network_with_traffic(), TrayMaxRate=1)
        rig.wait_for(lambda: self.bars_are_full(host.item()), "full bars")
        item = host.item()
        self.assertEqual([picture["size"] for picture in item["pictures"]], [[22, 22], [32, 32]])
        self.assertRegex(item["tip"], r"(?s)wire0.*Rate UL [\d.]+ DL [\d.]+ KB")
        self.main_window()
        host.tell("activate")
        self.wait_for_state("Withdrawn")
        host.tell("choose", "Statistics")
        self.close(rig.wait_for(lambda: self.display.window("^Statistics"), "the statistics"))
        time.sleep(0.5)  # long enough for the program to have ended with its last visible window
        self.assertIsNone(process.poll())
        host.tell("activate")
        window = self.main_window()
        # The host has the menu's entries, and the chart still opens it.
        self.assertEqual(host.tell("menu"), ["Statistics", "Settings", "About", "Show title bar", "Title bar only", "Always on top", "Exit"])
        rig.wait_for(lambda: self.click(window, 60, 50, "3") or self.menu(), "the menu")
        self.display.tool("xdotool", "key", "Escape")
        host.tell("choose", "Exit")
        self.assertEqual(process.wait(timeout=10), 0)
        rig.wait_for(lambda: host.item() is None, "the icon to go")

    @staticmethod
    def bars_are_full(item):
        if not item:
            return False
        for picture in item["pictures"]:
            size = picture["size"][0]
            color = lambda cell, y: picture["argb"][8 * (y * size + int((cell + 0.5) * size / 16)):][2:8].upper()
            for cell, expected in ((5, BACKGROUND), (8, GREEN), (13, RED)):
                if color(cell, 0) != expected or color(cell, size - 1) != expected:
                    return False
        return True

    def test_hiding_and_showing_it_leaves_place_and_size(self):
        self.session_bus()
        host = self.host(rig.NotifierHost(self.home.env))
        self.start(ShowTitle="True", MON_Left_1024=3000, MON_Top_768=3000)
        rig.wait_for(host.item, "the icon")

        def place():
            time.sleep(0.5)  # the window manager is done with the frame
            stored = [self.home.cli("settings", "get", f"MON_{name}") for name in ("Left_1024", "Top_768", "Width", "Height")]
            return self.display.geometry(self.main_window()), stored

        self.main_window()
        time.sleep(1)
        before = place()
        for _ in range(5):
            host.tell("activate")
            self.wait_for_state("Withdrawn")
            host.tell("activate")
            self.assertEqual(place(), before)

    def test_a_notifier_host_may_come_late_and_go(self):
        self.session_bus()
        host, _ = self.come_and_go(lambda: rig.NotifierHost(self.home.env), lambda host: host.item())
        host.tell("activate")
        self.main_window()
        self.assertIn("Exit", host.tell("menu"))

    def test_a_starting_desktop_is_waited_for_although_its_stand_in_is_there(self):
        self.session_bus()
        self.host(EmbeddingHost(self.display))
        host = self.host(rig.NotifierHost(self.home.env, host=False))
        self.start()
        self.main_window()
        host.tell("host")
        rig.wait_for(host.item, "the icon")
        self.assertIsNone(self.icon())

    def test_a_host_that_hangs_holds_nobody_up(self):
        self.session_bus()
        host = self.host(rig.NotifierHost(self.home.env))
        host.process.send_signal(signal.SIGSTOP)
        self.start()
        self.main_window(seconds=4)
        time.sleep(6)  # longer than anyone waits for the answer
        host.process.send_signal(signal.SIGCONT)
        rig.wait_for(host.item, "the icon")

    def test_a_hidden_start_with_a_host_never_shows_the_window(self):
        self.session_bus()
        host = self.host(rig.NotifierHost(self.home.env))
        self.start(AutoShow="False")
        rig.wait_for(host.item, "the icon")
        self.assertIsNone(self.any_window())


if __name__ == "__main__":
    rig.main()
