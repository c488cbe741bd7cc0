"""Rows about questions to a device, timed within one process, and the application's memory."""
import json
import statistics
import subprocess

from . import bundles
from .timing import Failed, Row, peak_memory

FEW, MANY = 10, 10_000
OPEN_PICKER = """tap Application
wait "Source" 60
"""


class Devices:
    """A device with few and one with many applications, made when they are first asked for."""

    def __init__(self, options):
        self.folders = {}
        for count in (FEW, MANY):
            self.folders[count] = f"{options.work}/device-{count}"
            bundles.make_device(self.folders[count], count)


def times(options, works):
    """Every repetition's time in microseconds of each work, all works taking turns."""
    output = subprocess.run(
        [options.program("benchmarks/device_benchmark"), options.devices.folders[FEW],
         options.devices.folders[MANY], "--benchmark_filter=^(" + works + ")",
         f"--benchmark_repetitions={options.repetitions}", "--benchmark_min_time=0.1",
         "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"],
        check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    found = {}
    for entry in json.loads(output)["benchmarks"]:
        if entry.get("error_occurred"):
            raise Failed(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] == "iteration":
            name = entry["run_name"].split("/process_time")[0].split("/real_time")[0]
            found.setdefault(name, []).append((entry["repetition_index"], entry["real_time"]))
    return {name: [time for _, time in sorted(pairs)] for name, pairs in found.items()}


def row(group, work, against, target, ours, plain):
    return Row(group, work, "us", statistics.median(ours), against, statistics.median(plain),
               target, [a / b for a, b in zip(ours, plain)])


def census(group, options):
    found = times(options, "census/")
    return [row(group, "census", "100 links and lists read", 1.3, found["census/many"],
                found["census/bare"]),
            row(group, "census, 10,000 apps", "10 apps", 1.2, found["census/many"],
                found["census/few"])]


def picker_list(group, options):
    found = times(options, "list/")
    return [row(group, "picker's list of 10,000", "walk with libplist", 0.7, found["list/ours"],
                found["list/bare"])]


def settings(group, options):
    found = times(options, "settings/")
    return [row(group, "settings written and read", "write, rename, libplist", 2,
                found["settings/ours"], found["settings/bare"])]


def application_memory(group, options):
    """The application's largest resident memory with the picker's list of 10,000 open."""
    script = options.work + "/script"
    with open(script, "w", encoding="utf-8") as file:
        file.write(OPEN_PICKER)
    start = 'exec "$0" --root "$1" --drive 6:7:8 6<"$2" 7>/dev/null 8<&7'
    peak = peak_memory(["/bin/bash", "-c", start, options.libexec + "/dubrix-app",
                        options.devices.folders[MANY], script],
                       {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"})
    return Row(group, "application's peak memory, picker open", "MB", peak, target=150)
