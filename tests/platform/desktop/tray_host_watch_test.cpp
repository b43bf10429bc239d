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
constexpr int timeout = 20'000;
constexpr std::chrono::milliseconds shortGracePeriod{50};

/// A fake tray. All tests use one bus, because Qt keeps the first session bus for the lifetime of
/// the process.
class Tray {
public:
    Tray() : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, "tray")) {}
    ~Tray() { QDBusConnection::disconnectFromBus("tray"); }

    bool appear() { return bus_.registerService(trayName); }
    bool disappear() { return bus_.unregisterService(trayName); }

private:
    QDBusConnection bus_;
};

class TrayHostWatchTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        bus = new QProcess;
        bus->start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address=1",
                                   "--address=unix:tmpdir=/tmp"});
        ASSERT_TRUE(bus->waitForReadyRead(timeout)) << bus->errorString().toStdString();
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->readLine().trimmed());
    }
    static void TearDownTestSuite() {
        bus->kill();
        bus->waitForFinished(timeout);
        delete bus;
    }

    static inline QProcess* bus = nullptr;
};

TEST_F(TrayHostWatchTest, ATrayThatNeverExistedIsNotLost) {
    TrayHostWatch watch(nullptr, shortGracePeriod);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    EXPECT_FALSE(lost.wait(100));
    EXPECT_FALSE(watch.isLost());
}

TEST_F(TrayHostWatchTest, ATrayThatDisappearsIsLostAfterTheGracePeriodAndFoundAgain) {
    Tray tray;
    ASSERT_TRUE(tray.appear());
    TrayHostWatch watch(nullptr, shortGracePeriod);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    ASSERT_TRUE(tray.disappear());
    ASSERT_TRUE(lost.wait(timeout));
    EXPECT_TRUE(watch.isLost());
    ASSERT_TRUE(tray.appear());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !watch.isLost(); }, timeout));
    EXPECT_EQ(lost.count(), 1);
}

TEST_F(TrayHostWatchTest, ATrayThatReturnsInTimeIsNotLost) {
    Tray tray;
    ASSERT_TRUE(tray.appear());
    TrayHostWatch watch(nullptr, shortGracePeriod);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    ASSERT_TRUE(tray.disappear());
    ASSERT_TRUE(tray.appear());
    EXPECT_FALSE(lost.wait(1000));
    EXPECT_FALSE(watch.isLost());
}

// The last test, because Qt does not reconnect.
TEST_F(TrayHostWatchTest, LosingTheBusLosesTheTray) {
    TrayHostWatch watch(nullptr, shortGracePeriod);
    QSignalSpy lost(&watch, &TrayHostWatch::lost);
    bus->kill();
    ASSERT_TRUE(lost.wait(timeout));
    EXPECT_TRUE(watch.isLost());
    EXPECT_EQ(lost.count(), 1);
}

}  // namespace
}  // namespace tallowcrest
