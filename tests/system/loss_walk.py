"""Processes that end in the wrong moment."""
import os
import pathlib
import signal
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BUS, DAY, SOON, WorldTest, daily, main, run, say  # noqa: E402


class Loss(WorldTest):
    def test_a_killed_application_shows_its_alert_again_and_delivers_once(self):
        soon, done = self.now() + SOON, self.path("done")
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

    def test_a_forced_end_loses_no_command_and_repeats_none(self):
        soon, done, all_of_them = self.now() + SOON, self.path("done"), range(40)
        self.remember(self.write_set("day.kestrin", *(
            daily(f"Tea {n}", soon, run(f"echo {n} >> '{done}'")) for n in all_of_them)))
        self.hand_over(soon)
        self.until(lambda: self.read("done"), "the first command")
        self.kill(APPLICATION, signal.SIGTERM)
        self.gone(APPLICATION)
        self.left(self.start("-background"))
        self.assertEqual(sorted(map(int, self.read("done").split())), list(all_of_them))


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
        soon, done, folder = self.now() + SOON, self.path("done"), self.home / "sets"
        day = self.write_set("sets/day.kestrin", *(
            daily(f"Tea {n}", soon + n, run(f"echo {n} >> '{done}'")) for n in range(4)))
        self.remember(day)
        sessions = [self.start(), self.start(**self.second_session())]
        self.until(lambda: len(self.read("done").split()) >= 4, "all commands")
        self.until(lambda: all(self.saved_time(day, f"Tea {n}") == soon + n + DAY for n in range(4)),
                   "the deliveries on disk")
        added = self.now() + 3
        os.replace(self.write_set("new.kestrin", daily("Cake", added, run(f"echo 4 >> '{done}'"))), day)
        self.until(lambda: self.saved_time(day, "Cake") == added + DAY, "what somebody else has added")
        self.assertEqual(self.read("done").split().count("4"), 1)
        for session in sessions:
            session.terminate()
            self.left(session)
        self.assertEqual(sorted(self.read("done").split()), ["0", "1", "2", "3", "4"])
        self.assertEqual([each.name for each in folder.iterdir()], ["day.kestrin"])


if __name__ == "__main__":
    main()
