#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "disk/file_walks.h"
#include "platform/files/file_walk_posix.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// The files that the walk over caches finds.
inline std::vector<FoundFile> walk(const std::string& root) {
    std::vector<FoundFile> files;
    PosixFileWalk().walk(
        root,
        [&](const FoundFile& file) {
            files.push_back(file);
            return true;
        },
        [](const SearchProgress&) {}, {});
    return files;
}

/// A folder to walk.
class FileTree {
public:
    /// The path of an entry, which need not exist.
    std::string operator/(const std::string& name) const { return root_.path(name); }
    std::string path() const { return root_.path(); }

    void folder(const std::string& name) const {
        std::filesystem::create_directories(root_.path(name));
    }
    /// Makes a file, with the folders that it is in. It takes no room.
    std::string file(const std::string& name, std::int64_t bytes = 1) const {
        const std::filesystem::path path = root_.path(name);
        std::filesystem::create_directories(path.parent_path());
        root_.file(name, "", 0644);
        if (::truncate(path.c_str(), bytes) != 0) {
            throw std::runtime_error("cannot set the size of " + name);
        }
        return path;
    }
    void link(const std::string& target, const std::string& name) const {
        std::filesystem::create_symlink(target, root_.path(name));
    }

    /// The paths of files without that of this folder.
    std::vector<std::string> names(const std::vector<FoundFile>& files) const {
        std::vector<std::string> result;
        for (const FoundFile& file : files) {
            result.push_back(file.path.starts_with(path() + '/')
                                 ? file.path.substr(path().size() + 1)
                                 : "elsewhere: " + file.path);
        }
        return result;
    }

private:
    TemporaryFolder root_;
};

}  // namespace tallowcrest
