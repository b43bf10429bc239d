#include "core/json_reader.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

bool isJSON(std::string_view text) {
    JsonReader reader(text);
    reader.skip();
    return reader.isComplete();
}

/// Absent when the text is not JSON or its value is not a string.
std::optional<std::string> stringOf(const std::string& text) {
    JsonReader reader(text);
    std::optional<std::string> value = reader.text();
    return reader.isComplete() ? value : std::nullopt;
}

TEST(JsonReader, AcceptsJSON) {
    for (const std::string& text : {"null"s,
                                    "true"s,
                                    "false"s,
                                    "0"s,
                                    "-0"s,
                                    "7"s,
                                    "-12"s,
                                    "0.5"s,
                                    "10.25e3"s,
                                    "1E-7"s,
                                    "2e+9"s,
                                    R"("")"s,
                                    R"("text")"s,
                                    "\"\x7F\""s,
                                    R"("\"\\\/\b\f\n\r\t\u00e4")"s,
                                    "\"ä\U0001F600\""s,
                                    "[]"s,
                                    "[ ]"s,
                                    "[1]"s,
                                    "[1, [2, []], {}]"s,
                                    "{}"s,
                                    "{ }"s,
                                    R"({"a":1})"s,
                                    R"({"a":1,"a":[{}],"":null})"s,
                                    " \t\r\n{\t\"a\"\n:\r1 }\n "s,
                                    std::string(100'000, '[') + std::string(100'000, ']')}) {
        EXPECT_TRUE(isJSON(text)) << text.substr(0, 100);
    }
}

TEST(JsonReader, RefusesEverythingElse) {
    for (const std::string& text : {""s,
                                    " "s,
                                    "nul"s,
                                    "nullx"s,
                                    "True"s,
                                    "'a'"s,
                                    "undefined"s,
                                    "NaN"s,
                                    "-"s,
                                    "+1"s,
                                    "01"s,
                                    ".5"s,
                                    "1."s,
                                    "1e"s,
                                    "1e+"s,
                                    "--1"s,
                                    "0x1"s,
                                    "1 2"s,
                                    R"(")"s,
                                    R"("a)"s,
                                    "\"\n\""s,
                                    "\"\0\""s,
                                    R"("\x")"s,
                                    R"("\)"s,
                                    R"("\u12")"s,
                                    R"("\u12G4")"s,
                                    R"("\u-123")"s,
                                    R"("\ud800")"s,
                                    R"("\ud800x")"s,
                                    R"("\ud800\n")"s,
                                    R"("\ud800\ud800")"s,
                                    R"("\udc00")"s,
                                    "\"\xFF\""s,
                                    "\"\xC3\""s,
                                    "\"\xED\xA0\x80\""s,
                                    "["s,
                                    "]"s,
                                    "[1"s,
                                    "[1,"s,
                                    "[,]"s,
                                    "[1,]"s,
                                    "[1 2]"s,
                                    "[1}"s,
                                    "{"s,
                                    "}"s,
                                    "{]"s,
                                    "{a:1}"s,
                                    "{1:1}"s,
                                    R"({"a"})"s,
                                    R"({"a" 1})"s,
                                    R"({"a":})"s,
                                    R"({"a":1,})"s,
                                    R"({,"a":1})"s,
                                    R"({"a":1 "b":2})"s,
                                    R"({"a":1)"s,
                                    "{}x"s,
                                    "{}\0"s,
                                    "\xEF\xBB\xBF{}"s,
                                    "// a\n1"s,
                                    std::string(1'000'000, '['),
                                    std::string(100'000, '[') + std::string(99'999, ']')}) {
        EXPECT_FALSE(isJSON(text)) << text.substr(0, 100);
    }
}

TEST(JsonReader, InvalidUTF8IsFoundWhereverItIs) {
    for (std::size_t offset = 0; offset < 20; ++offset) {
        const auto around = [offset](const char* bytes) {
            return '"' + std::string(offset, 'a') + bytes + std::string(20 - offset, 'b') + '"';
        };
        for (const char* valid : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
            EXPECT_TRUE(isJSON(around(valid))) << offset;
            EXPECT_TRUE(isJSON("{" + around(valid) + ":1}")) << offset;
        }
        for (const char* invalid :
             {"\xC3", "\xA9", "\xC3\\u00a9", "\xE2\x82", "\xC0\x80", "\xF4\x90\x80\x80", "\xFE"}) {
            EXPECT_FALSE(isJSON(around(invalid))) << offset;
            EXPECT_FALSE(isJSON("{" + around(invalid) + ":1}")) << offset;
            EXPECT_FALSE(isJSON("[1, [" + around(invalid) + "]]")) << offset;
        }
    }
    EXPECT_FALSE(isJSON("{}\xC3\xA9")) << "outside of a string";
}

TEST(JsonReader, ResolvesEscapes) {
    EXPECT_EQ(stringOf(R"("")"), "");
    EXPECT_EQ(stringOf(R"("a\"b\\c\/d\be\ff\ng\rh\ti")"), "a\"b\\c/d\be\ff\ng\rh\ti");
    EXPECT_EQ(stringOf(R"("\u0041\u00E4\u20ac\ud83d\uDE00")"), "Aä€\U0001F600");
    EXPECT_EQ(stringOf(R"("a\u0000b")"), "a\0b"s);
    EXPECT_EQ(stringOf("\"ä\U0001F600\""), "ä\U0001F600");
    EXPECT_EQ(stringOf("7"), std::nullopt);
    EXPECT_EQ(stringOf(R"(["a"])"), std::nullopt);
}

TEST(JsonReader, GivesTheMembersInOrderWhateverTheirTypes) {
    JsonReader reader(R"({"t":"x","skipped":{"t":[1,{"t":2}]},"\u0062":true,"c":"yes","t":0})");
    std::vector<std::string> seen;
    ASSERT_TRUE(reader.enterObject());
    while (const auto key = reader.nextMember()) {
        const std::string name(*key);
        if (name == "t") {
            seen.push_back("t=" + reader.text().value_or("absent"));
        } else if (name == "b" || name == "c") {
            const std::optional<bool> value = reader.boolean();
            seen.push_back(name + (!value ? "=absent" : *value ? "=true" : "=false"));
        } else {
            reader.skip();
        }
    }
    EXPECT_TRUE(reader.isComplete());
    EXPECT_THAT(seen, ElementsAre("t=x", "b=true", "c=absent", "t=absent"));
}

TEST(JsonReader, GivesTheElementsInOrderAndEntersOnlyWhatIsThere) {
    JsonReader reader(R"(["a",[],"b",{}])");
    EXPECT_FALSE(reader.enterObject());
    ASSERT_TRUE(reader.enterArray());
    std::vector<std::string> seen;
    while (reader.nextElement()) {
        if (reader.enterArray()) {
            EXPECT_FALSE(reader.nextElement());
            seen.emplace_back("array");
        } else if (reader.enterObject()) {
            EXPECT_FALSE(reader.nextMember());
            seen.emplace_back("object");
        } else {
            seen.push_back(reader.text().value_or("absent"));
        }
    }
    EXPECT_TRUE(reader.isComplete());
    EXPECT_THAT(seen, ElementsAre("a", "array", "b", "object"));
}

TEST(JsonReader, IsNotCompleteBeforeTheEnd) {
    JsonReader reader(R"({"a":1})");
    EXPECT_FALSE(reader.isComplete());
    ASSERT_TRUE(reader.enterObject());
    ASSERT_TRUE(reader.nextMember());
    reader.skip();
    EXPECT_FALSE(reader.isComplete());
    EXPECT_FALSE(reader.nextMember());
    EXPECT_TRUE(reader.isComplete());
}

TEST(JsonReader, ReadsWholeNumbers) {
    const std::vector<std::pair<const char*, std::optional<std::int64_t>>> table{
        {"0", 0},
        {" -7 ", -7},
        {"-0", 0},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"3.0", 3},
        {"1e2", 100},
        {"9007199254740992.0", 9007199254740992},
        {"9007199254740994.0", std::nullopt},
        {"9223372036854775808", std::nullopt},
        {"1.5", std::nullopt},
        {"1e400", std::nullopt},
        {"\"7\"", std::nullopt},
        {"null", std::nullopt},
        {"[7]", std::nullopt},
    };
    for (const auto& [text, number] : table) {
        JsonReader reader(text);
        EXPECT_EQ(reader.integer(), number) << text;
        EXPECT_TRUE(reader.isComplete()) << text;
    }
    for (const char* text : {"", "+7", "07", "7.", "-", "0x7", "7a"}) {
        JsonReader reader(text);
        reader.integer();
        EXPECT_FALSE(reader.isComplete()) << text;
    }
}

TEST(JsonReader, TellsNullFromOtherValues) {
    JsonReader reader("[null, 7]");
    ASSERT_TRUE(reader.enterArray());
    ASSERT_TRUE(reader.nextElement());
    EXPECT_TRUE(reader.null());
    ASSERT_TRUE(reader.nextElement());
    EXPECT_FALSE(reader.null());
    EXPECT_EQ(reader.integer(), 7);
}

}  // namespace
}  // namespace tallowcrest
