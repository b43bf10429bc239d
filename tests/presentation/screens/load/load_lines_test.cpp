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

}  // namespace
}  // namespace tallowcrest
