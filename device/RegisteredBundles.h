#pragma once

#include "device/BundleInfo.h"
#include "device/FileStamp.h"
#include "device/Registry.h"

#include <optional>
#include <string>
#include <vector>

namespace dubrix {

/// All registered applications with what their bundles say. Only those links and Info.plist files
/// are read that have changed since the last time, on several processors when they are many. One
/// thread at a time.
class RegisteredBundles {
public:
    /// What was changed less than `settling` ago is not kept.
    explicit RegisteredBundles(const Registry& registry,
                               FileStamp::Time settling = std::chrono::seconds(1))
        : registry_(registry),
          settling_(settling) {}

    struct Bundle {
        std::string identifier;
        /// On the device; empty when no bundle is there.
        std::string path;
        /// Nothing for a bundle that says nothing.
        std::optional<BundleInfo> info;

        /// The Info.plist: absolute on this machine, or below the folder of installed bundles.
        std::string file;
        FileStamp stamp;
    };
    /// As they are now, sorted by the identifiers' bytes. Valid until the next call.
    const std::vector<Bundle>& current();

private:
    /// What holds for one look at all of them.
    struct Look {
        int applications;
        FileStamp::Time time;
        bool linksChanged;
    };
    void takeNames();
    void update(Bundle& bundle, const Look& look) const;
    /// Whether it leads elsewhere than before.
    bool follow(Bundle& bundle) const;
    /// Whether the bundle says something of itself.
    bool read(Bundle& bundle, const Look& look) const;

    Registry registry_;
    FileStamp::Time settling_;
    FileStamp links_;
    std::vector<Bundle> bundles_;
};

} // namespace dubrix
