#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/linux/user_directories.h"

#include "fuzz/require.h"

/// With any file content, a folder is an absolute path without a zero byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto path = tallowcrest::userDirectory(text, "DOCUMENTS", "/home/owner");
    if (path) {
        require(path->front() == '/');
        require(path->find('\0') == std::string::npos);
        require(path->size() <= size + 11);
    }
    return 0;
}
