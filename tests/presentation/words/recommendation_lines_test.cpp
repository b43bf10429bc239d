#include "presentation/words/recommendation_lines.h"

#include <QStringList>
#include <gmock/gmock.h>

#include "tests/support/each_of.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using testing::ElementsAre;
using testing::IsEmpty;

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
    const auto found = eachOf(lines, &RecommendationLine::title);
    return QStringList(found.begin(), found.end()).join(u' ').toStdString();
}

TEST(RecommendationLines, TheMostSevereComeFirstInOtherwiseUnchangedOrder) {
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
    const auto lines =
        recommendationLines({recommendation("gone", Severity::caution, 7),
                             recommendation("there", Severity::caution, 8),
                             {UUID::random(), "Größe", "“Other”", Severity::info, std::nullopt}},
                            processes({1, 8}));
    EXPECT_THAT(eachOf(lines, &RecommendationLine::reviewPID),
                ElementsAre(std::nullopt, 8, std::nullopt));
    EXPECT_EQ(lines.at(2).title, u"Größe"_s) << "texts are UTF-8";
    EXPECT_EQ(lines.at(2).detail, u"“Other”"_s);
}

TEST(RecommendationLines, TheNoteGivesTheFirstAndCountsTheOthers) {
    const auto noteOf = [](const std::vector<Recommendation>& given) {
        return recommendationNote(recommendationLines(given, {})).toStdString();
    };
    const auto urgent = recommendation("Memory pressure is high", Severity::urgent);
    EXPECT_THAT(recommendationLines({}, {}), IsEmpty());
    EXPECT_EQ(noteOf({}), "");
    EXPECT_EQ(noteOf({urgent}), "Urgent · Memory pressure is high");
    EXPECT_EQ(noteOf({recommendation("c", Severity::caution), urgent}),
              "Urgent · Memory pressure is high · 1 more");
}

TEST(RecommendationLines, EachSeverityHasItsOwnWordAndIcon) {
    EXPECT_EQ(severityWord(Severity::info).toStdString(), "Info");
    EXPECT_EQ(severityWord(Severity::caution).toStdString(), "Caution");
    EXPECT_EQ(severityWord(Severity::urgent).toStdString(), "Urgent");
    for (const Severity one : {Severity::info, Severity::caution, Severity::urgent}) {
        for (const Severity other : {Severity::info, Severity::caution, Severity::urgent}) {
            EXPECT_EQ(severityIcon(one) == severityIcon(other), one == other);
        }
    }
}

}  // namespace
}  // namespace tallowcrest
