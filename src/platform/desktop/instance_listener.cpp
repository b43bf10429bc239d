#include "platform/desktop/instance_listener.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include <QByteArray>

#include "platform/desktop/lent_activation_token.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

/// A start sends its request at once, so whoever takes that long has another purpose.
constexpr auto callerPatience = 1s;
/// A waiting caller keeps its descriptor readable; without a pause the loop would spin.
constexpr auto shortagePause = 250ms;
constexpr std::size_t mostCallers = 4;

}  // namespace

class InstanceListener::Caller final : public QObject {
public:
    explicit Caller(InstancePeer connected)
        : peer(std::move(connected)), arrivals(peer.descriptor(), QSocketNotifier::Read) {
        patience.setSingleShot(true);
        patience.start(callerPatience);
    }

    void hangUp() {
        patience.stop();
        arrivals.setEnabled(false);
        peer.close();
    }

    InstancePeer peer;
    // Behind the peer, as it must let go of the descriptor before that is closed.
    QSocketNotifier arrivals;
    QTimer patience;
};

InstanceListener::InstanceListener(InstanceGuard& guard)
    : guard_(guard), arrivals_(guard.listener(), QSocketNotifier::Read) {
    pause_.setSingleShot(true);
    pause_.setInterval(shortagePause);
    connect(&pause_, &QTimer::timeout, this, [this] { arrivals_.setEnabled(true); });
    connect(&arrivals_, &QSocketNotifier::activated, this, &InstanceListener::takeCaller);
}

InstanceListener::~InstanceListener() {
    callers_.clear();
    arrivals_.setEnabled(false);
    guard_.stopListening();
}

void InstanceListener::takeCaller() {
    std::optional<InstancePeer> peer;
    switch (guard_.accept(peer)) {
        case InstanceGuard::Arrival::later:
            arrivals_.setEnabled(false);
            pause_.start();
            return;
        case InstanceGuard::Arrival::nobody:
            return;
        case InstanceGuard::Arrival::peer:
            break;
    }
    // A flood pushes out its own callers, the oldest first; a start needs just one turn.
    if (callers_.size() >= mostCallers) {
        drop(*callers_.front());
    }
    Caller& caller = *callers_.emplace_back(std::make_unique<Caller>(std::move(*peer)));
    connect(&caller.arrivals, &QSocketNotifier::activated, this, [this, &caller] { hear(caller); });
    connect(&caller.patience, &QTimer::timeout, this, [this, &caller] { drop(caller); });
    hear(caller);
}

void InstanceListener::hear(Caller& caller) {
    switch (caller.peer.read()) {
        case InstancePeer::State::incomplete:
            return;
        case InstancePeer::State::refused:
            break;
        case InstancePeer::State::asked: {
            const LentActivationToken lent(
                QByteArray::fromStdString(caller.peer.request().activationToken));
            emit showRequested();
            caller.peer.acknowledge();
            break;
        }
    }
    drop(caller);
}

void InstanceListener::drop(Caller& caller) {
    const auto found = std::find_if(callers_.begin(), callers_.end(),
                                    [&](const auto& each) { return each.get() == &caller; });
    if (found == callers_.end()) {
        return;
    }
    caller.hangUp();
    // One of its own signals may be what led here.
    found->release()->deleteLater();
    callers_.erase(found);
}

}  // namespace tallowcrest
