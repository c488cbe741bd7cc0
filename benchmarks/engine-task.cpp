#include "overlays/ProgressHUD.h"
#include "tests/overlays/FakeStage.h"
#include "tests/proof/RealPlatform.h"

#include <cstdio>

/// engine-task ROOT duplicate|size [FOLDER]: one work of the engine on the device in the folder
/// ROOT, as a process of its own that can be timed against others: what follows a tap on
/// "Duplicate", or the size of a folder of the device. Prints what the user is told.
int main(int count, char** words) {
    using namespace dubrix;
    const std::string task = count > 2 ? words[2] : "";
    if (!(task == "duplicate" && count == 3) && !(task == "size" && count == 4)) {
        std::fputs("usage: engine-task ROOT duplicate|size [FOLDER]\n", stderr);
        return 2;
    }
    FakeStage stage;
    ProgressHUD::useStage(stage);
    RealEngine real(words[1], DEVICE_PATHS);
    if (task == "size")
        stage.text = real.engine.sizeOfFolder(words[3]);
    else
        real.engine.showDuplicateAlert();
    real.alerts.answerAll();
    std::puts(stage.text.value_or(real.alerts.said).c_str());
    const bool done = task == "size" || (stage.text && stage.text->ends_with("duplicated."));
    ProgressHUD::withdrawStage();
    return done ? 0 : 1;
}
