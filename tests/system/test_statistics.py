#!/usr/bin/env python3
"""Connections on real adapters become records: on the command line, from the window, and what the commands make of them."""

import csv
import io
import json
import pathlib
import re
import signal
import subprocess
import sys
import time
import unittest

import rig

SEND = """
import socket, sys
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
for _ in range(int(sys.argv[1])):
    out.sendto(b"x" * 1000, (sys.argv[2], 9))
"""
LINE = re.compile(r'"(?P<name>[^"]*)",#(?P<login>\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)#,#(?P<duration>\d\d:\d\d:\d\d)#,'
                  r'(?P<sent>\d+),(?P<received>\d+),"(?P<info>[^"]*)","(?P<user>[^"]*)"\r\n')


class Statistics(unittest.TestCase):
    def setUp(self):
        self.home = self.enter(rig.Home())
        self.home.set(Language="ENG", AutoStart="False")
        self.data = self.home.path / "data/Korvalin"

    def enter(self, context):
        value = context.__enter__()
        self.addCleanup(context.__exit__, None, None, None)
        return value

    def start(self, command, network=None, **options):
        command = [str(rig.BIN / command[0]), *command[1:]]
        process = (network.start(network.here, command, env=self.home.env, **options) if network
                   else subprocess.Popen(command, env=self.home.env, **options))
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def busy_network(self):
        """An adapter that has moved a known number of bytes both ways."""
        network = self.enter(rig.Network())
        self.send(network, 300, 40)
        return network

    @staticmethod
    def send(network, received, transmitted):
        for where, to, packets in ((network.there, "10.77.0.1", received), (network.here, "10.77.0.2", transmitted)):
            network.inside(where, sys.executable, "-c", SEND, str(packets), to)

    def counters(self, network):
        return [network.counter(network.here, "wire0", which) for which in ("tx_bytes", "rx_bytes")]

    def write(self, *lines, name="Korvalin_Stats.db"):
        self.data.mkdir(parents=True, exist_ok=True)
        (self.data / name).write_bytes("".join(line + "\r\n" for line in lines).encode())

    def records(self):
        path = self.data / "Korvalin_Stats.db"
        text = path.read_bytes().decode() if path.exists() else ""
        found = [match.groupdict() for match in LINE.finditer(text)]
        self.assertEqual(len(found), text.count("\n"), f"a line of another form in {text!r}")
        return found

    def recorded(self, count):
        return rig.wait_for(lambda: len(self.records()) >= count and self.records(), f"{count} records")

    def exported(self, rows):
        path = self.data / "Korvalin_Stats.csv"
        text = rig.wait_for(lambda: path.exists() and path.read_bytes().decode(), "the export")
        found = list(csv.reader(io.StringIO(text)))
        self.assertEqual(len(found), rows)
        return found

    def wait_until_watching(self, process):
        """Two passes later the open lines are known well enough to be recorded."""
        rig.wait_for(lambda: "wire0_Alias" in self.home.cli("settings", "list"), "the first pass")
        passes, ticks, since = 0, self.ticks(process), time.monotonic()

        def passed():
            nonlocal passes, ticks, since
            if self.ticks(process) > ticks:
                # At the start it sleeps often and briefly; a pass comes once a second.
                passes += time.monotonic() - since > 0.5
                ticks, since = self.ticks(process), time.monotonic()
            return passes >= 3

        rig.wait_for(passed, "more passes")

    @staticmethod
    def ticks(process):
        """How often the program has slept."""
        status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
        return int(re.search(r"^voluntary_ctxt_switches:\s*(\d+)", status, re.M).group(1))

    def check_record(self, record, network_counters, info):
        self.assertEqual([int(record["sent"]), int(record["received"])], network_counters)
        self.assertEqual((record["name"], record["user"]), ("wire0", "root"))
        self.assertRegex(record["info"], r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d " + info + "$")

    def test_an_adapter_that_goes_down_is_recorded_with_what_it_has_moved(self):
        network = self.busy_network()
        before = self.counters(network)
        process = self.start(["korvalin-cli", "record"], network)
        self.wait_until_watching(process)
        self.send(network, 100, 30)
        moved = [now - first for now, first in zip(self.counters(network), before)]
        network.inside(network.here, "ip", "link", "set", "wire0", "down")
        self.check_record(self.recorded(1)[0], moved, "Disconnected")
        header, row = self.exported(2)
        self.assertEqual(header, "Line,LogIn,LogOut,Duration,Bytes Transmitted,Bytes Received,Bytes Total,User,IP,Info".split(","))
        self.assertEqual(row[7:9], ["root", "10.77.0.1"])
        self.assertEqual(row[4:7], [str(moved[0]), str(moved[1]), str(sum(moved))])
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=10), 0)
        self.assertEqual(len(self.records()), 1, "what has ended is not recorded again")

    def test_signals_end_the_recorder_and_say_why(self):
        network = self.busy_network()
        for number, info in ((signal.SIGTERM, "System shut down or user logged off"),
                             (signal.SIGINT, "Korvalin was closed by task manager"),
                             (signal.SIGHUP, "Korvalin was closed by task manager")):
            before = len(self.records())
            process = self.start(["korvalin-cli", "record"], network)
            self.wait_until_watching(process)
            process.send_signal(number)
            self.assertEqual(process.wait(timeout=10), 0)
            self.assertEqual(len(self.records()), before + 1)
            self.check_record(self.records()[-1], [0, 0], info)
        self.assertEqual(len(json.loads(self.home.cli("records", "--format", "json"))), 3, "each is a record of its own")

    def test_the_window_records_what_is_open_when_it_closes(self):
        network = self.busy_network()
        self.home.set(ShowTitle="True", DisplayChoiceDL="1")
        ends = [("a session's end", "System shut down or user logged off",
                 lambda window, display: window.send_signal(signal.SIGTERM)),
                ("the display's end", "System shut down or user logged off", lambda window, display: display.server.kill())]
        for what, info, end in ends:
            with self.subTest(what), rig.Display() as display:
                before = len(self.records())
                first = self.counters(network)
                self.home.env["DISPLAY"] = display.name
                window = self.start(["korvalin"], network, stderr=subprocess.DEVNULL)
                # Traffic that comes and stays away has been counted before the last pass.
                rig.wait_for(lambda: display.window("^Korvalin  UL/DL"), "the first pass")
                self.send(network, 300, 40)
                rig.wait_for(lambda: display.window("^Korvalin  UL/DL [0-9.]+ [1-9]"), "its rate")
                rig.wait_for(lambda: display.window("^Korvalin  UL/DL [0-9.]+ 0.0 "), "silence")
                end(window, display)
                window.wait(timeout=10)
                self.assertEqual(len(self.records()), before + 1)
                self.check_record(self.records()[-1], [now - then for now, then in zip(self.counters(network), first)], info)

    def test_one_program_at_a_time_records(self):
        network = self.busy_network()
        first = self.start(["korvalin-cli", "record"], network)
        self.wait_until_watching(first)
        second = self.start(["korvalin-cli", "record"], network, stderr=subprocess.PIPE, text=True)
        self.assertIn("Another program records", second.communicate(timeout=10)[1])
        self.assertEqual(second.returncode, 1)
        first.kill()
        first.wait()
        third = self.start(["korvalin-cli", "record"], network)
        self.wait_until_watching(third)
        third.send_signal(signal.SIGTERM)
        self.assertEqual(third.wait(timeout=10), 0)
        self.assertEqual([record["info"].split()[-1] for record in self.records()], ["Interrupted", "off"])

    def test_records_and_sums_are_printed_in_every_format(self):
        self.write('"Line1",#2004-12-31 22:22:22#,#01:23:45#,1843212,20571190,"","user1"',
                   '"B, \'q\'",#2004-12-31 23:50:00#,#00:10:00#,1,2,"note",""')
        self.home.set(Line1_Alias="Home", Home_RoundSeconds="60")
        first = {"file_index": 1, "line_name": "Line1", "alias": "Home", "log_in": "2004-12-31T22:22:22+00:00",
                 "log_out": "2004-12-31T23:46:07+00:00", "duration_seconds": 5025, "bytes_received": 20571190,
                 "bytes_transmitted": 1843212, "info": "", "user": "user1"}
        records = json.loads(self.home.cli("records", "--format", "json"))
        self.assertEqual([record["file_index"] for record in records], [2, 1], "sorted by line")
        self.assertEqual(records[1], first)
        self.assertEqual(json.loads(self.home.cli("records", "--alias", "HOME", "--format", "json")), [first])
        self.home.env["TZ"] = "Europe/Berlin"
        self.assertEqual(json.loads(self.home.cli("records", "--format", "json"))[1]["log_in"], "2004-12-31T22:22:22+01:00")
        del self.home.env["TZ"]
        rows = list(csv.DictReader(io.StringIO(self.home.cli("records", "--format", "csv"))))
        self.assertEqual(rows[0]["line_name"], "B, 'q'")
        self.assertEqual(rows[1], {key: str(value) for key, value in first.items()})
        for filters, expected in ((["--from", "2005-01-01"], [2]), (["--till", "2004-12-31"], [1]),
                                  (["--from", "2004-12-31", "--till", "2005-01-01"], [2, 1]), (["--from", "2006-01-01"], [])):
            shown = json.loads(self.home.cli("records", "--format", "json", *filters))
            self.assertEqual([record["file_index"] for record in shown], expected, filters)
        month = json.loads(self.home.cli("sums", "--period", "month", "--alias", "Home", "--format", "json"))
        self.assertEqual(month, [{"alias": "Home", "period_begin": "2004-12-01", "period_end": "2004-12-31",
                                  "label": "December 2004", "connections": 1, "duration_seconds": 5025,
                                  "duration_rounded_seconds": 5040, "bytes_received": 20571190, "bytes_transmitted": 1843212,
                                  "volume_rounded": 23000000}])
        week = self.home.cli("sums", "--period", "week").splitlines()
        self.assertEqual(week[0].split()[:3], ["alias", "period_begin", "period_end"])
        self.assertIn("2004-12-26-2005-01-01", week[1])
        for wrong in (["records", "--from", "yesterday"], ["sums", "--period", "year"], ["sums"]):
            bad = subprocess.run([rig.BIN / "korvalin-cli", *wrong], env=self.home.env, capture_output=True, check=False)
            self.assertNotEqual(bad.returncode, 0, wrong)

    def test_repair_says_what_it_did_and_keeps_the_old_file(self):
        good = ['"a",#2004-01-01 10:00:00#,#00:05:00#,1,2,"",""', '"b",#2004-01-01 10:00:00#,#00:05:00#,1,2,"",""']
        self.write(good[1], "damaged", good[0])
        damaged = (self.data / "Korvalin_Stats.db").read_bytes()
        said = self.home.cli("repair")
        self.assertIn("merged: 0\ndropped: 1\nrewritten", said)
        self.assertEqual((self.data / "Korvalin_Stats.db").read_text().split("\n")[:2], good)
        backup = next(self.data.glob("Korvalin_Stats.db_*"))
        self.assertIn(backup.name, said)
        self.assertEqual(backup.read_bytes(), damaged)
        self.assertNotIn("rewritten", self.home.cli("repair"))

    def test_older_statistics_are_converted_once(self):
        self.write("Line1\t31.12.2004 22:22:22\t\t01:23:45\t100\t200\tnote", name="Korvalin_Stats.txt")
        self.assertEqual(json.loads(self.home.cli("records", "--format", "json"))[0]["bytes_received"], 200)
        self.assertEqual((self.data / "Korvalin_Stats.db").read_bytes(),
                         b'"Line1",#2004-12-31 22:22:22#,#01:23:45#,100,200,"note",""\r\n')
        self.assertTrue((self.data / "Korvalin_Stats.txt").exists())

    def test_a_file_that_cannot_be_read_is_told(self):
        (self.data / "Korvalin_Stats.db").mkdir(parents=True)
        failed = subprocess.run([rig.BIN / "korvalin-cli", "records"], env=self.home.env, capture_output=True, text=True,
                                check=False)
        self.assertEqual(failed.returncode, 1)
        self.assertIn("LoadStatFile", failed.stderr)


if __name__ == "__main__":
    rig.main()
