#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include "platform/instance/instance_guard.h"

namespace tallowcrest {

/// Answers other starts of this program while Qt's event loop runs. A caller that sends nonsense,
/// nothing, or too slowly is dropped, and no number of them holds the loop up. Main thread.
class InstanceListener final : public QObject {
    Q_OBJECT

public:
    /// `guard` must outlive this object, which ends its listening.
    explicit InstanceListener(InstanceGuard& guard);
    ~InstanceListener() override;

signals:
    /// Another start asks for the window. The caller is told that it shows once this returns. Until
    /// then, and for what is posted to the event loop meanwhile, the desktop's leave to come to the
    /// front stands where Qt takes it from.
    void showRequested();

private:
    class Caller;

    void takeCaller();
    void hear(Caller& caller);
    void drop(Caller& caller);

    InstanceGuard& guard_;
    QSocketNotifier arrivals_;
    QTimer pause_;
    std::vector<std::unique_ptr<Caller>> callers_;  ///< the oldest first
};

}  // namespace tallowcrest
