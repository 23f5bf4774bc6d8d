"""Whether a reminder would come: each link of the way is broken in turn, and mended as it is told."""
import pathlib
import re
import shutil
import signal
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BIN, DELIVERER, WorldTest, main, os  # noqa: E402

PROGRAMS = ["kestrin", "KestrinBackground", "KestrinProbe", "kestrinctl"]
LOGIN = "config/autostart/vnd.ZR.Kestrin.Background.desktop"
NEXT_EVENT = 0x53657445
PASSES = "A reminder would reach you.\n"


class Status(WorldTest):
    def setUp(self):
        super().setUp()
        (self.home / "programs").mkdir()
        for program in PROGRAMS:
            shutil.copy2(BIN / program, self.home / "programs")
        self.environment["XDG_CONFIG_DIRS"] = self.path("xdg")
        self.due = self.now() + 3600
        self.tea = self.remember_tea(self.due)
        self.write(LOGIN, f"[Desktop Entry]\nType=Application\nExec={self.path('programs/kestrin')} -background\n")

    def ask(self, **variables):
        """What it says, and by the names of the broken links the commands that mend them."""
        done = subprocess.run([self.home / "programs/kestrinctl", "status"], env=self.environment | variables,
                              stdout=subprocess.PIPE, stderr=self.log, text=True, check=False)
        broken = dict(part.strip().split(". This mends it:\n") for part in done.stdout.split("Broken: ")[1:])
        self.assertEqual((done.returncode, done.stdout.endswith(PASSES)), (1, False) if broken else (0, True), done.stdout)
        return done.stdout, broken

    def holds(self):
        said, broken = self.ask()
        self.assertEqual(broken, {}, said)
        return said

    def breaks(self, link, reason):
        """That link alone. What is to be done about it."""
        said, broken = self.ask()
        self.assertEqual(list(broken), [link], said)
        line = next(line for line in said.splitlines() if line.startswith(link))
        self.assertRegex(line, f"^{link} +BROKEN +.*{reason}")
        return broken[link]

    def mend(self, command):
        self.left(subprocess.Popen(command, shell=True, stderr=self.log,
                                   env=self.environment | {"DISPLAY": os.environ["DISPLAY"]}))

    def start_background(self, screen=True):
        self.left(self.start("-background", program=self.path("programs/kestrin"), screen=screen))

    def test_a_display_is_known_once_somebody_has_started_it_there(self):
        self.start_background(screen=False)
        self.mend(self.breaks("Display", "the bus knows none"))
        self.assertIn("DISPLAY=" + os.environ["DISPLAY"], self.holds())
        told = self.read("run/kestrin/display").replace(os.environ["DISPLAY"], ":4711")
        self.write("run/kestrin/display", told)
        self.mend(self.breaks("Display", ":4711 cannot be reached"))
        self.write("run/kestrin/display", "of another bus\nDISPLAY=:0\n")
        self.breaks("Display", "the bus knows none")

    def test_every_link_of_the_way_can_break_and_be_mended(self):
        self.start_background()
        self.assertRegex(self.holds(), f'Comes next +ok +"Tea" \\({self.tea}\\)')

        def end_deliverer():
            self.kill(DELIVERER, signal.SIGTERM)
            self.gone(DELIVERER)

        def wake_in_vain():
            os.rename(application, application.with_name("away"))
            shutil.copy2("/bin/true", application)
            self.post(NEXT_EVENT, f"'When': <{self.now() - 100}>")

        application = self.home / "programs/kestrin"
        entry = self.read(LOGIN)
        for link, reason, harm in [
                ("Deliverer runs", "it does not", end_deliverer),
                ("Time it waits for", "nothing, although there comes \"Tea\"", lambda: self.post(NEXT_EVENT)),
                ("Time it waits for", "and has not woken kestrin", wake_in_vain),
                ("Time it waits for", "does not answer", lambda: self.kill(DELIVERER, signal.SIGSTOP)),
                ("Start at login", "there is none", lambda: os.unlink(self.home / LOGIN)),
                ("Start at login", "is switched off", lambda: self.write(LOGIN, entry + "Hidden=true\n")),
                ("Start at login", "/nowhere, which is gone", lambda: self.write(
                    LOGIN, entry.replace(self.path("programs/kestrin"), "/nowhere")))]:
            with self.subTest(link + ": " + reason):
                harm()
                command = self.breaks(link, reason)
                if harm == wake_in_vain:
                    os.rename(application.with_name("away"), application)
                self.mend(command)
                self.holds()

        for link, reason, file, mended_by in [
                ("Deliverer found", "programs/KestrinBackground is gone", "programs/KestrinBackground", "cmake --install"),
                ("Application", "programs/kestrin is gone", "programs/kestrin", "cmake --install"),
                ("Session bus", "cannot be started", "programs/KestrinProbe", "cmake --install"),
                ("Sets that deliver", "day.kestrin: ", "day.kestrin", "kestrinctl check")]:
            with self.subTest(link + ": " + file):
                os.rename(self.home / file, self.home / "hidden")
                entries = self.read(LOGIN)
                if file == "programs/kestrin":
                    self.write(LOGIN, entries.replace(self.path(file), "/bin/true"))
                self.assertIn(mended_by, self.breaks(link, reason))
                self.write(LOGIN, entries)
                os.rename(self.home / "hidden", self.home / file)
                self.holds()

        for reason, sets, choices in [("none is remembered", [], {}),
                                      ("none, so say the settings", [self.tea], {"WhichEventsToDeliver": 4}),
                                      ("only sets that are shown", [self.tea], {"WhichEventsToDeliver": 0})]:
            self.remember(*sets, **choices)
            self.breaks("Sets that deliver", reason)
        self.write("config/Kestrin/KestrinSettings.json", "no settings")
        self.breaks("Sets that deliver", "the settings cannot be read")
        said, broken = self.ask(DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere")
        self.assertIn("Session bus", broken, said)
        self.assertFalse(self.pid_of(APPLICATION))

    def test_the_settings_window_shows_the_same_and_lets_one_come(self):
        application = self.start(self.tea, program=self.path("programs/kestrin"))
        self.until(lambda: re.search("Application +ok +the bus starts.*", self.ask()[0]), "the files for the bus")
        said = [re.split("  +", line.strip()) for line in self.holds().splitlines()[2:-2]]
        self.keys("day.kestrin", "alt+f", "t")
        self.keys("Kestrin settings", "alt+e")
        window = "Test reminders"

        def texts():
            return [node.get_name() for node in self.controls(window)]
        self.until(lambda: "A reminder would reach you." in texts(), "the verdict")
        self.assertEqual([text for line in said for text in (line[1], line[0], line[2])], [
            text for text in texts()[2:-3] if text])
        os.unlink(self.home / LOGIN)
        self.keys(window, "alt+l")
        self.until(lambda: any("This mends it:  mkdir -p" in text for text in texts()), "what mends the broken link")
        self.keys(window, "alt+r")
        self.until(lambda: self.now() < self.when() < self.due, "an earlier time with the deliverer")
        self.keys("day.kestrin", "ctrl+q")
        self.left(application)
        self.alert("This reminder came through the deliverer.").press("Ok")
        self.gone(APPLICATION)
        self.assertEqual(self.when(), self.due)


if __name__ == "__main__":
    main()
