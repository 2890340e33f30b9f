#!/usr/bin/env python3
"""The icon in the tray over both protocols: what it shows, what clicks on it do, hosts that come late and go, closing."""

import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

import rig

BACKGROUND, BLUE, GREEN, RED = "A9D1E9", "0000FF", "008000", "FF0000"
# The interpreter that Debian's packages install their modules for.
PYTHON = "/usr/bin/python3"
# A steady stream in one direction; the argument is its destination.
SENDER = """
import socket, sys, time
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
while True:
    out.sendto(b"x" * 1000, (sys.argv[1], 9))
    time.sleep(0.01)
"""


def ended(process):
    process.kill()
    process.wait()
    for pipe in (process.stdin, process.stdout, process.stderr):
        if pipe:
            pipe.close()


class EmbeddingHost:
    """A panel that embeds icons."""

    def __init__(self, display):
        if not shutil.which("trayer"):
            raise unittest.SkipTest("trayer is not installed")
        self.process = subprocess.Popen(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height", "26"],
                                        env=dict(os.environ, DISPLAY=display.name), stderr=subprocess.DEVNULL)

    def close(self):
        ended(self.process)


class NotifierHost:
    """sni_host.py as a process of its own; `host` is whether a panel is there from the start."""

    def __init__(self, env, host=True):
        self.process = subprocess.Popen([PYTHON, "-B", pathlib.Path(__file__).with_name("sni_host.py"), *["host"] * host],
                                        env=env, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.process.stdout.readline()

    def tell(self, *command):
        self.process.stdin.write(" ".join(command) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def item(self):
        return self.tell("item")

    def close(self):
        with contextlib.suppress(BrokenPipeError):
            ended(self.process)


class Tray(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = rig.Display()
        cls.display.__enter__()

    @classmethod
    def tearDownClass(cls):
        cls.display.__exit__()

    def setUp(self):
        self.home = rig.Home()
        self.addCleanup(self.home.__exit__)
        self.home.env["DISPLAY"] = self.display.name
        self.home.env.pop("DBUS_SESSION_BUS_ADDRESS", None)
        self.home.set(Language="ENG")

    def start(self, command=(rig.BIN / "korvalin",), inside=None, **settings):
        self.home.set(**settings)
        command = ["ip", "netns", "exec", inside, *command] if inside else command
        process = subprocess.Popen(command, env=self.home.env, text=True, stderr=subprocess.PIPE)
        self.addCleanup(ended, process)
        return process

    def network_with_traffic(self):
        network = rig.Network()
        network.__enter__()
        self.addCleanup(network.__exit__)
        for name, address in ((network.here, "10.77.0.2"), (network.there, "10.77.0.1")):
            self.addCleanup(ended, network.start(name, [sys.executable, "-c", SENDER, address]))
        return network.here

    def session_bus(self):
        if not shutil.which("dbus-daemon") or subprocess.run([PYTHON, "-c", "import dbus, gi"], stderr=subprocess.DEVNULL,
                                                             check=False).returncode:
            raise unittest.SkipTest("dbus-daemon, python3-dbus or python3-gi is not installed")
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
                                f"--address=unix:path={self.home.path}/bus"], stdout=subprocess.PIPE, text=True,
                               stderr=subprocess.DEVNULL, env=self.home.env)
        self.addCleanup(ended, bus)
        self.home.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def host(self, made):
        self.addCleanup(made.close)
        return made

    # The program's windows: the main window is wider than any icon.

    def windows(self, *options):
        found = self.display.tool("xdotool", "search", *options, "--class", "korvalin").split()
        return {window: self.display.geometry(window) for window in found}

    def visible(self, matches):
        return next((window for window, place in self.windows("--onlyvisible").items() if place and matches(place)), None)

    def main_window(self):
        return self.visible(lambda place: place["WIDTH"] > 250)

    def menu(self):
        return self.visible(lambda place: 64 < place["WIDTH"] < 250)

    def icon(self):
        return self.visible(lambda place: 10 < place["WIDTH"] < 64 and place["Y"] < 26)

    def is_in_state(self, state):
        """Normal, Iconic, or Withdrawn: out of sight for the taskbar too."""
        window = next((window for window, place in self.windows().items() if place.get("WIDTH", 0) > 250), None)
        if not window:
            return False
        told = self.display.tool("xprop", "-id", window, "WM_STATE")
        return state in told if "window state:" in told else state == "Withdrawn"

    def wait_for_state(self, state):
        rig.wait_for(lambda: self.is_in_state(state), state)

    def click(self, window, x, y, button="1"):
        self.display.tool("xdotool", "mousemove", "--window", window, str(x), str(y), "click", button)

    def close_by_its_box(self, until, what):
        """Clicks at the right end of the caption. A window that is just being decorated may move away from a click."""
        window = rig.wait_for(self.main_window, "the window")

        def closed():
            caption = self.caption_height(window)
            told = self.display.tool("xwininfo", "-id", window)
            left, top, width = (int(re.search(name + r":\s+(-?\d+)", told)[1]) for name in ("left X", "left Y", "Width"))
            if caption:
                self.display.tool("xdotool", "mousemove", str(left + width - 9), str(top - caption // 2), "click", "1")
            with contextlib.suppress(AssertionError):
                return rig.wait_for(until, what, seconds=1)

        rig.wait_for(closed, what)

    def caption_height(self, window):
        numbers = re.findall(r"\d+", self.display.tool("xprop", "-id", window, "_NET_FRAME_EXTENTS"))
        return int(numbers[2]) if len(numbers) == 4 else 0

    def screen_color(self, window, x, y):
        place = self.display.geometry(window)
        text = self.display.tool("import", "-window", "root", "-crop", f"1x1+{place['X'] + x}+{place['Y'] + y}", "-depth", "8", "txt:-")
        return next((word[1:] for word in text.split() if word.startswith("#") and len(word) == 7), "")

    # Over XEmbed

    def test_an_embedded_icon_shows_the_rates_and_obeys_the_mouse(self):
        self.host(EmbeddingHost(self.display))
        process = self.start(inside=self.network_with_traffic(), TrayMaxRate=1)
        icon = rig.wait_for(self.icon, "the icon")
        size = self.display.geometry(icon)
        bottom = (size["HEIGHT"] + min(size["WIDTH"], size["HEIGHT"])) // 2 - 2
        column = lambda cell: int((cell + 0.5) * size["WIDTH"] / 16)
        for cell, color in ((8, GREEN), (13, RED), (5, BACKGROUND)):
            rig.wait_for(lambda c=cell, e=color: self.screen_color(icon, column(c), bottom) == e, f"{color} in cell {cell}")
        middle = size["WIDTH"] // 2
        rig.wait_for(self.main_window, "the window")
        self.click(icon, middle, middle)
        self.wait_for_state("Withdrawn")
        self.click(icon, 2, 2)  # elsewhere, or it might make a double click
        rig.wait_for(self.main_window, "the window")
        self.click(icon, middle, middle, "3")
        menu = rig.wait_for(self.menu, "the menu")
        self.click(menu, 30, self.display.geometry(menu)["HEIGHT"] - 12)  # Exit is its last entry
        self.assertEqual(process.wait(timeout=10), 0)
        self.assertIsNone(self.icon())
        self.assertEqual(process.stderr.read(), "", "also without a session bus there is nothing to complain about")

    def test_an_embedding_host_may_come_late_and_go(self):
        self.start(AutoShow="False")
        self.wait_for_state("Iconic")
        for _ in range(2):
            host = self.host(EmbeddingHost(self.display))
            rig.wait_for(self.icon, "the icon")
            self.wait_for_state("Withdrawn")
            host.close()
            self.wait_for_state("Iconic")
        self.host(EmbeddingHost(self.display))
        icon = rig.wait_for(self.icon, "the icon")
        self.click(icon, 10, 10)
        rig.wait_for(self.main_window, "the window")

    def test_the_close_box_leaves_the_program_in_the_tray_or_ends_it(self):
        self.host(EmbeddingHost(self.display))
        process = self.start(ShowTitle="True")
        self.close_by_its_box(lambda: self.is_in_state("Withdrawn"), "the window in the tray")
        self.assertIsNone(process.poll())
        ended(process)
        process = self.start(CloseTrayOnly="False")
        self.close_by_its_box(lambda: process.poll() is not None, "the end")
        self.assertEqual(process.returncode, 0)
        rig.wait_for(lambda: not self.icon(), "the icon to go")

    def test_without_a_tray_the_close_box_minimizes_and_tells_it_once(self):
        process = self.start(ShowTitle="True")
        box = lambda: self.display.window("^Korvalin$")
        self.close_by_its_box(box, "the message")
        self.display.tool("xdotool", "windowactivate", "--sync", box(), "key", "Return")
        self.wait_for_state("Iconic")
        window = next(window for window, place in self.windows().items() if place.get("WIDTH", 0) > 250)
        self.display.tool("xdotool", "windowactivate", window)
        self.close_by_its_box(lambda: self.is_in_state("Iconic"), "the taskbar")
        self.assertEqual(box(), "")
        self.assertIsNone(process.poll())

    # Over StatusNotifierItem

    def test_a_notifier_icon_shows_the_rates_and_obeys_its_host(self):
        self.session_bus()
        host = self.host(NotifierHost(self.home.env))
        process = self.start(inside=self.network_with_traffic(), TrayMaxRate=1)
        rig.wait_for(lambda: self.bars_are_full(host.item()), "full bars")
        item = host.item()
        self.assertEqual([picture["size"] for picture in item["pictures"]], [[22, 22], [32, 32]])
        self.assertRegex(item["tip"], r"(?s)wire0.*Rate UL [\d.]+ DL [\d.]+ KB")
        rig.wait_for(self.main_window, "the window")
        host.tell("activate")
        self.wait_for_state("Withdrawn")
        host.tell("activate")
        window = rig.wait_for(self.main_window, "the window")
        # The host has the menu's entries, and the chart still opens it.
        self.assertEqual(host.tell("menu"), ["Statistics", "About", "Show title bar", "Title bar only", "Always on top", "Exit"])
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

    def test_a_notifier_host_may_come_late_and_go(self):
        self.session_bus()
        self.start(AutoShow="False")
        self.wait_for_state("Iconic")
        host = self.host(NotifierHost(self.home.env, host=False))
        time.sleep(1.5)  # long enough for an icon to come
        self.assertIsNone(host.item(), "nobody shows it")
        host.tell("host")
        for _ in range(2):
            rig.wait_for(host.item, "the icon")
            self.wait_for_state("Withdrawn")
            host.close()
            self.wait_for_state("Iconic")
            host = self.host(NotifierHost(self.home.env))
        rig.wait_for(host.item, "the icon")
        host.tell("activate")
        rig.wait_for(self.main_window, "the window")
        self.assertIn("Exit", host.tell("menu"))

    def test_a_starting_desktop_is_waited_for_although_its_stand_in_is_there(self):
        self.session_bus()
        self.host(EmbeddingHost(self.display))
        host = self.host(NotifierHost(self.home.env, host=False))
        self.start()
        rig.wait_for(self.main_window, "the window")
        host.tell("host")
        rig.wait_for(host.item, "the icon")
        self.assertIsNone(self.icon())

    def test_a_host_that_hangs_holds_nobody_up(self):
        self.session_bus()
        host = self.host(NotifierHost(self.home.env))
        host.process.send_signal(signal.SIGSTOP)
        self.start()
        rig.wait_for(self.main_window, "the window", seconds=4)
        time.sleep(6)  # longer than anyone waits for the answer
        host.process.send_signal(signal.SIGCONT)
        rig.wait_for(host.item, "the icon")

    def test_a_hidden_start_with_a_host_never_shows_the_window(self):
        self.session_bus()
        host = self.host(NotifierHost(self.home.env))
        self.start(AutoShow="False")
        rig.wait_for(host.item, "the icon")
        self.assertFalse([place for place in self.windows().values() if place.get("WIDTH", 0) > 250])

    def test_a_display_that_goes_away_ends_the_program(self):
        with rig.Display() as display:
            self.home.env["DISPLAY"] = display.name
            process = self.start()
            rig.wait_for(lambda: display.tool("xdotool", "search", "--onlyvisible", "--class", "korvalin"), "the window")
        self.assertEqual(process.wait(timeout=10), 1)


if __name__ == "__main__":
    rig.main()
