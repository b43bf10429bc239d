#pragma once

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace tallowcrest {

/// The bytes of a recorded text, named by its path below tests/fixtures.
inline std::string readFixture(const std::string& name) {
    const std::string path = std::string(TALLOWCREST_SOURCE_DIR) + "/tests/fixtures/" + name;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("no fixture at " + path);
    }
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

}  // namespace tallowcrest
