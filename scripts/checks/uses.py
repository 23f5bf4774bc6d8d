#!/usr/bin/env python3
"""Finds includes of the project's own headers that are not used, and those that are missing.

    uses.py [ROOT]

The sources are read as text: that takes a second and needs no build, and it is blind to what only a
compiler knows (overloads, names of the same spelling in two classes). A file of src, include or
addons
  * uses, of each project header it includes, a name that the header declares, members included;
  * has the types, constants and macros it names from a header that it includes, or that one of
    these includes for its own declarations, and from no further away. A type declared in advance
    in one of these places counts as known, and the number types of kestrin/Types.h always do.
Prints one line a fault; the exit status is 1 when there is any.
"""
import pathlib
import re
import sys

from includes import may_include

EVERYWHERE = "include/kestrin/Types.h"
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*["<]([^">\n]+)[">]', re.MULTILINE)
NOISE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<!\w)\'(?:\\.|[^\'\\\n])+\'', re.DOTALL)
DEFINE = re.compile(r"^[ \t]*#[ \t]*define[ \t]+(\w+)", re.MULTILINE)
DIRECTIVE = re.compile(r"^[ \t]*#(?:\\\n|[^\n])*", re.MULTILINE)
TOKEN = re.compile(r"[A-Za-z_]\w*|::|->|\S")
TYPE = re.compile(r"\b(?:class|struct|union|enum(?: class| struct)?) (?:\[ \[ .*? \] \] )?(\w+)")
ADVANCE = re.compile(r"\b(?:class|struct|enum(?: class)?) (\w+)(?: : [\w: ]+)? ;")
FUNCTION = re.compile(r"(\w+|operator [^\w(]+) \(")
VALUE = re.compile(r"(\w+)(?: \[.*?\])*(?: =| \{.*)?$")


def code_of(text):
    """The text without comments, literals and directives."""
    return DIRECTIVE.sub("", NOISE.sub(" ", text))


class Names:
    """What one header declares outside classes."""

    def __init__(self, text):
        self.solid = set(DEFINE.findall(text))  # types, constants, macros: for both rules
        self.loose = set()  # functions, members
        self.read(TOKEN.findall(code_of(text)))

    def read(self, tokens):
        statement, depth, at = [], 0, 0
        while at < len(tokens):
            token = tokens[at]
            at += 1
            if token == "{" and self.opens_scope(statement):
                statement = []
            elif token == "{":
                end = self.matching(tokens, at)
                self.take(statement, tokens[at:end])
                at = end + 1
                # A type's or a value's braces end with a semicolon, a function's do not.
                if at < len(tokens) and tokens[at] == ";":
                    at += 1
                statement = []
            elif token == ";":
                self.take(statement, None)
                statement = []
            elif token == "}":
                statement = []
            else:
                statement.append(token)

    @staticmethod
    def opens_scope(statement):
        return statement[:1] == ["namespace"] or statement == ["extern"]

    @staticmethod
    def matching(tokens, at):
        depth = 1
        while at < len(tokens):
            depth += {"{": 1, "}": -1}.get(tokens[at], 0)
            if not depth:
                return at
            at += 1
        return at

    def take(self, statement, body):
        text = " ".join(statement)
        if not text:
            return
        found = TYPE.search(text) if "(" not in text and "=" not in statement else None
        if statement[0] == "using" or statement[0] == "typedef":
            self.solid.update(statement[1:2] if statement[0] == "using" else statement[-1:])
        elif found and body is not None:
            self.solid.add(found[1])
            self.loose.update(word for word in body if word.isidentifier())
            if re.match(r"enum (?!class|struct)", text):
                self.enumerators(body)
        elif statement[:2] == ["enum", ":"] or statement == ["enum"]:
            self.enumerators(body or [])
        elif not found:
            function = FUNCTION.search(text)
            if function and "=" not in text[:function.start()].split():
                self.loose.add(function[1])
            else:
                self.solid.update(self.variables(text))

    @staticmethod
    def variables(text):
        """The names that a declaration like "const int A = 1, B[2]" gives to values."""
        while (plain := re.sub(r"< [^<>]* >", "", text)) != text:
            text = plain
        for part in text.split(" , "):
            found = VALUE.search(part.split(" = ")[0])
            if found:
                yield found[1]

    def enumerators(self, body):
        depth, expected = 0, True
        for token in body:
            if token in "({[":
                depth += 1
            elif token in ")}]":
                depth -= 1
            elif depth == 0 and token == ",":
                expected = True
            elif expected and depth == 0:
                self.solid.add(token)
                expected = False


class Tree:
    def __init__(self, root):
        self.root = root
        self.files = {}
        for top in ("include", "src", "addons"):
            for path in sorted((root / top).rglob("*")):
                if path.suffix in (".h", ".cpp"):
                    self.files[path.relative_to(root).as_posix()] = path.read_text("utf-8")
        self.names = {path: Names(text) for path, text in self.files.items() if path.endswith(".h")}
        self.code = {path: " ".join(TOKEN.findall(code_of(text))) for path, text in self.files.items()}
        self.advance = {path: set(ADVANCE.findall(code)) for path, code in self.code.items()}
        self.homes = {}
        for path, names in self.names.items():
            for name in names.solid:
                self.homes.setdefault(name, []).append(path)

    def resolve(self, path, name):
        for folder in (str(pathlib.PurePosixPath(path).parent), "src", "include"):
            if f"{folder}/{name}" in self.files:
                return f"{folder}/{name}"
        return None

    def includes(self, path):
        return {target for name in INCLUDE.findall(self.files[path])
                if (target := self.resolve(path, name))}

    def macro_words(self, path):
        """What the directives other than includes name."""
        lines = DIRECTIVE.findall(NOISE.sub(" ", self.files[path]))
        return {word for line in lines if "include" not in line for word in re.findall(r"\w+", line)}

    def near(self, path):
        """The headers a file may take names from: those it includes, and one step further."""
        own = re.sub(r"\.cpp$", ".h", path)
        first = self.includes(path) | (self.includes(own) if own in self.files else set())
        return first | {target for header in first for target in self.includes(header)}

    def faults_of(self, path):
        code = self.code[path]
        words = set(re.findall(r"\w+", code)) | self.macro_words(path)
        own = re.sub(r"\.cpp$", ".h", path)
        for header in self.includes(path):
            names = self.names[header]
            if header != own and not words & (names.solid | names.loose):
                yield f'{path}: includes "{header.split("/", 1)[1]}" and uses nothing of it'
        near = self.near(path)
        for name in sorted(words & self.homes.keys()):
            homes = self.homes[name]
            if len(homes) > 1 or homes[0] in near | {path, EVERYWHERE}:
                continue
            if any(name in self.advance[place] for place in near | {path}):
                continue
            # Where the header is out of bounds, or the file or its header declares the name itself,
            # it is another.
            declared = rf"[\w>] (?:[*&] )?{name} [(=[]|\benum [^{{}};]*\{{[^{{}}]*\b{name}\b"
            if not may_include(path, homes[0]) or re.search(declared, code + self.code.get(own, "")):
                continue
            # Behind a dot, an arrow or a scope it is somebody else's name.
            if re.search(rf"(?<!\. )(?<!-> )(?<!:: )(?<!class )\b{name}\b", code):
                yield f'{path}: names {name} without "{homes[0].split("/", 1)[1]}"'


def main():
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]
    tree = Tree(root.resolve())
    faults = [fault for path in tree.files for fault in tree.faults_of(path)]
    print("\n".join(faults + [f"uses: {len(tree.files)} files, {len(faults)} faults"]))
    return 1 if faults or not tree.files else 0


if __name__ == "__main__":
    sys.exit(main())
