#!/usr/bin/env python3
"""The Debian package of the tested build: what it holds, and its life on a system of its own."""

import os
import pathlib
import pwd
import shutil
import subprocess
import sys
import tempfile

import rig

MANUAL = rig.ROOT / "docs/manual"
CONTENTS = {
    "bin/korvalin", "bin/korvalin-cli",
    *(f"lib/systemd/user/korvalin-{unit}" for unit in ("record.service", "metrics.service", "metrics.timer")),
    "share/applications/korvalin.desktop",
    "share/bash-completion/completions/korvalin-cli",
    "share/dbus-1/interfaces/org.example.korvalin.xml",
    "share/doc/korvalin/changelog.gz", "share/doc/korvalin/copyright",
    *(f"share/doc/korvalin/manual/{file.relative_to(MANUAL)}" for file in MANUAL.rglob("*.*")),
    "share/fish/vendor_completions.d/korvalin-cli.fish",
    *(f"share/icons/hicolor/{size}x{size}/apps/korvalin.png" for size in (16, 32, 48, 256)),
    "share/icons/hicolor/scalable/apps/korvalin.svg", "share/icons/hicolor/symbolic/apps/korvalin-symbolic.svg",
    "share/korvalin/Korvalin.lng",
    "share/man/man1/korvalin-cli.1.gz", "share/man/man1/korvalin.1.gz",
    "share/metainfo/org.example.korvalin.metainfo.xml",
    "share/zsh/vendor-completions/_korvalin-cli",
}


def pack(folder, *options):
    """The package of the tested build, in a new folder."""
    folder.mkdir()
    rig.run("cpack", "--config", rig.BIN.parent / "CPackConfig.cmake", "-B", folder, *options, cwd=folder)
    return next(folder.glob("*.deb"))


def files(folder):
    return {str(file.relative_to(folder)) for file in folder.rglob("*") if file.is_file() or file.is_symlink()}


class Package(rig.DesktopCase):
    @classmethod
    def setUpClass(cls):
        rig.need("cpack", "dpkg", "dpkg-deb", "dpkg-shlibdeps", "file", "strip", "setpriv")
        super().setUpClass()
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="korvalin-package-")))
        cls.folder.chmod(0o755)  # the programs in it are for everybody
        cls.package = pack(cls.folder / "new")

    def check_with(self, *command):
        """A checker of the system's, where it is installed; a machine that builds for others has to have it."""
        if not shutil.which(command[0]):
            self.assertFalse(os.environ.get("CI"), f"{command[0]} is not installed")
            print(f"{command[0]} is not installed, so it checks nothing", file=sys.stderr)
            return
        run = rig.run(*command, check=False)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def test_it_holds_what_a_desktop_expects(self):
        needed = rig.run("dpkg-deb", "-f", self.package, "Depends").stdout
        for loaded in ("libcurl4", "libsodium"):  # by the program itself, as needed
            self.assertRegex(needed, rf"(^|, ){loaded}[a-z0-9]*(,|$)")
        content = self.folder / "content"
        rig.run("dpkg-deb", "-x", self.package, content)
        self.assertEqual(files(content / "usr"), CONTENTS)
        self.assertEqual(os.listdir(content), ["usr"])
        units = content / "usr/lib/systemd/user"
        for unit, command in (("record", "record"), ("metrics", "metrics --output ${KORVALIN_METRICS_FOLDER}/korvalin.prom")):
            self.assertIn(f"\nExecStart=/usr/bin/korvalin-cli {command}\n", (units / f"korvalin-{unit}.service").read_text())
        shared = content / "usr/share"
        self.check_with("desktop-file-validate", shared / "applications/korvalin.desktop")
        self.check_with("appstreamcli", "validate", "--no-net", shared / "metainfo/org.example.korvalin.metainfo.xml")
        self.check_with("lintian", "--allow-root", "--fail-on", "error,warning", self.package)

    def test_the_same_build_gives_the_same_package(self):
        self.assertEqual(pack(self.folder / "again").read_bytes(), self.package.read_bytes())

    def dpkg(self, *arguments):
        rig.run("dpkg", f"--root={self.root}", "--log=/dev/null", "--force-depends", *arguments)

    def new_system(self):
        """A root without anything but dpkg's own records."""
        self.root = self.folder / "root"
        database = self.root / "var/lib/dpkg"
        for name in ("info", "updates"):
            (database / name).mkdir(parents=True)
        (database / "status").touch()

    def version(self):
        return rig.run("dpkg-query", f"--admindir={self.root}/var/lib/dpkg", "-W", "-f", "${Version}", "korvalin").stdout

    def received(self):
        """Of the wire, by session."""
        return [record["bytes_received"] for record in self.home.json("records", "--closed") if record["line_name"] == "wire0"]

    def session(self, packets, meanwhile=lambda: None):
        """Starts the window, moves packets, and ends it."""
        process = self.launch([*self.home.prefix, self.home.bin / "korvalin"], self.network.prefix(), cwd="/",
                              stderr=subprocess.PIPE)
        self.main_window()
        self.network.send("wire0", packets)
        meanwhile()
        self.assertEqual(self.end(process, seconds=20), 0)

    def data(self):
        return {name: (self.home.path / name).read_bytes() for name in files(self.home.path)}

    def test_an_ordinary_user_lives_with_it_from_installation_to_removal(self):
        self.network = self.enterContext(rig.Network())
        self.network.send("wire0", 2)
        user = pwd.getpwnam("nobody")
        os.chown(self.home.path, user.pw_uid, user.pw_gid)
        self.home.prefix = ("setpriv", f"--reuid={user.pw_uid}", f"--regid={user.pw_gid}", "--clear-groups", "--no-new-privs")
        self.new_system()
        self.home.bin = self.root / "usr/bin"
        older = pack(self.folder / "old", "-D", "CPACK_PACKAGE_VERSION=0.9.0")

        self.dpkg("-i", older)
        self.assertEqual(self.version(), "0.9.0")
        self.home.set(Language="ENG", ChartLineNo=1, picWidthMin=7)
        earlier = self.network.counted("wire0")[0]
        # The system replaces the program while it runs.
        self.session(50, meanwhile=lambda: self.dpkg("-i", self.package))
        self.assertNotEqual(self.version(), "0.9.0")
        before = self.received()
        self.assertEqual(len(before), 1)
        self.assertGreater(before[0], 50 * 1000)

        self.session(20)
        self.assertEqual(self.home.get("picWidthMin"), "7")
        self.assertEqual(self.received()[:1], before)
        self.assertEqual(sum(self.received()), self.network.counted("wire0")[0] - earlier)

        entry = (self.home.path / "config/autostart/korvalin.desktop").read_text()
        self.assertIn(f'"{self.root}/usr/bin/korvalin"', entry)
        kept = self.data()
        self.assertIn("data/Korvalin/Korvalin_Stats.db", kept)
        self.dpkg("--purge", "korvalin")
        self.assertEqual({path for path in self.root.rglob("*") if not path.is_relative_to(self.root / "var")}, set())
        self.assertEqual(self.data(), kept)


if __name__ == "__main__":
    rig.main()
