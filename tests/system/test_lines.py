#!/usr/bin/env python3
"""Real adapters in network namespaces: bytes equal the kernel's counters, rates are right, adapters come and go."""

import json
import subprocess
import sys
import threading

import rig

PAYLOAD = 1400
FRAME = PAYLOAD + 8 + 20 + 14  # UDP, IPv4 and Ethernet headers
SENDER = f"""
import socket, sys, time
rate, seconds = int(sys.argv[1]), float(sys.argv[2])
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
start, sent = time.monotonic(), 0
while (now := time.monotonic() - start) < seconds:
    while sent < now * rate:
        out.sendto(b"x" * {PAYLOAD}, ("10.77.0.1", 9))
        sent += 1
    time.sleep(0.002)
print(sent)
"""


class Watch:
    """korvalin-cli lines --watch: the lines of the newest second."""

    def __init__(self, network, home):
        self.process = network.start(network.here, [rig.BIN / "korvalin-cli", "lines", "--watch", "--format", "json"],
                                     env=home.env, stdout=subprocess.PIPE, text=True)
        self.history = []
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        for line in self.process.stdout:
            self.history.append(json.loads(line))

    @property
    def names(self):
        return [line["name"] for line in self.history[-1]] if self.history else None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()


def rate(line, seconds):
    return next(r["received"] for r in line["rates"] if r["seconds"] == seconds)


class Lines(rig.Case):
    def setUp(self):
        super().setUp()
        self.network = self.enter(rig.Network())

    def send(self, packets_a_second, seconds):
        return self.launch([sys.executable, "-c", SENDER, str(packets_a_second), str(seconds)], self.network.there,
                           stdout=subprocess.PIPE)

    def test_bytes_and_rates_are_the_kernels(self):
        sender = self.send(500, 14)
        with Watch(self.network, self.home) as watch:
            sent = int(sender.communicate()[0])
            at_end = len(watch.history)
            rig.wait_for(lambda: len(watch.history) >= at_end + 2, "two more seconds")
            line = watch.history[-1][0]
        self.assertEqual(line["name"], "wire0")
        self.assertEqual(line["bytes_received"], sent * FRAME)
        self.assertEqual(line["bytes_received"], self.network.counter(self.network.here, "wire0", "rx_bytes"))
        self.assertEqual(line["bytes_transmitted"], self.network.counter(self.network.here, "wire0", "tx_bytes"))
        five_seconds = [rate(second[0], 5) for second in watch.history[7:11] if second]
        self.assertEqual(len(five_seconds), 4)
        for value in five_seconds:
            self.assertAlmostEqual(value / (500 * FRAME), 1, delta=0.02)

    def test_adapters_come_go_and_change_their_names(self):
        self.send(100, 0.5).wait()
        with Watch(self.network, self.home) as watch:
            here = self.network.here
            rig.wait_for(lambda: watch.names == ["wire0"], "the adapter")
            self.network.inside(self.network.there, "ip", "link", "set", "wire1", "down")
            rig.wait_for(lambda: watch.names == [], "no line without a carrier")
            self.network.inside(self.network.there, "ip", "link", "set", "wire1", "up")
            rig.wait_for(lambda: watch.names == ["wire0"], "the adapter again")
            self.network.inside(here, "ip", "link", "set", "wire0", "down")
            rig.wait_for(lambda: watch.names == [], "no line while it is down")
            self.network.inside(here, "ip", "link", "set", "wire0", "name", "lan0", "up")
            self.network.inside(here, "ip", "route", "add", "default", "via", "10.77.0.2")
            rig.wait_for(lambda: watch.names == ["lan0"], "its new name")
            for second in watch.history:
                for line in second:
                    self.assertTrue(all(r["received"] >= 0 for r in line["rates"]))
            self.network.inside(here, "ip", "link", "delete", "lan0")
            rig.wait_for(lambda: watch.names == [], "nothing left")
            self.assertIsNone(watch.process.poll())


if __name__ == "__main__":
    rig.main()
