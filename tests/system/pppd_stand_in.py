#!/usr/bin/python3
"""Stands in for pppd, for kernels without PPP: speaks its plugin's protocol to NetworkManager and joins a tunnel here to one
in the provider's namespace.

    pppd_stand_in.py FOLDER PROVIDER ARGUMENTS-OF-PPPD...

FOLDER/ppp.json may hold "fails", the exit code after the search for the other end, and "delay", seconds before each phase. The
login is "u" and "p". A file FOLDER/ppp.hangup lets the far side hang up.
"""

import contextlib
import ctypes
import fcntl
import json
import os
import pathlib
import select
import signal
import socket
import struct
import subprocess
import sys
import time

import dbus

DEAD, ESTABLISH, AUTHENTICATE, NETWORK, RUNNING, DISCONNECT = 1, 5, 6, 8, 9, 10
HUNG_UP, LOGIN_REFUSED = 16, 19
HERE, THERE = "10.64.64.65", "10.64.64.64"
CLONE_NEWNET, TUNSETIFF, TUNSETLINK, TUN_WITHOUT_HEADER, PPP = 0x40000000, 0x400454CA, 0x400454CD, 0x1001, 512


def tunnel(name):
    device = os.open("/dev/net/tun", os.O_RDWR)
    fcntl.ioctl(device, TUNSETIFF, struct.pack("16sH", name.encode(), TUN_WITHOUT_HEADER))
    return device


def enter(namespace):
    if ctypes.CDLL(None, use_errno=True).setns(namespace, CLONE_NEWNET):
        raise OSError(ctypes.get_errno(), "setns")


def link():
    """ppp0, which comes as soon as the other end is found."""
    near = tunnel("ppp0")
    fcntl.ioctl(near, TUNSETLINK, PPP)
    subprocess.run("ip link set ppp0 mtu 1492 multicast off".split(), check=True)
    return near


def join(provider):
    """The other end at the provider."""
    here = os.open("/proc/self/ns/net", os.O_RDONLY)
    enter(os.open(f"/run/netns/{provider}", os.O_RDONLY))
    far = tunnel("ras0")
    for words in ("addr add " + THERE + " peer " + HERE + " dev ras0", "link set ras0 up"):
        subprocess.run(["ip", *words.split()], check=True)
    enter(here)
    subprocess.run("ip link set ppp0 up".split(), check=True)
    return far


def number(address):
    return dbus.UInt32(struct.unpack("=I", socket.inet_aton(address))[0])


def carry(near, far, hang_up):
    while not hang_up.exists():
        for source in select.select([near, far], [], [], 0.05)[0]:
            os.write(far if source == near else near, os.read(source, 4096))
    hang_up.unlink()


def main():
    folder, provider, arguments = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
    told = {"fails": 0, "delay": 0.1}
    if (folder / "ppp.json").exists():
        told.update(json.loads((folder / "ppp.json").read_text()))
    path = arguments[arguments.index("ipparam") + 1]
    manager = dbus.Interface(dbus.SystemBus().get_object("org.freedesktop.NetworkManager", path, introspect=False),
                             "org.freedesktop.NetworkManager.PPP")

    def phase(code):
        manager.SetState(dbus.UInt32(code))
        time.sleep(told["delay"])

    def end(code):
        with contextlib.suppress(dbus.DBusException):  # NetworkManager may have done with it
            for last in (DISCONNECT, DEAD):
                manager.SetState(dbus.UInt32(last))
        sys.exit(code)

    for wish in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(wish, signal.SIG_DFL)  # NetworkManager no longer listens then
    phase(ESTABLISH)
    if told["fails"]:
        end(told["fails"])
    near = link()
    manager.SetState(dbus.UInt32(AUTHENTICATE))
    login = tuple(manager.NeedSecrets())
    time.sleep(told["delay"])
    if login != ("u", "p"):
        end(LOGIN_REFUSED)
    phase(NETWORK)
    far = join(provider)
    phase(RUNNING)
    manager.SetIfindex(dbus.Int32(socket.if_nametoindex("ppp0")))
    manager.SetIp4Config(dbus.Dictionary({"interface": "ppp0", "address": number(HERE), "gateway": number(THERE),
                                          "prefix": dbus.UInt32(32), "dns": dbus.Array([number(THERE)], signature="u")},
                                         signature="sv"))
    carry(near, far, folder / "ppp.hangup")
    end(HUNG_UP)


main()
