"""The pictures of one colour scheme: screenshots.py PROGRAMS light|dark FOLDER.

It works the built program as the system tests do: on a display of its own, in a network of its own whose traffic follows a
curve, in a home with half a year of records.
"""

import datetime
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/system"))
import rig  # it takes the programs' folder from the arguments

DARK = sys.argv[2] == "dark"
PICTURES = pathlib.Path(sys.argv[3])
LINE = "eth0"
SECONDS_OF_CHART = 120
DAYS = 190
GIGABYTE = 1e9

# Sends what a curve tells, in bytes a second: hills of downloads, a floor of small things, and the answers to them.
TRAFFIC = """
import math, socket, sys, time
device, address, share = sys.argv[1], sys.argv[2], float(sys.argv[3])
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
out.setsockopt(socket.SOL_SOCKET, socket.SO_BINDTODEVICE, device.encode())
HILLS = ((18, 9, 620), (47, 14, 780), (64, 7, 350), (92, 10, 900), (121, 13, 540), (150, 16, 700))
def rate(second):
    second %= 165
    hills = sum(height * math.exp(-((second - middle) / width) ** 2) for middle, width, height in HILLS)
    return 1000 * share * (45 + 12 * math.sin(second / 3) + hills)
start = last = time.monotonic()
due = 0
while True:
    time.sleep(0.05)
    now = time.monotonic()
    due += rate(now - start) * (now - last)
    last = now
    while due >= 1000:
        out.sendto(b"x" * 960, (address, 9))
        due -= 1000
"""

# The toolkit takes its colours from the desktop's, which is told of in this file.
DESKTOP_COLORS = """[General]
font=DejaVu Sans,10,-1,5,50,0,0,0,0,0
[KDE]
widgetStyle=fusion
[Colors:Window]
BackgroundNormal={window}
ForegroundNormal={text}
ForegroundInactive={faint}
[Colors:Button]
BackgroundNormal={button}
ForegroundNormal={text}
ForegroundInactive={faint}
[Colors:View]
BackgroundNormal={view}
BackgroundAlternate={alternate}
ForegroundNormal={text}
ForegroundInactive={faint}
ForegroundLink={link}
[Colors:Selection]
BackgroundNormal={selection}
ForegroundNormal=255,255,255
[Colors:Tooltip]
BackgroundNormal={button}
ForegroundNormal={text}
"""
COLORS = {"window": "42,46,50", "text": "236,238,240", "faint": "150,155,160", "button": "54,59,64", "view": "27,30,32",
          "alternate": "35,38,41", "link": "80,170,240", "selection": "44,110,165"} if DARK else \
         {"window": "239,240,241", "text": "35,38,41", "faint": "130,135,138", "button": "248,249,250", "view": "255,255,255",
          "alternate": "244,247,250", "link": "40,110,180", "selection": "48,140,198"}
BACKDROP = "#14181c" if DARK else "#dfe6ec"
TITLES = "Onyx" if DARK else "Clearlooks"


class Records:
    """Half a year of a household: a line at home, a telephone as a hotspot, the office's network."""

    def __init__(self):
        self.random = random.Random(2004)
        self.lines = []

    def add(self, line, day, begin, hours, gigabytes):
        midnight = datetime.datetime.combine(day, datetime.time())
        log_in = midnight + datetime.timedelta(hours=begin, seconds=self.random.randrange(600))
        span = int(hours * 3600) + self.random.randrange(500)
        down = int(gigabytes * GIGABYTE * self.random.uniform(0.6, 1.3))
        up = int(down * self.random.uniform(0.07, 0.16))
        duration = f"{span // 3600:02}:{span // 60 % 60:02}:{span % 60:02}"
        self.lines.append((log_in, f'"{line}",#{log_in:%Y-%m-%d %H:%M:%S}#,#{duration}#,{up},{down},"",""\r\n'))

    def day(self, day, weight):
        works = day.weekday() < 5
        self.add(LINE, day, 6.6 if works else 8.2, 15, weight * (4 if works else 8.5))
        if works and self.random.random() < 0.7:
            self.add("Office", day, 8.4, 7.6, 0.9)
        if works or self.random.random() < 0.4:
            self.add("Phone", day, 7.5, 0.7, 0.22)
            self.add("Phone", day, 17.2, 0.8, 0.3)

    def text(self):
        today = datetime.date.today()
        months = [self.random.uniform(0.65, 1.25) for _ in range(13)]
        for back in range(DAYS, 0, -1):
            day = today - datetime.timedelta(days=back)
            self.day(day, months[day.month])
        return "".join(line for _, line in sorted(self.lines))


class Pictures(rig.DesktopCase):
    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(tempfile.TemporaryDirectory(prefix="korvalin-"))
        settings = pathlib.Path(folder, "openbox/rc.xml")
        settings.parent.mkdir()
        settings.write_text('<?xml version="1.0"?><openbox_config xmlns="http://openbox.org/3.4/rc">'
                            f"<theme><name>{TITLES}</name></theme></openbox_config>")
        os.environ["XDG_CONFIG_HOME"] = folder
        super().setUpClass()
        cls.display.tool("display", "-window", "root", "-size", "1024x768", f"xc:{BACKDROP}")

    def setUp(self):
        super().setUp()
        self.network = self.enterContext(rig.Network())
        self.network.join(LINE, 78)
        self.network.ip("route replace default via 10.78.0.2")
        self.network.ip("link set wire0 down")
        self.furnish()
        for where, device, address, share in ((self.network.there, LINE + "p", "10.78.0.1", 1),
                                              (self.network.here, LINE, "10.78.0.2", 0.14)):
            self.launch([sys.executable, "-c", TRAFFIC, device, address, str(share)], self.network.prefix(where))
        panel = "--edge bottom --align right --widthtype pixel --width 360 --height 48 --transparent true --alpha 0"
        self.launch(["trayer", *panel.split(), "--tint", "0x" + BACKDROP[1:]], stderr=subprocess.DEVNULL)

    def furnish(self):
        """A home that is lived in: records, tariffs, colours."""
        self.home.data.mkdir(parents=True)
        (self.home.data / "Korvalin_Stats.db").write_text(Records().text(), newline="")
        (self.home.path / "config").mkdir(exist_ok=True)
        (self.home.path / "config/kdeglobals").write_text(DESKTOP_COLORS.format(**COLORS))
        self.home.env.update(XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5", KDE_FULL_SESSION="true")
        # Far enough into the month for a forecast, whatever day it is.
        begin = min((datetime.date.today() - datetime.timedelta(days=18)).day, 28)
        for alias, megabytes in (("Home", 250_000), ("Phone", 18_000)):
            self.home.set(**{f"{alias}_FreeVolume": megabytes, f"{alias}_MonthStartDay": begin, f"{alias}_Up1MB": "False"})
        self.home.set(**{f"{LINE}_Alias": "Home", "Home_TrayVol": "True", "Office_Up1MB": "False", "AutoStart": "False"})
        self.home.set(ShowTitle="True", ForeGround="False", MultiScreen="True", MON_Left_1024=600, MON_Top_768=600,
                      MON_Width=9000, MON_Height=2500, picWidthMin=SECONDS_OF_CHART // 60, ConnDataMax=300,
                      TimeLinesSec=30, FontSize=12, LineDL1Show="True", TrayMaxRate=1000)
        self.home.set(Stat_Dimension="GB", z_optStatSum=2, GAlias="Home", GMaxPeriods=12, GPalette=int(DARK),
                      GFrom=datetime.date.today() - datetime.timedelta(days=DAYS),
                      STATS_Left=150, STATS_Top=300, STATS_Width=14500, STATS_Height=8700)

    def part(self, corners, *where):
        """A part of the screen."""
        left, top, right, bottom = corners
        return self.display.tool("import", "-window", "root", "-crop", f"{right - left}x{bottom - top}+{left}+{top}", *where)

    def shot(self, name, *corners):
        file = PICTURES / f"{name}-{sys.argv[2]}.png"
        file.unlink(missing_ok=True)
        self.part(corners, "+repage", "-strip", "+dither", "-colors", "256", "-define", "png:compression-level=9",
                  f"PNG8:{file}")
        self.assertTrue(file.exists(), name)

    def corners(self, window):
        """Of the window in its frame."""
        told = self.display.tool("xwininfo", "-id", window)
        x, y, width, height = (int(re.search(rf"{name}: +(-?\d+)", told)[1])
                               for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        told = self.display.tool("xprop", "-id", window, "_NET_FRAME_EXTENTS").partition("=")[2]
        left, right, top, bottom = map(int, told.split(",")) if "," in told else (0, 0, 0, 0)
        return x - left, y - top, x + width + right, y + height + bottom

    def seen(self, window):
        """A number for what the window shows."""
        return self.part(self.corners(window), "-format", "%#", "info:-")

    def window_shot(self, name, window):
        """Once it has come to rest, or keeps moving as a chart does."""
        self.display.tool("xdotool", "mousemove", "5", "700")
        before, deadline = None, time.monotonic() + 6
        while time.monotonic() < deadline and before != (now := self.seen(window)):
            before = now
            time.sleep(0.5)
        self.shot(name, *self.corners(window))

    def test_pictures(self):
        self.start(prefix=self.network.prefix())
        main = self.main_window()
        for take in (self.statistics, self.settings, self.monitor, self.tray):
            with self.subTest(take.__name__):  # one that fails leaves the others
                take(main)

    def start(self, *arguments, **options):
        self.begun = time.monotonic()
        self.program = super().start(*arguments, **options)

    def statistics(self, main):
        self.choose(main, "s")
        window = self.titled("^Statistics$")
        shown = set()
        for key, page in (("c", "connections"), ("g", "graph"), ("s", "sums")):
            self.press(window, f"alt+{key}")
            time.sleep(1)
            self.window_shot(page, window)
            shown.add(self.seen(window))
        self.assertEqual(len(shown), 3, "the tabs' access keys")
        self.close(window)

    def settings(self, main):
        self.choose(main, "t")
        window = self.titled("^Settings$")
        self.press(window, "Down")
        time.sleep(1)
        self.window_shot("settings", window)
        self.press(window, "Escape")

    def monitor(self, main):
        """Once its chart is full."""
        time.sleep(max(0, SECONDS_OF_CHART + 8 - (time.monotonic() - self.begun)))
        self.display.tool("xdotool", "windowactivate", "--sync", main)
        self.window_shot("monitor", main)

    def tray(self, _):
        """The icon with its tooltip, at twice their size."""
        self.end(self.program)
        self.home.env["QT_SCALE_FACTOR"] = "2"
        self.start(prefix=self.network.prefix(), AutoShow="False")
        icon = rig.wait_for(lambda: self.find(lambda place: 10 < place["WIDTH"] < 80 and place["Y"] > 660, "--onlyvisible"),
                            "the icon")
        time.sleep(8)
        place = self.display.geometry(icon)
        self.display.tool("xdotool", "mousemove", place["X"] + 10, place["Y"] + 10)
        tip = rig.wait_for(lambda: self.find(lambda place: place["WIDTH"] > 100 and place["Y"] > 400, "--onlyvisible"),
                           "the tooltip")
        time.sleep(0.5)
        left, top, *_ = self.corners(tip)
        self.shot("tray", left - 8, top - 8, 1024, 768)


if __name__ == "__main__":
    rig.main()
