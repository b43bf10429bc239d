#include "presentation/screens/optimize/cleanup_lines.h"

#include <limits>
#include <ostream>
#include <vector>

#include <gmock/gmock.h>

#include "monitor/system_monitor.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/screens/load/process_rows.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::int64_t> pidsOf(const std::vector<ProcessSample>& rows) {
    std::vector<std::int64_t> pids;
    for (const ProcessSample& each : rows) {
        pids.push_back(each.pid);
    }
    return pids;
}

class CleanupLinesTest : public testing::Test {
protected:
    const ScopedLocale locale{"en_US"};
};

TEST_F(CleanupLinesTest, TheHeadingNamesTheTarget) {
    EXPECT_EQ(cleanup_lines::heading("photo-indexer"), u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(cleanup_lines::heading("PID 800"), u"Selected Offender: PID 800"_s);
    EXPECT_EQ(cleanup_lines::heading(""), u"Selected Offender"_s);
}

// The sentence -----------------------------------------------------------------------------------

struct SentenceCase {
    const char* name;
    const char* command;
    double cpu;
    double rssMB;
    bool isProtected;
    const char* sentence;

    friend std::ostream& operator<<(std::ostream& out, const SentenceCase& tested) {
        return out << tested.name;
    }
};

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

const SentenceCase sentenceCases[] = {
    {"Manual", "/usr/bin/photo-indexer", 130.04, 412.4, false,
     "photo-indexer is using 130.0% CPU and 412 MB memory. Review before quitting; unsaved work "
     "may be lost if the app does not exit cleanly."},
    {"Protected", "/usr/lib/systemd/systemd", 0.0, 12.6, true,
     "systemd is using 0.0% CPU and 13 MB memory. It is protected from quit actions."},
    {"LargeFiguresAreGrouped", "/usr/bin/builder", 1599.96, 20480.0, true,
     "builder is using 1,600.0% CPU and 20,480 MB memory. It is protected from quit actions."},
    {"WhatIsNotFiniteCountsAsZero", "/usr/bin/odd", noNumber, infinite, true,
     "odd is using 0.0% CPU and 0 MB memory. It is protected from quit actions."},
    {"ACommandThatIsNoPath", "worker", 1.0, 1.0, true,
     "worker is using 1.0% CPU and 1 MB memory. It is protected from quit actions."},
    {"ANameThatLooksLikeAPattern", "/usr/bin/%1 %2", 1.0, 1.0, true,
     "%1 %2 is using 1.0% CPU and 1 MB memory. It is protected from quit actions."},
};

class CleanupLinesSentence : public CleanupLinesTest,
                             public testing::WithParamInterface<SentenceCase> {};

TEST_P(CleanupLinesSentence, TellsTheFiguresAndWhatToMind) {
    const SentenceCase& tested = GetParam();
    EXPECT_EQ(cleanup_lines::sentence(processRow(800, tested.command, tested.cpu, tested.rssMB),
                                      tested.isProtected)
                  .toStdString(),
              tested.sentence);
}

INSTANTIATE_TEST_SUITE_P(Table, CleanupLinesSentence, testing::ValuesIn(sentenceCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(CleanupLinesTest, FiguresAreInTheFormatOfTheLocale) {
    const ScopedLocale german("de_DE");
    EXPECT_TRUE(cleanup_lines::sentence(processRow(800, "/usr/bin/editor", 30.5, 2048.0), false)
                    .startsWith(u"editor is using 30,5% CPU and 2.048 MB memory. "_s));
}

// The group --------------------------------------------------------------------------------------

struct GroupCase {
    const char* name;
    std::optional<std::string> group;
    const char* value;
    const char* detail;

    friend std::ostream& operator<<(std::ostream& out, const GroupCase& tested) {
        return out << tested.name;
    }
};

const GroupCase groupCases[] = {
    {"Several", "Google Chrome", "Google Chrome", "12 processes · 345.7% CPU"},
    {"One", "editor", "editor", "1 process · 30.0% CPU"},
    {"Thousands", "worker", "worker", "1,234 processes · 0.0% CPU"},
    {"NotInTheSample", "photo-indexer", "photo-indexer", "No group summary"},
    {"NamesAreComparedWhole", "Google", "Google", "No group summary"},
    {"NamesAreComparedExactly", "google chrome", "google chrome", "No group summary"},
    {"NoGroup", std::nullopt, "No group summary", ""},
    {"NoName", "", "No group summary", ""},
};

class CleanupLinesGroup : public CleanupLinesTest, public testing::WithParamInterface<GroupCase> {};

TEST_P(CleanupLinesGroup, IsSummedUpWhereTheSampleHasIt) {
    const std::vector<AppImpact> groups{{"Google Chrome", 12, 345.67, 2048.0, 701, 0},
                                        {"editor", 1, 30.0, 1024.0, 700, 0},
                                        {"worker", 1234, 0.0, 90.0, 900, 0}};
    const auto card = cleanup_lines::groupCard(GetParam().group, groups);
    EXPECT_EQ(card.value.toStdString(), GetParam().value);
    EXPECT_EQ(card.detail.toStdString(), GetParam().detail);
}

INSTANTIATE_TEST_SUITE_P(Table, CleanupLinesGroup, testing::ValuesIn(groupCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(CleanupLinesTest, WithoutASampleThereIsNoSummary) {
    EXPECT_EQ(cleanup_lines::groupCard("editor", {}),
              (cleanup_lines::GroupCard{u"editor"_s, u"No group summary"_s}));
}

TEST_F(CleanupLinesTest, TheRiskIsOneWord) {
    EXPECT_EQ(cleanup_lines::risk(true), u"Protected"_s);
    EXPECT_EQ(cleanup_lines::risk(false), u"Manual"_s);
}

// The process under review -----------------------------------------------------------------------

class CleanupOffenderTest : public CleanupLinesTest {
protected:
    CleanupOffenderTest() {
        machine.addProcess(800, "/usr/bin/photo-indexer", 130.0, 2048.0);
        machine.addProcess(1, "/usr/lib/systemd/systemd", 0.0, 12.0);
        machine.addProcess(902, "/opt/chrome helper", 1.0, 250.0);
        machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
        machine.addProcess(903, "/opt/chrome helper", 25.0, 250.0);
    }

    void sample() {
        machine.monitor().refresh();
        machine.finishSamples();
    }

    void select(std::int64_t pid) {
        const ProcessSample* row = findProcess(machine.monitor().sample().latestProcesses(), pid);
        ASSERT_NE(row, nullptr);
        machine.monitor().review().selectProcess(*row);
    }

    void end(std::int64_t pid) {
        std::erase_if(machine.metrics->processes,
                      [pid](const ProcessSample& row) { return row.pid == pid; });
        machine.tick();
    }

    cleanup_lines::Offender offender() {
        return cleanup_lines::offender(machine.monitor().review(), machine.monitor().sample(),
                                       machine.monitor().settings().protectedAppNames);
    }
    cleanup_lines::Target target() { return offender().target.value(); }

    FakeMachine machine;
};

TEST_F(CleanupOffenderTest, HelpersAreTheProcessesOfTheGroupHeaviestFirst) {
    EXPECT_THAT(cleanup_lines::helperProcesses(machine.monitor().sample(), "photo-indexer"),
                IsEmpty())
        << "before the first sample";
    sample();
    const auto helpersOf = [this](const char* group) {
        return pidsOf(cleanup_lines::helperProcesses(machine.monitor().sample(), group));
    };
    EXPECT_THAT(helpersOf("Google Chrome"), ElementsAre(901, 903, 902));
    EXPECT_THAT(helpersOf("photo-indexer"), ElementsAre(800));
    EXPECT_THAT(helpersOf("google chrome"), IsEmpty());
    EXPECT_THAT(helpersOf(""), IsEmpty());
}

TEST_F(CleanupOffenderTest, WithoutASelectionTheHintSaysWhatToDoNext) {
    EXPECT_EQ(offender().explanation, u"Sampling this Mac..."_s);
    sample();
    EXPECT_EQ(offender().heading, u"Selected Offender"_s);
    EXPECT_EQ(offender().explanation, u"Select an app or process to see why it matters."_s);
    EXPECT_FALSE(offender().target);
}

TEST_F(CleanupOffenderTest, ATargetIsExplainedWordForWord) {
    sample();
    select(800);
    EXPECT_EQ(offender().heading, u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(offender().explanation,
              u"photo-indexer is using 130.0% CPU and 2,048 MB memory. Review before "
              "quitting; unsaved work may be lost if the app does not exit "
              "cleanly."_s);
    EXPECT_EQ(target().groupCard,
              (cleanup_lines::GroupCard{u"photo-indexer"_s, u"1 process · 130.0% CPU"_s}));
    EXPECT_EQ(target().risk, u"Manual"_s);
    EXPECT_EQ(target().group, "photo-indexer");
    EXPECT_FALSE(target().isNeverQuit);
    EXPECT_EQ(target().selectedPID, 800);
    EXPECT_THAT(pidsOf(target().helpers), ElementsAre(800));
}

TEST_F(CleanupOffenderTest, AProtectedTargetIsSaidToBeProtected) {
    sample();
    select(1);
    EXPECT_EQ(offender().explanation,
              u"systemd is using 0.0% CPU and 12 MB memory. It is "
              "protected from quit actions."_s);
    EXPECT_EQ(target().risk, u"Protected"_s);
    EXPECT_EQ(target().groupCard, (cleanup_lines::GroupCard{u"systemd"_s, u"No group summary"_s}))
        << "too small for the sample's list of groups";
    EXPECT_THAT(pidsOf(target().helpers), ElementsAre(1));
}

TEST_F(CleanupOffenderTest, AProcessThatHasGoneLeavesNoFiguresBehind) {
    sample();
    select(800);
    end(800);
    EXPECT_EQ(machine.monitor().review().selectedPID(), 800);
    EXPECT_EQ(offender().heading, u"Selected Offender: PID 800"_s);
    EXPECT_EQ(offender().explanation,
              u"Selected for review. Process details are not in the "
              "latest sample."_s);
    EXPECT_EQ(target().groupCard,
              (cleanup_lines::GroupCard{u"photo-indexer"_s, u"No group summary"_s}));
    EXPECT_EQ(target().risk, u"Manual"_s);
    EXPECT_THAT(target().helpers, IsEmpty());
    EXPECT_EQ(target().selectedPID, std::nullopt);
}

TEST_F(CleanupOffenderTest, TheGroupOutlivesItsSelectedProcess) {
    sample();
    select(901);
    end(901);
    EXPECT_EQ(offender().heading, u"Selected Offender: PID 901"_s);
    EXPECT_EQ(target().groupCard,
              (cleanup_lines::GroupCard{u"Google Chrome"_s, u"2 processes · 26.0% CPU"_s}));
    EXPECT_THAT(pidsOf(target().helpers), ElementsAre(903, 902));
}

TEST_F(CleanupOffenderTest, AnotherProcessWithTheSamePIDIsNotTheTarget) {
    sample();
    select(800);
    machine.metrics->processes[0].startTime += 5;
    machine.tick();
    EXPECT_EQ(offender().heading, u"Selected Offender: PID 800"_s);
    EXPECT_THAT(pidsOf(target().helpers), ElementsAre(800));
    EXPECT_EQ(target().selectedPID, std::nullopt);
}

TEST_F(CleanupOffenderTest, TheNeverQuitListIsThatOfTheGroupUnderReview) {
    sample();
    select(901);
    machine.monitor().localActions().toggleNeverQuit("Google Chrome");
    EXPECT_TRUE(target().isNeverQuit);
    EXPECT_EQ(target().risk, u"Protected"_s);
    EXPECT_TRUE(offender().explanation.endsWith(u"It is protected from quit actions."_s));
    EXPECT_THAT(target().protectedAppNames, ElementsAre("Google Chrome"));
    select(800);
    EXPECT_FALSE(target().isNeverQuit);
    EXPECT_EQ(target().group, "photo-indexer");
}

}  // namespace
}  // namespace tallowcrest
