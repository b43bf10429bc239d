#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include "platform/instance/instance_guard.h"

namespace tallowcrest {

/// Answers other starts of this program from Qt's event loop. A peer that sends invalid data,
/// nothing, or sends too slowly is dropped, and any number of them cannot block the loop. Main
/// thread.
class InstanceListener final : public QObject {
    Q_OBJECT

public:
    /// `guard` must outlive this object, whose destructor stops it listening.
    explicit InstanceListener(InstanceGuard& guard);
    ~InstanceListener() override;

signals:
    /// Another start asks to show the window, and is told that it is shown once this returns. Until
    /// then, and for what is posted to the event loop meanwhile, its activation token is set for
    /// Qt.
    void showRequested();

private:
    class Peer;

    void acceptPeer();
    void read(Peer& peer);
    void drop(Peer& peer);

    InstanceGuard& guard_;
    QSocketNotifier notifier_;
    QTimer pause_;
    std::vector<std::unique_ptr<Peer>> peers_;  ///< the oldest first
};

}  // namespace tallowcrest
