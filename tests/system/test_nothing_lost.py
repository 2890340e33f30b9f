#!/usr/bin/env python3
"""Folders that are full, closed or open to everybody, as an ordinary user meets them: nothing is lost, nothing is silent."""

import contextlib
import os
import subprocess

import rig

NOBODY = 65534


class OrdinaryUser(rig.RecorderCase):
    def setUp(self):
        super().setUp()
        self.home.data.mkdir(parents=True, exist_ok=True)
        self.give(self.home.path)
        self.home.prefix = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")

    def give(self, folder):
        rig.run("chown", "-R", f"{NOBODY}:{NOBODY}", folder)

    def recorder(self):
        return self.record(prefix=self.home.prefix, stderr=subprocess.PIPE)

    def full(self):
        """A data folder on a disk of its own, and what fills it and frees it again."""
        rig.run("mount", "-t", "tmpfs", "-o", "size=256k,mode=755", "none", self.home.data)
        self.addCleanup(rig.run, "umount", "-l", self.home.data)
        self.give(self.home.data)
        rest = self.home.data / "rest"

        def fill():
            with open(rest, "wb", buffering=0) as file, contextlib.suppress(OSError):
                while file.write(b"x" * 4096) == 4096:
                    pass

        return fill, rest.unlink

    def closed_to_writing(self):
        """A data folder that takes nothing for a while, and so do the statistics in it."""
        change = lambda mode: rig.run("chmod", mode, self.home.data, *self.home.data.glob("Korvalin_Stats*"))
        return (lambda: change("a-w")), (lambda: change("u+w"))

    def recorded(self):
        return self.home.moved("records").get("wire0", [0, 0])

    def test_a_record_waits_until_it_can_be_written(self):
        for refusing in (self.full, self.closed_to_writing):
            with self.subTest(refusing.__name__):
                refuse, allow = refusing()
                recorder, first, already = self.recorder(), self.counted("wire0"), self.recorded()
                self.send("wire0", 500)
                refuse()
                for state in ("down", "up"):
                    self.network.ip(f"link set wire0 {state}")
                self.network.await_carrier()
                self.network.ip("route add default via 10.77.0.2")
                self.send("wire0", 50)
                self.assertNotEqual(self.end(recorder), 0)
                self.assertIn('Korvalin_Stats.db: "wire0",#', recorder.stderr.read())
                allow()
                self.end(self.recorder())
                self.assertEqual(rig.grown(self.recorded(), already), rig.grown(self.counted("wire0"), first))

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

    def test_what_others_have_put_into_an_open_folder_is_left_alone(self):
        victim, log = self.home.path / "victim", self.home.data / "korvalin-cli_ErrorLog.txt"
        victim.write_text("as it was\n")
        self.home.data.chmod(0o777)
        for name in ("Korvalin_Stats.csv", log.name, "Korvalin_Journal.db"):
            (self.home.data / name).symlink_to(victim)
        self.give(victim)
        recorder, first = self.recorder(), self.counted("wire0")
        self.send("wire0", 100)
        self.end(recorder)
        self.assertEqual(victim.read_text(), "as it was\n")
        self.assertGreaterEqual(self.recorded(), rig.grown(self.counted("wire0"), first))
        log.unlink()
        os.mkfifo(log)
        self.end(self.recorder())


if __name__ == "__main__":
    rig.main()
