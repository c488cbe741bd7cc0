#include "device/FileUnpacking.h"

#include "device/FileTree.h"
#include "formats/Descriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <numeric>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace dubrix {

namespace {

/// More share the archive's and the folders' locks than do work.
constexpr std::size_t mostWorkers = 4;
/// What a thread must find to do to be worth its start. To make a file costs about as much as to
/// fill it with `effortOfFile` bytes.
constexpr std::uint64_t effortOfWorker = std::uint64_t{1} << 20;
constexpr std::uint64_t effortOfFile = std::uint64_t{16} << 10;
constexpr std::uint64_t largeFile = std::uint64_t{1} << 20;

Failure cannotUnpack(const ZipEntry& entry) {
    return systemFailure("cannot be unpacked at " + entry.name);
}

std::uint64_t bytesIn(const std::vector<ZipEntry>& files) {
    const auto add = [](std::uint64_t sum, const ZipEntry& file) { return sum + file.size; };
    return std::accumulate(files.begin(), files.end(), std::uint64_t{0}, add);
}

/// Large files by size, then the others as they follow one another in the archive.
std::vector<std::size_t> orderOf(const std::vector<ZipEntry>& files) {
    std::vector<std::size_t> order(files.size());
    std::iota(order.begin(), order.end(), 0);
    const auto small = std::stable_partition(order.begin(), order.end(), [&](std::size_t index) {
        return files[index].size >= largeFile;
    });
    std::stable_sort(order.begin(), small, [&](std::size_t one, std::size_t other) {
        return files[one].size > files[other].size;
    });
    return order;
}

} // namespace

FileUnpacking::FileUnpacking(const std::vector<ZipEntry>& files, int archive, int root,
                             const StepHook& step, const Progress& progress)
    : files_(files),
      archive_(archive),
      root_(root),
      step_(step),
      progress_(progress),
      total_(bytesIn(files)),
      order_(orderOf(files)) {}

std::size_t FileUnpacking::workers() const {
    const std::uint64_t effort = total_ + files_.size() * effortOfFile;
    const std::size_t most = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1,
                                                     std::min(mostWorkers, files_.size() + 1));
    return std::clamp<std::size_t>(effort / effortOfWorker, 1, most);
}

Outcome FileUnpacking::run() {
    std::vector<std::jthread> others;
    try {
        for (std::size_t count = workers(); count > 1; --count)
            others.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        // The system gives no more threads: those that are there do it.
    }
    work();
    others.clear();
    return outcome_;
}

void FileUnpacking::work() {
    ZipEntryReader reader(archive_);
    for (std::size_t place = next_++; place < order_.size(); place = next_++) {
        const std::size_t index = order_[place];
        if (index < firstFailed_)
            record(index, unpack(files_[index], reader));
    }
}

Outcome FileUnpacking::unpack(const ZipEntry& entry, ZipEntryReader& reader) {
    Descriptor file(::openat(root_, entry.name.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen())
        return cannotUnpack(entry);
    Outcome done = reader.read(entry, [&](std::string_view bytes) -> Outcome {
        if (!writeAll(file.get(), bytes))
            return cannotUnpack(entry);
        count(bytes.size());
        return Success{};
    });
    // The bundle will have to be on the disk before it is registered: the disk may begin while the
    // rest is unpacked. Small files are better left for the end, when they are many at once.
    if (done && entry.size >= largeFile)
        ::sync_file_range(file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
    // After the writing and past the process's mask, which would take bits away.
    if (done && (::fchmod(file.get(), entry.permissions) != 0 || !file.close()))
        return cannotUnpack(entry);
    return done;
}

void FileUnpacking::count(std::uint64_t bytes) {
    if (!progress_)
        return;
    const std::scoped_lock lock(recording_);
    unpacked_ += bytes;
    progress_(unpacked_, total_);
}

void FileUnpacking::record(std::size_t index, Outcome done) {
    const std::scoped_lock lock(recording_);
    if (done) {
        step_("file unpacked");
    } else if (index < firstFailed_) {
        firstFailed_ = index;
        outcome_ = std::move(done);
    }
}

} // namespace dubrix
