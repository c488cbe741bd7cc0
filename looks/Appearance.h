#pragma once

#include <QString>

namespace dubrix {

/// Gives the program the font of both windows where it is installed.
void chooseFont();

/// A palette whose ground tells the layout which appearance is meant: "light" or "dark", or empty
/// for what the platform's theme says.
void chooseAppearance(const QString& appearance);

} // namespace dubrix
