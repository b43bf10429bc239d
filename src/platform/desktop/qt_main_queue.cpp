#include "platform/desktop/qt_main_queue.h"

#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

namespace tallowcrest {
namespace {

class QtRepeatingTimer final : public RepeatingTimer {
public:
    QtRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> work)
        : work_(std::move(work)) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            // Kept alive here, because the work may destroy its own timer.
            const auto running = work_;
            running();
        });
        // A sample is a reading over time: waking a few milliseconds late costs accuracy, so the
        // timer is not left to be batched with others.
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(interval);
    }

private:
    std::function<void()> work_;
    QTimer timer_;
};

}  // namespace

void QtMainQueue::post(Task work) {
    {
        const std::lock_guard guard(lock_);
        pending_.push_back(std::move(work));
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void QtMainQueue::customEvent(QEvent* /*event*/) {
    Task work;
    {
        const std::lock_guard guard(lock_);
        work = std::move(pending_.front());
        pending_.pop_front();
    }
    work();
}

std::unique_ptr<RepeatingTimer> QtMainQueue::scheduleRepeating(std::chrono::milliseconds interval,
                                                               std::function<void()> work) {
    return std::make_unique<QtRepeatingTimer>(interval, std::move(work));
}

}  // namespace tallowcrest
