// The window program without a display, and both programs with few file descriptors.

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/lines_of.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const std::string windowProgram = TALLOWCREST_BINARY_DIR "/tallowcrest-desktop";
const std::string entryProgram = TALLOWCREST_BINARY_DIR "/tallowcrest";

/// A private folder, so that no other instance is found.
class WindowProgram : public testing::Test {
protected:
    ProgramResult run(const std::vector<std::string>& arguments) const {
        return runProgram({.path = windowProgram,
                           .arguments = arguments,
                           .withoutVariables = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM",
                                                "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"},
                           .withVariables = {"XDG_DATA_HOME=" + folder.path().string()}});
    }

    const TemporaryFolder folder;
};

void expectOneLine(const std::string& text) {
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
}

TEST_F(WindowProgram, RejectsABadOptionWithOneLineAndStatusTwo) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--nope"}, {"stray"}, {""}, {"--json"}, {"--samples", "3"}, {"--line\nbreak"}}) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments.front();
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_THAT(result.standardError, StartsWith("tallowcrest: "));
        expectOneLine(result.standardError);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(WindowProgram, RefusesTheHeadlessOption) {
    const ProgramResult result = run({"--headless"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.standardError, EndsWith("Try: tallowcrest --headless\n"));
    expectOneLine(result.standardError);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(WindowProgram, SaysWhyItCannotOpenItsWindow) {
    const ProgramResult result = run({});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.standardError, HasSubstr("the window cannot be opened: "));
    EXPECT_THAT(result.standardError, EndsWith("tallowcrest --headless\n"));
}

// A limit on open files --------------------------------------------------------------------------

ProgramResult runWithDescriptors(int limit) {
    return runProgram(
        {.path = "/bin/sh",
         .arguments = {"-c",
                       "ulimit -n " + std::to_string(limit) +
                           " && exec \"$0\" --headless --json --samples 3 --interval 0.1",
                       entryProgram}});
}

TEST(FewDescriptors, SixteenAreEnoughForTheWholeTable) {
    const ProgramResult result = runWithDescriptors(16);
    ASSERT_EQ(result.status, 0) << result.standardError;
    const std::vector<std::string> lines = linesOf(result.standardOutput);
    EXPECT_EQ(lines.size(), 3U);
    for (const std::string& line : lines) {
        const auto sample = nlohmann::json::parse(line);
        // At least this test, the program, and the parent of the shell.
        EXPECT_GE(sample["topProcesses"].size(), 2U);
        EXPECT_GT(sample["memory"]["totalGB"], 0.0);
    }
}

TEST(FewDescriptors, WithTooFewItReportsThatNoProcessCanBeRead) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers themselves need more descriptors";
#endif
    const ProgramResult result = runWithDescriptors(6);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.standardOutput.begin(), result.standardOutput.end(), '\n'), 3);
    EXPECT_THAT(result.standardError, HasSubstr("no process can be read here"));
}

}  // namespace
}  // namespace tallowcrest
