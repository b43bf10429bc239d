#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// A small file that the kernel writes anew on each reading. It is opened once and kept open; one
/// that was not there at first is tried again at each reading. Any thread, several at once.
class KernelFile {
public:
    explicit KernelFile(std::string path);

    /// What the file holds now, in `buffer`, cut to its size. Empty when it cannot be read.
    std::string_view read(std::span<char> buffer) const;

private:
    const std::string path_;
    const UniqueFD kept_;
};

/// Reads from the beginning of `descriptor` with a single call, so that the text is of one moment.
/// Empty when it cannot be read.
std::string_view readFromStart(int descriptor, std::span<char> buffer);

}  // namespace tallowcrest
