"""asked_terminal.py LAUNCHER DEVICE SOURCE: what a person at a terminal is asked, answers, sees and breaks off.

A duplicate's archive is not finished here: the stand-in for zip has written half of it and waits.
"""

import re
import signal
import sys

from person import Terminal

LAUNCHER, DEVICE, SOURCE = sys.argv[1:]
QUESTION = "Duplicates: 0\r\n[D]uplicate  [C]ancel "


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
