#include "platform/desktop/instance_listener.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include <QByteArray>

#include "platform/desktop/scoped_activation_token.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

/// A start sends its request immediately.
constexpr auto peerTimeout = 1s;
/// A waiting peer keeps the listener readable, so the loop would spin without a pause.
constexpr auto postponedPause = 250ms;
constexpr std::size_t maximumPeers = 4;

}  // namespace

class InstanceListener::Peer final : public QObject {
public:
    explicit Peer(InstancePeer accepted)
        : connection(std::move(accepted)),
          notifier(connection.descriptor(), QSocketNotifier::Read) {
        timeout.setSingleShot(true);
        timeout.start(peerTimeout);
    }

    void close() {
        timeout.stop();
        notifier.setEnabled(false);
        connection.close();
    }

    InstancePeer connection;
    // Destroyed before the connection, as it must release the descriptor before that is closed.
    QSocketNotifier notifier;
    QTimer timeout;
};

InstanceListener::InstanceListener(InstanceGuard& guard)
    : guard_(guard), notifier_(guard.listener(), QSocketNotifier::Read) {
    pause_.setSingleShot(true);
    pause_.setInterval(postponedPause);
    connect(&pause_, &QTimer::timeout, this, [this] { notifier_.setEnabled(true); });
    connect(&notifier_, &QSocketNotifier::activated, this, &InstanceListener::acceptPeer);
}

InstanceListener::~InstanceListener() {
    peers_.clear();
    notifier_.setEnabled(false);
    guard_.stopListening();
}

void InstanceListener::acceptPeer() {
    std::optional<InstancePeer> accepted;
    switch (guard_.accept(accepted)) {
        case InstanceGuard::Accepted::postponed:
            notifier_.setEnabled(false);
            pause_.start();
            return;
        case InstanceGuard::Accepted::nothing:
            return;
        case InstanceGuard::Accepted::peer:
            break;
    }
    // Under a flood the oldest peer is dropped; a real start needs only one turn of the loop.
    if (peers_.size() >= maximumPeers) {
        drop(*peers_.front());
    }
    Peer& peer = *peers_.emplace_back(std::make_unique<Peer>(std::move(*accepted)));
    connect(&peer.notifier, &QSocketNotifier::activated, this, [this, &peer] { read(peer); });
    connect(&peer.timeout, &QTimer::timeout, this, [this, &peer] { drop(peer); });
    read(peer);
}

void InstanceListener::read(Peer& peer) {
    switch (peer.connection.read()) {
        case InstancePeer::State::incomplete:
            return;
        case InstancePeer::State::refused:
            break;
        case InstancePeer::State::requested: {
            const ScopedActivationToken token(
                QByteArray::fromStdString(peer.connection.request().activationToken));
            emit showRequested();
            peer.connection.acknowledge();
            break;
        }
    }
    drop(peer);
}

void InstanceListener::drop(Peer& peer) {
    const auto found = std::find_if(peers_.begin(), peers_.end(),
                                    [&](const auto& each) { return each.get() == &peer; });
    if (found == peers_.end()) {
        return;
    }
    peer.close();
    // Not deleted here, as this may be called by one of its signals.
    found->release()->deleteLater();
    peers_.erase(found);
}

}  // namespace tallowcrest
