"""Makes what the benchmarks work on: application bundles of a given size and devices with many
applications. The same call always makes the same bytes.

A bundle is half executables, which deflate to about half, and half images and media, which are
compressed already, with the many small files of a real one around them.
"""
import hashlib
import os
import plistlib
import random
import uuid

POOL_SIZE = 8 << 20
DUPLICATES = 100
SOURCE = "com.example.source"
APPLICATIONS = "var/containers/Bundle/Application"
REGISTRY = "var/containers/Bundle/Registry"
SETTINGS = "var/mobile/Library/Preferences/com.q7r2m.dubrix2.plist"


class Filling:
    """Bytes cut from pools far larger than the window in which deflate finds repetitions."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        # Few instructions are common and many are rare, as in a program.
        words = [self.random.randbytes(4) for _ in range(20_000)]
        weights = [1 / (rank + 1) ** 1.15 for rank in range(len(words))]
        self.pools = {
            "code": b"".join(self.random.choices(words, weights, k=POOL_SIZE // 4)),
            "media": self.random.randbytes(POOL_SIZE),
        }

    def write(self, path, size, kind):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        pool = self.pools[kind]
        with open(path, "wb") as file:
            while size > 0:
                start = self.random.randrange(POOL_SIZE)
                file.write(pool[start:start + size])
                size -= min(size, POOL_SIZE - start)


def information(identifier, name, version="1.4.2"):
    """An Info.plist with the keys and the size that store-built applications have."""
    return {
        "BuildMachineOSBuild": "22G120", "CFBundleDevelopmentRegion": "en",
        "CFBundleDisplayName": name, "CFBundleExecutable": "Application",
        "CFBundleIconFiles": ["AppIcon29x29", "AppIcon40x40", "AppIcon60x60"],
        "CFBundleIcons": {"CFBundlePrimaryIcon": {
            "CFBundleIconFiles": ["AppIcon29x29", "AppIcon40x40", "AppIcon60x60"],
            "CFBundleIconName": "AppIcon", "UIPrerenderedIcon": False}},
        "CFBundleIdentifier": identifier, "CFBundleInfoDictionaryVersion": "6.0",
        "CFBundleName": "Application", "CFBundlePackageType": "APPL",
        "CFBundleShortVersionString": version, "CFBundleSupportedPlatforms": ["Phone"],
        "CFBundleURLTypes": [{"CFBundleTypeRole": "Editor", "CFBundleURLName": identifier,
                              "CFBundleURLSchemes": [name.replace(" ", "").lower()]}],
        "CFBundleVersion": version, "DTCompiler": "com.example.compilers.1_0",
        "LSApplicationQueriesSchemes": ["mail", "maps", "message", "phone", "settings"],
        "LSRequiresIPhoneOS": True, "MinimumOSVersion": "9.0",
        "NSCameraUsageDescription": "Pictures that you take are added to your entries.",
        "NSContactsUsageDescription": "People whom you know are offered as recipients.",
        "NSLocationWhenInUseUsageDescription": "Entries remember where they were written.",
        "NSPhotoLibraryUsageDescription": "Pictures that you choose are added to your entries.",
        "UIAppFonts": ["Text-Regular.otf", "Text-Medium.otf", "Text-Bold.otf"],
        "UIBackgroundModes": ["fetch", "remote-notification"], "UIDeviceFamily": [1, 2],
        "UILaunchStoryboardName": "LaunchScreen", "UIMainStoryboardFile": "Main",
        "UIRequiredDeviceCapabilities": ["arm64"], "UIStatusBarHidden": False,
        "UISupportedInterfaceOrientations": ["Portrait", "LandscapeLeft", "LandscapeRight"],
        "UIViewControllerBasedStatusBarAppearance": True,
    }


def make_bundle(folder, size, files, seed=1):
    """A bundle of `size` bytes in `files` files at `folder`, without its Info.plist."""
    filling = Filling(seed)
    filling.write(folder + "/Application", size // 4, "code")
    for number in range(10):
        filling.write(f"{folder}/Frameworks/Part{number}.framework/Part{number}", size // 40, "code")
    count = files - 11
    # Sizes spread over three orders of magnitude, as those of images, sounds and nibs are.
    shares = [filling.random.lognormvariate(0, 1.5) for _ in range(count)]
    scale = (size - size // 4 - size // 40 * 10) / sum(shares)
    for number, share in enumerate(shares):
        place = f"{folder}/Assets/{number % 40:02}/image{number:04}.png"
        filling.write(place, max(1, int(share * scale)), "media")


def install(root, identifier, name, bundle=None, form=plistlib.FMT_BINARY):
    """Registers an application, of which there is no more than an Info.plist unless `bundle`
    makes the rest; gives its folder."""
    place = str(uuid.UUID(bytes=hashlib.md5(identifier.encode()).digest(), version=4)).upper()
    folder = f"{root}/{APPLICATIONS}/{place}/{name.replace(' ', '')}.app"
    os.makedirs(folder)
    if bundle:
        bundle(folder)
    with open(folder + "/Info.plist", "wb") as file:
        plistlib.dump(information(identifier, name), file, fmt=form)
    os.symlink(f"../Application/{place}/{os.path.basename(folder)}",
               f"{root}/{REGISTRY}/{identifier}")
    return folder


def make_device(root, applications=0, bundle=None):
    """A device with one application to be duplicated, whose folder it gives, and so many others;
    with others, the first has all its duplicates, in the form in which duplicates are written."""
    for folder in (APPLICATIONS, REGISTRY, "Applications", "tmp", os.path.dirname(SETTINGS)):
        os.makedirs(f"{root}/{folder}")
    source = install(root, SOURCE, "Source", bundle)
    if applications:
        for number in range(1, DUPLICATES + 1):
            install(root, SOURCE + str(number), f"Source {number}", form=plistlib.FMT_XML)
    for number in range(1, applications):
        install(root, f"com.example.maker{number % 89}.app{number}", f"Application {number}")
    settings = {"bundleID": SOURCE, "customNameToggle": False, "customText": "My copy",
                "customColorToggle": False, "Red": 0.75, "Green": 0.25, "Blue": 0.5}
    with open(f"{root}/{SETTINGS}", "wb") as file:
        plistlib.dump(settings, file)
    return source


def make_tree(folder, files):
    """So many files of no size, a hundred in a folder."""
    for number in range(files):
        place = f"{folder}/{number // 10_000}/{number // 100 % 100}"
        if number % 100 == 0:
            os.makedirs(place)
        with open(f"{place}/file{number}.strings", "wb") as file:
            file.write(b"text" * (number % 7))
