#include "presentation/words/session_summary.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;

ActivityEvent event(const char* title) {
    return {UUID::random(), Date{}, title, "Something"};
}

SessionInsight insight(const char* title, const char* value) {
    return {UUID::random(), title, value, "Because"};
}

SummaryTexts texts(const char* title, const char* value, const char* detail) {
    return {QString::fromUtf8(title), QString::fromUtf8(value), QString::fromUtf8(detail)};
}

TEST(SessionSummary, OfASessionInWhichNothingHappened) {
    EXPECT_THAT(
        sessionSummary({}, {}, {}),
        ElementsAre(texts("Events", "0 warnings",
                          "0 logged actions. Use Export for a full diagnostics file."),
                    texts("Recurring Top App", "None yet",
                          "Most visible app group in this Tallowcrest session."),
                    texts("Remote Repeater", "None yet",
                          "Most repeated top remote app group across SSH scans."),
                    texts("Never Quit", "0 apps", "No custom app groups are protected yet.")));
    EXPECT_EQ(sessionSummary({}, {}, {}).size(), sessionSummaryCards);
}

TEST(SessionSummary, CountsWarningsAndActionsByTheirExactTitles) {
    const auto cards = sessionSummary({event("Warning"), event("Action"), event("Auto Rule"),
                                       event("Action"), event("warning"), event("Actions")},
                                      {}, {});
    EXPECT_EQ(cards[0], texts("Events", "1 warnings",
                              "2 logged actions. Use Export for a full diagnostics file."));
}

TEST(SessionSummary, TakesTheTopAppsFromTheInsightsOfThoseTitles) {
    const auto cards =
        sessionSummary({},
                       {insight("Peak CPU", "97%"), insight("Peak Memory", "80%"),
                        insight("Recurring Top App", "editor"), insight("Remote Watch", "server"),
                        insight("Remote Repeater", "postgres")},
                       {});
    EXPECT_EQ(cards[1].value, u"editor"_s);
    EXPECT_EQ(cards[2].value, u"postgres"_s);
}

TEST(SessionSummary, ListsTheAppsThatAreNeverQuit) {
    const auto cards = sessionSummary({}, {}, {"mail", "Music"});
    EXPECT_EQ(cards[3], texts("Never Quit", "2 apps", "Music, mail"));
}

}  // namespace
}  // namespace tallowcrest
