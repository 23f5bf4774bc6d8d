"""What was typed and never saved, when everything is killed."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, WorldTest, daily, main, say  # noqa: E402


class Unsaved(WorldTest):
    def copy(self, name, says):
        path = self.home / "state/kestrin/recovered" / f"{name}.kestrin"
        return self.until(lambda: path.exists() and says(path), f"a copy of {name} with what was done")

    def test_edits_survive_a_kill_in_the_set_they_were_made_in(self):
        day = self.write_set("home/Day.kestrin", daily("Tea", self.now() + 9000, say("Kettle.")))
        application = self.start(day)
        self.keys("Day.kestrin", "ctrl+n")
        self.keys("Untitled event set 1", "ctrl+shift+n")
        editor = "Untitled – Event (set Untitled event set 1)"
        self.in_front(editor)
        self.click_on(editor, "Message", "text")
        self.type("Two cans")  # and the focus stays there
        self.copy("Untitled event set 1", lambda path: b"Two cans" in path.read_bytes())
        note = self.home / "state/kestrin/recovered/Untitled event set 1.kestrin.of"
        self.assertEqual(note.stat().st_mode & 0o777, 0o600)
        self.keys("Day.kestrin", "ctrl+shift+n")
        self.copy("Day", lambda path: len(self.saved(path)) == 2)
        self.kill(APPLICATION)
        self.assertEqual(self.status(application), -9)
        self.assertEqual(list(self.saved(day)), ["Tea"])

        self.start()
        self.window("Untitled event set 1")
        self.keys("Day.kestrin", "ctrl+s")
        self.until(lambda: len(self.saved(day)) == 2, "the saved set")
        self.until(lambda: sorted(path.name for path in note.parent.iterdir()) == [note.stem, note.name],
                   "the end of the saved set's copy")
        self.assertEqual([path.name for path in self.home.glob("home/*.kestrin")], ["Day.kestrin"])


if __name__ == "__main__":
    main()
