"""The row about the first window: from the program's start to its first frame, against an empty
window of Qt Quick Controls. A frame counts when the scene graph says that it was rendered."""
import os
import statistics
import subprocess
import time

from .timing import PLAIN, Failed, Row

RUNS = 31


def first_frame(command):
    """Milliseconds."""
    environment = PLAIN | {"QT_LOGGING_RULES": "qt.scenegraph.time.renderloop=true",
                           "QT_FORCE_STDERR_LOGGING": "1", "QT_QPA_PLATFORM": "offscreen"}
    start = time.perf_counter()
    process = subprocess.Popen(command, env=environment, stderr=subprocess.PIPE)
    try:
        for line in process.stderr:
            if b"rendered" in line:
                return 1000 * (time.perf_counter() - start)
    finally:
        process.kill()
        process.wait()
        process.stderr.close()
    raise Failed(f"{command[0]} ended without a frame")


def opening(group, options):
    root = options.work + "/window"
    for folder in ("tmp", "Applications", "var/mobile/Library/Preferences"):
        os.makedirs(f"{root}/{folder}")
    ours = [options.libexec + "/dubrix-app", "--root", root, "--verbose"]
    empty = [options.program("benchmarks/empty-window")]
    first_frame(ours), first_frame(empty)
    times = [(first_frame(ours), first_frame(empty))
             for _ in range(5 if options.quick else RUNS)]
    return Row(group, "application, start to first frame", "ms",
               statistics.median(our for our, _ in times), "empty Controls window",
               statistics.median(window for _, window in times), 1.2,
               [our / window for our, window in times])
