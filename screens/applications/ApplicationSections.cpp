#include "screens/applications/ApplicationSections.h"

#include "controls/NameOrder.h"

#include <QRegularExpression>
#include <algorithm>
#include <optional>

namespace dubrix {

namespace {

/// Which applications a predicate asks for.
class Predicate {
public:
    explicit Predicate(const QString& text) : asksForAll_(text.trimmed().isEmpty()) {
        static const QRegularExpression form(
            QStringLiteral("^\\s*isSystemApplication\\s*==?\\s*(TRUE|FALSE|YES|NO|1|0)\\s*$"),
            QRegularExpression::CaseInsensitiveOption);
        const QRegularExpressionMatch match = form.match(text);
        if (match.hasMatch())
            system_ = QStringLiteral("tyTY1").contains(match.captured(1).front());
    }

    bool matches(const ApplicationList::Entry& entry) const {
        return asksForAll_ || system_ == entry.isSystemApplication;
    }

private:
    bool asksForAll_;
    std::optional<bool> system_;
};

ApplicationRow rowOf(const ApplicationList::Entry& entry) {
    const QString identifier = QString::fromStdString(entry.displayIdentifier);
    const QString name = QString::fromStdString(entry.displayName).simplified();
    ApplicationRow row;
    row.displayIdentifier = entry.displayIdentifier;
    row.name = name.isEmpty() ? identifier : name;
    row.bundlePath = entry.path;
    row.foldedName = foldedForSearch(row.name);
    row.foldedIdentifier = foldedForSearch(identifier);
    return row;
}

/// Rows that look alike are told apart by their identifiers.
void distinguish(std::vector<ApplicationRow>& rows) {
    for (std::size_t index = 1; index < rows.size(); ++index) {
        if (rows[index - 1].foldedName != rows[index].foldedName)
            continue;
        for (ApplicationRow* row : {&rows[index - 1], &rows[index]})
            row->distinction = QString::fromStdString(row->displayIdentifier);
    }
}

} // namespace

std::vector<ApplicationSection>
applicationSections(const std::vector<ApplicationList::Entry>& entries,
                    const std::vector<ALSectionDescriptor>& descriptors) {
    std::vector<ApplicationSection> sections;
    for (const ALSectionDescriptor& descriptor : descriptors) {
        const Predicate predicate(descriptor.value(ALSectionDescriptorPredicateKey).toString());
        const bool suppressHidden =
            descriptor.value(ALSectionDescriptorSuppressHiddenAppsKey).toBool();
        ApplicationSection section;
        section.title = descriptor.value(ALSectionDescriptorTitleKey).toString();
        section.iconSize = descriptor.value(ALSectionDescriptorIconSizeKey).toUInt();
        section.hasChecks = descriptor.value(ALSectionDescriptorCellClassNameKey).toString() ==
                            QStringLiteral("ALCheckCell");
        for (const ApplicationList::Entry& entry : entries)
            if (predicate.matches(entry) && !(entry.isHidden && suppressHidden))
                section.rows.push_back(rowOf(entry));
        sortByName(section.rows, &ApplicationRow::name, &ApplicationRow::displayIdentifier);
        distinguish(section.rows);
        sections.push_back(std::move(section));
    }
    return sections;
}

QString foldedForSearch(const QString& text) {
    // Most names: nothing to take apart, and many of them are folded while the picker opens.
    if (std::ranges::all_of(text, [](QChar letter) { return letter.unicode() < 0x80; }))
        return text.toLower();
    // By way of capitals, which also part letters that are two as a capital.
    QString folded = text.normalized(QString::NormalizationForm_KD).toUpper().toCaseFolded();
    folded.removeIf([](QChar letter) { return letter.category() == QChar::Mark_NonSpacing; });
    return folded;
}

bool matchesSearch(const ApplicationRow& row, const QString& folded) {
    const QStringList words = folded.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return std::ranges::all_of(words, [&row](const QString& word) {
        return row.foldedName.contains(word) || row.foldedIdentifier.contains(word);
    });
}

} // namespace dubrix
