#pragma once

#include "overlays/OverlayStage.h"
#include "overlays/TimedWorkers.h"

#include <QColor>
#include <QObject>
#include <QRectF>
#include <array>
#include <qqmlregistration.h>
#include <vector>

namespace dubrix {

/// One piece of the status overlay as the layout draws it. Lengths are in points.
class OverlayPiece : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a piece of the stage")
    Q_PROPERTY(bool shown READ shown NOTIFY changed)
    Q_PROPERTY(double x READ x NOTIFY changed)
    Q_PROPERTY(double y READ y NOTIFY changed)
    Q_PROPERTY(double width READ width NOTIFY changed)
    Q_PROPERTY(double height READ height NOTIFY changed)
    Q_PROPERTY(double alpha READ alpha NOTIFY changed)
    Q_PROPERTY(double scale READ scale NOTIFY changed)
    Q_PROPERTY(QColor color READ color NOTIFY changed)
    Q_PROPERTY(double cornerRadius READ cornerRadius NOTIFY changed)
    /// How long the layout takes to reach the values, in milliseconds.
    Q_PROPERTY(int duration READ duration NOTIFY durationChanged)

public:
    using QObject::QObject;

    void make(const Rect& frame, const Color& color, double cornerRadius = 0);
    void setParentShown(bool inParent);
    void apply(const PieceChange& change, double seconds);

    bool shown() const { return inParent_ && !hidden_; }
    double x() const { return center_.x - size_.width / 2; }
    double y() const { return center_.y - size_.height / 2; }
    double width() const { return size_.width; }
    double height() const { return size_.height; }
    double alpha() const { return alpha_; }
    double scale() const { return scale_; }
    QColor color() const { return color_; }
    double cornerRadius() const { return cornerRadius_; }
    int duration() const { return duration_; }

Q_SIGNALS:
    void changed();
    void durationChanged();

private:
    bool inParent_ = false;
    bool hidden_ = false;
    Point center_;
    Size size_;
    double alpha_ = 1;
    double scale_ = 1;
    QColor color_;
    double cornerRadius_ = 0;
    int duration_ = 0;
};

/// The status overlay's stage in the Quick window: keeps the numbers, which the layout draws.
class QuickOverlayStage : public QObject, public OverlayStage {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(dubrix::OverlayPiece* background READ background CONSTANT)
    Q_PROPERTY(dubrix::OverlayPiece* hud READ hud CONSTANT)
    Q_PROPERTY(dubrix::OverlayPiece* spinner READ spinner CONSTANT)
    Q_PROPERTY(dubrix::OverlayPiece* image READ image CONSTANT)
    Q_PROPERTY(dubrix::OverlayPiece* label READ label CONSTANT)
    Q_PROPERTY(QString message READ message NOTIFY contentsChanged)
    Q_PROPERTY(QString imageFile READ imageFile NOTIFY contentsChanged)
    Q_PROPERTY(bool spinning READ spinning NOTIFY contentsChanged)
    Q_PROPERTY(int fontSize READ fontSize NOTIFY contentsChanged)

public:
    QuickOverlayStage();
    ~QuickOverlayStage() override;

    /// The window's size in points, as the layout tells it.
    Q_INVOKABLE void windowDidLayout(double width, double height);

    Rect mainScreenBounds() override { return {{0, 0}, screen_}; }
    Orientation statusBarOrientation() override { return Orientation::Portrait; }
    std::optional<WindowId> delegateWindow() override { return WindowId{0}; }
    std::optional<WindowId> keyWindow() override { return WindowId{0}; }
    Rect windowFrame(WindowId) override { return {{0, 0}, screen_}; }
    std::vector<WindowContents> windows() override;
    Size measureText(const std::string& text, const Font& font, Size limit) override;

    void makeBackground(const BackgroundAppearance& appearance) override;
    void makeHud(const HudAppearance& appearance) override;
    void makeSpinner(const SpinnerAppearance& appearance) override;
    void makeImage(const ImageAppearance& appearance) override;
    void makeLabel(const LabelAppearance& appearance) override;
    void addToWindow(Piece piece, WindowId window) override;
    void addToPiece(Piece piece, Piece parent) override;
    void removeFromParent(Piece piece) override;
    void change(Piece piece, const PieceChange& properties) override;
    void setLabelText(const std::optional<std::string>& text) override;
    void setImage(const std::optional<std::string>& fileName) override;
    void startSpinner() override { setSpinning(true); }
    void stopSpinner() override { setSpinning(false); }
    void animate(Piece piece, const PieceChange& properties, const Animation& animation,
                 std::function<void()> completion) override;

    void observe(OverlayNotification::Name name,
                 std::function<void(const OverlayNotification&)> handler) override;
    void stopObserving() override { observers_.clear(); }
    void runOnMainThread(std::function<void()> work) override;
    void runOnNewThread(std::function<void()> work) override;
    bool sleep(double seconds) override { return workers_.sleep(seconds); }
    void cancelThreads() override { workers_.cancelAll(); }

    OverlayPiece* background() { return &piece(Piece::Background); }
    OverlayPiece* hud() { return &piece(Piece::Hud); }
    OverlayPiece* spinner() { return &piece(Piece::Spinner); }
    OverlayPiece* image() { return &piece(Piece::Image); }
    OverlayPiece* label() { return &piece(Piece::Label); }
    QString message() const { return message_; }
    QString imageFile() const { return imageFile_; }
    bool spinning() const { return spinning_; }
    int fontSize() const { return fontSize_; }

Q_SIGNALS:
    void contentsChanged();

private:
    struct Observer {
        OverlayNotification::Name name;
        std::function<void(const OverlayNotification&)> handler;
    };

    OverlayPiece& piece(Piece which) { return pieces_[static_cast<std::size_t>(which)]; }
    void setSpinning(bool spinning);
    void keyboardChanged();
    void notify(const OverlayNotification& notification);

    std::array<OverlayPiece, 5> pieces_;
    Size screen_;
    double keyboardHeight_ = 0;
    QString message_;
    QString imageFile_;
    bool spinning_ = false;
    int fontSize_ = 16;
    std::vector<Observer> observers_;
    TimedWorkers workers_;
};

} // namespace dubrix
