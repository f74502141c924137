"""What a desktop does for applications, recorded: a file manager, a launcher, the portal, and the notifications shown.

Each call is a line of JSON in the file that is named as the argument; orders come as lines of JSON on the standard
input: {"setting": [space, key, value]} and {"folder": path}, the answer to the next folder dialogs.
"""

import json
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

PORTAL = "org.freedesktop.portal.Desktop"
PORTAL_PATH = "/org/freedesktop/portal/desktop"
SETTINGS = "org.freedesktop.portal.Settings"
CHOOSER = "org.freedesktop.portal.FileChooser"
TYPES = {"color-scheme": dbus.UInt32, "contrast": dbus.UInt32, "reduced-motion": dbus.UInt32,
         "enable-animations": dbus.Boolean, "text-scaling-factor": dbus.Double}


def plain(value):
    """A value of the bus as JSON has it."""
    if isinstance(value, dbus.Boolean):
        return bool(value)
    if isinstance(value, (dbus.Array, dbus.Struct, list, tuple)):
        return bytes(value).decode(errors="replace") if getattr(value, "signature", "") == "y" else [*map(plain, value)]
    if isinstance(value, dict):
        return {str(key): plain(each) for key, each in value.items()}
    if isinstance(value, int):
        return int(value)
    return float(value) if isinstance(value, float) else str(value)


class Record:
    def __init__(self, path):
        self.file = open(path, "a", encoding="utf-8")

    def add(self, kind, **facts):
        self.file.write(json.dumps({"kind": kind, **{key: plain(value) for key, value in facts.items()}}) + "\n")
        self.file.flush()


class FileManager(dbus.service.Object):
    def __init__(self, bus, record):
        self.record = record
        super().__init__(dbus.service.BusName("org.freedesktop.FileManager1", bus), "/org/freedesktop/FileManager1")

    @dbus.service.method("org.freedesktop.FileManager1", in_signature="ass")
    def ShowItems(self, addresses, _token):
        self.record.add("shown", addresses=addresses)


class Request(dbus.service.Object):
    @dbus.service.signal("org.freedesktop.portal.Request", signature="ua{sv}")
    def Response(self, response, results):
        pass


class Portal(dbus.service.Object):
    def __init__(self, bus, record):
        self.bus, self.record, self.folder = bus, record, None
        self.values = {"org.freedesktop.appearance": {"color-scheme": 0, "contrast": 0, "reduced-motion": 1},
                       "org.gnome.desktop.interface": {"enable-animations": False, "text-scaling-factor": 1.0}}
        super().__init__(dbus.service.BusName(PORTAL, bus), PORTAL_PATH)

    @dbus.service.method(SETTINGS, in_signature="as", out_signature="a{sa{sv}}")
    def ReadAll(self, _spaces):
        return {space: {key: TYPES[key](value) for key, value in keys.items()} for space, keys in self.values.items()}

    @dbus.service.signal(SETTINGS, signature="ssv")
    def SettingChanged(self, space, key, value):
        pass

    @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="ss", out_signature="v")
    def Get(self, _interface, _name):
        return dbus.UInt32(3)

    @dbus.service.method(CHOOSER, in_signature="ssa{sv}", out_signature="o", sender_keyword="sender")
    def OpenFile(self, _parent, title, options, sender=None):
        self.record.add("folder dialog", title=title, options=options)
        caller = sender[1:].replace(".", "_")
        path = f"{PORTAL_PATH}/request/{caller}/{options['handle_token']}"
        request = Request(self.bus, path)
        GLib.timeout_add(20, self.respond, request)
        return dbus.ObjectPath(path)

    def respond(self, request):
        chosen = dbus.Dictionary({}, signature="sv")
        if self.folder is not None:
            chosen["uris"] = dbus.Array([GLib.filename_to_uri(self.folder)], signature="s")
        request.Response(dbus.UInt32(self.folder is None), chosen)
        request.remove_from_connection()

    def obey(self, order):
        if "folder" in order:
            self.folder = order["folder"]
        if "setting" in order:
            space, key, value = order["setting"]
            self.values[space][key] = value
            self.SettingChanged(space, key, TYPES[key](value))


def watch_notifications(record):
    """Another connection sees what goes to the notification daemon."""
    monitor = dbus.bus.BusConnection(dbus.bus.BusConnection.TYPE_SESSION)

    def take(_bus, message):
        if message.get_member() == "Notify":
            _, _, _, title, body, _, hints, _ = message.get_args_list()
            record.add("notification", title=title, body=body, hints=hints)
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    monitor.add_message_filter(take)
    monitor.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
                          "BecomeMonitor", "asu", (["interface='org.freedesktop.Notifications'"], 0))
    return monitor


def main():
    DBusGMainLoop(set_as_default=True)
    record = Record(sys.argv[1])
    bus = dbus.SessionBus()
    loop = GLib.MainLoop()
    monitor = watch_notifications(record)
    bus.add_signal_receiver(lambda application, facts: record.add("badge", application=application, facts=facts),
                            signal_name="Update", dbus_interface="com.canonical.Unity.LauncherEntry")
    manager = FileManager(bus, record)
    portal = Portal(bus, record)

    def obey(channel, _condition):
        line = channel.readline()
        if not line:
            loop.quit()
            return False
        portal.obey(json.loads(line))
        record.add("order", order=line)
        return True

    GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, obey)
    loop.run()
    del monitor, manager


if __name__ == "__main__":
    import dbus.lowlevel

    main()
