"""A login of a test's own, in which the programs run as a person meets them.

A walk is a file of `WorldTest` classes that ends in `main()`. Each of its tests gets a virtual screen
with a window manager, a session bus with accessibility, and empty XDG folders below `self.home`:

    class Tea(WorldTest):
        def test_is_announced(self):
            day = self.write_set("day.kestrin", daily("Tea", soon := self.now() + SOON, say("Kettle on.")))
            self.remember(day)                      # a set that is delivered
            self.hand_over(soon)                    # kestrin -background; the deliverer alone is left
            alert = self.alert("Tea")               # waits for it
            self.assertEqual(alert.buttons(), ["Ok"])
            alert.press("Ok")                       # as a screen reader does; click() uses the mouse
            self.gone(APPLICATION)

Nothing waits for a length of time: `until(condition, what)` looks again and again and fails after `PATIENCE`
seconds, saying `what`; in `SOON` seconds all is ready for what is due then. Windows are named by the beginning
of their title, alerts by a part of their text, controls by name and role as a screen reader tells them.
Processes: `start` gives a Popen; `kill(APPLICATION, signal.SIGSTOP)` signals whoever owns a bus name, SIGCONT
goes on. `when()` is what the deliverer waits for. `self.errors()` is what was written to standard error, by the
started ones as well as by those that the bus started.

What needs no screen is a `BusTest`. A process has room for one world (libatspi knows one bus), so every test runs in a process of its own:
`walk.py` runs all of them, `walk.py Class.test` one. ctest does the same. KESTRIN_BIN: the programs' folder.
"""
import ctypes
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

TESTS = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TESTS / "data"))
sys.dont_write_bytecode = True
import make_golden  # noqa: E402

BIN = pathlib.Path(os.environ.get("KESTRIN_BIN", TESTS.parent / "build/debug/bin"))
APPLICATION, DELIVERER = "vnd.ZR.Kestrin", "vnd.ZR.KestrinBackground"
PATIENCE, SOON, DAY = *((100, 12) if os.environ.get("KESTRIN_SANITIZE") else (10, 4)), 86400
LIBC = ctypes.CDLL(None)
FOLDERS = {"HOME": "home", "XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data", "XDG_STATE_HOME": "state",
           "XDG_CACHE_HOME": "cache", "XDG_DATA_DIRS": "share", "XDG_RUNTIME_DIR": "run"}
BUS = """<busconfig><type>session</type><listen>unix:path={0}/bus</listen>
<servicedir>{0}/data/dbus-1/services</servicedir><policy context="default"><allow send_destination="*"/>
<allow receive_sender="*"/><allow own="*"/></policy></busconfig>"""


def daily(name, when, handler=None, **fields):
    """An event at `when` and at that time of every day after it, as UTC; see `say`, `run`, `act_on`."""
    return make_golden.event(Name=name.encode(), NextEventTime=when, ActualEventTime=when,
                             TimeToApply=when % DAY, **handler or {}) | fields


def handler_data(handler, data):
    return {"HandlerName": handler, "count": len(data), "data": data}


def say(text):
    return handler_data(b"Message", text.encode() + b"\0")


def run(command, ask=False):
    return handler_data(b"Command", bytes([ask]) + os.fsencode(command) + b"\0")


def act_on(file, ask=False):
    return handler_data(b"Act on file", bytes([ask]) + os.fsencode(file) + b"\0")


def showing(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


def below(node):
    """What is shown in a window, from top to bottom."""
    for child in filter(None, map(node.get_child_at_index, range(node.get_child_count()))):
        if showing(child):
            yield child
            yield from below(child)


def connect(address):
    flags = Gio.DBusConnectionFlags
    bus = Gio.DBusConnection.new_for_address_sync(address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION)
    bus.set_exit_on_close(False)
    return bus


class Alert:
    """One that stands on the screen, with the text that it had when it was found."""

    def __init__(self, world, window):
        self.world, self.window, self.text = world, window, window.get_description()
        self.nodes = [node for node in below(window) if node.get_role() == Atspi.Role.PUSH_BUTTON]

    def buttons(self):
        return [node.get_name() for node in self.nodes]

    def button(self, label):
        return self.nodes[self.buttons().index(label)]

    def press(self, label):
        """Without the mouse. Returns when the alert has closed."""
        Atspi.Action.do_action(self.button(label), 0)
        self.closed()

    def click(self, label):
        self.world.click(self.button(label))
        self.closed()

    def closed(self):
        self.world.until(lambda: all(each.window != self.window for each in self.world.alerts()),
                         f"the end of the alert: {self.text}")


class BusTest(unittest.TestCase):
    """Folders, a session bus and processes, without a screen."""
    def setUp(self):
        LIBC.prctl(36, 1)  # PR_SET_CHILD_SUBREAPER: whatever loses its parent is ended here
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kestrin-test-"))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.addCleanup(self.end_all)
        kept = {name: value for name, value in os.environ.items() if name == "PATH" or name.endswith("SAN_OPTIONS")}
        folders = {name: str(self.home / folder) for name, folder in FOLDERS.items()}
        for folder in folders.values():
            os.mkdir(folder, 0o700)
        (self.home / "share/mime").symlink_to("/usr/share/mime")
        self.environment = kept | folders | {"TZ": "UTC", "LC_ALL": "C.UTF-8", "QT_SCALE_FACTOR": "1",
                                             "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        self.start_bus()

    def start_bus(self):
        self.write("data/dbus-1/services/a11y.service",
                   "[D-BUS Service]\nName=org.a11y.Bus\n"
                   "Exec=/usr/bin/env XDG_DATA_DIRS=/usr/share GSETTINGS_BACKEND=memory "
                   "/usr/libexec/at-spi-bus-launcher\n")
        config, self.log = self.write("bus.conf", BUS.format(self.home)), open(self.home / "errors", "ab")
        self.addCleanup(self.log.close)
        self.daemon = subprocess.Popen(
            ["dbus-daemon", f"--config-file={config}", "--nofork", "--print-address"], env=self.environment, text=True,
            stdout=subprocess.PIPE, stderr=self.log, preexec_fn=lambda: LIBC.prctl(1, signal.SIGKILL))  # PDEATHSIG
        address = self.daemon.stdout.readline().strip()
        self.daemon.stdout.close()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        os.environ.update(DBUS_SESSION_BUS_ADDRESS=address, XDG_RUNTIME_DIR=self.environment["XDG_RUNTIME_DIR"])
        self.bus = connect(address)
        self.context = GLib.MainContext.default()

    def end_all(self):
        """Everything that was started, by whom ever; no sanitizer may have found a fault in it."""
        children = pathlib.Path(f"/proc/self/task/{os.getpid()}/children")
        while pids := children.read_text().split():
            for pid in map(int, pids):
                os.kill(pid, signal.SIGKILL)
                os.waitpid(pid, 0)
        told = [line for line in self.errors().splitlines() if "Sanitizer: " in line and ": SEGV " not in line]
        self.assertEqual(told, [], self.errors())

    # Files

    def path(self, name):
        return str(self.home / name)

    def write(self, name, content, mode=0o644):
        path = self.home / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        path.chmod(mode)
        return str(path)

    def read(self, name):
        """Empty when there is none."""
        path = self.home / name
        return path.read_text(errors="replace") if path.exists() else ""

    def write_set(self, name, *events, **arguments):
        layout = {"WindowFrame": [400, 300, 900, 600]}
        return self.write(name, make_golden.make_set(events, layout=layout, **arguments).bytes)

    def remember(self, *sets, **choices):
        """These sets, and no others, are remembered for delivery; the choices are settings of one number."""
        numbers = {key: {"type": "LONG", "value": [value]} for key, value in choices.items()}
        self.write("config/Kestrin/KestrinSettings.json",
                   json.dumps({"NumberOfSetsToUse": {"type": "LONG", "value": [len(sets)]},
                               "SetsToUse": {"type": "BYTE", "texts": sets}} | numbers))

    def remember_tea(self, when):
        tea = self.write_set("day.kestrin", daily("Tea", when, say("Put the kettle on.")))
        self.remember(tea)
        return tea

    def open_with(self, kind, application, script):
        """Files of that media type are opened by the shell script, which gets the file as $1."""
        opener = self.write("opener", f"#!/bin/sh\n{script}\n", 0o755)
        self.write("data/applications/opener.desktop", f"[Desktop Entry]\nType=Application\nName={application}\n"
                   f"MimeType={kind};\nExec='{opener}' %f\n")
        self.write("config/mimeapps.list", f"[Default Applications]\n{kind}=opener.desktop\n")

    def saved(self, path):
        """The events of a set file by their names, as `kestrinctl dump` shows them."""
        dump = subprocess.run([BIN / "kestrinctl", "dump", path], env=self.environment, check=True,
                              capture_output=True)
        return {event["Name"]: event for event in json.loads(dump.stdout)["events"]}

    def history(self):
        """What was delivered, newest first, as `kestrinctl history` tells it."""
        return json.loads(subprocess.run([BIN / "kestrinctl", "history", "--json"], env=self.environment, check=True,
                                         capture_output=True).stdout)

    def saved_time(self, path, name="Tea"):
        return self.saved(path)[name]["NextEventTime"]

    def errors(self):
        return self.read("errors")

    # Processes

    @staticmethod
    def now():
        return int(time.time())

    def seen(self):
        return ""

    def until(self, condition, what):
        """What the condition gives once that is true; what comes over the bus is taken meanwhile."""
        end = time.monotonic() + PATIENCE
        while True:
            while self.context.iteration(False):
                pass
            try:
                if found := condition():
                    return found
            except GLib.Error:
                pass  # the application was still building its windows, or has gone
            if time.monotonic() > end:
                self.fail(f"not seen: {what}\n{self.seen()}\n{self.errors()}")
            time.sleep(0.02)

    def start(self, *arguments, screen=True, program="kestrin", folder="home", **variables):
        display = {"DISPLAY": os.environ["DISPLAY"]} if screen else {}
        return subprocess.Popen([BIN / program, *arguments], env=self.environment | display | variables,
                                cwd=self.home / folder, stderr=self.log)

    def output(self, *command):
        """What another program on that screen says."""
        return subprocess.run(command, env=self.environment | {"DISPLAY": os.environ["DISPLAY"]}, check=False,
                              stdout=subprocess.PIPE, stderr=self.log).stdout

    def left(self, process):
        """It ends by itself, and well."""
        self.assertEqual(self.status(process), 0, self.errors())

    def status(self, process):
        self.until(lambda: process.poll() is not None, f"the end of {process.args}")
        return process.returncode

    def hand_over(self, when, screen=True):
        self.left(self.start("-background", screen=screen))
        self.assertEqual((self.pid_of(APPLICATION), self.when()), (0, when), self.errors())

    def ask_bus(self, destination, path, interface, member, arguments=None):
        return self.bus.call_sync(destination, path, interface, member, arguments, None,
                                  Gio.DBusCallFlags.NO_AUTO_START, PATIENCE * 1000, None).unpack()

    def pid_of(self, name):
        """0 when nobody owns the name."""
        daemon = "org.freedesktop.DBus"
        try:
            return self.ask_bus(daemon, "/", daemon, "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]
        except GLib.Error:
            return 0

    def kill(self, name, number=signal.SIGKILL):
        os.kill(self.pid_of(name), number)

    def gone(self, name):
        self.until(lambda: not self.pid_of(name), f"the end of {name}")

    def when(self):
        """The moment that the deliverer waits for."""
        return self.ask_bus(DELIVERER, "/vnd/ZR/KestrinBackground", "org.freedesktop.DBus.Properties", "Get",
                            GLib.Variant("(ss)", ("vnd.ZR.Kestrin.Messages", "When")))[0]

    def post(self, code, fields="", name=DELIVERER, path="/vnd/ZR/KestrinBackground"):
        """Posts a message with fields in GLib's notation: "'When': <5>". The error's name, "" for none."""
        text = f"(uint32 {code}, {{{fields}}})" if fields else f"(uint32 {code}, @a{{sv}} {{}})"
        message = GLib.Variant.parse(GLib.VariantType("(ua{sv})"), text, None, None)
        try:
            self.ask_bus(name, path, "vnd.ZR.Kestrin.Messages", "Post", message)
            return ""
        except GLib.Error as error:
            return Gio.DBusError.get_remote_error(error)


class WorldTest(BusTest):
    """The same with a screen."""
    def nodes(self):
        """All windows that are shown."""
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        applications = map(desktop.get_child_at_index, range(desktop.get_child_count()))
        for application in filter(None, applications):
            windows = map(application.get_child_at_index, range(application.get_child_count()))
            yield from filter(showing, filter(None, windows))

    def windows(self):
        return [node.get_name() for node in self.nodes()]

    def window(self, title):
        return self.until(lambda: next((node for node in self.nodes() if node.get_name().startswith(title)), None),
                          f'window "{title}"')

    def alerts(self):
        kinds = (Atspi.Role.ALERT, Atspi.Role.DIALOG)
        windows = [node for node in self.nodes() if node.get_role() in kinds and node.get_description()]
        return [alert for alert in (Alert(self, node) for node in windows) if alert.nodes]

    def alert(self, part):
        return self.until(lambda: next((alert for alert in self.alerts() if part in alert.text), None),
                          f'alert "{part}"')

    def seen(self):
        """What a failure tells."""
        try:
            return "\n".join([f"windows: {self.windows()}", *(f"alert: {each.text}" for each in self.alerts())])
        except GLib.Error as error:
            return str(error)

    def controls(self, window):
        return [node for each in self.nodes() if each.get_name().startswith(window) for node in below(each)]

    def control(self, window, name, role):
        return self.until(lambda: next((node for node in self.controls(window) if
                                        (node.get_name(), node.get_role_name()) == (name, role)), None),
                          f'{role} "{name}" in "{window}"')

    def has_focus(self, window, name):
        self.until(lambda: any(node.get_name() == name and node.get_state_set().contains(Atspi.StateType.FOCUSED)
                               for node in self.controls(window)), f'the focus on "{name}" in "{window}"')

    @staticmethod
    def xdotool(*words):
        done = subprocess.run(["xdotool", *map(str, words)], capture_output=True, text=True)
        return done.stdout.split()

    def x_windows(self, title):
        """In the order in which they were opened."""
        shown = sorted(self.xdotool("search", "--onlyvisible", "--class", "kestrin"), key=int)
        return [each for each in shown if " ".join(self.xdotool("getwindowname", each)).startswith(title)]

    def in_front(self, title):
        """The window gets the keyboard, as by a click on the taskbar."""
        def active():
            wanted = self.x_windows(title)[:1]
            if self.xdotool("getactivewindow") == wanted != []:
                return True
            # Once is not enough: a window that is just opening may get in front after the answer.
            self.xdotool("windowactivate", *wanted)
            return False
        self.until(active, f'"{title}" in front')

    def keys(self, title, *keys):
        """Pressed one after another; "ctrl+n" are held together."""
        self.in_front(title)
        self.xdotool("key", "--delay", 20, *keys)

    def type(self, text):
        """Into whatever has the focus. A line feed is Return, which typing has no letter for."""
        for line in text.splitlines(keepends=True):
            self.xdotool("type", "--delay", 2, line.rstrip("\n"))
            if line.endswith("\n"):
                self.xdotool("key", "Return")

    def close(self, title):
        """With the window manager's own key."""
        self.keys(title, "alt+F4")

    def click(self, node):
        """With the mouse, once the application knows where its window stands."""
        window = node
        while window.get_parent().get_role() != Atspi.Role.APPLICATION:
            window = window.get_parent()

        def under_the_mouse():
            at, corner = (Atspi.Component.get_extents(each, Atspi.CoordType.SCREEN) for each in (node, window))
            wanted = [at.x + at.width // 2, at.y + at.height // 2]
            for each in self.x_windows(window.get_name()):
                self.xdotool("mousemove", "--window", each, wanted[0] - corner.x, wanted[1] - corner.y)
                if self.xdotool("getmouselocation")[:2] == [f"x:{wanted[0]}", f"y:{wanted[1]}"]:
                    return True
            return False
        self.until(under_the_mouse, f'"{node.get_name()}" where the application says it is')
        self.xdotool("click", 1)

    def click_on(self, window, name, role):
        self.click(self.control(window, name, role))

    def press(self, window, name):
        """A button, without the mouse."""
        Atspi.Action.do_action(self.control(window, name, "push button"), 0)

    def focus(self, window, name, role):
        Atspi.Component.grab_focus(self.control(window, name, role))
        self.has_focus(window, name)

    def alert_keys(self, title, key, reached):
        """Pressed every two seconds until it is reached: an alert takes no key before a quiet second has passed."""
        pressed = time.monotonic()

        def tried():
            nonlocal pressed
            if reached():
                return True
            if time.monotonic() > pressed + 2:
                self.keys(title, key)
                pressed = time.monotonic()
            return False
        self.in_front(title)
        self.until(tried, f'what "{key}" leads to')


def main():
    walk, chosen = os.path.abspath(sys.argv[0]), sys.argv[1:]
    if not chosen:
        suites = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
        chosen = [test.id().removeprefix("__main__.") for suite in suites for test in suite]
    if len(chosen) > 1:
        sys.exit(max(subprocess.call([sys.executable, walk, name]) for name in chosen))
    test_class = getattr(sys.modules["__main__"], chosen[0].split(".")[0])
    if issubclass(test_class, WorldTest) and "KESTRIN_TEST_ON_SCREEN" not in os.environ:
        os.environ["KESTRIN_TEST_ON_SCREEN"] = "1"
        on_screen = str(TESTS / "harness/on_screen")
        os.execv(on_screen, [on_screen, sys.executable, walk, *chosen])
    unittest.main(argv=[walk, *chosen], warnings="ignore")
