#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tallowcrest {

/// The names of the files in a folder, in no particular order.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    return names;
}

}  // namespace tallowcrest
