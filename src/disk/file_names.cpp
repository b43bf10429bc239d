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
