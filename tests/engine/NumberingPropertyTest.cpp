#include "tests/engine/EngineTest.h"

#include <random>

namespace dubrix {

namespace {

struct Slot {
    bool installed = false;
    Text version = std::nullopt;
};

/// The state of a source and its hundred numbers; slot 0 stands for the source.
using State = std::vector<Slot>;

bool current(const State& state, std::size_t number) {
    return state[number].version.has_value() && state[number].version == state[0].version;
}

/// How often each kind of slot comes differs from state to state, so that long runs, gaps and full
/// houses all occur.
State randomState(std::mt19937& random) {
    const auto chance = [&random](unsigned percent) { return random() % 100 < percent; };
    constexpr std::array<unsigned, 5> rates = {0, 2, 30, 98, 100};
    const unsigned presence = rates[random() % 5], same = rates[random() % 5];
    State state(101);
    state[0] = {true, chance(85) ? Text("2.1") : std::nullopt};
    for (std::size_t number = 1; number <= 100; ++number) {
        Slot& slot = state[number];
        slot.installed = chance(presence);
        // A slot that is not installed is known to the list only once in a while.
        if (slot.installed || chance(2))
            slot.version = chance(same) ? "2.1" : chance(50) ? Text("2.10") : std::nullopt;
    }
    return state;
}

/// "build n", "offer n", "limit" or nothing: a walk ends at the first number without a current
/// version.
std::string walkFrom(const State& state, std::size_t start) {
    for (std::size_t number = start; number <= 100; ++number)
        if (!current(state, number))
            return (state[number].installed ? "offer " : "build ") + std::to_string(number);
    return start <= 100 && state[100].installed ? "limit" : "";
}

/// "C T F" as a user reads them off the update flow; F only where something is stale.
std::string census(const State& state) {
    const auto stale = [&state](const Slot& slot) {
        return slot.installed && !(slot.version && slot.version == state[0].version);
    };
    const auto first = state.begin() + 1;
    const auto runEnd = std::find_if_not(first, state.end(), std::mem_fn(&Slot::installed));
    const auto staleInRun = std::count_if(first, runEnd, stale);
    std::string text = std::to_string((runEnd - first) % 100) + " " + std::to_string(staleInRun);
    if (staleInRun != 0)
        text += " " + std::to_string(std::find_if(first, state.end(), stale) - state.begin());
    return text;
}

/// The text between the two, once.
std::string between(const std::string& text, const std::string& before, const std::string& after) {
    const std::size_t start = text.find(before);
    if (start == std::string::npos)
        return "";
    const std::size_t from = start + before.size();
    return text.substr(from, text.find(after, from) - from);
}

} // namespace

class NumberingPropertyTest : public EngineTest {
protected:
    static std::string walked(const RecordedAlerts& alerts) {
        const std::string shown = alerts.shown();
        if (!alerts.progress.empty())
            return "build " + between(alerts.progress[0].message, "Cloning Example ", "\n");
        if (shown.starts_with("OH MY GOD!"))
            return "limit";
        return shown.empty() ? "" : "offer " + between(shown, "update for Example ", " is");
    }
    static std::string counted(const std::string& shown) {
        if (shown.find("No duplicates") != std::string::npos)
            return "0 0";
        if (shown.find("All duplicates are up to date") != std::string::npos)
            return between(shown, "Duplicates: ", "\n") + " 0";
        return between(shown, "Duplicates: ", "\n") + " " + between(shown, "You have ", " app") +
               " " + between(shown, "(Example ", ")");
    }
};

TEST_F(NumberingPropertyTest, FollowsThePlainRules) {
    chooseSource("s");
    std::mt19937 random(1);
    std::map<std::string, int> kinds;
    for (int round = 0; round < 2000; ++round) {
        const State state = randomState(random);
        catalogue.known.clear();
        for (std::size_t number = 0; number <= 100; ++number)
            catalogue.known["s" + (number == 0 ? "" : std::to_string(number))] = {
                "Example", {}, state[number].version, state[number].installed};
        const std::size_t start = random() % 3 == 0 ? 1 + random() % 101 : 1;
        const std::string expected = walkFrom(state, start);
        ++kinds[expected.substr(0, expected.find(' '))];

        alerts.progress.clear();
        alerts.current.reset();
        engine.DuplicateStartAt(static_cast<int>(start));
        ASSERT_EQ(walked(alerts), expected) << "round " << round << " from " << start;
        engine.showUpdateAlert();
        ASSERT_EQ(counted(alerts.shown()), census(state)) << "round " << round;
        engine.showDuplicateAlert();
        ASSERT_EQ(between(alerts.current->message.value(), "Duplicates: ", "\n") + " ",
                  census(state).substr(0, census(state).find(' ') + 1))
            << "round " << round;
        journal.clear();
    }
    EXPECT_EQ(kinds.size(), 4U) << "every outcome must have occurred";
}

} // namespace dubrix
