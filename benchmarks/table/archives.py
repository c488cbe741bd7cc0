"""Rows about bytes that are copied: duplication, installation, the size of a folder."""
import os
import shlex
import shutil
import statistics
import subprocess

from . import bundles
from .timing import Contestant, Row, compared, peak_memory, take_turns

# What a person would type: a copy, two edited keys, an archive, the archive unpacked into place.
BY_HAND = """set -e
mkdir -p {stage}/Payload
cp -rf {bundle} {stage}/Payload/
plistutil -i {stage}/Payload/{name}/Info.plist -f xml -o {stage}/Info.xml
sed -i 's/com.example.source/com.example.source1/; s/>Source</>Source 1</' {stage}/Info.xml
plistutil -i {stage}/Info.xml -f bin -o {stage}/Payload/{name}/Info.plist
rm {stage}/Info.xml
cd {stage}
zip -r Source.ipa *
unzip -q Source.ipa -d {target}
"""


# What the three commands of the pipeline move: the bundle, three times.
THREE_COPIES = """set -e
mkdir {stage}
cp -r {bundle} {stage}/one
cp -r {stage}/one {stage}/two
cp -r {stage}/two {stage}/three
"""


def forget(*folders):
    for folder in folders:
        shutil.rmtree(folder, ignore_errors=True)


def duplication(group, size, files, options, place):
    """The whole way from the tap to the installed duplicate against commands by hand. On a disk the
    copies are flushed once, as the installer flushes what it registers."""
    root = f"{place.folder}/{group}"
    bundle = bundles.make_device(root, bundle=lambda place: bundles.make_bundle(place, size, files))
    stage, target = root + "/stage", root + "/target"
    ours = Contestant(
        [options.program("benchmarks/engine-task"), root, "duplicate"],
        {"PATH": options.libexec + ":" + os.environ["PATH"], "ZIPOPT": "-0y"},
        after=lambda: remove_application(root, bundles.SOURCE + "1", options))
    script = BY_HAND.format(stage=shlex.quote(stage), target=shlex.quote(target),
                            bundle=shlex.quote(bundle), name=os.path.basename(bundle))
    by_hand, stored = (Contestant(["bash", "-c", script], environment,
                                  after=lambda: forget(stage, target))
                       for environment in ({}, {"ZIPOPT": "-0"}))
    copies = Contestant(
        ["bash", "-c", THREE_COPIES.format(stage=shlex.quote(stage), bundle=shlex.quote(bundle)) +
         place.flush.format(folder=shlex.quote(stage))], after=lambda: forget(stage))
    take_turns(options.runs_for(size), ours, by_hand, stored, copies)
    forget(root)
    work = f"duplicate {size // 1_000_000:,} MB, {files:,} files"
    return [compared(group, work, ours, against, plain, target, place)
            for against, plain, target in (("cp, plistutil, zip, unzip", by_hand, 0.3),
                                           ("the same, ZIPOPT=-0", stored, 0.9),
                                           ("three copies", copies, 1.2))]


def remove_application(root, identifier, options):
    subprocess.run([options.installer, "--root", root, "-u", identifier], check=True,
                   stdout=subprocess.DEVNULL)


def archive_of(folder, bundle, level):
    """An archive of `bundle` at `folder`, packed by zip with the given option."""
    os.makedirs(folder + "/Payload")
    os.rename(bundle, folder + "/Payload/Source.app")
    subprocess.run(["zip", "-qr" + level, "Source.ipa", "Payload"], cwd=folder, check=True)
    return folder + "/Source.ipa"


def installation(group, options, place):
    """The installer against the tools that only lay out the files."""
    size, files = 100_000_000, 1_500
    root, made = place.folder + "/installation", place.folder + "/archives"
    packed = archive_of(made + "/deflated", new_bundle(made, size, files), "6")
    stored = archive_of(made + "/stored", new_bundle(made, size, files), "0")
    target = place.folder + "/unpacked"
    bundles.make_device(root)

    def installer(archive):
        return Contestant([options.installer, "--root", root, "-f", archive],
                          after=lambda: remove_application(root, bundles.SOURCE, options))

    pairs = (("deflated", installer(packed), "unzip", 0.15,
              Contestant(["unzip", "-q", packed, "-d", target], after=lambda: forget(target))),
             ("stored", installer(stored), "cp -r of the folder", 1.0,
              Contestant(["cp", "-r", made + "/stored/Payload", target],
                         after=lambda: forget(target))))
    rows = []
    for form, ours, name, goal, plain in pairs:
        take_turns(options.runs_for(size), ours, plain)
        rows.append(compared(group, f"install 100 MB, {form}", ours, name, plain, goal,
                             place))
    forget(root, made)
    return rows


def new_bundle(folder, size, files):
    root = folder + "/device"
    bundle = bundles.make_device(root, bundle=lambda place: bundles.make_bundle(place, size, files))
    place = folder + "/Source.app"
    os.rename(bundle, place)
    forget(root)
    return place


def removal(group, options, place):
    """The removal of what a duplication has staged, against the system's own."""
    root = place.folder + "/removal"
    made, staged = root + "/made", root + "/tmp/Source"
    os.makedirs(root + "/tmp")
    bundles.make_bundle(made, 100_000_000, 12_000)

    def stage():
        subprocess.run(["cp", "-r", made, staged], check=True)

    ours = Contestant([options.program("benchmarks/engine-task"), root, "remove", "/tmp/Source"],
                      before=stage)
    plain = Contestant(["rm", "-rf", staged], before=stage)
    take_turns(options.runs_for(0), ours, plain)
    forget(root)
    return [compared(group, "remove what was staged, 12,000 files", ours, "rm -rf", plain, 1.2,
                     place)]


def question(group, options):
    """How long the question before a duplication takes, the size of the bundle included."""
    root = options.work + "/question"
    bundles.make_device(root, bundle=lambda place: bundles.make_bundle(place, 100_000_000, 12_000))
    command = [options.program("benchmarks/engine-task"), root, "question"]
    times = [float(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout)
             for _ in range(options.repetitions)]
    forget(root)
    return Row(group, "question before duplicating 12,000 files", "ms", statistics.median(times),
               target=50)


def installer_memory(group, options):
    """The installer's largest resident memory for the largest archive."""
    size, files = options.large
    made, root = options.work + "/large", options.work + "/installation"
    archive = archive_of(made + "/deflated", new_bundle(made, size, files), "1")
    forget(made + "/deflated/Payload")
    bundles.make_device(root)
    peak = peak_memory([options.installer, "--root", root, "-f", archive])
    forget(root, made)
    return Row(group, f"installer's peak memory, {size // 1_000_000:,} MB", "MB", peak, target=64)


def folder_size(group, options):
    """The size of a folder as the question before a duplication tells it."""
    root = options.work + "/size"
    bundles.make_tree(root + "/var/tree", 100_000)
    ours = Contestant([options.program("benchmarks/engine-task"), root, "size", "/var/tree"])
    plain = Contestant(["du", "-sb", root + "/var/tree"])
    take_turns(options.runs_for(0), ours, plain)
    forget(root)
    return [compared(group, "sizeOfFolder, 100,000 files", ours, "du -sb", plain, None)]
