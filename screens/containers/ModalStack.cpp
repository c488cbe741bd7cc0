#include "screens/containers/ModalStack.h"

#include <QTimer>
#include <algorithm>
#include <ranges>

namespace dubrix {

ModalStack::~ModalStack() = default;

void ModalStack::present(std::unique_ptr<ViewController> modal, ViewController& presenter,
                         bool animated) {
    modal->setModalStack(this);
    modal->loadViewIfNeeded();
    const int row = rowCount();
    beginInsertRows({}, row, row);
    entries_.push_back({std::move(modal), &presenter, animated, false});
    endInsertRows();
    Q_EMIT occupiedChanged();
}

void ModalStack::dismiss(ViewController& modal, bool animated) {
    const int row = rowOf(&modal);
    if (row < 0 || entries_[row].dismissing)
        return;
    entries_[row].dismissing = true;
    entries_[row].animated = animated;
    Q_EMIT dataChanged(index(row), index(row), {DismissingRole, AnimatedRole});
    Q_EMIT occupiedChanged();
    if (entries_[row].presenter && modal.coversPresenter())
        entries_[row].presenter->viewWillAppear();
    QTimer::singleShot(animated ? transitionTime : 0, this,
                       [this, gone = QPointer<ViewController>(&modal)] { remove(gone); });
}

void ModalStack::remove(const ViewController* modal) {
    const int row = rowOf(modal);
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    ViewController* removed = entries_[row].modal.release();
    entries_.erase(entries_.begin() + row);
    endRemoveRows();
    // After the layout has let go of it. Its own code may be running below this call, so the event
    // loop deletes it.
    removed->deleteLater();
}

ViewController* ModalStack::topmost() const {
    for (const Entry& entry : entries_ | std::views::reverse)
        if (!entry.dismissing)
            return entry.modal.get();
    return nullptr;
}

ViewController* ModalStack::topmostPresentedBy(const ViewController& presenter) const {
    for (const Entry& entry : entries_ | std::views::reverse)
        if (!entry.dismissing && entry.presenter == &presenter)
            return entry.modal.get();
    return nullptr;
}

int ModalStack::rowOf(const ViewController* modal) const {
    const auto found = std::ranges::find_if(
        entries_, [modal](const Entry& entry) { return entry.modal.get() == modal; });
    return modal && found != entries_.end() ? static_cast<int>(found - entries_.begin()) : -1;
}

int ModalStack::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant ModalStack::data(const QModelIndex& index, int role) const {
    const Entry& entry = entries_.at(static_cast<std::size_t>(index.row()));
    switch (role) {
    case ControllerRole:
        return QVariant::fromValue(entry.modal.get());
    case DismissingRole:
        return entry.dismissing;
    case AnimatedRole:
        return entry.animated;
    default:
        return {};
    }
}

QHash<int, QByteArray> ModalStack::roleNames() const {
    return {
        {ControllerRole, "controller"}, {DismissingRole, "dismissing"}, {AnimatedRole, "animated"}};
}

} // namespace dubrix
