#!/usr/bin/env python3
"""Fills a state folder as years of use would: every event of a set put off, and 5 MB of history.
docs/journal.md tells the form of the lines.
  full-state.py KESTRINCTL SET STATE_FOLDER
"""
import collections
import json
import pathlib
import subprocess
import sys
import time

HISTORY_BYTES, DAY = 4_900_000, 86400
MESSAGE, PUT_OFF = 3, "putoff"  # the role of a message; how far its alert is


def line(number, fields):
    escaped = (f"{key}={value}".replace("\\", "\\\\").replace("\t", "\\t").replace("\n", "\\n")
               for key, value in fields.items())
    content = "\t".join([f"be0c4be0c4be0c4b.{number}", *escaped]).encode()
    check = 2166136261
    for byte in content:
        check = (check ^ byte) * 16777619 & 0xffffffff
    return b"%08x\t%s\n" % (check, content)


def record(path, event, place, days):
    """A message that came so many days ago."""
    due = int(time.time()) - days * DAY
    return {"by": "another-boot/1/1", "set": path, "name": event["Name"], "handler": event["HandlerName"],
            "place": place, "kind": "event", "from": f"{due},{due},1",
            "to": f"{event['ActualEventTime']},{event['NextEventTime']},{event['Status']}", "at": due, "act": "acted",
            "role": MESSAGE, "text": f"Kestrin event:  {event['Name']}\n\nFive minutes are enough for it.",
            "buttons": "Ok", "harmless": 0, "default": 0, "answered": due + 60}


def main(ctl, path, folder):
    events = json.loads(subprocess.run([ctl, "dump", path], check=True, capture_output=True).stdout)["events"]
    places, folder = collections.Counter(), pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True, mode=0o700)
    journal, later = [], []
    for number, event in enumerate(events, 1):
        kind = event["Name"], event["HandlerName"]
        last = record(path, event, places[kind], 1) | {"alert": PUT_OFF}
        places[kind] += 1
        journal.append(line(number, last))
        later.append(line(10000 + number, last | {"of": f"be0c4be0c4be0c4b.{number}", "wall": "", "again": "",
                                                  "moment": int(time.time()) + DAY + number}))
    history, size = [], 0
    while size < HISTORY_BYTES:
        number = len(history)
        answered = {"alert": "answered", "button": 0, "answer": "Ok"}
        history.append(line(20000 + number, record(path, events[number % len(events)], 0, 80) | answered))
        size += len(history[-1])
    for name, lines in ("journal", journal), ("later", later), ("history", history):
        (folder / name).write_bytes(b"".join(lines))


if __name__ == "__main__":
    main(*sys.argv[1:])
