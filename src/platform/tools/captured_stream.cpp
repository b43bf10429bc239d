#include "platform/tools/captured_stream.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tallowcrest {

int openCapturePipe(spawn_support::Pipe& pipe) {
    if (const int error = spawn_support::openPipe(pipe); error != 0) {
        return error;
    }
    for (UniqueFD* end : {&pipe.readEnd, &pipe.writeEnd}) {
        if (end->get() <= STDERR_FILENO) {
            UniqueFD moved(::fcntl(end->get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
            if (!moved.valid()) {
                return errno;
            }
            *end = std::move(moved);
        }
    }
    const int flags = ::fcntl(pipe.readEnd.get(), F_GETFL);
    if (flags < 0 || ::fcntl(pipe.readEnd.get(), F_SETFL, flags | O_NONBLOCK) < 0) {
        return errno;
    }
    return 0;
}

CapturedStream::CapturedStream(UniqueFD readEnd, std::string* output, std::size_t maximumBytes)
    : readEnd_(std::move(readEnd)), output_(output), maximumBytes_(maximumBytes) {}

void CapturedStream::readAvailable() {
    read(buffer_.size());
}

void CapturedStream::readRemaining() {
    int available = 0;
    if (!readEnd_.valid() || ::ioctl(readEnd_.get(), FIONREAD, &available) != 0 || available <= 0) {
        return;
    }
    auto remaining = static_cast<std::size_t>(available);
    while (remaining > 0) {
        const std::size_t count = read(std::min(remaining, buffer_.size()));
        if (count == 0) {
            return;
        }
        remaining -= count;
    }
}

std::size_t CapturedStream::read(std::size_t limit) {
    if (!readEnd_.valid()) {
        return 0;
    }
    ssize_t count = -1;
    do {
        count = ::read(readEnd_.get(), buffer_.data(), limit);
    } while (count < 0 && errno == EINTR);
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        return 0;
    }
    if (count <= 0) {
        readEnd_.reset();
        return 0;
    }
    const auto size = static_cast<std::size_t>(count);
    if (output_ != nullptr) {
        output_->append(buffer_.data(), std::min(size, maximumBytes_ - output_->size()));
    }
    return size;
}

}  // namespace tallowcrest
