#pragma once

#include "device/registry/Registry.h"
#include "platform/ApplicationIcons.h"
#include "platform/ApplicationList.h"
#include "platform/ApplicationWorkspace.h"

namespace dubrix {

/// Answers from the links of the device's registry alone; no bundle is read.
class PosixApplicationWorkspace final : public ApplicationWorkspace {
public:
    explicit PosixApplicationWorkspace(const std::filesystem::path& root) : registry_(root) {}

    bool applicationIsInstalled(const std::string& identifier) const override;

private:
    Registry registry_;
};

/// Answers from the device's registry and what the bundles' Info.plist files say at this moment.
/// Any thread.
class PosixApplicationList final : public ApplicationList {
public:
    explicit PosixApplicationList(const std::filesystem::path& root) : registry_(root) {}

    std::optional<std::string> valueForKey(std::string_view key,
                                           const std::string& forDisplayIdentifier) const override;
    std::map<std::string, std::string> applications() const override;
    std::vector<Entry> entries() const override;

private:
    Registry registry_;
};

/// Reads the icons from the bundles on the device.
class PosixApplicationIcons final : public ApplicationIcons {
public:
    explicit PosixApplicationIcons(const std::filesystem::path& root) : registry_(root) {}

    std::optional<RgbaImage> iconOfBundle(const std::string& path, unsigned pixels) const override;

private:
    Registry registry_;
};

} // namespace dubrix
