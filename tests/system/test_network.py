#!/usr/bin/env python3
"""What korvalin-cli network tells of adapters, addresses and queues is what iproute2 tells of them."""

import ipaddress
import json

import rig

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

    def test_adapters_are_the_kernels(self):
        self.network.ip("link add spare0 mtu 1280 type veth peer name spare1")
        self.network.ip("link set spare0 up")  # without a carrier, as its peer is down
        self.network.send("wire0", 20)
        links = lambda: json.loads(self.inside("ip", "-json", "-stats", "link"))

        def steady():
            before, (adapters, _) = links(), self.shown()
            return (before, adapters) if before == links() else None

        links_then, adapters = rig.wait_for(steady, "counters that rest")
        self.assertEqual([link["ifname"] for link in links_then], list(adapters))
        for link, told in zip(links_then, adapters.values()):
            expected = {"interface index": str(link["ifindex"]), "Maximum Transmission Unit": str(link["mtu"]),
                        "physical address (hex)": "".join(f"{int(byte, 16):X} " for byte in link["address"].split(":")),
                        "data received (octets)": f'{link["stats64"]["rx"]["bytes"]:,}',
                        "data sent (octets)": f'{link["stats64"]["tx"]["bytes"]:,}'}
            self.assertEqual({name: told[name] for name in expected}, expected)
        self.assertEqual([adapters[name]["interface operational status"] for name in ("wire0", "spare0")],
                         ["5 Operational", "2 Disconnected"])

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
