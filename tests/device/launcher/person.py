"""person.py LAUNCHER DEVICE shell|work|offers [SOURCE]: a person at a terminal, and what they see there.

"shell" opens a shell on a device whose owner is hostile, and prints what the person's own shell was
given to read afterwards and how its terminal is set. The others duplicate the source: for "work" the
device has no duplicates and none is finished, as the stand-in for zip has written half of the archive
and waits; for "offers" numbers 1 and 3 are stale.
"""

import os
import pty
import re
import select
import signal
import sys
import time

LAUNCHER, DEVICE, WHAT, *SOURCE = sys.argv[1:]
QUESTION = "[D]uplicate  [C]ancel "
OFFER = "[U]pdate  [N]ew duplicate  [C]ancel "


class Terminal:
    """A shell script runs at it, whose output is read here and whose keys are typed here."""

    def __init__(self, script, *arguments):
        self.process, self.end = pty.fork()
        if self.process == 0:
            os.environ["TERM"] = "xterm"
            os.execvp("bash", ["bash", "-c", script, "-", LAUNCHER, DEVICE, *arguments])
        self.seen = ""

    def wait_for(self, text, count=1):
        self.wait_until(lambda: self.seen.count(text) >= count, text)

    def wait_until(self, holds, text):
        limit = time.monotonic() + 20
        while not holds():
            if not select.select([self.end], [], [], max(0, limit - time.monotonic()))[0]:
                sys.exit(f"not seen: {text!r} in {self.seen!r}")
            try:
                self.seen += os.read(self.end, 4096).decode("utf-8", "replace")
            except OSError:
                sys.exit(f"not seen before the end: {text!r} in {self.seen!r}")

    def type(self, text):
        os.write(self.end, text.encode())


def shell():
    person = Terminal('before=$(stty -g); "$1" --device "$2" shell; echo "status"" $?"; '
                      'after=$(stty -g); read -r -t 0.3 line; echo "given:"" [$line]"; '
                      '[[ $after == "$before" ]] && echo "settings"" kept"; echo "the"" end"')
    person.wait_for("\x1b[?2004h")
    person.type("PS1='devi''ce>'\r")
    person.wait_for("device>")
    # On the device, keys and settings are the device's: it may do with them what it likes.
    person.type("stty -echo -icanon; tty; echo \"wid\"\"th $(stty size)\"\r")
    person.wait_for("width ")
    person.wait_for("device>", 2)
    # The terminal's answer to a question is typed, as it were; so is what the person types ahead.
    person.type("printf '\\033[c'; exit 3\rtyped ahead\r\033[?62;c")
    person.wait_for("the end")
    print(person.seen[person.seen.rindex("status ") :].replace("\r", ""), end="")
    print("macro ran" if "macro ran" in person.seen else "no macro ran")


def asked(*options):
    # Else bash might follow a Ctrl-C that the launcher has answered by then.
    person = Terminal('trap : INT; "$1" --device "$2" duplicate "${@:3}"; echo "status"" $?"', *SOURCE, *options)
    person.wait_for(QUESTION)
    return person


def ends(person, what):
    person.wait_until(lambda: re.search(r"status \d+\r", person.seen), "a status")
    print(what, re.search(r"status (\d+)", person.seen)[1])


def offers():
    person = asked("--count", "2", "--plain", "--update", "ask")
    for answers, answer in enumerate(["d", "n", "update"]):
        person.wait_for("[C]ancel ", answers + 1)
        person.type(answer + "\r")
    ends(person, "offered")
    print(person.seen.count(QUESTION), person.seen.count(OFFER),
          re.findall(r"\n(\d+)\t", person.seen.replace("\x1b[K", "\n")))


def work():
    for what, keys in ("cancelled", "c\r"), ("nothing typed", "\x04"), ("broken off at the question", "\x03"):
        person = asked()
        person.type(keys)
        ends(person, what)
    person = asked("--plain")
    person.type("perhaps\r")
    person.wait_for(QUESTION, 2)
    person.type("DUPLICATE\r")
    person.wait_until(lambda: any(45 < int(percent) < 55 for percent in re.findall(r"(\d+)% \[", person.seen)),
                      "half of the second third")
    person.type("\x03")
    person.wait_for("dubrix: stopped; nothing was made")
    ends(person, "broken off at work")
    print(*re.findall(r"\] (.*?)\s*\x1b", person.seen)[-1:])


signal.alarm(60)
{"shell": shell, "work": work, "offers": offers}[WHAT]()
