#!/usr/bin/env python3
"""What korvalin-cli network tells of adapters, addresses and queues is what iproute2 tells of them."""

import ipaddress
import json
import subprocess
import unittest

import rig

STATUS = {"UP": "5 Operational", "DOWN": "2 Disconnected", "LOWERLAYERDOWN": "2 Disconnected", "UNKNOWN": "5 Operational"}


class Network(rig.Case):
    def setUp(self):
        super().setUp()
        self.network = self.enter(rig.Network())
        self.here = self.network.here
        self.home.set(Language="ENG")

    def inside(self, *command):
        return self.network.inside(self.here, *command).stdout

    def shown(self):
        """What the program tells, its adapters by their names."""
        told = json.loads(self.inside("env", *(f"{name}={self.home.env[name]}" for name in
                                               ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "LANG")),
                                      str(rig.BIN / "korvalin-cli"), "network", "--json"))
        return {adapter["description"]: adapter for adapter in told["adapters"]}, told["addresses"]

    def links(self):
        return json.loads(self.inside("ip", "-json", "-stats", "link"))

    def expected(self, link):
        received, sent = link["stats64"]["rx"], link["stats64"]["tx"]
        up = "UP" in link["flags"]
        numbers = {"data received (octets)": received["bytes"],
                   "packets received (unicast)": received["packets"] - received["multicast"],
                   "packets received (non-unicast)": received["multicast"],
                   "packets discarded": received["dropped"],
                   "discarded with errors": received["errors"],
                   "data sent (octets)": sent["bytes"],
                   "packets sent (unicast)": sent["packets"],
                   "packets discarded, no errors": sent["dropped"],
                   "packets discarded with errors": sent["errors"]}
        return {"interface index": str(link["ifindex"]),
                "interface type": "24 Loopback" if link["link_type"] == "loopback" else "6 Ethernet",
                "Maximum Transmission Unit": str(link["mtu"]),
                "physical address (hex)": "".join(f"{int(byte, 16):X} " for byte in link["address"].split(":")),
                "admin enabled or disabled": "1 Enabled" if up else "2 Disabled",
                "interface operational status": STATUS[link["operstate"]],
                **{name: f"{number:,}" for name, number in numbers.items()}}

    def test_adapters_are_the_kernels(self):
        self.inside("ip", "link", "set", "lo", "up")
        self.inside("ip", "link", "add", "spare0", "mtu", "1280", "type", "veth", "peer", "name", "spare1")
        self.inside("ip", "link", "set", "spare0", "up")  # without a carrier, as its peer is down
        self.network.send("wire0", 20)

        def steady():
            before = self.links()
            adapters, _ = self.shown()
            return (before, adapters) if before == self.links() else None

        links, adapters = rig.wait_for(steady, "counters that rest")
        self.assertLessEqual({"lo", "wire0", "spare0", "spare1"}, set(adapters))
        self.assertEqual({link["ifname"] for link in links}, set(adapters))
        indexes = [int(adapter["interface index"]) for adapter in adapters.values()]
        self.assertEqual(indexes, sorted(indexes))
        for link in links:
            with self.subTest(link["ifname"]):
                told, expected = adapters[link["ifname"]], self.expected(link)
                self.assertEqual({name: told[name] for name in expected}, expected)
        speed = int(self.inside("cat", "/sys/class/net/wire0/speed")) * 1_000_000
        self.assertEqual(adapters["wire0"]["interface speed (bps)"], f"{speed:,}")
        self.assertNotEqual(adapters["wire0"]["data sent (octets)"], "0")

    def test_addresses_of_both_versions(self):
        self.inside("ip", "link", "set", "lo", "up")
        for address in (("10.9.0.1/20", "broadcast", "+"), ("10.77.0.9/24", "broadcast", "10.77.0.200"),
                        ("10.100.0.1/32", "valid_lft", "1000", "preferred_lft", "1000")):
            self.inside("ip", "address", "add", *address, "dev", "wire0")
        if self.inside("sh", "-c", "cat /proc/sys/net/ipv6/conf/wire0/disable_ipv6 || true"):
            self.inside("ip", "link", "set", "wire0", "addrgenmode", "none")
            self.inside("sh", "-c", "echo 0 > /proc/sys/net/ipv6/conf/wire0/disable_ipv6")
            for address in ("fd77::10/64", "fd77::9/64", "fe80::1/64"):
                self.inside("ip", "address", "add", address, "dev", "wire0", "nodad")
        expected = []
        for link in json.loads(self.inside("ip", "-json", "address")):
            for info in link["addr_info"]:
                address = ipaddress.ip_interface(f"{info['local']}/{info['prefixlen']}")
                row = [str(link["ifindex"]), str(address.ip)]
                if address.version == 4:
                    kind = (0 if info.get("secondary") else 1) + (4 if info.get("dynamic") else 0)
                    row += [str(address.netmask), info.get("broadcast", "0.0.0.0"), "65535", "0", str(kind)]
                else:
                    row += [f"/{address.network.prefixlen}", "", "", "", ""]
                expected.append((address.version, address.ip, row))
        expected.sort(key=lambda entry: entry[:2])
        _, addresses = self.shown()
        self.assertGreaterEqual(len(addresses), 5)
        self.assertEqual([list(address.values()) for address in addresses], [row for _, _, row in expected])
        self.assertEqual({row[6] for version, _, row in expected if version == 4}, {"1", "0", "5"})

    def test_packets_that_wait(self):
        try:
            self.inside("tc", "qdisc", "replace", "dev", "wire0", "root", "tbf", "rate", "1kbit", "burst", "1600", "limit",
                        "100000")
        except (OSError, subprocess.CalledProcessError) as error:
            raise unittest.SkipTest(f"no queue that holds packets back: {error}")
        self.network.send("wire0", 20)

        def agreed():
            waiting = next(queue["qlen"] for queue in json.loads(self.inside("tc", "-json", "-stats", "qdisc"))
                           if queue["dev"] == "wire0" and queue.get("root"))
            return waiting > 10 and self.shown()[0]["wire0"]["output queue length"] == str(waiting)

        rig.wait_for(agreed, "the queue's length")


if __name__ == "__main__":
    rig.main()
