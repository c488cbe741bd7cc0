#include "platform/desktop/PaintingPlatform.h"

#include "platform/desktop/PaintingWait.h"

namespace dubrix {

void PaintingCommandRunner::runCommand(const std::string& command) {
    waitWhilePainting([&] { runner_.runCommand(command); });
}

bool PaintingFileManager::fileExistsAtPath(const std::string& path) const {
    return files_.fileExistsAtPath(path);
}

bool PaintingFileManager::createDirectoryAtPath(const std::string& path) {
    return files_.createDirectoryAtPath(path);
}

bool PaintingFileManager::removeItemAtPath(const std::string& path) {
    bool removed = false;
    waitWhilePainting([&] { removed = files_.removeItemAtPath(path); });
    return removed;
}

std::vector<std::int64_t>
PaintingFileManager::sizesOfItemsBelowPath(const std::string& path) const {
    std::vector<std::int64_t> sizes;
    waitWhilePainting([&] { sizes = files_.sizesOfItemsBelowPath(path); });
    return sizes;
}

std::optional<std::string> PaintingFileManager::contentsAtPath(const std::string& path) const {
    return files_.contentsAtPath(path);
}

bool PaintingFileManager::writeToFile(const std::string& path, std::string_view bytes) {
    return files_.writeToFile(path, bytes);
}

std::optional<std::string> PaintingMonochromeFilter::monochromePng(std::string_view image,
                                                                   float red, float green,
                                                                   float blue) const {
    std::optional<std::string> png;
    waitWhilePainting([&] { png = filter_.monochromePng(image, red, green, blue); });
    return png;
}

Platform PaintingPlatform::ports() {
    return {.commands = commands_,
            .files = files_,
            .workspace = platform_.workspace,
            .applications = platform_.applications,
            .monochrome = monochrome_,
            .byteCounts = platform_.byteCounts,
            .log = platform_.log,
            .downloader = platform_.downloader,
            .device = platform_.device};
}

} // namespace dubrix
