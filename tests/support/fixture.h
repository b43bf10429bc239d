#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "tests/support/file_text.h"

namespace tallowcrest {

/// The bytes of a file below tests/fixtures.
inline std::string readFixture(const std::string& name) {
    const std::string path = std::string(TALLOWCREST_SOURCE_DIR) + "/tests/fixtures/" + name;
    if (!std::filesystem::exists(path)) {
        throw std::runtime_error("no fixture at " + path);
    }
    return fileText(path);
}

}  // namespace tallowcrest
