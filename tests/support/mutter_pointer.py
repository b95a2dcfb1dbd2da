#!/usr/bin/python3
# The pointer of a headless GNOME session, driven through mutter's remote-desktop interface: on
# Wayland, XTest events reach XWayland's clients but not the compositor, so mutter would never see a
# press on a window's frame or a drag.
# Prints XWayland's key and display, then reads "move X Y", "down" and "up" lines from the named pipe
# it is given (mutter hands its child no standard input).
import os
import sys

import dbus

bus = dbus.SessionBus()
name = "org.gnome.Mutter.RemoteDesktop"
path = bus.get_object(name, "/org/gnome/Mutter/RemoteDesktop").CreateSession(dbus_interface=name)
session = dbus.Interface(bus.get_object(name, path), name + ".Session")
session.Start()
session.NotifyPointerMotionRelative(-1e5, -1e5)  # the pointer moves only by steps: to the top left first
x, y = 0.0, 0.0
os.mkfifo(sys.argv[1])
print(os.environ.get("XAUTHORITY", "-"), os.environ.get("DISPLAY", ""), flush=True)
for line in os.fdopen(os.open(sys.argv[1], os.O_RDWR)):  # read and write: no end when a writer leaves
    words = line.split()
    if words[:1] == ["move"]:
        session.NotifyPointerMotionRelative(float(words[1]) - x, float(words[2]) - y)
        x, y = float(words[1]), float(words[2])
    elif words[:1] in (["down"], ["up"]):
        session.NotifyPointerButton(0x110, words[0] == "down")  # BTN_LEFT
