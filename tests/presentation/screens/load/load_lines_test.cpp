#include "presentation/screens/load/load_lines.h"

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(LoadLines, ExplainWhyThereAreNoRows) {
    const LoadLines waiting = loadLines({});
    EXPECT_EQ(waiting.status, u"Sampling this Mac..."_s);
    EXPECT_EQ(waiting.emptyDetail, u"Sampling this Mac..."_s);
    EXPECT_EQ(waiting.description, u"Select Process. Sampling this Mac..."_s);

    LoadFacts facts{.sampledAt = Date{}};
    EXPECT_EQ(loadLines(facts).emptyDetail, u"No process could be read in the last sample."_s);

    facts.hasProcesses = true;
    const LoadLines filtered = loadLines(facts);
    EXPECT_TRUE(filtered.status.startsWith(u"Sorted by Impact ↓ · 0 visible processes"_s));
    EXPECT_EQ(filtered.emptyDetail, u"No process matches the filter. Clear it to see all."_s);
    EXPECT_EQ(filtered.description,
              u"Select Process. No process matches the filter. Clear it to see all."_s);
}

TEST(LoadLines, CountTheRowsInTheFormatOfTheLocale) {
    const ScopedLocale locale("de_DE");
    const LoadLines lines =
        loadLines({.sampledAt = Date{}, .hasProcesses = true, .shownRows = 1200});
    EXPECT_TRUE(lines.status.startsWith(u"Sorted by Impact ↓ · 1.200 visible processes"_s));
    EXPECT_EQ(lines.description, u"Processes by impact. Return on a row selects it for review."_s);
}

TEST(LoadLines, NoStatusIsLongerThanItsPattern) {
    const ScopedLocale locale("en_US");
    for (int hour = 0; hour < 24; ++hour) {
        const Date now{hour * 3600.0};
        const LoadLines lines =
            loadLines({.sampledAt = now, .hasProcesses = true, .shownRows = 9999});
        for (int later = 0; later < 24; ++later) {
            const auto patterns = statusPatterns(Date{later * 3600.0});
            ASSERT_EQ(patterns.size(), 5U);
            EXPECT_LE(lines.status.size(), patterns.front().size()) << hour << ' ' << later;
        }
    }
    EXPECT_TRUE(statusPatterns(Date{})[3].startsWith(u"Sorted by Memory ↓ · 9,999 visible"_s));
}

TEST(LoadLines, NameTheOrderThatTheOwnerChose) {
    const LoadLines lines = loadLines({.sampledAt = Date{},
                                       .hasProcesses = true,
                                       .shownRows = 2,
                                       .order = ProcessOrder{ProcessColumn::memory}});
    EXPECT_TRUE(lines.status.startsWith(u"Sorted by Memory ↓ · 2 visible processes · updated "_s));
    EXPECT_EQ(lines.description, u"Processes by Memory. Return on a row selects it for review."_s);
}

TEST(LoadLines, TheFilterSaysHowManyItKeeps) {
    EXPECT_EQ(foundWords(12, 87), u"12 of 87 processes"_s);
    EXPECT_EQ(foundWords(0, 1), u"0 of 1 process"_s);
    EXPECT_EQ(foundWords(87, 87), u"87 processes"_s);
}

TEST(LoadLines, TheOrderHasWordsForAssistiveTechnology) {
    EXPECT_EQ(orderWords(ProcessOrder{ProcessColumn::cpu, true}), u"CPU, lowest first"_s);
    EXPECT_EQ(orderWords(std::nullopt), u"Impact, highest first"_s);
}

TEST(LoadLines, AColumnTitleSaysWhatAClickDoes) {
    std::optional<ProcessOrder> order;
    const auto click = [&order](ProcessColumn column) {
        order = orderAfterClick(order, column);
        return columnTitle(order, column);
    };
    const ColumnTitle plain = columnTitle(order, ProcessColumn::cpu);
    EXPECT_EQ(plain.text, u"CPU"_s);
    EXPECT_EQ(plain.spoken, u"CPU"_s);
    EXPECT_EQ(plain.effect, u"Orders by CPU, highest first"_s);
    EXPECT_FALSE(plain.isOrdered);
    const ColumnTitle first = click(ProcessColumn::cpu);
    EXPECT_EQ(first.text, u"CPU ↓"_s);
    EXPECT_EQ(first.spoken, u"CPU, highest first"_s);
    EXPECT_EQ(first.effect, u"Orders by CPU, lowest first"_s);
    EXPECT_TRUE(first.isOrdered);
    EXPECT_EQ(click(ProcessColumn::cpu).effect, u"Returns to the order by CPU and memory impact"_s);
    EXPECT_EQ(click(ProcessColumn::process).spoken, u"Process, A to Z"_s);
    EXPECT_EQ(click(ProcessColumn::process).text, u"Process ↓"_s);
    EXPECT_EQ(columnTitle(order, ProcessColumn::cpu).text, u"CPU"_s);
}

}  // namespace
}  // namespace tallowcrest
