#include "controls/Appearance.h"
#include "controls/ApplicationIconProvider.h"
#include "overlays/ProgressHUD.h"
#include "screens/containers/TemplateImageProvider.h"
#include "tests/screens/WholeWindow.h"

namespace dubrix {

/// What is seen of the window.
class LookTest : public WholeWindow {
protected:
    /// Everything below the window that is drawn.
    template<typename Look>
    static void eachDrawn(const QQuickItem* item, const Look& look) {
        if (!item->isVisible() || item->opacity() == 0)
            return;
        look(*item);
        for (const QQuickItem* child : item->childItems())
            eachDrawn(child, look);
    }
    /// Words that do not stand whole in the window.
    QStringList cut() const {
        EXPECT_TRUE(settled());
        QStringList cut;
        eachDrawn(window->contentItem(), [&](const QQuickItem& item) {
            const QRectF place = item.mapRectToScene({0, 0, item.width(), item.height()});
            if (item.inherits("QQuickText") && place.bottom() > 0 &&
                place.top() < window->height() &&
                (item.property("truncated").toBool() || place.left() < 0 ||
                 place.right() > window->width()))
                cut << item.property("text").toString();
        });
        return cut;
    }
};

TEST_F(LookTest, TheSelectedTabHasTheFullerImage) {
    /// How much of each tab's image is covered.
    const auto ink = [this] {
        std::vector<double> sums;
        eachDrawn(window->contentItem(), [&](const QQuickItem& item) {
            if (!item.inherits("QQuickImage") || !item.parentItem()->property("tint").isValid())
                return;
            const QString source = item.property("source").toUrl().path().mid(1);
            const QImage image = TemplateImageProvider().requestImage(source, nullptr, {25, 25});
            sums.push_back(0);
            for (int dot = 0; dot < image.width() * image.height(); ++dot)
                sums.back() += image.pixelColor(dot % image.width(), dot / image.width()).alphaF();
        });
        return sums;
    };
    for (int tab = 0; tab < 3; ++tab) {
        root->setSelectedIndex(tab);
        const double selected = ink().at(tab);
        root->setSelectedIndex((tab + 1) % 3);
        EXPECT_GT(ink().at(tab), 20) << tab;
        EXPECT_GT(selected, 1.1 * ink().at(tab)) << tab;
    }
    for (const auto& item : root->items()) {
        EXPECT_EQ(item->image.renderingMode, TemplateImage::RenderingMode::AlwaysTemplate);
        EXPECT_EQ(item->selectedImage.renderingMode, item->image.renderingMode);
    }
    EXPECT_EQ(delegate.applicationSupportedInterfaceOrientationsForWindow(), 30U) << "all four";
}

/// Without movement, and with type of this size: 20 is for a person who sees badly.
template<int points = 11>
struct Still {
    Still() { choose(true, points); }
    ~Still() { choose(false, 11); }
    static void choose(bool still, int size) {
        chooseMotion(still);
        QFont font = QGuiApplication::font();
        font.setPointSize(size);
        QGuiApplication::setFont(font);
    }
};

class LargeTypeTest : private Still<20>, public LookTest {};

TEST_F(LargeTypeTest, NoWordsAreCutInTheSmallestWindow) {
    EXPECT_GT(window->minimumWidth(), 500);
    window->resize(window->minimumSize());
    QCoreApplication::processEvents();
    EXPECT_EQ(cut(), QStringList());
    for (const char* row : {"Application", "Select color", "Duplicate"}) {
        itemOf(row)->forceActiveFocus();
        key(Qt::Key_Return);
        ASSERT_TRUE(modals.topmost()) << row;
        EXPECT_EQ(cut(), QStringList()) << row;
        key(Qt::Key_Escape);
        ASSERT_TRUE(alone());
    }
    click("About");
    EXPECT_EQ(cut(), QStringList());
}

class StillTest : private Still<>, public LookTest {};

TEST_F(StillTest, WhatComesIsThereAtOnceAndGoesInItsTime) {
    prefs().showSimpleAlertWithTitle("T", "M", "Ok");
    EXPECT_TRUE(rested());
    click("Ok");
    ASSERT_TRUE(alone());
    click("Application");
    EXPECT_TRUE(rested()) << "a sheet";

    ProgressHUD::show("Done");
    const auto isDrawn = [this](const QQuickItem& item) {
        return item.isVisible() && item.opacity() == stage.hud()->alpha() &&
               item.scale() == stage.hud()->scale();
    };
    const QQuickItem& box = *itemOf("Done")->parentItem();
    EXPECT_TRUE(isDrawn(box) && box.opacity() == 1);
    ProgressHUD::dismiss();
    EXPECT_TRUE(isDrawn(box) && box.opacity() == 0);
    EXPECT_TRUE(stage.hud()->shown()) << "its time is the overlay's own";
    EXPECT_TRUE(QTest::qWaitFor([this] { return !stage.hud()->shown(); }));
}

// The overlay's label is as large as its text was measured.
TEST_F(StillTest, WhatTheOverlaySaysFitsIntoItsMeasure) {
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.mainScreenBounds().size.width > 0; }));
    for (const char* text :
         {"Tockwell successfully duplicated.", "Please wait...",
          "Cloning Fernleaf Notes 1\nPlease wait...", "ill will, ill wit",
          "Donaudampfschifffahrtsgesellschaft successfully duplicated.", "AVAVAV WAWAWA To Ty",
          "Ein Name mit Ümläuten, der länger als eine Zeile ist."}) {
        ProgressHUD::show(text);
        EXPECT_EQ(stage.spinner()->width(), 37) << "above the words";
        EXPECT_GT(stage.label()->y(), stage.spinner()->y() + 37);
        int seen = 0;
        eachDrawn(window->contentItem(), [&](const QQuickItem& item) {
            if (!item.inherits("QQuickText") || item.property("text") != QString(text))
                return;
            ++seen;
            EXPECT_FALSE(item.property("truncated").toBool()) << text;
            EXPECT_LE(item.property("contentWidth").toDouble(), item.width()) << text;
            EXPECT_GE(item.property("contentWidth").toDouble(), item.width() - 4) << text;
        });
        EXPECT_EQ(seen, 1) << text;
    }
}

TEST(Icons, AreDrawnRoundKeptAndGreyWhereThereIsNone) {
    int asked = 0;
    ApplicationIconProvider provider([&](const std::string& path, unsigned) {
        ++asked;
        std::optional<RgbaImage> picture;
        if (path.ends_with("red"))
            picture.emplace(40, 20);
        for (std::size_t byte = 0; picture && byte < 40 * 20 * 4; ++byte)
            picture->bytes[byte] = byte % 4 == 0 || byte % 4 == 3 ? 255 : 0;
        return picture;
    });
    const QImage red = provider.icon("/red", 58);
    EXPECT_EQ(red.size(), QSize(58, 58));
    EXPECT_EQ(red.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(red.pixelColor(29, 29), QColor(255, 0, 0));
    EXPECT_EQ(provider.icon("/red", 58), red);
    EXPECT_EQ(asked, 1);
    const QImage none =
        provider.icon("/none", 60).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_LT(none.pixelColor(0, 0).hslSaturationF(), 0.2F) << "grey, unlike our own";
}

} // namespace dubrix
