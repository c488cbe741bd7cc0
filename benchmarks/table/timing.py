"""Timing of whole processes that take turns."""
import dataclasses
import os
import statistics
import subprocess
import sys
import time
from typing import Callable

# The machine's own settings must not change what is compared.
PLAIN = {key: value for key, value in os.environ.items() if key not in ("ZIPOPT", "UNZIP", "BASH_ENV")}


class Failed(Exception):
    """Something did not do what it was to be timed for."""


@dataclasses.dataclass
class Contestant:
    """A command that is timed, and what is done before and after each run without being timed.
    Its output goes to nobody. It runs on `cores`, or on all when these are empty."""
    command: list
    environment: dict = dataclasses.field(default_factory=dict)
    cores: frozenset = frozenset()
    before: Callable = lambda: None
    after: Callable = lambda: None
    seconds: list = dataclasses.field(default_factory=list)
    processor: list = dataclasses.field(default_factory=list)

    def run(self):
        self.before()
        all_cores = os.sched_getaffinity(0)
        os.sched_setaffinity(0, self.cores or all_cores)
        start = time.perf_counter()
        # Copies nothing of this process, as a fork would: that takes longer than a small program.
        child = os.posix_spawnp(self.command[0], self.command, PLAIN | self.environment,
                                file_actions=[(os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0),
                                              (os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)])
        _, status, usage = os.wait4(child, 0)
        self.seconds.append(time.perf_counter() - start)
        os.sched_setaffinity(0, all_cores)
        if status:
            raise Failed(f"{self.command[0]} ended with {os.waitstatus_to_exitcode(status)}")
        self.processor.append(usage.ru_utime + usage.ru_stime)
        self.after()


# A process counts its parent's memory at its start as its own, so a small parent has to ask.
ASK_FOR_PEAK = """import os, sys
child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ)
_, status, usage = os.wait4(child, 0)
print(usage.ru_maxrss)
sys.exit(os.waitstatus_to_exitcode(status))"""


def peak_memory(command, environment=None):
    """The largest resident memory of a process, in MB. The least that can be told is about 8."""
    asked = subprocess.run([sys.executable, "-ISc", ASK_FOR_PEAK, *command],
                           env=PLAIN | (environment or {}), stdin=subprocess.DEVNULL,
                           stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    if asked.returncode != 0:
        raise Failed(f"{command[0]} ended with {asked.returncode}")
    return int(asked.stdout.split()[-1]) / 1024


def take_turns(runs, *contestants):
    """Runs A B A B …, so that a machine that slows down slows down both."""
    for _ in range(runs):
        for contestant in contestants:
            contestant.run()


@dataclasses.dataclass
class Row:
    """One line of the table: medians in `unit`, and the largest value that the ratio may have, or
    that ours may have where there is nothing to compare with."""
    group: str
    work: str
    unit: str
    ours: float = None
    against: str = ""
    plain: float = None
    target: float = None
    ratios: list = dataclasses.field(default_factory=list)
    processor: list = None
    note: str = ""
    place: str = ""

    @property
    def ratio(self):
        return statistics.median(self.ratios) if self.ratios else None

    @property
    def met(self):
        if self.ours is None and self.target is not None:
            return False
        measured = self.ours if self.plain is None else self.ratio
        return None if None in (self.target, measured) else measured <= self.target

    def as_data(self):
        return dataclasses.asdict(self) | {"ratio": self.ratio, "met": self.met}


@dataclasses.dataclass
class Place:
    """Where files are that are worked on. Targets hold in memory; what a disk does is told."""
    name: str
    folder: str
    is_disk: bool

    @property
    def flush(self):
        return "sync -f {folder}\n" if self.is_disk else ""


def compared(group, work, ours, against, plain, target, place=None):
    """The row of two contestants that have taken turns: the ratio is the median of the pairs'."""
    return Row(group, work, "s", statistics.median(ours.seconds), against,
               statistics.median(plain.seconds), None if place and place.is_disk else target,
               [a / b for a, b in zip(ours.seconds, plain.seconds)],
               [statistics.median(ours.processor), statistics.median(plain.processor)],
               place=place.name if place else "")
