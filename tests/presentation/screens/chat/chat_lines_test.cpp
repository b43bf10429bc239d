#include "presentation/screens/chat/chat_lines.h"

#include <limits>

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using chat_lines::ChatLine;
using testing::ElementsAre;

TEST(ChatLines, TheLeadTellsWhatAnswersAreMadeFrom) {
    EXPECT_EQ(
        chat_lines::lead(true),
        u"Enhanced AI answers use the latest CPU, memory, process, remote, and action history "
        "signals."_s);
    EXPECT_EQ(chat_lines::lead(false),
              u"On-device guidance works without paid AI. Connect paid AI for deeper explanations "
              "and follow-up reasoning."_s);
}

TEST(ChatLines, TheFactsAreThoseOfTheSampleInTheLocalesFormat) {
    const ScopedLocale locale("de_DE");
    EXPECT_THAT(chat_lines::facts(std::nullopt, true),
                ElementsAre(SummaryTexts{u"Current CPU"_s, dashboard_text::noFigure(),
                                         u"Sampling this Mac..."_s},
                            SummaryTexts{u"Current Memory"_s, dashboard_text::noFigure(),
                                         u"Sampling this Mac..."_s},
                            SummaryTexts{u"Chat Privacy"_s, u"Redacted"_s,
                                         u"Uses your AI payload privacy setting."_s}));
    SystemSnapshot snapshot;
    snapshot.cpuPercent = 37.4;
    snapshot.memory = {.totalGB = 16.0, .usedGB = 9.54, .pressure = 59.6};
    auto facts = chat_lines::facts(snapshot, false);
    EXPECT_EQ(facts.at(0).value, dashboard_text::percentText(37.4));
    EXPECT_EQ(facts.at(0).detail, u"No top app yet"_s);
    EXPECT_EQ(facts.at(1).value, dashboard_text::percentText(59.6));
    EXPECT_EQ(facts.at(1).detail, u"9,5 GB used of 16,0 GB"_s);
    EXPECT_EQ(facts.at(2).value, u"Detailed"_s);
    snapshot.appImpacts.emplace_back().name = "photo\nindexer";
    EXPECT_EQ(chat_lines::facts(snapshot, false).at(0).detail, u"Top app: photo\uFFFDindexer"_s);
}

TEST(ChatLines, AMessageHasItsRoleAsWordAndIcon) {
    const ScopedLocale locale("en_US");
    const Date now = Date::fromUnixSeconds(1'700'000'000);
    const auto line = [&](const char* role, const std::string& text) {
        return chat_lines::chatLine({UUID::random(), role, text, now}, now);
    };
    const ChatLine own = line("You", "What is slow?\n<i>this</i>");
    EXPECT_TRUE(own.isOwn);
    EXPECT_EQ(own.icon, u"person.crop.circle"_s);
    EXPECT_EQ(own.role, u"You"_s);
    EXPECT_EQ(own.text, u"What is slow?\n<i>this</i>"_s);
    EXPECT_EQ(own.time, dashboard_text::shortTimeText(now, now));
    const ChatLine answer = line("Tallowcrest", "Nothing.");
    EXPECT_FALSE(answer.isOwn);
    EXPECT_EQ(answer.icon, u"sparkle"_s);
    // A stored role can be any text.
    EXPECT_EQ(line("you", "x").isOwn, false);
    EXPECT_LE(line(std::string(5000, 'r').c_str(), "x").role.size(), 41);
    EXPECT_EQ(line("two\nlines", "x").role, u"two\uFFFDlines"_s);
}

TEST(ChatLines, AnArrivalIsSaidWithItsRole) {
    EXPECT_EQ(chat_lines::arrival({}), QString());
    EXPECT_EQ(chat_lines::arrival({{{}, u"You"_s, {}, u"Why?"_s, true},
                                   {{}, u"Tallowcrest"_s, {}, u"Because."_s, false}}),
              u"You: Why?\nTallowcrest: Because."_s);
}

TEST(ChatLines, ThinkingCountsTheSecondsUpToTheLimit) {
    const std::pair<double, const char*> cases[] = {{0.0, "Thinking · 0 s of at most 30 s"},
                                                    {0.99, "Thinking · 0 s of at most 30 s"},
                                                    {12.0, "Thinking · 12 s of at most 30 s"},
                                                    {30.9, "Thinking · 30 s of at most 30 s"},
                                                    {31.0, "Thinking · 31 s"},
                                                    {-5.0, "Thinking · 0 s of at most 30 s"},
                                                    {nan, "Thinking · 0 s of at most 30 s"},
                                                    {infinity, "Thinking · 0 s of at most 30 s"}};
    for (const auto& [seconds, shown] : cases) {
        EXPECT_EQ(chat_lines::thinking(seconds, false).toStdString(), shown) << seconds;
    }
    EXPECT_EQ(chat_lines::thinking(12.0, true), u"Thinking · reading the key · 12 s"_s);
}

}  // namespace
}  // namespace tallowcrest
