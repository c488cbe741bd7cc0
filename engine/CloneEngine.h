#pragma once

#include "engine/Text.h"
#include "platform/Platform.h"

#include <optional>
#include <string>

namespace dubrix {

class Alerts;
class PropertyList;

/// Duplicates of one source are numbered from 1 up to this.
inline constexpr int highestDuplicateNumber = 100;

/// The clone engine: every decision and action of a duplication or an update.
///
/// It keeps nothing between operations: each reads the settings file and asks the catalogue
/// afresh. All operations run on the main thread and block it until they are done; outcomes reach
/// the user in alerts and through the status overlay, never as results. Bundle identifiers are
/// used exactly as given; an absent one is no application.
///
/// An operation that waits for its platform may have the event loop turned below it: what asks the
/// user, walks, runs the pipeline or installs does nothing when it is called from there. Of all
/// engines on a device only one at a time walks or runs the pipeline; another one tells the user so
/// instead.
class CloneEngine {
public:
    CloneEngine(const Platform& platform, Alerts& alerts) : platform_(platform), alerts_(alerts) {}
    virtual ~CloneEngine() = default;
    CloneEngine(const CloneEngine&) = delete;
    CloneEngine& operator=(const CloneEngine&) = delete;

    /// Catalogue: one call each to its service. Whether an application is installed comes from the
    /// system's workspace; name, path and version come from the application list `al`, and are
    /// absent while there is none. The two services may disagree for a moment and are never
    /// cross-checked.
    bool isInstalled(const Text& identifier) const;
    Text nameForBundleID(const Text& identifier) const;
    Text pathForBundleID(const Text& identifier) const;
    Text versionForBundleID(const Text& identifier) const;

    /// The identifier of duplicate `number` (a number or its decimal text) of a source.
    static std::string duplicateIdentifier(const Text& source, const FormatArgument& number);
    /// Exact text equality; false when either side is absent.
    static bool sameVersion(const Text& one, const Text& other);

    /// Looks at the numbers from `start` to 100 and acts on the first that calls for it: builds
    /// the first free number, offers to update the first stale duplicate, or says that all hundred
    /// are taken. Above 100 it does nothing.
    void DuplicateStartAt(int start);

    /// Makes or rebuilds the duplicate with this number (decimal text) and reports the outcome
    /// through the status overlay. Whether the duplicate's identifier is installed afterwards is
    /// all that decides success.
    void duplicateAppWithNumber(const std::string& number);

    /// Asks whether to duplicate the chosen source; "Duplicate" starts the walk at 1.
    void showDuplicateAlert();

    /// The total size of everything below the folder as text, entries measured themselves.
    std::string sizeOfFolder(const std::string& path) const;

    /// Re-tints every icon file that the staged copy's Info.plist names, in all its variants.
    void colorIcons();

    /// Re-tints one file of the staged copy, named relative to it, in place. The file is a PNG
    /// afterwards, whatever it was; one that does not decode is left as it was.
    void colorImage(const std::string& name);

    /// Offers to update duplicate `number`; declining goes on with the walk at the next number.
    void updateAlertAt(int number);

    /// Tells how many duplicates of the chosen source exist and are stale, and offers to rebuild
    /// the lowest-numbered stale one.
    void showUpdateAlert();

    /// Sees to it that the installer tool "/usr/bin/appinst" is there: while it is missing, fetches
    /// its package, closes the package manager and installs the package, at most twice. Reports
    /// nothing.
    void installerCheck();

protected:
    /// The application list, absent until the main screen's view has loaded.
    ApplicationList* al = nullptr;

    const Platform& platform() const { return platform_; }

    /// Told when an operation that may take long begins and when it has ended.
    virtual void workingChanged(bool /*working*/) {}

private:
    class Operation;

    /// The source chosen by the user and what the catalogue says of it.
    struct Source {
        Text identifier;
        Text name;
        Text version;
    };

    /// Where the pipeline works, built by plain text formatting and used as it comes out.
    struct Staging {
        std::string root;
        std::string payload;
        std::string bundle;
    };

    PropertyList settings() const;
    Source source() const;

    enum class Logging { Off, On };
    /// The length of the unbroken run of installed duplicates from 1; a full run of 100 counts
    /// as 0.
    int contiguousDuplicates(const Text& source, Logging logging) const;
    /// How many duplicates of the unbroken run from 1 are stale.
    int staleDuplicates(const Source& source) const;
    /// The lowest stale number, gaps or not; 0 when there is none.
    int firstStaleDuplicate(const Source& source) const;

    /// The pipeline itself, on a claimed device.
    void makeDuplicate(const std::string& number);
    static Staging stagingFor(const Text& name, const Text& path);
    void editInfoPlist(const std::string& path, const PropertyList& settings, const Text& name,
                       const std::string& number, const std::string& identifier);
    void colorIconList(const std::optional<PropertyList>& names, const std::string& folder);

    const Platform platform_;
    Alerts& alerts_;
    bool working_ = false;
};

} // namespace dubrix
