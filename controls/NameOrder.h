#pragma once

#include <QCollator>
#include <algorithm>
#include <vector>

namespace dubrix {

/// The order in which people look for names in their language: without regard to case, numbers by
/// their value.
QCollator peoplesOrder();

/// Sorts by the names in that order, equal ones by their identifiers; both are members.
template<class Item, class Identifier>
void sortByName(std::vector<Item>& items, QString Item::* name, Identifier Item::* identifier) {
    struct Keyed {
        QCollatorSortKey key;
        Item item;
    };
    const QCollator order = peoplesOrder();
    std::vector<Keyed> keyed;
    keyed.reserve(items.size());
    for (Item& item : items)
        keyed.push_back({order.sortKey(item.*name), std::move(item)});
    std::ranges::sort(keyed, [identifier](const Keyed& one, const Keyed& other) {
        const int difference = one.key.compare(other.key);
        return difference != 0 ? difference < 0 : one.item.*identifier < other.item.*identifier;
    });
    std::ranges::transform(keyed, items.begin(), [](Keyed& each) { return std::move(each.item); });
}

} // namespace dubrix
