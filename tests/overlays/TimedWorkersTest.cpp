#include "overlays/TimedWorkers.h"

#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <memory>

namespace dubrix {

TEST(TimedWorkers, CancellingWakesEverySleeperAndLetsNewOnesStart) {
    TimedWorkers workers;
    std::atomic<int> woken = 0;
    std::atomic<int> sleptThrough = 0;
    for (int round = 0; round < 2; ++round) {
        for (int count = 0; count < 8; ++count)
            ASSERT_TRUE(workers.start([&] { ++(workers.sleep(3600) ? sleptThrough : woken); }));
        workers.cancelAll();
        EXPECT_EQ(woken, 8 * (round + 1)) << "all have ended when the call returns";
    }
    EXPECT_EQ(sleptThrough, 0);
}

TEST(TimedWorkers, AWorkerThatIsNotCancelledSleepsItsTime) {
    TimedWorkers workers;
    for (const double seconds : {0.0, 0.001, -1.0}) {
        std::promise<bool> slept;
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_TRUE(workers.start([&] { slept.set_value(workers.sleep(seconds)); }));
        EXPECT_TRUE(slept.get_future().get()) << seconds;
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::duration<double>(seconds));
        workers.cancelAll();
    }
}

TEST(TimedWorkers, TheEndOfTheOwnerEndsItsWorkersAndWhatTheyHold) {
    const auto held = std::make_shared<int>(0);
    {
        TimedWorkers workers;
        for (int count = 0; count < 4; ++count)
            ASSERT_TRUE(workers.start([&workers, held] { workers.sleep(*held ? 0 : 3600); }));
    }
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace dubrix
