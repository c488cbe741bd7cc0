#pragma once

#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "engine/DXShared.h"
#include "screens/Outlets.h"
#include "screens/ViewController.h"
#include "screens/colors/QZColorPickerViewControllerDelegate.h"

#include <QPointer>
#include <memory>

namespace dubrix {

class AlertController;
class NotificationCenter;

/// The main screen: the table of settings and actions from which every duplication starts. It is
/// the clone engine, too: the engine's operations live as long as the screen.
class PrefsViewController : public ViewController,
                            public CloneEngine,
                            public QZColorPickerViewControllerDelegate,
                            private Alerts {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(dubrix::TableView* prefTable READ prefTableOutlet CONSTANT)
    Q_PROPERTY(dubrix::View* headerView READ headerViewOutlet CONSTANT)
    Q_PROPERTY(dubrix::TableViewCell* colorCell READ colorCellOutlet CONSTANT)
    Q_PROPERTY(dubrix::TableViewCell* colorView READ colorViewOutlet CONSTANT)
    Q_PROPERTY(dubrix::Label* appNameLabel READ appNameLabelOutlet CONSTANT)
    Q_PROPERTY(dubrix::SwitchControl* customNameSwitch READ customNameSwitchOutlet CONSTANT)
    Q_PROPERTY(dubrix::SwitchControl* customColorSwitch READ customColorSwitchOutlet CONSTANT)
    Q_PROPERTY(dubrix::TableViewCell* textfieldCell READ textfieldCellOutlet CONSTANT)
    Q_PROPERTY(dubrix::TextField* textField READ textFieldOutlet CONSTANT)

public:
    PrefsViewController(const Platform& platform, NotificationCenter& notifications);
    ~PrefsViewController() override;

    QString layout() const override { return QStringLiteral("PrefsView.qml"); }

    /// Five sections with 1, 2, 3, 1 and 1 rows; 0 rows for any other section.
    Q_INVOKABLE int numberOfSectionsInTableView() const { return 5; }
    Q_INVOKABLE int tableViewNumberOfRowsInSection(int section) const;
    /// In points; 0 for a row that its switch hides. The switches' values are read from the store.
    Q_INVOKABLE double tableViewHeightForRowAtIndexPath(int section, int row) const;
    Q_INVOKABLE void tableViewDidSelectRowAtIndexPath(int section, int row);

    Q_INVOKABLE void nameSwitchChanged(bool on);
    Q_INVOKABLE void colorSwitchChanged(bool on);
    Q_INVOKABLE void textFieldChanged(const QString& text);
    /// Gives up the keyboard; false: the return key inserts nothing.
    Q_INVOKABLE bool textFieldShouldReturn();

    /// Presents a colour picker that marks the swatch's colour.
    void selectColorTapped();
    QString titleForColorPicker(QZColorPickerViewController& colorPicker) override;
    /// Stores "Red", "Green" and "Blue" and shows the colour in the swatch; its alpha is not kept.
    void colorPickerDidSelectColor(QZColorPickerViewController& colorPicker,
                                   const Color& didSelectColor) override;
    void colorPiclerDidCancel(QZColorPickerViewController& colorPicker) override;

    /// Presents the application picker.
    void SelectAppTapped();
    /// Shows the store's current "appName"; what "lblUpdate" is observed with.
    void setAppNameLabelText();

    void viewWillAppear() override;

    void showSimpleAlertWithTitle(const Text& title, const Text& message,
                                  const std::string& okText) override;
    void show2ButtonAlertWithTitle(const Text& title, const Text& message,
                                   const std::string& okButton, const std::string& cancelButton,
                                   AlertBlock cancelBlock, AlertBlock okBlock) override;
    void show3ButtonAlertWithTitle(const Text& title, const Text& message,
                                   const std::string& firstButton, const std::string& secondButton,
                                   const std::string& cancelButton, AlertBlock firstBlock,
                                   AlertBlock secondBlock) override;

    TableView prefTable;
    View headerView;
    TableViewCell colorCell;
    TableViewCell colorView;
    Label appNameLabel;
    SwitchControl customNameSwitch;
    SwitchControl customColorSwitch;
    TableViewCell textfieldCell;
    TextField textField;
    /// Made when the view loads.
    std::unique_ptr<DXShared> sharedClass;
    /// The settings as they were when the view loaded; used only to set up the controls.
    std::unique_ptr<const PropertyList> prefs;

protected:
    void viewDidLoad() override;
    void workingChanged(bool working) override;

private:
    struct Button {
        std::string title;
        AlertBlock block;
    };

    void presentProgressAlert(const ProgressAlert& alert) override;
    void dismissProgressAlert() override;
    Size mainViewSize() const override;
    void presentAlert(const Text& title, const Text& message, std::vector<Button> buttons,
                      int cancelButton = -1);
    bool storedToggle(std::string_view key) const;

    TableView* prefTableOutlet() { return &prefTable; }
    View* headerViewOutlet() { return &headerView; }
    TableViewCell* colorCellOutlet() { return &colorCell; }
    TableViewCell* colorViewOutlet() { return &colorView; }
    Label* appNameLabelOutlet() { return &appNameLabel; }
    SwitchControl* customNameSwitchOutlet() { return &customNameSwitch; }
    SwitchControl* customColorSwitchOutlet() { return &customColorSwitch; }
    TableViewCell* textfieldCellOutlet() { return &textfieldCell; }
    TextField* textFieldOutlet() { return &textField; }

    NotificationCenter& notifications_;
    QPointer<AlertController> progressAlert_;
};

} // namespace dubrix
