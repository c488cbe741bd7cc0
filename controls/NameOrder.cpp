#include "controls/NameOrder.h"

namespace dubrix {

QCollator peoplesOrder() {
    const QLocale system = QLocale::system();
    // Without a language there is no order but that of the character codes.
    QCollator collator(system.language() == QLocale::C ? QLocale(QLocale::English) : system);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    return collator;
}

} // namespace dubrix
