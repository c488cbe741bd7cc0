#include "screens/overlay/QuickOverlayStage.h"

#include "screens/colors/ColorSpaces.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QInputMethod>
#include <QTextLayout>
#include <QTimer>
#include <algorithm>
#include <cmath>

namespace dubrix {

namespace {

int milliseconds(double seconds) {
    return static_cast<int>(std::lround(seconds * 1000));
}

/// The widest line and the height of `text` wrapped at `width`, within a word that is wider, laid
/// out as the layout's Text does.
QSizeF laidOut(const QString& text, const QFont& font, double width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setUseDesignMetrics(true);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    double widest = 0;
    double tallest = QFontMetricsF(font).height();
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        widest = std::max(widest, line.naturalTextWidth());
        tallest = std::max(tallest, line.height());
    }
    layout.endLayout();
    return {widest, layout.lineCount() * std::ceil(tallest)};
}

} // namespace

void OverlayPiece::make(const Rect& frame, const Color& color, double cornerRadius) {
    inParent_ = false;
    hidden_ = false;
    alpha_ = 1;
    scale_ = 1;
    color_ = drawable(color);
    cornerRadius_ = cornerRadius;
    apply({.frame = frame}, 0);
}

void OverlayPiece::setParentShown(bool inParent) {
    inParent_ = inParent;
    Q_EMIT changed();
}

void OverlayPiece::apply(const PieceChange& change, double seconds) {
    if (milliseconds(seconds) != std::exchange(duration_, milliseconds(seconds)))
        Q_EMIT durationChanged();
    if (change.frame) {
        size_ = change.frame->size;
        center_ = {change.frame->origin.x + size_.width / 2,
                   change.frame->origin.y + size_.height / 2};
    }
    size_ = change.bounds.value_or(size_);
    center_ = change.center.value_or(center_);
    alpha_ = change.alpha.value_or(alpha_);
    scale_ = change.scale.value_or(scale_);
    hidden_ = change.hidden.value_or(hidden_);
    Q_EMIT changed();
}

QuickOverlayStage::QuickOverlayStage() {
    connect(QGuiApplication::inputMethod(), &QInputMethod::keyboardRectangleChanged, this,
            &QuickOverlayStage::keyboardChanged);
}

QuickOverlayStage::~QuickOverlayStage() = default;

void QuickOverlayStage::windowDidLayout(double width, double height) {
    screen_ = {width, height};
    // A resized window is to the overlay what a turned screen is: a reason to find its place again.
    notify({.name =
                OverlayNotification::Name::UIApplicationDidChangeStatusBarOrientationNotification});
}

std::vector<WindowContents> QuickOverlayStage::windows() {
    std::vector<WindowContents> windows{{"UIWindow", {}}};
    if (keyboardHeight_ > 0)
        windows.push_back({"UITextEffectsWindow", {{"UIPeripheralHostView", keyboardHeight_}}});
    return windows;
}

Size QuickOverlayStage::measureText(const std::string& text, const Font& font, Size limit) {
    QFont measured = QGuiApplication::font();
    measured.setPixelSize(static_cast<int>(std::lround(font.pointSize)));
    measured.setBold(font.bold);
    const QString wrapped =
        QString::fromStdString(text).replace(QLatin1Char('\n'), QChar::LineSeparator);
    const QSizeF needed = laidOut(wrapped, measured, limit.width);
    // A line needs somewhat more than its letters' widths; with less the text would wrap once more
    // and lose its end where it is drawn.
    double width = std::ceil(needed.width());
    while (width < limit.width && laidOut(wrapped, measured, width).height() > needed.height())
        ++width;
    return {std::min(width, limit.width), std::min(needed.height(), limit.height)};
}

void QuickOverlayStage::makeBackground(const BackgroundAppearance& appearance) {
    background()->make(appearance.frame, appearance.backgroundColor);
}

void QuickOverlayStage::makeHud(const HudAppearance& appearance) {
    hud()->make(appearance.frame, appearance.backgroundColor, appearance.cornerRadius);
}

void QuickOverlayStage::makeSpinner(const SpinnerAppearance& appearance) {
    // The large style is 37 points wide.
    spinner()->make({{0, 0}, {37, 37}}, appearance.color);
    setSpinning(false);
}

void QuickOverlayStage::makeImage(const ImageAppearance& appearance) {
    image()->make(appearance.frame, {});
    setImage(std::nullopt);
}

void QuickOverlayStage::makeLabel(const LabelAppearance& appearance) {
    label()->make(appearance.frame, appearance.textColor);
    fontSize_ = static_cast<int>(std::lround(appearance.font.pointSize));
    setLabelText(std::nullopt);
}

void QuickOverlayStage::addToWindow(Piece which, WindowId) {
    piece(which).setParentShown(true);
}

void QuickOverlayStage::addToPiece(Piece which, Piece) {
    piece(which).setParentShown(true);
}

void QuickOverlayStage::removeFromParent(Piece which) {
    piece(which).setParentShown(false);
}

void QuickOverlayStage::change(Piece which, const PieceChange& properties) {
    piece(which).apply(properties, 0);
}

void QuickOverlayStage::setLabelText(const std::optional<std::string>& text) {
    message_ = QString::fromStdString(text.value_or(""));
    Q_EMIT contentsChanged();
}

void QuickOverlayStage::setImage(const std::optional<std::string>& fileName) {
    imageFile_ = QString::fromStdString(fileName.value_or(""));
    Q_EMIT contentsChanged();
}

void QuickOverlayStage::setSpinning(bool spinning) {
    spinning_ = spinning;
    Q_EMIT contentsChanged();
}

void QuickOverlayStage::animate(Piece which, const PieceChange& properties,
                                const Animation& animation, std::function<void()> completion) {
    piece(which).apply(properties, animation.duration);
    if (completion)
        QTimer::singleShot(milliseconds(animation.duration), this, std::move(completion));
}

void QuickOverlayStage::observe(OverlayNotification::Name name,
                                std::function<void(const OverlayNotification&)> handler) {
    observers_.push_back({name, std::move(handler)});
}

void QuickOverlayStage::notify(const OverlayNotification& notification) {
    const std::vector<Observer> observers = observers_; // a handler may end its observation
    for (const Observer& observer : observers)
        if (observer.name == notification.name)
            observer.handler(notification);
}

void QuickOverlayStage::keyboardChanged() {
    const QRectF keyboard = QGuiApplication::inputMethod()->keyboardRectangle();
    keyboardHeight_ = keyboard.height();
    notify({.name = keyboard.isEmpty() ? OverlayNotification::Name::UIKeyboardDidHideNotification
                                       : OverlayNotification::Name::UIKeyboardDidShowNotification,
            .animationDuration = 0.25,
            .keyboardFrameBegin = {{keyboard.x(), keyboard.y()},
                                   {keyboard.width(), keyboard.height()}}});
}

void QuickOverlayStage::runOnMainThread(std::function<void()> work) {
    QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
}

void QuickOverlayStage::runOnNewThread(std::function<void()> work) {
    workers_.start(std::move(work));
}

} // namespace dubrix
