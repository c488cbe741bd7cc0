"""A person at a terminal."""

import os
import pty
import select
import sys
import time


class Terminal:
    """The person's: a shell script runs at it, whose output is read here and whose keys are typed here."""

    def __init__(self, script, *arguments):
        self.process, self.end = pty.fork()
        if self.process == 0:
            os.environ["TERM"] = "xterm"
            os.execvp("bash", ["bash", "-c", script, "-", *arguments])
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
