"""compare_bundles.py ORIGINAL DUPLICATE IDENTIFIER NAME: says what a duplicate's bundle has that it should not.

It differs by the two keys and by the bytes of icons that the bundle lists, and by nothing else.
"""

import pathlib
import plistlib
import stat
import sys

original, duplicate = map(pathlib.Path, sys.argv[1:3])
keys = {"CFBundleIdentifier": sys.argv[3], "CFBundleDisplayName": sys.argv[4]}


def contents(bundle):
    return {path.relative_to(bundle): path for path in bundle.rglob("*")}


def bytes_of(path):
    if path.is_symlink():
        return path.readlink()
    return path.read_bytes() if path.is_file() else None


one, other = contents(original), contents(duplicate)
if one.keys() != other.keys():
    print("not the same files:", sorted(map(str, one.keys() ^ other.keys())))
info = plistlib.loads((original / "Info.plist").read_bytes())
icons = tuple(name for kinds in [{"": info}] + [value for key, value in info.items() if key.startswith("CFBundleIcons")]
              for kind in kinds.values() for name in kind.get("CFBundleIconFiles", []))
if plistlib.loads((duplicate / "Info.plist").read_bytes()) != info | keys:
    print("not the same Info.plist")
different = [name for name in one.keys() & other.keys() if bytes_of(one[name]) != bytes_of(other[name])]
for name in different:
    if name.name != "Info.plist" and not name.name.startswith(icons):
        print("not the same bytes:", name)
for name in one.keys() & other.keys():
    if stat.S_IMODE(one[name].lstat().st_mode) != stat.S_IMODE(other[name].lstat().st_mode):
        print("not the same permissions:", name)
if len(different) < 2:
    print("no icon is tinted")
