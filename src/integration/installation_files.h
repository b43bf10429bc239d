#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/outcome.h"
#include "integration/install_plan.h"

namespace tallowcrest {

/// Whether the folder of a file may be a symbolic link of its owner's.
enum class LinkedFolder { refused, followed };

/// The files by which the program is installed and started at login. All paths are absolute.
/// Blocks; any thread.
class InstallationFiles {
public:
    virtual ~InstallationFiles() = default;

    /// Whether the path itself is a symbolic link. False when that cannot be read, as when there is
    /// nothing.
    virtual bool isLink(const std::string& path) const = 0;

    /// Whether there is something, links followed.
    virtual bool exists(const std::string& path) const = 0;

    /// The beginning of a file. Empty as well when it cannot be read.
    virtual std::string readFile(const std::string& path) const = 0;

    /// What is in the folder, hidden entries too. Empty as well when there is no such folder, or it
    /// cannot be read.
    virtual std::vector<FolderEntry> entriesOf(const std::string& folder) const = 0;

    /// Creates the folder and those above it, as far as they are missing.
    virtual Outcome makeFolder(const std::string& path) = 0;

    /// Keeps other installations into this folder, which exists, from beginning as long as the
    /// result does. Null while another one has the folder.
    virtual std::shared_ptr<const void> reserve(const std::string& folder) = 0;

    /// Gives the file this content as a whole, readable by everybody, and creates it if it is
    /// missing, but not its folder. Fails, with nothing written, where the file is a link at the
    /// moment of writing, or its folder is one that is `refused`.
    virtual Outcome writeFile(const std::string& path, std::string_view text,
                              LinkedFolder folder) = 0;

    /// Makes the path a symbolic link to `target`, in place of another link. Fails where there is
    /// anything but a link. Its folder may be a link.
    virtual Outcome makeLink(const std::string& path, const std::string& target) = 0;

    /// Removes the file, or the link itself.
    virtual Outcome removeFile(const std::string& path) = 0;

    /// Whether there is something at each path, as `exists` tells.
    bool allExist(const std::vector<std::string>& paths) const {
        return std::ranges::all_of(paths, [this](const std::string& path) { return exists(path); });
    }
};

}  // namespace tallowcrest
