"""Reminders as notifications, with a stand-in for the desktop's service."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "harness"))
from world import APPLICATION, DAY, SOON, Gio, GLib, WorldTest, connect, daily, handler_data, main, run, say  # noqa: E402

NAME, PATH = "org.freedesktop.Notifications", "/org/freedesktop/Notifications"
INTERFACE = f"""<node><interface name="{NAME}"><method name="GetCapabilities"><arg type="as" direction="out"/></method>
<method name="CloseNotification"><arg type="u" direction="in"/></method><method name="Notify">
<arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
<arg type="s" direction="in"/><arg type="as" direction="in"/><arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/>
<arg type="u" direction="out"/></method></interface></node>"""
WINDOWS, NOTIFICATIONS = 0, 1


class Notifier:
    """Treats each notification as its title, an event's name, says."""
    def __init__(self, address):
        self.bus = connect(address)
        self.came, self.stands = [], {}
        self.bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], self.called)
        self.bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
                           GLib.Variant("(su)", (NAME, 4)), None, 0, -1, None)

    def called(self, _bus, _sender, _path, _interface, member, arguments, call):
        if member == "GetCapabilities":
            call.return_value(GLib.Variant("(as)", (["body", "actions"],)))
        elif member == "CloseNotification":
            self.stands.pop(arguments[0], None)
            call.return_value(None)
        else:
            self.notify(arguments[3], arguments[4], arguments[5][::2], arguments[6]["urgency"], call)

    def notify(self, name, text, actions, urgency, call):
        number = len(self.came) + 1
        self.came.append(name)
        if name == "Refused":
            return call.return_dbus_error("org.example.Full", "too many")
        if name != "Silent":
            call.return_value(GLib.Variant("(u)", (number,)))
        if name == "Expires":
            self.tell("NotificationClosed", "(uu)", number, 1)
        elif name == "Accepted":
            self.tell("ActionInvoked", "(us)", number, "ok")
        elif name != "Silent":
            self.stands[number] = (name, text, actions, urgency)

    def tell(self, signal, kinds, *values):
        self.bus.emit_signal(None, PATH, NAME, signal, GLib.Variant(kinds, values))


class Notifications(WorldTest):
    def test_whatever_the_service_does_each_reminder_is_seen_once_and_delays_nothing(self):
        notifier = Notifier(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        soon, names = self.now() + SOON, ["Silent", "Expires", "Refused", "Accepted", "Stays"]
        day = self.write_set("day.kestrin", *(daily(name, soon, say(name)) for name in names),
                             daily("Act", soon, run(f"touch '{self.path('acted')}'")))
        self.remember(day, ShowRemindersAs=NOTIFICATIONS, ReminderBoxes=0)
        self.hand_over(soon)
        lost = [self.alert(name) for name in ("Refused", "Expires", "Silent")]
        self.assertTrue((self.home / "acted").exists(), "silence held nothing up")
        self.assertEqual(list(notifier.stands.values()), [
            ("Stays", "Kestrin event:  Stays\n\nStays", ["default", "ok", "later", "open"], 1)])
        notifier.bus.close_sync(None)
        lost.append(self.alert("Stays"))
        again = Notifier(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.assertEqual([alert.text for alert in self.alerts() if "Accepted" in alert.text], [])
        for alert in lost:
            self.assertEqual(sum(each.text == alert.text for each in self.alerts()), 1)
            alert.press("Ok")
        self.gone(APPLICATION)
        self.assertEqual((sorted(notifier.came), again.came), (sorted(names), []))
        self.assertEqual({event["NextEventTime"] for event in self.saved(day).values()}, {soon + DAY})

    def test_the_handler_brings_one_as_its_view_says(self):
        def notification(when, payload):
            return self.write_set("home/Tea.kestrin", daily("Tea", when, handler_data(b"Notification", payload)))
        tea = notification(self.now() + DAY, b"\x01Kettle")
        application = self.start(tea)
        self.keys("Tea.kestrin", "Home", "Return")
        editor = "Tea \u2013 Event (set Tea.kestrin)"
        self.in_front(editor)
        self.click_on(editor, "Action", "page tab")
        self.click_on(editor, "Text:", "text")
        self.keys(editor, "ctrl+End")
        self.type(" on")
        self.click_on(editor, "Normal", "combo box")
        self.click_on(editor, "Critical", "list item")
        self.control(editor, "Critical", "combo box")
        self.keys("Tea.kestrin", "ctrl+s")
        self.until(lambda: self.saved(tea)["Tea"]["HandlerData"] == b"\x02Kettle on".hex(), "the saved choice")
        self.keys("Tea.kestrin", "ctrl+q")
        self.left(application)

        notifier, soon = Notifier(self.environment["DBUS_SESSION_BUS_ADDRESS"]), self.now() + SOON
        self.remember(notification(soon, b"\x02Kettle on"), ShowRemindersAs=WINDOWS)
        self.hand_over(soon)
        number = self.until(lambda: list(notifier.stands), "the notification")[0]
        self.assertEqual(notifier.stands[number], (
            "Tea", "Kestrin event:  Tea\n\nKettle on", ["default", "ok", "later", "open"], 2))
        self.assertEqual(self.alerts(), [])
        notifier.tell("ActionInvoked", "(us)", number, "default")
        self.alert("Kettle on").press("Ok")
        self.gone(APPLICATION)
        self.until(lambda: not notifier.stands, "the end of the notification")


if __name__ == "__main__":
    main()
