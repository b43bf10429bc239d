// The built program, on the machine that the test runs on.

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/base/system_clock.h"
#include "tests/app/headless_program.h"
#include "tests/app/private_data.h"
#include "tests/support/file_text.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const PrivateData privateData;

void expectOneLine(const std::string& text) {
    EXPECT_EQ(linesOf(text).size(), 1U) << text;
    EXPECT_THAT(text, EndsWith("\n"));
}

double kernelMemoryTotalGB() {
    std::ifstream file("/proc/meminfo");
    std::string label;
    double kilobytes = 0;
    file >> label >> kilobytes;
    EXPECT_EQ(label, "MemTotal:");
    return kilobytes / 1024 / 1024;
}

// Texts ------------------------------------------------------------------------------------------

TEST(CommandLine, HelpAndVersion) {
    for (const auto& [option, pattern] :
         {std::pair{"--help", ".*Usage: tallowcrest \\[options\\].*--headless.*"},
          {"-h", ".*Usage: tallowcrest \\[options\\].*--headless.*"},
          {"--version", "tallowcrest [0-9.]+\n"}}) {
        const ProgramResult result = run({option});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.standardOutput, ::testing::MatchesRegex(pattern));
        EXPECT_EQ(result.standardError, "");
    }
}

TEST(CommandLine, ABadOptionGivesOneLineAndStatusTwo) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--nope"},
             {"--headless", "--samples", "0"},
             {"--headless", "--interval", "never"},
             {"--headless", "--samples"},
             {"--json"},
             {"stray"},
             {""},
             {"--line\nbreak"},
         }) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments.back();
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_THAT(result.standardError, StartsWith("tallowcrest: "));
        expectOneLine(result.standardError);
    }
}

TEST(CommandLine, ABadOptionKeepsItsStatusWithoutStandardError) {
    const ProgramResult result =
        runProgram({.path = program, .arguments = {"--nope"}, .closeStandardError = true});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.signal, 0);
}

// Without a window -------------------------------------------------------------------------------

TEST(Headless, PrintsTheRequestedNumberOfJSONLines) {
    const SystemClock clock;
    const Date before = clock.now();
    const ProgramResult result =
        run({"--headless", "--json", "--samples", "3", "--interval", "0.2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    const std::vector<std::string> lines = linesOf(result.standardOutput);
    ASSERT_EQ(lines.size(), 3U);
    for (const std::string& line : lines) {
        const json sample = json::parse(line, nullptr, false);
        ASSERT_FALSE(sample.is_discarded()) << line;
        const Date sampledAt{sample["sampledAt"]};
        EXPECT_GE(sampledAt, before);
        EXPECT_LE(sampledAt, clock.now());
    }
}

TEST(Headless, FiguresAreThoseOfThisMachine) {
    const ProgramResult result =
        run({"--headless", "--json", "--samples", "2", "--interval", "0.2"});
    ASSERT_EQ(result.status, 0);
    const json sample = json::parse(linesOf(result.standardOutput).at(1));

    const double totalGB = sample["memory"]["totalGB"];
    EXPECT_NEAR(totalGB, kernelMemoryTotalGB(), 0.001);
    for (const char* part : {"usedGB", "freeGB", "wiredGB", "compressedGB"}) {
        EXPECT_GE(sample["memory"][part], 0.0) << part;
        EXPECT_LE(sample["memory"][part], totalGB) << part;
    }
    for (const double percent :
         {sample["memory"]["pressure"].get<double>(), sample["cpuPercent"].get<double>()}) {
        EXPECT_GE(percent, 0.0);
        EXPECT_LE(percent, 100.0);
    }
    EXPECT_GT(sample["disk"]["totalGB"], 0.0);
    EXPECT_LE(sample["disk"]["freeGB"], sample["disk"]["totalGB"]);
    EXPECT_NE(sample["pressureText"], "");

    const json& rows = sample["topProcesses"];
    ASSERT_GE(rows.size(), 2U);  // the program itself and this test at least
    ASSERT_LE(rows.size(), 120U);
    EXPECT_LE(sample["appImpacts"].size(), 14U);
    std::set<std::int64_t> pids;
    for (const json& row : rows) {
        EXPECT_TRUE(pids.insert(row["pid"].get<std::int64_t>()).second) << "twice: " << row["pid"];
        EXPECT_GE(row["cpu"], 0.0);
        EXPECT_LE(row["cpu"], 100.0 * (std::thread::hardware_concurrency() + 1));
        EXPECT_GE(row["rssMB"], 0.0);
        EXPECT_NE(row["command"], "");
        EXPECT_EQ(row["command"], row["arguments"]);
    }
    if (rows.size() < 120) {
        EXPECT_EQ(pids.count(getpid()), 1U) << "this test runs, so it must be in the table";
    }
}

TEST(Headless, PrintsReadableBlocks) {
    const ProgramResult result = run({"--headless", "--samples", "2", "--interval", "0.1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    EXPECT_THAT(result.standardOutput, HasSubstr("  CPU "));
    EXPECT_THAT(result.standardOutput, HasSubstr("% "));
    EXPECT_THAT(result.standardOutput, EndsWith("\n\n"));
    int headlines = 0;
    for (const std::string& line : linesOf(result.standardOutput)) {
        headlines += line.find(" GB used  Disk ") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(headlines, 2);
}

TEST(Headless, NeedsNoHomeAndNoEnvironment) {
    const ProgramResult result = runProgram(
        {.path = program,
         .arguments = {"--headless", "--samples", "1"},
         .withoutVariables = {"HOME", "PATH", "USER", "LANG", "LC_ALL", "XDG_RUNTIME_DIR"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.standardOutput, "");
}

// The owner's settings ---------------------------------------------------------------------------

class HeadlessSettings : public ::testing::Test {
protected:
    ~HeadlessSettings() override { fs::remove_all(file.parent_path()); }

    fs::path file = privateData.folder() / "tallowcrest" / "settings.sqlite";
};

TEST_F(HeadlessSettings, AreNotCreatedByReading) {
    const ProgramResult result = run({"--headless", "--samples", "2", "--interval", "0.1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    EXPECT_TRUE(fs::is_empty(privateData.folder()));
}

TEST_F(HeadlessSettings, AreReportedInOneLineAndNotChangedWhenTheyCannotBeRead) {
    fs::create_directory(file.parent_path());
    std::ofstream(file) << "garbage";
    const ProgramResult result = run({"--headless", "--samples", "2", "--interval", "0.1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.standardOutput, "");
    EXPECT_EQ(result.standardError,
              "tallowcrest: Settings cannot be read, so defaults are used: the file is damaged, " +
                  file.string() + ".\n");
    EXPECT_EQ(fileText(file), "garbage");
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()),
              1);
}

// Standard output that cannot be written ---------------------------------------------------------

TEST(Headless, ReportsThatStandardOutputIsFullOrClosed) {
    const std::vector<std::string> sampling{"--headless", "--samples", "2", "--interval", "0.1"};
    for (const std::vector<std::string>& arguments :
         {sampling, {"--headless", "--json"}, {"--help"}, {"--version"}}) {
        const ProgramResult result = runProgram(
            {.path = program, .arguments = arguments, .standardOutputPath = "/dev/full"});
        EXPECT_EQ(result.status, 1) << arguments.front();
        EXPECT_THAT(result.standardError, StartsWith("tallowcrest: standard output: "));
        expectOneLine(result.standardError);
    }
    for (const std::vector<std::string>& arguments : {sampling, {"--version"}}) {
        const ProgramResult result =
            runProgram({.path = program, .arguments = arguments, .closeStandardOutput = true});
        EXPECT_EQ(result.status, 1) << arguments.front();
        expectOneLine(result.standardError);
    }
}

TEST(Headless, EndsWhenItsReaderCloses) {
    ProgramRun request{.path = program,
                       .arguments = {"--headless", "--json", "--interval", "0.05"},
                       .readOneLineOnly = true};
    const ProgramResult silent = runProgram(request);
    EXPECT_EQ(silent.signal, SIGPIPE);
    EXPECT_EQ(silent.standardError, "");
    EXPECT_FALSE(linesOf(silent.standardOutput).empty());
    request.ignorePipeSignal = true;
    const ProgramResult told = runProgram(request);
    EXPECT_EQ(told.status, 1);
    EXPECT_THAT(told.standardError, StartsWith("tallowcrest: standard output: "));
    expectOneLine(told.standardError);
}

// The window -------------------------------------------------------------------------------------

TEST(Window, WithoutADisplayItSuggestsHeadless) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{}, {"--ui-testing"}}) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_THAT(result.standardError, HasSubstr("display"));
        EXPECT_THAT(result.standardError, HasSubstr("tallowcrest --headless"));
        expectOneLine(result.standardError);
    }
}

TEST(Window, AnEmptyDisplayVariableCountsAsNoDisplay) {
    const ProgramResult result = runProgram(
        {.path = program, .withVariables = {"DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM="}});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.standardError, HasSubstr("tallowcrest --headless"));
}

/// A copy of the entry program in a private folder.
class CopiedProgram : public ::testing::Test {
protected:
    CopiedProgram() { fs::copy_file(program, folder / "tallowcrest"); }

    ProgramResult runCopy(const std::vector<std::string>& arguments) const {
        return runProgram({.path = folder / "tallowcrest",
                           .arguments = arguments,
                           .withoutVariables = {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM"},
                           .withVariables = {"DISPLAY=:77"}});
    }

    void writeScript(const fs::path& path, const std::string& text) const {
        std::ofstream(path) << "#!/bin/sh\n" << text;
        fs::permissions(path, fs::perms::owner_all);
    }

    const TemporaryFolder temporary;
    const fs::path folder = temporary.path();
};

TEST_F(CopiedProgram, SaysWhichProgramIsMissing) {
    const ProgramResult result = runCopy({});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_THAT(result.standardError, HasSubstr((folder / "tallowcrest-desktop").string()));
    EXPECT_THAT(result.standardError, HasSubstr("No such file"));
    expectOneLine(result.standardError);
}

TEST_F(CopiedProgram, PassesItsArgumentsToTheWindowProgramBesideIt) {
    writeScript(folder / "tallowcrest-desktop", "echo \"window: $# $1\"; exit 5\n");
    const ProgramResult result = runCopy({"--ui-testing"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.standardOutput, "window: 1 --ui-testing\n");
    EXPECT_EQ(runCopy({"--nope"}).status, 2)
        << "a bad option is rejected before the window program starts";
}

TEST_F(CopiedProgram, FindsTheWindowProgramThroughALink) {
    writeScript(folder / "tallowcrest-desktop", "exit 6\n");
    fs::create_directory(folder / "bin");
    fs::create_symlink("../tallowcrest", folder / "bin" / "tallowcrest");
    const ProgramResult result =
        runProgram({.path = folder / "bin" / "tallowcrest", .withVariables = {"DISPLAY=:77"}});
    EXPECT_EQ(result.status, 6);
}

}  // namespace
}  // namespace tallowcrest
