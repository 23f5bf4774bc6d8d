"""How the application starts, what a second start does, and how it ends."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, BIN, DELIVERER, SOON, WorldTest, daily, main  # noqa: E402


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
        self.assertEqual(self.read("run/kestrin/next-event"), "0\n")

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

    def test_a_start_by_hand_opens_the_user_interface_whatever_the_bus_has_waiting(self):
        soon = self.now() + SOON
        self.remember_tea(soon)
        # What the bus starts never takes the name: the wake-up waits for the start by hand.
        idle = self.write("idle", f"#!/bin/sh\n: > '{self.path('called')}'\nexec sleep 60\n", 0o755)
        for name, program in (APPLICATION, idle), (DELIVERER, BIN / "KestrinBackground"):
            self.write(f"data/dbus-1/services/{name}.service", f"[D-BUS Service]\nName={name}\nExec={program}\n")
        self.hand_over(soon)
        self.until(lambda: (self.home / "called").exists(), "the wake-up")
        self.start()
        self.window("day")
        self.alert("Tea").press("Ok")

    def test_a_killed_deliverer_is_started_again_and_hears_the_time(self):
        later = self.now() + 3600
        self.remember_tea(later)
        self.start()
        self.until(lambda: self.pid_of(DELIVERER) and self.when() == later, "the time")
        killed = self.pid_of(DELIVERER)
        self.write("run/kestrin/next-event", f"{later + 1}\n")
        self.kill(DELIVERER)
        self.until(lambda: self.pid_of(DELIVERER) not in (0, killed) and self.when() == later, "it, again")


if __name__ == "__main__":
    main()
