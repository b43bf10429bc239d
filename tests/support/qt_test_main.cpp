#include <QApplication>
#include <QStyleFactory>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

// Widgets need an application before the first of them is built. Without a word to the contrary
// nothing appears on a screen, so the tests run anywhere and look the same everywhere.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
