#!/usr/bin/env python3
"""Real adapters in network namespaces: bytes equal the kernel's counters, rates are right, adapters come and go."""

import rig

FRAME = 1000 + 8 + 20 + 14  # with UDP, IPv4 and Ethernet headers


def rate(line, seconds):
    return next(r["received"] for r in line["rates"] if r["seconds"] == seconds)


class Lines(rig.Case):
    def setUp(self):
        super().setUp()
        self.network = self.enterContext(rig.Network())

    def send(self, packets, rate):
        return self.launch(rig.sender("wire0p", packets, "10.77.0.1", rate), self.network.prefix(self.network.there))

    def watch(self):
        return rig.Watch(self, self.network.prefix())

    def test_bytes_and_rates_are_the_kernels(self):
        sender, watch = self.send(7000, 500), self.watch()
        sender.wait()
        at_end = len(watch.history)
        rig.wait_for(lambda: len(watch.history) >= at_end + 2, "two more seconds")
        line = watch.lines()[0]
        self.assertEqual(line["name"], "wire0")
        self.assertEqual(line["bytes_received"], 7000 * FRAME)
        self.assertEqual([line["bytes_received"], line["bytes_transmitted"]], self.network.counted("wire0"))
        five_seconds = [rate(second[0], 5) for second in watch.history[7:11] if second]
        self.assertEqual(len(five_seconds), 4)
        for value in five_seconds:
            self.assertAlmostEqual(value / (500 * FRAME), 1, delta=0.02)

    def test_adapters_come_go_and_change_their_names(self):
        self.send(50, 100).wait()
        watch, there = self.watch(), self.network.there
        watch.await_names("wire0")
        for words, where, names in (("link set wire0p down", there, []), ("link set wire0p up", there, ["wire0"]),
                                    ("link set wire0 down", None, [])):
            self.network.ip(words, where)
            watch.await_names(*names)
        self.network.ip("link set wire0 name lan0 up")
        self.network.ip("route add default via 10.77.0.2")
        watch.await_names("lan0")
        for second in watch.history:
            for line in second:
                self.assertTrue(all(r["received"] >= 0 for r in line["rates"]))
        self.network.ip("link delete lan0")
        watch.await_names()
        self.assertIsNone(watch.process.poll())


if __name__ == "__main__":
    rig.main()
