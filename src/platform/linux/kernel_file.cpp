#include "platform/linux/kernel_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <utility>

namespace tallowcrest {
namespace {

UniqueFD openForReading(const std::string& path) {
    return UniqueFD(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

}  // namespace

std::string_view readFromStart(int descriptor, std::span<char> buffer) {
    ssize_t length = 0;
    do {
        length = ::pread(descriptor, buffer.data(), buffer.size(), 0);
    } while (length < 0 && errno == EINTR);
    return length > 0 ? std::string_view(buffer.data(), static_cast<std::size_t>(length))
                      : std::string_view();
}

KernelFile::KernelFile(std::string path) : path_(std::move(path)), file_(openForReading(path_)) {}

std::string_view KernelFile::read(std::span<char> buffer) const {
    if (file_.valid()) {
        return readFromStart(file_.get(), buffer);
    }
    const UniqueFD opened = openForReading(path_);
    return opened.valid() ? readFromStart(opened.get(), buffer) : std::string_view();
}

}  // namespace tallowcrest
