#pragma once

#include "files/Descriptor.h"
#include "platform/DeviceClaim.h"

#include <filesystem>

namespace dubrix {

/// A claim on the device whose root folder is `root`: the kernel's lock on the folder in which
/// installed applications lie. Whoever cannot open and lock folders there cannot install either.
class PosixDeviceClaim final : public DeviceClaim {
public:
    explicit PosixDeviceClaim(const std::filesystem::path& root);

    bool claim() override;
    void release() override;

private:
    std::filesystem::path folder_;
    Descriptor lock_;
};

} // namespace dubrix
