#include "formats/text/PlainText.h"
#include "terminal/TerminalAlerts.h"
#include "tests/engine/EngineTest.h"

#include <sstream>

namespace dubrix {

/// The terminal's alerts, with a person who types what is to be pressed.
class Terminal final : public RecordedAlerts::FrontEnd, Conversation {
public:
    Alerts& renewed() override {
        alerts_ = std::make_unique<TerminalAlerts>(static_cast<Conversation&>(*this));
        return *alerts_;
    }
    void press(const RecordedAlerts::Alert& alert, const std::string& title) override {
        said_.clear();
        typed_ = {"none of them", lowerCase(title.substr(0, 1))};
        const std::unique_ptr<TerminalAlerts> asking = std::move(alerts_);
        asking->settle();
        EXPECT_TRUE(typed_.empty());
        const std::string heading =
            alert.title.value_or("") + "\n" + alert.message.value_or("") + "\n[";
        EXPECT_TRUE(said_.starts_with(heading)) << said_;
        for (const auto& button : alert.buttons)
            EXPECT_NE(said_.find("[" + button.title.substr(0, 1) + "]" + button.title.substr(1)),
                      std::string::npos);
    }

private:
    void say(const std::string& text) override { said_ += text; }
    std::optional<std::string> answer() override {
        if (typed_.empty())
            return std::nullopt;
        const std::string line = typed_.front();
        typed_.erase(typed_.begin());
        return line;
    }

    std::unique_ptr<TerminalAlerts> alerts_;
    std::string said_;
    std::vector<std::string> typed_;
};

/// A source named Example, version 2.1, and duplicates as the test says.
/// The engine's conversations, in a window and in a terminal.
class FlowTest : public EngineTest, public testing::WithParamInterface<bool> {
protected:
    FlowTest() {
        if (GetParam())
            alerts.frontEnd = &terminal;
        given("");
    }

    /// Nothing but the source and these duplicates: "1-3 7=2.0 9= 4!" are four of the source's
    /// version, one of 2.0 and one without; number 4 is listed, but not registered. "s" is the
    /// source without a version, "s!" unregistered.
    void given(const std::string& applications) {
        chooseSource(source);
        catalogue.known = {{source, {"Example", "/var/Example.app", "2.1"}}};
        std::istringstream words(applications);
        for (std::string word; words >> word;) {
            const std::size_t end = word.find_first_of("-=!");
            const std::string rest = end == std::string::npos ? "" : word.substr(end);
            if (word[0] == 's') {
                catalogue.known[source] = {"Example", "/var/Example.app", {}, rest != "!"};
                continue;
            }
            Text version = "2.1";
            if (rest.starts_with("="))
                version = rest.size() > 1 ? Text(rest.substr(1)) : std::nullopt;
            const int first = std::stoi(word);
            const int last = rest.starts_with("-") ? std::stoi(rest.substr(1)) : first;
            for (int number = first; number <= last; ++number)
                catalogue.known[source + std::to_string(number)] = {
                    "Copy " + std::to_string(number), {}, version, rest != "!"};
        }
        journal.clear();
        alerts.current.reset();
        alerts.progress.clear();
    }
    /// What the user saw first: the pipeline's progress text or an alert.
    std::string outcome() const {
        return alerts.progress.empty() ? alerts.shown() : alerts.progress.front().message;
    }
    /// The journal with questions in short: "n p v ?" for name, path, version and installed, each
    /// with the duplicate's number.
    std::string questions() {
        std::string text;
        for (const std::string& entry : std::exchange(journal, {})) {
            const std::size_t name = entry.find(" " + source);
            const std::string number = name == std::string::npos ? "" : entry.substr(name + 16);
            const std::string what = entry.substr(0, name);
            text += (what == "ask displayName"     ? "n"
                     : what == "ask path"          ? "p"
                     : what == "ask bundleVersion" ? "v"
                     : what == "ask installed"     ? "?"
                                                   : "[" + what + "]") +
                    number + " ";
        }
        return text;
    }
    static std::string cloning(int number) {
        return "Cloning Example " + std::to_string(number) + "\nPlease wait...\n\n";
    }

    const std::string source = "com.example.app";
    Terminal terminal;
};

INSTANTIATE_TEST_SUITE_P(, FlowTest, testing::Bool(), [](const auto& inTerminal) {
    return inTerminal.param ? "InATerminal" : "InAWindow";
});

TEST_P(FlowTest, TheWalkActsOnTheFirstNumberThatCallsForIt) {
    const std::string limit = "OH MY GOD!|You have already created 100 versions of Example!|Ok";
    const auto offer = [](const std::string& number, const std::string& version) {
        return "Dubrix|An update for Example " + number + " is available.\nWould you like to " +
               "update Copy " + number + " to version " + version + "?|Update|New duplicate|Cancel";
    };
    const struct {
        const char* applications;
        int start;
        std::string outcome;
    } cases[] = {
        {"", 1, cloning(1)},
        {"1-3", 1, cloning(4)},
        {"1-2 4", 1, cloning(3)},
        {"2-3", 2, cloning(4)},
        {"1=2.0", 1, offer("1", "2.0")},
        {"1-2 2=9", 1, offer("2", "9")},   // newer is stale, too
        {"1=2.10", 1, offer("1", "2.10")}, // texts, not numbers
        {"1=", 1, offer("1", "(null)")},   // no version equals none
        {"s 1= 2=", 2, offer("2", "(null)")},
        {"s", 1, cloning(1)},
        {"2=2.0", 1, cloning(1)}, // behind a gap
        {"1=2.0", 2, cloning(2)}, // below the start
        {"1!", 1, cloning(2)},    // not installed, yet with the same version
        {"1-99", 1, cloning(100)},
        {"1-100 100=2", 1, offer("100", "2")},
        {"1-100", 1, limit},
        {"100", 100, limit},
        {"1-99 100!", 1, ""},
        {"", 101, ""},
    };
    for (const auto& scene : cases) {
        given(scene.applications);
        engine.DuplicateStartAt(scene.start);
        EXPECT_EQ(outcome(), scene.outcome) << scene.applications << " from " << scene.start;
    }
}

TEST_P(FlowTest, EveryAnswerToTheUpdatePromptGoesOn) {
    const auto prompt = [this](int number) {
        given("1=1.9 2=1.9 100=1.9");
        engine.updateAlertAt(number);
    };
    prompt(1);
    ASSERT_TRUE(alerts.press("Update"));
    EXPECT_EQ(outcome(), "Updating Example 1\nto version 1.9\nPlease wait...\n\n");
    for (const char* const going : {"New duplicate", "Cancel"}) {
        prompt(1);
        ASSERT_TRUE(alerts.press(going));
        EXPECT_TRUE(alerts.shown().starts_with("Dubrix|An update for Example 2 is")) << going;
        ASSERT_TRUE(alerts.press(going));
        EXPECT_EQ(outcome(), cloning(3)) << going;
        prompt(100);
        ASSERT_TRUE(alerts.press(going));
        EXPECT_EQ(outcome(), "") << going;
    }
}

TEST_P(FlowTest, QuestionsToTheCatalogueComeInTheirOrder) {
    given("1");
    commands.act = [this](const std::string&) { journal.pop_back(); };
    engine.DuplicateStartAt(1);
    EXPECT_EQ(questions(), "n v ?1 v1 ?2 v2 n p v ?2 v2 "
                           "[present Dubrix|Cloning Example 2\nPlease wait...\n\n] [dismiss] ?2 ");
    engine.updateAlertAt(1);
    EXPECT_EQ(questions(), "n n1 v1 [alert] ");
    engine.showDuplicateAlert();
    EXPECT_EQ(questions(), "[log Dubrix - Duplicate Cell Clicked] n p v ? "
                           "[log int is equal to 1] ?1 [log int is equal to 2] ?2 [alert] ");
    given("1-3 2=2.0");
    engine.showUpdateAlert(); // the run, the stale ones of the run, the first
    EXPECT_EQ(questions(),
              "n v ? ?1 ?2 ?3 ?4 ?1 v1 ?1 ?2 v2 ?3 v3 ?3 ?4 ?4 ?1 v1 ?2 v2 n2 [alert] ");

    engine.unload();
    EXPECT_EQ(engine.nameForBundleID(source), std::nullopt);
    EXPECT_TRUE(engine.isInstalled(source));
    EXPECT_FALSE(engine.isInstalled("com.Example.app") || engine.isInstalled({}));
    EXPECT_EQ(questions(), "? [ask installed com.Example.app] ");
}

TEST_P(FlowTest, TheRequestAsksOnlyForAnInstalledSource) {
    const std::string refusal = "Dubrix|Please select an app from the list|Ok";
    const auto expectShown = [this](const std::string& shown, const char* what) {
        engine.showDuplicateAlert();
        EXPECT_EQ(alerts.shown(), shown) << what;
    };
    const auto question = [](const std::string& size, const std::string& count) {
        return "Example|App size: " + size + "\nApp version: 2.1\nDuplicates: " + count +
               "|Cancel|Duplicate";
    };
    expectShown(question("(null)", "0"), "no bundle on the disk");
    EXPECT_EQ(entriesOf(journal, "log").size(), 2U) << "nothing to measure";
    std::filesystem::remove(settingsPath());
    expectShown(refusal, "no settings");
    putFile(settingsPath(), "<plist");
    expectShown(refusal, "damaged settings");
    choose("{bundleID = (a, b);}");
    expectShown(refusal, "no text for an identifier");
    catalogue.known["(null)"] = {"Null", {}, {}};
    expectShown("Dubrix|The selected app is not installed|Ok", "\"(null)\" is installed");

    putFile(onDevice("/var/Example.app/run"), "");
    std::filesystem::resize_file(onDevice("/var/Example.app/run"), 12'345'678);
    given("s!");
    expectShown(refusal, "unregistered");
    EXPECT_EQ(entriesOf(journal, "log").at(1), "Dubrix - Calculating Folder Size")
        << "measured before it is refused";
    for (const auto& [applications, count] :
         {std::pair("", "0"), {"1-2 4", "2"}, {"1=1 2=", "2"}, {"1-99", "99"}, {"1-100", "0"}}) {
        given(applications);
        expectShown(question("12.3 MB", count), applications);
    }
    given("");
    engine.showDuplicateAlert();
    ASSERT_TRUE(alerts.press("Cancel"));
    EXPECT_EQ(outcome(), "");
    engine.showDuplicateAlert();
    ASSERT_TRUE(alerts.press("Duplicate"));
    EXPECT_EQ(outcome(), cloning(1));
}

TEST_P(FlowTest, NothingBeginsInsideARun) {
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
    engine.DuplicateStartAt(1);
    EXPECT_EQ(outcome(), cloning(1));
    EXPECT_EQ(alerts.progress.size(), 1U);
    EXPECT_EQ(alerts.shown(), "");
    EXPECT_EQ(entriesOf(journal, "run").size(), 3U);
    engine.DuplicateStartAt(1);
    EXPECT_EQ(alerts.progress.size(), 2U) << "and afterwards again";
}

TEST_P(FlowTest, OneAtATimeWalksOnADevice) {
    std::filesystem::create_directories(onDevice("/var/containers/Bundle/Application"));
    PosixDeviceClaim other(device.root());
    const auto isFree = [&other] {
        const bool claimed = other.claim();
        if (claimed)
            other.release();
        return claimed;
    };
    ASSERT_TRUE(other.claim());
    for (const auto& run :
         {std::function<void()>([this] { engine.DuplicateStartAt(1); }),
          std::function<void()>([this] { engine.duplicateAppWithNumber("1"); })}) {
        given("1=2.0");
        stage.text.reset();
        run();
        EXPECT_EQ(stage.text, "Another duplication is running on this device.");
        EXPECT_EQ(stage.image, "ProgressHUD.bundle/progresshud-error.png");
        EXPECT_EQ(outcome() + alerts.shown(), "");
        EXPECT_FALSE(isFree());
    }
    stage.text.reset();
    engine.DuplicateStartAt(101);
    EXPECT_EQ(stage.text, std::nullopt) << "nothing to claim the device for";
    engine.showDuplicateAlert();
    EXPECT_TRUE(alerts.shown().ends_with("|Cancel|Duplicate")) << "a question harms nobody";

    other.release();
    int commandsSeen = 0;
    commands.act = [&](const std::string&) {
        ++commandsSeen;
        EXPECT_FALSE(isFree());
    };
    for (const char* const applications : {"1", "1=2.0", "1-100"}) {
        given(applications); // a run, an offer, the limit
        engine.DuplicateStartAt(1);
        EXPECT_NE(outcome(), "");
        EXPECT_TRUE(isFree()) << applications;
    }
    EXPECT_EQ(commandsSeen, 3);
}

TEST_P(FlowTest, TheUpdateFlowTellsTheCensus) {
    const std::string none = "Example|No duplicates for this app|Ok";
    const std::string head = "Example|App version: 2.1\nDuplicates: ";
    const std::string current = "\n\nAll duplicates are up to date|Ok";
    const auto offer = [&](const char* count, const char* stale, const std::string& first) {
        return head + count + "\n\nYou have " + stale +
               " app(s) that need update!\n\nWould you like to start updating Copy " + first +
               " ? (Example " + first + ")|Cancel|Update";
    };
    const struct {
        const char* applications;
        std::string outcome;
    } cases[] = {
        {"s!", "Dubrix|Please select an app from the list|Ok"},
        {"", none},
        {"1-4", head + "4" + current},
        {"1-4 2=2 4=3", offer("4", "2", "2")},
        {"1 3=2", head + "1" + current}, // behind a gap
        {"1=2 3=2 4=2", offer("1", "1", "1")},
        {"2=2 3=2", none},
        {"1-100", none},
        {"1-100 100=", offer("0", "1", "100")},
    };
    for (const auto& scene : cases) {
        given(scene.applications);
        engine.showUpdateAlert();
        EXPECT_EQ(alerts.shown(), scene.outcome) << scene.applications;
    }
    choose("{}");
    engine.showUpdateAlert();
    EXPECT_EQ(alerts.shown(), "Dubrix|The selected app is not installed|Ok");

    given("1-4 2=2.0");
    engine.showUpdateAlert();
    ASSERT_TRUE(alerts.press("Cancel"));
    EXPECT_EQ(outcome(), "");
    engine.showUpdateAlert();
    catalogue.known[source + "1"].version = "2.0"; // meanwhile; the offer stands as it was made
    ASSERT_TRUE(alerts.press("Update"));
    EXPECT_EQ(alerts.progress.size(), 1U) << "one confirmation rebuilds one duplicate";
    EXPECT_EQ(outcome(), "Updating Example 2\nto version 2.0\nPlease wait...\n\n");
}

} // namespace dubrix
