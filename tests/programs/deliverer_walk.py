"""The background deliverer itself, on a bus of the test's own."""
import pathlib
import shutil
import signal
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BIN, DELIVERER, SOON, BusTest, Gio, GLib, main  # noqa: E402

SET_EVENT, DELIVER, QUIT = 0x53657445, 0x44656C45, 0x5F515251
LATER = 1893456000
KEPT = "run/kestrin/next-event"
ERROR = "vnd.ZR.Kestrin.Error."
MESSAGES = Gio.DBusNodeInfo.new_for_xml(
    '<node><interface name="vnd.ZR.Kestrin.Messages"><method name="Post"><arg type="u" direction="in"/>'
    '<arg type="a{sv}" direction="in"/></method></interface></node>').interfaces[0]


class Deliverer(BusTest):
    def begin(self, *arguments, program="KestrinBackground", **variables):
        process = self.start(*arguments, screen=False, program=program, **variables)
        self.until(lambda: self.pid_of(DELIVERER), "the deliverer's name")
        return process

    def set_when(self, when, more=""):
        return self.post(SET_EVENT, f"'When': <{when}>{more}")

    def play_application(self):
        """Takes the application's name; `self.taken` gets code, fields and moment of what is posted to it."""
        self.taken = []

        def on_call(_connection, _sender, _path, _interface, _method, message, call):
            self.taken.append((*message.unpack(), time.time()))
            call.return_value(None)
        self.place = self.bus.register_object("/vnd/ZR/Kestrin", MESSAGES, on_call, None, None)
        self.name_call("RequestName", GLib.Variant("(su)", (APPLICATION, 0)))

    def vanish(self):
        self.name_call("ReleaseName", GLib.Variant("(s)", (APPLICATION,)))
        self.bus.unregister_object(self.place)

    def name_call(self, member, arguments):
        self.ask_bus("org.freedesktop.DBus", "/", "org.freedesktop.DBus", member, arguments)

    def wake_up(self):
        self.until(lambda: self.taken, "a wake-up")
        return self.taken.pop(0)

    def test_sets_replaces_and_clears_the_time(self):
        announced = []
        self.bus.signal_subscribe(None, "org.freedesktop.DBus.Properties", "PropertiesChanged", None, None,
                                  Gio.DBusSignalFlags.NONE,
                                  lambda *signal: announced.append(signal[5].unpack()[1]["When"]))
        self.begin()
        self.assertEqual(self.when(), 0)
        for fields, when in ((f"'When': <{LATER}>", LATER),
                             (f"'Why': <'3'>, 'When': <{LATER + 1}>, 'Zeal': <int64 9>", LATER + 1),
                             ("'why': <true>", 0)):
            self.assertEqual(self.post(SET_EVENT, fields), "")
            self.assertEqual((self.when(), self.read(KEPT)), (when, f"{when}\n"))
        self.until(lambda: len(announced) == 3, "what is announced")
        self.assertEqual(announced, [LATER, LATER + 1, 0])

    def test_refuses_foreign_codes_and_fields_of_another_type(self):
        self.begin()
        self.set_when(LATER)
        for code in 0, 1, 6, 7, DELIVER, 0x53706864, 0x73657445:
            self.assertEqual(self.post(code, "'When': <5>"), ERROR + "UnknownMessage", code)
        for value in "uint32 1", "int64 1", "true", "'1'":
            for fields in f"'When': <{value}>", f"'When': <5>, 'Since': <{value}>":
                self.assertEqual(self.post(SET_EVENT, fields), ERROR + "BadField", fields)
        self.assertEqual((self.when(), self.read(KEPT)), (LATER, f"{LATER}\n"))

    def test_wakes_a_running_application_at_the_second_and_for_a_past_time_at_once(self):
        self.begin()
        self.play_application()
        for ahead in 2, 0, -3600, -self.now() - 5:
            when = self.now() + ahead
            self.set_when(when)
            code, _, moment = self.wake_up()
            self.assertEqual(code, DELIVER)
            self.assertGreaterEqual(moment, when)
            self.assertEqual(self.when(), when, "stands until the application has told its next event")

    def test_starts_the_application_beside_itself_when_the_bus_cannot(self):
        shutil.copy(BIN / "KestrinBackground", self.home / "KestrinBackground")
        # Tells its arguments, whether it leads a session, blocked signals, whether SIGPIPE is ignored.
        self.write("kestrin", "#!/bin/sh\nset -- \"$# $*\" $(cut -d' ' -f6 /proc/$$/stat) $(grep -E 'SigBlk|SigIgn' "
                   f"/proc/$$/status)\necho \"$1 $(($2 == $$)) $4 $((0x$6 & 0x1000))\" > {self.path('told')}\n", 0o700)
        # Knows a file for the application, but that file has gone.
        self.write("data/dbus-1/services/a.service", f"[D-BUS Service]\nName={APPLICATION}\nExec=/nonexistent/kestrin\n")
        self.name_call("ReloadConfig", None)
        self.begin(program=self.home / "KestrinBackground")
        self.set_when(1)
        self.until(lambda: self.read("told").endswith("\n"), "the application")
        self.assertEqual(self.read("told"), "1 -background 1 0000000000000000 0\n")

    def test_tries_again_when_the_application_vanishes(self):
        self.begin()
        self.play_application()
        self.set_when(1)
        self.wake_up()
        self.vanish()
        vanished = time.time()
        self.play_application()
        code, _, moment = self.wake_up()
        self.assertEqual(code, DELIVER)
        self.assertGreaterEqual(moment - vanished, 0.99)
        self.assertIn("try 1, next in 1 s", self.errors())

    def test_a_killed_one_still_knows_its_time_and_without_it_wakes_the_application_once(self):
        process = self.begin()
        self.set_when(LATER)
        process.kill()
        self.gone(DELIVERER)
        process = self.begin()
        self.assertEqual(self.when(), LATER)
        for damaged in True, False:
            process.terminate()
            self.left(process)
            self.gone(DELIVERER)
            self.write(KEPT, "tomorrow\n") if damaged else (self.home / KEPT).unlink()
            process = self.begin()
            self.assertEqual(self.when(), 0)
            self.assertEqual(self.errors().count("the kept time is damaged and is ignored\n"), 1)
            self.play_application()
            self.wake_up()
            self.vanish()

    def test_a_moment_that_cannot_be_kept_is_not_acknowledged(self):
        self.begin()
        self.set_when(LATER)
        (self.home / (KEPT + ".new") / "in the way").mkdir(parents=True)
        self.assertEqual(self.set_when(LATER), "", "unchanged, it needs no writing")
        self.assertEqual(self.set_when(LATER + 1), ERROR + "NotKept")
        self.assertEqual(self.when(), LATER + 1)

    def test_says_how_late_it_is(self):
        """Stopped over the second, like a machine that slept."""
        self.begin()
        self.play_application()
        when = self.now() + SOON // 4
        self.set_when(when)
        self.kill(DELIVERER, signal.SIGSTOP)
        self.until(lambda: time.time() >= when + 2, "the time")
        self.kill(DELIVERER, signal.SIGCONT)
        _, fields, moment = self.wake_up()
        self.assertTrue(2 <= fields["Late"] <= moment - when)
        soon = self.now() + 1
        self.set_when(soon, f", 'Since': <{soon - 70}>")
        self.assertGreaterEqual(self.wake_up()[1]["Late"], 70, "what waits for a screen")
        self.set_when(self.now() + 1)
        self.assertLess(self.wake_up()[1].get("Late", 0), 10, "and waits no longer")

    def test_works_without_a_runtime_folder(self):
        self.begin(XDG_RUNTIME_DIR="")
        self.assertEqual(self.set_when(LATER), "")
        self.assertEqual(self.when(), LATER)
        self.assertIn("XDG_RUNTIME_DIR", self.errors())

    def test_a_second_one_leaves_quietly(self):
        self.begin()
        self.set_when(LATER)
        before = self.errors()
        self.left(self.start(screen=False, program="KestrinBackground"))
        self.assertEqual((self.when(), self.errors()), (LATER, before))

    def test_ends_when_told_to_and_forgets_only_when_asked_to_quit(self):
        ways = ((lambda: self.post(QUIT, "'Full': <true>"), "0\n"),
                (lambda: self.kill(DELIVERER, signal.SIGTERM), f"{LATER}\n"),
                (lambda: self.kill(DELIVERER, signal.SIGINT), f"{LATER}\n"),
                (self.daemon.terminate, f"{LATER}\n"))
        for end, kept in ways:
            process, before = self.begin(), self.errors()
            self.set_when(LATER)
            end()
            self.left(process)
            self.assertEqual((self.read(KEPT), self.errors()), (kept, before))

    def test_a_changed_zone_wakes_the_application(self):
        self.write("zone/hostname", "a file")
        self.begin(self.path("zone"), program="background_elsewhere")
        self.play_application()
        self.set_when(LATER)
        self.write("zone/hostname", "another file")
        changed = time.time()
        for name in "Europe/Berlin", "Asia/Tokyo":
            (self.home / "zone/localtime.new").symlink_to(f"/usr/share/zoneinfo/{name}")
            (self.home / "zone/localtime.new").rename(self.home / "zone/localtime")
        self.assertGreaterEqual(self.wake_up()[2] - changed, 0.99)
        self.assertEqual((self.taken, self.when()), ([], LATER))

    def test_says_in_one_line_why_it_cannot_start(self):
        cases = (["--nonsense"], {}, '"--nonsense"'), ([""], {}, '""'), (
            [], {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.path('none')}"}, "session bus")
        for arguments, variables, reason in cases:
            before = self.errors()
            process = self.start(*arguments, screen=False, program="KestrinBackground", **variables)
            self.assertEqual(self.status(process), 1)
            said = self.errors().removeprefix(before)
            self.assertIn(reason, said)
            self.assertEqual(said.count("\n"), 1)


if __name__ == "__main__":
    main()
