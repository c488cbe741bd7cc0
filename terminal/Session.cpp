#include "terminal/Session.h"

#include "overlays/ProgressHUD.h"

#include <numeric>

namespace dubrix {

Session::Session(const std::filesystem::path& root, const std::filesystem::path& pathsScript,
                 Console& given)
    : console(given),
      posix(root, pathsScript),
      platform_(posix.ports(
          {.commands = &commands_, .files = &settings, .workspace = &workspace, .log = &silence_})),
      engine(platform_, alerts) {
    posix.commands.makeStoppable();
    commands_.begins = [this](const std::string& command) { beginPart(command); };
    if (console.drawsProgress())
        commands_.meanwhile = [this] { showPart(); };
    alerts.workBegins = [this](const std::string& work) {
        work_ = work;
        size_.reset();
    };
    stage_.says = [this](const std::string& sentence, bool succeeded) {
        if (succeeded)
            console.tell(sentence);
        else if (!isStopped())
            console.complain(sentence);
        attempts_.push_back({workspace.lastAsked(), workspace.wasInstalled(), succeeded});
    };
    ProgressHUD::useStage(stage_);
}

Session::~Session() {
    ProgressHUD::withdrawStage();
}

std::vector<Attempt> Session::run(const std::function<void(CloneEngine&)>& work) {
    const std::string identifier = settings.values.identifier.value_or("");
    const std::string staging =
        "/tmp/" + posix.applications.valueForKey("displayName", identifier).value_or("(null)");
    const bool wasStaged = posix.files.fileExistsAtPath(staging);
    attempts_.clear();
    alerts.forget();
    work(engine);
    alerts.settle();
    if (isStopped() && !wasStaged && posix.files.fileExistsAtPath(staging))
        posix.files.removeItemAtPath(staging);
    return std::move(attempts_);
}

/// Each of a duplicate's three commands writes the application's bytes once: where they lie, into
/// the archive, and where they are installed.
void Session::beginPart(const std::string& command) {
    part_ = command.starts_with("cd ") ? 1 : command.starts_with("ipainstaller ") ? 2 : 0;
    written_ = 0;
    console.showWork(work_, 100 * part_ / 3);
}

void Session::showPart() {
    if (!size_) {
        const auto path =
            posix.applications.valueForKey("path", settings.values.identifier.value_or(""));
        const auto sizes = posix.files.sizesOfItemsBelowPath(path.value_or("/none"));
        size_ = std::accumulate(sizes.begin(), sizes.end(), std::int64_t{1});
    }
    written_ = std::max(written_, static_cast<std::int64_t>(posix.commands.bytesWritten()));
    console.showWork(
        work_, static_cast<unsigned>(
                   (std::int64_t{100} * part_ + 100 * std::min(written_, *size_) / *size_) / 3));
}

} // namespace dubrix
