#!/usr/bin/env python3
"""The event set files below sets/, made from nothing but docs/file-format.md: this shares no code with
the program, so that the two can disagree.

  make_golden.py                  compares the files; exit status 1 when one differs, is missing, or
                                  is not made here
  make_golden.py --write          writes them

  golden/    the same events in every version and byte order, a set of none, the set of the page
  readable/  odd files that are read, each named by what is odd about it
  refused/   damaged files, each named by its damage
"""
import math
import pathlib
import struct
import sys

HOME = pathlib.Path(__file__).parent / "sets"


def fields(text):
    return [tuple(each.split()) for each in text.split(",")]


BEFORE = fields("Name text, NextEventTime i, ActualEventTime i, Active flag, Status i")
RULES = fields("""
    PeriodType i, Multiple I, TimingType i, RememberType i, EventTime i, DayOfMonth b,
    WeekOfMonth b, DayOfWeek b, Month b, MultiStartTime i, ApplyTime flag, TimeToApply i,
    SubIntType i, ApplyStop flag, StopTime i, ApplyPrewarn flag, PrewarnTime I, PrewarnType i,
    ApplyPrewarnRepeat flag, PrewarnRepeatTime I, PrewarnRepeatType i, PrewarnMessage text,
    ApplyNag flag, NagRepeatTime I, NagRepeatType i, NagMessage text, DeliverIfMissed flag,
    DeleteOnceDelivered flag, Comment text, IconNumber i""")
ICONS = fields("LargeIcon raw, MiniIcon raw")  # only of IconNumber -2
WINDOW = fields("WindowFrame f, WindowOpen flag")
RESERVED = fields("reserved flag")  # after WINDOW in 1.0, after BEFORE since
HANDLER = fields("TabShown i, HandlerName text")
BLOCK = fields("count I, data raw")
LAYOUT = fields("WindowFrame f, ColumnOrder i, ColumnShown flag, ColumnWidth f, NumberOfKeys i, "
                "SortKeys i, SortModes i, ViewMode i")

PLAIN_EVENT = dict(
    Name=b"Tea", NextEventTime=1794758400, ActualEventTime=1794758400, Active=1, Status=1,
    PeriodType=4, Multiple=2, TimingType=0, RememberType=0, EventTime=1794700800, DayOfMonth=15,
    WeekOfMonth=2, DayOfWeek=0, Month=10, MultiStartTime=1794700800, ApplyTime=1, TimeToApply=57600,
    SubIntType=3, ApplyStop=0, StopTime=79200, ApplyPrewarn=0, PrewarnTime=1, PrewarnType=2,
    ApplyPrewarnRepeat=0, PrewarnRepeatTime=6, PrewarnRepeatType=3, PrewarnMessage=b"", ApplyNag=0,
    NagRepeatTime=2, NagRepeatType=2, NagMessage=b"", DeliverIfMissed=1, DeleteOnceDelivered=0,
    Comment=b"", IconNumber=0, LargeIcon=b"", MiniIcon=b"", WindowFrame=[100, 120, 480, 400],
    WindowOpen=0, TabShown=1, HandlerName=b"Message", count=18, data=b"Put the kettle on\0")
PLAIN_LAYOUT = dict(
    WindowFrame=[40, 60, 640, 360], ColumnOrder=[0, 1, 2, 3, 4, 5], ColumnShown=[1, 1, 1, 0, 1, 1],
    ColumnWidth=[35, 190, 150, 150, 60, 115], NumberOfKeys=1, SortKeys=[2, 0, 0, 0, 0],
    SortModes=[0, 2, 2, 2, 2], ViewMode=0)


def event(**changes):
    return PLAIN_EVENT | changes


def block(handler, data, count=None, saved=None, **changes):
    """An event with that handler data; `saved`: the (count, bytes) it is saved with, if another."""
    return event(HandlerName=handler, data=data, count=len(data) if count is None else count,
                 saved=saved, **changes)


class Writer:
    """The bytes of a set, and where each of its fields begins."""

    def __init__(self, order):
        self.order, self.bytes, self.fields = order, b"", []

    def put(self, name, encoding, value):
        self.fields.append((len(self.bytes), name))
        if encoding in ("text", "raw"):
            self.bytes += value + b"\0" * (encoding == "text")
        else:
            self.bytes += struct.pack(self.order + encoding.replace("flag", "B"), value)

    def put_all(self, fields, values):
        for name, encoding in fields:
            value = values[name]
            for each in value if isinstance(value, list) else [value]:
                self.put(name, encoding, each)


def icons(values):
    return ICONS if values["IconNumber"] == -2 else []


def make_set(events, version=b"1.2", order="<", count=None, layout=None, marker=None):
    writer = Writer(order)
    writer.put("marker", "B", (0 if order == "<" else 1) if marker is None else marker)
    writer.put("version", "text", version)
    writer.put("number of events", "i", len(events) if count is None else count)
    old, new = (RESERVED, []) if version == b"1.0" else ([], RESERVED)
    for values in events:
        writer.put_all(BEFORE + new + RULES + icons(values) + WINDOW + old + HANDLER + BLOCK,
                       {"reserved": 1} | values)
    writer.put_all(LAYOUT, PLAIN_LAYOUT | (layout or {}))
    return writer


def as_json(encoding, value):
    if isinstance(value, list):
        return [as_json(encoding, each) for each in value]
    if encoding == "flag":
        return value != 0
    if encoding == "f":
        return value if math.isfinite(value) else None
    if encoding == "raw":
        return value.hex()
    if encoding == "text":
        try:
            return value.decode() or None
        except UnicodeDecodeError:
            return {"bytes": value.hex()}
    return value


def show(fields, values):
    return {name: as_json(encoding, values[name]) for name, encoding in fields}


def dump(events, version=b"1.2", order="<", layout=None, **_):
    return {"version": version.decode(), "byteOrder": "little" if order == "<" else "big",
            "events": [show(BEFORE + RULES + icons(values) + WINDOW + HANDLER, values) |
                       {"HandlerData": values["data"].hex()} for values in events],
            **show(LAYOUT, PLAIN_LAYOUT | (layout or {}))}


def saved_again(events, layout=None, **_):
    """The same set as version 1.2 writes it on a little-endian machine."""
    again = []
    for values in events:
        flags = {name: int(values[name] != 0) for name, encoding in BEFORE + RULES + WINDOW
                 if encoding == "flag"}
        again.append(values | flags | {"reserved": 1})
        if values.get("saved"):
            again[-1]["count"], again[-1]["data"] = values["saved"]
    layout = PLAIN_LAYOUT | (layout or {})
    return make_set(again, layout=layout | {
        "ColumnShown": [int(shown != 0) for shown in layout["ColumnShown"]]}).bytes


ALL_BYTES = bytes(range(256))
FULL = [
    event(),
    event(Name="Überprüfung 検査 🔧".encode(), NextEventTime=-2, ActualEventTime=2147483647, Active=0, Status=2,
          PeriodType=7, Multiple=4294967295, TimingType=2, RememberType=1, EventTime=-2147483648,
          DayOfMonth=-1, WeekOfMonth=-128, DayOfWeek=127, Month=-2, MultiStartTime=-86400, ApplyTime=0,
          TimeToApply=-5, SubIntType=4, ApplyStop=1, StopTime=3, ApplyPrewarn=1, PrewarnTime=3000000000,
          PrewarnType=1, ApplyPrewarnRepeat=1, PrewarnRepeatTime=7, PrewarnRepeatType=0,
          PrewarnMessage=b"soon: \"quoted\"\n\tand \\ \x7f", ApplyNag=1, NagRepeatTime=9, NagRepeatType=1,
          NagMessage=b"Gr\xfc\xdfe", DeliverIfMissed=0, DeleteOnceDelivered=1, Comment=b"  two\r\nlines  ",
          IconNumber=-2, LargeIcon=ALL_BYTES * 4, MiniIcon=ALL_BYTES[::-1],
          WindowFrame=[-0.5, 1.25, 1e20, -2.5e-7], WindowOpen=1, TabShown=4, HandlerName=b"Moon phases",
          count=256, data=ALL_BYTES),
    block(b"Command", b"\1echo hi\0", Name=b""),
    block(b"Command", b"\0", count=0),
    block(b"Act on file", b"\0/home/ada/list.txt\0"),
    block(b"Act on file", b"\1", count=0),
    block(b"Do nothing", b"", IconNumber=-1),
    block(b"Message", b"", IconNumber=10),
]
FULL_LAYOUT = dict(WindowFrame=[1, -2, 3.5, -4.25], ColumnOrder=[5, 4, 3, 2, 1, 0],
                   ColumnShown=[0, 1, 0, 1, 0, 1], ColumnWidth=[0, 0.5, -1, 1e6, 16777216, 3],
                   NumberOfKeys=5, SortKeys=[5, 4, 3, 2, 1], SortModes=[0, 1, 2, 1, 0], ViewMode=3)

OUT_OF_TABLE = event(Status=77, PeriodType=99, TimingType=-7, RememberType=12, DayOfMonth=-128,
                     WeekOfMonth=127, DayOfWeek=9, Month=12, TimeToApply=2147483647, SubIntType=-5,
                     StopTime=-2147483648, ApplyPrewarn=1, PrewarnType=2147483647, ApplyPrewarnRepeat=1,
                     PrewarnRepeatType=-1, ApplyNag=1, NagRepeatType=5, IconNumber=-7, TabShown=-3)
NAN, INF = math.nan, math.inf


def readable():
    """name: (events, arguments of make_set, bytes after the end)"""
    rules = [OUT_OF_TABLE | dict(PeriodType=period, TimingType=timing)
             for period in [-1, *range(13)] for timing in (-1, 0, 1, 2, 3)]
    zero = [event(PeriodType=period, Multiple=0, SubIntType=unit, ApplyPrewarn=1, PrewarnType=unit,
                  ApplyPrewarnRepeat=1, PrewarnRepeatTime=0, PrewarnRepeatType=unit, ApplyNag=1, NagRepeatTime=0,
                  NagRepeatType=unit, MultiStartTime=-2147483648, EventTime=-2147483648)
            for period in range(12) for unit in range(5)]
    return {
        "marker-byte-7": (FULL, dict(marker=7, order=">", layout=FULL_LAYOUT), b""),
        "enums-out-of-table": ([OUT_OF_TABLE, OUT_OF_TABLE | dict(IconNumber=2147483647)],
                               dict(layout=dict(ColumnOrder=[77, -1, 6, 0, 0, 0], NumberOfKeys=-9, ViewMode=-1,
                                                SortKeys=[6, -1, 99, 2147483647, 0], SortModes=[3, -1, 9, 0, 0])), b""),
        "rules-out-of-table": (rules, {}, b""),
        "steps-of-zero": (zero, {}, b""),
        "frames-that-are-no-numbers": ([event(WindowFrame=[NAN, INF, -INF, -0.0])],
                                       dict(layout=dict(WindowFrame=[NAN] * 4,
                                                        ColumnWidth=[INF, NAN, -INF, 0, 1, 2])), b""),
        "booleans-above-1": ([event(Active=2, reserved=0, ApplyTime=255, ApplyStop=128, ApplyPrewarn=3,
                                    ApplyPrewarnRepeat=4, ApplyNag=5, DeliverIfMissed=6, DeleteOnceDelivered=7,
                                    WindowOpen=8)], dict(layout=dict(ColumnShown=[2, 0, 255, 0, 1, 9])), b""),
        "texts-not-utf-8": ([event(Name=b"caf\xe9", PrewarnMessage=b"\xff\xfe", NagMessage=b"\xed\xa0\x80",
                                   Comment=b"\xc0\xaf", HandlerName=b"\x80")], {}, b""),
        "texts-of-4095-bytes": ([event(Name=b"n" * 4095, PrewarnMessage=b"\1" * 4095, NagMessage=b"\xfc" * 4095,
                                       Comment="é".encode() * 2047, HandlerName=b"h" * 4095)], {}, b""),
        "handler-without-a-name": ([block(b"", b"kept")], {}, b""),
        "handler-called-unknown": ([block(b"Unknown", b"kept")], {}, b""),
        "handler-in-other-case": ([block(b"message", b"kept, not a message")], {}, b""),
        "command-of-count-0-and-flag-2": ([block(b"Command", b"\2", count=0, saved=(0, b"\1"))], {}, b""),
        "act-on-file-of-count-0-and-flag-2": ([block(b"Act on file", b"\2", count=0, saved=(0, b"\1"))], {}, b""),
        "command-of-count-1": ([block(b"Command", b"\1")], {}, b""),
        "act-on-file-of-count-1": ([block(b"Act on file", b"\0")], {}, b""),
        "command-without-nul": ([block(b"Command", b"\0ls")], {}, b""),
        "do-nothing-of-count-5": ([block(b"Do nothing", b"", count=5, saved=(0, b"")), event()], {}, b""),
        "message-without-nul": ([block(b"Message", b"no end")], {}, b""),
        "message-of-a-bare-nul": ([block(b"Message", b"\0")], {}, b""),
        "message-with-a-nul-inside": ([block(b"Message", b"one\0two\0")], {}, b""),
        "bytes-behind-the-end": (FULL[:1], {}, b"what is this?"),
    }


def refused():
    """name: (bytes, what the complaint says)"""
    plain = make_set([event()]).bytes
    icon = make_set([FULL[1]])
    mini = next(offset for offset, name in icon.fields if name == "MiniIcon")
    cut = " is cut off by the end of the file"
    handler = "event 1: the data of its handler \"%s\" cannot be read"

    def text_too_long(field):
        shown = field.replace("HandlerN", "handler n")
        return make_set([event(**{field: b"x" * 4096})]).bytes, f"event 1: {shown} has no end"

    def blocks(name, count, data):
        return make_set([block(name, data, count=count)]).bytes, handler % name.decode()

    return {
        "empty": (b"", "it is empty"),
        "marker-alone": (b"\0", "it does not begin with a version"),
        "version-without-end": (b"\0" + b"1" * 30 + plain, "it does not begin with a version"),
        "version-cut": (b"\x001.2", "it does not begin with a version"),
        "version-1.3": (make_set([event()], version=b"1.3").bytes, "unknown version (1.3)"),
        "version-empty": (make_set([event()], version=b"").bytes, "unknown version ()"),
        "version-with-a-blank": (make_set([event()], version=b"1.2 ").bytes, "unknown version (1.2 )"),
        "version-with-line-breaks": (make_set([], version=b"1\n2\r3\x1b[2J").bytes, "unknown version (1?2?3?[2J)"),
        "count-cut": (plain[:8], "the number of events is cut off"),
        "count-negative": (make_set([event()], count=-1).bytes, "too short for the 4294967295 events"),
        "count-most-negative": (make_set([event()], count=-2**31).bytes, "too short for the 2147483648 events"),
        "count-huge": (make_set([event()], count=2**31 - 1).bytes, "too short for the 2147483647 events"),
        "count-one-too-many": (make_set([event()], count=2).bytes, "event 2: "),
        "count-one-too-few": (make_set([FULL[0]] * 3, count=4).bytes, "event 4: "),
        "marker-of-the-other-order": (b"\1" + plain[1:], "too short for the 16777216 events"),
        "name-of-4096-bytes": text_too_long("Name"),
        "comment-of-4096-bytes": text_too_long("Comment"),
        "handler-name-of-4096-bytes": text_too_long("HandlerName"),
        "name-without-end": (plain[:9] + b"Tea" * 45, "event 1: Name" + cut),
        "icon-cut": (icon.bytes[:mini + 255], "event 1: mini icon" + cut),
        "message-of-count-ffffffff": blocks(b"Message", 0xffffffff, b"text\0"),
        "command-of-count-ffffffff": blocks(b"Command", 0xffffffff, b"\0ls\0"),
        "act-on-file-of-count-80000000": blocks(b"Act on file", 0x80000000, b"\0/tmp\0"),
        "unknown-block-of-count-ffffffff": blocks(b"Moon phases", 0xffffffff, b"text\0"),
        "unknown-block-one-too-long": (make_set([block(b"Moon phases", b"12345")]).bytes.replace(
            b"phases\0\5\0\0\0", b"phases\0" + struct.pack("<I", 5 + 118 + 1)), handler % "Moon phases"),
        "window-settings-cut": (plain[:-1], "the settings of its window are cut off"),
    }


def make_all():
    """The files by their names; what a reader finds in each, what it is saved as, what is said of the refused."""
    files, expected = {}, {"read": {}, "refused": {}}

    def add(name, events, after=b"", **arguments):
        made = make_set(events, **arguments)
        files[name] = made.bytes + after
        expected["read"][name] = {"dump": dump(events, **arguments),
                                  "saved": saved_again(events, **arguments).hex()}

    for version in (b"1.0", b"1.1", b"1.2"):
        for order, word in (("<", "little"), (">", "big")):
            add(f"golden/full-{version.decode()}-{word}.kestrin", FULL, version=version, order=order, layout=FULL_LAYOUT)
    add("golden/no-events.kestrin", [])
    add("golden/tea.kestrin", [event()], layout=dict(ColumnOrder=[0, 1, 5, 2, 3, 4]))
    for name, (events, arguments, after) in readable().items():
        add(f"readable/{name}.kestrin", events, after, **arguments)
    for name, (content, complaint) in refused().items():
        files[f"refused/{name}.kestrin"] = content
        expected["refused"][f"refused/{name}.kestrin"] = complaint
    return files, expected


def main():
    files, _ = make_all()
    if sys.argv[1:] == ["--write"]:
        for name, content in files.items():
            (HOME / name).parent.mkdir(parents=True, exist_ok=True)
            (HOME / name).write_bytes(content)
        return 0
    there = {str(path.relative_to(HOME)): path.read_bytes() for path in HOME.rglob("*") if path.is_file()}
    faults = [name for name in sorted(files.keys() | there.keys()) if files.get(name) != there.get(name)]
    for name in faults:
        print(f"sets/{name}:", "is missing" if name not in there else
              "is not made here" if name not in files else "differs from what is made here")
    print(f"{len(files)} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
