"""Events that come due while nothing but the deliverer runs."""
import pathlib
import signal
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, DAY, SOON, WorldTest, act_on, daily, main, run, say  # noqa: E402


class WakeUp(WorldTest):
    def setUp(self):
        super().setUp()
        # Far enough ahead for the application to start, hand over and leave before.
        self.soon = self.now() + SOON

    def test_shows_the_message_at_its_second_and_leaves(self):
        tea = self.remember_tea(self.soon)
        self.hand_over(self.soon)
        self.left(self.start("-background", DISPLAY=":9876"))  # one that is not there changes nothing
        alert = self.alert("Tea")
        self.assertGreaterEqual(self.now(), self.soon)
        self.assertEqual(alert.text, "Kestrin event:  Tea\n\nPut the kettle on.")
        self.assertEqual(alert.buttons(), ["Open event", "Later", "Ok"])
        alert.click("Ok")
        self.gone(APPLICATION)
        self.assertEqual((self.saved_time(tea), self.when()), (self.soon + DAY,) * 2)

    def test_acts_as_its_questions_are_answered(self):
        letter = self.write("letter.txt", "Dear Ada,\n")
        self.open_with("text/plain", "Letter Writer", f"echo \"$1\" > '{self.path('read')}'")
        marks = {name: f"echo ran >> '{self.path(name)}'" for name in ("Unasked", "Agreed", "Refused")}
        deeds = self.write_set("deeds.kestrin", daily("Letter", self.soon, act_on(letter, ask=True)), *(
            daily(name, self.soon, run(mark, ask=name != "Unasked")) for name, mark in marks.items()))
        self.remember(deeds)
        self.hand_over(self.soon)
        agreed, refused, reading = map(self.alert, ("Agreed", "Refused", "Letter\n"))
        self.assertEqual(agreed.text, "Kestrin event:  Agreed\n\nKestrin is about to execute a shell command: "
                         f"\"{marks['Agreed']}\".  Should the command be executed?")
        self.assertIn(f"\n\nKestrin is about to open the file \"{letter}\" with the application Letter Writer.",
                      reading.text)
        self.assertEqual(agreed.buttons(), ["Open event", "Later", "Cancel", "Ok"])
        self.until(lambda: self.read("Unasked") == "ran\n", "the command that nobody is asked about")
        self.assertEqual(self.read("Agreed") + self.read("read"), "")
        refused.press("Cancel")
        agreed.press("Ok")
        reading.press("Ok")
        self.gone(APPLICATION)
        self.until(lambda: self.read("read") == f"{letter}\n", "the opened letter")
        self.assertEqual([self.read(name) for name in marks], ["ran\n", "ran\n", ""])
        self.assertEqual({event["NextEventTime"] for event in self.saved(deeds).values()}, {self.soon + DAY})

    def test_delivers_whatever_else_is_broken(self):
        """What cannot be loaded is told in alerts, and none of them stands in the event's way."""
        sonnets = dict(HandlerName=b"Sonnets", data=b"\x01 any bytes \xfe", count=13)
        day = self.write_set("day.kestrin", daily("Foreign", self.soon + 7200, sonnets),
                             daily("Tea", self.soon, say("Put the kettle on.")),
                             daily("Clock", self.soon + 100 * DAY, say("It was ahead.")))
        foreign, missing = self.saved(day)["Foreign"], self.path("missing.kestrin")
        self.remember(day)
        self.hand_over(self.soon)
        self.remember(missing, day)
        broken = self.write("home/.local/lib/kestrin/add-ons/Broken.so", "no library")
        alerts = [self.alert(part) for part in ("Tea", broken, missing)]
        self.assertIn(f"load_add_on failed for {broken}: 0x00000008", alerts[1].text)
        self.assertEqual(alerts[2].text, f"Kestrin: Attempt to open event set {missing} failed.")
        for _ in range(2):  # two log-outs
            self.alert("Clock")
            self.kill(APPLICATION, signal.SIGTERM)
            self.gone(APPLICATION)
            self.start("-background")
        for part, button in ("Tea", "Ok"), ("Clock", "Ok"), (broken, "Continue"):
            self.alert(part).press(button)
        self.gone(APPLICATION)
        self.assertEqual([self.saved_time(day), self.saved_time(day, "Clock")], [self.soon + DAY] * 2)
        self.assertEqual(self.saved(day)["Foreign"], foreign)
        self.assertIn("missing", self.read("config/Kestrin/KestrinSettings.json"))  # for a day

    def test_without_a_display_runs_commands_and_puts_messages_off(self):
        day = self.write_set("day.kestrin", daily("Work", self.soon, run(f"echo ran > '{self.path('ran')}'")),
                             daily("Letter", self.soon, act_on(self.path("gone"))),
                             daily("Tea", self.soon, say("Put the kettle on.")))
        self.remember(day)
        self.hand_over(self.soon, screen=False)
        self.until(lambda: self.read("ran"), "the command")
        self.gone(APPLICATION)
        self.assertEqual((self.saved_time(day, "Work"), self.saved_time(day)), (self.soon + DAY, self.soon))
        self.assertTrue(self.soon + 60 <= self.when() <= self.now() + 60, self.when())
        self.assertIn("kestrin: no display: what needs a window stays due for another minute\n", self.errors())
        self.start("-background")
        for part in "unable to locate the file", "Tea":  # as soon as there is one
            self.alert(part).press("Ok")
        self.gone(APPLICATION)


if __name__ == "__main__":
    main()
