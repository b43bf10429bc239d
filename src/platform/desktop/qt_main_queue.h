#pragma once

#include <deque>
#include <functional>
#include <mutex>

#include <QObject>

#include "core/jobs/queues.h"

namespace tallowcrest {

/// The main thread of a run with a window: Qt's event loop. Built and destroyed on that thread.
class QtMainQueue final : public QObject, public MainQueue {
public:
    void post(Task work) override;
    [[nodiscard]] std::unique_ptr<RepeatingTimer> scheduleRepeating(
        std::chrono::milliseconds interval, std::function<void()> work) override;

protected:
    void customEvent(QEvent* event) override;

private:
    // Work changes threads here, and the event is only the call: inside Qt the thread sanitizer
    // sees memory but no lock, and would report each sample as a race.
    std::mutex lock_;
    std::deque<Task> pending_;
};

}  // namespace tallowcrest
