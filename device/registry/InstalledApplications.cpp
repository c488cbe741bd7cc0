#include "device/registry/InstalledApplications.h"

#include "device/registry/BundleInfo.h"
#include "device/registry/Registry.h"
#include "files/FileWork.h"

namespace dubrix {

std::vector<InstalledApplication> installedApplications(const Registry& registry) {
    std::vector<InstalledApplication> applications;
    if (Result<std::vector<std::string>> names = registry.names()) {
        applications.resize(names->size());
        // Of thousands, other threads read some.
        FileWork read = [&](std::size_t index) -> Outcome {
            if (auto bundle = registry.bundleOf((*names)[index]); bundle && bundle->info)
                applications[index] = {(*names)[index], std::move(bundle->info->displayName),
                                       std::move(bundle->path), false, bundle->info->hidden};
            return Success{};
        };
        const std::vector<std::uint64_t> sizes(names->size());
        (void)workOnFiles(sizes, [&] { return read; });
        std::erase_if(applications, [](const auto& each) { return each.path.empty(); });
    }
    for (std::string& path : registry.systemBundles())
        if (auto info = BundleInfo::read(registry.hostPath(path)); info && info->identifier)
            applications.push_back({std::move(*info->identifier), std::move(info->displayName),
                                    std::move(path), true, info->hidden});
    return applications;
}

} // namespace dubrix
