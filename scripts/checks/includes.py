#!/usr/bin/env python3
"""Checks which way the includes of the project run.

    includes.py [ROOT] [--commands FILE]

Rules, with the names of the rooms as folders below src:
  * a room includes itself and the rooms below it, and no other;
  * include/kestrin includes nothing of src, an add-on nothing but include/kestrin and itself;
  * the rooms and programs that stand without a toolkit reach no Qt and no GLib header, and, with
    --commands (a compile_commands.json), none of their files is compiled with the paths to one;
  * no file sees Qt and GLib headers together, because both claim the word "signals".
Prints one line a fault; the exit status is 1 when there is any.
"""
import argparse
import json
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
        "delivery": ["events", "journal", "settings", "loop", "timing", "ports"],
        "app": ["files", "delivery", "events", "journal", "settings", "loop", "timing", "ports"],
    },
}
PLAIN = ["include/kestrin", "src/support", "src/core", "src/handlers", "src/programs/background",
         "src/programs/ctl"]
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"\n]+)[>"]', re.MULTILINE)
QT_HEADER = re.compile(r"^(Qt\w*/.*|Q[A-Z]\w*|Qt|q[a-z0-9_]+\.h)$")
GLIB_HEADER = re.compile(r"^(gio|glib|gobject|gmodule|gio-unix-2\.0|atk|atspi|gtk|gdk\w*)/"
                         r"|^(glib|glib-object|glib-unix|gmodule)\.h$")
STREAM_HEADER = re.compile(r"^([io]|io|[io]?f|[io]?s|[io]?span|sync)?stream$|^iomanip$")
TOOLKIT_PATH = re.compile(r"/(qt6|QtCore|QtWidgets|QtGui|QtDBus|glib-2\.0|gio-unix-2\.0)(/|$)")


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
    if any(path.startswith(folder + "/") for folder in PLAIN):
        for name in qt + glib:
            tree.fault(path, f"reaches <{name}>{through(outside[name])}, but stands without a toolkit")
    elif qt and glib:
        tree.fault(path, f"sees <{qt[0]}>{through(outside[qt[0]])} together with "
                         f"<{glib[0]}>{through(outside[glib[0]])}")
    if path.startswith("src/programs/background/"):
        for name in sorted(filter(STREAM_HEADER.match, outside)):
            tree.fault(path, f"reaches <{name}>{through(outside[name])}: the deliverer has no streams")


def through(way):
    return f" (through {' > '.join(way)})" if way else ""


def check_commands(tree, commands):
    """No file of a plain room is compiled with a way to a toolkit. Counts what it looked at."""
    looked_at = 0
    for entry in json.loads(commands.read_text()):
        file = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if not file.is_relative_to(tree.root):
            continue
        path = file.relative_to(tree.root).as_posix()
        if not any(path.startswith(folder + "/") for folder in PLAIN):
            continue
        looked_at += 1
        words = entry["command"].split()
        for word in words:
            if TOOLKIT_PATH.search(word) or word.startswith("-DQT_"):
                tree.fault(path, f"is compiled with {word}, so its target links a toolkit")
                break
    if not looked_at:
        tree.fault(commands, "names no file of a plain room; configure the build folder again")


def check(root, commands=None):
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
    if commands:
        check_commands(tree, commands)
    return tree.faults, len(files)


def main():
    parser = argparse.ArgumentParser()
    here = pathlib.Path(__file__).resolve().parents[2]
    parser.add_argument("root", nargs="?", type=pathlib.Path, default=here)
    parser.add_argument("--commands", type=pathlib.Path)
    arguments = parser.parse_args()
    faults, count = check(arguments.root, arguments.commands)
    for fault in faults:
        print(fault)
    print(f"includes: {count} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
