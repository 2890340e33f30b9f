#!/usr/bin/env python3
"""Updates from a site on loopback: found, asked for, downloaded, and installed by the new program over the old one."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile

import rig
import update_site

PAGE = "<p>Newest Release: 9.9.9 of 1 May</p>Upgradable Ax9.9.9-setup.exe Vx9.9.9-setup.exe"
NEW_PROGRAM = b"a later version"  # behind the end of an executable nothing minds it
NEW_TEXTS = "ENG\tmodTest\t1\ta later text\r\n".encode()
# Takes the lock of its name as a program does, and dies before it could say that it is ready.
DIES = """#!/usr/bin/env python3
import fcntl, os, struct, time
lock = open(os.environ["XDG_CONFIG_HOME"] + "/korvalin/instance-Korvalin_new.exe.lock", "w")
fcntl.fcntl(lock, fcntl.F_OFD_SETLK, struct.pack("hhqqiI", fcntl.F_WRLCK, os.SEEK_SET, 1, 1, 0, 0))
time.sleep(1)
os.abort()
""" + "#" * 200_000
BOX = "^Korvalin( - (Error|Fehler))?$"


class ProgramFolder:
    """A folder with programs of its own; what runs from it ends with it."""

    def __init__(self, *names):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="korvalin-program-"))
        for name in names:
            shutil.copy(rig.BIN / name, self.path / name)
        self.program = self.path / "Korvalin.exe"

    def running(self):
        """The processes by their programs' names, also when a file was replaced since."""
        found = rig.run("pgrep", "-af", f"^{self.path}/", check=False).stdout.splitlines()
        return {pathlib.Path(line.split()[1]).name: int(line.split()[0]) for line in found}

    def names(self):
        return {file.name for file in self.path.iterdir()}

    def close(self):
        for process in self.running().values():
            os.kill(process, signal.SIGKILL)
        shutil.rmtree(self.path)


class Updates(rig.DesktopCase):
    """The update site, and the steps that a user takes."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="korvalin-site-")))
        cls.files = folder / "update"
        cls.files.mkdir()
        (cls.files / "update_general.html").write_text(PAGE)
        for name, source, end in (("setup.exe", "Korvalin.exe", NEW_PROGRAM), ("Korvalin.lng", "Korvalin.lng", NEW_TEXTS)):
            (cls.files / name).write_bytes((rig.BIN / source).read_bytes() + end)
        cls.site = update_site.Site(folder)
        cls.addClassCleanup(cls.site.close)
        cls.address = f"http://127.0.0.1:{cls.site.ports[0]}/update/"
        cls.start_patient()

    @classmethod
    def start_patient(cls):
        """A program that takes more than a minute until its first check: the other tests pass that time."""
        cls.patient, cls.patient_folder = cls.enterClassContext(rig.Home()), ProgramFolder("Korvalin.exe", "Korvalin.lng")
        cls.addClassCleanup(cls.patient_folder.close)
        cls.patient.env.update(KORVALIN_UPDATE_SITE=cls.address, QT_QPA_PLATFORM="offscreen")
        cls.patient.set(Language="ENG")
        cls.patient_process = subprocess.Popen([cls.patient_folder.program], env=cls.patient.env, stderr=subprocess.DEVNULL)
        cls.addClassCleanup(rig.ended, cls.patient_process)

    def setUp(self):
        super().setUp()
        self.home.env["KORVALIN_UPDATE_SITE"] = self.address
        opener = self.home.path / "bin/xdg-open"
        opener.parent.mkdir()
        opener.write_text(f'#!/bin/sh\necho "$1" >> "{self.home.path}/opened"\n')
        opener.chmod(0o700)
        self.home.env["PATH"] = f"{opener.parent}:{os.environ['PATH']}"

    def folder(self, *names):
        folder = ProgramFolder(*names)
        self.addCleanup(folder.close)
        return folder

    def open_about(self, key="a"):
        self.choose(self.main_window(), key)
        return self.titled("^Korvalin - (About|Info)$")

    def wait_for_new_version(self, folder, home):
        rig.wait_for(lambda: "Korvalin_new.exe" not in folder.names() and folder.running().keys() == {"Korvalin.exe"},
                     "the new version", seconds=40)
        for name, end, kept in (("Korvalin.exe", NEW_PROGRAM, "Korvalin_V1_0_0.exe"),
                                ("Korvalin.lng", NEW_TEXTS, "KorvalinLng_V1_0_0.txt")):
            old = (rig.BIN / name).read_bytes()
            self.assertEqual([(folder.path / file).read_bytes() for file in (name, kept)], [old + end, old])
        self.assertNotEqual(home.get("UpdateLast"), "")

    def sign(self, version, days, program="setup.exe"):
        """Signs what is on the site; the program is told the key."""
        key, public = self.home.path / "key.pem", self.home.path / "public"
        if not key.exists():
            rig.run("openssl", "genpkey", "-algorithm", "ed25519", "-out", key)
            rig.run("openssl", "pkey", "-in", key, "-pubout", "-outform", "DER", "-out", public)
        self.home.env["KORVALIN_UPDATE_KEY"] = public.read_bytes()[-32:].hex()
        rig.run(rig.ROOT / "script/release", self.files, version, program, key, "--days", days)
        self.addCleanup((self.files / "update.manifest").unlink, missing_ok=True)

    def log(self):
        return "".join(file.read_text() for file in self.home.path.rglob("*_ErrorLog.txt"))

    def test_the_about_box_lets_a_signed_version_take_over_and_none_that_dies_is_old_or_has_expired(self):
        folder = self.folder("Korvalin.exe", "Korvalin.lng")
        (self.files / "dies.exe").write_text(DIES)
        self.sign("9.9.9", days=1, program="dies.exe")
        process = self.start(folder.program)
        about = self.open_about()
        for program in ("dies.exe", "setup.exe"):
            self.sign("9.9.9", days=1, program=program)
            self.home.set(UpdateNext="2000-01-01")
            self.press(about, "alt+u")
            for _ in ("the question", "the notice"):
                self.answer(BOX, "Return")
            rig.wait_for(lambda: "cannot be started" in self.log(), "the end of what died")
        self.assertEqual(process.wait(timeout=40), 0)
        self.wait_for_new_version(folder, self.home)
        self.assertEqual((self.home.path / "opened").read_text().split(), [self.address + "versions.html"] * 2)
        about = self.open_about()
        for version, days, why in (("0.9.0", 1, "older version"), ("9.9.9", 0, "has expired"), ("9.9.8", 1, "offered 9.9.9")):
            self.sign(version, days)
            self.home.set(UpdateNext="2000-01-01")
            self.press(about, "alt+u")
            rig.wait_for(lambda: why in self.log(), why)
        self.assertNotIn("Korvalin_new.exe", folder.names())

    def test_the_end_of_the_program_does_not_wait_for_a_download(self):
        folder = self.folder("Korvalin.exe", "Korvalin.lng")
        self.site.slow.add("/update/setup.exe")
        self.addCleanup(self.site.slow.clear)
        self.site.requests.clear()
        process = self.start(folder.program, Language="GER")
        self.press(self.open_about("i"), "alt+a")
        self.answer(BOX, "Return")
        rig.wait_for(lambda: "/update/setup.exe" in self.site.requests, "the download")
        self.assertEqual(self.end(process, seconds=2), 0)
        self.assertEqual(folder.names(), {"Korvalin.exe", "Korvalin.lng"})

    def test_a_missing_language_file_is_fetched_at_the_start_from_this_machine_only(self):
        for address, fetched in ((self.address, ["/update/Korvalin.lng"]), (self.address.replace("//", "//somebody@"), [])):
            with self.subTest(address):
                folder = self.folder("Korvalin.exe")
                self.home.env["KORVALIN_UPDATE_SITE"] = address
                self.site.requests.clear()
                process = self.start(folder.program)
                self.answer(BOX, "Return")
                if fetched:
                    self.main_window()
                    self.assertTrue((folder.path / "Korvalin.lng").read_bytes().endswith(NEW_TEXTS))
                    rig.ended(process)
                else:
                    rig.wait_for(lambda: process.poll() is not None or
                                 self.display.window(BOX) and self.answer(BOX, "Escape"), "the end")
                self.assertEqual(self.site.requests, fetched)

    def test_when_it_is_due_the_scheduled_check_updates_by_itself(self):
        self.assertEqual(self.patient_process.wait(timeout=120), 0)
        self.wait_for_new_version(self.patient_folder, self.patient)


if __name__ == "__main__":
    rig.main()
