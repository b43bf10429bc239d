#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/options.h"

namespace tallowcrest {

/// Exit status after an invalid command line.
inline constexpr int usageStatus = 2;

/// The options, or the exit status when the program has nothing more to do.
struct CommandLine {
    Options options;
    std::optional<int> status;
};

/// Reads the program's arguments, of which the first is its name. For an error, `--help` and
/// `--version` it prints the text and sets `status`.
CommandLine readCommandLine(const std::vector<std::string>& arguments);

}  // namespace tallowcrest
