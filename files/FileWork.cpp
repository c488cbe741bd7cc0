#include "files/FileWork.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>
#include <numeric>
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

/// Large files by size, then the others as they follow one another.
std::vector<std::size_t> orderOf(const std::vector<std::uint64_t>& sizes) {
    std::vector<std::size_t> order(sizes.size());
    std::iota(order.begin(), order.end(), 0);
    const auto small = std::ranges::stable_partition(
        order, [&](std::size_t index) { return sizes[index] >= largeFile; });
    std::stable_sort(order.begin(), small.begin(),
                     [&](std::size_t one, std::size_t other) { return sizes[one] > sizes[other]; });
    return order;
}

std::size_t workersFor(const std::vector<std::uint64_t>& sizes) {
    const std::uint64_t effort =
        std::accumulate(sizes.begin(), sizes.end(), sizes.size() * effortOfFile);
    const std::size_t most = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1,
                                                     std::min(mostWorkers, sizes.size() + 1));
    return std::clamp<std::size_t>(effort / effortOfWorker, 1, most);
}

/// What the threads share.
struct Sharing {
    std::vector<std::size_t> order;
    std::atomic<std::size_t> next{0};
    /// The first file in the order of the indexes that failed; no later one is begun.
    std::atomic<std::size_t> firstFailed{std::numeric_limits<std::size_t>::max()};
    std::mutex recording;
    Outcome outcome = Success{};

    void work(const FileWork& onFile) {
        for (std::size_t place = next++; place < order.size(); place = next++)
            if (order[place] < firstFailed)
                record(order[place], onFile(order[place]));
    }
    void record(std::size_t index, Outcome done) {
        if (done)
            return;
        const std::scoped_lock lock(recording);
        if (index >= firstFailed)
            return;
        firstFailed = index;
        outcome = std::move(done);
    }
};

} // namespace

Outcome workOnFiles(const std::vector<std::uint64_t>& sizes,
                    const std::function<FileWork()>& makeWorker) {
    Sharing sharing;
    sharing.order = orderOf(sizes);
    std::vector<std::jthread> others;
    try {
        for (std::size_t count = workersFor(sizes); count > 1; --count)
            others.emplace_back([&] { sharing.work(makeWorker()); });
    } catch (const std::system_error&) {
        // The system gives no more threads: those that are there do it.
    }
    sharing.work(makeWorker());
    others.clear();
    return std::move(sharing.outcome);
}

} // namespace dubrix
