#include "presentation/screens/load/process_filter.h"

#include <gmock/gmock.h>

#include "tests/presentation/screens/load/process_rows.h"

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
    EXPECT_THAT(pidsLeftBy(QStringLiteral("BROWSER")), ElementsAre(4100));
    EXPECT_THAT(pidsLeftBy(QStringLiteral("kWorker")), ElementsAre(7));
}

TEST(ProcessFilter, LettersBeyondASCIIMatchWhateverTheCase) {
    EXPECT_THAT(pidsLeftBy(QStringLiteral("äpfel")), ElementsAre(512));
    EXPECT_THAT(pidsLeftBy(QStringLiteral("KÄSE")), ElementsAre(512));
}

TEST(ProcessFilter, WhiteSpaceAroundTheTextDoesNotCount) {
    EXPECT_THAT(pidsLeftBy(QStringLiteral("  editor\t")), ElementsAre(41));
}

TEST(ProcessFilter, TheWholePathOfTheCommandIsLookedAt) {
    EXPECT_THAT(pidsLeftBy(QStringLiteral("/usr/")), ElementsAre(4100, 41));
    EXPECT_THAT(pidsLeftBy(QStringLiteral("lib/browser/b")), ElementsAre(4100));
}

TEST(ProcessFilter, DigitsMatchAnyPartOfThePID) {
    EXPECT_THAT(pidsLeftBy(QStringLiteral("41")), ElementsAre(4100, 41));
    EXPECT_THAT(pidsLeftBy(QStringLiteral("12")), ElementsAre(512));
    EXPECT_THAT(pidsLeftBy(QStringLiteral("9")), ElementsAre(9));
}

TEST(ProcessFilter, WhatMatchesNothingLeavesNoRows) {
    EXPECT_THAT(pidsLeftBy(QStringLiteral("no such process")), IsEmpty());
    EXPECT_THAT(filteredProcesses({}, QString()), IsEmpty());
    EXPECT_THAT(filteredProcesses({}, QStringLiteral("a")), IsEmpty());
}

TEST(ProcessFilter, TheTextIsNoPattern) {
    EXPECT_THAT(pidsLeftBy(QStringLiteral(".*")), IsEmpty());
    EXPECT_THAT(pidsLeftBy(QStringLiteral("[kw")), ElementsAre(7));
}

TEST(ProcessFilter, AVeryLongTextIsJustOneThatMatchesNothing) {
    const QString filter(10'000, QLatin1Char('x'));
    EXPECT_THAT(pidsLeftBy(filter), IsEmpty());
    EXPECT_THAT(filteredProcesses({processRow(1, "/bin/" + filter.toStdString())}, filter),
                ElementsAre(testing::Field(&ProcessSample::pid, 1)));
}

}  // namespace
}  // namespace tallowcrest
