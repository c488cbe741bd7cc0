#pragma once

#include "device/FileStamp.h"
#include "device/Registry.h"
#include "formats/Descriptor.h"

#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace dubrix {

/// The registry for those who ask for many applications again and again: a link is read only when
/// a link has come, gone or changed since it was last asked for. That a bundle folder is there is
/// looked at every time. Any thread.
///
/// The folder of links is held open, so that a look at it costs next to nothing: one that is
/// removed is noticed, one moved aside together with a folder above it is not.
class RegistryLinks {
public:
    /// What is read of a folder changed less than `settling` ago is not kept.
    explicit RegistryLinks(const Registry& registry,
                           FileStamp::Time settling = std::chrono::seconds(1))
        : registry_(registry),
          settling_(settling) {}

    /// As in Registry.
    std::optional<std::string> pathOf(const std::string& identifier);
    bool isInstalled(const std::string& identifier);

private:
    struct Target {
        /// On the device.
        std::string path;
        /// The bundle folder below that of all bundles, or absolute on this machine.
        std::string folder;
    };
    const Target* installed(const std::string& identifier);
    bool isThere(const Target& target) const;
    void forgetChanged();
    std::optional<Target> read(const std::string& identifier) const;

    /// All is forgotten when so many have been asked for, most of which are long gone.
    static constexpr std::size_t mostTargets = 1000;

    Registry registry_;
    FileStamp::Time settling_;
    std::mutex mutex_;
    Descriptor links_;
    Descriptor bundles_;
    /// Of the folder of links when the targets were read.
    FileStamp stamp_;
    /// Nothing for an identifier without a link.
    std::unordered_map<std::string, std::optional<Target>> targets_;
};

} // namespace dubrix
