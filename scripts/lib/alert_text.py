#!/usr/bin/env python3
"""Waits for an alert of kestrin and prints what a screen reader would read of it.

    alert_text.py SECONDS

The first line is the window's title, the others are its text. Exit status 1 when no alert comes.
"""
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def children(node):
    return [child for child in map(node.get_child_at_index, range(node.get_child_count())) if child]


def showing(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


def texts(node):
    if node.get_role() == Atspi.Role.LABEL:
        if showing(node):  # a reminder keeps the line for another time hidden
            yield node.get_name()
    elif node.get_role() == Atspi.Role.TEXT:
        yield Atspi.Text.get_text(node, 0, -1)
    for child in children(node):
        yield from texts(child)


def find_alert():
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for application in filter(lambda node: node.get_name() == "kestrin", children(desktop)):
        for window in children(application):
            if window.get_role() in (Atspi.Role.ALERT, Atspi.Role.DIALOG) and showing(window):
                return window
    return None


def main():
    end = time.monotonic() + float(sys.argv[1])
    while time.monotonic() < end:
        try:
            alert = find_alert()
            lines = list(filter(None, texts(alert))) if alert else []
        except GLib.Error:  # the application was still building its windows, or has gone
            lines = []
        if lines:
            print("\n".join([alert.get_name()] + lines))
            return 0
        time.sleep(0.2)
    return 1


if __name__ == "__main__":
    sys.exit(main())
