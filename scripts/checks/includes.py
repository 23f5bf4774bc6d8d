#!/usr/bin/env python3
"""Checks which way the includes of the project run.

    includes.py [ROOT]

Rules, with the names of the rooms as folders below src:
  * a room includes itself and the rooms below it, and no other;
  * include/kestrin includes nothing of src, an add-on nothing but include/kestrin and itself;
  * no file sees Qt and GLib headers together, because both claim the word "signals".
That the plain rooms stand without a toolkit needs no rule here: their targets link none, so the
compiler finds none of its headers, and links.py looks at the programs made of them.
Prints one line a fault; the exit status is 1 when there is any.
"""
import pathlib
import re
import sys

BELOW = {
    "support": [],
    "core": ["support"],
    "handlers": ["core", "support"],
    "session": ["core", "support"],
    "interface": ["handlers", "core", "support"],
    "programs": ["interface", "session", "handlers", "core", "support"],
}
# The rooms within a folder of src, and those of the same folder that each may include.
INNER = {
    "core": {
        "timing": [],
        "ports": [],
        "loop": ["timing", "ports"],
        "settings": ["loop", "timing", "ports"],
        "journal": ["loop", "timing", "ports"],
        "events": ["journal", "settings", "loop", "timing", "ports"],
        "files": ["events", "journal", "settings", "loop", "timing", "ports"],
        "editing": ["files", "events", "journal", "settings", "loop", "timing", "ports"],
        "delivery": ["events", "journal", "settings", "loop", "timing", "ports"],
        "app": ["files", "delivery", "events", "journal", "settings", "loop", "timing", "ports"],
    },
    "interface": {
        "common": [],
        "fields": ["common"],
        "icons": ["common"],
        "list": ["icons", "common"],
        "alerts": ["icons", "common"],
        "history": ["common"],
        "settings": ["fields", "common"],
        "handlerviews": ["fields", "common"],
        "editor": ["list", "icons", "fields", "common"],
        "sets": ["list", "common"],
        None: ["sets", "editor", "handlerviews", "settings", "history", "alerts", "list", "icons",
               "fields", "common"],  # what makes the windows of all rooms
    },
}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"\n]+)[>"]', re.MULTILINE)
QT_HEADER = re.compile(r"^(Qt\w*/.*|Q[A-Z]\w*|Qt|q[a-z0-9_]+\.h)$")
GLIB_HEADER = re.compile(r"^(gio|glib|gobject|gmodule|gio-unix-2\.0|atk|atspi|gtk|gdk\w*)/"
                         r"|^(glib|glib-object|glib-unix|gmodule)\.h$")


class Tree:
    def __init__(self, root):
        self.root = root
        self.faults = []
        self.includes = {}

    def fault(self, path, text):
        self.faults.append(f"{path}: {text}")

    def read(self, path):
        """The includes of one file: (the text in the brackets, the project's file or None)."""
        if path not in self.includes:
            found = []
            for quote, name in INCLUDE.findall((self.root / path).read_text("utf-8", "replace")):
                target = self.resolve(path, name)
                if target is None and quote == '"' and not name.endswith(".moc"):
                    self.fault(path, f'includes "{name}", which is no file of the project')
                found.append((name, target))
            self.includes[path] = found
        return self.includes[path]

    def resolve(self, path, name):
        for folder in (pathlib.PurePosixPath(path).parent, "src", "include"):
            candidate = (self.root / folder / name).resolve()
            if candidate.is_file() and candidate.is_relative_to(self.root):
                return candidate.relative_to(self.root).as_posix()
        return None

    def reached(self, path):
        """Every header outside the project that a file sees, with the way that leads there."""
        seen, outside, waiting = {path}, {}, [(path, [])]
        while waiting:
            current, way = waiting.pop()
            for name, target in self.read(current):
                if target is None:
                    outside.setdefault(name, way)
                elif target not in seen:
                    seen.add(target)
                    waiting.append((target, way + [target]))
        return outside


def home_of(path):
    """The folder whose rules a file obeys."""
    parts = path.split("/")
    if parts[0] == "src" and len(parts) > 2:
        return parts[1]
    return "addons" if parts[0] == "addons" else "public"


def inner_room_of(path):
    parts = path.split("/")
    return parts[2] if len(parts) > 3 else None


def may_include(path, target):
    home, other = home_of(path), home_of(target)
    if other == "public":
        return True
    if home == "addons":
        return other == "addons"
    if home == other and home in INNER:
        room, beside = inner_room_of(path), inner_room_of(target)
        return room == beside or beside in INNER[home].get(room, [])
    return home == other or other in BELOW.get(home, [])


def check_file(tree, path):
    for name, target in tree.read(path):
        if target and not may_include(path, target):
            home = "/".join(filter(None, (home_of(path), inner_room_of(path))))
            tree.fault(path, f'includes "{name}", which {home} must not know')
    outside = tree.reached(path)
    qt = sorted(name for name in outside if QT_HEADER.match(name))
    glib = sorted(name for name in outside if GLIB_HEADER.match(name))
    if qt and glib:
        tree.fault(path, f"sees <{qt[0]}>{through(outside[qt[0]])} together with "
                         f"<{glib[0]}>{through(outside[glib[0]])}")


def through(way):
    return f" (through {' > '.join(way)})" if way else ""


def check(root):
    tree = Tree(root.resolve())
    files = [path.relative_to(tree.root).as_posix() for top in ("include", "src", "addons")
             for path in sorted((tree.root / top).rglob("*")) if path.suffix in (".h", ".cpp")]
    for path in files:
        parts = path.split("/")
        if parts[0] == "src" and (len(parts) < 3 or parts[1] not in BELOW):
            tree.fault(path, "stands in no room that scripts/checks/includes.py knows")
        elif parts[0] == "src" and parts[1] in INNER and inner_room_of(path) not in INNER[parts[1]]:
            tree.fault(path, f"stands in no room of {parts[1]} that scripts/checks/includes.py knows")
        check_file(tree, path)
    if not files:
        tree.fault(root, "holds no sources")
    return tree.faults, len(files)


def main():
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]
    faults, count = check(root)
    for fault in faults:
        print(fault)
    print(f"includes: {count} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
