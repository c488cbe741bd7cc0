#pragma once

#include "platform/ApplicationList.h"

#include <QString>
#include <QVariantMap>
#include <vector>

namespace dubrix {

/// What a section descriptor may say, as keys of a map.
inline constexpr auto ALSectionDescriptorPredicateKey = "ALSectionDescriptorPredicateKey";
inline constexpr auto ALSectionDescriptorTitleKey = "ALSectionDescriptorTitleKey";
inline constexpr auto ALSectionDescriptorCellClassNameKey = "ALSectionDescriptorCellClassNameKey";
inline constexpr auto ALSectionDescriptorIconSizeKey = "ALSectionDescriptorIconSizeKey";
inline constexpr auto ALSectionDescriptorSuppressHiddenAppsKey =
    "ALSectionDescriptorSuppressHiddenAppsKey";

using ALSectionDescriptor = QVariantMap;

struct ApplicationRow {
    std::string displayIdentifier;
    /// The display name; the identifier for an application that has none.
    QString name;
    /// The identifier when another application of the section has the same name, else empty.
    QString distinction;
    std::string bundlePath;
    /// Name and identifier as they are searched, see `foldedForSearch`.
    QString foldedName;
    QString foldedIdentifier;
};

struct ApplicationSection {
    QString title;
    /// The icons' edge in points; 0 for rows without icons.
    unsigned iconSize = 0;
    /// Whether the current choice bears a check mark.
    bool hasChecks = false;
    std::vector<ApplicationRow> rows;
};

/// One section for each descriptor, with the applications that its predicate asks for. The
/// predicate is empty, which asks for all, or compares "isSystemApplication" with TRUE or FALSE;
/// any other asks for none. Rows are sorted by name as people sort in their language: without
/// regard to case, numbers by their value; equal names by identifier. Any thread.
std::vector<ApplicationSection>
applicationSections(const std::vector<ApplicationList::Entry>& entries,
                    const std::vector<ALSectionDescriptor>& descriptors);

/// A text without regard to case, accents and the width of letters.
QString foldedForSearch(const QString& text);

/// Whether every word of `folded` (a folded text) is part of the row's name or identifier.
bool matchesSearch(const ApplicationRow& row, const QString& folded);

} // namespace dubrix
