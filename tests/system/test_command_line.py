#!/usr/bin/env python3
"""korvalin-cli: settings, the month's use, the network, and what it says of itself."""

import contextlib
import datetime
import ipaddress
import json
import os
import re
import shutil
import signal
import sqlite3
import subprocess
import time
import unittest

import rig

UMASK = os.umask(0o022)
os.umask(UMASK)
PACKAGING = rig.ROOT / "packaging"
COMPLETIONS = PACKAGING / "completions"
COMMANDS = ([], ["settings"], ["settings", "get"], ["lines"], ["network"], ["records"], ["sums"], ["repair"], ["record"],
            ["status"], ["metrics"], ["import"], ["import", "vnstat"])
CHOICES = (["lines", "--format"], ["records", "--format"], ["sums", "--format"], ["sums", "--period"],
           ["status", "--format"])


def help_of(*command):
    return rig.run(rig.BIN / "korvalin-cli", *command, "--help").stdout


def words_behind(command):
    """The commands and options that --help lists, or the words that an option takes."""
    if command[-1:] and command[-1].startswith("--"):
        return set(re.search(rf"{command[-1]} (\S+)", help_of(*command[:-1]))[1].split("|"))
    text = help_of(*command)
    options = set(re.findall(r"(?<![\w-])--?[a-z]+(?:-[a-z]+)*(?=[, \n])", text.split("Options:")[1]))
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
            f'"Home",#{datetime.date.today()} 00:00:00#,#00:00:00#,1000000,2000000,"",""\r\n'
            f'"Talk",#{datetime.date.today()} 00:00:00#,#01:12:00#,1000000,2000000,"",""\r\n', newline="")
        self.home.set(Home_FreeVolume=100, Home_Up1MB="False")
        for hours, volume, expected in ((0, 0, ["unlimited", 0]), (1, 0, ["over", 100]), (2, 0, ["fine", 60]),
                                        (2, 4, ["fine", 75]), (1, 4, ["over", 100])):
            self.home.set(Talk_FreeHours=hours, Talk_FreeVolume=volume, Talk_Up1MB="False")
            talk = self.home.json("status", "--alias", "Talk")
            self.assertEqual([talk["class"], talk["percentage"]], expected)
            self.assertNotIn("forecast", talk["bytes"], "of the first hours")
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
        self.assertEqual(self.home.moved("records")["Home"], [2_000_000, 1_000_000])
        self.assertIn("used 3 MB", self.home.cli("provider", "Home"))
        for nonsense in ("nan", "inf", "1e12", "-5", "x"):
            run = self.home.run("provider", "Home", nonsense)
            self.assertEqual((run.returncode > 100, run.stdout, nonsense in run.stderr), (True, "", True), nonsense)
        self.break_folder()
        run = self.home.run("provider", "Home", "50")
        self.assertEqual((run.returncode, "nothing was kept" in run.stderr), (1, True))

    def test_a_watched_status_ends_with_its_reader(self):
        for end, code in ((lambda process: process.stdout.close(), 0), (subprocess.Popen.terminate, -signal.SIGTERM)):
            # As panels start it: without the signal of a closed pipe.
            process = subprocess.Popen([rig.BIN / "korvalin-cli", "status", "--watch"], env=self.home.env, text=True,
                                       stdout=subprocess.PIPE, preexec_fn=lambda: signal.signal(signal.SIGPIPE, signal.SIG_IGN))
            self.addCleanup(rig.ended, process)
            times = []
            for _ in range(3):
                self.assertIn("/s  today ", process.stdout.readline())
                times.append(time.monotonic())
            self.assertTrue(1.5 < times[2] - times[0] < 10, times)
            end(process)
            self.assertEqual(process.wait(timeout=20), code)

    def test_an_unknown_alias_is_an_error(self):
        self.home.set(Office_Alias="Work")
        for command in ("status", "sums", "records"):
            run = self.home.run(command, "--alias", "Wrok")
            self.assertEqual((run.returncode, run.stdout), (2, ""))
            self.assertIn("Did you mean Work?", run.stderr)
            self.assertEqual(self.home.run(command, "--alias", "work").returncode, 0)

    def test_metrics_into_a_file(self):
        file = self.home.path / "korvalin.prom"
        for _ in range(2):
            self.home.cli("metrics", "--output", str(file))
            self.assertTrue(file.read_text().endswith("# EOF\n"))
            self.assertEqual(file.stat().st_mode & 0o777, 0o666 & ~UMASK)
        self.assertEqual(list(self.home.path.glob("korvalin.prom*")), [file])
        self.assertEqual(self.home.run("metrics", "--output", "/proc/none/x.prom").returncode, 1)


class Import(rig.Case):
    """Days of a database with the tables of vnStat 2."""

    def setUp(self):
        super().setUp()
        self.file = self.home.path / "vn?stat.db"
        self.data = self.home.path / "statistics"
        self.data.mkdir()
        self.home.set(DataPath=str(self.data), Language="ENG")
        with contextlib.closing(sqlite3.connect(self.file)) as database:
            database.executescript("""
                CREATE TABLE info(id INTEGER PRIMARY KEY, name TEXT UNIQUE NOT NULL, value TEXT NOT NULL);
                CREATE TABLE interface(id INTEGER PRIMARY KEY, name TEXT UNIQUE NOT NULL, alias TEXT, active INTEGER NOT NULL,
                  created DATE NOT NULL, updated DATE NOT NULL, rxcounter INTEGER NOT NULL, txcounter INTEGER NOT NULL,
                  rxtotal INTEGER NOT NULL, txtotal INTEGER NOT NULL);
                CREATE TABLE day(id INTEGER PRIMARY KEY, interface INTEGER REFERENCES interface(id) ON DELETE CASCADE,
                  date DATE NOT NULL, rx INTEGER NOT NULL, tx INTEGER NOT NULL, CONSTRAINT u UNIQUE (interface, date));
                INSERT INTO info(name, value) VALUES ('dbversion', '1'), ('vnstatversion', '2.10');
                INSERT INTO interface VALUES (7, 'eth0', NULL, 1, '2024-03-01', '2024-03-15', 0, 0, 0, 0),
                  (9, 'eth1', 'office', 1, '2024-03-01', '2024-03-15', 0, 0, 0, 0);""")
            database.executemany("INSERT INTO day(interface, date, rx, tx) VALUES (?, ?, ?, ?)",
                                 ((7, "2024-03-13", 5_000_000_000, 70), (7, "2024-03-14", 6, 80),
                                  (7, str(datetime.date.today()), 9, 9), (9, "2024-03-13", 1, 2)))
            database.commit()

    def run_import(self, *options, file=None):
        run = self.home.run("import", "vnstat", *options, file or self.file)
        return run.returncode, run.stdout + run.stderr

    def test_days_become_records_once(self):
        (self.data / "Korvalin_Stats.db").write_text('"eth0",#2024-03-14 10:00:00#,#01:00:00#,3,4,"",""\r\n', newline="")
        taken = "eth0: 1 days taken; 1 left: there are records of that day; 1 left: the day has not ended\n"
        source = self.file.read_bytes()
        self.assertEqual(self.run_import("--interface", "eth0", "--dry-run"), (0, taken + "nothing was written\n"))
        self.assertEqual(self.run_import("--interface", "eth2")[0], 2)
        self.assertEqual(len(list(self.data.iterdir())), 1, "nothing is written yet")
        recorder = self.launch([rig.BIN / "korvalin-cli", "record"])
        rig.wait_for(lambda: (self.data / "Korvalin_Journal.db").exists(), "the recorder")
        code, said = self.run_import()
        self.assertEqual(code, 0)
        self.assertTrue(said.startswith(taken + "eth1: 1 days taken\n"), said)
        self.assertIn("eth0: 0 days taken; 1 left: imported before; 1 left: there are", self.run_import()[1])
        self.assertEqual(self.home.moved("records", "--till", "2024-12-31"),
                         {"eth0": [5_000_000_004, 73], "eth1": [1, 2]})
        first = json.loads(self.home.cli("records", "--till", "2024-03-13", "--format", "json"))[0]
        self.assertIn("Imported from vnStat", first["info"])
        self.assertEqual([first[name][:19] for name in ("log_in", "log_out")], ["2024-03-13T00:00:00", "2024-03-13T23:59:59"])
        recorder.terminate()
        self.assertEqual(recorder.wait(timeout=20), 0)
        self.assertEqual(self.file.read_bytes(), source)

    def test_what_is_no_such_database_is_said(self):
        other = self.home.path / "other"
        whole = self.file.read_bytes()
        for content, said in ((None, "no such file"), (b"", "no database"), (b"text" * 500, "no database"),
                              (whole[:4096] + b"x" * (len(whole) - 4096), "damaged"), (self.home.store.read_bytes(), "no database")):
            if content is not None:
                other.write_bytes(content)
            code, text = self.run_import(file=other)
            self.assertEqual(code, 1)
            self.assertIn(said, text)
        with contextlib.closing(sqlite3.connect(self.file, isolation_level=None)) as database:
            database.execute("BEGIN EXCLUSIVE")
            self.assertIn("is writing", self.run_import()[1])
            database.execute("ROLLBACK")
            for change, said in (("UPDATE day SET date = 'x' WHERE id = 4", "damaged"),
                                 ("UPDATE info SET value = '2' WHERE name = 'dbversion'", "newer")):
                database.execute(change)
                code, text = self.run_import()
                self.assertEqual(code, 1)
                self.assertIn(said, text)
        self.assertEqual(list(self.data.iterdir()), [])


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

    def test_the_program_prints_them(self):
        for shell, name in (("bash", "korvalin-cli.bash"), ("zsh", "_korvalin-cli"), ("fish", "korvalin-cli.fish")):
            self.assertEqual(rig.run(rig.BIN / "korvalin-cli", "completion", shell).stdout, (COMPLETIONS / name).read_text())

    def test_every_word_is_in_all_files(self):
        words = set().union(*map(words_behind, (*COMMANDS, *CHOICES))) - {"-h", "--help"}
        manual = (PACKAGING / "korvalin-cli.1.in").read_text().replace("\\-", "-")
        fish = re.sub(r"-l ([\w-]+)", r"--\1", (COMPLETIONS / "korvalin-cli.fish").read_text())
        for name, text in (("manual", manual), ("fish", fish), ("zsh", (COMPLETIONS / "_korvalin-cli").read_text())):
            with self.subTest(name):
                self.assertEqual({word for word in words if not re.search(rf"(?<![\w-]){word}(?!\w)", text)}, set())


if __name__ == "__main__":
    rig.main()
