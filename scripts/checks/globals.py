#!/usr/bin/env python3
"""Fails for every object of static lifetime that can change in a program and is not listed here.

    globals.py PROGRAM...

Looks at the project's own symbols in the sections that stay writable while the program runs; what
only the loader writes, and constants, stand in others. The programs must not have been stripped.
"""
import re
import subprocess
import sys

ALLOWED = {
    "kestrin::AddOnServices": "the context behind the static functions of the public headers",
    "kestrin::(anonymous namespace)::heldLocks": "each thread's own: the locks that it holds",
    "kestrin::(anonymous namespace)::arrivals": "where a signal handler says that it was called",
    "kestrin::StandardLargeIconData(int)::all": "drawn once, when first asked for",
    "kestrin::StandardMiniIconData(int)::all": "likewise",
}
# By the toolkit and its compiler; and guards, whose objects are named themselves.
MADE = re.compile(r"^QtPrivate::QMetaTypeInterfaceWrapper<|^QMetaType::register\w+Impl<|"
                  r"::qt_metatype_id\(\)::metatype_id$|"
                  r"^guard variable for ")
# The C++ library's, in a program that brings it along: its locales, errors and allocation.
LIBRARY = re.compile(r"^\(anonymous namespace\)::(__new_handler|emergency_pool|\w+_category_instance|"
                     r"(c_locale|codecvt|collate|ctype|messages|money|num|time)\w*|"
                     r"(name|cache|facet)_(c|vec)|get_\w+\(\)::(global|locale_\w*mutex))$")
WRITABLE = {".data", ".bss", ".tdata", ".tbss"}


def symbols_of(program):
    """Pairs of a symbol of the project and its section."""
    symbols = subprocess.run(["nm", "-C", "--format=sysv", program], check=True,
                             capture_output=True, text=True).stdout
    for line in symbols.splitlines():
        fields = line.split("|")
        name = re.sub(r"\[abi:\w+\]", "", "|".join(fields[:-6]).strip())
        if "kestrin::" in name or name.startswith("(anonymous namespace)::"):
            yield name, fields[-1].strip()


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    faults = 0
    for program in sys.argv[1:]:
        symbols = list(symbols_of(program))
        if not symbols:
            print(f"{program}: has no symbols to look at")
            faults += 1
        for name, section in symbols:
            if section in WRITABLE and name not in ALLOWED and not MADE.search(name) and not LIBRARY.search(name):
                print(f"{program}: {name} can change; let somebody own it")
                faults += 1
    print(f"globals: {len(sys.argv) - 1} programs, {faults} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
