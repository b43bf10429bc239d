#include "actions/command_validators.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest::CommandSafetyPolicy {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct TextCase {
    std::string input;
    std::optional<std::string> expected;
};

TEST(ValidatedSSHUsername, AcceptsAndTrims) {
    const std::vector<TextCase> cases{
        {"", ""},
        {"   ", ""},
        {"\t\r\n\v\f", ""},
        {"\u00A0\u3000\u2028", ""},
        {"anna", "anna"},
        {"  anna\n", "anna"},
        {"\u2003anna\u0085", "anna"},
        {"_www", "_www"},
        {"A", "A"},
        {"_", "_"},
        {"a.b_c-9", "a.b_c-9"},
        {"a-", "a-"},
        {std::string(32, 'a'), std::string(32, 'a')},
        {"  " + std::string(32, 'a') + "  ", std::string(32, 'a')},
    };
    for (const TextCase& row : cases) {
        EXPECT_EQ(validatedSSHUsername(row.input), row.expected)
            << testing::PrintToString(row.input);
    }
}

TEST(ValidatedSSHUsername, Refuses) {
    const std::vector<std::string> texts{
        std::string(33, 'a'),
        "9lives",
        "-oProxyCommand=id",
        "-l",
        ".hidden",
        "an na",
        "an\nna",
        "anna\nroot",
        "an\u00A0na",
        "anna@host",
        "anna;id",
        "anna|id",
        "anna&id",
        "anna>id",
        "~",
        "*",
        "\u202Eanna",
        "$(id)",
        "anna$HOME",
        "anna`id`",
        "anna'",
        "anna\"",
        "anna\\",
        "anna/",
        "anna:",
        "anna%h",
        "\u00E4nna",
        "ann\u00E4",
        "anna\u200B",
        "anna\0"s,
        "an\0na"s,
        "anna\xFF",
    };
    for (const std::string& text : texts) {
        EXPECT_EQ(validatedSSHUsername(text), std::nullopt) << testing::PrintToString(text);
    }
}

TEST(ValidatedSSHUsername, RefusesAShortNameOfMultibyteCharacters) {
    std::string seventeenCharacters;
    for (int count = 0; count < 17; ++count) {
        seventeenCharacters += "\u00E4";
    }
    EXPECT_EQ(validatedSSHUsername(seventeenCharacters), std::nullopt);
}

TEST(ValidatedSSHHost, AcceptsAndTrims) {
    const std::vector<TextCase> cases{
        {"studio", "studio"},
        {" studio.tailnet.ts.net\n", "studio.tailnet.ts.net"},
        {"\u3000studio\u2029", "studio"},
        {"100.64.0.7", "100.64.0.7"},
        {"9", "9"},
        {"fe80::1%en0", "fe80::1%en0"},
        {"fd7a:115c:a1e0::1", "fd7a:115c:a1e0::1"},
        {"a_b", "a_b"},
        {"a-", "a-"},
        {"a..", "a.."},
        {std::string(253, 'a'), std::string(253, 'a')},
        {"\n" + std::string(253, '1') + "\n", std::string(253, '1')},
    };
    for (const TextCase& row : cases) {
        EXPECT_EQ(validatedSSHHost(row.input), row.expected) << testing::PrintToString(row.input);
    }
}

TEST(ValidatedSSHHost, Refuses) {
    const std::vector<std::string> texts{
        "",
        "  \n",
        "\u00A0",
        std::string(254, 'a'),
        "-oProxyCommand=id",
        " -v",
        "-",
        "::1",
        "%en0",
        ".local",
        "_host",
        "stu dio",
        "studio;id",
        "studio\nid",
        "studio\r\nid",
        "studio&id",
        "studio|id",
        "studio>id",
        "studio\"",
        "~",
        "*",
        "\u202Estudio",
        "$(id)",
        "a$(id)",
        "`id`",
        "a'",
        "user@studio",
        "[fe80::1]",
        "studio/share",
        "studio\\",
        "st\u00FCdio",
        "studio\u200B",
        "studio\0"s,
        "stu\0dio"s,
        "studio\xC3",
    };
    for (const std::string& text : texts) {
        EXPECT_EQ(validatedSSHHost(text), std::nullopt) << testing::PrintToString(text);
    }
}

TEST(ValidatedSSHHost, HandlesAVeryLongText) {
    const std::string longText(4U << 20U, 'a');
    EXPECT_EQ(validatedSSHHost(longText), std::nullopt);
    EXPECT_EQ(validatedSSHUsername(longText), std::nullopt);
    EXPECT_EQ(validatedSSHHost(std::string(4U << 20U, ' ')), std::nullopt);
    EXPECT_EQ(validatedSSHUsername(std::string(4U << 20U, ' ')), "");
}

TEST(SSHTarget, JoinsValidParts) {
    EXPECT_EQ(sshTarget("anna", "studio"), "anna@studio");
    EXPECT_EQ(sshTarget(" anna ", "\tstudio\n"), "anna@studio");
    EXPECT_EQ(sshTarget("", "studio"), "studio");
    EXPECT_EQ(sshTarget("  ", " studio "), "studio");
    EXPECT_EQ(sshTarget("anna", "fe80::1%en0"), "anna@fe80::1%en0");
}

TEST(SSHTarget, IsAbsentWhenEitherPartIsInvalid) {
    EXPECT_EQ(sshTarget("-l", "studio"), std::nullopt);
    EXPECT_EQ(sshTarget("anna", "-v"), std::nullopt);
    EXPECT_EQ(sshTarget("anna", ""), std::nullopt);
    EXPECT_EQ(sshTarget("", ""), std::nullopt);
    EXPECT_EQ(sshTarget("-l", "-v"), std::nullopt);
    EXPECT_EQ(sshTarget("anna@studio", "studio"), std::nullopt);
}

TEST(ValidatedPID, AcceptsTwoToTheLargestPid) {
    for (const std::int64_t pid :
         {std::int64_t{2}, std::int64_t{3}, std::int64_t{4711}, std::int64_t{2147483647}}) {
        EXPECT_EQ(validatedPID(pid), pid);
        EXPECT_EQ(remoteTerminateCommand(pid),
                  "/bin/kill -TERM " + std::to_string(pid) + " && /bin/echo quit_ok");
    }
    for (const std::int64_t pid :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{-4711},
          std::int64_t{2147483648}, std::int64_t{4294967298},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(validatedPID(pid), std::nullopt) << pid;
        EXPECT_EQ(remoteTerminateCommand(pid), std::nullopt) << pid;
    }
}

TEST(ShellQuoted, PutsOneWordInSingleQuotes) {
    EXPECT_EQ(shellQuoted(""), "''");
    EXPECT_EQ(shellQuoted("word"), "'word'");
    EXPECT_EQ(shellQuoted("two words"), "'two words'");
    EXPECT_EQ(shellQuoted("it's"), R"('it'\''s')");
    EXPECT_EQ(shellQuoted("'"), R"(''\''')");
    EXPECT_EQ(shellQuoted("''"), R"(''\'''\''')");
    EXPECT_EQ(shellQuoted(R"($HOME "`id`" \)"), R"('$HOME "`id`" \')");
    EXPECT_EQ(shellQuoted("a\nb"), "'a\nb'");
    EXPECT_EQ(shellQuoted("Caf\u00E9"), "'Caf\u00E9'");
}

}  // namespace
}  // namespace tallowcrest::CommandSafetyPolicy
