#include "actions/review_target.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "sampling/latest_sample.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

constexpr const char* firstReviewStep =
    "1. Select an offender to review. No optimization has run yet.";

ProcessSample reviewedRow(std::int64_t pid, const std::string& command, double cpu = 12.34,
                          double rssMB = 345.6) {
    return {pid, cpu, 1.0, rssMB, command, command};
}

class ReviewTargetTest : public ::testing::Test, protected TestServices {
protected:
    void publish(std::vector<ProcessSample> latest, std::vector<ProcessSample> top,
                 std::vector<AppImpact> groups = {}) {
        SystemSnapshot snapshot;
        snapshot.topProcesses = std::move(top);
        snapshot.appImpacts = std::move(groups);
        sample.setLatestProcesses(std::move(latest), {});
        sample.setSnapshot(std::move(snapshot));
    }

    static AppImpact group(const std::string& name, std::optional<std::int64_t> topPID) {
        AppImpact result;
        result.name = name;
        result.topPID = topPID;
        return result;
    }

    void setNeverQuit(ProtectedAppNames names) {
        settings.set(&Settings::protectedAppNames, std::move(names));
    }

    static SelectedTargetSummary goneSummary(const std::string& title) {
        return {title, "Selected for review. Process details are not in the latest sample.", false};
    }

    void expectNothingSelected() const {
        EXPECT_EQ(review.selectedPID(), std::nullopt);
        EXPECT_EQ(review.selectedAppImpactName(), std::nullopt);
        EXPECT_EQ(review.optimizeStep(), firstReviewStep);
    }

    void expectSelected(std::int64_t pid, const std::string& groupName,
                        const std::string& step) const {
        EXPECT_EQ(review.selectedPID(), pid);
        EXPECT_EQ(review.selectedAppImpactName(), groupName);
        EXPECT_EQ(review.optimizeStep(), step);
    }

    /// The message is the last action, and was added as an event of the kind `action` to `before`
    /// others.
    void expectRecorded(const std::string& message, std::size_t before = 0) const {
        EXPECT_EQ(log.lastAction(), message);
        ASSERT_EQ(log.activityLog().size(), before + 1);
        EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::action);
        EXPECT_EQ(log.activityLog()[0].detail, message);
    }

    /// The latest operation returned `expected` and recorded its message.
    void expectOutcome(const Outcome& expected, std::size_t before = 0) const {
        EXPECT_EQ(outcome, expected);
        expectRecorded(expected.message, before);
    }

    void expectOnlySet(const std::string& message) const {
        EXPECT_EQ(log.lastAction(), message);
        EXPECT_THAT(log.activityLog(), IsEmpty());
    }

    Outcome outcome = Outcome::done();
    LatestSample sample{settings, mainQueue};
    ReviewTarget review{services, sample,
                        ProtectionPolicy{.ownPID = 4242, .protectsLinuxSystem = true}};
};

TEST_F(ReviewTargetTest, StartsWithNothingSelected) {
    expectNothingSelected();
    EXPECT_EQ(review.selectedTargetSummary(), SelectedTargetSummary{});
    expectOnlySet("Monitoring started.");
}

// A row of the list ------------------------------------------------------------------------------

TEST_F(ReviewTargetTest, SelectProcessSetsTargetGroupAndStepAndRecordsNothing) {
    for (const auto& [command, groupName, name] :
         {std::tuple{"/opt/google/Google Chrome Helper", "Google Chrome", "Google Chrome Helper"},
          {"/usr/lib/systemd/systemd", "systemd", "systemd"},  // a protected row too
          {"/", "/", "/"}}) {                                  // the whole command
        review.selectProcess(reviewedRow(7, command));
        expectSelected(
            7, groupName,
            "2. " + std::string(name) + " is selected for review from CPU + Memory Processes.");
        expectOnlySet("Monitoring started.");
    }
}

TEST_F(ReviewTargetTest, SelectFirstProcessTakesTheFirstVisibleRow) {
    outcome = review.selectFirstProcess(
        {reviewedRow(9, "/usr/bin/second-heaviest"), reviewedRow(7, "/usr/bin/other")});
    expectSelected(9, "second-heaviest",
                   "2. second-heaviest is selected for review from CPU + Memory Processes.");
    EXPECT_EQ(outcome.kind, Outcome::Kind::done);
    expectOnlySet(outcome.message);
    EXPECT_EQ(outcome.message,
              "Selected second-heaviest from CPU + Memory Processes. No action has run yet.");
}

TEST_F(ReviewTargetTest, SelectFirstProcessOfAnEmptyListKeepsTheSelection) {
    review.selectProcess(reviewedRow(7, "/usr/bin/kept"));
    outcome = review.selectFirstProcess({});
    expectSelected(7, "kept", "2. kept is selected for review from CPU + Memory Processes.");
    EXPECT_EQ(outcome, Outcome::refused("No process is available to select."));
    expectOnlySet("No process is available to select.");
}

TEST_F(ReviewTargetTest, SelectProcessWithPIDTakesTheRowOfTheLatestTable) {
    publish({reviewedRow(7, "/usr/bin/first"), reviewedRow(9, "/usr/bin/second")}, {});
    EXPECT_EQ(review.selectProcessWithPID(9),
              Outcome::done("Selected second from CPU + Memory Processes. No action has run yet."));
    expectSelected(9, "second", "2. second is selected for review from CPU + Memory Processes.");
    expectOnlySet("Selected second from CPU + Memory Processes. No action has run yet.");
}

TEST_F(ReviewTargetTest, SelectProcessWithPIDOfAProcessThatIsGoneKeepsTheSelection) {
    publish({reviewedRow(7, "/usr/bin/kept")}, {});
    review.selectProcessWithPID(7);
    EXPECT_EQ(review.selectProcessWithPID(9),
              Outcome::refused("No process is available to select."));
    expectSelected(7, "kept", "2. kept is selected for review from CPU + Memory Processes.");
    expectOnlySet("No process is available to select.");
}

// The heaviest process ---------------------------------------------------------------------------

TEST_F(ReviewTargetTest, SelectTopProcessWithoutASampleOrOfAnEmptyTable) {
    outcome = review.selectTopProcess();
    expectNothingSelected();
    expectOutcome(Outcome::refused("No process sample is available yet."));
    publish({reviewedRow(7, "/usr/bin/unranked")}, {});
    outcome = review.selectTopProcess();
    expectNothingSelected();
    expectOutcome(Outcome::refused("No process sample is available yet."), 1);
}

TEST_F(ReviewTargetTest, SelectTopProcess) {
    publish({}, {reviewedRow(7, "/usr/bin/python3.11"), reviewedRow(8, "/usr/bin/other")});
    outcome = review.selectTopProcess();
    expectSelected(7, "Python",
                   "2. python3.11 is selected for review. Choose a confirmed action when ready.");
    expectOutcome(Outcome::done("Selected python3.11, currently the heaviest process."));
}

TEST_F(ReviewTargetTest, SelectTopProcessRefusesAProtectedProcess) {
    setNeverQuit({"Node.js"});
    const std::vector<ProcessSample> protectedRows{
        reviewedRow(7, "/sbin/launchd"),             // a built-in name
        reviewedRow(7, "/usr/libexec/anything"),     // a protected place
        reviewedRow(7, "/System/Library/anything"),  // a protected place
        reviewedRow(7, "/usr/bin/node"),             // its group is on the Never Quit list
        reviewedRow(4242, "/usr/bin/anything"),      // this program itself
        reviewedRow(1, "/sbin/anything"),            // the first process
        reviewedRow(7, "[kworker/0:1]"),             // a kernel thread
        reviewedRow(7, "/usr/bin/gnome-shell"),      // the session
    };
    for (const ProcessSample& top : protectedRows) {
        const std::size_t before = log.activityLog().size();
        review.selectProcess(reviewedRow(99, "/usr/bin/kept"));
        publish({}, {top, reviewedRow(8, "/usr/bin/safe")});
        outcome = review.selectTopProcess();
        expectSelected(99, "kept", "2. kept is selected for review from CPU + Memory Processes.");
        expectOutcome(
            Outcome::refused("Top process is protected: " + std::string(top.displayName()) +
                             ". Select another process to optimize."),
            before);
    }
}

TEST_F(ReviewTargetTest, NeverQuitNamesAreCaseSensitiveGroupNames) {
    const ProcessSample node = reviewedRow(7, "/usr/bin/node");
    setNeverQuit({"node", "NODE.JS"});
    publish({}, {node});
    outcome = review.selectTopProcess();
    EXPECT_EQ(review.selectedPID(), 7);
    EXPECT_FALSE(review.isProtectedTarget(node));
    setNeverQuit({"Node.js"});
    EXPECT_TRUE(review.isProtectedTarget(node)) << "added later";
}

// The heaviest group -----------------------------------------------------------------------------

TEST_F(ReviewTargetTest, SelectTopAppWithoutASampleAGroupOrATopProcess) {
    outcome = review.selectTopApp();
    expectOutcome(Outcome::refused("No app impact sample is available yet."));
    publish({reviewedRow(7, "/usr/bin/a")}, {reviewedRow(7, "/usr/bin/a")}, {});
    outcome = review.selectTopApp();
    expectOutcome(Outcome::refused("No app impact sample is available yet."), 1);
    publish({reviewedRow(7, "/usr/bin/a")}, {reviewedRow(7, "/usr/bin/a")},
            {group("No top", std::nullopt), group("a", 7)});
    outcome = review.selectTopApp();
    expectOutcome(Outcome::refused("No app impact sample is available yet."), 2);
    expectNothingSelected();
}

TEST_F(ReviewTargetTest, SelectTopApp) {
    publish({reviewedRow(8, "/usr/bin/b"), reviewedRow(7, "/usr/bin/a")}, {},
            {group("Group A", 7), group("b", 8)});
    outcome = review.selectTopApp();
    expectSelected(7, "Group A",
                   "2. Group A is selected for review. Nothing has been quit or purged yet.");
    expectOutcome(Outcome::done("Selected the heaviest process inside Group A."));
}

TEST_F(ReviewTargetTest, SelectTopAppRefusesAProtectedTopProcess) {
    setNeverQuit({"Docker"});
    for (const ProcessSample& top :
         {reviewedRow(7, "/sbin/launchd"), reviewedRow(7, "/usr/bin/docker"),
          reviewedRow(7, "/usr/sbin/sshd"), reviewedRow(7, "[kswapd0]"),
          reviewedRow(4242, "/usr/bin/anything")}) {
        const std::size_t before = log.activityLog().size();
        publish({top}, {}, {group("Heavy", top.pid)});
        outcome = review.selectTopApp();
        expectNothingSelected();
        expectOutcome(Outcome::refused(
                          "Top app includes protected system processes. Select a safer app group."),
                      before);
    }
}

TEST_F(ReviewTargetTest, SelectTopAppAcceptsATopProcessThatHasLeftTheList) {
    // The ranked rows still contain it, even as a protected one, but only the latest table counts.
    publish({reviewedRow(8, "/usr/bin/b")}, {reviewedRow(7, "/sbin/launchd")}, {group("Gone", 7)});
    outcome = review.selectTopApp();
    expectSelected(7, "Gone",
                   "2. Gone is selected for review. Nothing has been quit or purged yet.");
    expectOutcome(Outcome::done("Selected the heaviest process inside Gone."));
}

// Clearing ---------------------------------------------------------------------------------------

TEST_F(ReviewTargetTest, ClearingIsRecordedEvenWithoutASelection) {
    review.selectProcess(reviewedRow(7, "/usr/bin/a"));
    for (const std::size_t events : {0U, 1U}) {
        review.clearOperationTarget();
        expectNothingSelected();
        expectRecorded("Cleared selected operation target.", events);
    }
}

// The target card --------------------------------------------------------------------------------

TEST_F(ReviewTargetTest, SummaryOfARowOfTheLatestTableOrOtherwiseOfTheRankedList) {
    const auto summaryOf = [this](const ProcessSample& selected) {
        review.selectProcess(selected);
        return review.selectedTargetSummary();
    };
    publish({reviewedRow(7, "/opt/Google Chrome Helper", 12.35, 345.6), reviewedRow(9, "//")},
            {reviewedRow(7, "/usr/bin/older-name", 99, 99), reviewedRow(8, "/usr/bin/a", 0, 0.4)});
    EXPECT_EQ(summaryOf(reviewedRow(7, "/usr/bin/whatever")),
              (SelectedTargetSummary{"Google Chrome Helper",
                                     "Google Chrome · PID 7 · 12.3% CPU · 346 MB", false}));
    EXPECT_EQ(summaryOf(reviewedRow(8, "/usr/bin/a")),
              (SelectedTargetSummary{"a", "a · PID 8 · 0.0% CPU · 0 MB", false}));
    EXPECT_EQ(summaryOf(reviewedRow(9, "//")).title, "//") << "without a path component";
}

TEST_F(ReviewTargetTest, SummaryMarksProtectedProcesses) {
    setNeverQuit({"b"});
    publish(
        {reviewedRow(7, "/sbin/launchd"), reviewedRow(8, "/usr/bin/b"), reviewedRow(1, "/init")},
        {});
    for (const std::int64_t pid : {7, 8, 1}) {
        review.selectProcess(reviewedRow(pid, "/usr/bin/x"));
        EXPECT_TRUE(review.selectedTargetSummary().isProtected) << pid;
    }
}

TEST_F(ReviewTargetTest, SummaryOfAProcessThatIsGone) {
    review.selectProcess(reviewedRow(7, "/sbin/launchd"));
    const SelectedTargetSummary gone = goneSummary("PID 7");
    EXPECT_EQ(review.selectedTargetSummary(), gone);  // no sample at all
    publish({reviewedRow(8, "/usr/bin/b")}, {reviewedRow(8, "/usr/bin/b")});
    EXPECT_EQ(review.selectedTargetSummary(), gone);
    EXPECT_EQ(review.selectedPID(), 7);
}

TEST_F(ReviewTargetTest, AReusedPidIsNotTheProcessUnderReview) {
    ProcessSample reviewed = reviewedRow(700, "/usr/bin/editor");
    reviewed.startTime = 1000;
    publish({reviewed}, {reviewed});
    review.selectProcess(reviewed);
    ASSERT_NE(review.selectedRow(), nullptr);
    EXPECT_EQ(review.reviewedRow().value().startTime, 1000U);
    ProcessSample later = reviewedRow(700, "/usr/bin/backup");
    later.startTime = 1001;
    publish({later}, {later});
    EXPECT_EQ(review.selectedRow(), nullptr);
    EXPECT_EQ(review.selectedTargetSummary(), goneSummary("PID 700"));
    // Without start times the PID alone decides.
    const ProcessSample withoutStartTime = reviewedRow(700, "/usr/bin/editor");
    publish({withoutStartTime}, {});
    review.selectProcess(withoutStartTime);
    EXPECT_EQ(review.reviewedRow().value().startTime, 0U);
    EXPECT_NE(review.selectedRow(), nullptr);
}

TEST_F(ReviewTargetTest, SetTargetKeepsTheStep) {
    ProcessSample listed = reviewedRow(700, "/usr/bin/editor");
    listed.startTime = 1000;
    publish({listed}, {});
    review.setTarget(700, "editor");
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_EQ(review.selectedAppImpactName(), "editor");
    EXPECT_EQ(review.reviewedRow().value().startTime, 1000U);
    EXPECT_EQ(review.optimizeStep(), firstReviewStep);
    review.setTarget(701, "gone");
    EXPECT_FALSE(review.reviewedRow());
    EXPECT_EQ(review.selectedRow(), nullptr);
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ReviewTargetTest, NotifiesObserversOfEverySelection) {
    int told = 0;
    const Subscription subscription = review.observable().subscribe([&told] { ++told; });
    review.selectProcess(reviewedRow(7, "/usr/bin/a"));
    mainQueue.drain();
    EXPECT_EQ(told, 1);
    review.clearOperationTarget();
    mainQueue.drain();
    EXPECT_EQ(told, 2);
}

}  // namespace
}  // namespace tallowcrest
