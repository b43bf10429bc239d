#pragma once

#include <QObject>

#include "core/queues.h"

namespace tallowcrest {

/// The main thread of a run with a window: Qt's event loop. Built and destroyed on that thread.
class QtMainQueue final : public QObject, public MainQueue {
public:
    void post(std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<RepeatingTimer> scheduleRepeating(
        std::chrono::milliseconds interval, std::function<void()> work) override;
};

}  // namespace tallowcrest
