#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "core/locale.h"
#include "core/outcome.h"

namespace tallowcrest {

/// The folder for exported reports.
class ReportFolder {
public:
    virtual ~ReportFolder() = default;

    /// Its absolute path; empty when there is none. The folder need not exist yet. Main thread.
    virtual std::filesystem::path place() const = 0;

    /// Writes a new file in it, completely or not at all, and creates the folder and its parents if
    /// they are missing. Never replaces an existing file or link. Done, or failed with the
    /// system's error message; a path that is not absolute is an error. Any thread, several at
    /// once.
    virtual Outcome write(const std::filesystem::path& file, const std::string& text) = 0;

    /// Shows the file in the desktop's file manager. Returns at once; a failure is not reported.
    /// Main thread.
    virtual void reveal(const std::filesystem::path& file) = 0;
};

/// The ports of `Reports`. The folder is shared, because background work may outlive the component.
struct ReportPorts {
    std::shared_ptr<ReportFolder> folder;  ///< never null
    UTCOffset utcOffset;                   ///< never absent
};

}  // namespace tallowcrest
