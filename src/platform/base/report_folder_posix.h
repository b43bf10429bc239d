#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "actions/report_folder.h"

namespace tallowcrest {

/// A folder of the file system. Only the owner may read the reports: they name processes, machines
/// and accounts. A file appears complete or not at all, with two exceptions: a process killed
/// while it writes may leave the hidden temporary file, and on file systems without hard links one
/// killed between reserving the name and renaming leaves an empty file.
class PosixReportFolder final : public ReportFolder {
public:
    /// The path of the folder; empty when there is none.
    using Place = std::function<std::filesystem::path()>;

    /// Shows a file on the desktop, given its absolute path.
    using Reveal = std::function<void(const std::filesystem::path&)>;

    /// `place` is called at each export, not before, because most runs export nothing. `reveal` may
    /// be empty.
    PosixReportFolder(Place place, Reveal reveal);

    std::filesystem::path place() const override { return place_(); }
    Outcome write(const std::filesystem::path& file, const std::string& text) override;
    Outcome writeScript(const std::filesystem::path& file, const std::string& text) override;
    void reveal(const std::filesystem::path& file) override;

private:
    Place place_;
    Reveal reveal_;
};

}  // namespace tallowcrest
