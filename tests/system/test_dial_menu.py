#!/usr/bin/env python3
"""Dialing as a user does it: from the main window's menu, over a real NetworkManager, with the dial windows."""

import rig
from network_manager import LineCase


class DialMenu(LineCase, rig.DesktopCase):
    def begin(self):
        self.home.set(Language="ENG")
        self.launch([rig.BIN / "korvalin"], self.nm.into)
        self.main_window()

    def choose(self, *keys):
        """Opens the popup menu where no dial window covers the main one, and presses keys in it."""
        def opened():
            window = self.main_window()
            self.display.tool("xdotool", "windowactivate", "--sync", window)
            self.click(window, 10, self.display.geometry(window)["HEIGHT"] - 5, "3")
            return self.menu()

        rig.wait_for(opened, "the menu")
        self.display.tool("xdotool", "key", *keys)

    def main_window(self, seconds=20):
        """Also while the machine is offline, when it is out of sight."""
        return rig.wait_for(lambda: self.find(lambda place: place["HEIGHT"] == 97), "the main window", seconds)

    def wait_for_line(self, *names):
        rig.wait_for(lambda: [name for name in self.nm.active() if name != "lo"] == list(names), names)

    def hang_up_once_it_is_recorded(self, records):
        rig.wait_for(lambda: "Running" in self.home.cli("records", "--format", "csv"), "the open record")
        # The menu offers it after the next update.
        self.again(lambda: self.choose("h", "Escape"), lambda: self.nm.active() == ["lo"], "the line's end")
        rig.wait_for(lambda: len(self.home.json("records", "--closed")) == records, f"{records} records")

    def test_a_line_is_dialed_recorded_once_and_dialed_again_by_its_quick_item(self):
        self.nm.add_pppoe("DSL")
        self.nm.add_gsm("Mobile & Co")
        self.begin()
        self.choose("d", "Down", "Return")
        self.wait_for_line("Mobile & Co")
        self.setting("LineLast", "Mobile & Co")
        self.hang_up_once_it_is_recorded(1)
        self.choose("Down", "Return")  # the first item
        self.wait_for_line("Mobile & Co")
        self.hang_up_once_it_is_recorded(2)

    def test_a_refused_login_is_asked_for_once_and_the_failure_told(self):
        self.nm.add_pppoe("DSL", "wrong")
        self.begin()
        self.choose("d", "Return")
        self.answer("^Log in$", "n", "o", "Return")
        self.answer("^Korvalin$", "Escape")
        self.choose("d", "Return")
        self.answer("^Log in$", "p", "Return")
        self.wait_for_line("DSL")


if __name__ == "__main__":
    rig.main()
