#!/usr/bin/env python3
"""korvalin-cli and the settings store: kinds, ranges, rights, folders that fail."""

import contextlib
import datetime
import json
import os
import shutil
import signal
import sqlite3
import subprocess
import time

import rig

UMASK = os.umask(0o022)
os.umask(UMASK)


class Settings(rig.Case):
    def test_defaults_kinds_and_ranges(self):
        for name, value, expected in (("ChartMax", None, "100"), ("connDATAmax", "30", "60"), ("ShowTitle", "TRUE", "True"),
                                      ("FontName", "Größe 'x' \"y\"", None), ("eth0_FreeVolume", "2000000", "10000")):
            with self.subTest(name):
                if value is not None:
                    self.home.cli("settings", "set", name, value, check=False)
                self.assertEqual(self.home.cli("settings", "get", name), expected or value)
        listed = self.home.cli("settings", "list").splitlines()
        self.assertTrue(any(line.split()[:3] == ["TimeLinesSec", "number", "60"] for line in listed))
        self.assertTrue(any(line.split()[:3] == ["eth0_FreeVolume", "number", "10000"] for line in listed))

    def test_only_the_user_can_read_the_store(self):
        self.home.set(ChartMax=5)
        self.assertEqual(self.home.store.stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.home.store.parent.stat().st_mode & 0o777, 0o700)

    def test_folders_that_cannot_be_used(self):
        # Root may write everywhere, so the folders are made impossible instead of forbidden.
        (self.home.path / "config").write_text("a file where the folder should be")
        self.assertEqual(self.home.cli("settings", "get", "ChartMax"), "100")
        self.home.env["XDG_DATA_HOME"] = "/proc/none"
        self.assertIn("line", self.home.cli("lines"))

    def run_cli(self, *arguments):
        return subprocess.run([rig.BIN / "korvalin-cli", *arguments], env=self.home.env, text=True, capture_output=True,
                              check=False)

    def test_usage_is_explained(self):
        for arguments, code, said in ((["lines", "--format", "xml"], None, "xml"), ([], 0, "settings"),
                                      (["--version"], 0, "korvalin-cli "), (["sums"], 0, "period_begin"),
                                      (["settings", "get", "CharMax"], 2, "ChartMax"),
                                      (["provider", "", "5"], 2, "needed"),
                                      (["settings", "set", "Home_FreeVolum", "5"], 2, "Home_FreeVolume")):
            with self.subTest(arguments):
                run = self.run_cli(*arguments)
                self.assertTrue(run.returncode == code or (code is None and run.returncode != 0), run)
                self.assertIn(said, run.stderr if code != 0 else run.stdout)

    def test_a_value_that_is_not_stored_as_given_is_said(self):
        for value, stored, code in (("80", "80", 0), ("80.0", "80", 0), ("-3", "1", 1), ("", "100", 0)):
            run = self.run_cli("settings", "set", "ChartMax", value)
            self.assertEqual((run.stdout.strip(), run.returncode, bool(run.stderr)), (stored, code, code != 0), value)
        shutil.rmtree(self.home.path / "config")
        (self.home.path / "config").write_text("a file where the folder should be")
        run = self.run_cli("settings", "set", "ChartMax", "80")
        self.assertEqual(run.returncode, 1)
        self.assertIn("cannot be written", run.stderr)

    def test_use_and_forecast(self):
        today = datetime.date.today()
        data = self.home.path / "statistics"
        data.mkdir()
        (data / "Korvalin_Stats.db").write_text(
            f'"Home",#{today} 00:00:00#,#00:00:00#,1000000,2000000,"",""\r\n', newline="")
        self.home.set(DataPath=str(data), Home_FreeVolume=100, Home_Up1MB="False")
        status = json.loads(self.home.cli("status", "--alias", "home", "--format", "json"))
        self.assertEqual((status["alias"], status["bytes"]["used"], status["bytes"]["left"], status["percentage"]),
                         ("Home", 3_000_000, 97_000_000, 3))
        self.assertIn("period 3.0 MB  left 97 MB", self.home.cli("status", "--alias", "Home"))
        metrics = self.home.cli("metrics").splitlines()
        self.assertEqual(metrics[-1], "# EOF")
        for sample in ("period_used_bytes", "today_used_bytes"):
            self.assertIn(f'korvalin_{sample}{{alias="Home"}} 3000000', metrics)
        self.assertIn('korvalin_period_allowance_bytes{alias="Home"} 100000000', metrics)
        names = [line.split()[2] for line in metrics if line.startswith("# HELP")]
        self.assertEqual(len(names), len(set(names)), "each family once")
        if shutil.which("promtool"):
            subprocess.run(["promtool", "check", "metrics"], input="\n".join(metrics) + "\n", text=True, check=True)
        self.assertIn("corrected by +47 MB, used 50 MB", self.home.cli("provider", "Home", "50"))
        self.assertIn("period 50 MB", self.home.cli("status", "--alias", "Home"))
        self.assertEqual(self.home.moved("records"), {"Home": [2_000_000, 1_000_000]})
        self.assertIn("used 3 MB", self.home.cli("provider", "Home"))

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
            run = self.run_cli(command, "--alias", "Wrok")
            self.assertEqual((run.returncode, run.stdout), (2, ""))
            self.assertIn("Did you mean Work?", run.stderr)
            self.assertEqual(self.run_cli(command, "--alias", "work").returncode, 0)

    def test_metrics_into_a_file(self):
        file = self.home.path / "korvalin.prom"
        for _ in range(2):
            self.home.cli("metrics", "--output", str(file))
            self.assertTrue(file.read_text().endswith("# EOF\n"))
            self.assertEqual(file.stat().st_mode & 0o777, 0o666 & ~UMASK)
        self.assertEqual(list(self.home.path.glob("korvalin.prom*")), [file])
        self.assertEqual(self.run_cli("metrics", "--output", "/proc/none/x.prom").returncode, 1)


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
        run = subprocess.run([rig.BIN / "korvalin-cli", "import", "vnstat", *options, file or self.file], env=self.home.env,
                             text=True, capture_output=True, check=False)
        return run.returncode, run.stdout + run.stderr

    def test_days_become_records_once(self):
        (self.data / "Korvalin_Stats.db").write_text('"eth0",#2024-03-14 10:00:00#,#01:00:00#,3,4,"",""\r\n', newline="")
        taken = "eth0: 1 days taken; 1 left: there are records of that day; 1 left: the day has not ended\n"
        source = self.file.read_bytes()
        self.assertEqual(self.run_import("--interface", "eth0", "--dry-run"), (0, taken + "nothing was written\n"))
        self.assertEqual(self.run_import("--interface", "eth2")[0], 2)
        self.assertEqual(len(list(self.data.iterdir())), 1, "nothing is written yet")
        recorder = subprocess.Popen([rig.BIN / "korvalin-cli", "record"], env=self.home.env)
        self.addCleanup(rig.ended, recorder)
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


if __name__ == "__main__":
    rig.main()
