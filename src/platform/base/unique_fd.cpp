#include "platform/base/unique_fd.h"

#include <cerrno>

namespace tallowcrest {

void UniqueFD::reset() {
    if (descriptor_ < 0) {
        return;
    }
    const int kept = errno;
    // Never tried again after EINTR: the descriptor is gone by then, and its number may already be
    // another thread's.
    ::close(std::exchange(descriptor_, -1));
    errno = kept;
}

}  // namespace tallowcrest
