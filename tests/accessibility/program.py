"""The program under test as assistive programs meet it: on a screen and a session bus of its own."""
import json
import os
import socket
import subprocess
import tempfile
import time
import uuid

import pyatspi

PATIENCE = 120  # seconds; a machine may be busy
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


class GivesUp(Exception):
    """What does not happen."""


def wait_for(what, ask):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = ask()
        if found:
            return found
        time.sleep(0.1)
    raise GivesUp(f"{what} does not come")


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
    def __init__(self, build, guide_done, pull_ms=600000):
        self.folder = tempfile.TemporaryDirectory()
        engine = os.path.join(build, "tests", "support", "engine", "demo-engine")
        write_profile(self.folder.name, engine, guide_done)
        environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb",
                           DEMO_ENGINE_INSTALLED="qwen3:4b,my-own:1b", DEMO_ENGINE_PULL_MS=str(pull_ms),
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
        raise GivesUp(f'"{name}" offers only {actions(node)}')

    def keys(self, *keys):
        subprocess.run(["xdotool", "key", *keys], check=True)

    def is_running(self):
        return self.process.poll() is None

    def end(self):
        self.process.terminate()
        return self.process.wait()
