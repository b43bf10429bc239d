#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "reports/report_folder.h"

namespace tallowcrest {

/// Keeps what is written to it in memory, or answers with the problem that a test set.
class FakeReportFolder final : public ReportFolder {
public:
    std::optional<std::string> write(const std::string& fileName,
                                     const std::string& text) override {
        if (!problem) {
            written[fileName] = text;
        }
        return problem;
    }
    void reveal(const std::string& fileName) override { revealed.push_back(fileName); }

    std::optional<std::string> problem;
    std::map<std::string, std::string> written;
    std::vector<std::string> revealed;
};

}  // namespace tallowcrest
