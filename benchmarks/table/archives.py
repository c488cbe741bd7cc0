"""Rows about bytes that are copied: duplication, installation, the size of a folder."""
import os
import shlex
import shutil
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


def forget(*folders):
    for folder in folders:
        shutil.rmtree(folder, ignore_errors=True)


def duplication(group, size, files, options):
    """The whole way from the tap to the installed duplicate against commands by hand."""
    root = f"{options.work}/{group}"
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
    take_turns(options.runs_for(size), ours, by_hand, stored)
    forget(root)
    work = f"duplicate {size // 1_000_000:,} MB, {files:,} files"
    return [compared(group, work, ours, "cp, plistutil, zip, unzip", by_hand, 0.3),
            compared(group, work, ours, "the same, ZIPOPT=-0", stored, 0.9)]


def remove_application(root, identifier, options):
    subprocess.run([options.installer, "--root", root, "-u", identifier], check=True,
                   stdout=subprocess.DEVNULL)


def archive_of(folder, bundle, level):
    """An archive of `bundle` at `folder`, packed by zip with the given option."""
    os.makedirs(folder + "/Payload")
    os.rename(bundle, folder + "/Payload/Source.app")
    subprocess.run(["zip", "-qr" + level, "Source.ipa", "Payload"], cwd=folder, check=True)
    return folder + "/Source.ipa"


def installation(group, options):
    """The installer against the tools that only lay out the files."""
    size, files = 100_000_000, 1_500
    root, made = options.work + "/installation", options.work + "/archives"
    packed = archive_of(made + "/deflated", new_bundle(made, size, files), "6")
    stored = archive_of(made + "/stored", new_bundle(made, size, files), "0")
    target = options.work + "/unpacked"
    bundles.make_device(root)

    def installer(archive):
        return Contestant([options.installer, "--root", root, "-f", archive],
                          after=lambda: remove_application(root, bundles.SOURCE, options))

    pairs = (("deflated", installer(packed), "unzip", 0.3,
              Contestant(["unzip", "-q", packed, "-d", target], after=lambda: forget(target))),
             ("stored", installer(stored), "cp -r of the folder", 1.3,
              Contestant(["cp", "-r", made + "/stored/Payload", target],
                         after=lambda: forget(target))))
    rows = []
    for form, ours, name, goal, plain in pairs:
        take_turns(options.runs_for(size), ours, plain)
        rows.append(compared(group, f"install 100 MB, {form}", ours, name, plain, goal))
    forget(root, made)
    return rows


def new_bundle(folder, size, files):
    root = folder + "/device"
    bundle = bundles.make_device(root, bundle=lambda place: bundles.make_bundle(place, size, files))
    place = folder + "/Source.app"
    os.rename(bundle, place)
    forget(root)
    return place


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
    return [compared(group, "sizeOfFolder, 100,000 files", ours, "du -sb", plain, 1.0)]
