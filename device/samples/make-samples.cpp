#include "device/samples/SampleBundle.h"

#include <cstdio>

namespace fs = std::filesystem;

/// make-samples ART SAMPLES BUNDLE: draws the icons of the folder ART and writes the sample
/// applications into the folder SAMPLES, which is emptied before, and the application's own icon
/// files into its bundle's folder BUNDLE.
int main(int count, char** arguments) {
    using namespace dubrix;
    if (count != 4) {
        std::fputs("usage: make-samples ART SAMPLES BUNDLE\n", stderr);
        return 2;
    }
    const fs::path art = arguments[1];
    const fs::path samples = arguments[2];
    std::error_code error;
    fs::remove_all(samples, error);
    bool written = !error;
    for (const SampleBundle& sample : sampleBundles()) {
        written = written && writeBundle(samples, sample, art);
    }
    written = written && writeIcons(arguments[3], art / "dubrix.svg",
                                    {{"AppIcon29x29", {"@2x", "@3x"}},
                                     {"AppIcon60x60", {"@2x", "@3x"}},
                                     {"AppIcon76x76", {"~ipad", "@2x~ipad"}}});
    if (!written)
        std::perror("make-samples");
    return written ? 0 : 1;
}
