#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "reports/report_folder.h"

namespace tallowcrest {

/// A folder of the file system. What is made in it is the owner's alone to read: a report names
/// processes, machines and accounts. A report appears whole or not at all; only on file systems
/// without hard links, where its name is reserved first, a kill between the two steps leaves an
/// empty file. A kill may leave the hidden file in which the text was written.
class PosixReportFolder final : public ReportFolder {
public:
    /// Where the folder is; empty when there is none.
    using Place = std::function<std::filesystem::path()>;

    /// Shows a file, given as an absolute path, on the desktop.
    using Reveal = std::function<void(const std::filesystem::path&)>;

    /// `place` is asked at each export and not before: few runs come to one. `reveal` may be
    /// absent.
    PosixReportFolder(Place place, Reveal reveal);

    std::filesystem::path place() const override { return place_(); }
    std::optional<std::string> write(const std::filesystem::path& file,
                                     const std::string& text) override;
    void reveal(const std::filesystem::path& file) override;

private:
    Place place_;
    Reveal reveal_;
};

}  // namespace tallowcrest
