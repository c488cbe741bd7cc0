#include "screens/overlay/QuickOverlayStage.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <gtest/gtest.h>
#include <memory>

namespace dubrix {

// The overlay's label is as large as its text was measured: the layout's Text must fit into that.
TEST(OverlayText, FitsIntoItsMeasure) {
    QQmlEngine engine;
    QQmlComponent label(&engine);
    label.setData("import QtQuick\n"
                  "Text { font.pixelSize: 16; font.bold: true; wrapMode: Text.Wrap\n"
                  "       elide: Text.ElideRight; textFormat: Text.PlainText }",
                  {});
    QuickOverlayStage stage;
    for (const char* text :
         {"Tockwell successfully duplicated.", "Fernleaf Notes successfully duplicated.",
          "Please wait...", "Failed to duplicate Skyfathom.", "two\nlines", "ill will, ill wit",
          "Donaudampfschifffahrtsgesellschaft successfully duplicated.", "AVAVAV WAWAWA To Ty",
          "Ein Name mit Ümläuten, der länger als eine Zeile ist."}) {
        const Size size = stage.measureText(text, {.pointSize = 16, .bold = true}, {200, 300});
        const std::unique_ptr<QObject> item(label.createWithInitialProperties(
            {{"width", size.width}, {"height", size.height}, {"text", QString::fromUtf8(text)}}));
        ASSERT_TRUE(item) << label.errorString().toStdString();
        EXPECT_FALSE(item->property("truncated").toBool())
            << text << " measured " << size.width << " x " << size.height << ", needs "
            << item->property("contentWidth").toDouble() << " x "
            << item->property("contentHeight").toDouble();
        EXPECT_LE(size.width, 200);
        EXPECT_LE(item->property("contentWidth").toDouble(), size.width) << text;
        EXPECT_GE(item->property("contentWidth").toDouble(), size.width - 4) << text;
    }
}

} // namespace dubrix
