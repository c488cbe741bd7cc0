#include "device/home/HomePage.h"

#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "tests/device/home/HomeDevice.h"

#include <QGuiApplication>
#include <QSignalSpy>

namespace dubrix {

class HomePageTest : public HomeDevice {
protected:
    /// Waits for the file system's word, as the window does.
    static void expectChange(HomeApplications& applications) {
        QSignalSpy spy(&applications, &HomeApplications::changed);
        EXPECT_TRUE(spy.wait(10000));
    }
    /// "slot:name" of each row, in the rows' order; + for arriving and - for leaving ones.
    static QString rows(const HomePage& page) {
        QStringList rows;
        for (int row = 0; row < page.rowCount(); ++row) {
            const auto value = [&](int role) { return page.data(page.index(row), role); };
            rows += value(HomePage::SlotRole).toString() + ":" +
                    value(HomePage::NameRole).toString() +
                    (value(HomePage::ArrivingRole).toBool() ? "+" : "") +
                    (value(HomePage::LeavingRole).toBool() ? "-" : "");
        }
        return rows.join(u' ');
    }
};

TEST_F(HomePageTest, ShowsWhatIsInstalledWhereItBelongs) {
    for (const char* name : {"Notes10", "Notes2", "apples"})
        install(name);
    install("Hidden", "SBAppTags = (hidden);");
    putFile(device.root() / "Applications/S.app/Info.plist", "{CFBundleIdentifier = system;}");
    HomeApplications applications(device.root());
    HomePage first;
    HomePage second;
    int number = 0;
    for (HomePage* page : {&first, &second}) {
        page->setApplications(&applications);
        page->setPage(number++);
        page->setCapacity(2);
    }
    expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples 1:Notes2");
    EXPECT_EQ(rows(second), "0:Notes10");

    install("Bells"); // pushes one to the next page, where it is not new
    expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples 1:Bells+");
    EXPECT_EQ(rows(second), "0:Notes2 1:Notes10");

    strike("apples");
    expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples- 0:Bells+ 1:Notes2");
    EXPECT_EQ(rows(second), "0:Notes10");
    install("apples"); // back before it has left the screen
    expectChange(applications);
    first.gone("com.example.Bells"); // which is not leaving
    EXPECT_TRUE(rows(first).contains("apples-"));
    first.gone("com.example.apples");
    second.setPage(-1); // on its way out
    EXPECT_EQ(rows(second), "");
    EXPECT_EQ(rows(first), "0:apples+ 1:Bells+");

    for (const char* name : {"apples", "Bells", "Notes2", "Notes10"})
        strike(name);
    for (int changes = 0; applications.count() > 0 && changes < 4; ++changes)
        expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples+- 1:Bells+-");
}

TEST_F(HomePageTest, FindsARegistryThatIsMadeLater) {
    std::filesystem::remove_all(registry.hostPath(Registry::registryPath));
    HomeApplications applications(device.root());
    expectChange(applications);
    EXPECT_EQ(applications.count(), 0);
    std::filesystem::create_directories(registry.hostPath(Registry::registryPath));
    install("Late");
    for (int changes = 0; applications.count() == 0 && changes < 4; ++changes)
        expectChange(applications);
    EXPECT_EQ(applications.count(), 1);
    HomeScreen alone(applications, nullptr, "/");
    alone.save("com.example.Late");
    EXPECT_TRUE(alone.remark().startsWith("This is only possible when the launcher"));
}

TEST(HomeScreen, KeysWalkInReadingOrder) {
    // Seven icons on pages of two rows of two: 0 1 / 2 3 | 4 5 / 6.
    const struct {
        int key;
        int from;
        int to;
    } cases[] = {
        {Qt::Key_Left, 0, 0},   {Qt::Key_Left, 4, 3},     {Qt::Key_Right, 3, 4},
        {Qt::Key_Right, 6, 6},  {Qt::Key_Up, 1, 1},       {Qt::Key_Up, 3, 1},
        {Qt::Key_Up, 4, 4},     {Qt::Key_Down, 2, 2},     {Qt::Key_Down, 4, 6},
        {Qt::Key_Down, 5, 5},   {Qt::Key_PageDown, 1, 5}, {Qt::Key_PageDown, 3, 6},
        {Qt::Key_PageUp, 6, 2}, {Qt::Key_PageUp, 1, 0},   {Qt::Key_Home, 6, 0},
        {Qt::Key_End, 0, 6},    {Qt::Key_A, 3, -1},
    };
    for (const auto& each : cases)
        EXPECT_EQ(HomeScreen::walk(each.key, each.from, 7, 2, 2), each.to)
            << each.key << " from " << each.from;
    EXPECT_EQ(HomeScreen::walk(Qt::Key_Right, 0, 0, 2, 2), 0);
    EXPECT_EQ(HomeScreen::walk(Qt::Key_Left, 0, 0, 0, 0), -1);
}

TEST(Wallpaper, HasAGlowInASkyOfItsAppearance) {
    for (const bool dark : {false, true}) {
        QSize size;
        const QImage image = Wallpaper().requestImage(dark ? "dark" : "light", &size, {});
        ASSERT_EQ(size, image.size());
        const auto light = [&](int x, int y) { return qGray(image.pixel(x, y)); };
        EXPECT_EQ(light(500, 0) < 128, dark);
        EXPECT_GT(light(640, 420), light(100, 420) + 5);
    }
}

} // namespace dubrix
