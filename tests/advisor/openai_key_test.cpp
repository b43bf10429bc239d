#include "advisor/openai_key.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/fake_advisor_ports.h"

namespace tallowcrest {
namespace {

std::optional<std::string> validated(const std::string& text) {
    const auto key = validatedOpenAIKey(text);
    return key ? std::optional(std::string(key->view())) : std::nullopt;
}

TEST(ValidatedOpenAIKey, TestsThePrefixAlone) {
    EXPECT_EQ(validated("sk-abc"), "sk-abc");
    EXPECT_EQ(validated(" \n sk-abc\r\n\t"), "sk-abc");
    EXPECT_EQ(validated("sk-"), "sk-");
    EXPECT_EQ(validated("sk-with blanks and \u00E4"), "sk-with blanks and \u00E4");
    for (const char* bad :
         {"", " ", "SK-abc", "Sk-abc", "sk", "sk_abc", "abc", "x sk-abc", "-sk-"}) {
        EXPECT_EQ(validated(bad), std::nullopt) << bad;
    }
}

TEST(ValidatedOpenAIKey, RefusesWhatCannotStandInAHeader) {
    for (const std::string& bad :
         {std::string("sk-a\nb"), std::string("sk-a\r\nHost: evil"), std::string("sk-a\rb"),
          std::string("sk-a\tb"), std::string("sk-a\0b", 6), std::string("sk-a\x1B[0m"),
          std::string("sk-a\x7F"
                      "b"),
          std::string("sk-a\u0080"), std::string("sk-\u009Fa"), std::string("sk-\u00A0\u0085b"),
          std::string("sk-\xFF"), "sk-" + std::string(100000, 'a'),
          "sk-" + std::string(maximumKeyLength - 2, 'a')}) {
        EXPECT_EQ(validated(bad), std::nullopt) << bad.substr(0, 20);
    }
    EXPECT_TRUE(validated("sk-" + std::string(maximumKeyLength - 3, 'a')));
    EXPECT_TRUE(validated("sk-\u00A0b\u00C2\u0100")) << "nothing of this is a control";
}

TEST(ReadOpenAIKey, GivesOnlyAKeyThatCanStandInAHeader) {
    FakeSecretStore secrets;
    EXPECT_FALSE(readOpenAIKey(secrets));
    for (const auto& [stored, isGiven] : std::initializer_list<std::pair<std::string, bool>>{
             {"sk-abc", true},
             {"another form", true},  // stored by an earlier version or another program
             {"", false},
             {"sk-a\nb", false},
             {"sk-\xFF", false},
             {std::string(maximumKeyLength + 1, 'a'), false}}) {
        secrets.secret = stored;
        const auto key = readOpenAIKey(secrets);
        ASSERT_EQ(key.has_value(), isGiven) << stored.substr(0, 20);
        EXPECT_TRUE(!key || key->view() == stored);
    }
    secrets.secret = "sk-abc";
    secrets.remainsLocked = true;
    EXPECT_FALSE(readOpenAIKey(secrets));
}

struct StrikingOutCase {
    std::string text;
    std::string struckOut;
};

TEST(StrikingOutKey, FindsItWhereverItStands) {
    using Case = StrikingOutCase;
    const std::string key = "sk-ab/c1";
    for (const Case& c : {
             Case{"", ""},
             Case{"sk-ab/c", "sk-ab/c"},
             Case{"sk-ab/c1", "\u2022\u2022\u2022"},
             Case{"ssk-ab/c1sk-ab/c12", "s\u2022\u2022\u2022\u2022\u2022\u20222"},
             Case{"sk-sk-ab/c1", "sk-\u2022\u2022\u2022"},
             Case{"\u00E4sk-ab/c1\u00E4", "\u00E4\u2022\u2022\u2022\u00E4"},
             Case{R"(sk-ab\/c1)", "\u2022\u2022\u2022"},
             Case{R"(sk-ab\\/c1)", "\u2022\u2022\u2022"},
             Case{R"("\sk-ab/c1\n")", "\"\u2022\u2022\u2022\\n\""},
             Case{R"("\"sk-ab/c1\"")", "\"\\\"\u2022\u2022\u2022\\\"\""},
             Case{"sk-ab\\", "sk-ab\\"},
             Case{"SK-AB/C1", "SK-AB/C1"},
         }) {
        EXPECT_EQ(strikingOutKey(c.text, key), c.struckOut) << c.text;
    }
    EXPECT_EQ(strikingOutKey(R"(a\bcdefg and a\\bcdefg)", R"(a\bcdefg)"),
              "\u2022\u2022\u2022 and \u2022\u2022\u2022");
    EXPECT_EQ(strikingOutKey("task-force", "sk-"), "task-force") << "too short for a secret";
    EXPECT_EQ(strikingOutKey("text", ""), "text");
}

TEST(StrikingOutKey, ReadsTheCodesOfCharacters) {
    using Case = StrikingOutCase;
    const std::string key = "sk-u/\u00E4\U0001F511c";
    for (const Case& c : {
             Case{R"(sk\u002du/\u00e4\ud83d\uDD11c.)", "\u2022\u2022\u2022."},
             Case{R"("\u0073\u006B\u002D\u0075\u002F\u00E4\uD83D\uDD11\u0063")",
                  "\"\u2022\u2022\u2022\""},
             Case{R"(\\\\u0073k-u\\\/\\u00E4\\uD83D\\uDD11c)", "\u2022\u2022\u2022"},
             Case{"sk-\\u0075/\u00E4\\u\U0001F511c", "sk-\\u0075/\u00E4\\u\U0001F511c"},
             Case{R"(sk-u/\u00e4\ud83dc)", R"(sk-u/\u00e4\ud83dc)"},
             Case{R"(sk-u/\u00e)", R"(sk-u/\u00e)"},
             Case{R"(sku002du/\u00e4\ud83d\udd11c)", R"(sku002du/\u00e4\ud83d\udd11c)"},
             Case{R"(sk\u002eu/\u00e4\ud83d\udd11c)", R"(sk\u002eu/\u00e4\ud83d\udd11c)"},
             Case{R"(sk\u-02du/\u00e4\ud83d\udd11c)", R"(sk\u-02du/\u00e4\ud83d\udd11c)"},
         }) {
        EXPECT_EQ(strikingOutKey(c.text, key), c.struckOut) << c.text;
    }
}

TEST(StrikingOutKey, TakesAKeyThatLooksEscapedAsItIs) {
    for (const std::string key : {R"(a\u0075bcd)", R"(\u0075abcd)", R"(u0075abcd)", R"(abcdefg\)",
                                  R"(abcdef\u00)", R"(\\\\\\\\)"}) {
        for (const std::string before : {"", " ", "\\", R"(\\)"}) {
            const std::string struckOut = strikingOutKey(before + key + "41", key);
            EXPECT_EQ(struckOut.find(key), std::string::npos) << before << key;
            EXPECT_NE(struckOut.find("\u2022\u2022\u2022"), std::string::npos) << before << key;
            EXPECT_TRUE(struckOut.ends_with("41")) << struckOut;
        }
    }
}

TEST(StrikingOutKey, IsNotSlowedByALongRowOfBackslashes) {
    const std::string text(4'000'000, '\\');
    EXPECT_EQ(strikingOutKey(text, "sk-ab/c1"), text);
}

}  // namespace
}  // namespace tallowcrest
