#include "platform/base/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

std::string readRegularFile(const std::filesystem::path& path) {
    constexpr std::size_t largestFile = 64U << 10U;
    const UniqueFD file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat info {};
    if (!file.valid() || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return {};
    }
    std::string text(largestFile, '\0');
    const ssize_t length = ::read(file.get(), text.data(), text.size());
    text.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return text;
}

}  // namespace tallowcrest
