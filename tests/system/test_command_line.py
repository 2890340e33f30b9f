#!/usr/bin/env python3
"""korvalin-cli: settings, the month's use, the network, and what it says of itself."""

import datetime
import ipaddress
import json
import re
import shutil
import unittest

import rig

PACKAGING = rig.ROOT / "packaging"
COMPLETIONS = PACKAGING / "completions"
COMMANDS = ([], ["settings"], ["settings", "get"], ["lines"], ["network"], ["records"], ["sums"], ["repair"], ["record"])
CHOICES = (["lines", "--format"], ["records", "--format"], ["sums", "--format"], ["sums", "--period"])


def help_of(*command):
    return rig.run(rig.BIN / "korvalin-cli", *command, "--help").stdout


def words_behind(command):
    """The commands and options that --help lists, or the words that an option takes."""
    if command[-1:] and command[-1].startswith("--"):
        return set(re.search(rf"{command[-1]} (\S+)", help_of(*command[:-1]))[1].split("|"))
    text = help_of(*command)
    options = set(re.findall(r"(?<![\w-])--?[a-z]+(?=[, \n])", text.split("Options:")[1]))
    return options | set(re.findall(r"^  ([a-z]+)\s", text.partition("Subcommands:")[2], re.MULTILINE))


class Settings(rig.Case):
    def break_folder(self):
        """Root may write everywhere, so the folder is made impossible instead of forbidden."""
        shutil.rmtree(self.home.path / "config", ignore_errors=True)
        (self.home.path / "config").write_text("a file where the folder should be")

    def test_a_value_is_stored_as_its_kind_allows_and_what_differs_is_said(self):
        for name, value, stored, code in (
                ("ChartMax", "80", "80", 0), ("ChartMax", "80.0", "80", 0), ("ChartMax", "-3", "1", 1),
                ("ChartMax", "", "100", 0), ("ShowTitle", "TRUE", "True", 0), ("FontName", "Größe 'x' \"y\"", None, 0),
                ("eth0_FreeVolume", "2000000", "10000", 1)):
            run = self.home.run("settings", "set", name, value)
            self.assertEqual((run.returncode, bool(run.stderr)), (code, code != 0), value)
            self.assertEqual((run.stdout.strip(), self.home.get(name)), (stored or value,) * 2)
        listed = [line.split()[:3] for line in self.home.cli("settings", "list").splitlines()]
        for row in (["TimeLinesSec", "number", "60"], ["eth0_FreeVolume", "number", "10000"]):
            self.assertIn(row, listed)
        # Only the user can read the store.
        self.assertEqual([path.stat().st_mode & 0o777 for path in (self.home.store, self.home.store.parent)], [0o600, 0o700])

    def test_folders_that_cannot_be_used(self):
        self.break_folder()
        self.assertEqual(self.home.get("ChartMax"), "100")
        run = self.home.run("settings", "set", "ChartMax", "80")
        self.assertEqual(run.returncode, 1)
        self.assertIn("cannot be written", run.stderr)
        self.home.env["XDG_DATA_HOME"] = "/proc/none"
        self.assertIn("line", self.home.cli("lines"))

    def test_usage_is_explained(self):
        for words, code, said in (("lines --format xml", None, "xml"), ("", 0, "settings"), ("--version", 0, "korvalin-cli "),
                                  ("sums", 0, "period_begin"), ("settings get CharMax", 2, "ChartMax"),
                                  ("settings set Home_FreeVolum 5", 2, "Home_FreeVolume")):
            with self.subTest(words):
                run = self.home.run(*words.split())
                self.assertTrue(run.returncode == code or (code is None and run.returncode != 0), run)
                self.assertIn(said, run.stderr if code != 0 else run.stdout)

    def test_use_and_forecast(self):
        self.home.data.mkdir(parents=True)
        (self.home.data / "Korvalin_Stats.db").write_text(
            f'"Home",#{datetime.date.today()} 00:00:00#,#00:00:00#,1000000,2000000,"",""\r\n', newline="")
        self.home.set(Home_FreeVolume=100, Home_Up1MB="False")
        status = self.home.json("status", "--alias", "home")
        self.assertEqual((status["alias"], status["bytes"]["used"], status["bytes"]["left"], status["percentage"]),
                         ("Home", 3_000_000, 97_000_000, 3))
        self.assertIn("period 3.0 MB  left 97 MB", self.home.cli("status", "--alias", "Home"))
        metrics = self.home.cli("metrics").splitlines()
        self.assertEqual(metrics[-1], "# EOF")
        for sample, value in (("period_used_bytes", 3_000_000), ("today_used_bytes", 3_000_000),
                              ("period_allowance_bytes", 100_000_000)):
            self.assertIn(f'korvalin_{sample}{{alias="Home"}} {value}', metrics)
        names = [line.split()[2] for line in metrics if line.startswith("# HELP")]
        self.assertEqual(len(names), len(set(names)), "each family once")
        self.assertIn("corrected by +47 MB, used 50 MB", self.home.cli("provider", "Home", "50"))
        self.assertIn("period 50 MB", self.home.cli("status", "--alias", "Home"))
        self.assertEqual(self.home.moved("records"), {"Home": [2_000_000, 1_000_000]})
        self.assertIn("used 3 MB", self.home.cli("provider", "Home"))


class Network(rig.Case):
    """What is told of adapters and addresses is what iproute2 tells of them."""

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


class Completion(unittest.TestCase):
    """What the shells complete, and what the manual tells, is what korvalin-cli says of itself."""

    def test_bash(self):
        script = (f'. {COMPLETIONS}/korvalin-cli.bash; COMP_WORDS=(korvalin-cli "$@" ""); COMP_CWORD=$(($# + 1)); '
                  '_korvalin_cli; printf "%s\\n" "${COMPREPLY[@]}"')
        for command in (*COMMANDS, *CHOICES):
            with self.subTest(command):
                self.assertEqual(set(rig.run("bash", "-c", script, "bash", *command).stdout.split()), words_behind(command))

    def test_every_word_is_in_all_files(self):
        words = set().union(*map(words_behind, (*COMMANDS, *CHOICES))) - {"-h", "--help"}
        manual = (PACKAGING / "korvalin-cli.1.in").read_text().replace("\\-", "-")
        fish = re.sub(r"-l (\w+)", r"--\1", (COMPLETIONS / "korvalin-cli.fish").read_text())
        for name, text in (("manual", manual), ("fish", fish), ("zsh", (COMPLETIONS / "_korvalin-cli").read_text())):
            with self.subTest(name):
                self.assertEqual({word for word in words if not re.search(rf"(?<![\w-]){word}(?!\w)", text)}, set())


if __name__ == "__main__":
    rig.main()
