#include "core/record_json.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tallowcrest {
namespace {

using nlohmann::json;

const UUID exampleID = *UUID::fromText("0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF");
constexpr const char* exampleIDText = "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF";
constexpr Date exampleDate{700000000.25};
const std::string awkwardText =
    "line\n\"quoted\" \\ tab\t nul" + std::string(1, '\0') + " \x7F \u20AC \U0001F98A /";

// One example of each record, with what it must be as JSON
// ------------------------------------------

template <class Stored>
struct Codec;

template <class R>
std::vector<R> wrapped(const std::vector<R>*, const R& record, const std::string&) {
    return {record};
}
template <class R>
std::map<std::string, R> wrapped(const std::map<std::string, R>*, const R& record,
                                 const std::string& key) {
    return {{key, record}};
}

template <>
struct Codec<std::vector<HistoryPoint>> {
    static constexpr auto decode = record_json::decodeHistory;
    static HistoryPoint example() { return {exampleID, exampleDate, 12.5, 64.25}; }
    static json exampleMembers() {
        return {{"id", exampleIDText}, {"date", 700000000.25}, {"cpu", 12.5}, {"memory", 64.25}};
    }
};

template <>
struct Codec<std::vector<ActivityEvent>> {
    static constexpr auto decode = record_json::decodeActivityLog;
    static ActivityEvent example() { return {exampleID, exampleDate, "Action", awkwardText}; }
    static json exampleMembers() {
        return {{"id", exampleIDText},
                {"date", 700000000.25},
                {"title", "Action"},
                {"detail", awkwardText}};
    }
};

template <>
struct Codec<std::vector<AIChatMessage>> {
    static constexpr auto decode = record_json::decodeChatMessages;
    static AIChatMessage example() { return {exampleID, "user", awkwardText, exampleDate}; }
    static json exampleMembers() {
        return {
            {"id", exampleIDText}, {"role", "user"}, {"text", awkwardText}, {"date", 700000000.25}};
    }
};

template <>
struct Codec<std::map<std::string, AITrustRecord>> {
    static constexpr auto decode = record_json::decodeTrustRecords;
    static AITrustRecord example() {
        return {"local_purge", 3, std::numeric_limits<std::int64_t>::max(), -1, exampleDate};
    }
    static json exampleMembers() {
        return {{"actionType", "local_purge"},
                {"approvedCount", 3},
                {"runCount", std::numeric_limits<std::int64_t>::max()},
                {"blockedCount", -1},
                {"lastUpdated", 700000000.25}};
    }
};

template <>
struct Codec<std::vector<AIRuleDraft>> {
    static constexpr auto decode = record_json::decodeRuleDrafts;
    static AIRuleDraft example() { return {exampleID, "Title", "trigger", "action", "low", true}; }
    static json exampleMembers() {
        return {{"id", exampleIDText}, {"title", "Title"}, {"trigger", "trigger"},
                {"action", "action"},  {"risk", "low"},    {"enabled", true}};
    }
};

template <>
struct Codec<std::map<std::string, RemoteProfile>> {
    static constexpr auto decode = record_json::decodeRemoteProfiles;
    static RemoteProfile example() { return {"studio", "Studio", "render", 82.5, false}; }
    static json exampleMembers() {
        return {{"id", "studio"},
                {"nickname", "Studio"},
                {"role", "render"},
                {"warningThreshold", 82.5},
                {"allowRemotePurge", false}};
    }
};

template <>
struct Codec<std::vector<RemoteHistoryPoint>> {
    static constexpr auto decode = record_json::decodeRemoteHistory;
    static RemoteHistoryPoint example() {
        return {exampleID, "studio", exampleDate, 12.5, 64.25, "Needs Setup"};
    }
    static json exampleMembers() {
        return {{"id", exampleIDText}, {"hostName", "studio"}, {"date", 700000000.25},
                {"cpu", 12.5},         {"memory", 64.25},      {"status", "Needs Setup"}};
    }
};

template <class Stored>
class RecordJSON : public ::testing::Test {
protected:
    using Example = Codec<Stored>;
    static constexpr bool isTable = requires(Stored stored) { typename Stored::mapped_type; };

    static auto decode(const std::string& text) { return Example::decode(text); }
    static Stored exampleStored() {
        return wrapped(static_cast<const Stored*>(nullptr), Example::example(), "key");
    }
    static std::string textOf(const json& record) {
        return (isTable ? json{{"key", record}} : json::array({record})).dump();
    }
    static const json recordIn(const json& document) {
        return isTable ? document.at("key") : document.at(0);
    }
};

using StoredTypes =
    ::testing::Types<std::vector<HistoryPoint>, std::vector<ActivityEvent>,
                     std::vector<AIChatMessage>, std::map<std::string, AITrustRecord>,
                     std::vector<AIRuleDraft>, std::map<std::string, RemoteProfile>,
                     std::vector<RemoteHistoryPoint>>;
TYPED_TEST_SUITE(RecordJSON, StoredTypes);

TYPED_TEST(RecordJSON, HoldsTheMembersAndNothingElse) {
    const auto text = record_json::encode(this->exampleStored());
    ASSERT_TRUE(text);
    EXPECT_EQ(this->recordIn(json::parse(*text)), TestFixture::Example::exampleMembers());
}

TYPED_TEST(RecordJSON, ReadsBackWhatWasWritten) {
    const auto text = record_json::encode(this->exampleStored());
    ASSERT_TRUE(text);
    EXPECT_EQ(this->decode(*text), this->exampleStored());
}

TYPED_TEST(RecordJSON, AnEmptyValueReadsBackEmpty) {
    const auto text = record_json::encode(TypeParam{});
    ASSERT_TRUE(text);
    EXPECT_EQ(*text, TestFixture::isTable ? "{}" : "[]");
    EXPECT_EQ(this->decode(*text), TypeParam{});
}

TYPED_TEST(RecordJSON, EachMissingMemberFailsTheWhole) {
    const json members = TestFixture::Example::exampleMembers();
    ASSERT_TRUE(this->decode(this->textOf(members)));
    for (const auto& [name, value] : members.items()) {
        json broken = members;
        broken.erase(name);
        EXPECT_FALSE(this->decode(this->textOf(broken))) << name;
    }
}

TYPED_TEST(RecordJSON, EachMistypedMemberFailsTheWhole) {
    const json members = TestFixture::Example::exampleMembers();
    const json samples[] = {nullptr,       true,          7, 7.5, "text", exampleIDText,
                            json::array(), json::object()};
    int refused = 0;
    for (const auto& [name, value] : members.items()) {
        for (const json& sample : samples) {
            const bool sameKind =
                value.type() == sample.type() ||
                // An integer literal is a number with a fraction too, but not the reverse.
                (value.is_number_float() && sample.is_number()) ||
                (value.is_number_integer() && sample.is_number_integer());
            const bool isID = value == exampleIDText;
            if (sameKind && (!isID || sample == exampleIDText)) {
                continue;
            }
            json broken = members;
            broken[name] = sample;
            EXPECT_FALSE(this->decode(this->textOf(broken))) << name << " = " << sample.dump();
            ++refused;
        }
    }
    EXPECT_GE(refused, static_cast<int>(members.size()) * 5);
}

TYPED_TEST(RecordJSON, OneBrokenRecordLosesTheOthersToo) {
    const json good = TestFixture::Example::exampleMembers();
    for (const json& broken :
         {json(nullptr), json(3), json("text"), json::array(), json::object()}) {
        const json document = TestFixture::isTable ? json{{"a", good}, {"b", broken}, {"c", good}}
                                                   : json::array({good, broken, good});
        EXPECT_FALSE(this->decode(document.dump())) << broken.dump();
    }
}

TYPED_TEST(RecordJSON, UnknownMembersAreIgnored) {
    json members = TestFixture::Example::exampleMembers();
    members["later"] = json{{"nested", {1, 2, {{"deep", nullptr}}}}};
    EXPECT_EQ(this->decode(this->textOf(members)), this->exampleStored());
}

TYPED_TEST(RecordJSON, WhatIsNotTheRightDocumentIsAbsent) {
    const std::string good = this->textOf(TestFixture::Example::exampleMembers());
    const std::string other = TestFixture::isTable ? "[]" : "{}";
    for (const std::string& text :
         {std::string(), std::string("null"), std::string("3"), std::string("\"text\""),
          std::string("true"), other, good + "x", good + good, good.substr(0, good.size() - 1),
          "x" + good, std::string("["), std::string("{"), std::string("]"), std::string("\"")}) {
        EXPECT_FALSE(this->decode(text)) << text;
    }
    EXPECT_TRUE(this->decode(" \n" + good + " \n"));
}

TYPED_TEST(RecordJSON, UnknownMembersMayNestButNotWithoutEnd) {
    std::string text = this->textOf(TestFixture::Example::exampleMembers());
    const std::size_t end = text.rfind('}', text.size() - 2);
    const auto withNested = [&text, end](std::size_t depth) {
        std::string nested = text;
        nested.insert(end, ",\"later\":" + std::string(depth, '[') + std::string(depth, ']'));
        return nested;
    };
    EXPECT_TRUE(this->decode(withNested(60)));
    EXPECT_FALSE(this->decode(withNested(65)));
    EXPECT_FALSE(this->decode(withNested(1000000)));
}

TYPED_TEST(RecordJSON, DeepNestingIsRefusedWithoutAnOverflow) {
    constexpr std::size_t million = 1000000;
    EXPECT_FALSE(this->decode(std::string(million, '[')));
    EXPECT_FALSE(this->decode(std::string(million, '[') + std::string(million, ']')));
    std::string objects;
    for (std::size_t i = 0; i < million; ++i) {
        objects += "{\"a\":";
    }
    EXPECT_FALSE(this->decode(objects));
}

// Form of single values
// ----------------------------------------------------------------------------

std::string pointText(const std::string& date, const std::string& id = exampleIDText) {
    return R"([{"id":")" + id + R"(","date":)" + date + R"(,"cpu":1,"memory":2}])";
}

std::string trustText(const std::string& count) {
    return R"({"a":{"actionType":"a","approvedCount":)" + count +
           R"(,"runCount":0,"blockedCount":0,"lastUpdated":0}})";
}

TEST(RecordJSONText, WritesTheMembersInTheirOrder) {
    EXPECT_EQ(
        record_json::encode(std::vector{HistoryPoint{exampleID, Date{700000000.25}, 12.5, 64}}),
        R"([{"id":"0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF","date":700000000.25,)"
        R"("cpu":12.5,"memory":64}])");
    EXPECT_EQ(record_json::encode(std::map<std::string, AITrustRecord>{
                  {"b", {"b", 1, 2, 3, Date{0.5}}}, {"a", {"a", 0, 0, 0, Date{-1}}}}),
              R"({"a":{"actionType":"a","approvedCount":0,"runCount":0,"blockedCount":0,)"
              R"("lastUpdated":-1},"b":{"actionType":"b","approvedCount":1,"runCount":2,)"
              R"("blockedCount":3,"lastUpdated":0.5}})");
}

TEST(RecordJSONText, EscapesWhatJSONDoesNotAllow) {
    const std::string text = "\"\\\b\f\n\r\t\x01\x1F\x7F/\u20AC";
    const auto encoded =
        record_json::encode(std::vector{ActivityEvent{exampleID, Date{0}, text, ""}});
    ASSERT_TRUE(encoded);
    for (const char c : *encoded) {
        EXPECT_FALSE(c >= 0 && c < 0x20);
    }
    EXPECT_EQ(record_json::decodeActivityLog(*encoded)->front().title, text);
}

TEST(RecordJSONText, KeepsEveryFiniteFigureExactly) {
    const double figures[] = {0.0,
                              -0.0,
                              0.1,
                              1.0 / 3.0,
                              100.0,
                              1e15,
                              123456789012345678.0,
                              1e16,
                              1e22,
                              1e300,
                              -1e-300,
                              5e-324,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::lowest(),
                              std::nextafter(700000000.25, 1e9),
                              9007199254740993.0,
                              9223372036854775808.0,
                              18446744073709551616.0};
    for (const double figure : figures) {
        const std::vector points{HistoryPoint{exampleID, Date{figure}, figure, -figure}};
        const auto text = record_json::encode(points);
        ASSERT_TRUE(text) << figure;
        EXPECT_TRUE(json::accept(*text)) << *text;
        EXPECT_EQ(record_json::decodeHistory(*text), points) << *text;
    }
}

TEST(RecordJSONText, AFigureThatIsNotFiniteHasNoForm) {
    for (const double figure :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        const HistoryPoint good{exampleID, Date{1}, 1, 1};
        EXPECT_TRUE(record_json::encode(std::vector{good, good}));
        EXPECT_FALSE(record_json::encode(
            std::vector{good, HistoryPoint{exampleID, Date{figure}, 1, 1}, good}));
        EXPECT_FALSE(
            record_json::encode(std::vector{HistoryPoint{exampleID, Date{1}, figure, 1}, good}));
        EXPECT_FALSE(
            record_json::encode(std::vector{good, HistoryPoint{exampleID, Date{1}, 1, figure}}));
        EXPECT_FALSE(record_json::encode(
            std::map<std::string, RemoteProfile>{{"a", {"a", "", "", figure, false}}}));
    }
}

TEST(RecordJSONText, TextThatIsNotUTF8HasNoForm) {
    for (const char* text :
         {"\xFF", "a\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
        EXPECT_FALSE(
            record_json::encode(std::vector{ActivityEvent{exampleID, Date{0}, "title", text}}));
        EXPECT_FALSE(
            record_json::encode(std::map<std::string, RemoteProfile>{{text, RemoteProfile{}}}));
    }
}

TEST(RecordJSONText, RefusesTextThatIsNotUTF8) {
    EXPECT_FALSE(record_json::decodeTrustRecords("{\"\xFF\":{}}"));
    EXPECT_FALSE(record_json::decodeActivityLog(
        R"([{"id":"0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF","date":0,"title":"\ud800","detail":""}])"));
    EXPECT_FALSE(record_json::decodeActivityLog(
        "[{\"id\":\"0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF\",\"date\":0,\"title\":\"\xC0\xAF\","
        "\"detail\":\"\"}]"));
}

TEST(RecordJSONText, ReadsAnIdentifierInEitherCaseAndWritesUpperCase) {
    const auto points =
        record_json::decodeHistory(pointText("0", "0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"));
    ASSERT_TRUE(points);
    EXPECT_EQ(points->front().id, exampleID);
    EXPECT_NE(record_json::encode(*points)->find(exampleIDText), std::string::npos);
    for (const char* id :
         {"", "0F1E2D3C4B5A49788695A4B3C2D1E0FF", "{0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF}",
          "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F", "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FG"}) {
        EXPECT_FALSE(record_json::decodeHistory(pointText("0", id))) << id;
    }
}

TEST(RecordJSONText, ReadsAnyNumberAsADate) {
    const std::pair<const char*, double> dates[] = {
        {"0", 0.0}, {"-5", -5.0}, {"7e8", 7e8}, {"1.5", 1.5}, {"18446744073709551615", 0x1p64}};
    for (const auto& [text, seconds] : dates) {
        const auto points = record_json::decodeHistory(pointText(text));
        ASSERT_TRUE(points) << text;
        EXPECT_EQ(points->front().date.secondsSinceReference, seconds) << text;
    }
    for (const char* text : {"\"2020-01-01\"", "1e999", "-1e999", "NaN", "Infinity", "0x10", "01",
                             ".5", "1.", "+1", "", "null", "false"}) {
        EXPECT_FALSE(record_json::decodeHistory(pointText(text))) << text;
    }
}

TEST(RecordJSONText, ReadsIntegersOfEveryFormWithinRange) {
    const std::pair<const char*, std::int64_t> counts[] = {
        {"0", 0},
        {"-0", 0},
        {"3.0", 3},
        {"1e2", 100},
        {"-0.0", 0},
        {"9007199254740992.0", 9007199254740992},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()}};
    for (const auto& [text, count] : counts) {
        const auto records = record_json::decodeTrustRecords(trustText(text));
        ASSERT_TRUE(records) << text;
        EXPECT_EQ(records->at("a").approvedCount, count) << text;
    }
    for (const char* text :
         {"3.5", "1e-1", "1e300", "9223372036854775808", "18446744073709551615",
          "18446744073709551616", "-9223372036854775809", "\"3\"", "true", "null"}) {
        EXPECT_FALSE(record_json::decodeTrustRecords(trustText(text))) << text;
    }
}

TEST(RecordJSONText, BracketsInsideTextsAreNoNesting) {
    const std::string brackets(1000, '[');
    const std::vector events{ActivityEvent{exampleID, Date{0}, brackets + "\"\\", brackets}};
    EXPECT_EQ(record_json::decodeActivityLog(*record_json::encode(events)), events);
}

TEST(RecordJSONText, AWholeTimelineReadsBack) {
    std::vector<HistoryPoint> points;
    for (int i = 0; i < 720; ++i) {
        points.push_back({UUID::random(), Date{7e8 + 4.000123 * i}, i / 7.0, 100 - i / 7.3});
    }
    EXPECT_EQ(record_json::decodeHistory(*record_json::encode(points)), points);
}

}  // namespace
}  // namespace tallowcrest
