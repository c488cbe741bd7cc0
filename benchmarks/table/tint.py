"""Rows about the tint: file to file against ImageMagick 6 doing the same remap with its own
settings, and the pixel work alone."""
import json
import os
import random
import re
import shutil
import statistics
import struct
import subprocess
import zlib

from .timing import Contestant, Row, compared, take_turns

COLOR = (0.9, 0.4, 0.1)
SIZES = (180, 1024)


def write_icon(path, size):
    """A slanting gradient with fine grain, a bright disc, and transparent corners."""
    grain = random.Random(size)
    rows = bytearray()
    for y in range(size):
        rows.append(0)
        for x in range(size):
            dx, dy = 2 * x - size, 2 * y - size
            if abs(dx) + abs(dy) > size * 9 // 5:
                rows += bytes(4)
            elif dx * dx + dy * dy < size * size // 3:
                rows += bytes((250, 240, 230, 255))
            else:
                noise = grain.getrandbits(2)
                rows += bytes((x * 200 // size + noise, y * 180 // size + noise,
                               (x + y) * 120 // size + noise, 255))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n"
                   + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
                   + chunk(b"IDAT", zlib.compress(bytes(rows), 6)) + chunk(b"IEND", b""))


def linear(value):
    return value / 12.92 if value <= 0.04045 else ((value + 0.055) / 1.055) ** 2.4


def imagemagick_command(program, source, target):
    rows = [" ".join(f"{linear(c) * weight:.8f}" for weight in (0.2126, 0.7152, 0.0722))
            for c in COLOR]
    return [program, source, "-colorspace", "RGB", "-color-matrix", " ".join(rows),
            "-colorspace", "sRGB", "-depth", "8", "PNG32:" + target]


def program(*names):
    return next(filter(None, map(shutil.which, names)), None)


def largest_difference(one, other):
    """Of the results, in 1/255."""
    report = subprocess.run([program("compare-im6.q16", "compare-im6", "compare"), "-metric", "PAE",
                             one, other, "null:"], capture_output=True, text=True).stderr
    return float(re.search(r"\(([-+.e\d]+)\)", report).group(1)) * 255


def compare_size(group, size, convert, options):
    icon, ours_made, plain_made = (f"{options.places[0].folder}/{name}-{size}.png"
                                   for name in ("icon", "ours", "imagemagick"))
    write_icon(icon, size)
    one_core = frozenset({max(os.sched_getaffinity(0))})
    ours = Contestant([options.program("benchmarks/tint-file"), icon, ours_made,
                       *map(str, COLOR)], cores=one_core)
    plain = Contestant(imagemagick_command(convert, icon, plain_made),
                       {"MAGICK_THREAD_LIMIT": "1"}, cores=one_core)
    take_turns(4 * options.repetitions, ours, plain)
    row = compared(group, f"tint {size}x{size}, file to file", ours, "ImageMagick 6", plain,
                   0.15 if size == 180 else 0.2, options.places[0])
    difference = largest_difference(ours_made, plain_made)
    if difference > 1.5:
        row.note = f"the results differ by {difference:.1f} of 255"
    return row


def pixel_work(group, options):
    output = subprocess.run(
        [options.program("benchmarks/tint_benchmark"), "--benchmark_filter=remapPixels/1024",
         f"--benchmark_repetitions={options.repetitions}", "--benchmark_format=json"],
        check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    times = [1e9 / entry["items_per_second"] for entry in json.loads(output)["benchmarks"]
             if entry["run_type"] == "iteration"]
    return Row(group, "tint 1024x1024, one pixel", "ns", statistics.median(times), target=5)


def tint(group, options):
    convert = program("convert-im6.q16", "convert-im6")
    rows = [pixel_work(group, options)]
    for size in SIZES:
        if convert:
            rows.append(compare_size(group, size, convert, options))
        else:
            rows.append(Row(group, f"tint {size}x{size}, file to file", "s",
                            note="ImageMagick 6 is not installed"))
    return rows
