#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "overlays/ProgressHUD.h"
#include "tests/overlays/FakeStage.h"
#include "tests/proof/RealPlatform.h"

#include <cstdio>

/// duplicate-once ROOT request|set [KEY TEXT]: what the application does on the device in the
/// folder ROOT after a tap on "Duplicate", every question answered with yes, or when a text is
/// stored among the settings. Prints what the user is told last.
int main(int count, char** words) {
    using namespace dubrix;
    const std::string action = count > 2 ? words[2] : "";
    if (action != "request" && !(action == "set" && count == 5)) {
        std::fputs("usage: duplicate-once ROOT request|set [KEY TEXT]\n", stderr);
        return 2;
    }
    FakeStage stage;
    ProgressHUD::useStage(stage);
    RealEngine real(words[1], DEVICE_PATHS);
    if (action == "set")
        DXShared(real.platform.files, real.log).addKey(words[3], PropertyList::string(words[4]));
    else
        real.engine.showDuplicateAlert();
    real.alerts.answerAll();
    std::fputs(stage.text.value_or(real.alerts.said).c_str(), stdout);
    ProgressHUD::withdrawStage();
    return 0;
}
