#include "platform/linux/FolderSizes.h"

#include "formats/Descriptor.h"

#include <algorithm>
#include <condition_variable>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace dubrix {

namespace {

/// So many folders must be waiting for another thread to be worth its start.
constexpr std::size_t enoughForThread = 16;
constexpr std::size_t mostThreads = 4;

class Measuring {
public:
    explicit Measuring(Descriptor root) : root_(std::move(root)), waiting_{"."} {}

    std::vector<std::int64_t> run() {
        work();
        others_.clear(); // waits for them
        return std::move(sizes_);
    }

private:
    void work() {
        std::vector<std::int64_t> sizes;
        std::string folder;
        while (take(folder))
            give(measure(folder, sizes));
        const std::scoped_lock lock(mutex_);
        sizes_.insert(sizes_.end(), sizes.begin(), sizes.end());
    }

    /// The next folder; false when none is left and none can come.
    bool take(std::string& folder) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return !waiting_.empty() || busy_ == 0; });
        if (waiting_.empty())
            return false;
        folder = std::move(waiting_.back());
        waiting_.pop_back();
        ++busy_;
        return true;
    }

    void give(std::vector<std::string> folders) {
        const std::scoped_lock lock(mutex_);
        std::move(folders.begin(), folders.end(), std::back_inserter(waiting_));
        --busy_;
        changed_.notify_all();
        const std::size_t most =
            std::min<std::size_t>(std::thread::hardware_concurrency(), mostThreads);
        if (waiting_.size() < enoughForThread || others_.size() + 1 >= most)
            return;
        try {
            others_.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            // The system gives no more threads: those that are there do it.
        }
    }

    /// Adds the sizes of the entries in `folder` and gives the folders among them. The entries are
    /// looked at by their names in the open folder: the way there is not walked for each of them.
    std::vector<std::string> measure(const std::string& folder,
                                     std::vector<std::int64_t>& sizes) const {
        std::vector<std::string> folders;
        Descriptor own(
            ::openat(root_.get(), folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(own.get()), ::closedir);
        if (!stream)
            return folders;
        const int number = own.release();
        while (const dirent* entry = ::readdir(stream.get())) {
            const std::string_view name = entry->d_name;
            struct stat status {};
            if (name == "." || name == ".." ||
                ::fstatat(number, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            sizes.push_back(status.st_size);
            if (S_ISDIR(status.st_mode))
                folders.push_back(folder + "/" + entry->d_name);
        }
        return folders;
    }

    const Descriptor root_;
    std::mutex mutex_; // of all that follows
    std::condition_variable changed_;
    /// Below the root, not yet measured.
    std::vector<std::string> waiting_;
    /// How many folders are being measured.
    int busy_ = 0;
    std::vector<std::int64_t> sizes_;
    std::vector<std::jthread> others_;
};

} // namespace

std::vector<std::int64_t> sizesBelow(const std::string& folder) {
    return Measuring(Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))).run();
}

} // namespace dubrix
