#include "actions/apple_script_quit.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_tool_launcher.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const CommandSafetyPolicy::AllowedExecutables everyTool{"/usr/bin/osascript"};

std::string scriptFor(const std::string& name) {
    return "tell application \"" + name + "\"\n    if it is running then quit\nend tell";
}

// The script -------------------------------------------------------------------------------------

class HarmlessName : public testing::TestWithParam<std::string> {};

TEST_P(HarmlessName, IsInTheScriptUnchanged) {
    EXPECT_EQ(gracefulQuitScript(GetParam()), scriptFor(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Table, HarmlessName,
                         testing::Values("Safari", "Google Chrome", " ", "'", "`id`", "$(id)",
                                         "; quit", "--", "-e", "end tell", "%s%n", "Grüße",
                                         "日本語", "\U0001F600\U0001F680", "e\u0301", "\u00A0",
                                         "\u00AC", "\u2027", "\u202A", "\u2128", "\u20A8", "\uFFFD",
                                         "\U0010FFFF", "“curly”", "\uFF02", "\uFF3C"));

struct Refused {
    std::string_view name;
    const char* why;
};

class RefusedName : public testing::TestWithParam<Refused> {};

TEST_P(RefusedName, HasNoScriptAndLaunchesNothing) {
    const std::string name(GetParam().name);
    EXPECT_EQ(gracefulQuitScript(name), std::nullopt) << GetParam().why;
    // At every position in the name.
    if (!name.empty()) {
        EXPECT_EQ(gracefulQuitScript("Mail" + name), std::nullopt) << GetParam().why;
        EXPECT_EQ(gracefulQuitScript("Ma" + name + "il"), std::nullopt) << GetParam().why;
    }

    FakeToolLauncher launcher;
    launcher.willWrite("");
    EXPECT_FALSE(AppleScriptQuit(everyTool, launcher).gracefulAppQuit(name, {}));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedName,
    testing::Values(Refused{"", "no name"}, Refused{"\"", "ends the quoted name"},
                    Refused{"\" to quit\ndo shell script \"id", "another command"},
                    Refused{"\\", "escapes the closing quote"}, Refused{"\\\"", "an escaped quote"},
                    Refused{"\n", "line feed"}, Refused{"\r", "carriage return"},
                    Refused{"\r\n", "carriage return and line feed"}, Refused{"\t", "tab"},
                    Refused{"\v", "vertical tab"}, Refused{"\f", "form feed"},
                    Refused{"\x1B", "escape"}, Refused{"\x1F", "last of the C0 controls"},
                    Refused{std::string_view("\0", 1), "ends an argument"},
                    Refused{"\x7F", "delete"}, Refused{"\xC2\x80", "U+0080"},
                    Refused{"\xC2\x85", "next line"}, Refused{"\xC2\x9F", "U+009F"},
                    Refused{"\xE2\x80\xA8", "line separator"},
                    Refused{"\xE2\x80\xA9", "paragraph separator"},
                    Refused{"\xFF", "invalid UTF-8"}, Refused{"\xC3", "truncated"},
                    Refused{"\xC0\xA2", "overlong quote"},
                    Refused{"\xC1\x9C", "overlong backslash"}, Refused{"\xED\xA0\x80", "surrogate"},
                    Refused{"\xE2\x80", "truncated separator"}));

TEST(GracefulQuitScript, AcceptsAVeryLongName) {
    const std::string name(10'000, 'x');
    const auto script = gracefulQuitScript(name);
    ASSERT_TRUE(script);
    EXPECT_EQ(script->size(), scriptFor("").size() + 10'000);
    EXPECT_EQ(*script, scriptFor(name));
}

// Asking ----------------------------------------------------------------------------------------

class AppleScriptQuitTest : public testing::Test {
protected:
    FakeToolLauncher launcher;
    AppleScriptQuit quit{everyTool, launcher};
};

TEST_F(AppleScriptQuitTest, LaunchesTheScriptToolAndWaits) {
    launcher.willWrite("");

    EXPECT_TRUE(quit.gracefulAppQuit("Google Chrome", {}));

    ASSERT_EQ(launcher.requests.size(), 1U);
    EXPECT_EQ(launcher.requests[0].path, "/usr/bin/osascript");
    EXPECT_THAT(launcher.requests[0].arguments, ElementsAre("-e", scriptFor("Google Chrome")));
    EXPECT_EQ(launcher.requests[0].timeout, std::nullopt);
}

TEST_F(AppleScriptQuitTest, PassesAVeryLongNameAsOneArgument) {
    launcher.willWrite("");
    const std::string name(10'000, 'x');

    EXPECT_TRUE(quit.gracefulAppQuit(name, {}));

    ASSERT_EQ(launcher.requests.size(), 1U);
    EXPECT_THAT(launcher.requests[0].arguments, ElementsAre("-e", scriptFor(name)));
}

TEST_F(AppleScriptQuitTest, SucceedsOnlyWithStatusZero) {
    for (const int status : {1, 2, 126, 127, 255, -1}) {
        launcher.willWrite("");
        launcher.result.terminationStatus = status;
        EXPECT_FALSE(quit.gracefulAppQuit("Mail", {})) << status;
    }
    EXPECT_EQ(launcher.requests.size(), 6U);
}

TEST_F(AppleScriptQuitTest, IgnoresTheOutputOfTheTool) {
    launcher.willWrite("execution error: User canceled. (-128)\n");
    EXPECT_TRUE(quit.gracefulAppQuit("Mail", {}));
}

TEST_F(AppleScriptQuitTest, FailsWhenASignalEndsTheTool) {
    launcher.willWrite("");
    launcher.result.terminationStatus.reset();
    EXPECT_FALSE(quit.gracefulAppQuit("Mail", {}));
}

TEST_F(AppleScriptQuitTest, FailsWhenTheToolCannotBeLaunched) {
    launcher.result.launchError = "No such file or directory";
    EXPECT_FALSE(quit.gracefulAppQuit("Mail", {}));
    EXPECT_EQ(launcher.requests.size(), 1U);
}

TEST_F(AppleScriptQuitTest, LaunchesNothingThatIsNotAllowed) {
    const CommandSafetyPolicy::AllowedExecutables others{"/usr/bin/ssh", "/usr/bin/osascript2",
                                                         "osascript"};
    launcher.willWrite("");
    EXPECT_FALSE(AppleScriptQuit(others, launcher).gracefulAppQuit("Mail", {}));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST_F(AppleScriptQuitTest, TheToolIsAllowedOnlyOnMacOS) {
    launcher.willWrite("");
    EXPECT_TRUE(AppleScriptQuit(CommandSafetyPolicy::macOSExecutables(), launcher)
                    .gracefulAppQuit("Mail", {}));
    EXPECT_FALSE(AppleScriptQuit(CommandSafetyPolicy::linuxExecutables(), launcher)
                     .gracefulAppQuit("Mail", {}));
    EXPECT_EQ(launcher.requests.size(), 1U);
}

// Names that no application has ------------------------------------------------------------------

TEST_F(AppleScriptQuitTest, LaunchesNothingForASyntheticName) {
    launcher.willWrite("");
    for (const char* name : {"Developer Tools", "Electron Apps", "Node.js", "Python"}) {
        EXPECT_TRUE(isSyntheticGroupName(name)) << name;
        EXPECT_FALSE(quit.gracefulAppQuit(name, {})) << name;
    }
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST(SyntheticGroupName, IsComparedExactly) {
    for (const char* name :
         {"", "python", "Python ", " Python", "Python3", "Node", "Node.JS", "Docker",
          "Virtualization", "Google Chrome", "Developer  Tools", "ElectronApps"}) {
        EXPECT_FALSE(isSyntheticGroupName(name)) << name;
    }
    EXPECT_FALSE(isSyntheticGroupName(std::string_view("Python\0", 7)));
}

}  // namespace
}  // namespace tallowcrest
