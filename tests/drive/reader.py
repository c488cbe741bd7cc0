"""reader.py LAUNCHER DEVICE: what reader_test does, on the session's bus."""

import subprocess
import sys
import time

import pyatspi
from gi.repository import GLib

launcher, device = sys.argv[1:]
LIMIT = 60  # seconds that anything may take
heard = []


def until(condition, what):
    """The condition's first true value; events are heard meanwhile."""
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        GLib.MainContext.default().iteration(True)
        try:
            found = condition()
        except (GLib.Error, RuntimeError):  # it went while it was asked
            found = None
        if found:
            return found
    there = [(program.name, [element.name for element in everything(program) if element.name])
             for program in pyatspi.Registry.getDesktop(0) if program is not None]
    sys.exit(f"{what} did not come; heard: {heard}; there: {there}")


def everything(node):
    """Every element below the node that is shown."""
    for child in node:
        if child is None:
            continue
        yield child
        yield from everything(child)


def elements():
    for application in pyatspi.Registry.getDesktop(0):
        if application is not None and application.name == "dubrix":
            yield from everything(application)


def find(name, role=None):
    def one():
        return next((element for element in elements() if element.name == name
                     and (role is None or element.getRole() == role)
                     and element.getState().contains(pyatspi.STATE_SHOWING)), None)
    return until(one, f"“{name}”")


def press(name, role=None):
    actions = find(name, role).queryAction()
    names = [actions.getName(index) for index in range(actions.nActions)]
    assert actions.doAction(names.index("Press" if "Press" in names else names[0])), name


def expect_names(count):
    """Whatever can be operated is called something."""
    operable = [element for element in elements()
                if element.getState().contains(pyatspi.STATE_FOCUSABLE)]
    assert len(operable) >= count, [element.name for element in operable]
    nameless = [element.getRoleName() for element in operable if not element.name]
    assert not nameless, nameless


def hear(event):
    try:
        heard.append((event.type, event.source.getRoleName(), event.source.name))
    except (GLib.Error, RuntimeError):
        pass


def hears(kind, role, name):
    until(lambda: any(what.startswith(kind) and who == role and name in called
                      for what, who, called in heard), f"word of “{name}”")
    heard.clear()


def run(*command):
    return subprocess.run([launcher, "--device", device, *command], check=True,
                          capture_output=True, text=True).stdout


subprocess.run(["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path",
                "/org/a11y/bus", "--method", "org.freedesktop.DBus.Properties.Set",
                "org.a11y.Status", "ScreenReaderEnabled", "<true>"],
               check=True, capture_output=True)
pyatspi.Registry.registerEventListener(hear, "object:state-changed:focused",
                                       "object:state-changed:showing")
GLib.timeout_add(20, lambda: True)  # what is waited for is looked for so often
run("--samples", "list")
window = subprocess.Popen([launcher, "--device", device], stdout=subprocess.DEVNULL)
try:
    find("Duplicate", pyatspi.ROLE_PUSH_BUTTON)
    expect_names(7)
    press("Application")
    press("Tockwell", pyatspi.ROLE_LIST_ITEM)
    find("Duplicate", pyatspi.ROLE_PUSH_BUTTON)
    press("Custom name", pyatspi.ROLE_CHECK_BOX)
    field = find("Name", pyatspi.ROLE_TEXT)
    field.queryComponent().grabFocus()
    hears("object:state-changed:focused", "text", "Name")
    pyatspi.Registry.generateKeyboardEvent(0, "heard", pyatspi.KEY_STRING)
    until(lambda: field.queryText().getText(0, -1) == "heard", "what was typed")
    press("Duplicate", pyatspi.ROLE_PUSH_BUTTON)
    find("Tockwell", pyatspi.ROLE_ALERT)
    hears("object:state-changed:focused", "push button", "Duplicate")
    press("Duplicate", pyatspi.ROLE_PUSH_BUTTON)
    hears("object:state-changed:showing", "alert", "successfully duplicated")
    assert "\theard\t" in run("list")
finally:
    window.terminate()
    window.wait(LIMIT)

home = subprocess.Popen([launcher, "--device", device, "home"], stdout=subprocess.DEVNULL)
try:
    press("heard", pyatspi.ROLE_PUSH_BUTTON)
    expect_names(5)
    hears("object:state-changed:showing", "alert", "heard is at home on the phone")
finally:
    home.terminate()
    home.wait(LIMIT)
