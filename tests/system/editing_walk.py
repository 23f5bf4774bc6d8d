"""What a person types, changes and takes back, in one set with its editors."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from gi.repository import Gio, GLib  # noqa: E402
from world import DAY, WorldTest, daily, main  # noqa: E402

PORTAL, PORTAL_PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
CHOOSER = """<node><interface name="org.freedesktop.portal.FileChooser"><method name="SaveFile">
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
<arg type="o" direction="out"/></method></interface></node>"""
BORN = -980640000  # 5 December 1938, 0:00 UTC


class Editing(WorldTest):
    def start_portal(self, path):
        """The person chooses that file in whatever panel comes."""
        def called(_bus, sender, _path, _interface, _method, arguments, invocation):
            options = arguments.unpack()[2]
            request = f"{PORTAL_PATH}/request/{sender[1:].replace('.', '_')}/{options['handle_token']}"
            invocation.return_value(GLib.Variant("(o)", (request,)))
            results = {"uris": GLib.Variant("as", [pathlib.Path(path).as_uri()])}
            self.bus.emit_signal(sender, request, "org.freedesktop.portal.Request", "Response",
                                 GLib.Variant("(ua{sv})", (0, results)))
        chooser = Gio.DBusNodeInfo.new_for_xml(CHOOSER).interfaces[0]
        self.bus.register_object(PORTAL_PATH, chooser, called)
        self.ask_bus("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
                     GLib.Variant("(su)", (PORTAL, 4)))

    def row(self, place):
        """Goes to the row of the list, from its beginning."""
        self.keys("Family.kestrin", "Home", *["Down"] * place)

    def save(self, expected, what):
        self.keys("Family.kestrin", "ctrl+s")
        self.until(lambda: self.kept() == expected, what)

    def kept(self):
        follows = ("NextEventTime", "ActualEventTime", "Status", "WindowFrame", "WindowOpen", "TabShown")
        return {name: {key: value for key, value in event.items() if key not in follows}
                for name, event in self.saved(self.path("home/Family.kestrin")).items()}

    def test_a_family_in_german_all_taken_back_and_done_again(self):
        events = [daily(name, self.now() + DAY) for name in ("Cake", "Milk", "Tea")]
        family = self.write_set("home/Family.kestrin", *events)
        before = self.kept()
        application = self.start(family, LC_ALL="de_DE.UTF-8")
        self.keys("Family.kestrin", "ctrl+shift+n")
        self.in_front("Untitled – Event (set Family.kestrin)")
        self.has_focus("Untitled – Event (set Family.kestrin)", "Name:")
        self.type("Oma Erna")
        self.keys("Untitled – Event (set Family.kestrin)", "Return")
        editor = "Oma Erna – Event (set Family.kestrin)"
        self.keys(editor, "alt+w", "alt+r", "Down")
        self.control(editor, "Annually", "combo box")
        sentence = "Every year on 5 December, from 1938 on."

        def understood():
            self.keys(editor, "alt+d", "ctrl+a")
            self.type("5. Dezember 1938")
            self.keys(editor, "Return")
            return any(sentence in node.get_name() for node in self.controls(editor))
        self.until(understood, sentence)

        self.row(2)  # Tea
        self.keys("Family.kestrin", "F2")
        self.type("Green tea")
        self.keys("Family.kestrin", "Return")
        self.row(1)  # Milk
        self.keys("Family.kestrin", "Delete")
        self.row(0)  # Cake
        self.keys("Family.kestrin", "alt+n", "c")
        self.keys("Family.kestrin", "ctrl+s")
        self.until(lambda: set(self.kept()) == {"Cake", "Green tea", "Oma Erna"}, "what was changed")
        changed = self.kept()
        self.assertFalse(changed["Cake"]["Active"])
        self.assertEqual((changed["Oma Erna"]["PeriodType"], changed["Oma Erna"]["EventTime"]), (1, BORN))

        self.keys("Family.kestrin", *["ctrl+z"] * 7)
        self.save(before, "everything taken back")
        self.keys("Family.kestrin", *["ctrl+shift+z"] * 7)
        self.save(changed, "everything done again")

        for place in range(3):
            self.row(place)
            self.keys("Family.kestrin", "Return")
            self.until(lambda: len(self.editors()) == place + 1, "an editor")  # it takes the front
        places = self.editors()
        for place in places:
            self.assertEqual([other for other in places if abs(other[0] - place[0]) + abs(other[1] - place[1]) < 20],
                             [place], places)

        self.start_portal(self.path("home/Familie.2026"))
        self.keys("Cake – Event (set Family.kestrin)", "ctrl+s")
        self.keys("Family.kestrin", "alt+f", "a")
        saved = self.path("home/Familie.2026.kestrin")
        self.until(lambda: pathlib.Path(saved).exists() and set(self.saved(saved)) == set(changed), "the other file")
        self.keys("Familie.2026.kestrin", "ctrl+q")
        self.left(application)

    def editors(self):
        """Where they stand."""
        shown = sum((self.x_windows(f"{name} – Event") for name in ("Oma Erna", "Green tea", "Cake")), [])
        words = [dict(word.split("=") for word in self.xdotool("getwindowgeometry", "--shell", each)) for each in shown]
        return [(int(word["X"]), int(word["Y"])) for word in words]


if __name__ == "__main__":
    main()
