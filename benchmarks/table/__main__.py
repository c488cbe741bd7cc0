"""Measures the groups that are asked for and prints the table. See ./bench --help."""
import argparse
import functools
import json
import os
import platform
import shutil
import signal
import subprocess
import sys
import tempfile

from . import archives, device, drawing, picker, tint, window
from .timing import Failed, Place, Row

MEGABYTE = 1_000_000


def in_both_places(measured):
    """What copies bytes is measured in memory and on the disk, in one run."""
    return lambda group, options: [row for place in options.places
                                   for row in measured(group, options, place)]


GROUPS = {
    "duplicate-100": (("plistutil", "zip", "unzip"), in_both_places(
        lambda group, options, place: archives.duplication(group, 100 * MEGABYTE, 1_500, options,
                                                           place))),
    "duplicate-1000": (("plistutil", "zip", "unzip"), in_both_places(
        lambda group, options, place: archives.duplication(group, *options.large, options,
                                                           place))),
    "install": (("zip", "unzip"), in_both_places(archives.installation)),
    "removal": ((), in_both_places(archives.removal)),
    "question": ((), archives.question),
    "window": ((), window.opening),
    "census": ((), device.census),
    "list": ((), device.picker_list),
    "settings": ((), device.settings),
    "size": ((), archives.folder_size),
    "tint": ((), tint.tint),
    "picker": ((), picker.opening),
    "memory": (("zip",), lambda group, options: [
        device.application_memory(group, options), archives.installer_memory(group, options)]),
}


class Options:
    """What every group is told: where to work, how often, and where the programs are."""

    def __init__(self, arguments, work, memory):
        self.build, self.work, self.quick = arguments.build, work, arguments.quick
        self.places = [Place("in memory", memory, False), Place("on disk", work, True)]
        self.libexec = self.build + "/libexec/dubrix"
        self.installer = self.libexec + "/ipainstaller"
        self.repetitions = arguments.runs or (3 if self.quick else 9)
        self.runs = arguments.runs or (3 if self.quick else 7)
        self.large = (200 * MEGABYTE if self.quick else 1000 * MEGABYTE, 3_000)

    @functools.cached_property
    def devices(self):
        return device.Devices(self)

    def program(self, path):
        return f"{self.build}/{path}"

    def runs_for(self, size):
        return self.runs if size < 500 * MEGABYTE else min(self.runs, 3)


def parse():
    parser = argparse.ArgumentParser(
        prog="bench", description="Times the program's work against plain tools doing the same, "
        "taking turns, and prints the medians. Ends with 1 when a target is missed.")
    parser.add_argument("groups", nargs="*", metavar="GROUP",
                        help="only these of: " + ", ".join(GROUPS))
    parser.add_argument("--json", action="store_true", help="print all figures as JSON instead")
    parser.add_argument("--quick", action="store_true",
                        help="fewer runs, and 200 MB in place of 1 GB")
    parser.add_argument("--runs", type=int, help="so many runs of everything")
    parser.add_argument("--work", default=None,
                        help="make the temporary folder on the disk in this one")
    parser.add_argument("--memory", default="/dev/shm", help="and the one in memory in this one")
    parser.add_argument("--picture", nargs="+", metavar="FIGURES", help="measure nothing: print a "
                        "drawing (SVG) of the ratios in these files, made with --json")
    parser.add_argument("--markdown", nargs="+", metavar="FIGURES",
                        help="the same as a table")
    parser.add_argument("--build", default="build/bench", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    unknown = set(arguments.groups) - set(GROUPS)
    if unknown:
        parser.error("unknown: " + ", ".join(sorted(unknown)))
    return arguments


def measure(group, options):
    tools, function = GROUPS[group]
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        return [Row(group, group, "", note="not installed: " + ", ".join(missing))]
    try:
        rows = function(group, options)
    except (Failed, subprocess.CalledProcessError) as failure:
        return [Row(group, group, "", target=0, note=f"failed: {failure}")]
    return rows if isinstance(rows, list) else [rows]


def machine(work):
    model = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo", encoding="utf-8")
                  if line.startswith("model name")), platform.machine())
    system = subprocess.run(["stat", "-f", "-c", "%T", work], capture_output=True, text=True).stdout
    return {"processors": len(os.sched_getaffinity(0)), "model": model, "kernel": platform.release(),
            "filesystem": system.strip(), "load": round(os.getloadavg()[0], 1)}


def figure(value, unit):
    if value is None:
        return "-"
    if unit == "s" and value < 1:
        value, unit = value * 1000, "ms"
    if unit == "us" and value >= 1000:
        value, unit = value / 1000, "ms"
    return f"{value:,.{0 if value >= 100 else 2 if value < 10 else 1}f} {unit}"


def line(row):
    ratio = f"{row.ratio:.3f}" if row.ratio else "-"
    spread = f"{min(row.ratios):.2f}-{max(row.ratios):.2f}" if len(row.ratios) > 1 else ""
    limit = row.target if row.target is None or row.plain is not None else int(row.target)
    target = "" if limit is None else f"<= {limit}"
    verdict = {True: "met", False: "MISSED", None: ""}[row.met]
    verdict = " ".join(filter(None, (verdict, row.note)))
    work = ", ".join(filter(None, (row.work, row.place)))
    return (f"{work:46} {figure(row.ours, row.unit):>10}  {row.against:26}"
            f"{figure(row.plain, row.unit):>10}  {ratio:>6}  {spread:12} {target:8} {verdict}")


def rows_in(name):
    with open(name, encoding="utf-8") as file:
        return json.load(file)["rows"]


def main():
    arguments = parse()
    os.environ["LC_ALL"] = "C.UTF-8"
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # the temporary folder goes too
    arguments.build = os.path.abspath(arguments.build)
    if arguments.picture or arguments.markdown:
        runs = [rows_in(name) for name in arguments.picture or arguments.markdown]
        print(drawing.picture(runs) if arguments.picture
              else "\n".join(drawing.markdown(runs, figure)))
        return 0
    folder = functools.partial(tempfile.TemporaryDirectory, prefix="dubrix-bench-")
    with folder(dir=arguments.work) as work, folder(dir=arguments.memory) as memory:
        options = Options(arguments, work, memory)
        about = machine(work)
        rows = []
        if not arguments.json:
            print(", ".join(f"{name} {value}" for name, value in about.items()))
            print(f"{'work':46} {'ours':>10}  {'plain':26}{'':>10}  {'ratio':>6}  "
                  f"{'from-to':12} target")
        for group in arguments.groups or GROUPS:
            for row in measure(group, options):
                rows.append(row)
                if not arguments.json:
                    print(line(row), flush=True)
    if arguments.json:
        print(json.dumps({"machine": about, "rows": [row.as_data() for row in rows]}, indent=2))
    return 1 if any(row.met is False for row in rows) else 0


sys.exit(main())
