#!/usr/bin/env python3
"""korvalin-cli and the settings store: kinds, ranges, two programs at once, damage, kills, folders that fail."""

import os
import shutil
import signal
import subprocess
import time
import unittest

import rig


class Settings(unittest.TestCase):
    def setUp(self):
        self.home = rig.Home()
        self.addCleanup(self.home.__exit__)

    def test_defaults_kinds_and_ranges(self):
        for name, value, expected in (("ChartMax", None, "100"), ("connDATAmax", "30", "60"), ("Opacity", "abc", "25"),
                                      ("ShowTitle", "TRUE", "True"), ("FontName", "Größe 'x' \"y\"", None),
                                      ("eth0_FreeVolume", "2000000", "10000"), ("MON_Width", "500", "3200")):
            with self.subTest(name):
                if value is not None:
                    self.home.cli("settings", "set", name, value)
                self.assertEqual(self.home.cli("settings", "get", name), expected or value)
        self.home.cli("settings", "set", "ChartMax", "7")
        self.home.cli("settings", "set", "ChartMax", "")
        self.assertEqual(self.home.cli("settings", "get", "ChartMax"), "100")
        listed = self.home.cli("settings", "list").splitlines()
        self.assertTrue(any(line.split()[:3] == ["TimeLinesSec", "number", "60"] for line in listed))
        self.assertTrue(any(line.split()[:3] == ["eth0_FreeVolume", "number", "10000"] for line in listed))

    def test_only_the_user_can_read_the_store(self):
        self.home.set(ChartMax=5)
        self.assertEqual(self.home.store.stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.home.store.parent.stat().st_mode & 0o777, 0o700)

    def test_two_programs_write_at_once(self):
        writers = [subprocess.Popen([rig.BIN / "korvalin-cli", "settings", "set", f"line{i}_FreeHours", str(i)],
                                    env=self.home.env, stdout=subprocess.DEVNULL) for i in range(20)]
        self.assertEqual([writer.wait() for writer in writers], [0] * 20)
        for i in range(20):
            self.assertEqual(self.home.cli("settings", "get", f"line{i}_FreeHours"), str(i))

    def test_a_damaged_store_is_moved_aside_and_the_defaults_apply(self):
        self.home.set(ChartMax=55)
        whole = self.home.store.read_bytes()
        for name, content in (("garbage", b"no database at all" * 500), ("cut", whole[:5000]), ("header", b"x" * 100 + whole[100:]),
                              ("empty", b"")):
            with self.subTest(name):
                for part in self.home.store.parent.glob("registry.db*"):
                    part.unlink()
                self.home.store.write_bytes(content)
                value = self.home.cli("settings", "get", "ChartMax")
                self.assertIn(value, ("100", "55"))
                self.home.set(ChartMax=66)
                self.assertEqual(self.home.cli("settings", "get", "ChartMax"), "66")
                aside = [p for p in self.home.store.parent.glob("registry.db.damaged_*") if not p.name.endswith(("-wal", "-shm"))]
                if name in ("garbage", "header"):
                    self.assertEqual([p.read_bytes() for p in aside], [content])
                for p in aside:
                    p.unlink()

    def test_a_kill_at_any_moment_loses_nothing_that_was_written(self):
        script = 'i=0; while :; do i=$((i+1)); "$0" settings set x_FreeHours $i >/dev/null && echo $i; done'
        for _ in range(5):
            shell = subprocess.Popen(["sh", "-c", script, rig.BIN / "korvalin-cli"], env=self.home.env, text=True,
                                     stdout=subprocess.PIPE, start_new_session=True)
            shell.stdout.readline()
            time.sleep(0.15)  # any moment will do
            os.killpg(shell.pid, signal.SIGKILL)
            acknowledged = [int(line) for line in shell.stdout.read().split()]
            shell.stdout.close()
            shell.wait()
            stored = int(self.home.cli("settings", "get", "x_FreeHours"))
            self.assertGreaterEqual(stored, max(acknowledged, default=1))

    def test_folders_that_cannot_be_used(self):
        # Root may write everywhere, so the folders are made impossible instead of forbidden.
        (self.home.path / "config").write_text("a file where the folder should be")
        self.assertEqual(self.home.cli("settings", "get", "ChartMax"), "100")
        self.home.env["XDG_DATA_HOME"] = "/proc/none"
        self.assertIn("line", self.home.cli("lines"))

    def test_a_full_disk_keeps_what_is_there(self):
        if os.geteuid() != 0 or not shutil.which("mount"):
            self.skipTest("a small file system needs root")
        small = self.home.path / "config"
        small.mkdir()
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k,mode=700", "none", small], check=False).returncode:
            self.skipTest("no tmpfs can be mounted here")
        try:
            self.home.set(ChartMax=5)
            with open(small / "filler", "wb") as filler:
                try:
                    filler.write(b"x" * 300_000)
                except OSError:
                    pass
            self.home.cli("settings", "set", "DataPath", "y" * 900)
            self.assertEqual(self.home.cli("settings", "get", "ChartMax"), "5")
            (small / "filler").unlink()
            self.home.set(ChartMax=6)
            self.assertEqual(self.home.cli("settings", "get", "ChartMax"), "6")
        finally:
            subprocess.run(["umount", small], check=False)

    def test_wrong_usage_is_explained(self):
        run = subprocess.run([rig.BIN / "korvalin-cli", "lines", "--format", "xml"], env=self.home.env, text=True,
                             capture_output=True, check=False)
        self.assertNotEqual(run.returncode, 0)
        self.assertIn("xml", run.stderr)


if __name__ == "__main__":
    rig.main()
