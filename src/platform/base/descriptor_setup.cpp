#include "platform/base/descriptor_setup.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

namespace tallowcrest {

void occupyStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) {
            continue;
        }
        // The lower descriptors are all open by now, so `open` returns this one.
        const int placeholder = open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        if (placeholder == -1) {
            return;
        }
    }
}

void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return;
    }
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace tallowcrest
