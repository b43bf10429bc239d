#include "platform/base/write_all.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace tallowcrest {

int writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return written < 0 ? errno : EIO;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int syncFile(int file) {
#ifdef F_FULLFSYNC
    // Where it exists, fsync leaves the data in the disk's own memory; some file systems refuse it.
    if (::fcntl(file, F_FULLFSYNC) == 0) {
        return 0;
    }
#endif
    return ::fsync(file) == 0 || errno == EINVAL ? 0 : errno;
}

}  // namespace tallowcrest
