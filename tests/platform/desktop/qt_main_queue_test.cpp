#include "platform/desktop/qt_main_queue.h"

#include <memory>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Turns Qt's loop until the answer is true; false when it never is.
bool turnUntil(const std::function<bool()>& question) {
    const QDeadlineTimer deadline(20'000);
    while (!question()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return true;
}

TEST(QtMainQueue, RunsWorkOnALaterTurnInTheOrderOfPosting) {
    QtMainQueue queue;
    std::vector<int> ran;
    queue.post([&] { ran.push_back(1); });
    queue.post([&] {
        ran.push_back(2);
        queue.post([&] { ran.push_back(4); });
        ran.push_back(3);
    });
    EXPECT_THAT(ran, IsEmpty());
    ASSERT_TRUE(turnUntil([&] { return ran.size() == 4; }));
    EXPECT_THAT(ran, ElementsAre(1, 2, 3, 4));
}

TEST(QtMainQueue, TakesWorkFromAnyThreadAndRunsItOnItsOwn) {
    QtMainQueue queue;
    const QThread* ranOn = nullptr;
    std::thread elsewhere([&] { queue.post([&] { ranOn = QThread::currentThread(); }); });
    elsewhere.join();
    ASSERT_TRUE(turnUntil([&] { return ranOn != nullptr; }));
    EXPECT_EQ(ranOn, QCoreApplication::instance()->thread());
}

TEST(QtMainQueue, DropsWhatIsStillQueuedWhenItGoes) {
    auto kept = std::make_shared<int>(0);
    {
        QtMainQueue queue;
        queue.post([kept] { *kept = 1; });
        EXPECT_EQ(kept.use_count(), 2);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(*kept, 0);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST(QtMainQueue, ATimerRepeatsUntilItsHandleIsDestroyed) {
    QtMainQueue queue;
    int ticks = 0;
    auto timer = queue.scheduleRepeating(std::chrono::milliseconds(1), [&] { ++ticks; });
    EXPECT_EQ(ticks, 0);
    ASSERT_TRUE(turnUntil([&] { return ticks >= 3; }));
    timer.reset();
    const int before = ticks;
    int others = 0;
    const auto other = queue.scheduleRepeating(std::chrono::milliseconds(1), [&] { ++others; });
    ASSERT_TRUE(turnUntil([&] { return others >= 5; }));
    EXPECT_EQ(ticks, before);
}

TEST(QtMainQueue, ATimerMayDestroyItself) {
    QtMainQueue queue;
    auto witness = std::make_shared<int>(0);
    std::unique_ptr<RepeatingTimer> timer;
    timer = queue.scheduleRepeating(std::chrono::milliseconds(1), [&timer, witness] {
        timer.reset();
        ++*witness;
    });
    ASSERT_TRUE(turnUntil([&] { return *witness > 0; }));
    EXPECT_EQ(*witness, 1);
    EXPECT_EQ(witness.use_count(), 1);
}

}  // namespace
}  // namespace tallowcrest
