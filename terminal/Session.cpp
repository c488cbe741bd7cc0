#include "terminal/Session.h"

#include "overlays/ProgressHUD.h"

namespace dubrix {

Session::Session(const std::filesystem::path& root, const std::filesystem::path& pathsScript,
                 Console& given)
    : console(given),
      posix(root, pathsScript),
      platform_(posix.ports(
          {.commands = &commands_, .files = &settings, .workspace = &workspace, .log = &silence_})),
      engine(platform_, alerts) {
    posix.commands.makeStoppable();
    commands_.begins = [this](const std::string& command) { showCommand(command); };
    alerts.workBegins = [this](const std::string& work) {
        work_ = work;
        console.showWork(work_, 0);
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

/// How far a duplicate is when one of its three commands begins, about.
void Session::showCommand(const std::string& command) {
    if (command.starts_with("cd "))
        console.showWork(work_, 35);
    else if (command.starts_with("ipainstaller "))
        console.showWork(work_, 65);
}

} // namespace dubrix
