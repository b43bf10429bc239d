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
          std::string("sk-\xFF"), "sk-" + std::string(100000, 'a'),
          "sk-" + std::string(maximumKeyLength - 2, 'a')}) {
        EXPECT_EQ(validated(bad), std::nullopt) << bad.substr(0, 20);
    }
    EXPECT_TRUE(validated("sk-" + std::string(maximumKeyLength - 3, 'a')));
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

}  // namespace
}  // namespace tallowcrest
