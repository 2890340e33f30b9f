"""What the system tests share: folders of their own, network namespaces, a display."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

BIN = pathlib.Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else None
SKIPPED = 77
PYTHON = "/usr/bin/python3"  # the one that Debian's modules belong to
FAKETIME = next(pathlib.Path("/usr/lib").glob("*/faketime/libfaketime.so.1"), None)
SEND = """
import socket, sys
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
out.setsockopt(socket.SOL_SOCKET, socket.SO_BINDTODEVICE, sys.argv[1].encode())
for _ in range(int(sys.argv[2])):
    out.sendto(b"x" * 1000, (sys.argv[3], 9))
"""


def wait_for(condition, what, seconds=20):
    """Polls until the condition holds; its value."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain for: {what}")
        time.sleep(0.02)


def python_has(*modules):
    return subprocess.run([PYTHON, "-c", f"import {', '.join(modules)}"], capture_output=True, check=False).returncode == 0


def at_time(moment):
    """What starts a program at that moment of the wall clock."""
    # The address sanitizer wants to be loaded first, but lives with being second.
    return ("env", f"LD_PRELOAD={FAKETIME}", f"FAKETIME=@{moment}", "DONT_FAKE_MONOTONIC=1",
            "ASAN_OPTIONS=verify_asan_link_order=0")


def with_hardware(folder, *adapters):
    """What starts a program to which these adapters have devices behind them, made up in `folder`: the kernel names none
    behind a virtual one."""
    for adapter in adapters:
        (folder / adapter / "device").mkdir(parents=True)
    return "unshare", "--mount", "sh", "-c", f'mount --bind {folder} /sys/class/net && exec "$@"', "sh"


class Home:
    """A user's folders for one test; `prefix` is what starts a command as that user."""

    prefix = ()

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="korvalin-")
        self.path = pathlib.Path(self.folder.name)
        self.env = dict(os.environ, HOME=str(self.path), XDG_CONFIG_HOME=str(self.path / "config"),
                        XDG_DATA_HOME=str(self.path / "data"), XDG_RUNTIME_DIR=str(self.path), LANG="C.UTF-8")
        for name in ("LC_ALL", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "http_proxy", "https_proxy"):
            self.env.pop(name, None)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.folder.cleanup()

    @property
    def store(self):
        return self.path / "config/korvalin/registry.db"

    def cli(self, *arguments, check=True):
        return subprocess.run([*self.prefix, BIN / "korvalin-cli", *arguments], env=self.env, check=check, text=True,
                              capture_output=True, timeout=30).stdout.strip()

    def set(self, **settings):
        for name, value in settings.items():
            self.cli("settings", "set", name, str(value))

    def moved(self, *command):
        """What each line has received and transmitted, as a command of the statistics tells."""
        found = {}
        for row in json.loads(self.cli(*command, "--format", "json")):
            received, transmitted = found.get(row["alias"], (0, 0))
            found[row["alias"]] = [received + row["bytes_received"], transmitted + row["bytes_transmitted"]]
        return found


class Network:
    """Two network namespaces joined by a veth pair: "here" with a default route through "there". Nothing but the test's
    own packets travels between them."""

    def __init__(self):
        if os.geteuid() != 0 or not shutil.which("ip"):
            raise unittest.SkipTest("network namespaces need root and iproute2")
        self.here, self.there = f"kv-here-{os.getpid()}", f"kv-there-{os.getpid()}"

    def __enter__(self):
        try:
            for name in (self.here, self.there):
                self.run("ip", "netns", "add", name)
        except subprocess.CalledProcessError as error:
            self.__exit__()
            raise unittest.SkipTest(f"no network namespaces here: {error.stderr.strip()}")
        for name in (self.here, self.there):
            # IPv6 would send packets of its own; a kernel without it has nothing to switch off.
            self.inside(name, "sh", "-c",
                        "for f in /proc/sys/net/ipv6/conf/*/disable_ipv6; do [ ! -e $f ] || echo 1 > $f; done")
        self.run("ip", "link", "add", "wire0", "netns", self.here, "type", "veth", "peer", "name", "wire1", "netns",
                 self.there)
        for name, link, address in ((self.here, "wire0", "10.77.0.1/24"), (self.there, "wire1", "10.77.0.2/24")):
            self.inside(name, "ip", "address", "add", address, "dev", link)
            self.inside(name, "ip", "link", "set", link, "up")
        for name, link, other, address in ((self.here, "wire0", (self.there, "wire1"), "10.77.0.2"),
                                           (self.there, "wire1", (self.here, "wire0"), "10.77.0.1")):
            shown = json.loads(self.inside(other[0], "ip", "-json", "link", "show", other[1]).stdout)
            # A fixed neighbour: no ARP that would count as traffic.
            self.inside(name, "ip", "neighbour", "replace", address, "lladdr", shown[0]["address"], "dev", link, "nud",
                        "permanent")
        self.inside(self.here, "ip", "route", "add", "default", "via", "10.77.0.2")
        return self

    def __exit__(self, *_):
        for name in (self.here, self.there):
            subprocess.run(["ip", "netns", "delete", name], stderr=subprocess.DEVNULL, check=False)

    @staticmethod
    def run(*command):
        return subprocess.run(command, check=True, capture_output=True, text=True)

    def inside(self, name, *command):
        return self.run("ip", "netns", "exec", name, *command)

    def start(self, name, command, **options):
        return subprocess.Popen(["ip", "netns", "exec", name, *command], **options)

    def counter(self, name, link, which):
        return int(self.inside(name, "cat", f"/sys/class/net/{link}/statistics/{which}").stdout)

    def counted(self, link):
        return [self.counter(self.here, link, which) for which in ("rx_bytes", "tx_bytes")]

    def await_carrier(self, link, peer):
        """Before that the kernel drops what is sent."""
        for where, name in ((self.here, link), (self.there, peer)):
            wait_for(lambda: json.loads(self.inside(where, "ip", "-json", "link", "show", name).stdout)[0]["operstate"] == "UP",
                     f"the carrier of {name}")

    def send(self, link, packets, address="77", sent=None):
        """Packets in both directions: an adapter counts when it has received something."""
        peer = "wire1" if link == "wire0" else link + "p"
        for where, over, to, number in ((self.there, peer, 1, packets), (self.here, link, 2, packets if sent is None else sent)):
            self.inside(where, sys.executable, "-c", SEND, over, str(number), f"10.{address}.0.{to}")


class Watch:
    """korvalin-cli lines --watch: the lines of every second. `start` makes a process of a command."""

    def __init__(self, home, start):
        self.file = home.path / "watched"
        with open(self.file, "w", encoding="utf-8") as output:
            self.process = start([BIN / "korvalin-cli", "lines", "--watch", "--format", "json"], stdout=output)

    @property
    def history(self):
        return [json.loads(text) for text in self.file.read_text().splitlines(keepends=True) if text.endswith("\n")]

    def lines(self):
        return self.history[-1]

    def await_names(self, *names):
        wait_for(lambda: self.history and [line["name"] for line in self.lines()] == list(names), names)


class Display:
    """An Xvfb with a window manager that is ready for windows."""

    def __enter__(self):
        for tool in ("Xvfb", "openbox", "xdotool", "xprop"):
            if not shutil.which(tool):
                raise unittest.SkipTest(f"{tool} is not installed")
        for _ in range(3):
            self.stack = contextlib.ExitStack()
            if self.started():
                return self
            # Servers that look for a free display at the same moment can take each other's socket away.
            self.stack.close()
        raise AssertionError("no display comes up")

    def started(self):
        read, write = os.pipe()
        server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1024x768x24", "-nolisten", "tcp"],
                                  pass_fds=[write], stderr=subprocess.DEVNULL)
        self.server = server
        self.stack.callback(server.wait)
        self.stack.callback(server.kill)
        os.close(write)
        with open(read) as announced:
            self.name = ":" + announced.readline().strip()
        manager = subprocess.Popen(["openbox"], env=dict(os.environ, DISPLAY=self.name), stderr=subprocess.DEVNULL)
        self.stack.callback(manager.wait)
        self.stack.callback(manager.kill)
        with contextlib.suppress(AssertionError):
            return wait_for(lambda: "window id" in self.tool("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                            "the window manager", seconds=10)

    def __exit__(self, *_):
        self.stack.close()

    def tool(self, *command):
        return subprocess.run(command, env=dict(os.environ, DISPLAY=self.name), text=True, capture_output=True,
                              check=False).stdout

    def window(self, title):
        """The identifier of the visible window of that title, or nothing."""
        return self.tool("xdotool", "search", "--onlyvisible", "--name", title).strip().split("\n")[0]

    def geometry(self, window):
        lines = self.tool("xdotool", "getwindowgeometry", "--shell", window).split()
        return {key: int(value) for key, value in (line.split("=") for line in lines)}


def ended(process):
    """Kills it, and closes its pipes."""
    process.kill()
    process.wait()
    for pipe in (process.stdin, process.stdout, process.stderr):
        if pipe:
            pipe.close()


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


class Case(unittest.TestCase):
    """A test in folders of its own; what it starts ends with it."""

    def setUp(self):
        self.home = self.enter(Home())

    def enter(self, context):
        value = context.__enter__()
        self.addCleanup(context.__exit__, None, None, None)
        return value

    def launch(self, command, inside=None, **options):
        """A process, perhaps in a network namespace."""
        command = ["ip", "netns", "exec", inside, *command] if inside else command
        process = subprocess.Popen(command, env=self.home.env, text=True, **options)
        self.addCleanup(ended, process)
        return process


class RecorderCase(Case):
    """Records in a network of its own, whose adapter wire0 has moved something."""

    def setUp(self):
        super().setUp()
        self.home.set(Language="ENG", AutoStart="False", ChartLineNo="1")
        self.network = self.enter(Network())
        self.here, self.there = self.network.here, self.network.there
        self.send, self.counted = self.network.send, self.network.counted
        self.network.await_carrier("wire0", "wire1")
        self.send("wire0", 2)

    def record(self, *lines, prefix=()):
        """The recorder, once it follows these lines."""
        process = self.launch([*prefix, BIN / "korvalin-cli", "record"], self.here)
        self.await_lines(*(lines or ("wire0",)))
        return process

    def await_lines(self, *names):
        wait_for(lambda: {record["line_name"] for record in self.records() if record["info"] == "Running"} == set(names),
                 f"{names} to be followed")

    def records(self, *arguments):
        return json.loads(self.home.cli("records", "--format", "json", *arguments))

    def end(self, process, how=signal.SIGTERM):
        process.send_signal(how)
        return process.wait(timeout=10)


class DesktopCase(Case):
    """The window, on a display that the tests of a class share."""

    @classmethod
    def setUpClass(cls):
        cls.display = Display()
        cls.display.__enter__()
        cls.addClassCleanup(cls.display.__exit__)

    def setUp(self):
        super().setUp()
        self.home.env["DISPLAY"] = self.display.name

    def session_bus(self):
        if not shutil.which("dbus-daemon") or not python_has("dbus", "gi"):
            self.skipTest("dbus-daemon, python3-dbus or python3-gi is not installed")
        bus = self.launch(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
                           f"--address=unix:path={self.home.path}/bus"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.home.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def host(self, made):
        self.addCleanup(made.close)
        return made

    def start(self, program="korvalin", inside=None, **settings):
        """The program past the first start's question."""
        self.home.set(**{"Language": "ENG", **settings})
        return self.launch([BIN / program], inside, stderr=subprocess.PIPE)

    # Its windows have no title without a caption; their class tells them, and their width what they are.

    def find(self, matches, *options):
        found = self.display.tool("xdotool", "search", *options, "--class", "korvalin").split()
        places = ((window, self.display.geometry(window)) for window in found)
        return next((window for window, place in places if place and matches(place)), None)

    def any_window(self):
        """The main window, also while it is out of sight."""
        return self.find(lambda place: place["WIDTH"] > 200)

    def main_window(self, seconds=20):
        return wait_for(lambda: self.find(lambda place: place["WIDTH"] > 200, "--onlyvisible"), "the main window", seconds)

    def menu(self):
        return self.find(lambda place: 64 < place["WIDTH"] < 200, "--onlyvisible")

    def wait_for_state(self, state):
        """Normal, Iconic, or Withdrawn: out of sight for the taskbar too."""
        def told():
            window = self.any_window()
            text = self.display.tool("xprop", "-id", window, "WM_STATE") if window else None
            return text and (state in text if "window state:" in text else state == "Withdrawn")

        wait_for(told, state)

    def color(self, window, x, y):
        place = self.display.geometry(window)
        text = self.display.tool("import", "-window", "root", "-crop", f"1x1+{place['X'] + x}+{place['Y'] + y}", "-depth",
                                 "8", "txt:-")
        return next((word[1:] for word in text.split() if word.startswith("#") and len(word) == 7), "")

    def click(self, window, x, y, button="1"):
        self.display.tool("xdotool", "mousemove", "--window", window, str(x), str(y), "click", button)

    def open_menu(self, window, x, y, menu):
        """Opens a popup menu by a right click; `menu` finds it."""
        def opened():
            # A window that is just being decorated anew may lose a click.
            self.click(window, x, y, "3")
            time.sleep(0.3)
            return menu()

        wait_for(opened, "the menu")

    def choose(self, window, entry):
        """Takes an entry of the main window's menu by its access key."""
        self.open_menu(window, 60, 50, self.menu)
        self.display.tool("xdotool", "key", entry)

    def picture(self, what):
        """Keeps a picture of the screen where KORVALIN_PICTURES names a folder."""
        if folder := os.environ.get("KORVALIN_PICTURES"):
            time.sleep(0.7)
            self.display.tool("import", "-window", "root", f"{folder}/{what.replace(' ', '-')}.png")

    def press(self, window, *keys):
        self.display.tool("xdotool", "windowactivate", "--sync", window, "key", *keys)

    def close(self, window):
        """By the window manager's key, which a window that is just coming to the screen may miss."""
        def closed():
            self.display.tool("xdotool", "windowactivate", window, "key", "alt+F4")
            time.sleep(0.3)
            return window not in self.display.tool("xdotool", "search", "--onlyvisible", "--class", "korvalin").split()

        wait_for(closed, "the window's end")


def main():
    """Runs the tests of the calling script; SKIPPED when none could run."""
    result = unittest.main(argv=sys.argv[:1], verbosity=2, exit=False).result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(SKIPPED if len(result.skipped) == result.testsRun else 0)
