"""reader.py LAUNCHER DEVICE: what reader_test does, on the session's bus. Prints what the windows say."""

import subprocess
import sys
import time

import pyatspi
from gi.repository import Atspi, GLib

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
    """An element that is shown and can be used: what is on its way out or covered takes no press."""
    return until(lambda: next((element for element in elements() if element.name == name
                               and role in (None, element.getRole())
                               and element.getState().contains(pyatspi.STATE_SHOWING)
                               and element.getState().contains(pyatspi.STATE_ENABLED)), None),
                 f"“{name}”")


def press(name, role=None):
    actions = find(name, role).queryAction()
    names = [actions.getName(index) for index in range(actions.nActions)]
    assert actions.doAction(names.index("Press" if "Press" in names else names[0])), name


def expect_controls(*names):
    """What can be operated is called that, and is all there is to be operated."""
    def there():
        # The toolkit has a reader stop at words, too.
        return sorted(element.name for element in elements()
                      if element.getState().contains(pyatspi.STATE_FOCUSABLE)
                      and element.getState().contains(pyatspi.STATE_SHOWING)
                      and element.getRole() != pyatspi.ROLE_LABEL)
    until(lambda: there() == sorted(names), f"controls {names}")


def focus(name):
    find(name).queryComponent().grabFocus()
    hears("object:state-changed:focused", "", name)


def type_text(text):
    pyatspi.Registry.generateKeyboardEvent(0, text, pyatspi.KEY_STRING)


def hear(event):
    try:
        if event.detail1:  # it has come, and not gone
            heard.append((event.type, event.source.getRoleName(), event.source.name))
    except (GLib.Error, RuntimeError):
        pass


def hears(kind, role, name):
    """Of an element of this role, or of any."""
    until(lambda: any(what.startswith(kind) and role in ("", who) and name in called
                      for what, who, called in heard), f"word of “{name}”")
    heard.clear()


subprocess.run(["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path",
                "/org/a11y/bus", "--method", "org.freedesktop.DBus.Properties.Set",
                "org.a11y.Status", "ScreenReaderEnabled", "<true>"],
               check=True, capture_output=True)
pyatspi.Registry.registerEventListener(hear, "object:state-changed:focused",
                                       "object:state-changed:showing")
GLib.timeout_add(20, lambda: True)  # what is waited for is looked for so often
Atspi.set_timeout(LIMIT * 1000, LIMIT * 1000)  # a busy machine answers late
BUTTON, CHECK_BOX, ALERT = pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_ALERT


def announced(name):
    hears("object:state-changed:showing", "alert", name)


def choose_an_application():
    expect_controls("Application", "Custom name", "Custom color", "Duplicate", "Update duplicates",
                    "Settings", "About", "Color test")
    press("Application")
    expect_controls("Cancel", "Search", "Select Application", "Fernleaf Notes", "Skyfathom",
                    "Tockwell")
    focus("Search")
    type_text("tock")
    expect_controls("Cancel", "Search", "Clear search", "Select Application", "Tockwell")
    press("Tockwell", pyatspi.ROLE_LIST_ITEM)


def duplicate():
    press("Custom name", CHECK_BOX)
    focus("Name")
    type_text("heard")
    press("Done")
    press("Duplicate", BUTTON)
    find("Tockwell", ALERT)
    hears("object:state-changed:focused", "push button", "Duplicate")
    expect_controls("Cancel", "Duplicate")
    press("Duplicate", BUTTON)
    announced("successfully duplicated")


def follow_a_link():
    press("About", pyatspi.ROLE_PAGE_TAB)
    press("Donate")
    announced("was not opened")


def use_the_home_screen():
    expect_controls("Fernleaf Notes", "Skyfathom", "Tockwell", "heard", "Dubrix")
    press("heard", BUTTON)
    announced("heard is at home on the phone")
    focus("Tockwell")
    pyatspi.Registry.generateKeyboardEvent(0xff67, None, pyatspi.KEY_SYM)  # for a menu
    expect_controls("Export", "Remove")
    press("Remove")
    announced("Remove “Tockwell”?")
    expect_controls("Cancel", "Remove")
    press("Remove")
    announced("Tockwell is removed")
    expect_controls("Fernleaf Notes", "Skyfathom", "heard", "Undo", "Dubrix")
    press("Undo")
    announced("Tockwell is back")
    press("Dubrix", BUTTON)
    find("Update duplicates")


def within(words, *acts):
    window = subprocess.Popen([launcher, "--device", device, *words], stderr=subprocess.STDOUT)
    try:
        for act in acts:
            act()
    finally:
        window.terminate()
        window.wait(LIMIT)


within([], choose_an_application, duplicate, follow_a_link)
within(["home"], use_the_home_screen)
