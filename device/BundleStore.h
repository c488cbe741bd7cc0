#pragma once

#include "device/BundleUnpacker.h"
#include "formats/Descriptor.h"
#include "device/Registry.h"
#include "device/Result.h"

#include <string>

namespace dubrix {

/// The folder of installed bundles, held by one installer at a time: everything that changes it
/// goes through here, under a lock that a process loses with its end.
class BundleStore {
public:
    /// Makes the folders when they are missing and waits for the lock, which is held as long as
    /// the store lives.
    static Result<BundleStore> open(const Registry& registry);

    /// A new empty folder, on the same file system as the installed bundles and no part of them.
    struct Staging {
        std::string uuid;
        Descriptor folder;
    };
    Result<Staging> makeStaging();
    /// Puts a staging folder among the installed bundles, still unregistered.
    Outcome publish(const Staging& staging);
    void discard(const Staging& staging);

    /// Removes what no application owns: staging folders, links that never came into place, bundle
    /// folders that the registry does not name. Goes on after a failure; what is left, the next
    /// sweep finds again.
    void sweep(const StepHook& step);

    /// Bytes free for a process without special rights, and the size of the blocks in which they
    /// are given out.
    struct Room {
        std::uint64_t free = 0;
        std::uint64_t block = 1;
    };
    Result<Room> room() const;

private:
    BundleStore(const Registry& registry, Descriptor bundle, Descriptor applications);

    Registry registry_;
    Descriptor bundle_;
    Descriptor applications_;
};

} // namespace dubrix
