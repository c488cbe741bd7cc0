#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "engine/Operation.h"

namespace dubrix {

void CloneEngine::showUpdateAlert() {
    const Operation operation(*this);
    if (!operation.hasBegun())
        return;
    const Source chosen = source();
    if (!chosen.identifier)
        return alerts_.showSimpleAlertWithTitle("Dubrix", "The selected app is not installed",
                                                "Ok");
    if (!isInstalled(chosen.identifier))
        return alerts_.showSimpleAlertWithTitle("Dubrix", "Please select an app from the list",
                                                "Ok");
    const int duplicates = contiguousDuplicates(chosen.identifier, Logging::Off);
    const int stale = staleDuplicates(chosen);
    if (stale == 0 && duplicates == 0)
        return alerts_.showSimpleAlertWithTitle(chosen.name, "No duplicates for this app", "Ok");

    const std::string state =
        stringWithFormat("App version: %@\nDuplicates: %d", chosen.version, duplicates);
    if (stale == 0)
        return alerts_.showSimpleAlertWithTitle(
            chosen.name, stringWithFormat("%@\n\nAll duplicates are up to date", state), "Ok");

    const int first = firstStaleDuplicate(chosen);
    const std::string need = stringWithFormat("You have %d app(s) that need update!", stale);
    const std::string question = stringWithFormat(
        "Would you like to start updating %@ ? (%@ %d)",
        nameForBundleID(duplicateIdentifier(chosen.identifier, first)), chosen.name, first);
    alerts_.show2ButtonAlertWithTitle(
        chosen.name, stringWithFormat("%@\n\n%@\n\n%@", state, need, question), "Update", "Cancel",
        [] {}, [this, first] { duplicateAppWithNumber(stringWithFormat("%d", first)); });
}

} // namespace dubrix
