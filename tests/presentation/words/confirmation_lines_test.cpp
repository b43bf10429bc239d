#include "presentation/words/confirmation_lines.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "tests/presentation/scoped_locale.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

std::string processesOf(std::size_t count) {
    std::vector<std::int64_t> pids(count);
    std::iota(pids.begin(), pids.end(), 25631);
    return confirmation_lines::processes(pids).toStdString();
}

TEST(ConfirmationLines, NamesTheProcessesByTheirPIDs) {
    EXPECT_EQ(processesOf(0), "");
    EXPECT_EQ(processesOf(1), "1 process: 25631");
    EXPECT_EQ(processesOf(3), "3 processes: 25631, 25632, 25633");
}

TEST(ConfirmationLines, OfManyProcessesOnlyTheFirstAreNamed) {
    const std::string twelve =
        "25631, 25632, 25633, 25634, 25635, 25636, 25637, 25638, 25639, 25640, 25641, 25642";
    EXPECT_EQ(processesOf(12), "12 processes: " + twelve);
    EXPECT_EQ(processesOf(13), "13 processes: " + twelve + " and 1 more");
    const ScopedLocale locale("en_US");
    EXPECT_EQ(processesOf(1234), "1,234 processes: " + twelve + " and 1,222 more");
}

TEST(ConfirmationLines, CountsTheExecutables) {
    EXPECT_EQ(confirmation_lines::executables(1).toStdString(), "Executable");
    EXPECT_EQ(confirmation_lines::executables(2).toStdString(), "Executables");
}

TEST(ConfirmationLines, OnlyShortTextsAreLeftUnread) {
    EXPECT_EQ(
        confirmation_lines::unreadLines({u"Quit sleep?"_s, u"Quit Google Chrome?"_s, QString(),
                                         u"  Executable "_s, u"It will be quit."_s}),
        QStringList({u"Quit sleep?"_s, QString(), u"  Executable "_s}));
}

}  // namespace
}  // namespace tallowcrest
