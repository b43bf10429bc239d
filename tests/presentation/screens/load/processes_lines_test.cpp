#include "presentation/screens/load/processes_lines.h"

#include <gmock/gmock.h>

#include "monitor/system_monitor.h"
#include "tests/presentation/screens/load/process_rows.h"
#include "tests/support/fake_machine.h"

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
    std::vector<std::int64_t> pids;
    for (const ProcessSample& kept : filteredProcesses(table(), filter)) {
        pids.push_back(kept.pid);
    }
    return pids;
}

TEST(ProcessFilter, NothingAndWhiteSpaceKeepAllRowsInTheirOrder) {
    for (const char16_t* filter : {u"", u" ", u"\t \n", u"\u00A0\u2003"}) {
        EXPECT_EQ(filteredProcesses(table(), QString::fromUtf16(filter)), table());
    }
}

TEST(ProcessFilter, NamesMatchWhateverTheCase) {
    EXPECT_THAT(pidsLeftBy(u"BROWSER"_s), ElementsAre(4100));
    EXPECT_THAT(pidsLeftBy(u"kWorker"_s), ElementsAre(7));
}

TEST(ProcessFilter, LettersBeyondASCIIMatchWhateverTheCase) {
    EXPECT_THAT(pidsLeftBy(u"äpfel"_s), ElementsAre(512));
    EXPECT_THAT(pidsLeftBy(u"KÄSE"_s), ElementsAre(512));
}

TEST(ProcessFilter, WhiteSpaceAroundTheTextDoesNotCount) {
    EXPECT_THAT(pidsLeftBy(u"  editor\t"_s), ElementsAre(41));
}

TEST(ProcessFilter, TheWholePathOfTheCommandIsLookedAt) {
    EXPECT_THAT(pidsLeftBy(u"/usr/"_s), ElementsAre(4100, 41));
    EXPECT_THAT(pidsLeftBy(u"lib/browser/b"_s), ElementsAre(4100));
}

TEST(ProcessFilter, DigitsMatchAnyPartOfThePID) {
    EXPECT_THAT(pidsLeftBy(u"41"_s), ElementsAre(4100, 41));
    EXPECT_THAT(pidsLeftBy(u"12"_s), ElementsAre(512));
    EXPECT_THAT(pidsLeftBy(u"9"_s), ElementsAre(9));
}

TEST(ProcessFilter, WhatMatchesNothingLeavesNoRows) {
    EXPECT_THAT(pidsLeftBy(u"no such process"_s), IsEmpty());
    EXPECT_THAT(filteredProcesses({}, QString()), IsEmpty());
    EXPECT_THAT(filteredProcesses({}, u"a"_s), IsEmpty());
}

TEST(ProcessFilter, TheTextIsNoPattern) {
    EXPECT_THAT(pidsLeftBy(u".*"_s), IsEmpty());
    EXPECT_THAT(pidsLeftBy(u"[kw"_s), ElementsAre(7));
}

TEST(ProcessFilter, AVeryLongTextIsJustOneThatMatchesNothing) {
    const QString filter(10'000, u'x');
    EXPECT_THAT(pidsLeftBy(filter), IsEmpty());
    EXPECT_THAT(filteredProcesses({processRow(1, "/bin/" + filter.toStdString())}, filter),
                ElementsAre(testing::Field(&ProcessSample::pid, 1)));
}

TEST(ProcessesLines, TellWhyThereAreNoRows) {
    FakeMachine machine;
    const auto lines = [&machine](int rows) {
        return processesLines(machine.monitor().sample(), rows);
    };
    EXPECT_EQ(lines(0).status, u"Sampling this Mac..."_s);
    EXPECT_EQ(lines(0).description, u"Select Process. Sampling this Mac..."_s);
    machine.tick();
    EXPECT_EQ(lines(0).emptyDetail, u"No process could be read in the last sample."_s);
    machine.addProcess(700, "/usr/bin/editor", 30.0, 1024.0);
    machine.tick();
    EXPECT_TRUE(lines(0).status.startsWith(u"Sorted by Impact ↓ · 0 visible processes"_s));
    EXPECT_EQ(lines(0).emptyDetail, u"No process matches the filter. Clear it to see all."_s);
    EXPECT_EQ(lines(0).description,
              u"Select Process. No process matches the filter. Clear it to see all."_s);
    EXPECT_EQ(lines(1).description,
              u"Processes by impact. Return on a row selects it for review."_s);
}

}  // namespace
}  // namespace tallowcrest
