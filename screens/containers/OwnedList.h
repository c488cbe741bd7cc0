#pragma once

#include <QQmlListProperty>
#include <memory>
#include <vector>

namespace dubrix {

/// How the layout reads a list of objects that a controller owns: the two accessors of a
/// QQmlListProperty whose data is a vector of owners.

template<typename Object>
qsizetype countOf(QQmlListProperty<Object>* list) {
    return static_cast<qsizetype>(
        static_cast<std::vector<std::unique_ptr<Object>>*>(list->data)->size());
}

template<typename Object>
Object* elementOf(QQmlListProperty<Object>* list, qsizetype index) {
    return static_cast<std::vector<std::unique_ptr<Object>>*>(list->data)
        ->at(static_cast<std::size_t>(index))
        .get();
}

} // namespace dubrix
