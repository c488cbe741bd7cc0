#include "platform/desktop/DesktopUrlOpener.h"
#include "tests/support/TemporaryFolder.h"

#include <QDesktopServices>
#include <QObject>
#include <QUrl>

namespace dubrix {

/// Stands for the desktop's opener of one scheme.
class Desktop : public QObject {
    Q_OBJECT

public:
    explicit Desktop(const QString& scheme) : scheme_(scheme) {
        QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~Desktop() override { QDesktopServices::unsetUrlHandler(scheme_); }

    Q_SLOT void open(const QUrl& url) { opened += url.toEncoded().toStdString() + "\n"; }

    std::string opened;

private:
    QString scheme_;
};

namespace {

TEST(DesktopUrlOpener, OpensWhatTheDesktopOrAnInstalledApplicationOpens) {
    const TemporaryFolder device;
    const std::string bundle = "/var/containers/Bundle/Application/1/Bird.app";
    putFile(device.path() / bundle.substr(1) / "Info.plist",
            "{CFBundleIdentifier = \"com.example.bird\"; CFBundleURLTypes = "
            "({CFBundleURLSchemes = (Bird, bird2, b, \"\");});}");
    putFile(device / "Applications/Settings.app/Info.plist",
            "{CFBundleURLTypes = ({CFBundleURLSchemes = (prefs);});}");
    const Registry registry(device.path());
    ASSERT_TRUE(std::filesystem::create_directories(device / "var/containers/Bundle/Registry"));
    ASSERT_TRUE(registry.enter("com.example.bird", bundle));

    const DesktopUrlOpener opener(device.path());
    for (const char* address :
         {"http://example.org/", "HTTPS://example.org/", "mailto:a@example.org",
          "bird:", "BIRD://user", "bird2:", "b:", "prefs:root"})
        EXPECT_TRUE(opener.canOpenURL(address)) << address;
    for (const char* address : {"", ":", "bird", "bir:", "bird3:", "file:///etc/passwd", "x bird:"})
        EXPECT_FALSE(opener.canOpenURL(address)) << address;
    ASSERT_TRUE(registry.strike("com.example.bird"));
    EXPECT_FALSE(opener.canOpenURL("bird:")) << "the application is gone";
}

TEST(DesktopUrlOpener, HandsOnlyHarmlessAddressesToTheDesktop) {
    DesktopUrlOpener opener("/none");
    Desktop mail(QStringLiteral("mailto"));
    Desktop file(QStringLiteral("file"));
    for (const char* address : {"mailto:a@b?attach=/etc/passwd", "file:///etc/passwd",
                                "mailto:support%40example.org?subject=A%20(1.2)"})
        opener.openURL(address);
    EXPECT_EQ(mail.opened, "mailto:support%40example.org?subject=A%20(1.2)\n");
    EXPECT_EQ(file.opened, "");
}

} // namespace
} // namespace dubrix

#include "DesktopUrlOpenerTest.moc"
