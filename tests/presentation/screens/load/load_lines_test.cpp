#include "presentation/screens/load/load_lines.h"

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"
#include "tests/support/each_of.h"
#include "tests/support/process_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<ProcessSample>& table() {
    static const std::vector<ProcessSample> rows{
        processRow(4100, "/usr/lib/browser/Browser"), processRow(7, "[kworker/0:1]"),
        processRow(512, "/opt/Käse/bin/ÄPFEL"), processRow(41, "/usr/bin/editor"),
        processRow(9, "")};
    return rows;
}

std::vector<std::int64_t> pidsLeftBy(const QString& filter) {
    return eachOf(filteredProcesses(table(), filter), &ProcessSample::pid);
}

TEST(ProcessFilter, EmptyAndBlankFiltersKeepAllRowsInTheirOrder) {
    for (const char16_t* filter : {u"", u" ", u"\t \n", u"\u00A0\u2003"}) {
        EXPECT_EQ(filteredProcesses(table(), QString::fromUtf16(filter)), table());
    }
}

TEST(ProcessFilter, KeepsTheRowsThatContainTheText) {
    struct Case {
        const char* what;
        QString filter;
        std::vector<std::int64_t> pids;
    };
    for (const Case& each : {Case{"a name in any case", u"BROWSER"_s, {4100}},
                             Case{"a name in any case", u"kWorker"_s, {7}},
                             Case{"non-ASCII letters in any case", u"äpfel"_s, {512}},
                             Case{"non-ASCII letters in any case", u"KÄSE"_s, {512}},
                             Case{"surrounding white space is ignored", u"  editor\t"_s, {41}},
                             Case{"the whole path of the command", u"/usr/"_s, {4100, 41}},
                             Case{"the whole path of the command", u"lib/browser/b"_s, {4100}},
                             Case{"digits match any part of the PID", u"41"_s, {4100, 41}},
                             Case{"digits match any part of the PID", u"12"_s, {512}},
                             Case{"digits match any part of the PID", u"9"_s, {9}},
                             Case{"nothing", u"no such process"_s, {}},
                             Case{"the filter is not a pattern", u".*"_s, {}},
                             Case{"the filter is not a pattern", u"[kw"_s, {7}}}) {
        EXPECT_EQ(pidsLeftBy(each.filter), each.pids) << each.what;
    }
    EXPECT_THAT(filteredProcesses({}, QString()), IsEmpty());
    EXPECT_THAT(filteredProcesses({}, u"a"_s), IsEmpty());
}

TEST(ProcessFilter, AVeryLongFilterIsAccepted) {
    const QString filter(10'000, u'x');
    EXPECT_THAT(pidsLeftBy(filter), IsEmpty());
    EXPECT_THAT(filteredProcesses({processRow(1, "/bin/" + filter.toStdString())}, filter),
                ElementsAre(testing::Field(&ProcessSample::pid, 1)));
}

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
