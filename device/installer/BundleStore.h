#pragma once

#include "device/registry/Registry.h"
#include "files/Descriptor.h"
#include "files/Result.h"

#include <chrono>
#include <functional>
#include <string>

namespace dubrix {

/// The folder of installed bundles, held by one installer at a time: everything that changes it
/// goes through here, under a lock that a process loses with its end.
class BundleStore {
public:
    /// Makes the folders when they are missing and waits for the lock, which is held as long as
    /// the store lives. `waiting` is called, once and by another thread, when the wait has taken
    /// `patience`.
    static Result<BundleStore> open(const Registry& registry,
                                    const std::function<void()>& waiting = {});
    static constexpr std::chrono::seconds patience{2};

    /// A new empty folder, on the same file system as the installed bundles and no part of them.
    struct Staging {
        std::string uuid;
        Descriptor folder;
    };
    Result<Staging> makeStaging();
    /// Puts a staging folder among the installed bundles, still unregistered.
    Outcome publish(const Staging& staging);
    void discard(const Staging& staging);

    /// Makes the bundle `folderName` of a published folder the one of `identifier`. The bundle is
    /// on the disk before the registry changes and the change is when this returns, so that a cut
    /// of power leaves the one before or the new one, whole. A failure of the disk may come after
    /// the change.
    Outcome enter(const std::string& identifier, const Staging& staging,
                  const std::string& folderName);
    /// Takes the registration away; from the disk, too, when this returns.
    Outcome strike(const std::string& identifier);

    /// Notes the bundle of an application that is about to be struck, in place of any other, so
    /// that sweeps leave it alone; false when that is not possible.
    bool keep(const std::string& identifier);
    /// Registers the bundle that was kept again; fails, and still keeps it, where another has been
    /// registered meanwhile. On the disk when this returns.
    Outcome putBack(const std::string& identifier);
    /// Keeps nothing any more but for what the next sweep finds.
    void forgetKept();

    /// Removes what no application owns: staging folders, links that never came into place, bundle
    /// folders that neither the registry names, on the disk either, nor the record of what is kept.
    /// Goes on after a failure; what is left, the next sweep finds again.
    void sweep();

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
    Registry removed_;
    Descriptor bundle_;
    Descriptor applications_;
};

} // namespace dubrix
