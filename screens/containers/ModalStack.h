#pragma once

#include "screens/ViewController.h"

#include <QAbstractListModel>
#include <QPointer>
#include <memory>
#include <utility>
#include <vector>

namespace dubrix {

/// The modal screens of a window, the topmost last. No presentation is ever lost: one that comes
/// while another is shown or being dismissed goes on top of it.
///
/// A dismissed screen stays in the list, marked, while the layout lets it fade, and is deleted
/// afterwards; it no longer counts as presented from the moment it is dismissed.
class ModalStack : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    /// Whether a modal screen is shown that is not being dismissed.
    Q_PROPERTY(bool occupied READ occupied NOTIFY occupiedChanged)
    /// Whether what lies below the modal screens takes no presses, because work is under way that
    /// nothing may be begun beside.
    Q_PROPERTY(bool suspended READ suspended WRITE setSuspended NOTIFY suspendedChanged)

public:
    enum Role { ControllerRole = Qt::UserRole, DismissingRole, AnimatedRole };

    /// How long the layout has to animate a presentation or a dismissal, in milliseconds.
    static constexpr int transitionTime = 220;
    Q_PROPERTY(int transitionTime READ transitionTimeValue CONSTANT)

    using QAbstractListModel::QAbstractListModel;
    ~ModalStack() override;

    void present(std::unique_ptr<ViewController> modal, ViewController& presenter, bool animated);
    /// Does nothing for a screen that is not in the stack or already being dismissed.
    void dismiss(ViewController& modal, bool animated);

    bool occupied() const { return topmost() != nullptr; }
    /// The topmost modal screen; null when there is none.
    ViewController* topmost() const;
    ViewController* topmostPresentedBy(const ViewController& presenter) const;

    bool suspended() const { return suspended_; }
    void setSuspended(bool suspended) {
        if (suspended != std::exchange(suspended_, suspended))
            Q_EMIT suspendedChanged();
    }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void occupiedChanged();
    void suspendedChanged();

private:
    struct Entry {
        std::unique_ptr<ViewController> modal;
        QPointer<ViewController> presenter;
        bool animated = false;
        bool dismissing = false;
    };

    int transitionTimeValue() const { return transitionTime; }
    void remove(const ViewController* modal);
    int rowOf(const ViewController* modal) const;

    std::vector<Entry> entries_;
    bool suspended_ = false;
};

} // namespace dubrix
