#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tallowcrest {

/// The options of the command line.
struct Options {
    bool showHelp = false;
    bool showVersion = false;
    bool headless = false;
    bool uiTesting = false;  ///< keep the setup wizard away
    bool json = false;
    bool report = false;             ///< print the diagnostics report and end
    bool remote = false;             ///< scan other machines once and end
    bool storage = false;            ///< measure the storage areas once and end
    bool largeFiles = false;         ///< look for large personal files once and end
    bool redacted = false;           ///< the report without private data
    bool analyze = false;            ///< print an analysis and end
    bool yes = false;                ///< answers the question before an analysis is sent
    std::optional<std::string> ask;  ///< print the answer to it and end
    /// The file that each sample is written to as OpenMetrics text, "-" for standard output;
    /// absent: none.
    std::optional<std::string> openMetrics;
    std::optional<std::int64_t> samples;                ///< stop after that many; absent: never
    std::optional<std::chrono::milliseconds> interval;  ///< absent: the monitor's default
};

/// One line that describes what is wrong with the command line.
struct OptionsError {
    std::string message;
};

/// `arguments` are those after the program's name.
std::variant<Options, OptionsError> parseOptions(const std::vector<std::string>& arguments);

/// The text of `--help`.
std::string_view helpText();

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
