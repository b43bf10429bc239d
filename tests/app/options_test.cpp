#include "app/options.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;

Options accepted(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(arguments);
    if (const auto* error = std::get_if<OptionsError>(&parsed)) {
        ADD_FAILURE() << error->message;
        return {};
    }
    return std::get<Options>(parsed);
}

std::string refusal(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(arguments);
    const auto* error = std::get_if<OptionsError>(&parsed);
    return error != nullptr ? error->message : "accepted";
}

TEST(Options, Defaults) {
    const Options options = accepted({});
    EXPECT_FALSE(options.showHelp);
    EXPECT_FALSE(options.showVersion);
    EXPECT_FALSE(options.headless);
    EXPECT_FALSE(options.json);
    EXPECT_EQ(options.samples, std::nullopt);
    EXPECT_EQ(options.interval, std::nullopt);
}

TEST(Options, Flags) {
    EXPECT_TRUE(accepted({"--help"}).showHelp);
    EXPECT_TRUE(accepted({"-h"}).showHelp);
    EXPECT_TRUE(accepted({"--version"}).showVersion);
    EXPECT_TRUE(accepted({"--ui-testing"}).uiTesting);
    EXPECT_FALSE(accepted({"--ui-testing"}).headless);
    EXPECT_FALSE(accepted({}).uiTesting);
    EXPECT_TRUE(accepted({"--headless"}).headless);
    EXPECT_FALSE(accepted({"--headless"}).json);
    EXPECT_TRUE(accepted({"--headless", "--json"}).json);
    EXPECT_TRUE(accepted({"--json", "--headless"}).json);
    EXPECT_TRUE(accepted({"--headless", "--headless"}).headless);
}

TEST(Options, Samples) {
    struct Case {
        std::vector<std::string> arguments;
        std::int64_t samples;
    };
    for (const Case& c : std::vector<Case>{
             {{"--headless", "--samples", "1"}, 1},
             {{"--samples", "3", "--headless"}, 3},
             {{"--headless", "--samples=12"}, 12},
             {{"--headless", "--samples", "0007"}, 7},
             {{"--headless", "--samples", "1", "--samples", "2"}, 2},
             {{"--headless", "--samples", "9223372036854775807"}, 9223372036854775807},
         }) {
        EXPECT_EQ(accepted(c.arguments).samples, c.samples) << c.arguments.back();
    }
}

TEST(Options, Interval) {
    struct Case {
        std::vector<std::string> arguments;
        milliseconds interval;
    };
    for (const Case& c : std::vector<Case>{
             {{"--headless", "--interval", "4"}, milliseconds(4000)},
             {{"--headless", "--interval", "0.2"}, milliseconds(200)},
             {{"--headless", "--interval=1.5"}, milliseconds(1500)},
             {{"--headless", "--interval", ".5"}, milliseconds(500)},
             {{"--headless", "--interval", "0.01"}, milliseconds(10)},
             {{"--headless", "--interval", "0.0104"}, milliseconds(10)},
             {{"--headless", "--interval", "1e1"}, milliseconds(10000)},
             {{"--headless", "--interval", "86400"}, milliseconds(86400000)},
         }) {
        EXPECT_EQ(accepted(c.arguments).interval, c.interval) << c.arguments.back();
    }
}

TEST(Options, Advisor) {
    EXPECT_EQ(accepted({"--headless"}).ask, std::nullopt);
    EXPECT_EQ(accepted({"--headless", "--ask", "Why = slow?"}).ask, "Why = slow?");
    EXPECT_EQ(accepted({"--ask=--json", "--headless"}).ask, "--json");
    EXPECT_EQ(accepted({"--headless", "--ask", " Größe\n"}).ask, " Größe\n");
    EXPECT_FALSE(accepted({"--headless"}).analyze);
    EXPECT_TRUE(accepted({"--headless", "--analyze", "--json"}).analyze);
}

TEST(Options, RejectsWhatIsNoQuestion) {
    for (const char* value : {"", " ", "\n\t "}) {
        EXPECT_THAT(refusal({"--headless", "--ask", value}),
                    testing::StartsWith("option '--ask' needs a question, not '"));
    }
    EXPECT_THAT(refusal({"--headless", "--ask", "bad \xFF"}),
                testing::StartsWith("option '--ask' needs a question, not '"));
    EXPECT_EQ(refusal({"--headless", "--ask"}), "option '--ask' needs a value");
    EXPECT_EQ(refusal({"--headless", "--ask", "--yes"}),
              "option '--ask' needs a value before '--yes'");
    EXPECT_TRUE(accepted({"--headless", "--analyze", "--yes"}).yes);
    EXPECT_EQ(refusal({"--headless", "--ask", "why?", "--yes"}),
              "option '--yes' needs '--analyze'");
    EXPECT_EQ(refusal({"--headless", "--analyze=1"}), "option '--analyze' takes no value");
}

TEST(Options, TheAdvisorIsAskedAlone) {
    EXPECT_EQ(refusal({"--ask", "why?"}), "option '--ask' needs '--headless'");
    EXPECT_EQ(refusal({"--analyze"}), "option '--analyze' needs '--headless'");
    EXPECT_EQ(refusal({"--headless", "--ask", "why?", "--analyze"}),
              "option '--ask' cannot go with '--analyze'");
    for (const std::vector<std::string>& other :
         std::vector<std::vector<std::string>>{{"--report"},
                                               {"--remote"},
                                               {"--openmetrics", "-"},
                                               {"--samples", "2"},
                                               {"--interval", "1"}}) {
        for (const std::vector<std::string>& asked :
             std::vector<std::vector<std::string>>{{"--ask", "why?"}, {"--analyze"}}) {
            std::vector<std::string> arguments{"--headless"};
            arguments.insert(arguments.end(), asked.begin(), asked.end());
            arguments.insert(arguments.end(), other.begin(), other.end());
            EXPECT_EQ(refusal(arguments),
                      "option '" + asked.front() + "' cannot go with '" + other.front() + "'");
        }
    }
}

TEST(Options, RejectsUnknownOptions) {
    for (const char* argument :
         {"--nope", "-x", "-", "--", "", "headless", "--Headless", "--head", "--headless2",
          " --headless", "/etc/passwd", "--=3", "=", "-help", "--no-headless"}) {
        EXPECT_EQ(refusal({argument}), "unknown option '" + std::string(argument) + "'");
    }
    EXPECT_EQ(refusal({"--headless", "more"}), "unknown option 'more'");
    EXPECT_EQ(refusal({"--help", "more"}), "unknown option 'more'");
    EXPECT_EQ(refusal({"--nope=3"}), "unknown option '--nope=3'");
}

TEST(Options, RejectsBadSampleCounts) {
    for (const char* value : {"0", "-1", "", "x", "1.5", "1e3", "0x10", " 1", "1 ", "3x", "nan",
                              "9223372036854775808", "--json"}) {
        EXPECT_EQ(
            refusal({"--headless", "--samples", value}),
            "option '--samples' needs a whole number from 1, not '" + std::string(value) + "'");
    }
    EXPECT_EQ(refusal({"--headless", "--samples="}),
              "option '--samples' needs a whole number from 1, not ''");
    EXPECT_EQ(refusal({"--headless", "--samples"}), "option '--samples' needs a value");
}

TEST(Options, RejectsBadIntervals) {
    for (const char* value : {"0", "-1", "", "x", "0.009", "86400.1", "1e9", "inf", "nan", "1s",
                              " 1", "0x1p3", "1,5", "--json", "1e999", "-0"}) {
        EXPECT_EQ(refusal({"--headless", "--interval", value}),
                  "option '--interval' needs seconds from 0.01 to 86400, not '" +
                      std::string(value) + "'");
    }
    EXPECT_EQ(refusal({"--headless", "--interval"}), "option '--interval' needs a value");
}

TEST(Options, RejectsAValueForAFlag) {
    EXPECT_EQ(refusal({"--headless=yes"}), "option '--headless' takes no value");
    EXPECT_EQ(refusal({"--ui-testing="}), "option '--ui-testing' takes no value");
    EXPECT_EQ(refusal({"-h=1"}), "option '-h' takes no value");
}

TEST(Options, RejectsHeadlessOptionsWithoutHeadless) {
    EXPECT_EQ(refusal({"--json"}), "option '--json' needs '--headless'");
    EXPECT_EQ(refusal({"--samples", "3"}), "option '--samples' needs '--headless'");
    EXPECT_EQ(refusal({"--interval", "3"}), "option '--interval' needs '--headless'");
    EXPECT_EQ(refusal({"--report"}), "option '--report' needs '--headless'");
    EXPECT_EQ(refusal({"--openmetrics", "-"}), "option '--openmetrics' needs '--headless'");
    EXPECT_EQ(refusal({"--redacted"}), "option '--redacted' needs '--report'");
    EXPECT_EQ(refusal({"--headless", "--redacted"}), "option '--redacted' needs '--report'");
    // Help is given whatever the other options are.
    EXPECT_TRUE(accepted({"--json", "--help"}).showHelp);
    EXPECT_TRUE(accepted({"--samples", "3", "--version"}).showVersion);
}

TEST(Options, StorageAndLargeFilesAreReadOnceAndGoWithNothingElse) {
    EXPECT_TRUE(accepted({"--headless", "--storage", "--json"}).storage);
    EXPECT_TRUE(accepted({"--headless", "--large-files", "--json"}).largeFiles);
    EXPECT_FALSE(accepted({"--headless"}).storage);
    EXPECT_FALSE(accepted({"--headless"}).largeFiles);
    for (const std::string option : {"--storage", "--large-files"}) {
        EXPECT_EQ(refusal({option}), "option '" + option + "' needs '--headless'");
        for (const std::vector<std::string>& other :
             std::vector<std::vector<std::string>>{{"--report"},
                                                   {"--remote"},
                                                   {"--openmetrics", "-"},
                                                   {"--samples", "2"},
                                                   {"--interval", "2"}}) {
            std::vector<std::string> arguments{"--headless", option};
            arguments.insert(arguments.end(), other.begin(), other.end());
            EXPECT_EQ(refusal(arguments),
                      "option '" + option + "' cannot go with '" + other[0] + "'");
        }
    }
    EXPECT_EQ(refusal({"--headless", "--storage", "--large-files"}),
              "option '--storage' cannot go with '--large-files'");
    EXPECT_EQ(refusal({"--headless", "--storage", "--analyze"}),
              "option '--analyze' cannot go with '--storage'");
}

TEST(Options, Report) {
    EXPECT_TRUE(accepted({"--headless", "--report"}).report);
    EXPECT_FALSE(accepted({"--headless", "--report"}).redacted);
    EXPECT_TRUE(accepted({"--redacted", "--report", "--headless"}).redacted);
    EXPECT_EQ(accepted({"--headless", "--report", "--interval", "0.5"}).interval,
              milliseconds(500));
    EXPECT_TRUE(accepted({"--headless", "--remote", "--json"}).remote);
    EXPECT_FALSE(accepted({"--headless"}).remote);
    EXPECT_EQ(refusal({"--remote"}), "option '--remote' needs '--headless'");
    EXPECT_EQ(refusal({"--headless", "--remote", "--report"}),
              "option '--remote' cannot go with '--report'");
    EXPECT_EQ(refusal({"--headless", "--remote", "--samples", "2"}),
              "option '--remote' cannot go with '--samples'");
    EXPECT_EQ(refusal({"--headless", "--remote", "--interval", "2"}),
              "option '--remote' cannot go with '--interval'");
    EXPECT_EQ(refusal({"--headless", "--report", "--json"}),
              "option '--report' cannot go with '--json'");
    EXPECT_EQ(refusal({"--headless", "--report", "--samples", "5"}),
              "option '--report' cannot go with '--samples'");
}

TEST(Options, OpenMetrics) {
    EXPECT_EQ(accepted({"--headless", "--openmetrics", "-"}).openMetrics, "-");
    EXPECT_EQ(accepted({"--headless", "--openmetrics=/run/a.prom", "--samples", "2"}).openMetrics,
              "/run/a.prom");
    EXPECT_EQ(accepted({"--headless"}).openMetrics, std::nullopt);
    EXPECT_EQ(refusal({"--headless", "--openmetrics"}), "option '--openmetrics' needs a value");
    EXPECT_EQ(refusal({"--headless", "--openmetrics", "--json"}),
              "option '--openmetrics' needs a value before '--json'");
    EXPECT_EQ(accepted({"--headless", "--openmetrics=--json"}).openMetrics, "--json");
    EXPECT_EQ(refusal({"--headless", "--openmetrics", ""}),
              "option '--openmetrics' needs a path, or '-' for standard output");
    for (const char* other : {"--json", "--report", "--remote"}) {
        EXPECT_EQ(refusal({"--headless", "--openmetrics", "-", other}),
                  std::string("option '--openmetrics' cannot go with '") + other + "'");
    }
}

TEST(Options, ReportsTheFirstError) {
    EXPECT_EQ(refusal({"--first", "--samples", "x"}), "unknown option '--first'");
    EXPECT_EQ(refusal({"--headless=1", "--second"}), "option '--headless' takes no value");
}

TEST(Options, MessagesAreOneLineWithoutControlCharacters) {
    EXPECT_EQ(refusal({"a\nb\x1B[31m\x7F"}), "unknown option 'a?b?[31m?'");
    EXPECT_EQ(refusal({"\xC2\x9B"
                       "31m"}),
              "unknown option '?31m'");
    // An escape character after an incomplete sequence.
    EXPECT_EQ(refusal({"\xE2\x1B[31m"}), "unknown option '\xEF\xBF\xBD?[31m'");
    EXPECT_EQ(refusal({"größe"}), "unknown option 'größe'");
    EXPECT_EQ(refusal({"--headless", "--samples", "1\n2"}),
              "option '--samples' needs a whole number from 1, not '1?2'");
}

TEST(Options, MessagesShortenALongArgumentBetweenCharacters) {
    EXPECT_EQ(refusal({std::string(80, 'x')}), "unknown option '" + std::string(80, 'x') + "'");
    EXPECT_EQ(refusal({std::string(81, 'x')}), "unknown option '" + std::string(80, 'x') + "...'");
    std::string umlauts;
    for (int i = 0; i < 100; ++i) {
        umlauts += "ü";
    }
    EXPECT_EQ(refusal({umlauts}), "unknown option '" + umlauts.substr(0, 160) + "...'");
}

TEST(Options, HelpListsEveryOptionInNarrowLines) {
    const std::string help(helpText());
    for (const char* option : {"--headless", "--json", "--samples", "--interval", "--ui-testing",
                               "--openmetrics", "--report", "--remote", "--storage",
                               "--large-files", "--redacted", "--version", "--help", "-h"}) {
        EXPECT_THAT(help, HasSubstr(option));
    }
    std::size_t longest = 0;
    for (std::size_t start = 0; start < help.size();) {
        const std::size_t end = help.find('\n', start);
        ASSERT_NE(end, std::string::npos) << "the last line has no end";
        longest = std::max(longest, end - start);
        start = end + 1;
    }
    EXPECT_LE(longest, 80U);
}

}  // namespace
}  // namespace tallowcrest
