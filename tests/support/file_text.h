#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace tallowcrest {

/// The bytes of a file; empty when it cannot be read.
inline std::string fileText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace tallowcrest
