#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/instance/instance_place.h"
#include "platform/instance/instance_request.h"

namespace tallowcrest {

/// Another start of this program that has connected. Its data is untrusted. Nothing here blocks.
/// Main thread.
class InstancePeer {
public:
    enum class State {
        incomplete,  ///< call `read` again once the descriptor is readable
        requested,   ///< `request` is complete
        refused,     ///< the peer sent something else or closed the connection
    };

    explicit InstancePeer(UniqueFD socket) : socket_(std::move(socket)) {}

    int descriptor() const { return socket_.get(); }

    /// Reads what has arrived.
    State read();

    const InstanceRequest& request() const { return request_; }

    /// Tells the peer that the window is shown. Does nothing if the peer has closed.
    void acknowledge() const;

    void close() { socket_.reset(); }

private:
    UniqueFD socket_;
    std::string received_;
    InstanceRequest request_;
};

/// Makes this process the only instance for as long as the object lives. The kernel releases the
/// lock when the process ends, however it ends. Main thread.
class InstanceGuard {
public:
    /// `lock` is a locked file; `listener` is a listening socket.
    InstanceGuard(UniqueFD lock, UniqueFD listener);

    /// Polls as readable when a peer waits to be accepted. -1 after `stopListening`.
    int listener() const { return listener_.get(); }

    enum class Accepted {
        peer,
        nothing,    ///< the peer left, or was turned away because it is another user's
        postponed,  ///< the peer still waits, because no descriptor is left for it
    };

    /// Accepts one waiting peer. Never blocks.
    Accepted accept(std::optional<InstancePeer>& peer);

    /// Makes later starts wait until this process has released its files.
    void stopListening() { listener_.reset(); }

private:
    UniqueFD lock_;
    UniqueFD listener_;
    /// Closed to accept a peer when the process may open no more files.
    UniqueFD spare_;
};

/// How long a start waits for a running instance.
struct InstanceTimeouts {
    /// For its answer.
    std::chrono::milliseconds answer{2000};
    /// For one that is starting or ending and so does not listen.
    std::chrono::milliseconds transition{5000};
};

struct InstanceStart {
    enum class Kind {
        first,       ///< this process is the instance, for as long as it keeps `guard`
        handedOver,  ///< another process is, and now shows its window
        noAnswer,    ///< another process is but does not answer; `message` says so
        unguarded,   ///< this cannot be determined; `message` says why
    };
    Kind kind;
    std::optional<InstanceGuard> guard;
    std::string message;
};

/// Determines whether this process is the only instance at `place`, and if not, hands `request` to
/// the running one. Creates the directory with access for this user only. Files that a killed
/// instance left behind do not matter. Blocks up to `timeouts`. Main thread, before other threads
/// are started.
InstanceStart startInstance(const InstancePlace& place, const InstanceRequest& request,
                            const InstanceTimeouts& timeouts = {});

}  // namespace tallowcrest
