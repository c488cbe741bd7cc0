#pragma once

class QQuickWindow;

namespace dubrix {

/// The only entry of the module "dubrix-driver.so", named `playScriptName` in it: acts out the
/// script that comes through the first descriptor on the window and has the program end with it.
/// Pictures go to the second, answers to them come from the third.
using PlayScript = void (*)(QQuickWindow& window, int script, int pictures, int answers);
constexpr auto playScriptName = "dubrixPlayScript";

} // namespace dubrix
