#include "tests/engine/EngineTest.h"

namespace dubrix {

namespace {

const std::string source = "com.example.app";

std::string asked(const char* what, int number = 0) {
    return std::string(what) + " " + source + (number == 0 ? "" : std::to_string(number));
}

} // namespace

/// A source named Example, version 2.1, and duplicates as the test says.
class FlowTest : public EngineTest {
protected:
    FlowTest() { clear(); }

    void clear() {
        chooseSource(source);
        catalogue.known = {{source, {"Example", "/var/Example.app", "2.1"}}};
        journal.clear();
        alerts.current.reset();
        alerts.progress.clear();
    }
    /// Makes the duplicates `from` to `to` installed with this version; their names follow the
    /// first, "Copy 1", whatever the source's name is.
    void duplicates(int from, int to, const Text& version = "2.1") {
        for (int number = from; number <= to; ++number)
            catalogue.known[source + std::to_string(number)] = {"Copy " + std::to_string(number),
                                                                "/var/Copy.app", version};
    }
    /// What the user saw first: the pipeline's progress text or an alert.
    std::string outcome() const {
        return alerts.progress.empty() ? alerts.shown() : alerts.progress.front().message;
    }

    const std::string waiting = "\nPlease wait...\n\n";
};

TEST_F(FlowTest, TheWalkActsOnTheFirstNumberThatCallsForIt) {
    const std::string limit = "OH MY GOD!|You have already created 100 versions of Example!|Ok";
    const auto cloning = [this](int number) {
        return "Cloning Example " + std::to_string(number) + waiting;
    };
    const auto offer = [](int number, const std::string& version) {
        const std::string text = std::to_string(number);
        return "Dubrix|An update for Example " + text +
               " is available.\nWould you like to update "
               "Copy " +
               text + " to version " + version + "?|Update|New duplicate|Cancel";
    };
    const struct {
        const char* what;
        std::function<void()> given;
        int start;
        std::string outcome;
    } cases[] = {
        {"none", [] {}, 1, cloning(1)},
        {"three current", [this] { duplicates(1, 3); }, 1, cloning(4)},
        {"a gap", [this] { duplicates(1, 2), duplicates(4, 4); }, 1, cloning(3)},
        {"a gap below the start", [this] { duplicates(2, 3); }, 2, cloning(4)},
        {"stale first", [this] { duplicates(1, 1, "2.0"); }, 1, offer(1, "2.0")},
        {"newer is stale", [this] { duplicates(1, 2), duplicates(2, 2, "9"); }, 1, offer(2, "9")},
        {"text, not number", [this] { duplicates(1, 1, "2.10"); }, 1, offer(1, "2.10")},
        {"no version", [this] { duplicates(1, 1, {}); }, 1, offer(1, "(null)")},
        {"stale behind a gap", [this] { duplicates(2, 2, "2.0"); }, 1, cloning(1)},
        {"stale below the start", [this] { duplicates(1, 1, "2.0"); }, 2, cloning(2)},
        {"source without version",
         [this] {
             duplicates(1, 2, {});
             catalogue.known[source].version.reset();
         },
         2, offer(2, "(null)")},
        {"source without version, none made", [this] { catalogue.known[source].version.reset(); },
         1, cloning(1)},
        {"listed but not registered",
         [this] {
             duplicates(1, 1);
             catalogue.known[source + "1"].isRegistered = false;
         },
         1, cloning(2)},
        {"last free", [this] { duplicates(1, 99); }, 1, cloning(100)},
        {"last stale", [this] { duplicates(1, 100), duplicates(100, 100, "2"); }, 1,
         offer(100, "2")},
        {"all current", [this] { duplicates(1, 100); }, 1, limit},
        {"all current, from the last", [this] { duplicates(100, 100); }, 100, limit},
        {"last listed but not registered",
         [this] {
             duplicates(1, 100);
             catalogue.known[source + "100"].isRegistered = false;
         },
         1, ""},
        {"above the limit", [] {}, 101, ""},
    };
    for (const auto& scene : cases) {
        clear();
        scene.given();
        engine.DuplicateStartAt(scene.start);
        EXPECT_EQ(outcome(), scene.outcome) << scene.what;
    }
}

TEST_F(FlowTest, EveryAnswerToTheUpdatePromptGoesOn) {
    const auto prompt = [this](int number) {
        clear();
        duplicates(1, 100, "1.9");
        catalogue.known.erase(source + "3");
        engine.updateAlertAt(number);
    };
    prompt(1);
    ASSERT_TRUE(alerts.press("Update"));
    EXPECT_EQ(outcome(), "Updating Example 1\nto version 1.9" + waiting)
        << "the duplicate's present version";
    for (const char* const going : {"New duplicate", "Cancel"}) {
        prompt(1);
        ASSERT_TRUE(alerts.press(going));
        EXPECT_TRUE(alerts.shown().starts_with("Dubrix|An update for Example 2 is")) << going;
        ASSERT_TRUE(alerts.press(going));
        EXPECT_EQ(outcome(), "Cloning Example 3" + waiting) << going;
        prompt(100);
        ASSERT_TRUE(alerts.press(going));
        EXPECT_EQ(outcome(), "") << going;
    }
}

TEST_F(FlowTest, QuestionsToTheCatalogueComeInTheirOrder) {
    const std::vector<std::string> pipeline = {asked("displayName"), asked("path"),
                                               asked("bundleVersion")};
    const auto expectAsked = [this](std::vector<std::string> expected,
                                    const std::vector<std::string>& more = {}) {
        expected.insert(expected.end(), more.begin(), more.end());
        EXPECT_EQ(entriesOf(journal, "ask"), expected);
        journal.clear();
    };
    duplicates(1, 1);
    engine.DuplicateStartAt(1);
    expectAsked({asked("displayName"), asked("bundleVersion"), asked("installed", 1),
                 asked("bundleVersion", 1), asked("installed", 2), asked("bundleVersion", 2)},
                {pipeline[0], pipeline[1], pipeline[2], asked("installed", 2),
                 asked("bundleVersion", 2), asked("installed", 2)});

    engine.updateAlertAt(1);
    expectAsked({asked("displayName"), asked("displayName", 1), asked("bundleVersion", 1)});

    engine.showDuplicateAlert();
    EXPECT_EQ(journal,
              (Journal{"log Dubrix - Duplicate Cell Clicked", "ask " + pipeline[0],
                       "ask " + pipeline[1], "ask " + pipeline[2], "ask " + asked("installed"),
                       "log int is equal to 1", "ask " + asked("installed", 1),
                       "log int is equal to 2", "ask " + asked("installed", 2), "alert"}));
    journal.clear();

    duplicates(1, 3);
    duplicates(2, 2, "2.0");
    engine.showUpdateAlert();
    EXPECT_EQ(entriesOf(journal, "log"), std::vector<std::string>());
    expectAsked({asked("displayName"), asked("bundleVersion"), asked("installed"),
                 // the run
                 asked("installed", 1), asked("installed", 2), asked("installed", 3),
                 asked("installed", 4),
                 // the stale ones of the run
                 asked("installed", 1), asked("bundleVersion", 1), asked("installed", 1),
                 asked("installed", 2), asked("bundleVersion", 2), asked("installed", 3),
                 asked("bundleVersion", 3), asked("installed", 3), asked("installed", 4),
                 asked("installed", 4),
                 // the first
                 asked("installed", 1), asked("bundleVersion", 1), asked("installed", 2),
                 asked("bundleVersion", 2), asked("displayName", 2)});

    engine.unload();
    duplicates(1, 1);
    EXPECT_EQ(engine.nameForBundleID(source), std::nullopt);
    EXPECT_TRUE(engine.isInstalled(source));
    EXPECT_FALSE(engine.isInstalled("com.Example.app"));
    EXPECT_FALSE(engine.isInstalled({}));
    expectAsked({asked("installed"), "installed com.Example.app"});
}

TEST_F(FlowTest, TheRequestAsksOnlyForAnInstalledSource) {
    const std::string refusal = "Dubrix|Please select an app from the list|Ok";
    const auto question = [](const std::string& size, int count) {
        return "Example|App size: " + size +
               "\nApp version: 2.1\nDuplicates: " + std::to_string(count) + "|Cancel|Duplicate";
    };
    const auto bundle = onDevice("/var/Example.app");
    const auto grow = [&] {
        putFile(bundle / "run", "");
        std::filesystem::resize_file(bundle / "run", 12'345'678);
    };
    const struct {
        const char* what;
        std::function<void()> given;
        std::string outcome;
        std::size_t measured;
    } cases[] = {
        {"no bundle on the disk", [] {}, question("(null)", 0), 0},
        {"no settings", [this] { std::filesystem::remove(settingsPath()); }, refusal, 0},
        {"damaged settings", [this] { putFile(settingsPath(), "<plist"); }, refusal, 0},
        {"number for an identifier",
         [this] {
             choose({{"bundleID", PropertyList::integer(5)}});
         },
         refusal, 0},
        {"nothing chosen, yet \"(null)\" installed",
         [this] {
             choose({});
             catalogue.known["(null)"] = {"Null", {}, {}};
         },
         "Dubrix|The selected app is not installed|Ok", 0},
        {"unregistered, yet measured first",
         [&] {
             grow();
             catalogue.known[source].isRegistered = false;
         },
         refusal, 1},
        {"a gap", [this] { duplicates(1, 2), duplicates(4, 4); }, question("12.3 MB", 2), 1},
        {"stale ones", [this] { duplicates(1, 4, "1"); }, question("12.3 MB", 4), 1},
        {"all but one", [this] { duplicates(1, 99); }, question("12.3 MB", 99), 1},
        {"all", [this] { duplicates(1, 100); }, question("12.3 MB", 0), 1},
    };
    for (const auto& scene : cases) {
        clear();
        scene.given();
        engine.showDuplicateAlert();
        EXPECT_EQ(alerts.shown(), scene.outcome) << scene.what;
        EXPECT_EQ(std::ranges::count(journal, "log Dubrix - Calculating Folder Size"),
                  static_cast<std::ptrdiff_t>(scene.measured))
            << scene.what;
    }
    clear();
    engine.showDuplicateAlert();
    ASSERT_TRUE(alerts.press("Cancel"));
    EXPECT_EQ(outcome(), "");
    engine.showDuplicateAlert();
    ASSERT_TRUE(alerts.press("Duplicate"));
    EXPECT_EQ(outcome(), "Cloning Example 1" + waiting);
}

TEST_F(FlowTest, TheUpdateFlowTellsTheCensus) {
    const auto offer = [](int count, int stale, int first) {
        const std::string number = std::to_string(first);
        return "Example|App version: 2.1\nDuplicates: " + std::to_string(count) + "\n\nYou have " +
               std::to_string(stale) +
               " app(s) that need update!\n\nWould you like to start updating Copy " + number +
               " ? (Example " + number + ")|Cancel|Update";
    };
    const auto upToDate = [](const std::string& version, int count) {
        return "Example|App version: " + version + "\nDuplicates: " + std::to_string(count) +
               "\n\nAll duplicates are up to date|Ok";
    };
    const std::string none = "Example|No duplicates for this app|Ok";
    const struct {
        const char* what;
        std::function<void()> given;
        std::string outcome;
    } cases[] = {
        {"nothing chosen", [this] { choose({}); }, "Dubrix|The selected app is not installed|Ok"},
        {"removed", [this] { catalogue.known.clear(); },
         "Dubrix|Please select an app from the list|Ok"},
        {"none", [] {}, none},
        {"current", [this] { duplicates(1, 4); }, upToDate("2.1", 4)},
        {"two stale", [this] { duplicates(1, 4), duplicates(2, 2, "2"), duplicates(4, 4, "3"); },
         offer(4, 2, 2)},
        {"stale behind a gap", [this] { duplicates(1, 1), duplicates(3, 3, "2"); },
         upToDate("2.1", 1)},
        {"stale before and behind a gap", [this] { duplicates(1, 1, "2"), duplicates(3, 9, "2"); },
         offer(1, 1, 1)},
        {"only behind a gap", [this] { duplicates(2, 9, "2"); }, none},
        {"hundred current", [this] { duplicates(1, 100); }, none},
        {"hundred, the last stale", [this] { duplicates(1, 100), duplicates(100, 100, {}); },
         offer(0, 1, 100)},
        {"duplicate without a name",
         [this] {
             duplicates(1, 1, "2");
             catalogue.known[source + "1"].name.reset();
         },
         "Example|App version: 2.1\nDuplicates: 1\n\nYou have 1 app(s) that need update!\n\n"
         "Would you like to start updating (null) ? (Example 1)|Cancel|Update"},
    };
    for (const auto& scene : cases) {
        clear();
        scene.given();
        engine.showUpdateAlert();
        EXPECT_EQ(alerts.shown(), scene.outcome) << scene.what;
    }
    clear();
    duplicates(1, 4);
    duplicates(2, 2, "2.0");
    engine.showUpdateAlert();
    ASSERT_TRUE(alerts.press("Cancel"));
    EXPECT_EQ(outcome(), "");
    engine.showUpdateAlert();
    duplicates(1, 1, "2.0"); // meanwhile; the offer stands as it was made
    ASSERT_TRUE(alerts.press("Update"));
    EXPECT_EQ(alerts.progress.size(), 1U) << "one confirmation rebuilds one duplicate";
    EXPECT_EQ(outcome(), "Updating Example 2\nto version 2.0" + waiting);
}

} // namespace dubrix
