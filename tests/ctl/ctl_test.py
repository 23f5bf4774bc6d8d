"""kestrinctl run as a process, within the bounds it promises; every file of tests/data goes through it."""
import json
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(HERE.parent / "data"))
from make_golden import HOME, block, event, make_all, make_set  # noqa: E402

PROGRAM = pathlib.Path(os.environ.get("KESTRIN_BIN", HERE.parents[1] / "build/debug/bin")) / "kestrinctl"
SANITIZED = bool(os.environ.get("KESTRIN_SANITIZE"))  # slower, and with an address space without bounds
TEA = str(HOME / "golden/tea.kestrin")
SATURDAY = 1792836000  # 24 October 2026, 10:00 UTC; Berlin's clocks go back
BEGIN, MINUTE, HOUR, DAY = 1794700800, 60, 3600, 86400
ONCE, DAILY, MULTI_MONTHLY, SUB_DAILY = 0, 4, 8, 11
MONTHS, HOURS, MINUTES = 0, 3, 4


def daily(time_of_day, name, **fields):
    return event(Name=os.fsencode(name), PeriodType=DAILY, TimeToApply=time_of_day, **fields)


def once(time, name, **fields):
    return event(Name=name.encode(), PeriodType=ONCE, EventTime=time, ActualEventTime=time, NextEventTime=time,
                 **fields)


def bound():
    resource.setrlimit(resource.RLIMIT_CPU, (90, 90) if SANITIZED else (10, 10))
    if not SANITIZED:
        resource.setrlimit(resource.RLIMIT_AS, (512 << 20, 512 << 20))


class CtlTest(unittest.TestCase):
    zone = "Europe/Berlin"

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kestrin-test-"))
        self.addCleanup(shutil.rmtree, self.home)

    def run_ctl(self, *arguments):
        """Its status, standard output and standard error, in the test's folder."""
        done = subprocess.run([PROGRAM, *map(str, arguments)], cwd=self.home, preexec_fn=bound, check=False,
                              capture_output=True, env=os.environ | {"TZ": self.zone})
        return done.returncode, done.stdout.decode(errors="surrogateescape"), done.stderr.decode()

    def out(self, *arguments):
        status, out, errors = self.run_ctl(*arguments)
        self.assertEqual((status, errors), (0, ""), arguments)
        return out

    def json(self, *arguments):
        return json.loads(self.out(*arguments))

    def refused(self, fault, file, *arguments):
        status, out, errors = self.run_ctl(*arguments)
        self.assertEqual((status, out, errors.count("\n")), (2, "", 1), (arguments, errors))
        self.assertTrue(errors.startswith(f"kestrinctl: {file}: ") and errors.endswith("\n"), errors)
        self.assertIn(fault, errors)

    def refused_by_all(self, fault, file):
        self.refused(fault, file, "dump", file)
        self.refused(fault, file, "next", "--json", file)
        self.refused(fault, file, "agenda", "--json", TEA, file)
        self.refused(fault, file, "check", TEA, file)
        self.refused(fault, file, "check", file, TEA)
        (self.home / "kept").write_text("what was there")
        self.refused(fault, file, "rewrite", file, "kept")
        self.assertEqual((self.home / "kept").read_text(), "what was there")
        self.refused(fault, file, "rewrite", file, "new")
        self.assertFalse((self.home / "new").exists())

    def make(self, name, *events):
        (self.home / name).write_bytes(make_set(events).bytes)


class FilesTest(CtlTest):
    """What is read is dumped and saved as it should be; what is damaged is refused with one line."""
    files, expected = make_all()

    def test_what_is_read_is_dumped_as_it_stands_and_computed_with(self):
        for name, expected in self.expected["read"].items():
            with self.subTest(name):
                file, events = HOME / name, len(expected["dump"]["events"])
                self.assertEqual(self.json("dump", file), expected["dump"])
                self.assertEqual(len(self.json("next", "--json", file)), events)
                self.assertIsInstance(self.json("agenda", "--json", "--startup", "--from", BEGIN, file), list)
                self.assertIn("Next message time" if events else "No e", self.out("next", file))
                self.out("agenda", "--from", BEGIN, file)
                version = expected["dump"]["version"]
                self.assertTrue(self.out("check", file).startswith(f"{file}: {events} events, version {version}"))

    def test_what_is_read_is_saved_in_the_newest_version_and_keeps_everything(self):
        for name, expected in self.expected["read"].items():
            for source in HOME / name, "again":
                self.assertEqual(self.out("rewrite", source, "again"), "")
                self.assertEqual((self.home / "again").read_bytes().hex(), expected["saved"], name)

    def test_the_dump_on_the_page_of_the_format_is_the_file(self):
        """Every line of the page's dump begins with its place: "0005  01 00 00 00   what"."""
        _, dump, _ = (HERE.parents[1] / "docs/file-format.md").read_text().split("```")
        made = b""
        for line in filter(lambda line: line[:1].strip(), dump.split("\n")[1:]):
            self.assertEqual(int(line[:4], 16), len(made), line)
            made += bytes.fromhex(line[6:53].split("  ")[0])
        self.assertEqual(made, pathlib.Path(TEA).read_bytes())

    def test_damaged_files_are_refused(self):
        for name, fault in self.expected["refused"].items():
            self.refused_by_all(fault, HOME / name)

    def test_what_is_no_set_file_is_refused(self):
        (self.home / "folder").mkdir()
        os.mkfifo(self.home / "pipe")
        (self.home / "dangling").symlink_to("nowhere")
        shutil.copy(TEA, self.home / "above the limit")
        os.truncate(self.home / "above the limit", (64 << 20) + 2)
        rows = {"folder": "Is a directory", "pipe": "it is not a regular file", "missing": "No such file",
                "/dev/zero": "it is not a regular file", "dangling": "No such file", "": "No such file",
                "above the limit": "64 MiB"}
        for file, fault in rows.items():
            self.refused_by_all(fault, file)

    def test_what_cannot_be_written_is_named(self):
        (self.home / "folder").mkdir()
        (self.home / "file").touch()
        rows = {"no/such/folder": "No such file", "folder": "it is a folder", "file/x": "Not a directory",
                "/dev/full": "it is not a regular file"}
        for out, fault in rows.items():
            self.refused(fault, out, "rewrite", TEA, out)


class CommandsTest(CtlTest):
    def agenda(self, *arguments, with_set=False):
        """As "+seconds kind event[ in set][ missed]", the seconds from Saturday."""
        entries = self.json("agenda", "--json", *arguments)
        self.assertTrue(all(len(entry) == 5 for entry in entries))
        return ["+{} {kind} {event}".format(entry["time"] - SATURDAY, **entry) +
                (" in " + entry["set"] if with_set else "") + (" missed" if entry["missed"] else "")
                for entry in entries]

    def test_show_says_each_rule_in_words_and_when_it_comes(self):
        self.make("set", once(SATURDAY, "gone"), daily(9 * HOUR, "asleep\n", Active=0))
        self.make("none")
        comes = zip(("Sun", "Mon", "Tue", "Wed", "Thu"), range(25, 30))
        self.assertEqual(self.out("show", "--at", SATURDAY, "set"),
                         "gone\n  Once, on Saturday, 24 Oct 2026 at 12:00 PM.\n"
                         "asleep?\n  Inactive: it is not delivered.\n  Every day at 9:00 AM.\n" +
                         "".join(f"    {name}, Oct {day} 2026, 09:00 AM\n" for name, day in comes))
        self.assertEqual(self.out("show", "none"), "No events.\n")

    def test_next_computes_in_the_zone_of_the_process(self):
        self.make("set", once(SATURDAY, "gone"), daily(9 * HOUR, "breakfast"), daily(9 * HOUR, "asleep", Active=0))
        whole_day = {"ApplyTime": 0, "ApplyPrewarn": 1, "PrewarnTime": 2, "PrewarnType": HOURS}
        self.make("birthdays", daily(0, "birthday", **whole_day))
        keys = "Name", "ActualEventTime", "NextEventTime", "Status"
        # In Berlin an hour more than summer time's.
        for self.zone, ahead in ("America/New_York", 3), ("UTC", 23), ("Europe/Berlin", 22):
            breakfast = SATURDAY + ahead * HOUR
            told = [("gone", SATURDAY, 0, 3)] + [(name, breakfast, breakfast, 1) for name in ("breakfast", "asleep")]
            self.assertEqual(self.json("next", "--json", "--at", SATURDAY, "set"),
                             [dict(zip(keys, row)) for row in told], self.zone)
        table = self.out("next", "--at", "Oct 24 2026 12:00", "set")
        self.assertEqual(table, self.out("next", "--at", SATURDAY, "set"), "typed, and in seconds")
        for row in ("gone       Sat, Oct 24 2026, 12:00:00 PM  None", "asleep     Sun, Oct 25 2026, 09:00:00 AM",
                    "  Inactive\n"):
            self.assertIn(row, table)
        self.assertIn("birthday  Sun, Oct 25 2026  Sat, Oct 24 2026, 10:00:00 PM",
                      self.out("next", "--at", SATURDAY, "birthdays"))

    def test_agenda_shows_every_kind_of_delivery(self):
        self.zone = "UTC"
        call = once(SATURDAY + 2 * HOUR, "call", ApplyPrewarn=1, PrewarnTime=90, PrewarnType=MINUTES,
                    ApplyPrewarnRepeat=1, PrewarnRepeatTime=1, PrewarnRepeatType=HOURS, ApplyNag=1, NagRepeatTime=2)
        self.make("set", call, daily(11 * HOUR, "lunch"), once(SATURDAY, "gone"))
        before = (self.home / "set").read_bytes()
        self.assertEqual(
            self.agenda("--from", SATURDAY, "--to", SATURDAY + 2 * DAY + 2 * HOUR + 1, "set"),
            ["+1800 prewarning call", "+3600 event lunch", "+5400 prewarning call", "+7200 event call",
             "+90000 event lunch", "+176400 event lunch", "+180000 nag call"])
        at = SATURDAY + 1800
        for begin, end, told in (SATURDAY, at, []), (SATURDAY, at + 1, ["+1800 prewarning call"]), (at + 1, at, []):
            self.assertEqual(self.agenda("--from", begin, "--to", end, "set"), told)
        self.assertNotIn("call", self.out("agenda", "--from", SATURDAY - 7 * DAY, "set"),
                         "a week does not reach its own weekday")
        self.assertEqual((self.home / "set").read_bytes(), before, "nothing is saved")

    def test_agenda_of_a_start_is_one_for_all_files_in_the_order_of_the_deliveries(self):
        self.zone = "UTC"
        self.make("a", once(SATURDAY - 30, "A late"), once(SATURDAY + HOUR, "A eleven"),
                  once(SATURDAY - 10, "A later"), once(SATURDAY - DAY, "A lost"))
        self.make("b", once(SATURDAY - 20, "B late"), once(SATURDAY + HOUR, "B eleven"), once(SATURDAY + 1, "B ten"))
        (self.home / "link").symlink_to("a")
        span = ["--startup", "--from", SATURDAY, "--to", SATURDAY + 2 * HOUR]
        self.assertEqual(
            self.agenda(*span, "./b", "a", "link", self.home / "b", with_set=True),
            ["+0 event A lost in a missed", "+0 event A late in a", "+0 event B late in ./b", "+0 event A later in a",
             "+1 event B ten in ./b", "+3600 event B eleven in ./b", "+3600 event A eleven in a"])
        self.assertIn("+3600 event A eleven in link", self.agenda(*span, "link", "b", with_set=True))
        table = self.out("agenda", "--startup", "--from", SATURDAY, "a", "b")
        self.assertIn("Set\n", table)
        self.assertIn("event (missed)  A lost ", table)
        self.assertEqual(self.agenda("--from", SATURDAY + 2 * HOUR, "a", "b"), [], "recomputed, all are over")

    def test_tables_hold_their_columns_whatever_the_names(self):
        accents = "e\u0301" * 45
        rows = {"漢字": ("漢字", 4), "e\u0301": ("e\u0301", 1), "\x1b[31m\nred\u009b": ("?[31m?red?", 10),
                "caf\udce9": ("caf?", 4), "x" * 30: ("x" * 30, 30), "y" * 180: ("y" * 47 + "…", 48),
                accents: (accents, 45)}
        self.make("set", *(daily(0, name) for name in rows))
        table = self.out("next", "--at", SATURDAY, "set")
        for shown, columns in rows.values():
            self.assertIn("\n" + shown + " " * (48 - columns) + "  Sun, Oct 25 2026, ", table)

    def test_check_says_what_never_comes_and_how_many_events_there_are(self):
        self.make("good", once(SATURDAY, "x"))
        self.make("odd", event(Name=b"never", PeriodType=SUB_DAILY, SubIntType=MONTHS), once(SATURDAY, "x"))
        self.assertEqual(self.out("check", "good", "odd"),
                         "good: 1 events, version 1.2, little-endian\nodd: 2 events, version 1.2, little-endian\n"
                         "  \"never\": A day cannot be divided by months; choose hours or minutes.\n")

    def test_wrong_usage_is_told_with_the_right_one(self):
        for row in ("", "view F", "dump", "dump F F", "dump --json F", "next F F", "next F --at", "next --at never F",
                    "next --at 2147483648 F", "next --from 1 F", "agenda", "agenda --at 1 F", "check", "check -x F",
                    "rewrite F", "rewrite F out more"):
            status, out, errors = self.run_ctl(*(TEA if word == "F" else word for word in row.split()))
            self.assertEqual((status, out), (1, ""), row)
            self.assertIn("usage: kestrinctl dump FILE", errors)
        shutil.copy(TEA, self.home / "--json")
        self.json("dump", "--", "--json")  # a file called like an option


class BoundsTest(CtlTest):
    """The worst files there can be."""
    def fill(self, name, one, count):
        whole, head, layout = make_set([one], count=count).bytes, 9, 118
        bare = whole[head:-layout]
        (self.home / name).write_bytes(whole[:head] + bare * count + whole[-layout:])
        return len(bare)

    def done(self, *arguments):
        with open(os.devnull, "wb") as nowhere:
            subprocess.run([PROGRAM, *map(str, arguments)], cwd=self.home, preexec_fn=bound, check=True,
                           stdout=nowhere, env=os.environ | {"TZ": self.zone})

    def test_the_largest_set_of_the_smallest_events_with_the_slowest_rule(self):
        """The last weekday of every month since 1901, counted from a month that is longer than most."""
        walk = block(b"", b"", Name=b"", PeriodType=MULTI_MONTHLY, TimingType=2, WeekOfMonth=4, DayOfWeek=3, Month=0,
                     MultiStartTime=-2**31, Multiple=1, NextEventTime=0, ActualEventTime=0)
        size = 119
        self.assertEqual(self.fill("slow", walk, ((4 if SANITIZED else 64) << 20) // size - 2), size)
        self.done("check", "slow", "./slow")
        self.done("next", "--at", 2143000000, "slow")
        self.done("agenda", "--startup", "--from", 2143000000, "slow")
        self.done("dump", "slow")
        self.done("rewrite", "slow", "again")
        self.assertEqual((self.home / "slow").read_bytes(), (self.home / "again").read_bytes())

    def test_events_of_every_minute(self):
        tick = block(b"", b"", Name=b"tick", PeriodType=SUB_DAILY, SubIntType=MINUTES, Multiple=1,
                     MultiStartTime=BEGIN)
        agenda = ["agenda", "--json", "--from", BEGIN, "set"]
        self.fill("set", tick, 4 if SANITIZED else 49)
        self.done(*agenda)
        for one, count in (tick | {"Name": b"n" * 4095}, 49), (tick, 1000):
            self.fill("set", one, count)
            self.refused("too many deliveries", "set", *agenda)


def line(record, **fields):
    """A line of the journal, as docs/journal.md has it."""
    text, check = "\t".join([record, *(f"{key}={value}" for key, value in fields.items())]), 0x811c9dc5
    for byte in text.encode():
        check = (check ^ byte) * 0x01000193 & 0xffffffff
    return f"{check:08x}\t{text}\n"


class PastTest(CtlTest):
    """What is told of the state folder, which the test has made by hand."""
    zone = "UTC"

    def setUp(self):
        super().setUp()
        self.state = self.home / "state/kestrin"
        self.state.mkdir(parents=True)
        environment = {"XDG_STATE_HOME": str(self.home / "state"), "XDG_CONFIG_HOME": str(self.home / "config")}
        patch = unittest.mock.patch.dict(os.environ, environment)
        patch.start()
        self.addCleanup(patch.stop)
        self.make("Day", daily(9 * HOUR, "Tea"), daily(9 * HOUR, "Tea"), once(BEGIN, "Milk", Active=0))
        about = {"set": self.home / "Day", "name": "Tea", "handler": "Message"}
        at = {"from": f"{BEGIN},{BEGIN},1", "at": BEGIN + 2, "act": "acted"}
        (self.state / "history").write_text(
            line("a.1", **about, place=0, **at, alert="answered", answer="Ok", answered=BEGIN + 60) +
            line("a.2", **about, place=1, **at | {"act": "missed", "why": "the computer was off"}))
        (self.state / "journal").write_text(line("a.3", **about, place=0, **at | {"at": BEGIN + DAY}, alert="putoff"))
        (self.state / "later").write_text(line("l.1", **about, of="a.3", alert="putoff", moment=BEGIN + 2 * DAY) +
                                          line("l.2", **about, of="a.1", alert="putoff", moment=BEGIN + 9 * DAY))

    def test_history_is_told_newest_first_and_changes_nothing(self):
        before = {path.name: path.read_bytes() for path in self.state.iterdir()}
        told = self.json("history", "--json")
        self.assertEqual([(each["delivered"], each["outcome"], each["returns"]) for each in told], [
            (BEGIN + DAY, "Put off until Tue, Nov 17 2026, 12:00 AM", BEGIN + 2 * DAY),
            (None, "Missed: the computer was off", None),
            (BEGIN + 2, "Answered “Ok” at 12:01 AM", None)])
        self.assertEqual(self.out("history").count("\n"), 5)
        self.assertEqual({path.name: path.read_bytes() for path in self.state.iterdir()}, before)
        (self.state / "journal").write_text("damage\n")
        status, out, errors = self.run_ctl("history", "--json")
        self.assertEqual((status, len(json.loads(out)), errors.count("damaged")), (0, 3, 1))
        shutil.rmtree(self.state)
        self.assertEqual(self.json("history", "--json"), [])

    def test_why_says_one_sentence_for_each_event_of_that_name(self):
        tried = {"from": f"{BEGIN},{BEGIN},1", "at": BEGIN + 3 * DAY, "act": "acted", "trial": 1}
        with (self.state / "journal").open("a") as journal:
            journal.write(line("a.4", set=self.home / "Day", name="Tea", handler="Message", place=1, **tried))
        last, first = self.out("why", "Day", "Tea").splitlines()
        self.assertRegex(last, r'^"Tea" rang on Mon, Nov 16 .* \(put off until Tue, .*, and rings next on .*, but only '
                               r"while its set is open, which is not remembered for delivery\.$")
        self.assertRegex(first, r'^"Tea" did not ring on Sun, Nov 15 .* \(missed: the computer was off\), and rings ')
        self.assertEqual(self.out("why", "Day", "Milk"),
                         '"Milk" has not rung as far as is known, and does not ring again, since it is inactive.\n')
        self.refused("no event called", "Day", "why", "Day", "Bread")

    def test_agenda_lists_what_was_put_off_when_asked(self):
        def kinds(*more):
            span = "--from", BEGIN + 2 * DAY, "--to", BEGIN + 3 * DAY
            return [(each["time"], each["kind"]) for each in self.json("agenda", "--json", *more, *span, "Day")]
        tea = (BEGIN + 2 * DAY + 9 * HOUR, "event")
        self.assertEqual(kinds(), [tea, tea])
        self.assertEqual(kinds("--later"), [(BEGIN + 2 * DAY, "later"), tea, tea])


if __name__ == "__main__":
    unittest.main()
