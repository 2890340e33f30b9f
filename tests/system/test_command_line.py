#!/usr/bin/env python3
"""korvalin-cli and the settings store: kinds, ranges, rights, folders that fail."""

import datetime
import json
import shutil
import subprocess

import rig


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


if __name__ == "__main__":
    rig.main()
