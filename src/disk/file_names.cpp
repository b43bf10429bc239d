#include "disk/file_names.h"

#include <filesystem>
#include <system_error>

namespace tallowcrest {

namespace fs = std::filesystem;

bool folderExists(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool nameExists(const std::string& path) {
    std::error_code error;
    return fs::symlink_status(path, error).type() != fs::file_type::not_found;
}

std::string_view cutName(std::string_view name, std::size_t longest) {
    if (name.size() <= longest) {
        return name;
    }
    const auto continuesCharacter = [&](std::size_t at) {
        return (static_cast<unsigned char>(name[at]) & 0xC0U) == 0x80U;
    };
    std::size_t end = longest;
    constexpr std::size_t mostContinuing = 3;
    while (end > 0 && longest - end < mostContinuing && continuesCharacter(end)) {
        --end;
    }
    return name.substr(0, continuesCharacter(end) ? longest : end);
}

std::string resolvedPath(const std::string& path) {
    std::error_code error;
    fs::path resolved = fs::weakly_canonical(path, error);
    if (error) {
        return {};
    }
    // A path that ended in a slash keeps it.
    if (!resolved.has_filename() && resolved.has_relative_path()) {
        resolved = resolved.parent_path();
    }
    return resolved.string();
}

}  // namespace tallowcrest
