#!/usr/bin/python3
"""Walks for a minute all that the program shows to screen readers, again and again and without pause, while every
screen changes: tabs, windows, dialogs, the server, downloads and replies. Asks each thing for all it may be asked for,
also for children that are not there. Says how many questions were answered, or what was asked last when the program
ends or does not answer; ends with 0 when nothing happens.

    stress.py <build folder> first|later     (the first launch ever, with the guide, or a later one)

Run by the script "stress" beside it.
"""
import os
import random
import subprocess
import sys
import threading
import time

from gi.repository import Gio, GLib

from program import GivesUp, Program

ANSWER = 20  # seconds
ROUND = 60  # seconds
MOST = 2**31 - 1
ACCESSIBLE = "org.a11y.atspi.Accessible"
TEXT = "org.a11y.atspi.Text"
QUESTIONS = {
    ACCESSIBLE: [(name, None) for name in ("GetRole", "GetRoleName", "GetState", "GetRelationSet", "GetAttributes",
                                           "GetIndexInParent", "GetInterfaces", "GetApplication")],
    "org.a11y.atspi.Component": [("GetExtents", ("(u)", 0)), ("GetLayer", None),
                                 ("GetAccessibleAtPoint", ("(iiu)", -30000, 30000, 0)),
                                 ("GetAccessibleAtPoint", ("(iiu)", 300, 300, 0))],
    TEXT: [("GetText", ("(ii)", 0, -1)), ("GetText", ("(ii)", -1, MOST)), ("GetCharacterExtents", ("(iu)", MOST, 0)),
           ("GetStringAtOffset", ("(iu)", MOST, 1)), ("GetStringAtOffset", ("(iu)", 0, 3)),
           ("GetTextAtOffset", ("(iu)", -1, 1))],
    "org.a11y.atspi.Table": [("GetAccessibleAt", ("(ii)", -1, 0)), ("GetAccessibleAt", ("(ii)", MOST, MOST)),
                             ("GetIndexAt", ("(ii)", MOST, 0)), ("GetRowAtIndex", ("(i)", MOST)),
                             ("GetSelectedRows", None)],
}
# What is pressed now and then when it is met.
BUTTONS = {"Skip the guide", "Download", "Cancel", "Resume", "Retry", "Details", "Close", "Delete", "Unload", "Chat",
           "Server", "Start", "Stop", "Restart", "New Chat", "Settings for this model", "Regenerate", "Copy", "Think",
           "Thinking", "Share on my network", "Dismiss", "Reset to defaults", "Keep in memory", "Delete this model"}
KEYS = ["ctrl+1", "ctrl+2", "ctrl+3", "ctrl+n", "ctrl+f", "ctrl+comma", "Escape", "Tab", "Down", "space", "Return",
        "F10", "Right", "alt+Down", "Page_Down", "End", "ctrl+plus", "ctrl+0"]


class Silence(Exception):
    """Why there was no answer."""


class Asker:
    def __init__(self, program):
        address = Gio.bus_get_sync(Gio.BusType.SESSION).call_sync(
            "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None, 0, -1).unpack()[0]
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags)
        self.program = program
        self.count = 0
        self.name = self.find_name()
        self.end = 0

    # The name on the bus of the program.
    def find_name(self):
        root = "/org/a11y/atspi/accessible/root"
        registry = "org.a11y.atspi.Registry"
        for name, _ in self.bus.call_sync(registry, root, ACCESSIBLE, "GetChildren", None, None, 0, -1).unpack()[0]:
            process = self.bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                         "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)), None, 0, -1)
            if process.unpack()[0] == self.program.process.pid:
                return name
        raise Silence("the program is not on the bus")

    # None where the program refuses to answer, as it may.
    def ask(self, path, interface, method, arguments=None):
        variant = GLib.Variant(arguments[0], arguments[1:]) if arguments else None
        self.count += 1
        try:
            answer = self.bus.call_sync(self.name, path, interface, method, variant, None, 0, ANSWER * 1000)
            return answer.unpack()
        except GLib.Error as error:
            if not self.program.is_running():
                raise Silence(f"ended with {self.program.process.wait()} at {method}{arguments or ''} of {path}")
            if "NoReply" in error.message or "Timeout" in error.message:
                raise Silence(f"no answer for {ANSWER} s to {method}{arguments or ''} of {path}")
            return None

    def property(self, path, name, interface=ACCESSIBLE):
        answer = self.ask(path, "org.freedesktop.DBus.Properties", "Get", ("(ss)", interface, name))
        return answer[0] if answer else None

    def walk(self, path="/org/a11y/atspi/accessible/root", depth=0):
        if time.monotonic() > self.end or depth > 40:
            return
        count = self.property(path, "ChildCount") or 0
        for index in (-1, count, count + 1, MOST):
            self.ask(path, ACCESSIBLE, "GetChildAtIndex", ("(i)", index))
        answer = self.ask(path, ACCESSIBLE, "GetInterfaces")
        interfaces = answer[0] if answer else []
        for interface in interfaces:
            for method, arguments in QUESTIONS.get(interface, []):
                self.ask(path, interface, method, arguments)
        if TEXT in interfaces:
            length = self.property(path, "CharacterCount", TEXT) or 0
            for boundary in range(5):
                self.ask(path, TEXT, "GetTextAtOffset", ("(iu)", length, boundary))
        self.property(path, "Description")
        self.property(path, "Parent")
        name = self.property(path, "Name")
        if "org.a11y.atspi.Action" in interfaces and name in BUTTONS and random.random() < 0.2:
            self.ask(path, "org.a11y.atspi.Action", "DoAction", ("(i)", 0))
        for index in range(min(count, 200)):
            child = self.ask(path, ACCESSIBLE, "GetChildAtIndex", ("(i)", index))
            if child and child[0][0] == self.name and not child[0][1].endswith("/null"):
                self.walk(child[0][1], depth + 1)


# Turns tabs, opens and closes, types, and resizes until `stop` is set.
def change(stop):
    while not stop.wait(random.random() * 0.4):
        choice = random.random()
        if choice < 0.6:
            command = ["key", *random.choices(KEYS, k=random.randint(1, 3))]
        elif choice < 0.75:
            command = ["type", "--delay", "1", "What is there? "]
        else:
            size = [str(random.randint(300, 1300)), str(random.randint(200, 950))]
            command = ["search", "--onlyvisible", "--name", "Tarnwick", "windowsize", *size]
        subprocess.run(["xdotool", *command], check=False, stderr=subprocess.DEVNULL, timeout=60)


def play(program):
    stop = threading.Event()
    changer = threading.Thread(target=change, args=(stop,))
    changer.start()
    try:
        asker = Asker(program)
        asker.end = time.monotonic() + ROUND
        while time.monotonic() < asker.end:
            asker.walk()
    finally:
        stop.set()
        changer.join()
        status = program.end()
    if status != 0:
        raise Silence(f"ended with {status} when it was told to")
    print(f"{asker.count} questions answered")


def main():
    sys.stdout = sys.stderr = os.fdopen(3, "w", encoding="utf-8", buffering=1)
    manager = subprocess.Popen(["openbox", "--config-file", "/dev/null"], stderr=subprocess.DEVNULL)
    try:
        play(Program(os.path.abspath(sys.argv[1]), sys.argv[2] == "later", pull_ms=8000))
    except (Silence, GivesUp) as why:
        print("stress:", why)
        return 1
    finally:
        manager.terminate()
    return 0


if __name__ == "__main__":
    sys.exit(main())
