#include "tests/proof/ProofDevice.h"

namespace dubrix {

namespace fs = std::filesystem;

namespace {

const std::string refusal = "Another duplication is running on this device.";

} // namespace

TEST(OneAtATime, AsManyDuplicatesAsSuccesses) {
    constexpr std::size_t rounds = 12, programs = 4;
    const ProofDevice device;
    const std::vector<std::string> request{DUPLICATE_ONCE, device.root().native(), "request"};
    std::size_t successes = 0, refusals = 0;
    for (std::size_t round = 0; round < rounds; ++round)
        for (const Ended& ended : device.runTogether(std::vector(programs, request))) {
            successes += ended.output == device.success;
            refusals += ended.output == refusal;
        }
    EXPECT_EQ(successes + refusals, rounds * programs) << "nothing else is said";
    EXPECT_GE(successes, rounds) << "of each round at least one";
    EXPECT_EQ(device.registry().identifiers().size(), 1 + successes);
    for (std::size_t number = 1; number <= successes; ++number)
        EXPECT_EQ(device.bundle(device.source + std::to_string(number)).size(),
                  device.bundle(device.source).size())
            << number;
    EXPECT_EQ(device.leftovers(), 0);
    EXPECT_TRUE(fs::is_empty(device.root() / "tmp"));
}

TEST(OneAtATime, WhatACommandLeavesBehindKeepsNoClaim) {
    const ProofDevice device;
    device.putTool("cp", "sleep 1000 & exec /bin/cp \"$@\"");
    const std::string twice = "for time in 1 2; do \"$0\" \"$1\" request; done";
    device.run({"sh", "-c", twice, DUPLICATE_ONCE, device.root().native()});
    EXPECT_EQ(device.registry().identifiers().size(), 3U);
}

TEST(OneAtATime, ADeviceThatACommandNeverGivesBackIsRefused) {
    const ProofDevice device;
    const std::string applications = device.root() / "var/containers/Bundle/Application";
    const Ended ended = device.request({"flock", applications});
    EXPECT_EQ(ended.output, refusal);
    EXPECT_EQ(device.registry().identifiers().size(), 1U);
    EXPECT_TRUE(fs::is_empty(device.root() / "tmp")) << "nothing was staged";
    EXPECT_EQ(device.request().output, device.success);
}

} // namespace dubrix
