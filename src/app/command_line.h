#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/options.h"

namespace tallowcrest {

/// Exit status after a command line that cannot be followed.
inline constexpr int usageStatus = 2;

/// What a program is asked to do, or the status to exit with when that is done already.
struct CommandLine {
    Options options;
    std::optional<int> status;
};

/// Reads the program's arguments, its own name first among them, and answers what can be answered
/// at once: a mistake, `--help`, `--version`.
CommandLine readCommandLine(const std::vector<std::string>& arguments);

}  // namespace tallowcrest
