"""A real NetworkManager for tests: in network, mount and bus namespaces of its own, with lines that dial.

There is an adapter wan0, over which PPPoE profiles dial to a stand-in for pppd (pppd_stand_in.py), a modem ttyS9 with its
data port wwan0 (modem_manager.py), and, when asked for, an OpenVPN server that is reached over PPPoE. The other ends stand in a
second network namespace.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import unittest

import rig
from rig import PYTHON, ended, wait_for

DRIVER = rig.BIN.parent / "tests/dialdriver" if rig.BIN else None  # DialDriver.cpp
SCRIPTS = pathlib.Path(__file__).resolve().parent
BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>system</type><listen>unix:path={folder}/bus</listen>
<listen>unix:path=/run/dbus/system_bus_socket</listen><auth>EXTERNAL</auth><policy context="default"><allow user="*"/>
<allow own="*"/><allow send_type="method_call"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
</policy></busconfig>"""
CONFIGURATION = """[main]
plugins=keyfile
auth-polkit=false
dns=none
rc-manager=unmanaged
dhcp=internal
no-auto-default=*
hostname-mode=none
[keyfile]
path={folder}/profiles
"""
# A read-only /sys makes udev unnecessary. Some of NetworkManager's helpers look for the bus in its usual place only.
INSIDE = """mount --make-rprivate /
mkdir -p /run/NetworkManager /var/lib/NetworkManager /run/dbus
for folder in /run/NetworkManager /var/lib/NetworkManager /run/dbus; do mount -t tmpfs none $folder; done
mount --bind {folder}/resolv.conf /etc/resolv.conf
mount --bind {folder}/pppd /usr/sbin/pppd
mount -o remount,ro /sys
touch {folder}/ready
exec sleep infinity"""
VPN_SERVER = """cd {folder}
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout ca.key -out ca.crt -days 3650 -subj /CN=ca
openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout server.key -out server.csr -subj /CN=server
printf 'extendedKeyUsage=serverAuth\\nkeyUsage=digitalSignature\\n' > extensions
openssl x509 -req -in server.csr -CA ca.crt -CAkey ca.key -CAcreateserial -days 3650 -extfile extensions -out server.crt
printf '#!/bin/sh\\n{{ read user; read password; }} < "$1"\\n[ "$user" = alice ] && [ "$password" = secret ]\\n' > login
chmod 755 login
exec openvpn --dev tun --dev-type tun --proto udp --port 1194 --server 10.99.0.0 255.255.255.0 \\
  --topology subnet --ca ca.crt --cert server.crt --key server.key --dh none --verify-client-cert none \\
  --username-as-common-name --script-security 2 --auth-user-pass-verify {folder}/login via-file --ping 1 --log server.log"""


class NetworkManager(rig.Namespaces):
    def __init__(self, folder):
        rig.need("unshare", "nsenter", "NetworkManager", "nmcli", "dbus-daemon", "pppd", modules=("dbus", "dbusmock"))
        super().__init__()
        self.folder = pathlib.Path(folder) / "nm"
        self.processes = []

    def __enter__(self):
        for name in ("profiles", "conf.d"):
            (self.folder / name).mkdir(parents=True)
        pppd = f'#!/bin/sh\nexec {PYTHON} -B {SCRIPTS}/pppd_stand_in.py {self.folder} {self.there} "$@"\n'
        for name, text in (("bus.conf", BUS), ("nm.conf", CONFIGURATION), ("resolv.conf", ""), ("pppd", pppd)):
            (self.folder / name).write_text(text.replace("{folder}", str(self.folder)))
        (self.folder / "pppd").chmod(0o755)
        super().__enter__()
        try:
            self.begin()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            ended(process)
        super().__exit__()

    def begin(self):
        for near, far, address in (("wan0", "isp0", "10.66.0.1/24"), ("wwan0", "gprs0", "10.78.0.1/24")):
            self.ip(f"link add {near} type veth peer name {far} netns {self.there}")
            self.ip(f"addr add {address} dev {far}", self.there)
            self.ip(f"link set {far} up", self.there)
        for name in (self.here, self.there):
            self.ip("link set lo up", name)
        self.env = dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={self.folder}/bus", LC_ALL="C.UTF-8",
                        KORVALIN_MODEM=str(self.folder / "modem.json"))
        holder = self.launch([*self.prefix(), "unshare", "-m", "sh", "-ec", INSIDE.replace("{folder}", str(self.folder))])
        self.into = ["nsenter", "-t", str(holder.pid), "-n", "-m"]  # what starts a command beside NetworkManager
        wait_for((self.folder / "ready").exists, "the namespaces")
        self.start_bus()

    def start_bus(self):
        """With everything that stands on it."""
        (self.folder / "bus").unlink(missing_ok=True)
        self.bus = self.start("dbus-daemon", f"--config-file={self.folder}/bus.conf", "--nofork", "--nopidfile")
        wait_for((self.folder / "bus").exists, "the bus")
        self.modem = self.start(PYTHON, "-B", "-m", "dbusmock", "--system", "--template", SCRIPTS / "modem_manager.py",
                                "--logfile", self.folder / "modem.log")
        self.start_daemon()

    def launch(self, command, **options):
        options = {"env": self.env, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, **options}
        process = subprocess.Popen([str(word) for word in command], **options)
        self.processes.append(process)
        return process

    def start(self, *command, **options):
        """A process in NetworkManager's namespaces."""
        return self.launch([*self.into, *command], **options)

    def run(self, *command, env=None, check=True):
        """Runs a command there to its end; what it printed."""
        return rig.run(*self.into, *command, env={**self.env, **(env or {})}, check=check,
                       stderr=subprocess.STDOUT).stdout.strip()

    def nmcli(self, *arguments, check=True):
        return self.run("nmcli", *arguments, check=check)

    def start_daemon(self):
        with open(self.folder / "nm.log", "a", encoding="utf-8") as log:
            self.daemon = self.start("NetworkManager", "--debug", f"--config={self.folder}/nm.conf",
                                     f"--config-dir={self.folder}/conf.d", f"--intern-config={self.folder}/intern.conf",
                                     f"--state-file={self.folder}/state", f"--pid-file={self.folder}/pid",
                                     stdout=log, stderr=subprocess.STDOUT)
        wait_for(lambda: "ttyS9" in self.nmcli("-t", "-f", "DEVICE,STATE", "device", check=False), "the modem")

    def stop_daemon(self):
        """Its PPP lines go on, as it leaves them to whoever manages services."""
        ended(self.daemon)

    def stop_bus(self):
        for process in (self.bus, self.modem, self.daemon):
            ended(process)
        self.cut_lines()

    def cut_lines(self):
        """Ends PPP lines that outlived the daemon."""
        self.kill(self.here, "pppd_stand_in.py")

    def add(self, kind, name, *settings):
        """A profile; its UUID."""
        told = self.nmcli("connection", "add", "type", kind, "con-name", name, "autoconnect", "no", *settings)
        return re.search(r"\(([0-9a-f-]{36})\) successfully added", told)[1]

    def add_pppoe(self, name, password="p", *settings):
        return self.add("pppoe", name, *(settings or ("ifname", "wan0")), "username", "u", "password", password)

    def add_gsm(self, name, *settings):
        return self.add("gsm", name, "ifname", "*", "apn", "internet", *settings)

    def add_vpn(self, name, password="secret"):
        return self.add("vpn", name, "vpn-type", "openvpn", "vpn.data",
                        f"connection-type = password, remote = 10.64.64.64, ca = {self.folder}/ca.crt, username = alice, "
                        "password-flags = 0, ping = 1, ping-exit = 4", "vpn.secrets", f"password={password}",
                        "ipv4.never-default", "yes")

    def up(self, name):
        self.nmcli("connection", "up", name)

    def start_vpn_server(self):
        """Once for all tests."""
        log = self.folder / "server.log"
        if log.exists():
            return
        if not shutil.which("openvpn") or not list(pathlib.Path("/usr/lib").rglob("nm-openvpn-service")):
            raise unittest.SkipTest("needs openvpn and NetworkManager's plugin for it")
        self.launch([*self.prefix(self.there), "sh", "-ec", VPN_SERVER.format(folder=self.folder)])
        wait_for(lambda: log.exists() and "Initialization Sequence Completed" in log.read_text(), "the VPN server")

    def remove_all(self):
        """Every line and every profile, and what the far ends were told."""
        if self.daemon.poll() is not None:
            self.cut_lines()
            self.start_daemon()
        for name in ("ppp.json", "ppp.hangup", "modem.json"):
            (self.folder / name).unlink(missing_ok=True)
        for line in self.nmcli("-t", "-f", "UUID,TYPE", "connection", "show").splitlines():
            uuid, kind = line.split(":")
            if kind not in ("loopback", "tun"):
                self.nmcli("connection", "delete", uuid)

    def tell(self, name, **values):
        """How the far end of ppp or of the modem behaves from now on."""
        (self.folder / f"{name}.json").write_text(json.dumps(values))

    def active(self):
        """The names of the connections that are up or coming up."""
        return sorted(self.nmcli("-t", "-f", "NAME", "connection", "show", "--active").splitlines())

    def await_end(self, name):
        wait_for(lambda: name not in self.active(), f"the end of {name}")

    def calls_during(self, *command):
        """How many calls went over the bus while a command ran; NetworkManager and the modem talk now and then too."""
        file = self.folder / "calls"
        with open(file, "w", encoding="utf-8") as output:
            monitor = self.start("dbus-monitor", "--system", "--profile", "type='method_call'", stdout=output)
        wait_for(lambda: file.stat().st_size > 0, "the monitor")
        self.run(*command)
        self.run("dbus-send", "--system", "--type=method_call", "--dest=org.freedesktop.DBus", "/", "test.last.Mark")
        wait_for(lambda: "Mark" in file.read_text(), "the last call")
        ended(monitor)
        return sum(text.startswith("mc") for text in file.read_text().splitlines())


class LineCase(rig.Case):
    """Tests that share one NetworkManager; each begins without profiles and lines, in its namespaces."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.nm = cls.enterClassContext(NetworkManager(cls.enterClassContext(rig.Home()).path))

    def setUp(self):
        super().setUp()
        self.home.env["DBUS_SYSTEM_BUS_ADDRESS"] = self.nm.env["DBUS_SYSTEM_BUS_ADDRESS"]
        self.home.prefix = self.nm.into
        self.addCleanup(self.nm.remove_all)

    def drive(self, *arguments):
        return self.nm.run(DRIVER, *arguments)
