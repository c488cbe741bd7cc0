#pragma once

#include <QCollator>

namespace dubrix {

/// The order in which people look for names in their language: without regard to case, numbers by
/// their value.
QCollator peoplesOrder();

} // namespace dubrix
