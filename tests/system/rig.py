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
ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77
PYTHON = "/usr/bin/python3"  # the one that Debian's modules belong to
FAKETIME = next(pathlib.Path("/usr/lib").glob("*/faketime/libfaketime.so.1"), None)
SEND = """
import socket, sys, time
device, packets, address, rate = sys.argv[1], int(sys.argv[2]), sys.argv[3], float(sys.argv[4])
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
out.setsockopt(socket.SOL_SOCKET, socket.SO_BINDTODEVICE, device.encode())
start = time.monotonic()
for sent in range(packets):
    time.sleep(max(0, start + sent / rate - time.monotonic()))
    out.sendto(b"x" * 1000, (address, 9))
"""


def sender(device, packets, address, rate=1e9):
    """What sends so many packets a second."""
    return [sys.executable, "-c", SEND, device, str(packets), address, str(rate)]


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


def run(*command, check=True, **options):
    """A command to its end."""
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "timeout": 60, "text": True, **options}
    return subprocess.run([str(word) for word in command], check=check, **options)


def need(*tools, modules=(), root=False):
    """Skips where tools, Debian's modules for Python, or a right are missing."""
    missing = [tool for tool in tools if not shutil.which(tool)]
    missing += [name for name in modules if run(PYTHON, "-c", f"import {name}", check=False).returncode]
    if missing or root > (os.geteuid() == 0):
        raise unittest.SkipTest(f"needs {', '.join(missing) or 'root'}")


def ended(process):
    """Kills it, and closes its pipes."""
    process.kill()
    process.wait()
    for pipe in (process.stdin, process.stdout, process.stderr):
        if pipe:
            with contextlib.suppress(BrokenPipeError):
                pipe.close()


def grown(now, before):
    return [after - earlier for after, earlier in zip(now, before)]


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
    """A user's folders for one test; `prefix` is what starts a program of `bin` as that user."""

    prefix, bin = (), BIN

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="korvalin-")
        self.path = pathlib.Path(self.folder.name)
        self.data, self.store = self.path / "data/Korvalin", self.path / "config/korvalin/registry.db"
        self.env = dict(os.environ, HOME=str(self.path), XDG_CONFIG_HOME=str(self.path / "config"),
                        XDG_DATA_HOME=str(self.path / "data"), XDG_RUNTIME_DIR=str(self.path), LANG="C.UTF-8")
        for name in ("LC_ALL", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "DBUS_SESSION_BUS_ADDRESS", "http_proxy", "https_proxy"):
            self.env.pop(name, None)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.folder.cleanup()

    def run(self, *arguments, check=False):
        return run(*self.prefix, self.bin / "korvalin-cli", *arguments, env=self.env, check=check)

    def cli(self, *arguments):
        return self.run(*arguments, check=True).stdout.strip()

    def json(self, *arguments):
        return json.loads(self.cli(*arguments, "--format", "json"))

    def get(self, name):
        return self.cli("settings", "get", name)

    def set(self, **settings):
        for name, value in settings.items():
            self.cli("settings", "set", name, value)

    def moved(self, *command):
        """What each line has received and transmitted, as a command of the statistics tells."""
        found = {}
        for row in self.json(*command):
            received, transmitted = found.get(row["alias"], (0, 0))
            found[row["alias"]] = [received + row["bytes_received"], transmitted + row["bytes_transmitted"]]
        return found


class Namespaces:
    """Two network namespaces; nothing that runs in them outlives them."""

    def __init__(self):
        need("ip", root=True)
        self.here, self.there = (f"kv-{type(self).__name__}-{side}-{os.getpid()}" for side in ("here", "there"))

    def __enter__(self):
        try:
            for name in (self.here, self.there):
                run("ip", "netns", "add", name)
        except subprocess.CalledProcessError as error:
            self.__exit__()
            raise unittest.SkipTest(f"no network namespaces here: {error.stderr.strip()}")
        return self

    def __exit__(self, *_):
        for name in (self.here, self.there):
            self.kill(name)
            run("ip", "netns", "delete", name, check=False)

    @staticmethod
    def kill(namespace, name=""):
        """Whatever runs there, or what has that name in its command."""
        for process in run("ip", "netns", "pids", namespace, check=False).stdout.split():
            with contextlib.suppress(OSError):
                if name in pathlib.Path(f"/proc/{process}/cmdline").read_text():
                    os.kill(int(process), signal.SIGKILL)

    def prefix(self, where=None):
        """What starts a command there."""
        return ["ip", "netns", "exec", where or self.here]

    def inside(self, where, *command):
        return run(*self.prefix(where), *command).stdout

    def ip(self, words, where=None):
        run("ip", "-n", where or self.here, *words.split())

    def link(self, name, where=None):
        """What iproute2 tells of an adapter."""
        return json.loads(run("ip", "-n", where or self.here, "-json", "-stats", "link", "show", name).stdout)[0]

    def counted(self, name):
        """What the kernel has counted: received and transmitted."""
        link = self.link(name)
        return [link["stats64"][way]["bytes"] for way in ("rx", "tx")]


class Network(Namespaces):
    """The two are joined by wire0, and "here" has a default route over it. Nothing but the test's own packets travels."""

    def __enter__(self):
        super().__enter__()
        for name in (self.here, self.there):
            # IPv6 would send packets of its own; a kernel without it has nothing to switch off.
            self.inside(name, "sh", "-c",
                        "for f in /proc/sys/net/ipv6/conf/*/disable_ipv6; do [ ! -e $f ] || echo 1 > $f; done")
        self.join("wire0", 77)
        self.ip("route add default via 10.77.0.2")
        return self

    def join(self, name, net):
        """An adapter, and its peer on the other side."""
        self.ip(f"link add {name} type veth peer name {name}p netns {self.there}")
        ends = ((self.here, name, 1), (self.there, name + "p", 2))
        for where, link, number in ends:
            self.ip(f"address add 10.{net}.0.{number}/24 dev {link}", where)
            self.ip(f"link set {link} up", where)
        for (where, link, _), (other, peer, number) in (ends, ends[::-1]):
            # A fixed neighbour: no ARP that would count as traffic.
            address = self.link(peer, other)["address"]
            self.ip(f"neighbour replace 10.{net}.0.{number} lladdr {address} dev {link} nud permanent", where)
        self.await_carrier(name)

    def await_carrier(self, link="wire0"):
        """Before that the kernel drops what is sent."""
        for where, name in ((self.here, link), (self.there, link + "p")):
            wait_for(lambda: self.link(name, where)["operstate"] == "UP", f"the carrier of {name}")

    def send(self, link, packets, net=77, sent=None):
        """Packets in both directions: an adapter counts when it has received something."""
        self.inside(self.there, *sender(link + "p", packets, f"10.{net}.0.1"))
        self.inside(self.here, *sender(link, packets if sent is None else sent, f"10.{net}.0.2"))


class Display:
    """An Xvfb with a window manager that is ready for windows."""

    def __enter__(self):
        need("Xvfb", "openbox", "xdotool", "xprop")
        self.stack = contextlib.ExitStack()
        # Servers that look for a free display at the same moment can take each other's socket away.
        return wait_for(self.started, "a display", seconds=30)

    def __exit__(self, *_):
        self.stack.close()

    def launch(self, *command, **options):
        process = subprocess.Popen(command, stderr=subprocess.DEVNULL, **options)
        self.stack.callback(ended, process)
        return process

    def started(self):
        self.stack.close()
        read, write = os.pipe()
        self.server = self.launch("Xvfb", "-displayfd", str(write), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                                  pass_fds=[write])
        os.close(write)
        with open(read) as announced:
            self.name = ":" + announced.readline().strip()
        self.launch("openbox", env=dict(os.environ, DISPLAY=self.name))
        with contextlib.suppress(AssertionError):
            wait_for(lambda: "window id" in self.tool("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), "openbox", seconds=10)
            return self

    def tool(self, *command):
        return run(*command, env=dict(os.environ, DISPLAY=self.name), check=False).stdout

    def window(self, title):
        """The identifier of the visible window of that title, or nothing."""
        return self.tool("xdotool", "search", "--onlyvisible", "--name", title).strip().split("\n")[0]

    def geometry(self, window):
        lines = self.tool("xdotool", "getwindowgeometry", "--shell", window).split()
        return {key: int(value) for key, value in (line.split("=") for line in lines)}


class Case(unittest.TestCase):
    """A test in folders of its own; what it starts ends with it."""

    def setUp(self):
        self.home = self.enterContext(Home())

    def launch(self, command, prefix=(), **options):
        process = subprocess.Popen([*prefix, *command], env=self.home.env, text=True, **options)
        self.addCleanup(ended, process)
        return process

    def end(self, process, how=signal.SIGTERM, seconds=10):
        """Ends it as a session's end does; its status."""
        process.send_signal(how)
        return process.wait(timeout=seconds)

    def bus(self, name):
        """The address of a bus of its own."""
        need("dbus-daemon")
        path = self.home.path / name
        self.launch(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address=unix:path={path}"],
                    stderr=subprocess.DEVNULL)
        wait_for(path.exists, "the bus")
        return f"unix:path={path}"


class Watch:
    """korvalin-cli lines --watch: the lines of every second."""

    def __init__(self, case, prefix):
        self.file = case.home.path / "watched"
        with open(self.file, "w", encoding="utf-8") as output:
            self.process = case.launch([BIN / "korvalin-cli", "lines", "--watch", "--format", "json"], prefix, stdout=output)

    @property
    def history(self):
        return [json.loads(text) for text in self.file.read_text().splitlines(keepends=True) if text.endswith("\n")]

    def lines(self):
        return self.history[-1]

    def await_names(self, *names):
        wait_for(lambda: self.history and [line["name"] for line in self.lines()] == list(names), names)


class RecorderCase(Case):
    """Records in a network of its own, whose adapter wire0 has moved something."""

    def setUp(self):
        super().setUp()
        self.home.set(Language="ENG", AutoStart="False", ChartLineNo="1")
        self.network = self.enterContext(Network())
        self.send, self.counted = self.network.send, self.network.counted
        self.send("wire0", 2)

    def record(self, *lines, prefix=(), **options):
        """The recorder, once it follows these lines."""
        process = self.launch([*prefix, BIN / "korvalin-cli", "record"], self.network.prefix(), **options)
        self.await_lines(*(lines or ("wire0",)))
        return process

    def await_lines(self, *names):
        wait_for(lambda: {record["line_name"] for record in self.records() if record["info"] == "Running"} == set(names),
                 f"{names} to be followed")

    def records(self, *arguments):
        return self.home.json("records", *arguments)

    def closed(self):
        return sorted(self.records("--closed"), key=lambda record: record["file_index"])


class NotifierHost:
    """sni_host.py, on a session bus that is the case's; `host` is whether a panel is there from the start."""

    def __init__(self, case, host=True):
        need(modules=("dbus", "gi"))
        if "DBUS_SESSION_BUS_ADDRESS" not in case.home.env:
            case.home.env["DBUS_SESSION_BUS_ADDRESS"] = case.bus("session-bus")
        self.process = case.launch([PYTHON, "-B", ROOT / "tests/system/sni_host.py", *["host"] * host],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.process.stdout.readline()

    def tell(self, *command):
        self.process.stdin.write(" ".join(command) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def item(self):
        return self.tell("item")


class DesktopCase(Case):
    """The window, on a display that the tests of a class share."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.display = cls.enterClassContext(Display())

    def setUp(self):
        super().setUp()
        self.home.env["DISPLAY"] = self.display.name

    def start(self, program="korvalin", prefix=(), **settings):
        """The program past the first start's question."""
        self.home.set(**{"Language": "ENG", **settings})
        return self.launch([BIN / program], prefix, stderr=subprocess.PIPE)

    # Its windows have no title without a caption; their class tells them, and their width what they are.

    def windows(self, matches, *options):
        found = self.display.tool("xdotool", "search", *options, "--class", "korvalin").split()
        places = ((window, self.display.geometry(window)) for window in found)
        return [window for window, place in places if place and matches(place)]

    def find(self, matches, *options):
        return next(iter(self.windows(matches, *options)), None)

    def any_window(self):
        """The main window, also while it is out of sight."""
        return self.find(lambda place: place["WIDTH"] > 200)

    def main_window(self, seconds=20):
        return wait_for(lambda: self.find(lambda place: place["WIDTH"] > 200, "--onlyvisible"), "the main window", seconds)

    def menu(self):
        return self.find(lambda place: 64 < place["WIDTH"] < 200, "--onlyvisible")

    def titled(self, title):
        return wait_for(lambda: self.display.window(title), title)

    def wait_for_state(self, state):
        """Normal, Iconic, or Withdrawn: out of sight for the taskbar too."""
        def told():
            window = self.any_window()
            text = self.display.tool("xprop", "-id", window, "WM_STATE") if window else None
            return text and (state in text if "window state:" in text else state == "Withdrawn")

        wait_for(told, state)

    def setting(self, name, expected):
        wait_for(lambda: self.home.get(name) == expected, f"{name} = {expected}")

    def color(self, window, x, y):
        place = self.display.geometry(window)
        text = self.display.tool("import", "-window", "root", "-crop", f"1x1+{place['X'] + x}+{place['Y'] + y}", "-depth",
                                 "8", "txt:-")
        return next((word[1:] for word in text.split() if word.startswith("#") and len(word) == 7), "")

    def click(self, window, x, y, button="1"):
        self.display.tool("xdotool", "mousemove", "--window", window, x, y, "click", button)

    def press(self, window, *keys):
        self.display.tool("xdotool", "windowactivate", "--sync", window, "key", *keys)

    def gone(self, window):
        return window not in self.display.tool("xdotool", "search", "--onlyvisible", "--class", "korvalin").split()

    def again(self, act, condition, what):
        """Acts until it helps: a window that is just coming or being decorated anew may lose a click or a key."""
        def tried():
            act()
            time.sleep(0.3)
            return condition()

        return wait_for(tried, what)

    def choose(self, window, entry):
        """Takes an entry of the main window's menu by its access key."""
        self.again(lambda: self.click(window, 60, 50, "3"), self.menu, "the menu")
        self.display.tool("xdotool", "key", entry)

    def answer(self, title, *keys):
        """Presses keys in the window of that title, until it is gone."""
        box = self.titled(title)
        self.picture(title)
        self.again(lambda: self.press(box, *keys), lambda: self.gone(box), f"the end of {title}")

    def close(self, window):
        """By the window manager's key."""
        self.again(lambda: self.display.tool("xdotool", "windowactivate", window, "key", "alt+F4"),
                   lambda: self.gone(window), "the window's end")

    def picture(self, what):
        """Keeps a picture of the screen where KORVALIN_PICTURES names a folder."""
        if folder := os.environ.get("KORVALIN_PICTURES"):
            time.sleep(0.7)
            self.display.tool("import", "-window", "root", f"{folder}/{''.join(filter(str.isalnum, what))}.png")


def main():
    """Runs the tests of the calling script; SKIPPED when none could run."""
    result = unittest.main(argv=sys.argv[:1], verbosity=2, exit=False).result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(SKIPPED if len(result.skipped) == result.testsRun else 0)
