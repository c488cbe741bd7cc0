#include "engine/Operation.h"

#include "overlays/ProgressHUD.h"
#include "platform/DeviceClaim.h"

#include <utility>

namespace dubrix {

CloneEngine::Operation::Operation(CloneEngine& engine)
    : engine_(engine),
      begun_(!std::exchange(engine.working_, true)) {
    if (begun_)
        engine_.workingChanged(true);
}

CloneEngine::Operation::~Operation() {
    if (claimed_)
        engine_.platform_.device.release();
    if (!begun_)
        return;
    engine_.working_ = false;
    engine_.workingChanged(false);
}

bool CloneEngine::Operation::claimsDevice() {
    claimed_ = engine_.platform_.device.claim();
    if (!claimed_)
        ProgressHUD::showError("Another duplication is running on this device.");
    return claimed_;
}

} // namespace dubrix
