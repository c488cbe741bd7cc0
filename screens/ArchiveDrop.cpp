#include "screens/ArchiveDrop.h"

#include <algorithm>

namespace dubrix {

ArchiveDrop::ArchiveDrop(Errands& errands) : errands_(errands) {
    connect(&errands, &Errands::changed, this, &ArchiveDrop::changed);
}

QString ArchiveDrop::words() const {
    QStringList lines;
    for (const Errands::Outcome& outcome : errands_.outcomes())
        lines << outcome.words << outcome.reason;
    lines << errands_.doing();
    lines.removeAll({});
    return lines.join(u'\n');
}

bool ArchiveDrop::hasFailed() const {
    return std::ranges::any_of(errands_.outcomes(), [](const Errands::Outcome& outcome) {
        return !outcome.reason.isEmpty();
    });
}

} // namespace dubrix
