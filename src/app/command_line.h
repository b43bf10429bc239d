#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/options.h"

namespace tallowcrest {

/// Exit status after an invalid command line.
inline constexpr int usageStatus = 2;

/// The options, or the status to exit with when nothing is left to do.
struct CommandLine {
    Options options;
    std::optional<int> status;
};

/// Reads the program's arguments, whose first one is its name. Handles errors, `--help` and
/// `--version`; `status` is then set.
CommandLine readCommandLine(const std::vector<std::string>& arguments);

}  // namespace tallowcrest
