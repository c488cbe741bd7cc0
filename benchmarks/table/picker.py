"""Rows about the picker's screen, from the tap until its rows are drawn. There is no plain tool
that does the same."""
import re
import statistics
import subprocess

from .device import MANY
from .timing import PLAIN, Row


def opening(group, options):
    output = subprocess.run(
        [options.program("benchmarks/picker-opening"), options.devices.folders[MANY]], check=True,
        env=PLAIN | {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"},
        stdout=subprocess.PIPE, text=True).stdout
    drawn = [float(time) for time in re.findall(r"rows drawn after ([\d.e+]+) ms", output)]
    frame = float(re.search(r"median ([\d.e+]+) ms", output).group(1))
    return [Row(group, "picker of 10,000 drawn, first time", "ms", drawn[0]),
            Row(group, "picker of 10,000 drawn, again", "ms", statistics.median(drawn[1:])),
            Row(group, "frame while its list is scrolled", "ms", frame)]
