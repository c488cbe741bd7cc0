#include "platform/desktop/DesktopUrlOpener.h"
#include "tests/support/RegisteredBundles.h"

#include <QDesktopServices>
#include <QObject>
#include <QUrl>

namespace dubrix {

/// Stands for the desktop's opener of what must be opened, or not.
class Desktop : public QObject {
    Q_OBJECT

public:
    Desktop() {
        for (const char* scheme : {"mailto", "file"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
    }
    Q_SLOT void open(const QUrl& url) { opened += url.toEncoded().toStdString() + "\n"; }

    std::string opened;
};

namespace {

TEST(DesktopUrlOpener, OpensWhatTheDesktopOrAnApplicationOpensIfItIsHarmless) {
    const TemporaryFolder device;
    const Registry registry(device.path());
    makeFoldersOf(registry);
    enterBundle(registry, "com.example.bird", "Bird",
                "CFBundleURLTypes = ({CFBundleURLSchemes = (Bird, bird2, b, \"\");});");
    putFile(device / "Applications/Settings.app/Info.plist",
            "{CFBundleURLTypes = ({CFBundleURLSchemes = (prefs);});}");

    DesktopUrlOpener opener(device.path(), [](const std::string& at) { ADD_FAILURE() << at; });
    for (const char* address :
         {"http://example.org/", "HTTPS://example.org/", "mailto:a@example.org",
          "bird:", "BIRD://user", "bird2:", "b:", "prefs:root"})
        EXPECT_TRUE(opener.canOpenURL(address)) << address;
    for (const char* address : {"", ":", "bird", "bir:", "bird3:", "file:///etc/passwd", "x bird:"})
        EXPECT_FALSE(opener.canOpenURL(address)) << address;
    ASSERT_TRUE(registry.strike("com.example.bird"));
    EXPECT_FALSE(opener.canOpenURL("bird:")) << "the application is gone";

    const Desktop desktop;
    for (const char* address : {"mailto:a@b?attach=/etc/passwd", "file:///etc/passwd",
                                "mailto:support%40example.org?subject=A%20(1.2)"})
        opener.openURL(address);
    EXPECT_EQ(desktop.opened, "mailto:support%40example.org?subject=A%20(1.2)\n");
}

} // namespace
} // namespace dubrix

#include "DesktopUrlOpenerTest.moc"
