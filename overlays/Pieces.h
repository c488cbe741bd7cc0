#pragma once

#include "overlays/Color.h"
#include "overlays/Geometry.h"

#include <optional>

namespace dubrix {

/// What the status overlay consists of on the screen. There is at most one of each.
enum class Piece {
    Background, ///< the layer that dims the window and takes its touches
    Hud,        ///< the rounded box
    Spinner,    ///< the busy indicator inside the box
    Image,      ///< the success or error image inside the box
    Label,      ///< the message inside the box
};

struct Font {
    double pointSize;
    bool bold; ///< of the system's own family

    bool operator==(const Font&) const = default;
};

struct BackgroundAppearance {
    Rect frame;
    Color backgroundColor;

    bool operator==(const BackgroundAppearance&) const = default;
};

struct HudAppearance {
    Rect frame;
    bool translucent;      ///< what lies below shines through, blurred
    Color backgroundColor; ///< laid over the translucent material
    double cornerRadius;
    bool clipsToBounds;

    bool operator==(const HudAppearance&) const = default;
};

enum class SpinnerStyle { White, WhiteLarge, Gray };

struct SpinnerAppearance {
    SpinnerStyle style;
    Color color;
    bool hidesWhenStopped;

    bool operator==(const SpinnerAppearance&) const = default;
};

struct ImageAppearance {
    Rect frame;

    bool operator==(const ImageAppearance&) const = default;
};

enum class TextAlignment { Left, Center, Right };
enum class BaselineAdjustment { AlignBaselines, AlignCenters, None };

struct LabelAppearance {
    Rect frame;
    Font font;
    Color textColor;
    Color backgroundColor;
    TextAlignment textAlignment;
    BaselineAdjustment baselineAdjustment;
    int numberOfLines; ///< 0: as many as there is room for

    bool operator==(const LabelAppearance&) const = default;
};

/// New values for the properties that are given; the others stay.
struct PieceChange {
    std::optional<Size> bounds = std::nullopt;  ///< resizes around the centre; the origin is (0, 0)
    std::optional<Rect> frame = std::nullopt;   ///< place and size within the parent
    std::optional<Point> center = std::nullopt; ///< within the parent
    std::optional<double> alpha = std::nullopt; ///< 0 to 1
    std::optional<double> scale = std::nullopt; ///< of the drawing around the centre; 1 is unscaled
    std::optional<bool> hidden = std::nullopt;

    bool operator==(const PieceChange&) const = default;
};

struct Animation {
    double duration;             ///< seconds, counted from the call
    bool layoutSubviews = false; ///< lay the pieces inside out again on the way
    bool allowUserInteraction;   ///< touches pass meanwhile

    bool operator==(const Animation&) const = default;
};

} // namespace dubrix
