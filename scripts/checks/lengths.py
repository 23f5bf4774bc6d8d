#!/usr/bin/env python3
"""Fails for every C++ file of the project with more than 400 lines. Functions are clang-tidy's."""
import pathlib
import sys

LIMIT = 400


def main():
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]
    files = [path for top in ("include", "src", "addons") for path in (root / top).rglob("*")
             if path.suffix in (".h", ".cpp")]
    faults = 0
    for path in sorted(files):
        lines = path.read_bytes().count(b"\n")
        if lines > LIMIT:
            print(f"{path.relative_to(root)}: {lines} lines, {LIMIT} at most; split it by concern")
            faults += 1
    print(f"lengths: {len(files)} files, {faults} faults")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
