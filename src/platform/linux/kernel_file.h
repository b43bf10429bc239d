#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// A small file whose content the kernel generates at each read. It is kept open; if it could not
/// be opened at construction, each read tries again. Any thread, several at once.
class KernelFile {
public:
    explicit KernelFile(std::string path);

    /// Reads the current content into `buffer`, truncated to its size. Empty when it cannot be
    /// read.
    std::string_view read(std::span<char> buffer) const;

private:
    const std::string path_;
    const UniqueFD file_;
};

/// Reads from the start of `descriptor` in one call, so that the content is consistent. Empty when
/// it cannot be read.
std::string_view readFromStart(int descriptor, std::span<char> buffer);

}  // namespace tallowcrest
