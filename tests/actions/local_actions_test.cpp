#include "actions/local_actions.h"

#include <string>
#include <vector>

#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Purge = PurgeResult::Outcome;

constexpr const char* firstStep = "1. Select an offender to review. No optimization has run yet.";
constexpr const char* purgeStep = "3. Confirm cache purge, or cancel and keep reviewing.";

class PurgeCaches : public LocalActionsFixture {};

TEST_F(PurgeCaches, IsAskedFirstInTheseWords) {
    actions.requestPurge();
    EXPECT_EQ(pending().title, "Purge file caches?");
    EXPECT_EQ(pending().message,
              "macOS will clear reclaimable file caches. This is usually safe, but apps may reload "
              "data afterward.");
    EXPECT_EQ(pending().confirmTitle, "Purge Caches");
    EXPECT_EQ(pending().kind, "local_purge");
    EXPECT_EQ(pending().hostName, std::nullopt);
    EXPECT_EQ(pending().pid, std::nullopt);
    EXPECT_THAT(confirmations.targetPaths(), IsEmpty());
    EXPECT_EQ(review.optimizeStep(), purgeStep);
    EXPECT_EQ(ports.cachePurge->count, 0);
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(PurgeCaches, EveryOutcomeHasItsWords) {
    struct Case {
        PurgeResult result;
        const char* message;
        int refreshes;
    };
    const Case cases[] = {
        {{Purge::purged, {}},
         "Purged reclaimable file caches. macOS may refill them as needed.",
         1},
        {{Purge::refused, {}}, "Purge was blocked by macOS.", 1},
        {{Purge::failed, "No such file or directory"},
         "Could not run purge: No such file or directory",
         0},
        {{Purge::blocked, {}}, "Blocked an executable outside the command allowlist.", 0},
    };
    for (const Case& each : cases) {
        refreshes = 0;
        ports.cachePurge->result = each.result;
        actions.requestPurge();
        confirm();
        expectRecorded(each.message);
        EXPECT_EQ(refreshes, each.refreshes) << each.message;
        EXPECT_FALSE(actions.isPurging());
    }
}

TEST_F(PurgeCaches, OneRunsAtATime) {
    actions.requestPurge();
    confirmations.confirmPending();
    EXPECT_TRUE(actions.isPurging());
    actions.requestPurge();
    confirmations.confirmPending();
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    expectRecorded("File caches are being purged already.");
    finishWork();
    EXPECT_FALSE(actions.isPurging());
    EXPECT_EQ(ports.cachePurge->count, 1);
    actions.requestPurge();
    confirm();
    EXPECT_EQ(ports.cachePurge->count, 2);
}

TEST_F(PurgeCaches, CancelledRunsNothing) {
    actions.requestPurge();
    confirmations.cancelPending();
    confirm();
    EXPECT_EQ(ports.cachePurge->count, 0);
    expectRecorded("Canceled: Purge file caches?.");
    EXPECT_EQ(review.optimizeStep(), purgeStep);
}

class OptimizeSafely : public LocalActionsFixture {
protected:
    void addProtectedGroup() { addProcess(1, "/usr/lib/systemd/systemd").cpu = 90.0; }
    void addSafeGroup() { addProcess(700, "/usr/bin/editor").cpu = 50.0; }
};

TEST_F(OptimizeSafely, WaitsForASample) {
    actions.optimizeSafely();
    expectRecorded("No sample is available yet.");
    EXPECT_EQ(review.selectedPID(), std::nullopt);
}

TEST_F(OptimizeSafely, PurgeAndTarget) {
    addProtectedGroup();
    addSafeGroup();
    takeSample(95.0);
    actions.optimizeSafely();
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_EQ(review.selectedAppImpactName(), "editor");
    EXPECT_EQ(pending().kind, "local_purge");
    EXPECT_EQ(review.optimizeStep(), purgeStep);
    expectRecorded("Optimized safely: purged caches and selected editor for review.");
    EXPECT_EQ(ports.cachePurge->count, 0);
}

TEST_F(OptimizeSafely, PurgeWithoutTarget) {
    addProtectedGroup();
    takeSample(95.0);
    actions.optimizeSafely();
    EXPECT_EQ(review.selectedPID(), std::nullopt);
    EXPECT_EQ(pending().kind, "local_purge");
    expectRecorded("Optimized safely: purged caches. No safe app target was found.");
}

TEST_F(OptimizeSafely, TargetWithoutPurge) {
    addProtectedGroup();
    addSafeGroup();
    takeSample(10.0);
    actions.optimizeSafely();
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_EQ(review.optimizeStep(), firstStep);
    expectRecorded("Optimize Safely selected editor. Review it before quitting anything.");
}

TEST_F(OptimizeSafely, NothingToDo) {
    addProtectedGroup();
    takeSample(10.0);
    const ProcessSample chosen = addProcess(500, "/usr/bin/chosen");
    review.selectProcess(chosen);
    const std::string step = review.optimizeStep();
    actions.optimizeSafely();
    expectRecorded("Optimize Safely found no safe action needed right now.");
    EXPECT_EQ(review.selectedPID(), 500);
    EXPECT_EQ(review.selectedAppImpactName(), "chosen");
    EXPECT_EQ(review.optimizeStep(), step);
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(OptimizeSafely, PressureAtTheThresholdPurgesAndBelowItDoesNot) {
    settings.set(&Settings::warningThreshold, 82.0);
    takeSample(81.999);
    actions.optimizeSafely();
    EXPECT_FALSE(confirmations.pendingConfirmation());
    takeSample(82.0);
    actions.optimizeSafely();
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(OptimizeSafely, TheTargetItSelectsIsTheOneThatIsQuit) {
    addSafeGroup();
    takeSample(10.0);
    actions.optimizeSafely();
    reuseNumber(700);
    actions.requestQuitSelectedProcess();
    confirm();
    expectRecorded("Blocked an invalid process termination request.");
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

class NeverQuit : public LocalActionsFixture {};

TEST_F(NeverQuit, IsStoredSortedAndTold) {
    actions.toggleNeverQuit("Python");
    expectRecorded("Python added to Never Quit.");
    actions.toggleNeverQuit("Docker");
    EXPECT_EQ(store.read(settings_keys::protectedAppsKey),
              SettingsValue(SettingsTextList{"Docker", "Python"}));
    EXPECT_EQ(settings.values().protectedAppNames, (ProtectedAppNames{"Docker", "Python"}));
}

TEST_F(NeverQuit, TwiceRestoresTheListAndLogsTwoEvents) {
    settings.set(&Settings::protectedAppNames, {"Docker"});
    actions.toggleNeverQuit("Python");
    actions.toggleNeverQuit("Python");
    expectRecorded("Python removed from Never Quit.");
    EXPECT_THAT(log.activityLog(), SizeIs(2));
    EXPECT_EQ(settings.values().protectedAppNames, ProtectedAppNames{"Docker"});
    EXPECT_EQ(store.read(settings_keys::protectedAppsKey),
              SettingsValue(SettingsTextList{"Docker"}));
}

TEST_F(NeverQuit, HoldsAtOnceForWhatIsUnderReview) {
    addProcess(700, "/usr/bin/docker");
    takeSample();
    selectFirst();
    EXPECT_FALSE(review.selectedTargetSummary().isProtected);
    actions.toggleNeverQuit("Docker");
    EXPECT_TRUE(review.selectedTargetSummary().isProtected);
    actions.requestQuitSelectedProcess();
    expectRecorded("Refused to quit protected process docker.");
    actions.requestQuitSelectedApp();
    expectRecorded("Refused to quit protected app group Docker.");
    actions.optimizeSafely();
    expectRecorded("Optimize Safely found no safe action needed right now.");
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(NeverQuit, TellsObservers) {
    takeSample();
    mainQueue.drain();
    std::vector<std::string> told;
    const Subscription ofSettings =
        settings.observable().subscribe([&] { told.emplace_back("settings"); });
    const Subscription ofSample =
        sample.observable().subscribe([&] { told.emplace_back("sample"); });
    actions.toggleNeverQuit("Docker");
    mainQueue.drain();
    EXPECT_THAT(told, ElementsAre("settings", "sample"));
}

}  // namespace
}  // namespace tallowcrest
