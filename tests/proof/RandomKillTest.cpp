#include "formats/lists/PropertyList.h"
#include "tests/proof/RunningRequest.h"

#include <algorithm>
#include <cstring>
#include <poll.h>

namespace dubrix {

namespace {

namespace fs = std::filesystem;
using Clock = RunningRequest::Clock;
using Contents = ProofDevice::Contents;
using Requests = std::vector<std::unique_ptr<RunningRequest>>;

bool once(unsigned times, std::mt19937& random) {
    return random() % times == 0;
}

long filesIn(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

/// Requests of every kind on one device, in rounds: those of a round run at the same time, each
/// about something of its own.
class Storm {
public:
    explicit Storm(unsigned seed) : random_(seed) {
        for (const char* version : {"1", "2"}) {
            const ProofDevice unharmed;
            unharmed.installSource(version);
            EXPECT_EQ(unharmed.request().output, unharmed.success);
            duplicates_[version] = unharmed.bundle(unharmed.duplicate);
            sources_[version] = unharmed.bundle(unharmed.source);
            archives_["source" + std::string(version)] =
                contentsOf(unharmed.sourceArchive(version));
        }
        fs::create_directories(exports());
        EXPECT_TRUE(device_.installer().install(other("com.example.kept", "1")));
        const auto whole = device_.folder() / "whole.ipa";
        EXPECT_TRUE(device_.installer().exportTo("com.example.kept", whole));
        wholeExport_ = contentsOf(whole);
    }

    void round() {
        // All are made ready before the first one starts.
        std::vector<Request> requests{duplication(), installation("com.example.one"),
                                      installation("com.example.two"), exporting(),
                                      settingsWrite()};
        std::shuffle(requests.begin(), requests.end(), random_);
        Requests all;
        for (Request& request : requests) {
            // The first of a kind shows how long one takes.
            const auto latest = latest_.find(request.kind);
            std::optional<Clock::time_point> moment;
            if (latest != latest_.end() && !once(4, random_))
                moment = Clock::now() + randomPartOf(latest->second);
            all.push_back(std::make_unique<RunningRequest>(device_, std::move(request),
                                                           std::to_string(all.size()), moment));
        }
        attend(all);
        for (const auto& running : all)
            check(*running);
        checkNextRun();
    }

    int kills() const {
        int sum = 0;
        for (const auto& [victim, count] : kills_)
            sum += count;
        return sum;
    }
    const std::map<std::string, int>& killsByVictim() const { return kills_; }

private:
    Clock::duration randomPartOf(Clock::duration whole) {
        return Clock::duration(
            std::uniform_int_distribution<Clock::rep>(0, whole.count())(random_));
    }

    fs::path exports() const { return device_.folder() / "exports"; }

    fs::path other(const std::string& identifier, const std::string& version) const {
        return device_.application(identifier, version,
                                   {{"large", std::string(1'200'000, version[0])},
                                    {"sub/larger", std::string(1'300'000, version[0])},
                                    {"link", "sub/larger", S_IFLNK | 0777}});
    }

    Request installer(const std::string& kind, std::vector<std::string> words,
                      const std::string& identifier, Contents after) const {
        words.insert(words.begin(), {"ipainstaller", "--root", device_.root().native()});
        return {kind, std::move(words), [=, this] { return device_.bundle(identifier); },
                device_.bundle(identifier), std::move(after)};
    }

    /// The next step with the duplicate: making it, changing its source, rebuilding it, removing
    /// it.
    Request duplication() {
        const std::string source = device_.versionOf(device_.source);
        const std::string duplicate = device_.versionOf(device_.duplicate);
        if (duplicate != source)
            return {duplicate == "not installed" ? "duplicate" : "rebuild",
                    {DUPLICATE_ONCE, device_.root().native(), "request"},
                    [this] { return device_.bundle(device_.duplicate); },
                    device_.bundle(device_.duplicate),
                    duplicates_.at(source)};
        if (once(2, random_))
            return installer("uninstall", {"-u", device_.duplicate}, device_.duplicate, {});
        const std::string version = source == "1" ? "2" : "1";
        const auto archive = device_.archive("next.ipa", archives_.at("source" + version));
        return installer("install", {"-f", archive.native()}, device_.source, sources_.at(version));
    }

    Request installation(const std::string& identifier) {
        if (!device_.bundle(identifier).empty() && once(3, random_))
            return installer("uninstall", {"-u", identifier}, identifier, {});
        const std::string version = once(2, random_) ? "1" : "2";
        const fs::path archive = other(identifier, version);
        Contents& after = others_[identifier + version];
        if (after.empty()) {
            const DeviceFolder elsewhere;
            EXPECT_TRUE(elsewhere.installer().install(archive));
            after = ProofDevice::contentsBelow(elsewhere.installed(identifier));
        }
        return installer("install", {"-f", archive.native()}, identifier, after);
    }

    Request exporting() {
        const auto target = exports() / "kept.ipa";
        if (once(4, random_))
            fs::remove(target);
        const auto state = [target] {
            return fs::exists(target) ? Contents{{"kept.ipa", contentsOf(target)}} : Contents{};
        };
        return {"export",
                {"ipainstaller", "--root", device_.root().native(), "-b", "com.example.kept",
                 target.native()},
                state,
                state(),
                {{"kept.ipa", wholeExport_}}};
    }

    Request settingsWrite() {
        const std::string text(100'000, once(2, random_) ? 'a' : 'b');
        const auto state = [this] {
            return Contents{{"settings", contentsOf(device_.settingsPath())}};
        };
        auto settings = *PropertyList::parse(contentsOf(device_.settingsPath()));
        settings.setValueForKey("customText", PropertyList::string(text));
        return {"settings write",
                {DUPLICATE_ONCE, device_.root().native(), "set", "customText", text},
                state,
                state(),
                {{"settings", settings.xml()}}};
    }

    /// Waits until all have ended, and kills them at their moments.
    void attend(const Requests& all) {
        while (true) {
            std::vector<pollfd> endings;
            std::optional<Clock::time_point> next;
            for (const auto& running : all)
                if (!running->status) {
                    endings.push_back({running->ending, POLLIN, 0});
                    if (const auto moment = running->fatalMoment;
                        moment && (!next || *moment < *next))
                        next = moment;
                }
            if (endings.empty())
                return;
            using namespace std::chrono;
            const auto rest = ceil<milliseconds>(next.value_or(Clock::now()) - Clock::now());
            ::poll(endings.data(), endings.size(),
                   next ? std::max(static_cast<int>(rest.count()), 0) : -1);
            for (const auto& running : all) {
                pollfd ending{running->ending, POLLIN, 0};
                if (!running->status && ::poll(&ending, 1, 0) == 1) {
                    running->end();
                } else if (running->fatalMoment && *running->fatalMoment <= Clock::now()) {
                    running->fatalMoment.reset();
                    if (const auto victim = running->killOne(random_))
                        ++kills_[*victim + ": " + running->request.kind];
                }
            }
        }
    }

    void check(const RunningRequest& running) {
        const Request& request = running.request;
        SCOPED_TRACE(request.kind + (running.killed ? ", killed" : ""));
        const Contents found = request.state();
        EXPECT_TRUE(found == request.after || (running.killed && found == request.before));
        if (running.killed)
            return;
        EXPECT_EQ(running.status, 0);
        latest_[request.kind] = running.took;
        if (request.kind == "settings write") {
            EXPECT_EQ(filesIn(device_.settingsPath().parent_path()), 1);
        } else if (request.kind == "duplicate" || request.kind == "rebuild") {
            EXPECT_EQ(ProofDevice::lastLineOf(running.output), device_.success);
            EXPECT_EQ(filesIn(device_.root() / "tmp"), 0);
        }
    }

    /// The next of each takes away what was left, and only that.
    void checkNextRun() {
        EXPECT_TRUE(device_.installer().install(device_.application("com.example.next", "1")));
        EXPECT_EQ(device_.leftovers(), 0);
        EXPECT_TRUE(device_.installer().exportTo("com.example.kept", exports() / "kept.ipa"));
        EXPECT_EQ(contentsOf(exports() / "kept.ipa"), wholeExport_);
        EXPECT_EQ(filesIn(exports()), 1);
        EXPECT_EQ(device_.versionOf("com.example.kept"), "1");
    }

    std::mt19937 random_;
    ProofDevice device_;
    std::map<std::string, Contents> duplicates_, sources_, others_;
    std::map<std::string, std::string> archives_;
    std::string wholeExport_;
    std::map<std::string, Clock::duration> latest_;
    std::map<std::string, int> kills_;
};

unsigned numberFrom(const char* variable, unsigned otherwise) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? otherwise : static_cast<unsigned>(std::stoul(text));
}

} // namespace

/// DUBRIX_KILLS says how many kills, DUBRIX_KILL_SEED repeats a run as far as timing allows.
TEST(RandomKillTest, WhateverIsKilledUnderLoadIsTheOldOrTheNew) {
    const int self = static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0));
    if (self < 0)
        GTEST_SKIP() << "no waiting for several processes here: " << std::strerror(errno);
    ::close(self);
    const unsigned seed = numberFrom("DUBRIX_KILL_SEED", std::random_device{}());
    const unsigned kills = numberFrom("DUBRIX_KILLS", 30);
    SCOPED_TRACE("DUBRIX_KILL_SEED=" + std::to_string(seed));
    std::printf("DUBRIX_KILL_SEED=%u\n", seed);
    Storm storm(seed);
    int rounds = 0;
    while (storm.kills() < static_cast<int>(kills) && !testing::Test::HasFailure()) {
        storm.round();
        ++rounds;
    }
    for (const auto& [victim, count] : storm.killsByVictim())
        std::printf("%5d %s\n", count, victim.c_str());
    std::printf("%5d kills in %d rounds\n", storm.kills(), rounds);
}

} // namespace dubrix
