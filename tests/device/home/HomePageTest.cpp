#include "device/home/HomePage.h"
#include "device/home/HomeScreen.h"
#include "tests/device/DeviceFolder.h"
#include "windows/WindowPlace.h"

#include <QGuiApplication>
#include <QSignalSpy>

namespace dubrix {

namespace {

class HomeDevice : public testing::Test {
protected:
    HomeDevice() {
        for (const auto place : {Registry::applicationPath, Registry::registryPath})
            std::filesystem::create_directories(registry.hostPath(place));
    }

    /// `more` are further entries of the Info.plist in old-style text.
    void install(const std::string& name, const std::string& more = "") {
        const std::string path = std::string(Registry::applicationPath) + "/" + name + "/It.app";
        putFile(registry.hostPath(path) / "Info.plist",
                "{CFBundleDisplayName = \"" + name + "\"; " + more + "}");
        ASSERT_TRUE(static_cast<bool>(registry.enter("com.example." + name, path)));
    }
    void remove(const std::string& name) {
        ASSERT_TRUE(static_cast<bool>(registry.strike("com.example." + name)));
    }
    /// Waits for the file system's word, as the window does.
    static void expectChange(HomeApplications& applications) {
        QSignalSpy spy(&applications, &HomeApplications::changed);
        EXPECT_TRUE(spy.wait(10000));
    }
    /// "slot:name" of each row, in the rows' order; + for arriving and - for leaving ones.
    static QString rows(const HomePage& page) {
        QStringList rows;
        for (int row = 0; row < page.rowCount(); ++row) {
            const QModelIndex index = page.index(row);
            rows += QStringLiteral("%1:%2%3%4")
                        .arg(page.data(index, HomePage::SlotRole).toInt())
                        .arg(page.data(index, HomePage::NameRole).toString(),
                             page.data(index, HomePage::ArrivingRole).toBool() ? "+" : "",
                             page.data(index, HomePage::LeavingRole).toBool() ? "-" : "");
        }
        return rows.join(u' ');
    }

    DeviceFolder device;
    Registry registry = device.registry();
};

} // namespace

TEST_F(HomeDevice, ShowsWhatIsInstalledWhereItBelongs) {
    install("Notes10");
    install("Notes2");
    install("apples");
    install("Hidden", "SBAppTags = (hidden);");
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

    remove("apples");
    expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples- 0:Bells+ 1:Notes2");
    EXPECT_EQ(rows(second), "0:Notes10");
    install("apples"); // back before it has left the screen
    expectChange(applications);
    first.gone("com.example.apples");
    second.setPage(-1); // on its way out
    EXPECT_EQ(rows(second), "");
    EXPECT_EQ(rows(first), "0:apples+ 1:Bells+");

    for (const char* name : {"apples", "Bells", "Notes2", "Notes10"})
        remove(name);
    while (applications.count() > 0)
        expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples+- 1:Bells+-");
}

TEST_F(HomeDevice, FindsARegistryThatIsMadeLater) {
    std::filesystem::remove_all(registry.hostPath(Registry::registryPath));
    HomeApplications applications(device.root());
    expectChange(applications);
    EXPECT_EQ(applications.count(), 0);
    std::filesystem::create_directories(registry.hostPath(Registry::registryPath));
    install("Late");
    while (applications.count() == 0)
        expectChange(applications);
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
    EXPECT_EQ(HomeScreen::walk(Qt::Key_End, 0, 0, 2, 2), 0);
    EXPECT_EQ(HomeScreen::walk(Qt::Key_Left, 0, 0, 0, 0), -1);
}

TEST(WindowPlace, PutsTwoWindowsBesideEachOtherWhereverThereIsRoom) {
    const QSize wanted(390, 760);
    const struct {
        QRect available;
        QSize size;
    } cases[] = {
        {{100, 30, 1280, 900}, wanted},  {{0, 0, 1366, 768}, {390, 720}},
        {{0, 0, 1280, 800}, {390, 752}}, {{0, 0, 800, 600}, {380, 552}},
        {{0, 0, 720, 450}, {340, 402}},  {{64, 0, 640, 480}, {300, 432}},
    };
    for (const auto& [available, size] : cases) {
        const auto left = placeBeside(available, wanted, Side::Left);
        const auto right = placeBeside(available, wanted, Side::Right);
        ASSERT_TRUE(left && right) << available.width();
        EXPECT_EQ(left->size(), size);
        EXPECT_EQ(right->size(), size);
        EXPECT_GE(right->left() - left->right(), 8) << "borders between";
        EXPECT_NEAR(left->left() - available.left(), available.right() - right->right(), 1);
        // With their title bars.
        EXPECT_TRUE(available.contains(left->adjusted(-8, -40, 0, 8)));
        EXPECT_TRUE(available.contains(right->adjusted(0, -40, 8, 8)));
    }
    EXPECT_FALSE(placeBeside({0, 0, 639, 480}, wanted, Side::Left));
    EXPECT_FALSE(placeBeside({0, 0, 640, 407}, wanted, Side::Left));
}

} // namespace dubrix
