#!/usr/bin/env python3
"""Connections on real adapters become records: on the command line, from the window, and what the commands make of them."""

import csv
import io
import signal
import subprocess

import rig

BY_SYSTEM = "System shut down or user logged off"
NOBODY = 65534


class Recording(rig.RecorderCase):
    def check_record(self, record, first, info):
        """It is what the adapter has moved since then."""
        moved = rig.grown(self.counted("wire0"), first)
        self.assertEqual([record["bytes_received"], record["bytes_transmitted"]], moved)
        self.assertEqual((record["line_name"], record["user"]), ("wire0", "root"))
        self.assertRegex(record["info"], r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d " + info + "$")
        return moved

    def test_an_adapter_that_goes_down_is_recorded_and_exported_with_what_it_has_moved(self):
        first, recorder = self.counted("wire0"), self.record()
        self.send("wire0", 100, sent=30)
        self.network.ip("link set wire0 down")
        received, sent = self.check_record(rig.wait_for(self.closed, "the record")[0], first, "Disconnected")
        path = self.home.data / "Korvalin_Stats.csv"
        header, row = csv.reader(rig.wait_for(lambda: path.exists() and path.read_text().splitlines(), "the export"))
        self.assertEqual(header, "Line,LogIn,LogOut,Duration,Bytes Transmitted,Bytes Received,Bytes Total,User,IP,Info".split(","))
        self.assertEqual(row[4:9], [str(sent), str(received), str(sent + received), "root", "10.77.0.1"])
        second = self.launch([rig.BIN / "korvalin-cli", "record"], self.network.prefix(), stderr=subprocess.PIPE)
        self.assertIn("Another program records", second.communicate(timeout=10)[1])
        self.assertEqual((second.returncode, self.end(recorder)), (1, 0))
        self.assertEqual(len(self.closed()), 1, "what has ended is not recorded again")

    def test_the_window_records_what_is_open_when_it_closes(self):
        self.home.set(ShowTitle="True", DisplayChoiceDL="1")
        for end in (lambda window, _: window.send_signal(signal.SIGTERM), lambda _, display: display.server.kill()):
            with rig.Display() as display:
                before, first = len(self.closed()), self.counted("wire0")
                self.home.env["DISPLAY"] = display.name
                window = self.launch([rig.BIN / "korvalin"], self.network.prefix(), stderr=subprocess.DEVNULL)
                # Traffic that comes and stays away has been counted before the last pass.
                rig.wait_for(lambda: display.window("^Korvalin  UL/DL"), "the first pass")
                self.send("wire0", 300, sent=40)
                rig.wait_for(lambda: display.window("^Korvalin  UL/DL [0-9.]+ [1-9]"), "its rate")
                rig.wait_for(lambda: display.window("^Korvalin  UL/DL [0-9.]+ 0.0 "), "silence")
                end(window, display)
                window.wait(timeout=10)
                self.assertEqual(len(self.closed()), before + 1)
                self.check_record(self.closed()[-1], first, BY_SYSTEM)


class OrdinaryUser(rig.RecorderCase):
    """Folders that are closed to a user: nothing is lost, nothing is silent."""

    def setUp(self):
        super().setUp()
        self.home.data.mkdir(parents=True, exist_ok=True)
        self.give(self.home.path)
        self.home.prefix = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")

    def give(self, folder):
        rig.run("chown", "-R", f"{NOBODY}:{NOBODY}", folder)

    def recorder(self):
        return self.record(prefix=self.home.prefix, stderr=subprocess.PIPE)

    def recorded(self):
        return self.home.moved("records")["wire0"]

    def test_a_record_waits_until_it_can_be_written(self):
        # A data folder that takes nothing for a while, and so do the statistics in it.
        change = lambda mode: rig.run("chmod", mode, self.home.data, *self.home.data.glob("Korvalin_Stats*"))
        recorder, first = self.recorder(), self.counted("wire0")
        self.send("wire0", 500)
        change("a-w")
        for state in ("down", "up"):
            self.network.ip(f"link set wire0 {state}")
        self.network.await_carrier()
        self.network.ip("route add default via 10.77.0.2")
        self.send("wire0", 50)
        self.assertNotEqual(self.end(recorder), 0)
        self.assertIn('Korvalin_Stats.db: "wire0",#', recorder.stderr.read())
        change("u+w")
        self.end(self.recorder())
        self.assertEqual(self.recorded(), rig.grown(self.counted("wire0"), first))

    def test_what_cannot_be_read_is_said(self):
        self.end(self.recorder())
        for closed in (self.home.data, self.home.data / "Korvalin_Stats.db"):
            mode = closed.stat().st_mode
            closed.chmod(0)
            for command in (("records",), ("repair",), ("sums", "--period", "month")):
                run = self.home.run(*command)
                self.assertEqual(run.returncode, 1, (closed, command))
                self.assertIn("no permission", run.stderr)
            closed.chmod(mode)


class Records(rig.Case):
    """What the commands make of the records."""

    def setUp(self):
        super().setUp()
        self.home.set(Language="ENG")

    def write(self, *lines):
        self.home.data.mkdir(parents=True, exist_ok=True)
        (self.home.data / "Korvalin_Stats.db").write_bytes("".join(line + "\r\n" for line in lines).encode())

    def test_records_and_sums_are_printed_in_every_format(self):
        self.write('"Line1",#2004-12-31 22:22:22#,#01:23:45#,1843212,20571190,"","user1"',
                   '"B, \'q\'",#2004-12-31 23:50:00#,#00:10:00#,1,2,"note",""')
        self.home.set(Line1_Alias="Home", Home_RoundSeconds="60")
        first = {"file_index": 1, "line_name": "Line1", "alias": "Home", "log_in": "2004-12-31T22:22:22+00:00",
                 "log_out": "2004-12-31T23:46:07+00:00", "duration_seconds": 5025, "bytes_received": 20571190,
                 "bytes_transmitted": 1843212, "info": "", "user": "user1"}
        records = self.home.json("records")
        self.assertEqual([record["file_index"] for record in records], [2, 1], "sorted by line")
        self.assertEqual(records[1], first)
        rows = list(csv.DictReader(io.StringIO(self.home.cli("records", "--format", "csv"))))
        self.assertEqual((rows[0]["line_name"], rows[1]), ("B, 'q'", {key: str(value) for key, value in first.items()}))
        for filters, expected in ((["--alias", "HOME"], [1]), (["--from", "2005-01-01"], [2]), (["--till", "2004-12-31"], [1]),
                                  (["--from", "2004-12-31", "--till", "2005-01-01"], [2, 1]), (["--from", "2006-01-01"], [])):
            shown = self.home.json("records", *filters)
            self.assertEqual([record["file_index"] for record in shown], expected, filters)
        self.assertEqual(self.home.json("sums", "--period", "month", "--alias", "Home"), [
            {"alias": "Home", "period_begin": "2004-12-01", "period_end": "2004-12-31", "label": "December 2004",
             "connections": 1, "duration_seconds": 5025, "duration_rounded_seconds": 5040, "bytes_received": 20571190,
             "bytes_transmitted": 1843212, "volume_rounded": 23000000}])
        week = self.home.cli("sums", "--period", "week").splitlines()
        self.assertEqual(week[0].split()[:3], ["alias", "period_begin", "period_end"])
        self.assertIn("2004-12-26-2005-01-01", week[1])
        for wrong in (["records", "--from", "yesterday"], ["sums", "--period", "year"]):
            self.assertNotEqual(self.home.run(*wrong).returncode, 0, wrong)
        self.home.env["TZ"] = "Europe/Berlin"
        self.assertEqual(self.home.json("records")[1]["log_in"], "2004-12-31T22:22:22+01:00")

    def test_repair_says_what_it_did_and_keeps_the_old_file(self):
        good = ['"a",#2004-01-01 10:00:00#,#00:05:00#,1,2,"",""', '"b",#2004-01-01 10:00:00#,#00:05:00#,1,2,"",""']
        self.write(good[1], "damaged", good[0])
        file = self.home.data / "Korvalin_Stats.db"
        damaged, said = file.read_bytes(), self.home.cli("repair")
        self.assertIn("merged: 0\ndropped: 1\nrewritten", said)
        self.assertEqual(file.read_text().split("\n")[:2], good)
        backup = next(self.home.data.glob("Korvalin_Stats.db_*"))
        self.assertEqual((backup.name in said, backup.read_bytes()), (True, damaged))
        self.assertNotIn("rewritten", self.home.cli("repair"))


if __name__ == "__main__":
    rig.main()
