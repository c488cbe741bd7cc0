#include <QGuiApplication>
#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
