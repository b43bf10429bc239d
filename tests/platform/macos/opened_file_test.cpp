// The way in which macOS opens a file, with a handler of Qt in the place of that system.

#include <memory>
#include <optional>
#include <string>

#include <QDesktopServices>
#include <QList>
#include <QObject>
#include <QUrl>
#include <gtest/gtest.h>

#include "platform/desktop_services.h"
#include "tests/platform/desktop/turn_until.h"

namespace tallowcrest {
namespace {

class OpenFileOfMac : public QObject, public testing::Test {
    Q_OBJECT

public slots:
    void take(const QUrl& address) { taken.append(address); }

protected:
    OpenFileOfMac() { QDesktopServices::setUrlHandler("file", this, "take"); }
    ~OpenFileOfMac() override { QDesktopServices::unsetUrlHandler("file"); }

    void open() {
        opening = desktop::openFile("/tmp/an image é.dmg", [this](bool isOpened) {
            EXPECT_FALSE(told) << "told twice";
            told = isOpened;
        });
    }

    QList<QUrl> taken;
    std::optional<bool> told;
    std::unique_ptr<FileOpening> opening;
};

TEST_F(OpenFileOfMac, IsToldOnTheNextTurn) {
    open();
    EXPECT_EQ(taken, QList{QUrl("file:///tmp/an image é.dmg")});
    EXPECT_EQ(told, std::nullopt);
    EXPECT_TRUE(turnUntil([this] { return told.has_value(); }));
    EXPECT_EQ(told, true);
}

TEST_F(OpenFileOfMac, IsNotOpenedWhereNothingOpensIt) {
    QDesktopServices::unsetUrlHandler("file");
    open();
    EXPECT_TRUE(turnUntil([this] { return told.has_value(); }));
    EXPECT_EQ(told, false);
}

TEST_F(OpenFileOfMac, IsNotToldToOneThatIsGone) {
    open();
    opening.reset();
    bool hasTurned = false;
    QMetaObject::invokeMethod(
        this, [&] { hasTurned = true; }, Qt::QueuedConnection);
    EXPECT_TRUE(turnUntil([&] { return hasTurned; }));
    EXPECT_EQ(told, std::nullopt);
}

}  // namespace
}  // namespace tallowcrest

#include "opened_file_test.moc"
