#include "platform/instance/instance_guard.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>
#include <variant>

#include "platform/base/local_socket.h"

namespace tallowcrest {
namespace {

UniqueFD openSpare() {
    return UniqueFD(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

bool lackedDescriptors(int error) {
    return error == EMFILE || error == ENFILE;
}

/// Whether the caller that was to be accepted no longer waits.
bool isOver(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == ECONNABORTED || error == EINTR;
}

}  // namespace

InstancePeer::State InstancePeer::read() {
    // One call per turn, so that a peer that never stops sending gets no more than its turn.
    std::array<char, longestInstanceRequest + 1> buffer;
    const ssize_t count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
        return State::incomplete;
    }
    if (count <= 0) {
        return State::refused;
    }
    received_.append(buffer.data(), static_cast<std::size_t>(count));
    const auto parsed = parseInstanceRequest(received_);
    if (const auto* request = std::get_if<InstanceRequest>(&parsed)) {
        request_ = *request;
        return State::asked;
    }
    return std::holds_alternative<IncompleteRequest>(parsed) ? State::incomplete : State::refused;
}

void InstancePeer::acknowledge() const {
    // So few bytes always fit into the buffer of a new connection.
    local_socket::send(socket_.get(), instanceAcknowledgement);
}

InstanceGuard::InstanceGuard(UniqueFD lock, UniqueFD listener)
    : lock_(std::move(lock)), listener_(std::move(listener)), spare_(openSpare()) {}

InstanceGuard::Arrival InstanceGuard::accept(std::optional<InstancePeer>& peer) {
    UniqueFD socket = local_socket::accept(listener_.get());
    if (!socket.valid() && lackedDescriptors(errno) && spare_.valid()) {
        spare_.reset();
        socket = local_socket::accept(listener_.get());
    } else if (!spare_.valid()) {
        const int kept = errno;
        spare_ = openSpare();
        errno = kept;
    }
    if (!socket.valid()) {
        return isOver(errno) ? Arrival::nobody : Arrival::later;
    }
    const auto caller = local_socket::peerOf(socket.get());
    if (!caller || caller->user != ::geteuid()) {
        return Arrival::nobody;
    }
    peer.emplace(std::move(socket));
    return Arrival::peer;
}

}  // namespace tallowcrest
