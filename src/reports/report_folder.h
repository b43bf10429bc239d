#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tallowcrest {

/// The folder that exported reports are kept in.
class ReportFolder {
public:
    virtual ~ReportFolder() = default;

    /// Where it is; empty when there is none. It need not be there yet. Main thread.
    virtual std::filesystem::path place() const = 0;

    /// Writes a new file in it, whole or not at all, and makes the folder and its parents where
    /// they are missing. Nothing is ever replaced, neither a file nor a link that bears the name.
    /// Absent on success, else the system's words for what failed, as it does for a path that is
    /// not absolute. Any thread, several at once.
    virtual std::optional<std::string> write(const std::filesystem::path& file,
                                             const std::string& text) = 0;

    /// Shows the file in the desktop's file manager. Returns at once; a failure is not noticed.
    /// Main thread.
    virtual void reveal(const std::filesystem::path& file) = 0;
};

}  // namespace tallowcrest
