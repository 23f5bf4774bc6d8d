"""Processes that end in the wrong moment."""
import os
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BUS, DAY, WorldTest, daily, main, run, say  # noqa: E402

WAITING_FOR_PREWARNING, WAITING_FOR_EVENT = 0, 1
MINUTES = 4


class Loss(WorldTest):
    def test_a_killed_application_shows_its_alert_again_and_delivers_once(self):
        soon, done = self.now() + 4, self.path("done")
        day = self.write_set("day.kestrin", daily("Tea", soon, say("Put the kettle on.")),
                             daily("Count", soon, run(f"echo once >> {done}")))
        self.remember(day)
        self.hand_over(soon)
        alert = self.alert("Tea")
        self.until(lambda: self.read("done"), "the command")
        self.kill(APPLICATION)
        self.gone(APPLICATION)

        application = self.start()
        again = self.alert("Tea")
        self.assertEqual(again.text, alert.text)
        again.press("Ok")
        self.until(lambda: self.saved_time(day) == soon + DAY, "the delivery on disk")
        application.kill()
        self.gone(APPLICATION)

        self.start()
        self.window("day.kestrin")
        self.assertEqual((self.alerts(), self.read("done")), ([], "once\n"))

    def test_an_alert_outlives_the_end_of_the_session(self):
        due = self.now() + 3600
        day = self.write_set("day.kestrin", daily(
            "Tea", due, say("Kettle."), Status=WAITING_FOR_PREWARNING, NextEventTime=due - 3600, ApplyPrewarn=1,
            PrewarnType=MINUTES, PrewarnTime=60, ApplyPrewarnRepeat=1, PrewarnRepeatType=MINUTES,
            PrewarnRepeatTime=10, PrewarnMessage=b"Buy some."))
        self.remember(day)
        application = self.start()
        alert = self.alert("Buy some.")
        self.assertEqual(alert.buttons(), ["Open event", "Later", "No more prewarnings", "OK"])
        application.terminate()
        self.left(application)
        self.assertEqual(self.saved(day)["Tea"]["Status"], WAITING_FOR_PREWARNING)

        self.start()
        again = self.alert("Buy some.")
        self.assertEqual(again.text, alert.text)
        again.press("No more prewarnings")
        self.until(lambda: self.saved(day)["Tea"]["Status"] == WAITING_FOR_EVENT, "the end of the prewarnings")
        self.assertEqual((self.saved_time(day), self.when()), (due, due))


class TwoSessions(WorldTest):
    def second_session(self):
        """What tells a process of the same person in another session where it is."""
        config = self.write("bus2.conf", BUS.format(self.home).replace("/bus<", "/bus2<"))
        os.mkdir(self.home / "run2", 0o700)
        daemon = subprocess.Popen(["dbus-daemon", f"--config-file={config}", "--nofork", "--print-address"],
                                  env=self.environment, stdout=subprocess.PIPE, stderr=self.log, text=True)
        with daemon.stdout as output:
            return {"DBUS_SESSION_BUS_ADDRESS": output.readline().strip(),
                    "XDG_RUNTIME_DIR": self.path("run2")}

    def test_never_fork_a_set_and_run_a_command_once(self):
        soon, done, folder = self.now() + 5, self.path("done"), self.home / "sets"
        day = self.write_set("sets/day.kestrin", *(
            daily(f"Tea {n}", soon + n, run(f"echo {n} >> '{done}'")) for n in range(4)))
        self.remember(day)
        sessions = [self.start(), self.start(**self.second_session())]
        self.until(lambda: len(self.read("done").split()) >= 4, "all commands")
        self.until(lambda: all(self.saved_time(day, f"Tea {n}") == soon + n + DAY for n in range(4)),
                   "the deliveries on disk")
        for session in sessions:
            session.terminate()
            self.left(session)
        self.assertEqual(sorted(self.read("done").split()), ["0", "1", "2", "3"])
        self.assertEqual([each.name for each in folder.iterdir()], ["day.kestrin"])
        self.assertEqual([self.saved_time(day, f"Tea {n}") for n in range(4)],
                         [soon + n + DAY for n in range(4)])


if __name__ == "__main__":
    main()
