#pragma once

#include <optional>
#include <string>

namespace tallowcrest {

/// The folder that exported reports are kept in.
class ReportFolder {
public:
    virtual ~ReportFolder() = default;

    /// Writes a new file of that name, whole or not at all, and makes the folder and its parents
    /// where they are missing. Nothing is ever replaced, neither a file nor a link that bears the
    /// name. Absent on success, else the system's words for what failed. Any thread, several at
    /// once.
    virtual std::optional<std::string> write(const std::string& fileName,
                                             const std::string& text) = 0;

    /// Shows the file in the desktop's file manager. Returns at once; a failure is not noticed.
    /// Main thread.
    virtual void reveal(const std::string& fileName) = 0;
};

}  // namespace tallowcrest
