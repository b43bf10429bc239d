#include "presentation/words/process_filter.h"

#include <gmock/gmock.h>

#include "tests/support/pids_of.h"
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
    return pids(filteredProcesses(table(), filter));
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

TEST(ProcessFilter, FindsWhatTheDetailsSay) {
    const ProcessDetail detail{.owner = "Postgres",
                               .shortName = "comm-name",
                               .argument = "Job.py",
                               .commandLine = "--zzz"};
    const DetailOf ofEditor = [&detail](const ProcessSample& row) {
        return row.pid == 41 ? &detail : nullptr;
    };
    for (const QString& filter : {u"postgres"_s, u"JOB.PY"_s, u"comm-"_s, u"editor"_s, u"zzz"_s}) {
        EXPECT_THAT(pids(filteredProcesses(table(), filter, ofEditor)), ElementsAre(41))
            << filter.toStdString();
    }
}

TEST(ProcessFilter, AVeryLongFilterIsAccepted) {
    const QString filter(10'000, u'x');
    EXPECT_THAT(pidsLeftBy(filter), IsEmpty());
    EXPECT_THAT(filteredProcesses({processRow(1, "/bin/" + filter.toStdString())}, filter),
                ElementsAre(testing::Field(&ProcessSample::pid, 1)));
}

}  // namespace
}  // namespace tallowcrest
