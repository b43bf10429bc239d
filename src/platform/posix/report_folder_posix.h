#pragma once

#include <filesystem>
#include <functional>

#include "reports/report_folder.h"

namespace tallowcrest {

/// A folder of the file system. What is made in it is the owner's alone to read: a report names
/// processes, machines and accounts. A report appears whole or not at all; only on file
/// systems without hard links, where its name is reserved first, a kill between the two steps
/// leaves an empty file.
class PosixReportFolder final : public ReportFolder {
public:
    /// Shows a file, given as an absolute path, on the desktop.
    using Reveal = std::function<void(const std::filesystem::path&)>;

    /// An empty `folder` cannot be written to. `reveal` may be absent.
    PosixReportFolder(std::filesystem::path folder, Reveal reveal);

    std::optional<std::string> write(const std::string& fileName, const std::string& text) override;
    void reveal(const std::string& fileName) override;

private:
    std::filesystem::path folder_;
    Reveal reveal_;
};

}  // namespace tallowcrest
