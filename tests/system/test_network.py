#!/usr/bin/env python3
"""What korvalin-cli network tells of adapters, addresses and queues is what iproute2 tells of them."""

import ipaddress
import json

import rig

STATUS = {"UP": "5 Operational", "DOWN": "2 Disconnected", "LOWERLAYERDOWN": "2 Disconnected", "UNKNOWN": "5 Operational"}


class Network(rig.Case):
    def setUp(self):
        super().setUp()
        self.network = self.enterContext(rig.Network())
        self.home.set(Language="ENG")
        self.home.prefix = self.network.prefix()
        self.network.ip("link set lo up")

    def shown(self):
        """What the program tells, its adapters by their names."""
        told = json.loads(self.home.cli("network", "--json"))
        return {adapter["description"]: adapter for adapter in told["adapters"]}, told["addresses"]

    def inside(self, *command):
        return self.network.inside(None, *command)

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
        self.network.ip("link add spare0 mtu 1280 type veth peer name spare1")
        self.network.ip("link set spare0 up")  # without a carrier, as its peer is down
        self.network.send("wire0", 20)
        links = lambda: json.loads(self.inside("ip", "-json", "-stats", "link"))

        def steady():
            before, (adapters, _) = links(), self.shown()
            return (before, adapters) if before == links() else None

        links, adapters = rig.wait_for(steady, "counters that rest")
        self.assertEqual([link["ifname"] for link in links], list(adapters))
        for link in links:
            with self.subTest(link["ifname"]):
                told, expected = adapters[link["ifname"]], self.expected(link)
                self.assertEqual({name: told[name] for name in expected}, expected)
        speed = int(self.inside("cat", "/sys/class/net/wire0/speed")) * 1_000_000
        self.assertEqual(adapters["wire0"]["interface speed (bps)"], f"{speed:,}")

    def test_addresses_of_both_versions(self):
        for address in ("10.9.0.1/20 broadcast +", "10.77.0.9/24 broadcast 10.77.0.200",
                        "10.100.0.1/32 valid_lft 1000 preferred_lft 1000"):
            self.network.ip(f"address add {address} dev wire0")
        if self.inside("sh", "-c", "cat /proc/sys/net/ipv6/conf/wire0/disable_ipv6 || true"):
            self.network.ip("link set wire0 addrgenmode none")
            self.inside("sh", "-c", "echo 0 > /proc/sys/net/ipv6/conf/wire0/disable_ipv6")
            for address in ("fd77::10/64", "fd77::9/64", "fe80::1/64"):
                self.network.ip(f"address add {address} dev wire0 nodad")
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


if __name__ == "__main__":
    rig.main()
