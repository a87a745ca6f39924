#!/usr/bin/python3
"""Walks what the program shows to screen readers, on every screen, and prints each control that the keyboard or
an action can reach and that has no name, no role or no state. Prints nothing, and ends with 0, when all have.

    tests/accessibility/walk <build folder> [--all]     (--all also lists what is in order)

Run by that script, which gives it a session of its own.
"""
import os
import subprocess
import sys
import time

from program import PLACES, GivesUp, Program, actions, shown, wait_for

NO_ROLES = {"unknown", "invalid", "unidentified", "redundant object"}


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
    sys.stdout = sys.stderr = os.fdopen(3, "w", encoding="utf-8", buffering=1)
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
    try:
        sys.exit(main())
    except GivesUp as why:
        print("walk:", why)
        sys.exit(2)
