#include "screens/prefs/PrefsViewController.h"

#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "platform/ApplicationList.h"
#include "platform/FileManager.h"
#include "platform/SystemLog.h"
#include "screens/NotificationCenter.h"
#include "screens/applications/AppListSampleViewController.h"
#include "screens/containers/ModalStack.h"
#include "screens/containers/NavigationController.h"

#include <array>

namespace dubrix {

namespace {

QString displayed(const Text& text) {
    return QString::fromStdString(text.value_or(""));
}

bool toggle(const std::optional<PropertyList>& value) {
    return value && value->booleanValue();
}

} // namespace

PrefsViewController::PrefsViewController(const Platform& platform,
                                         NotificationCenter& notifications)
    : CloneEngine(platform, static_cast<Alerts&>(*this)),
      notifications_(notifications) {}

PrefsViewController::~PrefsViewController() = default;

void PrefsViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    notifications_.addObserver(*this, "lblUpdate", [this] { setAppNameLabelText(); });
    prefTable.setContentInset({0, 0, 0, 30});
    prefs = std::make_unique<PropertyList>(
        dictionaryWithContentsOfFile(platform().files, settingsFilePath)
            .value_or(PropertyList::dictionary()));
    al = &platform().applications;

    const PropertyList& stored = *prefs;
    const auto component = [&stored](std::string_view key) {
        const auto value = stored.valueForKey(key);
        return value ? value->floatValue() : 0.0F;
    };
    const bool customColor = toggle(stored.valueForKey("customColorToggle"));
    const bool customName = toggle(stored.valueForKey("customNameToggle"));
    colorView.setHidden(!customColor);
    colorCell.setHidden(!customColor);
    textfieldCell.setHidden(!customName);
    sharedClass = std::make_unique<DXShared>(platform().files, platform().log);
    appNameLabel.setText(stored.hasKey("appName") ? displayed(stored.stringForKey("appName"))
                                                  : QStringLiteral(" "));
    colorView.setBackgroundColor(
        QColor::fromRgbF(component("Red"), component("Green"), component("Blue")));
    customNameSwitch.setOn(customName);
    customColorSwitch.setOn(customColor);
    textField.setText(displayed(stored.stringForKey("customText")));
    textField.setReturnKey(TextField::ReturnKey::Done);
}

int PrefsViewController::tableViewNumberOfRowsInSection(int section) const {
    constexpr std::array rows = {1, 2, 3, 1, 1};
    return section >= 0 && section < static_cast<int>(rows.size())
               ? rows[static_cast<std::size_t>(section)]
               : 0;
}

bool PrefsViewController::storedToggle(std::string_view key) const {
    return sharedClass && toggle(sharedClass->retrieveValueForKey(key));
}

double PrefsViewController::tableViewHeightForRowAtIndexPath(int section, int row) const {
    const bool customName = storedToggle("customNameToggle");
    const bool customColor = storedToggle("customColorToggle");
    if (section == 1 && row == 1 && !customName)
        return 0;
    if (section == 2 && (row == 1 || row == 2) && !customColor)
        return 0;
    return section == 2 && row == 2 ? 16 : 44;
}

void PrefsViewController::tableViewDidSelectRowAtIndexPath(int section, int row) {
    platform().log.log(
        stringWithFormat("\nindexPath.row %ld \nindex.section %ld \n", row, section));
    prefTable.selectRow(section, row);
    if (section == 0 && row == 0) {
        SelectAppTapped();
    } else if (section == 2 && row == 1) {
        selectColorTapped();
    } else if (section == 3 && row == 0) {
        showDuplicateAlert();
        prefTable.deselectRow(false);
    } else if (section == 4 && row == 0) {
        showUpdateAlert();
        prefTable.deselectRow(false);
    }
}

void PrefsViewController::nameSwitchChanged(bool on) {
    platform().log.log(on ? "Custom Name ON" : "Custom Name OFF");
    customNameSwitch.setOn(on);
    textfieldCell.setHidden(!on);
    prefTable.reloadData();
    sharedClass->addKey("customNameToggle", PropertyList::boolean(on));
}

void PrefsViewController::colorSwitchChanged(bool on) {
    platform().log.log(on ? "Custom Color ON" : "Custom Color OFF");
    customColorSwitch.setOn(on);
    colorCell.setHidden(!on);
    colorView.setHidden(!on);
    prefTable.reloadData();
    sharedClass->addKey("customColorToggle", PropertyList::boolean(on));
}

void PrefsViewController::textFieldChanged(const QString& text) {
    textField.setText(text);
    sharedClass->addKey("customText", PropertyList::string(text.toStdString()));
}

bool PrefsViewController::textFieldShouldReturn() {
    Q_EMIT textField.editingEnded();
    return false;
}

void PrefsViewController::SelectAppTapped() {
    auto picker = std::make_unique<AppListSampleViewController>(platform(), notifications_);
    presentViewController(std::make_unique<NavigationController>(std::move(picker)), true);
}

void PrefsViewController::setAppNameLabelText() {
    const auto name = sharedClass->retrieveValueForKey("appName");
    appNameLabel.setText(displayed(name ? name->stringValue() : std::nullopt));
}

void PrefsViewController::workingChanged(bool working) {
    if (modalStack())
        modalStack()->setSuspended(working);
}

void PrefsViewController::viewWillAppear() {
    prefTable.deselectRow(true);
}

} // namespace dubrix
