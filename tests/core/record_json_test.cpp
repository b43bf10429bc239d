#include "core/record_json.h"

#include <limits>
#include <map>
#include <string>
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

/// One example of each record and its JSON text.
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

TYPED_TEST(RecordJSON, HasExactlyItsMembers) {
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

TYPED_TEST(RecordJSON, AMissingMemberMakesTheWholeAbsent) {
    const json members = TestFixture::Example::exampleMembers();
    ASSERT_TRUE(this->decode(this->textOf(members)));
    for (const auto& [name, value] : members.items()) {
        json broken = members;
        broken.erase(name);
        EXPECT_FALSE(this->decode(this->textOf(broken))) << name;
    }
}

TYPED_TEST(RecordJSON, AMemberOfTheWrongTypeMakesTheWholeAbsent) {
    const json members = TestFixture::Example::exampleMembers();
    const json samples[] = {nullptr,       true,          7, 7.5, "text", exampleIDText,
                            json::array(), json::object()};
    int refused = 0;
    for (const auto& [name, value] : members.items()) {
        for (const json& sample : samples) {
            const bool sameKind =
                value.type() == sample.type() ||
                // An integer literal is a valid floating-point number too, but not vice versa.
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

TYPED_TEST(RecordJSON, OneInvalidRecordMakesTheWholeAbsent) {
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

TYPED_TEST(RecordJSON, AnotherDocumentIsAbsent) {
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

TYPED_TEST(RecordJSON, UnknownMembersMayNestUpToALimit) {
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

TYPED_TEST(RecordJSON, RejectsDeepNestingWithoutAStackOverflow) {
    constexpr std::size_t million = 1000000;
    EXPECT_FALSE(this->decode(std::string(million, '[')));
    EXPECT_FALSE(this->decode(std::string(million, '[') + std::string(million, ']')));
    std::string objects;
    for (std::size_t i = 0; i < million; ++i) {
        objects += "{\"a\":";
    }
    EXPECT_FALSE(this->decode(objects));
}

}  // namespace
}  // namespace tallowcrest
