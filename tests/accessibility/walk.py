#!/usr/bin/python3
"""Walks what the program shows to screen readers, on every screen, and prints each control that the keyboard or
an action can reach and that has no name, no role or no state. Prints nothing, and ends with 0, when all have.

    tests/accessibility/walk <build folder> [--all]     (--all also lists what is in order)

Run by that script, which gives it a session of its own.
"""
import json
import os
import socket
import subprocess
import sys
import tempfile
import time
import uuid

import pyatspi

PATIENCE = 30  # seconds
NO_ROLES = {"unknown", "invalid", "unidentified", "redundant object"}
PLACES = {"frame", "dialog", "window", "application", "scroll pane"}  # the keyboard scrolls these, no more


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def write_profile(folder, engine, guide_done):
    with open(os.path.join(folder, "settings.ini"), "w", encoding="utf-8") as settings:
        settings.write("[General]\n")
        settings.write(f"manualEnginePath={engine}\nport={free_port()}\n")
        settings.write(f"guideDone={'true' if guide_done else 'false'}\n")
    chats = os.path.join(folder, "Tarnwick", "chats")
    os.makedirs(chats, exist_ok=True)
    name = str(uuid.uuid4()).upper()
    date = "2026-01-02T03:04:05Z"
    texts = [("user", "What is there?"),
             ("assistant", "<think>Well.</think>Prose with [a link](https://example.org).\n\n- one\n- two\n\n"
                           "```c\nint main;\n```\n")]
    messages = [{"content": text, "createdAt": date, "id": str(uuid.uuid4()).upper(), "role": role,
                 "thinking": "", "tokensPerSecond": 12.5} for role, text in texts]
    with open(os.path.join(chats, name + ".json"), "w", encoding="utf-8") as chat:
        json.dump({"createdAt": date, "id": name, "messages": messages, "model": "qwen3:4b", "think": True,
                   "title": "A chat", "updatedAt": date}, chat)


def give_up(why):
    print("walk:", why)
    sys.exit(2)


def wait_for(what, ask):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = ask()
        if found:
            return found
        time.sleep(0.1)
    give_up(f"{what} does not come")


def children(node):
    try:
        for index in range(node.childCount):
            child = node.getChildAtIndex(index)
            if child is not None:
                yield child
    except Exception:  # what has gone meanwhile
        return


def shown(node):
    """Everything below that can be seen."""
    for child in children(node):
        try:
            states = child.getState()
            is_shown = states.contains(pyatspi.STATE_SHOWING) or child.getRoleName() in PLACES
        except Exception:
            continue
        if is_shown:
            yield child
            yield from shown(child)


def actions(node):
    try:
        action = node.queryAction()
        return [action.getName(index) for index in range(action.nActions)]
    except Exception:
        return []


class Program:
    def __init__(self, build, guide_done):
        self.folder = tempfile.TemporaryDirectory()
        engine = os.path.join(build, "tests", "support", "engine", "demo-engine")
        write_profile(self.folder.name, engine, guide_done)
        environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb",
                           DEMO_ENGINE_INSTALLED="qwen3:4b,my-own:1b", DEMO_ENGINE_PULL_MS="600000",
                           DEMO_ENGINE_LOAD_MS="0")
        self.process = subprocess.Popen(
            [os.path.join(build, "bin", "tarnwick"), "--profile", self.folder.name], env=environment)
        self.root = wait_for("the program", self.application)
        wait_for("its window", lambda: list(shown(self.root)))

    def application(self):
        for application in children(pyatspi.Registry.getDesktop(0)):
            try:
                if application.get_process_id() == self.process.pid:
                    return application
            except Exception:
                continue
        return None

    def find(self, name, roles=None):
        for node in shown(self.root):
            try:
                if node.name == name and (roles is None or node.getRoleName() in roles):
                    return node
            except Exception:
                continue
        return None

    def act(self, name, roles=None):
        node = wait_for(f'"{name}"', lambda: self.find(name, roles))
        for wanted in ("Press", "Toggle", "ShowMenu"):
            if wanted in actions(node):
                node.queryAction().doAction(actions(node).index(wanted))
                return
        give_up(f'"{name}" offers only {actions(node)}')

    def keys(self, *keys):
        subprocess.run(["xdotool", "key", *keys], check=True)

    def end(self):
        self.process.terminate()
        self.process.wait()


def walk(program, screen, list_all, faults):
    time.sleep(0.5)  # until what was just opened has been drawn
    for node in shown(program.root):
        try:
            role, name, states = node.getRoleName(), node.name, node.getState()
            can_focus = states.contains(pyatspi.STATE_FOCUSABLE)
            offered = [action for action in actions(node) if action != "SetFocus"]
            size = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        except Exception:
            continue
        if role in PLACES or not (can_focus or offered):
            continue
        lacks = [what for what, is_lacking in (("name", not name.strip()), ("role", role in NO_ROLES),
                                               ("state", not states.getStates())) if is_lacking]
        line = f'{screen}: {role} "{name}" {offered} at {size.x},{size.y} {size.width}x{size.height}'
        if lacks:
            parent = node.parent
            faults.append(f"{line}: no {' and no '.join(lacks)} (in {parent.getRoleName()} \"{parent.name}\")")
        elif list_all:
            print(line)


def main():
    sys.stdout = os.fdopen(3, "w", encoding="utf-8", buffering=1)
    build = os.path.abspath(sys.argv[1])
    list_all = "--all" in sys.argv[2:]
    faults = []

    manager = subprocess.Popen(["openbox", "--config-file", "/dev/null"], stderr=subprocess.DEVNULL)
    program = Program(build, guide_done=False)
    walk(program, "guide", list_all, faults)
    program.act("Skip the guide")
    wait_for("the engine", lambda: program.find("Running"))
    wait_for("the models", lambda: program.find("my-own:1b"))
    walk(program, "models", list_all, faults)
    program.act("Download")
    wait_for("a download", lambda: program.find("Cancel"))
    walk(program, "models, downloading", list_all, faults)
    program.act("Details")
    wait_for("the details", lambda: program.find("Close"))
    walk(program, "details", list_all, faults)
    program.act("Close")
    program.act("Delete this model")
    wait_for("the question", lambda: program.find("Delete"))
    walk(program, "delete", list_all, faults)
    program.keys("Escape")
    wait_for("the end of the question", lambda: not program.find("Delete"))
    program.keys("ctrl+2")
    wait_for("the chat", lambda: program.find("Export as Markdown"))
    walk(program, "chat", list_all, faults)
    program.act("Settings for this model")
    wait_for("the model's settings", lambda: program.find("Reset to defaults"))
    walk(program, "model settings", list_all, faults)
    program.keys("Escape")
    wait_for("their end", lambda: not program.find("Reset to defaults"))
    program.keys("ctrl+3")
    wait_for("the server's screen", lambda: program.find("Share on my network"))
    walk(program, "server", list_all, faults)
    program.act("Share on my network")
    wait_for("the question", lambda: program.find("Share"))
    walk(program, "share", list_all, faults)
    program.keys("Escape")
    wait_for("its end", lambda: not program.find("Share"))
    program.keys("ctrl+comma")
    wait_for("the settings", lambda: program.find("Launch at login"))
    walk(program, "settings", list_all, faults)
    program.end()
    manager.terminate()

    print(*faults, sep="\n", end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
