#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tallowcrest {

/// One entry of a trash folder, as another program would read it.
struct TrashedFile {
    std::string storedName;
    std::string restorePath;   ///< decoded; empty without a readable `.trashinfo`
    std::string deletionDate;  ///< empty without a readable `.trashinfo`
    bool isThere = false;      ///< whether `files` has the file
    bool isRegular = false;
    std::string content;  ///< of a regular file
};

/// The entries of `files` and of `info`, by their names. Empty when there is no such folder.
std::vector<TrashedFile> trashContents(const std::filesystem::path& trash);

}  // namespace tallowcrest
