# SPDX-License-Identifier: MIT
"""desktop_bus.py [portal] [reader | no-reader] [accessibility [gone]]: a message bus of its own with the services named.

Prints the bus's address ("" where this machine cannot have one), then a line per call. A line of its input changes
one of the portal's settings, "SCHEMA KEY VALUE"; the end of the input is its end.
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import threading

try:
    import dbus
    import dbus.service
    from dbus.mainloop.glib import DBusGMainLoop
    from gi.repository import GLib
except ImportError:
    sys.exit()

# Whoever may connect may do anything; none of the machine's own services is started.
CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><auth>EXTERNAL</auth><listen>unix:path={socket}</listen>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>"""
OPENER = "org.freedesktop.portal.OpenURI"
SETTINGS = "org.freedesktop.portal.Settings"
PROXIES = "org.freedesktop.portal.ProxyResolver"
FINGERPRINTS = "net.reactivated.Fprint"
ACCESSIBLE_ROOT = "/org/a11y/atspi/accessible/root"


class Portal(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/portal/desktop")
        self.settings = {("org.gnome.desktop.interface", "clock-format"): "24h",
                         ("org.cinnamon.desktop.interface", "clock-use-24h"): True}

    @dbus.service.method(SETTINGS, in_signature="ss", out_signature="v")
    def Read(self, schema, key):
        if (schema, key) not in self.settings:
            raise dbus.DBusException("no such setting", name="org.freedesktop.portal.Error.NotFound")
        return self.settings[schema, key]

    @dbus.service.signal(SETTINGS, signature="ssv")
    def SettingChanged(self, schema, key, value):
        pass

    def change(self, line):
        schema, key, value = line.split()
        self.SettingChanged(schema, key, {"true": True, "false": False}.get(value, value))

    @dbus.service.method(OPENER, in_signature="ssa{sv}", out_signature="o")
    def OpenURI(self, _parent, address, _options):
        print(f"opened {address}")
        return "/org/freedesktop/portal/desktop/request/1"

    @dbus.service.method(PROXIES, in_signature="s", out_signature="as")
    def Lookup(self, address):
        return {"https://web.example/": ["http://proxy.example:3128", "direct://"],
                "https://socks.example/": ["socks://proxy.example:1080"],
                "https://none.example/": []}.get(address, ["direct://"])

    @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return dbus.UInt32(4) if (interface, name) == (OPENER, "version") else dbus.String("none")


class Fingerprints(dbus.service.Object):
    def __init__(self, bus, has_reader):
        super().__init__(bus, "/net/reactivated/Fprint/Manager")
        self.has_reader = has_reader

    @dbus.service.method(FINGERPRINTS + ".Manager", out_signature="o")
    def GetDefaultDevice(self):
        if not self.has_reader:
            raise dbus.DBusException("No devices available", name=FINGERPRINTS + ".Error.NoSuchDevice")
        return "/net/reactivated/Fprint/Device/0"


class AccessibilityAddress(dbus.service.Object):
    def __init__(self, bus, address):
        super().__init__(bus, "/org/a11y/bus")
        self.address = address

    @dbus.service.method("org.a11y.Bus", out_signature="s")
    def GetAddress(self):
        return self.address


class Registry(dbus.service.Object):
    """Tells who announces what, as a screen reader asks for it."""

    def __init__(self, bus):
        super().__init__(bus, ACCESSIBLE_ROOT)
        self.bus = bus
        bus.add_signal_receiver(self.announced, "Announcement", "org.a11y.atspi.Event.Object",
                                sender_keyword="sender", path_keyword="path")

    @dbus.service.method("org.a11y.atspi.Socket", in_signature="(so)", out_signature="(so)")
    def Embed(self, _plug):
        return self.bus.get_unique_name(), dbus.ObjectPath(ACCESSIBLE_ROOT)

    def announced(self, _detail, politeness, _unused, text, _properties, sender, path):
        speaker = self.bus.get_object(sender, path)
        name = speaker.Get("org.a11y.atspi.Accessible", "Name", dbus_interface="org.freedesktop.DBus.Properties")
        role = speaker.GetRoleName(dbus_interface="org.a11y.atspi.Accessible")
        print(f"{role} {name}, {politeness}: {len(text)} {text[:40]}")


def start_bus(folder):
    configuration = folder / "bus.conf"
    configuration.write_text(CONFIGURATION.format(socket=folder / "bus"))
    return subprocess.Popen(["dbus-daemon", f"--config-file={configuration}", "--nofork", "--print-address"],
                            stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, text=True)


def serve(address):
    bus = dbus.bus.BusConnection(address, mainloop=DBusGMainLoop())
    names, services = [], []
    if "portal" in sys.argv:
        names.append(dbus.service.BusName("org.freedesktop.portal.Desktop", bus))
        services.append(Portal(bus))
    if "reader" in sys.argv or "no-reader" in sys.argv:
        names.append(dbus.service.BusName(FINGERPRINTS, bus))
        services.append(Fingerprints(bus, "reader" in sys.argv))
    if "accessibility" in sys.argv:
        names.append(dbus.service.BusName("org.a11y.Bus", bus))
        services.append(AccessibilityAddress(bus, "unix:path=/no/such/bus" if "gone" in sys.argv else address))
        names.append(dbus.service.BusName("org.a11y.atspi.Registry", bus))
        services.append(Registry(bus))
    print(address)
    loop = GLib.MainLoop()

    def listen():
        for line in sys.stdin:
            GLib.idle_add(services[0].change, line)
        GLib.idle_add(loop.quit)  # in the loop: a call before it runs would be lost

    threading.Thread(target=listen, daemon=True).start()
    loop.run()


def main():
    with tempfile.TemporaryDirectory() as folder:
        try:
            daemon = start_bus(pathlib.Path(folder))
        except OSError:
            return
        serve(daemon.stdout.readline().strip())
        daemon.kill()
        daemon.wait()
    os._exit(0)  # the names are gone with the bus: nobody needs to give them back


main()
