"""own_terminal.py LAUNCHER DEVICE: a person at a terminal opens a shell on a device whose owner is hostile.

Prints what the person's own shell was given to read afterwards and how its terminal is set; the
caller compares.
"""

import signal
import sys

from person import Terminal

LAUNCHER, DEVICE = sys.argv[1:]


signal.alarm(60)
person = Terminal('before=$(stty -g); "$1" --device "$2" shell; echo "status"" $?"; '
                  'after=$(stty -g); read -r -t 1 line; echo "given:"" [$line]"; '
                  '[[ $after == "$before" ]] && echo "settings"" kept"; echo "the"" end"',
                  LAUNCHER, DEVICE)
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
