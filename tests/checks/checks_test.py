"""The checks of the sources, run on small trees that break one rule each."""
import importlib.util
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

CHECKS = pathlib.Path(__file__).resolve().parents[2] / "scripts/checks"


def load(name):
    loader = importlib.util.spec_from_file_location(name, CHECKS / f"{name}.py")
    module = importlib.util.module_from_spec(loader)
    loader.loader.exec_module(module)
    return module


includes = load("includes")

GOOD = {
    "include/kestrin/Types.h": "#include <cstdint>\n",
    "src/support/Clock.h": '#include "kestrin/Types.h"\n',
    "src/core/events/Event.h": '#include "support/Clock.h"\nclass QWidget;\n',
    "src/handlers/Table.h": '#include "core/events/Event.h"\n',
    "src/session/Bus.cpp": '#include <QDBusConnection>\n#include "core/events/Event.h"\n',
    "src/session/S.h": "",
    "src/session/Launch.cpp": '#include <gio/gio.h>\n#include "core/events/Event.h"\n',
    "src/interface/View.h": '#include <QWidget>\n#include "handlers/Table.h"\n',
    "src/programs/kestrin/main.cpp": '#include "interface/View.h"\n#include "core/events/Event.h"\n',
    "src/programs/background/main.cpp": "#include <systemd/sd-bus.h>\n",
    "addons/beep/Beep.cpp": '#include "kestrin/Types.h"\n#include "Tone.h"\n',
    "addons/beep/Tone.h": "",
}

# Files that include what their room must not know.
UPWARDS = {
    "src/core/events/Event.h": '#include "handlers/Table.h"',
    "src/support/B.h": '  #  include <core/events/Event.h>',
    "src/core/timing/T.h": '#include "core/events/Event.h"',
    "src/handlers/H.h": '#include "session/S.h"',
    "src/interface/I.h": '#include "../session/S.h"',
    "src/interface/list/L.h": '#include "interface/View.h"',
    "include/kestrin/P.h": '#include "core/events/Event.h"',
    "addons/beep/Beep.cpp": '#include "core/events/Event.h"',
}

# What is added to or replaced in the good tree, and a part of the one line that must come out.
BAD = {path: ({path: line + "\n"}, "must not know") for path, line in UPWARDS.items()} | {
    "a room of core that nobody knows": ({"src/core/attic/A.h": "\n"}, "stands in no room of core"),
    "Qt and GIO in one file": (
        {"src/session/A.cpp": "#include <QObject>\n#include <gio/gio.h>\n"}, "together with"),
    "Qt and GIO through a header": (
        {"src/session/S.h": "#include <gio/gio.h>\n",
         "src/session/A.cpp": '#include <QObject>\n#include "session/S.h"\n'}, "through"),
    "a header that is not there": ({"src/core/loop/A.cpp": '#include "core/Gone.h"\n'}, "no file"),
    "a room nobody knows": ({"src/attic/A.cpp": ""}, "stands in no room"),
}


class Tree(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.root)

    def lay(self, files):
        for name, text in files.items():
            path = self.root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)

    def test_good_tree(self):
        self.lay(GOOD)
        self.assertEqual(includes.check(self.root), ([], len(GOOD)))

    def test_bad_trees(self):
        for name, (files, expected) in BAD.items():
            with self.subTest(name):
                shutil.rmtree(self.root)
                self.lay(GOOD | files)
                faults, _ = includes.check(self.root)
                self.assertEqual(len([fault for fault in faults if expected in fault]), 1, faults)

    def test_long_file(self):
        for lines, status in ((400, 0), (401, 1)):
            with self.subTest(lines=lines):
                self.lay({"src/core/loop/A.cpp": "\n" * lines})
                run = subprocess.run([sys.executable, CHECKS / "lengths.py", self.root],
                                     capture_output=True, text=True, check=False)
                self.assertEqual((run.returncode, "A.cpp" in run.stdout), (status, status == 1))

    def test_long_class(self):
        """Its definition and the members in other files count together."""
        member = "int A::{}() {{\n" + "\n" * 196 + "}}\n\n"
        for extra, status in (("", 0), ("A::A() = default;\n", 1)):
            with self.subTest(extra=extra):
                self.lay({"src/core/loop/A.h": "class A {\n  int b, c;\n\n};\n",
                          "src/core/loop/A.cpp": "class B;\n" + member.format("b") + extra,
                          "src/core/loop/AMore.cpp": member.format("c")})
                run = subprocess.run([sys.executable, CHECKS / "lengths.py", self.root],
                                     capture_output=True, text=True, check=False)
                self.assertEqual((run.returncode, "class A: 401" in run.stdout),
                                 (status, status == 1))

    def test_linked_program(self):
        """A program that is linked with GLib, uses streams and has a global breaks three rules."""
        source = self.root / "a.cpp"
        source.write_text('#include <iostream>\nextern "C" int g_random_int();\n'
                          "namespace kestrin { int count; extern const int fixed = 1; }\n"
                          "int main() { std::cout << g_random_int(); }\n")
        program = self.root / "a"
        subprocess.run(["c++", "-o", program, source, "-lglib-2.0"], check=True)
        run = subprocess.run([sys.executable, CHECKS / "links.py", f"{program}=toolkit,streams"],
                             capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertIn("libglib-2.0", run.stdout)
        self.assertIn("standard streams", run.stdout)
        run = subprocess.run([sys.executable, CHECKS / "globals.py", program],
                             capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertRegex(run.stdout, r"kestrin::count can change.*\n.* 1 faults")


class Hardening(unittest.TestCase):
    def test_each_missing_guard_is_a_fault(self):
        with tempfile.TemporaryDirectory() as folder:
            source, program = pathlib.Path(folder, "a.c"), str(pathlib.Path(folder, "a"))
            source.write_text("#include <string.h>\n#include <stdio.h>\n"
                              'int main(int n, char** v) { char b[99]; memcpy(b, v[0], n); return printf("%s", b) + n; }\n')
            good = ["-fPIE", "-pie", "-Wl,-z,relro,-z,now", "-fstack-protector-strong", "-O2", "-D_FORTIFY_SOURCE=2"]
            for flags, faults in (([], 0), (["-fno-PIE", "-no-pie"], 1), (["-Wl,-z,norelro"], 1), (["-Wl,-z,lazy"], 1),
                                  (["-Wl,-z,execstack"], 1), (["-fno-stack-protector"], 1), (["-O0"], 1)):
                subprocess.run(["cc", "-w", source, "-o", program, *good, *flags], check=True)
                done = subprocess.run([sys.executable, CHECKS / "hardening.py", "--fortified", program],
                                      capture_output=True, text=True)
                self.assertEqual(done.returncode, 1 if faults else 0, (flags, done.stdout))
                self.assertEqual(len(done.stdout.splitlines()), faults + 1, (flags, done.stdout))


if __name__ == "__main__":
    unittest.main()
