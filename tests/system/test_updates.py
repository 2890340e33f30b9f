#!/usr/bin/env python3
"""Updates from a site on loopback: found, asked for, downloaded, and installed by the new program over the old one."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

import rig
import update_site

PAGE = "<p>Newest Release: 9.9.9 of 1 May</p>Upgradable Ax9.9.9-setup.exe Vx9.9.9-setup.exe"
NEW_PROGRAM = b"a later version"  # behind the end of an executable nothing minds it
NEW_TEXTS = "ENG\tmodTest\t1\ta later text\r\n".encode()
RELEASE = pathlib.Path(__file__).resolve().parents[2] / "script/release"
ABOUT = "^Korvalin - (About|Info)$"


class ProgramFolder:
    """A folder with programs of its own; what runs from it ends with it."""

    def __init__(self, *names):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="korvalin-program-"))
        for name in names or ("Korvalin.exe", "Korvalin.lng"):
            self.add(name)

    def add(self, name):
        source = rig.BIN / ("Korvalin.lng" if name.endswith(".lng") else "Korvalin.exe")
        shutil.copy(source, self.path / name)
        if "new" in name:
            (self.path / name).write_bytes(new_version(source))

    def running(self, name="Korvalin.exe"):
        """The processes of a program, also when its file was replaced since."""
        found = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                executable = os.readlink(process / "exe").removesuffix(" (deleted)")
            except OSError:
                continue
            if executable == f"{self.path}/{name}":
                found.append(int(process.name))
        return found

    def is_new(self, name="Korvalin.exe"):
        file = self.path / name
        return file.exists() and file.read_bytes().endswith(NEW_PROGRAM)

    def close(self):
        for name in ("Korvalin.exe", "Korvalin_new.exe"):
            for process in self.running(name):
                os.kill(process, signal.SIGKILL)
        shutil.rmtree(self.path)


def new_version(source):
    return source.read_bytes() + (NEW_TEXTS if source.suffix == ".lng" else NEW_PROGRAM)


class Updates(rig.DesktopCase):
    """The update site, and the steps that a user takes."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        folder = tempfile.TemporaryDirectory(prefix="korvalin-site-")
        cls.addClassCleanup(folder.cleanup)
        folder_of_updates = pathlib.Path(folder.name, "update")
        folder_of_updates.mkdir()
        cls.site = update_site.Site(folder.name)
        cls.addClassCleanup(cls.site.close)
        cls.update_address = f"http://127.0.0.1:{cls.site.ports[0]}/update/"
        (folder_of_updates / "update_general.html").write_text(PAGE)
        for name, program in (("setup.exe", "Korvalin.exe"), ("Korvalin.lng", "Korvalin.lng")):
            (folder_of_updates / name).write_bytes(new_version(rig.BIN / program))
        cls.start_patient()

    @classmethod
    def start_patient(cls):
        """A program that takes more than a minute until its first check: the other tests pass that time."""
        cls.patient = rig.Home()
        cls.addClassCleanup(cls.patient.__exit__)
        cls.patient.env["KORVALIN_UPDATE_SITE"] = cls.update_address
        other = rig.Display()
        cls.patient.env["DISPLAY"] = other.__enter__().name
        cls.addClassCleanup(other.__exit__)
        cls.patient.set(Language="ENG")
        cls.patient_folder = ProgramFolder()
        cls.addClassCleanup(cls.patient_folder.close)
        cls.patient_process = subprocess.Popen([cls.patient_folder.path / "Korvalin.exe"], env=cls.patient.env,
                                               stderr=subprocess.DEVNULL)
        cls.addClassCleanup(rig.ended, cls.patient_process)

    def setUp(self):
        super().setUp()
        self.home.env["KORVALIN_UPDATE_SITE"] = self.update_address
        self.site.requests.clear()
        self.site.given_up.clear()
        opener = self.home.path / "bin/xdg-open"
        opener.parent.mkdir()
        opener.write_text(f'#!/bin/sh\necho "$1" >> "{self.home.path}/opened"\n')
        opener.chmod(0o700)
        self.home.env["PATH"] = f"{opener.parent}:{os.environ['PATH']}"

    def program_folder(self, *names):
        folder = ProgramFolder(*names)
        self.addCleanup(folder.close)
        return folder

    def opened(self):
        file = self.home.path / "opened"
        return file.read_text().split() if file.exists() else []

    def open_about(self, key="a"):
        self.choose(self.main_window(), key)
        return rig.wait_for(lambda: self.display.window(ABOUT), "the about box")

    def answer(self, what, *keys):
        """Presses keys in the message box that comes up, until it is gone."""
        box = rig.wait_for(lambda: self.display.window("^Korvalin( - (Error|Fehler))?$"), what)
        self.picture(what)

        def gone():
            self.press(box, *keys)
            time.sleep(0.2)
            return box not in self.display.tool("xdotool", "search", "--onlyvisible", "--class", "korvalin").split()

        rig.wait_for(gone, f"the end of {what}")

    def wait_for_new_version(self, folder):
        rig.wait_for(lambda: folder.is_new() and folder.running() and not folder.running("Korvalin_new.exe"),
                     "the new version", seconds=40)
        self.assertTrue((folder.path / "Korvalin.lng").read_bytes().endswith(NEW_TEXTS))
        rig.wait_for(lambda: not (folder.path / "Korvalin_new.exe").exists(), "the end of the downloaded file")
        self.assertNotEqual(self.home.cli("settings", "get", "UpdateLast"), "")

    def test_the_about_box_finds_asks_downloads_and_lets_the_new_version_take_over(self):
        folder = self.program_folder()
        process = self.start(folder.path / "Korvalin.exe")
        about = self.open_about()
        self.press(about, "alt+u")
        self.answer("the question", "Return")
        self.answer("the notice", "Return")
        self.assertEqual(process.wait(timeout=20), 0)
        self.wait_for_new_version(folder)
        self.assertEqual((folder.path / "Korvalin_V1_0_0.exe").read_bytes(), (rig.BIN / "Korvalin.exe").read_bytes())
        self.assertEqual((folder.path / "KorvalinLng_V1_0_0.txt").read_bytes(), (rig.BIN / "Korvalin.lng").read_bytes())
        self.assertEqual(sorted(file.name for file in folder.path.iterdir()),
                         ["Korvalin.exe", "Korvalin.lng", "KorvalinLng_V1_0_0.txt", "Korvalin_V1_0_0.exe"])
        self.assertEqual(self.opened(), [self.update_address + "versions.html"])

    def begin_slow_download(self, folder):
        """The program, and its about box that shows the download."""
        self.site.slow.add("/update/setup.exe")
        self.addCleanup(self.site.slow.clear)
        process, about = self.start(folder.path / "Korvalin.exe", Language="GER"), self.open_about("i")
        self.press(about, "alt+a")
        self.answer("the question", "Return")
        rig.wait_for(lambda: "/update/setup.exe" in self.site.requests, "the download")
        self.picture("download")
        return process, about

    def check_nothing_came(self, folder):
        self.assertEqual(sorted(file.name for file in folder.path.iterdir()), ["Korvalin.exe", "Korvalin.lng"])

    def test_a_download_is_cancelled(self):
        folder = self.program_folder()
        process, about = self.begin_slow_download(folder)
        self.press(about, "alt+b")
        rig.wait_for(lambda: "/update/setup.exe" in self.site.given_up, "the end of the download")
        self.picture("cancelled")
        self.check_nothing_came(folder)
        self.assertNotIn("/update/Korvalin.lng", self.site.requests)
        self.assertIsNone(process.poll())

    def test_the_end_of_the_program_does_not_wait_for_a_download(self):
        folder = self.program_folder()
        process, _ = self.begin_slow_download(folder)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=2), 0)
        self.check_nothing_came(folder)

    def test_the_new_program_waits_for_the_old_one(self):
        folder = self.program_folder("Korvalin.exe", "Korvalin.lng", "KorvalinLng_new.lng")
        old = self.start(folder.path / "Korvalin.exe")
        self.main_window()
        folder.add("Korvalin_new.exe")
        new = self.start(folder.path / "Korvalin_new.exe")
        rig.wait_for(lambda: self.display.window("^Korvalin$"), "the message that it waits")
        self.assertFalse(folder.is_new())
        old.send_signal(signal.SIGTERM)
        self.assertEqual(new.wait(timeout=20), 0)
        self.wait_for_new_version(folder)

    def test_a_missing_language_file_is_fetched_at_the_start(self):
        folder = self.program_folder("Korvalin.exe")
        self.start(folder.path / "Korvalin.exe")
        self.answer("the question for the language file", "Return")
        self.main_window()
        self.assertTrue((folder.path / "Korvalin.lng").read_bytes().endswith(NEW_TEXTS))
        self.assertEqual(self.site.requests, ["/update/Korvalin.lng"])

    def sign(self, version, days):
        """Signs what is on the site; the program is told the key."""
        key = self.home.path / "key.pem"
        if not key.exists():
            subprocess.run(["openssl", "genpkey", "-algorithm", "ed25519", "-out", key], check=True, capture_output=True)
        public = subprocess.run(["openssl", "pkey", "-in", key, "-pubout", "-outform", "DER"], check=True,
                                capture_output=True).stdout[-32:]
        self.home.env["KORVALIN_UPDATE_KEY"] = public.hex()
        folder = self.site.folder / "update"
        subprocess.run([RELEASE, folder, version, key, str(days)], check=True)
        self.addCleanup((folder / "update.manifest").unlink, missing_ok=True)

    def test_a_signed_version_is_taken_and_an_old_or_a_forged_one_is_not(self):
        folder = self.program_folder()
        self.sign("9.9.9", days=1)
        process = self.start(folder.path / "Korvalin.exe")
        self.press(self.open_about(), "alt+u")
        self.answer("the question", "Return")
        self.answer("the notice", "Return")
        self.assertEqual(process.wait(timeout=40), 0)
        self.wait_for_new_version(folder)
        about = self.open_about()
        for version, days, why in (("0.9.0", 1, "older version"), ("9.9.9", 0, "has expired"), ("9.9.8", 1, "offered 9.9.9")):
            self.sign(version, days)
            self.home.cli("settings", "set", "UpdateNext", "2000-01-01")
            self.press(about, "alt+u")
            rig.wait_for(lambda: why in self.log(), why)
            self.picture(f"refused {version} {days}")
        self.assertFalse((folder.path / "Korvalin_new.exe").exists())

    def log(self):
        return "".join(file.read_text() for file in self.home.path.rglob("*_ErrorLog.txt"))

    def test_a_program_that_a_browser_has_dropped_is_not_run(self):
        folder = self.program_folder()
        folder.add("Korvalin_new.exe")
        (folder.path / "Korvalin_new.exe").chmod(0o644)
        self.start(folder.path / "Korvalin.exe")
        self.main_window()
        self.assertFalse(folder.is_new())
        self.assertIn("is not from an update", self.log())

    def test_a_new_program_that_ends_at_once_leaves_the_old_one(self):
        folder = self.program_folder()
        broken = folder.path / "Korvalin_new.exe"
        broken.write_bytes(b"#!/bin/false\n" + b"\n" * 200_000)
        broken.chmod(0o755)
        self.start(folder.path / "Korvalin.exe")
        rig.wait_for(lambda: self.display.window("^Korvalin$"), "the message", seconds=40)
        self.answer("the message that it was set aside", "Return")
        self.main_window()
        self.assertTrue((folder.path / "Korvalin_failed.exe").exists())

    def test_only_a_site_on_this_machine_can_be_named_from_outside(self):
        self.home.env["KORVALIN_UPDATE_SITE"] = self.update_address.replace("//", "//somebody@")
        folder = self.program_folder("Korvalin.exe")
        process = self.start(folder.path / "Korvalin.exe")
        self.answer("the question for the language file", "Return")  # and the one after it: nothing is fetched
        rig.wait_for(lambda: self.display.window("^Korvalin$") and self.answer("the next one", "Escape") or
                     process.poll() is not None, "the end")
        self.assertEqual(self.site.requests, [])

    def test_when_it_is_due_the_scheduled_check_updates_by_itself(self):
        folder = self.patient_folder
        rig.wait_for(lambda: self.patient_process.poll() is not None, "the scheduled check", seconds=120)
        self.assertEqual(self.patient_process.returncode, 0)
        self.home = self.patient
        self.wait_for_new_version(folder)
        self.assertTrue((folder.path / "Korvalin_V1_0_0.exe").exists())


if __name__ == "__main__":
    rig.main()
