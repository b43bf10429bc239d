#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/instance/instance_place.h"
#include "platform/instance/instance_request.h"

namespace tallowcrest {

/// Another start of this program that has connected and may be sending its request. Its bytes are
/// anybody's. Nothing here ever waits. Main thread.
class InstancePeer {
public:
    enum class State {
        incomplete,  ///< call `read` again once the descriptor is readable
        asked,       ///< `request` is there
        refused,     ///< sent something else, or is gone
    };

    explicit InstancePeer(UniqueFD socket) : socket_(std::move(socket)) {}

    int descriptor() const { return socket_.get(); }

    /// Takes what has come.
    State read();

    const InstanceRequest& request() const { return request_; }

    /// Tells the peer that the window shows. One that is gone does not learn it.
    void acknowledge() const;

    void close() { socket_.reset(); }

private:
    UniqueFD socket_;
    std::string received_;
    InstanceRequest request_;
};

/// Makes this process the one instance for as long as the object lives. The kernel ends that with
/// the process, however it dies. Main thread.
class InstanceGuard {
public:
    /// `lock` is held; `listener` listens.
    InstanceGuard(UniqueFD lock, UniqueFD listener);

    /// Polls as readable when a peer waits to be accepted. -1 behind `stopListening`.
    int listener() const { return listener_.get(); }

    enum class Arrival {
        peer,
        nobody,  ///< the peer left, or is another user's and was turned away
        later,   ///< it still waits, but the system has nothing left for it now
    };

    /// Takes one peer into `peer`. Never waits.
    Arrival accept(std::optional<InstancePeer>& peer);

    /// From now on other starts wait until this process is done with what it owns.
    void stopListening() { listener_.reset(); }

private:
    UniqueFD lock_;
    UniqueFD listener_;
    /// Given up for a peer when the process may open no more files.
    UniqueFD spare_;
};

/// How long a start waits for an instance that runs already.
struct InstancePatience {
    /// For its answer.
    std::chrono::milliseconds answer{2000};
    /// For one that is just starting or ending, and can be asked nothing.
    std::chrono::milliseconds change{5000};
};

struct InstanceStart {
    enum class Outcome {
        first,       ///< this process is the instance, for as long as it keeps `guard`
        handedOver,  ///< another one is, and now shows its window
        noAnswer,    ///< another one is and does not answer; `message` says so
        unguarded,   ///< nobody can tell; `message` says why
    };
    Outcome outcome;
    std::optional<InstanceGuard> guard;
    std::string message;
};

/// Finds out whether this process is the only instance at `place`, and hands `request` over to the
/// other one if it is not. Creates the directory, for this user alone. What a killed instance left
/// behind is no obstacle. Blocks within `patience`. Main thread, before there are others.
InstanceStart startInstance(const InstancePlace& place, const InstanceRequest& request,
                            const InstancePatience& patience = {});

}  // namespace tallowcrest
