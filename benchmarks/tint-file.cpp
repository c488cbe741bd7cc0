#include "files/WholeFile.h"
#include "formats/images/MonochromeRemap.h"

#include <cstdio>
#include <cstdlib>

/// tint-file IN OUT RED GREEN BLUE: remaps one image file onto shades of a colour, as a process of
/// its own that can be timed against others.
int main(int argumentCount, char** arguments) {
    if (argumentCount != 6) {
        std::fprintf(stderr, "usage: tint-file IN OUT RED GREEN BLUE (components 0 to 1)\n");
        return 2;
    }
    const auto image = dubrix::readWholeFile(arguments[1]);
    if (!image) {
        std::fprintf(stderr, "tint-file: cannot read %s\n", arguments[1]);
        return 1;
    }
    const auto tinted = dubrix::monochromePng(*image, std::strtof(arguments[3], nullptr),
                                              std::strtof(arguments[4], nullptr),
                                              std::strtof(arguments[5], nullptr));
    if (!tinted || !dubrix::replaceWholeFile(arguments[2], *tinted, dubrix::Durability::Process)) {
        std::fprintf(stderr, "tint-file: %s\n", tinted ? "cannot write" : "not a sound image");
        return 1;
    }
    return 0;
}
