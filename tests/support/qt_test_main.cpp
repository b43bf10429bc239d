#include <QApplication>
#include <QStyleFactory>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

// Widgets need an application object. Unless the environment chooses another platform, the tests
// run offscreen, which needs no display and looks the same everywhere.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
