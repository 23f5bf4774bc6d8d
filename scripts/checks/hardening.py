#!/usr/bin/env python3
"""Checks what built programs and add-ons bring against attacks on their memory.

    hardening.py [--fortified] FILE...

Each must be independent of its position, have its relocations bound at start and read-only from then
on, no executable stack, and guards on it. --fortified: calls that write into buffers must be the
checked ones, which only an optimising build has.
"""
import re
import subprocess
import sys

# What every call of an optimised build reaches in its checked form. The rest (memcpy, read) has one only
# where the size of the buffer is known, so an add-on may well call it plain.
FORTIFIABLE = {"fprintf", "vfprintf", "printf", "vprintf"}


def faults_of(file, fortified):
    told = subprocess.run(["readelf", "-W", "--file-header", "--segments", "--dynamic", "--dyn-syms", file],
                          check=True, capture_output=True, text=True).stdout
    needed = set(re.findall(r"\sUND\s+(\w+)", told))
    stack = re.search(r"GNU_STACK\s.*\s(R\S*)\s+0x\w+$", told, re.MULTILINE)
    rules = {
        "is not independent of its position": re.search(r"Type:\s+DYN", told),
        "has no read-only relocations": "GNU_RELRO" in told,
        "binds its symbols lazily": re.search(r"BIND_NOW|FLAGS_1\).*\bNOW\b", told),
        "has an executable stack": stack and "E" not in stack[1],
        "has no guards on its stack": "__stack_chk_fail" in needed,
    }
    if fortified:
        checked = any(name.startswith("__") and name.endswith("_chk") for name in needed)
        rules["calls nothing in its checked form"] = checked or not needed & FORTIFIABLE
    return [f"{file}: {fault}" for fault, holds in rules.items() if not holds]


def main():
    fortified, files = sys.argv[1:2] == ["--fortified"], sys.argv[1:]
    files = files[1:] if fortified else files
    if not files:
        sys.exit(__doc__)
    faults = [fault for file in files for fault in faults_of(file, fortified)]
    print("\n".join(faults + [f"hardening: {len(files)} files, {len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
