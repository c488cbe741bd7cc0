"""asked_terminal.py LAUNCHER DEVICE SOURCE work|offers: what a person at a terminal is asked, answers, sees, breaks off.

For "work" the device has no duplicates and none is finished: the stand-in for zip has written half of
the archive and waits. For "offers" numbers 1 and 3 are stale.
"""

import re
import signal
import sys

from person import Terminal

LAUNCHER, DEVICE, SOURCE, WHAT = sys.argv[1:]
QUESTION = "[D]uplicate  [C]ancel "
OFFER = "[U]pdate  [N]ew duplicate  [C]ancel "


def asked(*options):
    person = Terminal('"$1" --device "$2" duplicate "${@:3}"; echo "status"" $?"',
                      LAUNCHER, DEVICE, SOURCE, *options)
    person.wait_for(QUESTION)
    return person


def ends(person, what):
    person.wait_for("status ")
    person.wait_until(lambda: re.search(r"status \d+\r", person.seen), "a status")
    print(what, re.search(r"status (\d+)", person.seen)[1])


signal.alarm(60)
if WHAT == "offers":
    person = asked("--count", "2", "--plain")
    for answers, answer in enumerate(["d", "n", "update"]):
        person.wait_for("[C]ancel ", answers + 1)
        person.type(answer + "\r")
    ends(person, "offered")
    print(person.seen.count(QUESTION), person.seen.count(OFFER),
          re.findall(r"\n(\d+)\t", person.seen.replace("\x1b[K", "\n")))
    sys.exit()
person = asked()
person.type("c\r")
ends(person, "cancelled")

person = asked()
person.type("\x04")
ends(person, "nothing typed")

person = asked()
person.type("\x03")
ends(person, "broken off at the question")

person = asked("--plain")
person.type("perhaps\r")
person.wait_for("[D]uplicate  [C]ancel ", 2)
person.type("DUPLICATE\r")
person.wait_until(lambda: any(45 < int(percent) < 55 for percent in re.findall(r"(\d+)% \[", person.seen)),
                  "half of the second third")
person.type("\x03")
person.wait_for("dubrix: stopped; nothing was made")
ends(person, "broken off at work")
