#include "app/options.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <set>

#include <fmt/format.h>

#include "app/console.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr double shortestInterval = 0.01;
constexpr double longestInterval = 86400.0;

/// An option that is given or not.
struct Flag {
    std::string_view name;
    bool Options::*isSet;
};

constexpr auto flags = std::to_array<Flag>({
    {"--help", &Options::showHelp},
    {"-h", &Options::showHelp},
    {"--version", &Options::showVersion},
    {"--headless", &Options::headless},
    {"--json", &Options::json},
    {"--report", &Options::report},
    {"--remote", &Options::remote},
    {"--storage", &Options::storage},
    {"--large-files", &Options::largeFiles},
    {"--analyze", &Options::analyze},
    {"--yes", &Options::yes},
    {"--redacted", &Options::redacted},
    {"--ui-testing", &Options::uiTesting},
});

/// An argument, quoted and shortened for a message.
std::string quoted(std::string_view text) {
    constexpr std::size_t longestQuote = 80;
    const std::string quote = printableText(text, longestQuote).text;
    return fmt::format("'{}{}'", quote, printableText(text).characters > longestQuote ? "..." : "");
}

/// Parses the arguments. A value is the next argument or follows "=" in the same one.
class Parser {
public:
    explicit Parser(const std::vector<std::string>& arguments) : arguments_(arguments) {}

    std::variant<Options, OptionsError> parse() {
        for (; next_ < arguments_.size() && error_.empty(); ++next_) {
            parseArgument(arguments_[next_]);
        }
        if (error_.empty() && !options_.showHelp && !options_.showVersion) {
            checkCombination();
        }
        if (!error_.empty()) {
            return OptionsError{error_};
        }
        return options_;
    }

private:
    void parseArgument(std::string_view argument) {
        const std::size_t equals = argument.find('=');
        const std::string_view name = argument.substr(0, equals);
        value_.reset();
        if (equals != std::string_view::npos) {
            value_ = argument.substr(equals + 1);
        }
        if (name == "--samples") {
            parseSamples();
        } else if (name == "--interval") {
            parseInterval();
        } else if (name == "--openmetrics") {
            parseOpenMetrics();
        } else if (name == "--ask") {
            parseQuestion();
        } else if (const Flag* flag = flagNamed(name)) {
            takeNoValue(name);
            options_.*flag->isSet = true;
        } else {
            fail(fmt::format("unknown option {}", quoted(argument)));
        }
        given_.insert(name);
    }

    static const Flag* flagNamed(std::string_view name) {
        const auto found = std::ranges::find(flags, name, &Flag::name);
        return found == flags.end() ? nullptr : &*found;
    }

    void takeNoValue(std::string_view option) {
        if (value_) {
            fail(fmt::format("option '{}' takes no value", option));
        }
    }

    std::optional<std::string_view> takeValue(std::string_view option) {
        if (!value_) {
            if (next_ + 1 >= arguments_.size()) {
                fail(fmt::format("option '{}' needs a value", option));
                return std::nullopt;
            }
            value_ = arguments_[++next_];
        }
        return value_;
    }

    /// A value that may be any text. What looks like the next option counts only after "=".
    std::optional<std::string_view> takeText(std::string_view option) {
        if (!value_ && next_ + 1 < arguments_.size() && arguments_[next_ + 1].starts_with("--")) {
            fail(fmt::format("option '{}' needs a value before {}", option,
                             quoted(arguments_[next_ + 1])));
            return std::nullopt;
        }
        return takeValue(option);
    }

    void parseSamples() {
        const auto text = takeValue("--samples");
        if (!text) {
            return;
        }
        const auto count = parseDecimalInteger(*text);
        if (!count || *count < 1) {
            fail(fmt::format("option '--samples' needs a whole number from 1, not {}",
                             quoted(*text)));
            return;
        }
        options_.samples = *count;
    }

    void parseInterval() {
        const auto text = takeValue("--interval");
        if (!text) {
            return;
        }
        const auto seconds = parseDecimalFloat(*text);
        if (!seconds || !(*seconds >= shortestInterval && *seconds <= longestInterval)) {
            fail(fmt::format("option '--interval' needs seconds from {} to {:.0f}, not {}",
                             shortestInterval, longestInterval, quoted(*text)));
            return;
        }
        options_.interval =
            std::chrono::milliseconds(static_cast<std::int64_t>(std::llround(*seconds * 1000.0)));
    }

    void parseOpenMetrics() {
        const auto path = takeText("--openmetrics");
        if (path && path->empty()) {
            fail("option '--openmetrics' needs a path, or '-' for standard output");
        } else if (path) {
            options_.openMetrics = *path;
        }
    }

    void parseQuestion() {
        const auto text = takeText("--ask");
        if (!text) {
            return;
        }
        if (trimmingWhiteSpace(*text).empty() || !isValidUTF8(*text)) {
            fail(fmt::format("option '--ask' needs a question, not {}", quoted(*text)));
            return;
        }
        options_.ask = *text;
    }

    void checkCombination() {
        const std::string_view headlessOnly =
            firstGiven({"--json", "--openmetrics", "--samples", "--interval", "--report",
                        "--remote", "--ask", "--analyze", "--storage", "--large-files"});
        if (!options_.headless && !headlessOnly.empty()) {
            fail(fmt::format("option '{}' needs '--headless'", headlessOnly));
        }
        refuseTogether("--openmetrics", {"--json", "--report", "--remote"});
        if (options_.redacted && !options_.report) {
            fail("option '--redacted' needs '--report'");
        }
        if (options_.yes && !options_.analyze) {
            fail("option '--yes' needs '--analyze'");
        }
        refuseTogether("--report", {"--json", "--samples"});
        refuseTogether("--remote", {"--report", "--samples", "--interval"});
        // What gives one answer goes with nothing but "--json".
        for (const std::string_view asked : {"--ask", "--analyze", "--storage", "--large-files"}) {
            refuseTogether(asked, {"--analyze", "--storage", "--large-files", "--report",
                                   "--remote", "--openmetrics", "--samples", "--interval"});
        }
    }

    /// Empty when none of them was given.
    std::string_view firstGiven(std::initializer_list<std::string_view> names) const {
        const auto found =
            std::ranges::find_if(names, [this](auto name) { return given_.contains(name); });
        return found == names.end() ? std::string_view() : *found;
    }

    /// Fails when `option` was given with one of the others that is not itself.
    void refuseTogether(std::string_view option, std::initializer_list<std::string_view> others) {
        for (const std::string_view other : others) {
            if (other != option && given_.contains(option) && given_.contains(other)) {
                fail(fmt::format("option '{}' cannot go with '{}'", option, other));
            }
        }
    }

    void fail(std::string message) {
        if (error_.empty()) {
            error_ = std::move(message);
        }
    }

    const std::vector<std::string>& arguments_;
    std::size_t next_ = 0;
    std::optional<std::string_view> value_;
    std::set<std::string_view> given_;  ///< the names of all options so far
    Options options_;
    std::string error_;
};

int printed(std::string_view text) {
    return writeToStandardOutput(text) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

std::variant<Options, OptionsError> parseOptions(const std::vector<std::string>& arguments) {
    return Parser(arguments).parse();
}

std::string_view helpText() {
    return R"(Tallowcrest shows what your machine is doing and proposes the safest next step.

Usage: tallowcrest [options]

  --headless          sample without a window and print to standard output
    --json            one JSON object per line instead of readable blocks
    --openmetrics PATH
                      write each sample to PATH instead, as OpenMetrics text for
                      monitoring systems; "-" for standard output
    --samples N       end after N samples
    --interval SECS   seconds between samples (default 4)
    --report          take two samples, print the diagnostics report and end
    --redacted        without pids, addresses and names of known processes
    --remote          scan the other machines once, print them and end
    --ask QUESTION    answer a question about this machine and end
    --analyze         print an analysis of this machine and end
    --yes             let it be sent where the settings ask before that
    --storage         measure the areas of the disk, print them and end
    --large-files     print the largest personal files and end
  --ui-testing        keep the setup wizard away
  --version           print the version
  -h, --help          print this text
)";
}

CommandLine readCommandLine(const std::vector<std::string>& arguments) {
    const auto firstOption = arguments.begin() + (arguments.empty() ? 0 : 1);
    const auto parsed = parseOptions({firstOption, arguments.end()});
    if (const auto* error = std::get_if<OptionsError>(&parsed)) {
        complain(fmt::format("{} (see tallowcrest --help)", error->message));
        return {{}, usageStatus};
    }
    const auto& options = std::get<Options>(parsed);
    if (options.showHelp) {
        return {options, printed(helpText())};
    }
    if (options.showVersion) {
        return {options, printed(fmt::format("tallowcrest {}\n", TALLOWCREST_VERSION))};
    }
    return {options, std::nullopt};
}

}  // namespace tallowcrest
