#include "device/samples/SampleBundle.h"

#include <cstdio>

namespace fs = std::filesystem;

/// make-samples SAMPLES BUNDLE: writes the sample applications into the folder SAMPLES, which is
/// emptied before, and the application's own icon files into its bundle's folder BUNDLE.
int main(int count, char** arguments) {
    using namespace dubrix;
    if (count != 3) {
        std::fputs("usage: make-samples SAMPLES BUNDLE\n", stderr);
        return 2;
    }
    const fs::path samples = arguments[1];
    std::error_code error;
    fs::remove_all(samples, error);
    bool written = !error;
    for (const SampleBundle& sample : sampleBundles()) {
        written = written && writeBundle(samples, sample);
    }
    written = written && writeIcons(arguments[2], paintDubrix,
                                    {{"AppIcon29x29", {{"@2x", 58}, {"@3x", 87}}},
                                     {"AppIcon60x60", {{"@2x", 120}, {"@3x", 180}}},
                                     {"AppIcon76x76", {{"~ipad", 76}, {"@2x~ipad", 152}}}});
    if (!written)
        std::perror("make-samples");
    return written ? 0 : 1;
}
