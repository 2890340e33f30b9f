#!/usr/bin/env python3
"""The program as a user has it: on a display with a window manager, with mouse and keyboard, started, killed, started again."""

import shutil
import signal
import time

import rig

BACKGROUND = "A9D1E9"


class Desktop(rig.DesktopCase):
    def setting(self, name, expected):
        rig.wait_for(lambda: self.home.cli("settings", "get", name) == expected, f"{name} = {expected}")

    def wait_for_chart(self, window):
        rig.wait_for(lambda: self.color(window, 40, 30) == BACKGROUND, "the chart")

    def end(self, process):
        """Ends the program as a session's end does."""
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=10), 0)

    def test_the_first_start_asks_for_the_language_and_shows_the_chart(self):
        self.start(Language="")
        dialog = rig.wait_for(lambda: self.display.window("^Choose language$"), "the language dialog")
        self.press(dialog, "g", "Return")
        self.setting("Language", "GER")
        self.wait_for_chart(self.main_window())
        autostart = (self.home.path / "config/autostart/korvalin.desktop").read_text()
        self.assertIn(f'Exec="{rig.BIN}/korvalin"', autostart)

    def test_the_menu_switches_the_caption_and_ends_the_program(self):
        process = self.start()
        window = self.main_window()
        before = self.display.geometry(window)
        self.choose(window, "b")
        self.setting("ShowTitle", "True")
        rig.wait_for(lambda: self.display.window("^Korvalin  UL/DL"), "the caption")
        self.assertEqual(self.display.geometry(window)["HEIGHT"], before["HEIGHT"])
        self.choose(window, "b")
        self.setting("ShowTitle", "False")
        rig.wait_for(lambda: self.display.geometry(window) == before, "the inner area where it was")
        self.choose(window, "p")
        self.setting("ForeGround", "False")
        self.choose(window, "x")
        self.assertEqual(process.wait(timeout=10), 0)

    def test_title_only_comes_and_goes(self):
        self.start()
        window = self.main_window()
        before = self.display.geometry(window)
        self.choose(window, "o")
        rig.wait_for(lambda: self.display.window("^Korvalin  UL/DL"), "the caption")
        time.sleep(0.5)  # the window manager is done with the frame
        self.assertLess(self.display.geometry(window)["HEIGHT"], 5)
        # No chart to click on: the keyboard's menu key opens the menu.
        self.press(window, "Menu")
        rig.wait_for(self.menu, "the menu")
        self.display.tool("xdotool", "key", "o")
        rig.wait_for(lambda: abs(self.display.geometry(window)["HEIGHT"] + 20 - before["HEIGHT"]) < 25, "the height")
        self.picture("after title only")
        self.wait_for_chart(window)

    def stored_place(self):
        return [self.home.cli("settings", "get", f"MON_{name}") for name in ("Left_1024", "Top_768", "Width", "Height")]

    def inner_area(self):
        return [self.display.geometry(self.main_window())[name] for name in ("X", "Y", "WIDTH", "HEIGHT")]

    def test_the_place_is_the_same_at_every_start(self):
        self.home.set(ShowTitle="True", MultiScreen="True", MON_Left_1024=3000, MON_Top_768=3000)
        inner = stored = None
        for auto_show in ("True", "True", "False", "False"):
            process = self.start(AutoShow=auto_show)
            if auto_show == "False":
                self.wait_for_state("Iconic")
                self.display.tool("xdotool", "windowactivate", self.any_window())
            rig.wait_for(lambda: self.home.cli("settings", "get", "MON_CaptionHeight") not in ("", "0"), "the caption's height")
            if not inner:
                rig.wait_for(lambda: self.inner_area()[1] > 200, "the place")
                inner = self.inner_area()
            rig.wait_for(lambda: self.inner_area() == inner, "the same place")
            self.end(process)
            stored = stored or self.stored_place()
            self.assertEqual(self.stored_place(), stored, auto_show)
        # Without its caption the inner area stays, and the mouse moves the window by it.
        process = self.start(AutoShow="True")
        rig.wait_for(lambda: self.inner_area() == inner, "the same place")
        window = self.main_window()
        self.choose(window, "b")
        self.setting("ShowTitle", "False")
        rig.wait_for(lambda: self.inner_area()[2:] == inner[2:], "the inner area")
        before = self.inner_area()
        self.display.tool("xdotool", "mousemove", "--window", window, "60", "50", "mousedown", "1", "mousemove_relative",
                          "--sync", "--", "-40", "-30", "mouseup", "1")
        moved = [before[0] - 40, before[1] - 30, *before[2:]]
        rig.wait_for(lambda: self.inner_area() == moved, f"{moved}")
        self.setting("MON_Left_1024", str(moved[0] * 15))
        self.end(process)
        self.start()
        rig.wait_for(lambda: self.inner_area() == moved, "the new place")

    def test_a_machine_without_network_has_the_window_out_of_sight(self):
        network = self.enter(rig.Network())
        network.inside(network.here, "ip", "route", "delete", "default")
        self.start(inside=network.here)
        self.wait_for_state("Iconic")

    def test_a_second_start_raises_the_first_ones_window_and_a_killed_one_is_no_hindrance(self):
        process = self.start(AutoShow="False")
        self.wait_for_state("Iconic")
        self.assertEqual(self.start().wait(timeout=10), 0)
        self.main_window()
        self.assertIsNone(process.poll())
        rig.ended(process)
        third = self.start(AutoShow="True")
        self.main_window()
        fourth = self.start(MultiInstance="True")
        time.sleep(1)  # long enough to have ended
        self.assertEqual([third.poll(), fourth.poll()], [None, None])

    def test_signals_end_it_while_a_question_of_the_start_is_open(self):
        for how in (signal.SIGTERM, signal.SIGINT):
            process = self.start(Language="")
            rig.wait_for(lambda: self.display.window("^Choose language$"), "the language dialog")
            process.send_signal(how)
            self.assertEqual(process.wait(timeout=5), 0)
            self.setting("Language", "")

    def test_an_error_at_the_end_holds_nobody_up_and_is_told_at_the_next_start(self):
        process = self.start()
        self.main_window()
        statistics = self.home.path / "data/Korvalin/Korvalin_Stats.db"
        time.sleep(1.5)  # something has been counted
        statistics.unlink(missing_ok=True)
        statistics.mkdir()
        began = time.monotonic()
        self.end(process)
        self.assertLess(time.monotonic() - began, 2)
        self.assertIn("Korvalin_Stats.db", self.home.cli("settings", "get", "LeftMessage"))
        self.assertIn("Korvalin_Stats.db", (statistics.parent / "Korvalin_ErrorLog.txt").read_text())
        statistics.rmdir()
        self.start()
        self.setting("LeftMessage", "")
        self.picture("what failed at the end")

    def test_settings_of_every_wrong_kind_and_a_vanished_folder_do_not_stop_it(self):
        for name, wrong in {"MON_Width": "wide", "ChartMax": "-5", "picWidthMin": "x", "UnitKB": "parsec", "ConnDataMax": "1e300",
                            "FontSize": "0", "Opacity": "none", "ChartBackgroundColor": "blue"}.items():
            self.home.cli("settings", "set", name, wrong, check=False)
        process = self.start(DataPath=self.home.path / "gone")
        # The folder is told of, and the window is behind what tells it.
        self.press(rig.wait_for(lambda: self.display.window("^Korvalin$"), "the message"), "Return")
        rig.wait_for(lambda: not self.display.window("^Korvalin$"), "the message's end")
        window = self.main_window()
        self.assertEqual(self.home.cli("settings", "get", "DataPath"), str(self.home.path / "gone"))
        shutil.rmtree(self.home.path / "data", ignore_errors=True)
        self.choose(window, "p")
        self.setting("ForeGround", "False")
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    rig.main()
