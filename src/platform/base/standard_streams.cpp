#include "platform/base/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace tallowcrest {

void occupyStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) {
            continue;
        }
        // The lowest free number is this one, as those below are taken by now.
        const int placeholder = open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        if (placeholder == -1) {
            return;
        }
    }
}

}  // namespace tallowcrest
