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

from . import archives, device, picker, tint
from .timing import Failed, Row

MEGABYTE = 1_000_000
GROUPS = {
    "duplicate-100": (("plistutil", "zip", "unzip"), lambda group, options: archives.duplication(
        group, 100 * MEGABYTE, 1_500, options)),
    "duplicate-1000": (("plistutil", "zip", "unzip"), lambda group, options: archives.duplication(
        group, *options.large, options)),
    "install": (("zip", "unzip"), archives.installation),
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

    def __init__(self, arguments, work):
        self.build, self.work, self.quick = arguments.build, work, arguments.quick
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
    parser.add_argument("--work", default=None, help="make the temporary folder in this one")
    parser.add_argument("--build", default="build/release", help=argparse.SUPPRESS)
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
    return (f"{row.work:42} {figure(row.ours, row.unit):>10}  {row.against:26}"
            f"{figure(row.plain, row.unit):>10}  {ratio:>6}  {spread:12} {target:8} {verdict}")


def main():
    arguments = parse()
    os.environ["LC_ALL"] = "C.UTF-8"
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # the temporary folder goes too
    arguments.build = os.path.abspath(arguments.build)
    with tempfile.TemporaryDirectory(prefix="dubrix-bench-", dir=arguments.work) as work:
        options = Options(arguments, work)
        about = machine(work)
        rows = []
        if not arguments.json:
            print(", ".join(f"{name} {value}" for name, value in about.items()))
            print(f"{'work':42} {'ours':>10}  {'plain':26}{'':>10}  {'ratio':>6}  "
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
