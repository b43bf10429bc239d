#include "presentation/screens/overview/recommendation_lines.h"

#include <gmock/gmock.h>

#include "presentation/widgets/icon.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using testing::IsEmpty;
using testing::SizeIs;

Recommendation recommendation(const char* title, Severity severity,
                              std::optional<std::int64_t> pid = std::nullopt) {
    return {UUID::random(), title, std::string("About ") + title, severity, pid};
}

std::vector<ProcessSample> processes(std::initializer_list<std::int64_t> pids) {
    std::vector<ProcessSample> rows;
    for (const std::int64_t pid : pids) {
        rows.emplace_back().pid = pid;
    }
    return rows;
}

std::string titles(const std::vector<RecommendationLine>& lines) {
    QStringList found;
    for (const RecommendationLine& line : lines) {
        found.append(line.title);
    }
    return found.join(u' ').toStdString();
}

TEST(RecommendationLines, NoneForNone) {
    EXPECT_THAT(recommendationLines({}, {}), IsEmpty());
    EXPECT_EQ(recommendationNote({}).toStdString(), "");
}

TEST(RecommendationLines, TheMostSevereComeFirstAndThoseOfOneSeverityKeepTheirOrder) {
    const auto order = [](std::vector<Recommendation> given) {
        return titles(recommendationLines(given, {}));
    };
    const auto info = recommendation("i", Severity::info);
    const auto caution = recommendation("c", Severity::caution);
    const auto caution2 = recommendation("c2", Severity::caution);
    const auto urgent = recommendation("u", Severity::urgent);
    const auto urgent2 = recommendation("u2", Severity::urgent);
    EXPECT_EQ(order({info}), "i");
    EXPECT_EQ(order({caution, caution2, info}), "c c2 i");
    EXPECT_EQ(order({caution, urgent, caution2, urgent2}), "u u2 c c2");
    EXPECT_EQ(order({info, caution, urgent}), "u c i");
}

TEST(RecommendationLines, OnlyAProcessOfTheLatestTableCanBeReviewed) {
    const auto lines = recommendationLines(
        {recommendation("gone", Severity::caution, 7),
         recommendation("there", Severity::caution, 8), recommendation("none", Severity::caution)},
        processes({1, 8}));
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ(lines[0].reviewPID, std::nullopt);
    EXPECT_EQ(lines[1].reviewPID, 8);
    EXPECT_EQ(lines[2].reviewPID, std::nullopt);
}

TEST(RecommendationLines, TextsAreTakenAsUTF8) {
    const auto lines = recommendationLines(
        {{UUID::random(), "Größe", "“Other”", Severity::info, std::nullopt}}, {});
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].title, u"Größe"_s);
    EXPECT_EQ(lines[0].detail, u"“Other”"_s);
}

TEST(RecommendationLines, TheNoteGivesTheFirstAndCountsTheOthers) {
    const auto urgent = recommendation("Memory pressure is high", Severity::urgent);
    EXPECT_EQ(recommendationNote(recommendationLines({urgent}, {})).toStdString(),
              "Urgent · Memory pressure is high");
    EXPECT_EQ(recommendationNote(
                  recommendationLines({recommendation("c", Severity::caution), urgent}, {}))
                  .toStdString(),
              "Urgent · Memory pressure is high · 1 more");
}

TEST(RecommendationLines, EachSeverityHasAWordAnIconAndAColourOfItsOwn) {
    EXPECT_EQ(severityWord(Severity::info).toStdString(), "Info");
    EXPECT_EQ(severityWord(Severity::caution).toStdString(), "Caution");
    EXPECT_EQ(severityWord(Severity::urgent).toStdString(), "Urgent");
    for (const Severity one : {Severity::info, Severity::caution, Severity::urgent}) {
        EXPECT_TRUE(hasIcon(severityIcon(one)));
        for (const Severity other : {Severity::info, Severity::caution, Severity::urgent}) {
            EXPECT_EQ(severityIcon(one) == severityIcon(other), one == other);
            EXPECT_EQ(severityColor(one) == severityColor(other), one == other);
        }
    }
}

}  // namespace
}  // namespace tallowcrest
