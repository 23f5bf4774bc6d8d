#!/usr/bin/env python3
"""Checks what built programs carry along.

    links.py PROGRAM=FORBIDDEN[,FORBIDDEN...]...

FORBIDDEN is "toolkit" (no Qt and no GLib library among those the program is linked with, nor among
those these bring) or "streams" (the program initialises no standard streams).
"""
import re
import subprocess
import sys

TOOLKIT = re.compile(r"^lib(Qt\d|glib-2|gio-2|gobject-2|gmodule-2)")


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def libraries_of(program):
    """The names the loader would load, the program's own and theirs."""
    return re.findall(r"^\s*(\S+)", output_of("ldd", program), re.MULTILINE)


def faults_of(program, forbidden):
    if forbidden == "toolkit":
        return [f"{program}: is linked with {name}" for name in libraries_of(program)
                if TOOLKIT.match(name.rsplit("/", 1)[-1])]
    if forbidden == "streams":
        symbols = output_of("nm", "--dynamic", "--undefined-only", program)
        return [f"{program}: initialises the standard streams"] * ("ios_base4InitC1" in symbols)
    sys.exit(f"links.py: there is no rule \"{forbidden}\"")


def main():
    pairs = [argument.split("=", 1) for argument in sys.argv[1:]]
    if not pairs or any(len(pair) < 2 for pair in pairs):
        sys.exit(__doc__)
    faults = [fault for program, rules in pairs for rule in rules.split(",")
              for fault in faults_of(program, rule)]
    print("\n".join(faults + [f"links: {len(pairs)} programs, {len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
