#pragma once

#include <filesystem>
#include <string>

#include "core/outcome.h"

namespace tallowcrest {

/// The folder for exported reports, and what is exported beside it.
class ReportFolder {
public:
    virtual ~ReportFolder() = default;

    /// Its absolute path; empty when there is none. The folder need not exist yet. Main thread.
    virtual std::filesystem::path place() const = 0;

    /// Writes a new file, completely or not at all, and creates its folder and that one's parents
    /// if they are missing. Never replaces an existing file or link. Done, or failed with the
    /// system's error message; a path that is not absolute is an error. Any thread, several at
    /// once.
    virtual Outcome write(const std::filesystem::path& file, const std::string& text) = 0;

    /// The same for a script that every user may read and run, except that an existing file or link
    /// of that name is replaced.
    virtual Outcome writeScript(const std::filesystem::path& file, const std::string& text) = 0;

    /// Shows the file in the desktop's file manager. Returns at once; a failure is not reported.
    /// Main thread.
    virtual void reveal(const std::filesystem::path& file) = 0;
};

}  // namespace tallowcrest
