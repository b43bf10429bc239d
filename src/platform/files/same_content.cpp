#include "platform/files/same_content.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <vector>

namespace tallowcrest {
namespace {

/// Little enough that a stop does not have to wait for a slow volume.
constexpr std::int64_t partBytes = 256 << 10;

/// Where the next byte is that is in no hole: `size` when there is none.
std::int64_t nextData(int file, std::int64_t offset, std::int64_t size) {
    const std::int64_t found = ::lseek(file, offset, SEEK_DATA);
    if (found < 0) {
        // Other errors: the volume does not tell.
        return errno == ENXIO ? size : offset;
    }
    return std::min(found, size);
}

/// Fills the buffer; false with `errno`, which is 0 when the file ends before.
bool readPart(int file, std::int64_t offset, std::vector<char>& part) {
    std::size_t filled = 0;
    while (filled < part.size()) {
        const ssize_t count = ::pread(file, part.data() + filled, part.size() - filled,
                                      offset + static_cast<std::int64_t>(filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            errno = count == 0 ? 0 : errno;
            return false;
        }
        filled += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

Comparison compareContents(int file, int other, std::int64_t size,
                           const std::function<void(std::int64_t)>& report,
                           const std::stop_token& stop) {
    std::vector<char> one;
    std::vector<char> two;
    for (std::int64_t offset = 0;;) {
        offset = std::min(nextData(file, offset, size), nextData(other, offset, size));
        if (stop.stop_requested()) {
            return Comparison::stopped;
        }
        if (offset >= size) {
            report(size);
            return Comparison::same;
        }
        const auto length = static_cast<std::size_t>(std::min(partBytes, size - offset));
        one.resize(length);
        two.resize(length);
        if (!readPart(file, offset, one) || !readPart(other, offset, two)) {
            return Comparison::failed;
        }
        if (std::memcmp(one.data(), two.data(), length) != 0) {
            return Comparison::different;
        }
        offset += static_cast<std::int64_t>(length);
        report(offset);
    }
}

}  // namespace tallowcrest
