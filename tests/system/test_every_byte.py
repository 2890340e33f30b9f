#!/usr/bin/env python3
"""Every byte that the kernel counts is in the sums once, whatever happens to adapters, routes and the program."""

import signal
import time

import rig

BY_SYSTEM, BY_TASK_MANAGER = "System shut down or user logged off", "Korvalin was closed by the task manager"


class EveryByte(rig.RecorderCase):
    def add(self, name, net):
        """One more adapter that has moved something."""
        self.network.join(name, net)
        self.send(name, 2, net)

    def sums(self, *arguments):
        return self.home.moved("sums", "--period", "month", *arguments)

    def await_reading(self, name, expected):
        rig.wait_for(lambda: self.sums().get(name) == expected(), "its reading")

    def meet(self, name):
        """How to tell what it has moved from now on, which is when the program meets it."""
        first = self.counted(name)
        return lambda: rig.grown(self.counted(name), first)

    def test_runs_that_end_and_one_that_is_killed(self):
        moved = self.meet("wire0")
        reasons = {signal.SIGTERM: BY_SYSTEM, signal.SIGINT: BY_TASK_MANAGER, signal.SIGKILL: "Interrupted",
                   signal.SIGHUP: BY_TASK_MANAGER}
        for how, reason in reasons.items():
            killed = how == signal.SIGKILL
            if killed:
                self.add("usb0", 78)  # between two runs: all that it counts is nobody else's
            recorder = self.record("wire0", *["usb0"] * killed)
            closed = self.records("--closed")
            self.send("wire0", 700)
            if killed:  # none of what was read is lost, also of an adapter that then goes; an end reads once more
                self.send("usb0", 700, 78)
                usb = self.counted("usb0")
                self.await_reading("usb0", lambda: usb)
                self.await_reading("wire0", moved)
            self.assertEqual(self.records("--closed"), closed, "what is open is shown, and is not closed")
            self.assertEqual(self.end(recorder, how), -how if killed else 0)
            if killed:
                self.network.ip("link delete usb0")
                self.end(self.record())
            self.assertTrue(any(record["info"].endswith(reason) for record in self.closed()[len(closed):]), reason)
            self.send("wire0", 50)
        self.end(self.record())
        self.assertEqual(self.sums(), {"wire0": moved(), "usb0": usb})
        self.assertEqual(self.sums("--closed"), self.sums(), "nobody records")

    def test_an_adapter_that_comes_and_goes_slowly_or_within_a_second(self):
        recorder, total = self.record(), [0, 0]
        for slowly in (True, True, False, False, True):
            self.add("tun0", 79)
            self.await_lines("wire0", "tun0")
            self.send("tun0", 200, 79)
            total = [a + b for a, b in zip(total, self.counted("tun0"))]
            # The kernel forgets what the end of a pair has received when the pair goes, not when the end moves away.
            self.network.ip(f"link set tun0 netns {self.network.there}")
            self.network.ip("link delete tun0", self.network.there)
            if slowly:
                self.await_lines("wire0")
        self.end(recorder)
        self.assertEqual(self.sums()["tun0"], total)

    def test_the_journal_goes_onto_the_medium_once_a_minute(self):
        rig.need("strace")
        log = self.home.path / "calls"
        recorder = self.record(prefix=("strace", "-D", "-f", "-qq", "-e", "trace=fsync,fdatasync,sync_file_range", "-o", log))
        flushed = len(log.read_text().splitlines())
        started = time.monotonic()
        while time.monotonic() - started < 8:
            self.send("wire0", 5)
        self.assertEqual(len(log.read_text().splitlines()), flushed, "nothing but notes within the minute")
        self.end(recorder)


if __name__ == "__main__":
    rig.main()
