#!/usr/bin/env python3
"""korvalin-cli and the settings store: kinds, ranges, rights, folders that fail."""

import subprocess

import rig


class Settings(rig.Case):
    def test_defaults_kinds_and_ranges(self):
        for name, value, expected in (("ChartMax", None, "100"), ("connDATAmax", "30", "60"), ("ShowTitle", "TRUE", "True"),
                                      ("FontName", "Größe 'x' \"y\"", None), ("eth0_FreeVolume", "2000000", "10000")):
            with self.subTest(name):
                if value is not None:
                    self.home.cli("settings", "set", name, value)
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

    def test_wrong_usage_is_explained(self):
        run = subprocess.run([rig.BIN / "korvalin-cli", "lines", "--format", "xml"], env=self.home.env, text=True,
                             capture_output=True, check=False)
        self.assertNotEqual(run.returncode, 0)
        self.assertIn("xml", run.stderr)


if __name__ == "__main__":
    rig.main()
