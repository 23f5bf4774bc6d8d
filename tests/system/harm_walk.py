"""Add-ons that end the program, while all other events go on."""
import pathlib
import signal
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BIN, DAY, SOON, WorldTest, daily, handler_data, main, say  # noqa: E402

ADD_ON = BIN.parent / "tests/harness/addons/built/Harmful.so"


class Harm(WorldTest):
    def remember_harm(self, harm, when, **fields):
        add_ons = self.home / "home/.local/lib/kestrin/add-ons"
        add_ons.mkdir(parents=True)
        (add_ons / "Harmful.so").symlink_to(ADD_ON)
        bad = self.write_set("bad.kestrin", daily("Bad", when, handler_data(b"Harmful", harm), **fields))
        good = self.write_set("good.kestrin", daily("Good", when, say("Kettle.")))
        self.remember(*(good, bad) if harm == b"block" else (bad, good))
        return bad, good

    def ends_once(self, harm, why="Kestrin ended while it was being carried out"):
        """The deliverer wakes the application again, which tells and goes on."""
        soon = self.now() + SOON
        bad, good = self.remember_harm(harm, soon)
        self.hand_over(soon)
        alert = self.alert("Bad")
        self.assertIn('The handler "Harmful" did not come to its end with the event "Bad" of the event set '
                      f'"bad.kestrin": {why}.  It is not carried out again by itself.', alert.text)
        self.assertEqual(alert.buttons(), ["Open event", "Later", "Try again", "Ok"])
        alert.press("Ok")
        self.alert("Kettle.").press("Ok")
        self.gone(APPLICATION)
        self.assertEqual([self.saved_time(bad, "Bad"), self.saved_time(good, "Good")], [soon + DAY] * 2)
        self.assertEqual(self.when(), soon + DAY)
        self.assertFalse(list(self.home.glob("state/kestrin/recovered/*")), "nobody has edited anything")

    def test_a_crash_does_not_come_again(self):
        self.ends_once(b"crash")

    def test_an_exit_does_not_come_again(self):
        self.ends_once(b"exit")

    def test_an_action_that_blocks_does_not_come_again(self):
        self.ends_once(b"block", "it took more than one second, and Kestrin had to stop")
        self.assertIn("Add-ons may not block or take more than one second to deal with an event", self.errors())

    def test_a_program_that_was_stopped_has_not_blocked(self):
        soon = self.now() + SOON
        self.remember_harm(b"stop", soon)
        self.hand_over(soon)
        self.until(lambda: self.pid_of(APPLICATION), "the application")
        state = pathlib.Path(f"/proc/{self.pid_of(APPLICATION)}/stat")
        self.until(lambda: ") T " in state.read_text(), "the stop")
        stopped = time.monotonic()
        self.until(lambda: time.monotonic() > stopped + 1.5, "more than a second")
        self.kill(APPLICATION, signal.SIGCONT)
        self.alert("Kettle.").press("Ok")
        self.gone(APPLICATION)
        self.assertNotIn("Add-ons may not block", self.errors())

    def test_data_that_cannot_be_read_are_kept(self):
        self.are_kept(b"read")

    def test_data_that_cannot_be_shown_are_kept(self):
        self.are_kept(b"view", WindowOpen=1, TabShown=0)

    def are_kept(self, harm, **fields):
        due = self.now() - 100
        bad, good = self.remember_harm(harm, due, **fields)
        data = self.saved(bad)["Bad"]["HandlerData"]
        self.assertNotEqual(self.status(self.start()), 0)
        for _ in range(2):
            application = self.start()
            alert = self.alert("did not come to the end of reading")
            self.until(lambda: self.saved_time(good, "Good") == due + DAY, "what else is due")
            application.kill()
            self.gone(APPLICATION)
        application = self.start()
        self.alert("did not come to the end of reading").press("Try again")
        self.until(lambda: self.saved_time(bad, "Bad") == due + DAY, "the delivery on disk")
        saved = self.saved(bad)["Bad"]
        self.assertEqual((saved["HandlerName"], saved["HandlerData"]), ("Harmful", data))
        application.terminate()
        self.left(application)
        self.assertNotEqual(self.status(self.start()), 0, "read again")


if __name__ == "__main__":
    main()
