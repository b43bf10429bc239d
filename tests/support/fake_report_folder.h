#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "actions/report_folder.h"

namespace tallowcrest {

/// Keeps written texts by file name, or fails with the problem that a test set.
class FakeReportFolder final : public ReportFolder {
public:
    std::filesystem::path place() const override { return "/reports"; }
    Outcome write(const std::filesystem::path& file, const std::string& text) override {
        if (file.parent_path() != place()) {
            return Outcome::failed("not in this folder");
        }
        if (onWrite) {
            onWrite();
        }
        if (problem) {
            return Outcome::failed(*problem);
        }
        written[file.filename()] = text;
        return Outcome::done();
    }
    Outcome writeScript(const std::filesystem::path& file, const std::string& text) override {
        if (onWrite) {
            onWrite();
        }
        if (problem) {
            return Outcome::failed(*problem);
        }
        scripts[file] = text;
        return Outcome::done();
    }
    void reveal(const std::filesystem::path& file) override { revealed.push_back(file.filename()); }

    std::function<void()> onWrite;  ///< called before the text is there; may be absent
    std::optional<std::string> problem;
    std::map<std::string, std::string> written;
    std::map<std::filesystem::path, std::string> scripts;  ///< by path
    std::vector<std::string> revealed;
};

}  // namespace tallowcrest
