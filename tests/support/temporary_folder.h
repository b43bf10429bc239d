#pragma once

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "tests/support/file_text.h"

namespace tallowcrest {

/// A folder for one test, removed by the destructor.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tallowcrest-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    /// The path of a file in it, which need not exist.
    std::string path(const std::string& name) const { return path_ / name; }

    /// Writes a file and returns its path.
    std::string file(const std::string& name, const std::string& text, mode_t mode) const {
        std::ofstream(path(name), std::ios::binary) << text;
        if (::chmod(path(name).c_str(), mode) != 0) {
            throw std::runtime_error("cannot set the mode of " + name);
        }
        return path(name);
    }
    /// The text of a file; empty when there is none.
    std::string read(const std::string& name) const { return fileText(path(name)); }

private:
    std::filesystem::path path_;
};

}  // namespace tallowcrest
