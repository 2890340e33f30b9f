#!/usr/bin/env python3
"""The program as a user has it: on a display with a window manager, with mouse and keyboard, started, killed, started again."""

import os
import re
import shutil
import signal
import subprocess
import time
import unittest

import rig

BACKGROUND = "#A9D1E9"


class Desktop(unittest.TestCase):
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

    def start(self, program=None):
        process = subprocess.Popen([program or rig.BIN / "korvalin"], env=self.home.env, text=True,
                                   stderr=subprocess.PIPE)

        def end():
            process.kill()
            process.wait()
            process.stderr.close()

        self.addCleanup(end)
        return process

    def started(self, **settings):
        """The program and its window, past the first start's question."""
        self.home.set(Language="ENG", **settings)
        process = self.start()
        return process, self.main_window()

    def main_window(self):
        # Without a caption the window has no title; its class tells it.
        def find():
            found = self.display.tool("xdotool", "search", "--onlyvisible", "--class", "korvalin").split()
            return next((window for window in found if self.display.geometry(window)["WIDTH"] > 100), None)

        return rig.wait_for(find, "the main window")

    def color(self, window, x, y):
        place = self.display.geometry(window)
        text = self.display.tool("import", "-window", "root", "-crop", f"1x1+{place['X'] + x}+{place['Y'] + y}", "-depth",
                                 "8", "txt:-")
        return next((word for word in text.split() if re.fullmatch("#[0-9A-F]{6}", word)), "")

    def click(self, window, x, y, button="1"):
        self.display.tool("xdotool", "mousemove", "--window", window, str(x), str(y), "click", button)

    def choose(self, window, entry):
        """Opens the popup menu by a right click and takes its entry by its access key."""
        def opened():
            # A window that is just being decorated anew may lose a click.
            self.click(window, 60, 50, "3")
            time.sleep(0.3)
            return self.menu_is_open()

        rig.wait_for(opened, "the menu")
        self.display.tool("xdotool", "key", entry)

    def menu_is_open(self):
        return len(self.display.tool("xdotool", "search", "--onlyvisible", "--class", "korvalin").split()) > 1

    def setting(self, name, expected):
        rig.wait_for(lambda: self.home.cli("settings", "get", name) == expected, f"{name} = {expected}")

    def test_the_first_start_asks_for_the_language_and_shows_the_chart(self):
        self.start()
        dialog = rig.wait_for(lambda: self.display.window("^Choose language$"), "the language dialog")
        self.display.tool("xdotool", "windowactivate", "--sync", dialog, "key", "g", "Return")
        window = self.main_window()
        self.setting("Language", "GER")
        rig.wait_for(lambda: self.color(window, 40, 50) == BACKGROUND, "the chart")
        autostart = (self.home.path / "config/autostart/korvalin.desktop").read_text()
        self.assertIn(f'Exec="{rig.BIN}/korvalin"', autostart.replace("Exec=" + str(rig.BIN), f'Exec="{rig.BIN}'))

    def test_the_menu_switches_the_caption_and_ends_the_program(self):
        process, window = self.started()
        before = self.display.geometry(window)
        self.choose(window, "b")
        self.setting("ShowTitle", "True")
        rig.wait_for(lambda: self.display.window("^Korvalin  UL/DL"), "the caption")
        self.assertEqual(self.display.geometry(window)["HEIGHT"], before["HEIGHT"])
        self.choose(window, "b")
        self.setting("ShowTitle", "False")
        rig.wait_for(lambda: self.display.geometry(window) == before, "the inner area where it was")
        self.choose(window, "x")
        self.assertEqual(process.wait(timeout=10), 0)

    def test_title_only_comes_and_goes(self):
        _, window = self.started()
        before = self.display.geometry(window)
        self.choose(window, "o")
        self.setting("NurTitel", "True")
        rig.wait_for(lambda: self.display.window("^Korvalin  UL/DL"), "the caption")
        time.sleep(0.5)  # the window manager is done with the frame
        self.assertLess(self.display.geometry(window)["HEIGHT"], 5)
        # No chart to click on: the keyboard's menu key opens the menu.
        self.display.tool("xdotool", "windowactivate", "--sync", window, "key", "Menu")
        rig.wait_for(self.menu_is_open, "the menu")
        self.display.tool("xdotool", "key", "o")
        self.setting("NurTitel", "False")
        rig.wait_for(lambda: abs(self.display.geometry(window)["HEIGHT"] + 20 - before["HEIGHT"]) < 25, "the chart")
        rig.wait_for(lambda: self.color(window, 40, 40) == BACKGROUND, "its picture")

    def test_the_about_box_opens_its_links_and_exists_only_while_it_is_shown(self):
        opener = self.home.path / "bin/xdg-open"
        opener.parent.mkdir()
        opener.write_text(f'#!/bin/sh\necho "$1" >> "{self.home.path}/opened"\n')
        opener.chmod(0o700)
        self.home.env["PATH"] = f"{opener.parent}:{os.environ['PATH']}"
        process, window = self.started()
        for keys in (["Escape"], ["Tab", "Tab", "Tab", "Return"]):  # from OK to the third link
            self.choose(window, "a")
            box = rig.wait_for(lambda: self.display.window("^Korvalin - About$"), "the about box")
            self.display.tool("xdotool", "windowactivate", "--sync", box, "key", *keys)
            rig.wait_for(lambda: not self.display.tool("xdotool", "search", "--name", "^Korvalin - About$"), "its end")
        opened = self.home.path / "opened"
        rig.wait_for(lambda: opened.exists() and opened.read_text().startswith("mailto:support@example.org?subject="),
                     "the mail program")
        self.choose(window, "a")
        rig.wait_for(lambda: self.display.window("^Korvalin - About$"), "the about box")
        self.end(process)  # an open box is no hindrance

    def test_exit_ends_with_success_and_the_place_is_kept(self):
        process, window = self.started()
        self.display.tool("xdotool", "windowmove", "--sync", window, "123", "234")
        self.setting("MON_Left_1024", str(123 * 15))
        self.choose(window, "x")
        self.assertEqual(process.wait(timeout=10), 0)
        self.start()
        window = self.main_window()
        rig.wait_for(lambda: self.display.geometry(window)["X"] == 123, "the place")

    def end(self, process):
        """Ends the program as a session's end does."""
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=10), 0)

    def place(self):
        return {name: self.home.cli("settings", "get", name)
                for name in ("MON_Left_1024", "MON_Top_768", "MON_Width", "MON_Height")}

    def test_the_place_is_the_same_at_every_start(self):
        process, window = self.started(ShowTitle="True", MultiScreen="True", MON_Left_1024=3000, MON_Top_768=3000)
        rig.wait_for(lambda: self.home.cli("settings", "get", "MON_CaptionHeight") not in ("", "0"), "the caption's height")
        rig.wait_for(lambda: self.display.geometry(window)["Y"] > 200, "the place")
        inner = self.display.geometry(window)
        self.end(process)
        stored = self.place()
        for _ in range(2):
            process = self.start()
            window = self.main_window()
            rig.wait_for(lambda: self.without_id(self.display.geometry(window)) == self.without_id(inner), "the same place")
            self.end(process)
            self.assertEqual(self.place(), stored)
        # Without its caption the inner area stays, also at the next start.
        process = self.start()
        window = self.main_window()
        rig.wait_for(lambda: self.without_id(self.display.geometry(window)) == self.without_id(inner), "the same place")
        self.choose(window, "b")
        self.setting("ShowTitle", "False")
        rig.wait_for(lambda: self.display.geometry(window)["HEIGHT"] == inner["HEIGHT"], "the inner area")
        self.end(process)
        process = self.start()
        window = self.main_window()
        rig.wait_for(lambda: self.display.geometry(window)["HEIGHT"] == inner["HEIGHT"], "the inner area again")

    @staticmethod
    def without_id(geometry):
        return {key: value for key, value in geometry.items() if key != "WINDOW"}

    def test_out_of_sight_at_the_start_it_keeps_its_size(self):
        self.home.set(Language="ENG", ShowTitle="True", AutoShow="False", MultiScreen="True", MON_Top_768=3000)
        sizes = []
        for _ in range(3):
            process = self.start()
            window = rig.wait_for(lambda: self.any_window(), "the window in the taskbar")
            self.display.tool("xdotool", "windowactivate", window)
            self.main_window()
            rig.wait_for(lambda: self.home.cli("settings", "get", "MON_CaptionHeight") not in ("", "0"), "the caption")
            self.end(process)
            sizes.append(self.place())
        self.assertEqual(sizes[1], sizes[0])
        self.assertEqual(sizes[2], sizes[0])

    def any_window(self):
        """The main window, also while it is iconified."""
        found = self.display.tool("xdotool", "search", "--class", "korvalin").split()
        return next((window for window in found if self.display.geometry(window).get("WIDTH", 0) > 100), None)

    def test_a_machine_without_network_has_the_window_out_of_sight(self):
        network = rig.Network()
        network.__enter__()
        self.addCleanup(network.__exit__)
        network.inside(network.here, "ip", "route", "delete", "default")
        self.home.set(Language="ENG")
        process = network.start(network.here, [rig.BIN / "korvalin"], env=self.home.env)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        window = rig.wait_for(lambda: self.any_window(), "the window")
        rig.wait_for(lambda: "Iconic" in self.display.tool("xprop", "-id", window, "WM_STATE"), "the taskbar")

    def test_a_second_instance_ends_silently_and_a_killed_one_is_no_hindrance(self):
        process, _ = self.started()
        second = self.start()
        self.assertEqual(second.wait(timeout=10), 0)
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGKILL)
        process.wait()
        third = self.start()
        self.main_window()
        self.assertIsNone(third.poll())
        self.home.set(MultiInstance="True")
        fourth = self.start()
        time.sleep(1)  # long enough to have ended
        self.assertIsNone(fourth.poll())

    def copy_of_the_program(self):
        """A program folder of the test's own, to damage."""
        folder = self.home.path / "program"
        folder.mkdir()
        shutil.copy(rig.BIN / "Korvalin.exe", folder)
        shutil.copy(rig.BIN / "Korvalin.lng", folder)
        (folder / "korvalin").symlink_to("Korvalin.exe")
        return folder

    def test_a_language_file_that_cannot_serve_ends_the_program_after_a_question(self):
        folder = self.copy_of_the_program()
        self.home.set(Language="GER")
        language = folder / "Korvalin.lng"
        whole = language.read_bytes()
        for name, content in (("missing", None), ("empty", b""), ("binary", os.urandom(50_000)),
                              ("truncated", whole[:30]), ("100 MB", b"x" * 100_000_000)):
            with self.subTest(name):
                language.unlink(missing_ok=True)
                if content is not None:
                    language.write_bytes(content)
                process = self.start(folder / "korvalin")
                deadline = time.monotonic() + 40
                while process.poll() is None and time.monotonic() < deadline:
                    box = self.display.window("^Korvalin$")
                    if box:
                        self.display.tool("xdotool", "windowactivate", box, "key", "Escape")
                    time.sleep(0.1)
                self.assertEqual(process.poll(), 0)

    def test_a_language_file_of_an_older_system_reads_the_same(self):
        folder = self.copy_of_the_program()
        language = folder / "Korvalin.lng"
        language.write_bytes(language.read_bytes().decode("utf-8").encode("cp1252"))
        self.home.set(Language="GER", ShowTitle="True", MultiScreen="True")
        self.start(folder / "korvalin")
        self.main_window()
        self.assertNotIn("Error", self.home.log)

    def test_a_vanished_data_folder_and_a_read_only_one_do_not_stop_it(self):
        process, window = self.started(DataPath=self.home.path / "gone")
        rig.wait_for(lambda: self.color(window, 40, 50) == BACKGROUND, "the chart")
        shutil.rmtree(self.home.path / "data", ignore_errors=True)
        self.choose(window, "p")
        self.setting("ForeGround", "False")
        self.assertIsNone(process.poll())

    def test_settings_of_every_wrong_kind_still_start(self):
        process, window = self.started(MON_Width="wide", ChartMax="-5", picWidthMin="x", ConnDataMax="1e300", UnitKB="parsec",
                                       FontSize="0", Opacity="none", ChartBackgroundColor="blue", LineDL1Show="perhaps")
        geometry = self.display.geometry(window)
        self.assertGreater(geometry["WIDTH"], 100)
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    rig.main()
