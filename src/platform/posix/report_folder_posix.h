#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "reports/report_folder.h"

namespace tallowcrest {

/// A folder of the file system. What is made in it is the owner's alone to read: a report names
/// processes, machines and accounts.
class PosixReportFolder final : public ReportFolder {
public:
    /// Shows a file, given as an absolute path, on the desktop.
    using Reveal = std::function<void(const std::filesystem::path&)>;

    /// Where the folder is; empty when there is none, which cannot be written to.
    using Place = std::function<std::filesystem::path()>;

    /// `place` is asked once, at the first write: few runs come to one. `reveal` may be absent.
    PosixReportFolder(Place place, Reveal reveal);

    std::optional<std::string> write(const std::string& fileName, const std::string& text) override;
    void reveal(const std::string& fileName) override;

private:
    Place place_;
    std::optional<std::filesystem::path> folder_;  ///< once it has been asked for
    Reveal reveal_;
};

}  // namespace tallowcrest
