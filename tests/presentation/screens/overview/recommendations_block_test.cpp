#include "presentation/screens/overview/recommendations_block.h"

#include <QSignalSpy>

#include "presentation/screens/shared/recommendation_row.h"
#include "presentation/widgets/icon.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST(SeverityColor, EachSeverityHasItsOwnColorAndAnIconThatExists) {
    for (const Severity one : {Severity::info, Severity::caution, Severity::urgent}) {
        EXPECT_TRUE(hasIcon(severityIcon(one)));
        for (const Severity other : {Severity::info, Severity::caution, Severity::urgent}) {
            EXPECT_EQ(severityColor(one) == severityColor(other), one == other);
        }
    }
}

class RecommendationsBlockTest : public OverviewBlockTest {
protected:
    static RecommendationLine line(const char* title, Severity severity,
                                   std::optional<std::int64_t> pid = std::nullopt) {
        return {severity, QString::fromUtf8(title), QString::fromUtf8(title) + u" in detail"_s,
                pid};
    }

    /// Shows `lines` with the next sample.
    void tick() {
        block.show(lines, sample().sampledAt);
        settle();
    }

    std::vector<std::string> texts() { return OverviewBlockTest::texts(*block.body()); }
    int height() { return heightOf(block); }

    std::vector<RecommendationLine> lines;
    RecommendationsBlock& block = place(new RecommendationsBlock);
};

TEST_F(RecommendationsBlockTest, WaitsForTheFirstSampleAndSaysIfThereIsNothingToDo) {
    block.show({}, std::nullopt);
    EXPECT_THAT(texts(), ElementsAre("Sampling this Mac...",
                                     "The first recommendation follows the first sample."));
    tick();
    EXPECT_THAT(texts(),
                ElementsAre("No recommendation for this sample", "Refresh takes a new one."));
    lines = {line("This Mac looks healthy", Severity::info)};
    tick();
    EXPECT_THAT(texts(),
                ElementsAre("This Mac looks healthy", "Info", "This Mac looks healthy in detail"));
    EXPECT_EQ(visible("overview.recommendation-1.review"), nullptr);
}

TEST_F(RecommendationsBlockTest, TheFirstLineIsProminent) {
    lines = {line("Full", Severity::urgent), line("Busy", Severity::caution),
             line("Odd", Severity::caution)};
    tick();
    EXPECT_EQ(texts().at(0), "Full");
    EXPECT_EQ(texts().at(1), "Urgent");
    EXPECT_THAT(texts(), AllOf(Contains("Busy"), Contains("Odd"), Contains("Odd in detail")));
}

TEST_F(RecommendationsBlockTest, ReviewEmitsTheProcessOfItsRow) {
    const QSignalSpy asked(&block, &RecommendationsBlock::reviewWanted);
    lines = {line("Memory", Severity::urgent, 700), line("CPU", Severity::caution, 800)};
    tick();
    click("overview.recommendation-2.review");
    click("overview.recommendation-1.review");
    EXPECT_EQ(asked, (QList<QVariantList>{{qlonglong(800)}, {qlonglong(700)}}));
    lines.front().reviewPID.reset();
    tick();
    EXPECT_EQ(visible("overview.recommendation-1.review"), nullptr) << "its process is gone";
}

TEST_F(RecommendationsBlockTest, RowsAreReusedWhenTheOrderChanges) {
    lines = {line("A", Severity::urgent), line("B", Severity::caution),
             line("C", Severity::caution)};
    tick();
    const int before = height();
    const auto rows = block.findChildren<RecommendationRow*>();
    std::reverse(lines.begin(), lines.end());
    tick();
    EXPECT_EQ(texts().front(), "C");
    EXPECT_EQ(height(), before);
    EXPECT_EQ(block.findChildren<RecommendationRow*>(), rows);
}

TEST_F(RecommendationsBlockTest, GrowsAtOnceAndShrinksAfterAMinute) {
    lines = {line("A", Severity::info)};
    tick();
    const int calm = height();
    lines = {line("A", Severity::urgent), line("B", Severity::caution),
             line("C", Severity::caution)};
    tick();
    const int troubled = height();
    EXPECT_GT(troubled, calm);
    lines = {line("A", Severity::info)};
    tick();
    EXPECT_EQ(height(), troubled);
    EXPECT_THAT(texts(), Not(Contains("B")));
    for (int samples = 1; samples < ReservedRows::samplesUntilShrink; ++samples) {
        // Further calls for the same sample do not count.
        block.show(lines, snapshot->sampledAt);
        block.show(lines, snapshot->sampledAt);
        EXPECT_EQ(height(), troubled);
        tick();
    }
    EXPECT_EQ(height(), calm);
}

TEST_F(RecommendationsBlockTest, MoreThanFiveAreLeftOut) {
    for (const char* title : {"A", "B", "C", "D", "E", "F"}) {
        lines.push_back(line(title, Severity::caution));
    }
    tick();
    EXPECT_THAT(texts(), AllOf(Contains("E"), Not(Contains("F"))));
}

TEST_F(RecommendationsBlockTest, CollapsedItShowsTheMostSevereInItsHeader) {
    lines = {line("Full", Severity::urgent), line("Busy", Severity::caution)};
    tick();
    const SectionHeader* header = block.header();
    EXPECT_EQ(header->note(), QString());
    block.setCollapsed(true);
    tick();
    EXPECT_EQ(header->note(), u"Urgent · Full · 1 more"_s);
    EXPECT_TRUE(header->accessibleDescription().startsWith(spokenText(header->note())));
    lines = {line("Fine", Severity::info)};
    tick();
    EXPECT_EQ(header->note(), u"Info · Fine"_s);
}

TEST_F(RecommendationsBlockTest, TheProminentRowKeepsTheLinesItNeededForAMinute) {
    const auto prominentHeight = [this] {
        settle();
        return block.findChild<RecommendationRow*>()->height();
    };
    lines = {line("A", Severity::info)};
    page.resize(860, 700);
    tick();
    tick();
    const int oneLine = prominentHeight();
    lines.front().detail = u"Many words. "_s + QString(150, u'a') + u" And more."_s;
    tick();
    const int more = prominentHeight();
    EXPECT_GT(more, oneLine);
    lines.front().detail = u"Few words."_s;
    for (int samples = 0; samples < ReservedRows::samplesUntilShrink; ++samples) {
        tick();
        EXPECT_EQ(prominentHeight(), more) << samples;
    }
    tick();
    EXPECT_EQ(prominentHeight(), oneLine);
}

TEST_F(RecommendationsBlockTest, ButtonsOfNeighbouringRowsAreApartAtEveryWidth) {
    lines = {line("A", Severity::caution, 700), line("B", Severity::caution, 800),
             line("C", Severity::caution, 700)};
    tick();
    for (const int width : {420, 680, 860, 1380, 680}) {
        page.resize(width, 700);
        settle();
        const QWidget* second = visible("overview.recommendation-2.review");
        const QWidget* third = visible("overview.recommendation-3.review");
        const int below = second->mapTo(&block, QPoint(0, second->height())).y();
        EXPECT_GE(third->mapTo(&block, QPoint()).y() - below, spacing::unit) << width;
        EXPECT_LE(third->mapTo(&block, QPoint(0, third->height())).y(),
                  block.height() - spacing::cardPadding)
            << width;
    }
}

}  // namespace
}  // namespace tallowcrest
