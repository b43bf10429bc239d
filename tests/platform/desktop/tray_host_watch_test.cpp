#include "platform/desktop/tray_host_watch.h"

#include <chrono>

#include <QDBusConnection>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr auto trayName = "org.kde.StatusNotifierWatcher";
constexpr int patience = 20'000;
constexpr std::chrono::milliseconds shortGrace{50};

/// The test's own tray, on a bus of its own: the first session bus that Qt is asked for stays the
/// process's only one, so every case starts from the same.
class Tray {
public:
    Tray() : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, "tray")) {}
    ~Tray() { QDBusConnection::disconnectFromBus("tray"); }

    bool appear() { return bus_.registerService(trayName); }
    bool leave() { return bus_.unregisterService(trayName); }

private:
    QDBusConnection bus_;
};

class TrayHostWatchTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        bus = new QProcess;
        bus->start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address=1",
                                   "--address=unix:tmpdir=/tmp"});
        ASSERT_TRUE(bus->waitForReadyRead(patience)) << bus->errorString().toStdString();
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->readLine().trimmed());
    }
    static void TearDownTestSuite() {
        bus->kill();
        bus->waitForFinished(patience);
        delete bus;
    }

    static inline QProcess* bus = nullptr;
};

TEST_F(TrayHostWatchTest, OneThatNeverWasIsNotLost) {
    TrayHostWatch watch(nullptr, shortGrace);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    EXPECT_FALSE(lost.wait(100));
    EXPECT_FALSE(watch.isLost());
}

TEST_F(TrayHostWatchTest, OneThatLeavesIsLostAfterAGraceAndFoundAgain) {
    Tray tray;
    ASSERT_TRUE(tray.appear());
    TrayHostWatch watch(nullptr, shortGrace);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    ASSERT_TRUE(tray.leave());
    ASSERT_TRUE(lost.wait(patience));
    EXPECT_TRUE(watch.isLost());
    ASSERT_TRUE(tray.appear());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !watch.isLost(); }, patience));
    EXPECT_EQ(lost.count(), 1);
}

TEST_F(TrayHostWatchTest, OneThatIsBackInTimeWasNeverGone) {
    Tray tray;
    ASSERT_TRUE(tray.appear());
    TrayHostWatch watch(nullptr, shortGrace);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    ASSERT_TRUE(tray.leave());
    ASSERT_TRUE(tray.appear());
    EXPECT_FALSE(lost.wait(1000));
    EXPECT_FALSE(watch.isLost());
}

// Last, as nothing comes back to this process afterwards.
TEST_F(TrayHostWatchTest, TheEndOfTheBusIsTheEndOfTheTray) {
    TrayHostWatch watch(nullptr, shortGrace);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    bus->kill();
    ASSERT_TRUE(lost.wait(patience));
    EXPECT_TRUE(watch.isLost());
    EXPECT_EQ(lost.count(), 1);
}

}  // namespace
}  // namespace tallowcrest
