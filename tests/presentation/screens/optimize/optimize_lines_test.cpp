#include "presentation/screens/optimize/optimize_lines.h"

#include <vector>

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"
#include "tests/support/numbers.h"
#include "tests/support/pids_of.h"
#include "tests/support/process_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OptimizeLinesTest : public testing::Test {
protected:
    const ScopedLocale locale{"en_US"};
};

TEST_F(OptimizeLinesTest, TheHeadingNamesTheTargetAndTheRiskIsOneWord) {
    EXPECT_EQ(optimize_lines::heading("photo-indexer"), u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(optimize_lines::heading("PID 800"), u"Selected Offender: PID 800"_s);
    EXPECT_EQ(optimize_lines::heading(""), u"Selected Offender"_s);
    EXPECT_EQ(optimize_lines::risk(true), u"Protected"_s);
    EXPECT_EQ(optimize_lines::risk(false), u"Manual"_s);
}

// The sentence -----------------------------------------------------------------------------------

TEST_F(OptimizeLinesTest, TheSentenceContainsTheFiguresAndTheAdvice) {
    struct Case {
        const char* name;
        const char* command;
        double cpu;
        double rssMB;
        bool isProtected;
        const char* sentence;
    };
    const Case cases[] = {
        {"manual", "/usr/bin/photo-indexer", 130.04, 412.4, false,
         "photo-indexer is using 130.0% CPU and 412 MB memory. Review before quitting; unsaved "
         "work may be lost if the app does not exit cleanly."},
        {"protected", "/usr/lib/systemd/systemd", 0.0, 12.6, true,
         "systemd is using 0.0% CPU and 13 MB memory. It is protected from quit actions."},
        {"large figures are grouped", "/usr/bin/builder", 1599.96, 20480.0, true,
         "builder is using 1,600.0% CPU and 20,480 MB memory. It is protected from quit actions."},
        {"figures that are not finite", "/usr/bin/odd", nan, infinity, true,
         "odd is using 0.0% CPU and 0 MB memory. It is protected from quit actions."},
        {"a command without a path", "worker", 1.0, 1.0, true,
         "worker is using 1.0% CPU and 1 MB memory. It is protected from quit actions."},
        {"a name with placeholders", "/usr/bin/%1 %2", 1.0, 1.0, true,
         "%1 %2 is using 1.0% CPU and 1 MB memory. It is protected from quit actions."},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(optimize_lines::sentence(processRow(800, each.command, each.cpu, each.rssMB),
                                           each.isProtected)
                      .toStdString(),
                  each.sentence)
            << each.name;
    }
    const ScopedLocale german("de_DE");
    EXPECT_TRUE(optimize_lines::sentence(processRow(800, "/usr/bin/editor", 30.5, 2048.0), false)
                    .startsWith(u"editor is using 30,5% CPU and 2.048 MB memory. "_s));
}

// The group --------------------------------------------------------------------------------------

TEST_F(OptimizeLinesTest, AGroupHasFiguresIfTheSampleContainsIt) {
    const std::vector<AppImpact> groups{{"Google Chrome", 12, 345.67, 2048.0, 701, 0},
                                        {"editor", 1, 30.0, 1024.0, 700, 0},
                                        {"worker", 1234, 0.0, 90.0, 900, 0}};
    struct Case {
        std::optional<std::string> group;
        const char* value;
        const char* detail;
    };
    for (const Case& each :
         {Case{"Google Chrome", "Google Chrome", "12 processes · 345.7% CPU"},
          Case{"editor", "editor", "1 process · 30.0% CPU"},
          Case{"worker", "worker", "1,234 processes · 0.0% CPU"},
          Case{"photo-indexer", "photo-indexer", "No group summary"},
          // Names are compared whole and exactly.
          Case{"Google", "Google", "No group summary"},
          Case{"google chrome", "google chrome", "No group summary"},
          Case{std::nullopt, "No group summary", ""}, Case{"", "No group summary", ""}}) {
        const auto card = optimize_lines::groupCard(each.group, groups);
        EXPECT_EQ(card.value.toStdString(), each.value);
        EXPECT_EQ(card.detail.toStdString(), each.detail) << each.value;
    }
    EXPECT_EQ(optimize_lines::groupCard("editor", {}),
              (optimize_lines::GroupCard{u"editor"_s, u"No group summary"_s}));
}

// The process under review -----------------------------------------------------------------------

/// A sample of five processes, `photo-indexer` under review.
class CleanupOffenderTest : public OptimizeLinesTest {
protected:
    void SetUp() override {
        snapshot.emplace().appImpacts = {{"photo-indexer", 1, 130.0, 2048.0, 800, 0},
                                         {"Google Chrome", 3, 76.0, 1000.0, 901, 0}};
        summary.title = "photo-indexer";
    }

    optimize_lines::Offender offender() {
        return optimize_lines::offender(
            {.selectedPID = selectedPID,
             .selectedRow = selectedRow,
             .group = group,
             .summary = summary,
             .snapshot = snapshot,
             .latestProcesses = processes,
             .impactOrder = impactOrder,
             .protectedAppNames = protectedAppNames,
             .protection = {.ownPID = 4242, .protectsLinuxSystem = true}});
    }
    optimize_lines::Target target() { return offender().target.value(); }

    std::vector<ProcessSample> processes{processRow(1, "/usr/lib/systemd/systemd", 0.0, 12.0),
                                         processRow(902, "/opt/chrome helper", 1.0, 250.0),
                                         processRow(901, "/opt/chrome", 50.0, 500.0),
                                         processRow(903, "/opt/chrome helper", 25.0, 250.0),
                                         processRow(800, "/usr/bin/photo-indexer", 130.0, 2048.0)};
    std::vector<std::size_t> impactOrder{4, 2, 3, 1, 0};
    std::optional<SystemSnapshot> snapshot;
    std::optional<std::int64_t> selectedPID = 800;
    const ProcessSample* selectedRow = &processes[4];
    std::optional<std::string> group = "photo-indexer";
    SelectedTargetSummary summary;
    ProtectedAppNames protectedAppNames;
};

TEST_F(CleanupOffenderTest, HelpersAreTheProcessesOfTheGroupHeaviestFirst) {
    EXPECT_THAT(optimize_lines::helperProcesses({}, {}, "photo-indexer"), IsEmpty())
        << "before the first sample";
    const auto helpersOf = [this](const char* name) {
        return pids(optimize_lines::helperProcesses(processes, impactOrder, name));
    };
    EXPECT_THAT(helpersOf("Google Chrome"), ElementsAre(901, 903, 902));
    EXPECT_THAT(helpersOf("photo-indexer"), ElementsAre(800));
    EXPECT_THAT(helpersOf("google chrome"), IsEmpty());
    EXPECT_THAT(helpersOf(""), IsEmpty());
}

TEST_F(CleanupOffenderTest, WithoutASelectionTheHintSaysWhatToDoNext) {
    selectedPID.reset();
    EXPECT_EQ(offender().heading, u"Selected Offender"_s);
    EXPECT_EQ(offender().explanation, u"Select an app or process to see why it matters."_s);
    EXPECT_FALSE(offender().target);
    snapshot.reset();
    EXPECT_EQ(offender().explanation, u"Sampling this Mac..."_s);
}

TEST_F(CleanupOffenderTest, ATargetIsExplainedWordForWord) {
    EXPECT_EQ(offender().heading, u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(offender().explanation,
              u"photo-indexer is using 130.0% CPU and 2,048 MB memory. Review before "
              "quitting; unsaved work may be lost if the app does not exit "
              "cleanly."_s);
    EXPECT_EQ(target().groupCard,
              (optimize_lines::GroupCard{u"photo-indexer"_s, u"1 process · 130.0% CPU"_s}));
    EXPECT_EQ(target().risk, u"Manual"_s);
    EXPECT_EQ(target().group, "photo-indexer");
    EXPECT_FALSE(target().isNeverQuit);
    EXPECT_EQ(target().selectedPID, 800);
    EXPECT_THAT(pids(target().helpers), ElementsAre(800));
}

TEST_F(CleanupOffenderTest, AProtectedTargetIsCalledProtected) {
    selectedPID = 1;
    selectedRow = &processes[0];
    group = "systemd";
    summary = {.title = "systemd", .detail = {}, .isProtected = true};
    EXPECT_EQ(offender().explanation,
              u"systemd is using 0.0% CPU and 12 MB memory. It is "
              "protected from quit actions."_s);
    EXPECT_EQ(target().risk, u"Protected"_s);
    EXPECT_EQ(target().groupCard, (optimize_lines::GroupCard{u"systemd"_s, u"No group summary"_s}))
        << "too small for the sample's list of groups";
    EXPECT_THAT(pids(target().helpers), ElementsAre(1));
}

TEST_F(CleanupOffenderTest, AProcessThatIsNotInTheSampleHasNoFigures) {
    selectedRow = nullptr;
    summary = {.title = "PID 800", .detail = "Not in the sample.", .isProtected = false};
    EXPECT_EQ(offender().heading, u"Selected Offender: PID 800"_s);
    EXPECT_EQ(offender().explanation, u"Not in the sample."_s);
    EXPECT_EQ(target().risk, u"Manual"_s);
    EXPECT_EQ(target().selectedPID, std::nullopt);
    EXPECT_THAT(pids(target().helpers), ElementsAre(800));

    impactOrder.erase(impactOrder.begin());
    snapshot->appImpacts.erase(snapshot->appImpacts.begin());
    EXPECT_EQ(target().groupCard,
              (optimize_lines::GroupCard{u"photo-indexer"_s, u"No group summary"_s}));
    EXPECT_THAT(target().helpers, IsEmpty());
}

TEST_F(CleanupOffenderTest, TheGroupStaysWhenItsProcessEnds) {
    selectedPID = 901;
    selectedRow = nullptr;
    group = "Google Chrome";
    impactOrder = {4, 3, 1, 0};
    snapshot->appImpacts[1] = {"Google Chrome", 2, 26.0, 500.0, 903, 0};
    EXPECT_EQ(target().groupCard,
              (optimize_lines::GroupCard{u"Google Chrome"_s, u"2 processes · 26.0% CPU"_s}));
    EXPECT_THAT(pids(target().helpers), ElementsAre(903, 902));
}

TEST_F(CleanupOffenderTest, NeverQuitBelongsToTheGroupUnderReview) {
    protectedAppNames = {"Google Chrome"};
    EXPECT_FALSE(target().isNeverQuit);
    EXPECT_EQ(target().group, "photo-indexer");
    group = "Google Chrome";
    EXPECT_TRUE(target().isNeverQuit);
}

// The buttons that ask whether to quit -----------------------------------------------------------

TEST_F(CleanupOffenderTest, ATargetAndItsGroupMayBeQuit) {
    EXPECT_EQ(offender().quitProcess,
              (optimize_lines::QuitButton{true, u"Asks whether to quit photo-indexer"_s}));
    EXPECT_EQ(offender().quitApp, (optimize_lines::QuitButton{
                                      true, u"Asks whether to quit photo-indexer, 1 process"_s}));
    group = "Google Chrome";
    EXPECT_EQ(offender().quitApp.description, u"Asks whether to quit Google Chrome, 3 processes"_s);
}

TEST_F(CleanupOffenderTest, ADisabledQuitButtonSaysWhy) {
    const auto expectDisabled = [](const optimize_lines::QuitButton& button, const char* why) {
        EXPECT_EQ(button, (optimize_lines::QuitButton{false, QString::fromUtf8(why)}));
    };
    protectedAppNames = {"photo-indexer"};
    expectDisabled(offender().quitApp, "photo-indexer is on the Never Quit list");

    selectedPID = 1;
    selectedRow = &processes[0];
    group = "systemd";
    summary = {.title = "systemd", .detail = {}, .isProtected = true};
    expectDisabled(offender().quitProcess, "systemd is protected from quit actions");
    expectDisabled(offender().quitApp, "systemd has no process that may be quit");
    group.reset();
    expectDisabled(offender().quitApp, "Select an app group first");

    selectedPID.reset();
    expectDisabled(offender().quitProcess, "Select a process first");
    expectDisabled(offender().quitApp, "Select an app group first");
}

TEST_F(CleanupOffenderTest, AProcessThatLeftTheSampleIsNotToBeQuit) {
    selectedRow = nullptr;
    summary = {.title = "PID 800", .detail = "Not in the sample.", .isProtected = false};
    EXPECT_EQ(offender().quitProcess,
              (optimize_lines::QuitButton{false, u"PID 800 is not running any more"_s}));
}

}  // namespace
}  // namespace tallowcrest
