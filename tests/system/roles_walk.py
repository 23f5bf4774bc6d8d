"""How the application starts, what a second start does, and how it ends."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, DELIVERER, WorldTest, daily, main  # noqa: E402


class Roles(WorldTest):
    def make_set(self, name):
        return self.write_set(f"{name}.kestrin", daily(name, self.now() + 3600))

    def test_full_quit_ends_the_deliverer(self):
        self.remember(self.make_set("day"))
        application = self.start()
        self.window("day")
        self.until(lambda: self.pid_of(DELIVERER) and self.when(), "a moment to wait for")
        self.keys("day", "ctrl+shift+q")
        self.left(application)
        self.gone(DELIVERER)
        self.assertEqual(self.read("run/kestrin/next-event"), "")

    def test_later_starts_hand_over_and_closing_the_last_window_leaves(self):
        first = self.start(self.make_set("one"))
        self.make_set("two")
        self.window("one")
        for arguments, folder in (["-background"], "home"), ([], "home"), (["two.kestrin"], ""):
            self.left(self.start(*arguments, folder=folder))
        self.window("two")
        self.assertEqual((len(self.windows()), self.pid_of(APPLICATION)), (2, first.pid))
        self.close("one")
        self.until(lambda: len(self.windows()) == 1, "one window less")
        self.close("two")
        self.left(first)

    def test_a_start_during_a_wake_up_opens_the_user_interface(self):
        soon = self.now() + 4
        self.remember_tea(soon)
        self.hand_over(soon)
        alert, process = self.alert("Tea"), self.pid_of(APPLICATION)
        self.assertEqual(len(self.windows()), 1)
        self.left(self.start())
        self.window("day")
        alert.press("Ok")
        self.left(self.start(self.make_set("other")))
        self.window("other")
        self.assertEqual((len(self.windows()), self.pid_of(APPLICATION)), (2, process))


if __name__ == "__main__":
    main()
