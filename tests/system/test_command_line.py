#!/usr/bin/env python3
"""korvalin-cli and the settings store: kinds, ranges, rights, folders that fail."""

import datetime
import shutil

import rig


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


if __name__ == "__main__":
    rig.main()
