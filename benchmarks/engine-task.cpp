#include "benchmarks/RealPlatform.h"
#include "overlays/ProgressHUD.h"
#include "tests/overlays/FakeStage.h"

#include <chrono>
#include <cstdio>

/// engine-task ROOT TASK: one work of the engine on the device in the folder ROOT, as a process of
/// its own that can be timed against others. "duplicate" is what follows a tap on "Duplicate",
/// "question" that as far as the question and prints the milliseconds until it is asked, "size
/// FOLDER" the size of a folder of the device, "remove FOLDER" the removal of one. The others print
/// what the user is told.

namespace {

using namespace dubrix;

int duplicate(RealEngine& real) {
    FakeStage stage;
    ProgressHUD::useStage(stage);
    real.engine.showDuplicateAlert();
    real.alerts.answerAll();
    std::puts(stage.text.value_or(real.alerts.said).c_str());
    const bool done = stage.text && stage.text->ends_with("duplicated.");
    ProgressHUD::withdrawStage();
    return done ? 0 : 1;
}

int ask(RealEngine& real) {
    const auto start = std::chrono::steady_clock::now();
    real.engine.showDuplicateAlert();
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - start;
    std::printf("%.3f\n", passed.count());
    return 0;
}

} // namespace

int main(int count, char** words) {
    const std::string task = count > 2 ? words[2] : "";
    const bool takesFolder = task == "size" || task == "remove";
    if (count != (takesFolder ? 4 : 3)) {
        std::fputs("usage: engine-task ROOT duplicate|question|size FOLDER|remove FOLDER\n",
                   stderr);
        return 2;
    }
    RealEngine real(words[1], DEVICE_PATHS);
    if (task == "duplicate")
        return duplicate(real);
    if (task == "question")
        return ask(real);
    if (task == "remove")
        return real.posix.files.removeItemAtPath(words[3]) ? 0 : 1;
    std::puts(real.engine.sizeOfFolder(words[3]).c_str());
    return 0;
}
