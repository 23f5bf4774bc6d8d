#!/usr/bin/env python3
"""Fails for every C++ file of the project with more than 400 lines, and for every class that is as
long: its definition and those of its members together, whichever files they stand in. Functions are
clang-tidy's.
"""
import collections
import pathlib
import re
import sys

FILE_LIMIT = 400
CLASS_LIMIT = 400
# Classes that are still longer, and may be so long.
LONGER = {"EventSet": 531}

# In formatted code a definition begins in the first column and ends with a brace there.
CLASS = re.compile(r"(?:class|struct) (\w+)\b[^;]*$")
MEMBER = re.compile(r"(?:[\w:<>,&*~ \[\]]+ )?[*&]*(\w+)(?:<\w+>)?(?:::\w+)*::(?:~?\w+|operator.*)\(")
END = re.compile(r"\}|\S.*\}$|\S.*= default;$")


def class_lengths(texts):
    """Lines of each class that is defined in the texts."""
    lengths, classes = collections.Counter(), set()
    for text in texts:
        name = None
        for line in text.splitlines():
            if name is None:
                opened = CLASS.match(line)
                begun = opened or MEMBER.match(line)
                if not begun:
                    continue
                name = begun[1]
                if opened:
                    classes.add(name)
            lengths[name] += 1
            if END.match(line):
                name = None
    return {name: lengths[name] for name in classes}


def main():
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]
    files = [path for top in ("include", "src", "addons") for path in (root / top).rglob("*")
             if path.suffix in (".h", ".cpp")]
    faults = []
    texts = {path: path.read_text(encoding="utf-8") for path in sorted(files)}
    for path, text in texts.items():
        if text.count("\n") > FILE_LIMIT:
            faults.append(f"{path.relative_to(root)}: {text.count(chr(10))} lines, {FILE_LIMIT} at "
                          "most; split it by concern")
    for name, length in sorted(class_lengths(texts.values()).items()):
        if length > LONGER.get(name, CLASS_LIMIT):
            faults.append(f"class {name}: {length} lines, {LONGER.get(name, CLASS_LIMIT)} at most; "
                          "give a concern to a class of its own")
    print("\n".join(faults + [f"lengths: {len(files)} files, {len(faults)} faults"]))
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
