#!/usr/bin/env python3
"""Folders that are full, closed or open to everybody, as an ordinary user meets them: nothing is lost, nothing is silent."""

import os
import subprocess

import rig

NOBODY = 65534
AS_NOBODY = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")


class OrdinaryUser(rig.RecorderCase):
    def setUp(self):
        super().setUp()
        self.data = self.home.path / "data/Korvalin"
        self.data.mkdir(parents=True, exist_ok=True)
        self.give(self.home.path)
        self.home.prefix = AS_NOBODY

    def give(self, folder):
        subprocess.run(["chown", "-R", f"{NOBODY}:{NOBODY}", folder], check=True)

    def run_as_user(self, *arguments):
        """Status, output and what was said of a command."""
        done = subprocess.run([*AS_NOBODY, rig.BIN / "korvalin-cli", *arguments], env=self.home.env, text=True,
                              capture_output=True, timeout=30)
        return done.returncode, done.stdout, done.stderr

    def recorder(self):
        process = self.launch(["ip", "netns", "exec", self.here, *AS_NOBODY, rig.BIN / "korvalin-cli", "record"],
                              stderr=subprocess.PIPE)
        self.await_lines("wire0")
        return process

    def full(self):
        """A data folder on a disk of its own, and what fills it and frees it again."""
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k,mode=755", "none", self.data], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", self.data], check=True)
        self.give(self.data)
        rest = self.data / "rest"

        def fill():
            with open(rest, "wb", buffering=0) as file:
                try:
                    while file.write(b"x" * 4096) == 4096:
                        pass
                except OSError:
                    pass

        return fill, rest.unlink

    def closed(self):
        """A data folder that is closed to writing for a while, and so are the statistics in it."""
        change = lambda mode: subprocess.run(["chmod", mode, self.data, *self.data.glob("Korvalin_Stats*")], check=True)
        return (lambda: change("a-w")), (lambda: change("u+w"))

    def test_a_record_waits_until_it_can_be_written(self):
        for refusing in (self.full, self.closed):
            with self.subTest(refusing.__name__):
                refuse, allow = refusing()
                recorder, first = self.recorder(), self.counted("wire0")
                already = self.moved()
                self.send("wire0", 500)
                refuse()
                for state in ("down", "up"):
                    self.network.inside(self.here, "ip", "link", "set", "wire0", state)
                self.network.await_carrier("wire0", "wire1")
                self.network.inside(self.here, "ip", "route", "add", "default", "via", "10.77.0.2")
                self.send("wire0", 50)
                self.assertNotEqual(self.end(recorder), 0)
                said = recorder.stderr.read()
                self.assertIn('Korvalin_Stats.db: "wire0",#', said)
                allow()
                self.end(self.recorder())
                moved = [now - then for now, then in zip(self.counted("wire0"), first)]
                self.assertEqual([now - then for now, then in zip(self.moved(), already)], moved)

    def moved(self):
        return self.home.moved("records").get("wire0", [0, 0])

    def test_a_setting_that_is_not_stored_is_said(self):
        store = self.home.store.parent
        subprocess.run(["chmod", "-R", "a-w", store], check=True)
        self.addCleanup(subprocess.run, ["chmod", "-R", "u+w", store], check=True)
        status, shown, said = self.run_as_user("settings", "set", "ChartMax", "55")
        self.assertEqual((status, shown.strip()), (1, "100"))
        self.assertTrue(said)

    def test_what_cannot_be_read_is_said(self):
        self.end(self.recorder())
        file = self.data / "Korvalin_Stats.db"
        for closed in (self.data, file):
            mode = closed.stat().st_mode
            closed.chmod(0)
            for command in (("records",), ("repair",), ("sums", "--period", "month")):
                status, _, said = self.run_as_user(*command)
                self.assertEqual(status, 1, (closed, command))
                self.assertIn("no permission", said)
            closed.chmod(mode)

    def test_what_others_have_put_into_an_open_folder_is_left_alone(self):
        victim = self.home.path / "victim"
        victim.write_text("as it was\n")
        self.data.chmod(0o777)
        for name in ("Korvalin_Stats.csv", "korvalin-cli_ErrorLog.txt", "Korvalin_Journal.db"):
            (self.data / name).symlink_to(victim)
        self.give(victim)
        recorder, first = self.recorder(), self.counted("wire0")
        self.send("wire0", 100)
        self.end(recorder)
        self.assertEqual(victim.read_text(), "as it was\n")
        self.assertGreaterEqual(self.moved(), [now - then for now, then in zip(self.counted("wire0"), first)])
        (self.data / "korvalin-cli_ErrorLog.txt").unlink()
        os.mkfifo(self.data / "korvalin-cli_ErrorLog.txt")
        self.end(self.recorder())


if __name__ == "__main__":
    rig.main()
