"""A person in front of the program: mouse, keyboard, and nothing set up beforehand."""
import json
import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BIN, DAY, Atspi, WorldTest, below, daily, main, say  # noqa: E402


EDITOR = "Tea – Event"


class Person(WorldTest):
    def test_from_nothing_to_the_history(self):
        """A set is made, rings with nothing else running, is put off by keys, outlives a kill, and is told of."""
        application = self.start()
        self.click_on("Untitled event set 1", "New event", "push button")
        self.in_front("Untitled – Event")
        self.has_focus("Untitled – Event", "Name:")
        self.type("Tea\n")
        self.click_on(EDITOR, "Message", "text")
        self.type("Two cans of rain.")
        self.keys("Untitled event set 1", "ctrl+s")
        self.keys("Save event set", "ctrl+a")
        self.type(self.path("home/Plants"))
        self.click_on("Save event set", "Save", "push button")
        plants = self.path("home/Plants.kestrin")
        self.in_front("Plants.kestrin")
        self.control("Plants.kestrin", "Forget", "push button")  # the box was ticked
        self.in_front(EDITOR)
        self.click_on(EDITOR, "When", "page tab")
        self.click_on(EDITOR, "Date", "text")
        when = self.now() + 9
        self.keys(EDITOR, "ctrl+a")
        self.type(self.typed(when) + "\n")
        self.keys("Plants.kestrin", "ctrl+s")
        self.until(lambda: self.saved_time(plants) == when, "the saved date")
        self.keys("Plants.kestrin", "ctrl+q")
        self.left(application)
        self.assertEqual(self.when(), when)

        alert = self.alert("Tea")
        self.assertGreaterEqual(self.now(), when)
        self.assertEqual(alert.text, "Kestrin event:  Tea\n\nTwo cans of rain.")
        again = self.now() + 8
        self.put_off("Tea", self.typed(again))
        alert.closed()
        self.until(lambda: self.when() == again, "the new time with the deliverer")
        if self.pid_of(APPLICATION):
            self.kill(APPLICATION)
        self.gone(APPLICATION)

        alert = self.alert("Tea")
        self.assertGreaterEqual(self.now(), again)
        alert.press("Ok")
        self.gone(APPLICATION)
        told = json.loads(self.output(BIN / "kestrinctl", "history", "--json"))
        self.assertEqual([(each["event"], each["set"], each["due"], each["answer"]) for each in told],
                         [("Tea", plants, when, "Ok")])
        self.assertGreaterEqual(told[0]["answered"], again)
        self.start(plants)
        self.keys("Plants.kestrin", "alt+f", "y")
        outcome = [node.get_name() for node in self.controls("Kestrin history") if "Answered" in node.get_name()]
        self.assertEqual(len(outcome), 1, outcome)

    @staticmethod
    def typed(when):
        return time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(when))

    def put_off(self, title, words):
        """By keys alone, as soon as the alert takes any: it swallows them for a second after it gets the focus."""
        self.in_front(title)

        def menu():
            self.xdotool("key", "alt+l")
            return any(node.get_name().startswith("Other time") for each in self.nodes() for node in below(each))
        self.until(menu, "the menu of moments")
        self.xdotool("key", "o")
        self.has_focus(title, "Remind me again")
        self.type(words + "\n")

    def ring(self, name):
        """Opens a set whose event has just come due. The moment at which it was, and its alert."""
        when = self.now() - 1
        self.left(self.start(self.write_set(f"home/{name}.kestrin", daily(name, when, say("Here.")))))
        return when, self.alert(name)

    def test_answers_alerts_while_panels_and_questions_stand_open(self):
        busy = self.write_set("home/Busy.kestrin")
        application = self.start(busy)
        self.keys("Busy.kestrin", "ctrl+o")
        self.has_focus("Open event sets", "File name:")  # or it would get in front again
        self.keys("Busy.kestrin", "alt+f", "a")
        self.in_front("Save event set")
        one, alert = self.ring("One")
        alert.click("Ok")
        self.window("Open event sets")
        self.keys("Save event set", "Escape")

        self.keys("Busy.kestrin", "ctrl+shift+n")
        self.keys("Untitled – Event (set Busy", "ctrl+w")
        self.keys("Busy.kestrin", "ctrl+w")
        question = self.alert("Save changes to the document")
        two, alert = self.ring("Two")
        alert.click("Ok")
        question.press("Don't save")
        self.assertEqual(self.saved(busy), {})
        for name, when in ("One", one), ("Two", two):
            self.close(f"{name}.kestrin")
            self.until(lambda: self.saved_time(self.path(f"home/{name}.kestrin"), name) == when + DAY, "the delivery")
        self.close("Open event sets")
        self.left(application)

    def test_an_event_passes_through_the_clipboard_between_processes(self):
        kind, set_of = "application/x-vnd.ZR-KestrinEvent", lambda name: self.path(f"home/{name}.kestrin")
        xclip = ["xclip", "-selection", "clipboard", "-t"]
        self.write_set("home/From.kestrin", daily("Tea \u2615 & cake", self.now() + 3600, say("Milk first.")))
        self.start(set_of("From"))

        def copied():
            self.keys("From.kestrin", "Home", "ctrl+c")
            return self.output(*xclip, "text/plain", "-o") == "Tea \u2615 & cake".encode()
        self.until(copied, "the name")
        event = self.output(*xclip, kind, "-o")
        self.kill(APPLICATION)
        self.gone(APPLICATION)
        self.write("event", event)
        application = self.start(self.write_set("home/To.kestrin"))
        for type_of, events in ("text/plain", []), (kind, ["Tea \u2615 & cake"]):
            self.output("sh", "-c", f"{' '.join(xclip)} {type_of} -i '{self.path('event')}' >/dev/null")
            self.keys("To.kestrin", "ctrl+v", "ctrl+s")
            self.until(lambda: list(self.saved(set_of("To"))) == events, "what was pasted")
        self.assertEqual(self.saved(set_of("To"))["Tea \u2615 & cake"]["HandlerData"], b"Milk first.\0".hex())
        self.keys("To.kestrin", "ctrl+q")
        self.left(application)

    def test_finds_the_help_beside_the_program(self):
        self.open_with("text/html", "Reader", f"cp \"$1\" '{self.path('page read')}'")
        self.start()
        self.keys("Untitled event set 1", "ctrl+h")
        self.until(lambda: "<title>Kestrin documentation</title>" in self.read("page read"), "the page")


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
