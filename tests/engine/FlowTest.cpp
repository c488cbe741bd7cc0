#include "tests/engine/EngineTest.h"

#include <random>

namespace dubrix {

namespace {

/// An application: the source, or a duplicate under its number.
using Application = ScriptedCatalogue::Application;
/// The source and its hundred numbers.
using State = std::vector<Application>;

bool isCurrent(const State& state, const Application& application) {
    return application.version && application.version == state[0].version;
}

std::string cloning(const State& state, int number) {
    return stringWithFormat("Cloning %@ %d\nPlease wait...\n\n", state[0].name, number);
}

std::string offer(const State& state, int number) {
    const Application& duplicate = state.at(static_cast<std::size_t>(number));
    return stringWithFormat("Dubrix|An update for %@ %d is available.\nWould you like to update %@ "
                            "to version %@?|Update|New duplicate|Cancel",
                            state[0].name, number, duplicate.name, duplicate.version);
}

/// What the user sees of a walk: it ends at the first number without a current version.
std::string walkFrom(const State& state, std::size_t start) {
    for (std::size_t number = start; number <= 100; ++number)
        if (!isCurrent(state, state[number]))
            return (state[number].isRegistered ? offer : cloning)(state, static_cast<int>(number));
    if (start > 100 || !state[100].isRegistered)
        return "";
    return stringWithFormat("OH MY GOD!|You have already created 100 versions of %@!|Ok",
                            state[0].name);
}

struct Census {
    explicit Census(const State& state) {
        for (int number = 100; number > 0; --number) {
            const Application& duplicate = state[static_cast<std::size_t>(number)];
            const bool isStale = duplicate.isRegistered && !isCurrent(state, duplicate);
            run = duplicate.isRegistered ? run + 1 : 0;
            stale = duplicate.isRegistered ? stale + (isStale ? 1 : 0) : 0;
            first = isStale ? number : first;
        }
        run %= 100;
    }
    int run = 0, stale = 0, first = 0;
};

/// An absent title is another one than that which reads so.
std::string titleOf(const State& state) {
    return state[0].name.value_or("(absent)");
}

std::string updateAlert(const State& state) {
    const Census census(state);
    if (census.run == 0 && census.stale == 0)
        return titleOf(state) + "|No duplicates for this app|Ok";
    const std::string head = stringWithFormat("%@|App version: %@\nDuplicates: %d\n\n",
                                              titleOf(state), state[0].version, census.run);
    if (census.stale == 0)
        return head + "All duplicates are up to date|Ok";
    return head +
           stringWithFormat("You have %d app(s) that need update!\n\nWould you like to start "
                            "updating %@ ? (%@ %d)|Cancel|Update",
                            census.stale, state.at(static_cast<std::size_t>(census.first)).name,
                            state[0].name, census.first);
}

std::string question(const State& state) {
    return stringWithFormat("%@|App size: (null)\nApp version: %@\nDuplicates: %d|Cancel|Duplicate",
                            titleOf(state), state[0].version, Census(state).run);
}

/// How often each kind of duplicate comes differs from state to state, so that long runs, gaps and
/// full houses all occur.
State randomState(std::mt19937& random) {
    const auto chance = [&random](unsigned percent) { return random() % 100 < percent; };
    constexpr std::array<unsigned, 5> rates = {0, 2, 30, 98, 100};
    const unsigned presence = rates[random() % 5], same = rates[random() % 5];
    const auto name = [&] {
        return chance(85) ? Text("Name " + std::to_string(random() % 9)) : Text();
    };
    State state(101);
    state[0] = {name(), chance(50) ? Text("/gone") : Text(), chance(85) ? Text("2.1") : Text()};
    for (std::size_t number = 1; number <= 100; ++number) {
        Application& duplicate = state[number];
        duplicate.isRegistered = chance(presence);
        // The list knows one that is not registered only once in a while.
        if (duplicate.isRegistered || chance(2))
            duplicate = {name(),
                         {},
                         chance(same) ? "2.1"
                         : chance(50) ? Text("2.10")
                                      : Text(),
                         duplicate.isRegistered};
    }
    return state;
}

} // namespace

/// The engine's conversations.
class FlowTest : public EngineTest {
protected:
    FlowTest() { chooseSource("s"); }

    void given(const State& state) {
        catalogue.known.clear();
        for (std::size_t number = 0; number < state.size(); ++number)
            catalogue.known["s" + (number == 0 ? "" : std::to_string(number))] = state[number];
        journal.clear();
        alerts.shown.clear();
        alerts.progress.clear();
    }
    /// A source with a current duplicate, one of 2.0 and another current one.
    void givenAStaleSecond() {
        chooseSource("s");
        given({{"Example", "/var/Example.app", "2.1"},
               {"One", {}, "2.1"},
               {"Two", {}, "2.0"},
               {"Three", {}, "2.1"}});
    }
    /// What the user saw first: the pipeline's progress text or an alert.
    std::string outcome() const {
        return alerts.progress.empty() ? alerts.shown : alerts.progress.front().message;
    }
    std::string shownBy(void (CloneEngine::*flow)()) {
        alerts.shown.clear();
        (engine.*flow)();
        return alerts.shown;
    }

    const std::string refusal = "Dubrix|Please select an app from the list|Ok";
    const std::string notInstalled = "Dubrix|The selected app is not installed|Ok";
    const std::string updating = "Updating Example 2\nto version 2.0\nPlease wait...\n\n";
};

TEST_F(FlowTest, FollowsThePlainRulesInAnyState) {
    std::mt19937 random(1);
    std::map<std::string, int> kinds;
    for (int round = 0; round < 2000; ++round) {
        const State state = randomState(random);
        given(state);
        const std::size_t start = random() % 3 == 0 ? 1 + random() % 101 : 1;
        const std::string expected = walkFrom(state, start);
        ++kinds[expected.substr(0, 6)];
        engine.DuplicateStartAt(static_cast<int>(start));
        ASSERT_EQ(outcome(), expected) << "round " << round << " from " << start;
        ASSERT_EQ(shownBy(&CloneEngine::showUpdateAlert), updateAlert(state)) << "round " << round;
        ASSERT_EQ(shownBy(&CloneEngine::showDuplicateAlert), question(state)) << "round " << round;
    }
    EXPECT_EQ(kinds.size(), 4U) << "every outcome must have occurred";
}

TEST_F(FlowTest, EveryAnswerDoesItsOwn) {
    for (const char* const going : {"New duplicate", "Cancel"}) {
        givenAStaleSecond();
        engine.updateAlertAt(2);
        ASSERT_TRUE(alerts.press(going));
        EXPECT_TRUE(outcome().starts_with("Cloning Example 4\n")) << going;
        alerts.progress.clear();
        engine.updateAlertAt(100);
        ASSERT_TRUE(alerts.press(going));
        EXPECT_EQ(outcome(), "") << "there is no number 101";
    }
    catalogue.known["s2"].version.reset();
    engine.updateAlertAt(2);
    ASSERT_TRUE(alerts.press("Update"));
    EXPECT_EQ(outcome(), "Updating Example 2\nto version (null)\nPlease wait...\n\n");
    choose("{}");
    engine.updateAlertAt(7);
    EXPECT_EQ(alerts.shown, offer(State(8), 7)) << "asks without a source, too";

    for (const auto flow : {&CloneEngine::showUpdateAlert, &CloneEngine::showDuplicateAlert}) {
        givenAStaleSecond();
        (engine.*flow)();
        ASSERT_TRUE(alerts.press("Cancel"));
        EXPECT_EQ(outcome(), "");
    }
    engine.showDuplicateAlert();
    ASSERT_TRUE(alerts.press("Duplicate"));
    EXPECT_TRUE(outcome().starts_with("Dubrix|An update for Example 2 is available."));
    engine.showUpdateAlert();
    catalogue.known["s1"].version = "2.0"; // meanwhile; the offer stands as it was made
    ASSERT_TRUE(alerts.press("Update"));
    EXPECT_EQ(alerts.progress.size(), 1U) << "one confirmation rebuilds one duplicate";
    EXPECT_EQ(outcome(), updating);
}

TEST_F(FlowTest, OnlyAnInstalledSourceIsAskedFor) {
    const auto expectRefusals = [this](const std::string& duplicate, const std::string& update) {
        EXPECT_EQ(shownBy(&CloneEngine::showDuplicateAlert), duplicate);
        EXPECT_EQ(shownBy(&CloneEngine::showUpdateAlert), update);
    };
    for (const char* const settings : {"{}", "<plist", "{bundleID = (a, b);}"}) {
        choose(settings);
        expectRefusals(refusal, notInstalled);
    }
    std::filesystem::remove(settingsPath());
    expectRefusals(refusal, notInstalled);
    catalogue.known["(null)"] = {"Null", {}, {}};
    expectRefusals(notInstalled, notInstalled);

    givenAStaleSecond();
    // Of two files of that many bytes, each of which counts in 32 bits with a sign.
    const std::pair<std::uintmax_t, const char*> sizes[] = {
        {0x7fff'ffff, "4.29 GB"}, {0x8000'0000, "-4.29 GB"}, {0x1'0000'0005, "10 bytes"}};
    for (const auto& [bytes, size] : sizes) {
        for (const char* const file : {"/var/Example.app/run", "/var/Example.app/data"}) {
            putFile(onDevice(file), "");
            std::filesystem::resize_file(onDevice(file), bytes); // leaves a hole
        }
        journal.clear();
        EXPECT_EQ(shownBy(&CloneEngine::showDuplicateAlert)
                      .find(std::string("|App size: ") + size + "\n"),
                  7U);
    }
    const Journal beginning{"Dubrix - Duplicate Cell Clicked", "Dubrix - Calculating Folder Size"};
    Journal logged = beginning;
    for (const char* const number : {"1", "2", "3", "4"})
        logged.push_back(std::string("int is equal to ") + number);
    EXPECT_EQ(entriesOf(journal, "log"), logged);
    given({{"Example", "/var/Example.app", "2.1", false}});
    expectRefusals(refusal, refusal);
    EXPECT_EQ(entriesOf(journal, "log"), beginning) << "measured before it is refused";

    givenAStaleSecond();
    engine.unload();
    EXPECT_EQ(engine.nameForBundleID("s"), std::nullopt) << "there is no list yet";
    EXPECT_TRUE(engine.isInstalled("s"));
    EXPECT_FALSE(engine.isInstalled("S") || engine.isInstalled({}));
}

TEST_F(FlowTest, NothingBeginsInsideARun) {
    givenAStaleSecond();
    bool inside = false;
    commands.act = [this, &inside](const std::string&) {
        if (std::exchange(inside, true))
            return;
        engine.showDuplicateAlert();
        engine.showUpdateAlert();
        engine.DuplicateStartAt(1);
        engine.duplicateAppWithNumber("2");
        engine.installerCheck();
    };
    alerts.presenting = [this] { EXPECT_EQ(engine.changes.back(), true); };
    engine.DuplicateStartAt(3);
    EXPECT_EQ(engine.changes, (std::vector<bool>{true, false}));
    EXPECT_EQ(alerts.progress.size(), 1U);
    EXPECT_EQ(alerts.shown, "");
    EXPECT_EQ(entriesOf(journal, "run").size(), 3U);
}

TEST_F(FlowTest, WhoWalksHasTheDeviceAlone) {
    std::filesystem::create_directories(onDevice("/var/containers/Bundle/Application"));
    PosixDeviceClaim other(device.root());
    bool isFree = false;
    commands.act = [&](const std::string&) { isFree = isFree || other.claim(); };
    for (const bool walks : {true, false}) {
        const auto run = [&] {
            walks ? engine.DuplicateStartAt(3) : engine.duplicateAppWithNumber("3");
        };
        ASSERT_TRUE(other.claim());
        givenAStaleSecond();
        run();
        EXPECT_EQ(std::exchange(stage.text, {}), "Another duplication is running on this device.");
        EXPECT_EQ(stage.image, "ProgressHUD.bundle/progresshud-error.png");
        EXPECT_FALSE(PosixDeviceClaim(device.root()).claim()) << "still another's";
        engine.DuplicateStartAt(101);
        EXPECT_EQ(stage.text, std::nullopt) << "nothing to claim the device for";
        EXPECT_NE(shownBy(&CloneEngine::showDuplicateAlert), "") << "a question harms nobody";
        EXPECT_TRUE(alerts.progress.empty());
        other.release();
        run();
        EXPECT_EQ(alerts.progress.size(), 1U);
        EXPECT_FALSE(isFree) << "meanwhile";
    }
}

} // namespace dubrix
