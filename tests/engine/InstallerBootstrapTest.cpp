#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "network/CurlDownloader.h"
#include "platform/CommandRunner.h"
#include "platform/posix/PosixPlatform.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TemporaryFolder.h"

namespace dubrix {
namespace {

const std::string tool = "usr/bin/appinst";
const std::string package = "tmp/com.vorlund.appinst_iphoneos-arm.deb";
const std::string path = "/u/1000/Tweaks/Dubrix/com.vorlund.appinst_iphoneos-arm.deb";
const std::string closing = "killall MobileCydia";
const std::string installing = "dpkg -i /tmp/com.vorlund.appinst_iphoneos-arm.deb";

/// Downloads from the test's server what is asked of the package's host.
class ReroutedDownloader final : public Downloader {
public:
    explicit ReroutedDownloader(const LoopbackServer& server) : server_(server) {}
    std::optional<std::string> dataWithContentsOfURL(const std::string& address) override {
        const std::string host = "https://files.example.org/";
        EXPECT_TRUE(address.starts_with(host)) << address;
        return curl_.dataWithContentsOfURL(server_.address(address.substr(host.size() - 1)));
    }

private:
    const LoopbackServer& server_;
    CurlDownloader curl_;
};

/// Records the commands; dpkg puts a whole package's content in place.
class RecordingRunner final : public CommandRunner {
public:
    explicit RecordingRunner(const TemporaryFolder& device) : device_(device) {}
    void runCommand(const std::string& command) override {
        commands.push_back(command);
        if (command == installing && contentsOf(device_ / package) == "whole package")
            putFile(device_ / tool, "the tool");
    }
    std::vector<std::string> commands;

private:
    const TemporaryFolder& device_;
};

class SilentAlerts final : public Alerts {
    void showSimpleAlertWithTitle(const Text&, const Text&, const std::string&) override { fail(); }
    void show2ButtonAlertWithTitle(const Text&, const Text&, const std::string&, const std::string&,
                                   AlertBlock, AlertBlock) override {
        fail();
    }
    void show3ButtonAlertWithTitle(const Text&, const Text&, const std::string&, const std::string&,
                                   const std::string&, AlertBlock, AlertBlock) override {
        fail();
    }
    void presentProgressAlert(const ProgressAlert&) override { fail(); }
    void dismissProgressAlert() override { fail(); }
    Size mainViewSize() const override { return {}; }
    static void fail() { ADD_FAILURE() << "nothing is to be shown"; }
};

struct Case {
    const char* name;
    bool present;
    int status;       ///< of the server's answer
    const char* left; ///< package of an earlier run
    int requests;     ///< that the server gets
    int attempts;     ///< of two commands each
    bool installed;
    const char* packageAfter;
};

void PrintTo(const Case& printed, std::ostream* out) {
    *out << printed.name;
}

class InstallerBootstrapTest : public testing::TestWithParam<Case> {};

TEST_P(InstallerBootstrapTest, InstallsTheToolWhenItIsMissing) {
    const Case& expected = GetParam();
    TemporaryFolder device;
    std::filesystem::create_directory(device / "tmp");
    if (expected.present)
        putFile(device / tool, "the tool");
    if (*expected.left)
        putFile(device / package, expected.left);

    LoopbackServer server;
    std::atomic<int> requests = 0;
    server.Get(path, [&](const httplib::Request&, httplib::Response& response) {
        ++requests;
        response.status = expected.status;
        response.set_content(expected.status == 200 ? "whole package" : "error", "text/plain");
    });
    server.start();

    ReroutedDownloader downloader(server);
    RecordingRunner commands(device);
    PosixPlatform posix(device.path());
    SilentAlerts alerts;
    CloneEngine engine(posix.ports({.commands = &commands, .downloader = &downloader}), alerts);
    engine.installerCheck();

    std::vector<std::string> wanted;
    for (int attempt = 0; attempt < expected.attempts; ++attempt)
        wanted.insert(wanted.end(), {closing, installing});
    EXPECT_EQ(commands.commands, wanted);
    EXPECT_EQ(requests, expected.requests);
    EXPECT_EQ(std::filesystem::exists(device / tool), expected.installed);
    EXPECT_EQ(contentsOf(device / package), expected.packageAfter);
}

INSTANTIATE_TEST_SUITE_P(
    , InstallerBootstrapTest,
    testing::Values(Case{"Present", true, 200, "", 0, 0, true, ""},
                    Case{"InstalledAtOnce", false, 200, "", 1, 1, true, "whole package"},
                    Case{"NewPackageInPlaceOfTheOld", false, 200, "old", 1, 1, true,
                         "whole package"},
                    Case{"DownloadFailsTwice", false, 404, "", 2, 2, false, ""},
                    Case{"UselessPackageLeft", false, 500, "broken", 2, 2, false, "broken"},
                    Case{"PackageLeft", false, 500, "whole package", 1, 1, true, "whole package"}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace dubrix
