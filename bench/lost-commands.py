#!/usr/bin/python3
"""How many commands are lost when the application is asked to end in the middle of them.

    bench/lost-commands.py [COMMANDS [SEED]]

KESTRIN_BIN: the programs' folder (build/release/bin). Sixty-four events at a time come due at one second, each with a
command that writes down its number, and the application gets two SIGTERM at random moments while they run.
Prints how many were carried out once, never, and more than once. Status 1: one was lost, or carried out twice.
"""
import collections
import os
import pathlib
import random
import signal
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("KESTRIN_BIN", str(ROOT / "build/release/bin"))
sys.path.insert(0, str(ROOT / "tests/harness"))
from world import APPLICATION, DELIVERER, BusTest, daily, run  # noqa: E402

AT_ONCE, SPREAD, MOST_WAITING = 64, 4.5, 60


class Trial(BusTest):
    def runTest(self):
        """Fills `self.counts` with how often each command of each round was carried out."""
        self.started = []
        wanted, chance, done = self.wanted, random.Random(self.seed), self.path("done")
        for first in range(0, wanted, AT_ONCE):
            numbers = range(first, min(first + AT_ONCE, wanted))
            due = self.now() + 8  # handing over takes seconds on a busy machine
            events = [daily(f"Number {n}", due, run(f"echo {n} >> '{done}'")) for n in numbers]
            self.remember(self.write_set(f"sets/round{first}.kestrin", *events))
            self.left(self.start("-background", screen=False))
            self.until(lambda: self.when() == due, "the time of the round")
            for moment in sorted(chance.uniform(0, SPREAD) for _ in range(2)):
                self.end_at(due + moment)
            self.started.append(self.start("-background", screen=False))
            end = time.monotonic() + MOST_WAITING
            while time.monotonic() < end and not set(map(str, numbers)) <= set(self.read("done").split()):
                time.sleep(0.1)
            self.until(self.all_gone, "the end of both programs")
            self.counts = collections.Counter(self.read("done").split())

    def end_at(self, moment):
        while time.time() < moment:
            time.sleep(0.01)
        process = self.pid_of(APPLICATION)
        if process:
            os.kill(process, signal.SIGTERM)
            self.until(lambda: self.pid_of(APPLICATION) != process, "the end of the application")
        self.started.append(self.start("-background", screen=False))

    def all_gone(self):
        """Each starts the other while it runs."""
        for name in DELIVERER, APPLICATION:
            if process := self.pid_of(name):
                os.kill(process, signal.SIGTERM)
        left = [each for each in self.started if each.poll() is None]
        return not left and not self.pid_of(DELIVERER) and not self.pid_of(APPLICATION)


def main():
    trial = Trial()
    trial.wanted = int(sys.argv[1]) if len(sys.argv) > 1 else 1024
    trial.seed = int(sys.argv[2]) if len(sys.argv) > 2 else random.randrange(1 << 30)
    trial.counts = collections.Counter()
    print(f"seed {trial.seed}")
    result = trial.defaultTestResult()
    trial.run(result)
    for _, trace in result.errors + result.failures:
        print(trace, file=sys.stderr)
    times = [trial.counts[str(n)] for n in range(trial.wanted)]
    lost, twice = times.count(0), sum(count > 1 for count in times)
    print(f"carried-out-once {times.count(1)}\nlost {lost}\nmore-than-once {twice}")
    return 1 if lost or twice or not result.wasSuccessful() else 0


if __name__ == "__main__":
    sys.exit(main())
