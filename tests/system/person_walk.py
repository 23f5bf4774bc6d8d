"""A person in front of the program: mouse, keyboard, and nothing set up beforehand."""
import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, DAY, SOON, Atspi, WorldTest, daily, main, run, say  # noqa: E402


class Person(WorldTest):
    def test_makes_a_set_is_reminded_puts_it_off_and_finds_all_of_it_in_the_history(self):
        application = self.start()
        self.press("Untitled event set 1", "New event")
        editor = "Untitled – Event (set Untitled event set 1)"
        self.in_front(editor)
        self.has_focus(editor, "Name:")
        self.type("Tea\n")
        self.focus("Tea – Event", "Message", "text")
        self.type("Put the kettle on.")

        self.keys("Untitled event set 1", "ctrl+s")
        box = self.control("Save event set", "Remember for delivery", "check box")
        self.assertTrue(box.get_state_set().contains(Atspi.StateType.CHECKED))
        self.keys("Save event set", "ctrl+a")
        self.type(self.path("home/Day\n"))
        editor = "Tea – Event (set Day.kestrin)"
        self.in_front(editor)
        self.keys(editor, "ctrl+Next")
        self.focus(editor, "Date", "text")
        when = self.now() + 2 * SOON
        self.keys(editor, "ctrl+a")
        self.type(time.strftime("%Y-%m-%d %H:%M:%S\n", time.gmtime(when)))
        self.keys("Day.kestrin", "ctrl+s")
        day = self.path("home/Day.kestrin")
        self.until(lambda: self.saved_time(day) == when, "the saved date")
        self.keys("Day.kestrin", "ctrl+w")
        self.left(application)
        self.assertEqual(self.when(), when)

        alert = self.alert("Tea")
        self.assertGreaterEqual(self.now(), when)
        self.assertEqual(alert.text, "Kestrin event:  Tea\n\nPut the kettle on.")
        self.start()
        self.window("Day.kestrin")
        title = "Tea – Kestrin"
        self.alert_keys(title, "alt+l", lambda: self.x_windows("kestrin"))  # the menu has no name of its own
        self.xdotool("key", "o")
        self.has_focus(title, "Remind me again")
        self.type("in 8 seconds")
        self.until(lambda: any(node.get_name().startswith("Comes back today, ") for node in self.controls(title)),
                   "how it was understood")
        self.type("\n")
        alert.closed()
        again = self.until(lambda: self.when() > when and self.when(), "the time of the return")
        self.kill(APPLICATION)
        self.gone(APPLICATION)

        alert = self.alert("Tea")
        self.assertGreaterEqual(self.now(), again)
        self.assertEqual(alert.text, "Kestrin event:  Tea\n\nPut the kettle on.")
        alert.press("Ok")
        self.gone(APPLICATION)
        self.assertEqual(self.saved_time(day), 0)
        self.start()
        self.window("Tea – Event")
        self.keys("Day.kestrin", "alt+f", "y")
        self.until(lambda: any(node.get_name().startswith("Put off, then answered “Ok” at ")
                               for node in self.controls("Kestrin history")), "what became of it")
        self.assertEqual([(row["event"], row["due"]) for row in self.history()], [("Tea", when)])

    def test_finds_the_help_beside_the_program(self):
        self.open_with("text/html", "Reader", f"cp \"$1\" '{self.path('page read')}'")
        self.start()
        self.keys("Untitled event set 1", "ctrl+h")
        self.until(lambda: "<title>Kestrin documentation</title>" in self.read("page read"), "the page")


class Heap(WorldTest):
    """Sixty missed events of a set from elsewhere, which asks."""
    def ring(self, name, questions):
        missed, acts = self.now() - 2 * DAY, run(f"echo ran > '{self.path('ran')}'")
        self.start(self.write_set(f"home/{name}.kestrin", *(
            daily(f"{name} {n}", missed, acts if n >= 60 - questions else say("Late.")) for n in range(60))))
        window = self.window("Kestrin reminders (60)")
        self.assertEqual(len(self.alerts()), 1)
        return window

    def test_are_cleared_one_by_one_and_in_two_clicks_without_starting_anything(self):
        self.remember(WithoutSet=1)
        window, title = self.ring("One", 0), "Kestrin reminders"
        self.in_front(title)
        ok = self.control(title, "Ok", "push button")
        for n in range(60):
            self.window(f"{title} ({60 - n})")
            self.until(lambda: f" One {n}\n" in window.get_description(), f"row {n}")
            self.until(lambda: ok.get_state_set().contains(Atspi.StateType.FOCUSED), f"the focus of row {n}")
            if n == 0:
                self.alert_keys(title, "Return", lambda: f"{title} (59)" in self.windows())
            else:
                self.xdotool("key", "Return")
        self.until(lambda: not any(name.startswith(title) for name in self.windows()), "the end of the window")

        self.ring("Two", 3)
        self.press(title, "OK all (57)")
        self.control(f"{title} (3)", "57 answered, 3 questions are left", "label")
        self.close(f"{title} (3)")
        self.until(lambda: not any(name.startswith(title) for name in self.windows()), "the end of the window")
        self.assertEqual(self.read("ran"), "")
        self.assertEqual(sorted((row["event"], row["outcome"].split(" at ")[0]) for row in self.history()), sorted(
            (f"{name} {n}", f"Late. Answered “{'Cancel' if (name, n) > ('Two', 56) else 'Ok'}”")
            for name in ("One", "Two") for n in range(60)))


class ReadAloud(WorldTest):
    """What a screen reader would read without saying what it is for."""
    def look(self, window, part=""):
        def reached():
            states = (Atspi.StateType.FOCUSABLE, Atspi.StateType.ENABLED)
            return [node for node in self.controls(window) if all(map(node.get_state_set().contains, states))]
        for node in self.until(reached, f'controls in "{window}"'):
            # The name of a menu of choices is the choice; what it is for, its label says.
            is_told = node.get_name()
            if node.get_role() == Atspi.Role.COMBO_BOX:
                kinds = [relation.get_relation_type() for relation in node.get_relation_set()]
                is_told = node.get_description() or Atspi.RelationType.LABELLED_BY in kinds
            if not is_told:
                self.unnamed.append(f"{window} {part}: {node.get_role_name()} {node.get_name()}")

    def test_every_control_of_every_window_says_what_it_is_for(self):
        self.unnamed = []
        application = self.start(self.write_set("home/Names.kestrin", daily(
            "Tea", self.now() + 3600, ApplyPrewarn=1, ApplyPrewarnRepeat=1, ApplyNag=1)))
        self.look("Names.kestrin")
        self.keys("Names.kestrin", "Home", "Return")
        editor = "Tea – Event (set Names.kestrin)"
        self.in_front(editor)
        for page in "Action", "Prewarning", "Nagging", "Comment", "When":
            self.click_on(editor, page, "page tab")
            self.has_focus(editor, page)
            self.look(editor, page)
        kinds = ["Daily", "Once", "MultiAnnually", "MultiMonthly", "SubDaily"]
        for shown, kind in zip(kinds, kinds[1:]):
            self.click_on(editor, shown, "combo box")
            self.click_on(editor, kind, "list item")
            self.control(editor, kind, "combo box")
            self.look(editor, kind)
        for keys, title in ("ctrl+o", "Open"), ("alt+f t", "Kestrin settings"), ("alt+f b", "About Kestrin"), (
                "alt+f a", "Save event set"):
            self.keys("Names.kestrin", *keys.split())
            self.in_front(title)
            self.look(title)
            self.close(title)
        self.assertEqual(self.unnamed, [])
        self.assertIsNone(application.poll())


if __name__ == "__main__":
    main()
