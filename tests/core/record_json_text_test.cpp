#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "core/record_json.h"
#include "tests/support/numbers.h"

/// The form of single values.
namespace tallowcrest {
namespace {

constexpr const char* idText = "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF";
const UUID pointID = *UUID::fromText(idText);

std::string pointText(const std::string& date, const std::string& id = idText) {
    return R"([{"id":")" + id + R"(","date":)" + date + R"(,"cpu":1,"memory":2}])";
}

std::string trustText(const std::string& count) {
    return R"({"a":{"actionType":"a","approvedCount":)" + count +
           R"(,"runCount":0,"blockedCount":0,"lastUpdated":0}})";
}

TEST(RecordJSONText, WritesTheMembersInOrder) {
    EXPECT_EQ(record_json::encode(std::vector{HistoryPoint{pointID, Date{700000000.25}, 12.5, 64}}),
              R"([{"id":"0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF","date":700000000.25,)"
              R"("cpu":12.5,"memory":64}])");
    EXPECT_EQ(record_json::encode(std::map<std::string, AITrustRecord>{
                  {"b", {"b", 1, 2, 3, Date{0.5}}}, {"a", {"a", 0, 0, 0, Date{-1}}}}),
              R"({"a":{"actionType":"a","approvedCount":0,"runCount":0,"blockedCount":0,)"
              R"("lastUpdated":-1},"b":{"actionType":"b","approvedCount":1,"runCount":2,)"
              R"("blockedCount":3,"lastUpdated":0.5}})");
}

TEST(RecordJSONText, EscapesCharactersThatJSONDoesNotAllow) {
    const std::string text = "\"\\\b\f\n\r\t\x01\x1F\x7F/\u20AC";
    const auto encoded =
        record_json::encode(std::vector{ActivityEvent{pointID, Date{0}, text, ""}});
    ASSERT_TRUE(encoded);
    for (const char c : *encoded) {
        EXPECT_FALSE(c >= 0 && c < 0x20);
    }
    EXPECT_EQ(record_json::decodeActivityLog(*encoded)->front().title, text);
}

TEST(RecordJSONText, KeepsEveryFiniteNumberExactly) {
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
        const std::vector points{HistoryPoint{pointID, Date{figure}, figure, -figure}};
        const auto text = record_json::encode(points);
        ASSERT_TRUE(text) << figure;
        EXPECT_TRUE(nlohmann::json::accept(*text)) << *text;
        EXPECT_EQ(record_json::decodeHistory(*text), points) << *text;
    }
}

TEST(RecordJSONText, ANumberThatIsNotFiniteHasNoForm) {
    for (const double figure : {nan, infinity, -infinity}) {
        const HistoryPoint good{pointID, Date{1}, 1, 1};
        EXPECT_TRUE(record_json::encode(std::vector{good, good}));
        EXPECT_FALSE(record_json::encode(
            std::vector{good, HistoryPoint{pointID, Date{figure}, 1, 1}, good}));
        EXPECT_FALSE(
            record_json::encode(std::vector{HistoryPoint{pointID, Date{1}, figure, 1}, good}));
        EXPECT_FALSE(
            record_json::encode(std::vector{good, HistoryPoint{pointID, Date{1}, 1, figure}}));
        EXPECT_FALSE(record_json::encode(
            std::map<std::string, RemoteProfile>{{"a", {"a", "", "", figure, false}}}));
    }
}

TEST(RecordJSONText, InvalidUTF8HasNoForm) {
    for (const char* text :
         {"\xFF", "a\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
        EXPECT_FALSE(
            record_json::encode(std::vector{ActivityEvent{pointID, Date{0}, "title", text}}));
        EXPECT_FALSE(
            record_json::encode(std::map<std::string, RemoteProfile>{{text, RemoteProfile{}}}));
    }
}

TEST(RecordJSONText, RejectsInvalidUTF8) {
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
    EXPECT_EQ(points->front().id, pointID);
    EXPECT_NE(record_json::encode(*points)->find(idText), std::string::npos);
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

TEST(RecordJSONText, BracketsInTextsDoNotCountAsNesting) {
    const std::string brackets(1000, '[');
    const std::vector events{ActivityEvent{pointID, Date{0}, brackets + "\"\\", brackets}};
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
