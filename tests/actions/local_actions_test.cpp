#include "actions/local_actions.h"

#include <string>
#include <vector>

#include "core/observable.h"
#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Purge = PurgeResult::Kind;

constexpr const char* firstStep = "1. Select an offender to review. No optimization has run yet.";
constexpr const char* purgeStep = "3. Confirm cache purge, or cancel and keep reviewing.";

class PurgeCaches : public LocalActionsFixture {};

TEST_F(PurgeCaches, AsksForConfirmationFirst) {
    EXPECT_EQ(actions.requestPurge(), Outcome::asked());
    EXPECT_EQ(pending().title, "Purge file caches?");
    EXPECT_EQ(pending().message,
              "macOS will clear reclaimable file caches. This is usually safe, but apps may reload "
              "data afterward.");
    EXPECT_EQ(pending().confirmTitle, "Purge Caches");
    EXPECT_EQ(pending().kind, "local_purge");
    EXPECT_EQ(pending().hostName, std::nullopt);
    EXPECT_EQ(pending().pid, std::nullopt);
    EXPECT_THAT(confirmations.targets().paths, IsEmpty());
    EXPECT_EQ(review.optimizeStep(), purgeStep);
    EXPECT_EQ(ports.cachePurge->count, 0);
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(PurgeCaches, EveryOutcomeHasItsMessage) {
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

TEST_F(PurgeCaches, OnlyOneRunsAtATime) {
    actions.requestPurge();
    confirmations.confirmPending();
    EXPECT_TRUE(actions.isPurging());
    actions.requestPurge();
    confirmations.confirmPending();
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::actions);
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

TEST_F(OptimizeSafely, IsRefusedWithoutASample) {
    EXPECT_EQ(actions.optimizeSafely(), Outcome::refused("No sample is available yet."));
    expectRecorded("No sample is available yet.");
    EXPECT_EQ(review.selectedPID(), std::nullopt);
}

TEST_F(OptimizeSafely, AsksForAPurgeUnderPressureAndSelectsASafeTarget) {
    struct Case {
        double pressure;
        bool hasSafeGroup;
        const char* message;
    };
    addProtectedGroup();
    for (const Case& each :
         {Case{95.0, false, "Optimized safely: purged caches. No safe app target was found."},
          Case{95.0, true, "Optimized safely: purged caches and selected editor for review."},
          Case{10.0, true,
               "Optimize Safely selected editor. Review it before quitting anything."}}) {
        SCOPED_TRACE(each.message);
        review.clearOperationTarget();
        confirmations.cancelPending();
        if (each.hasSafeGroup && rows.size() == 1) {
            addSafeGroup();
        }
        takeSample(each.pressure);
        const bool purges = each.pressure > 50.0;
        EXPECT_EQ(actions.optimizeSafely(),
                  purges ? Outcome::asked(each.message) : Outcome::done(each.message));
        EXPECT_EQ(confirmations.pendingConfirmation().has_value(), purges);
        if (purges) {
            EXPECT_EQ(pending().kind, "local_purge");
        }
        EXPECT_EQ(review.optimizeStep(), purges ? purgeStep : firstStep);
        EXPECT_EQ(review.selectedPID(),
                  each.hasSafeGroup ? std::optional<std::int64_t>(700) : std::nullopt);
        EXPECT_EQ(review.selectedAppImpactName(),
                  each.hasSafeGroup ? std::optional<std::string>("editor") : std::nullopt);
        expectRecorded(each.message);
        EXPECT_EQ(ports.cachePurge->count, 0);
    }
}

TEST_F(OptimizeSafely, NothingToDo) {
    addProtectedGroup();
    takeSample(10.0);
    const ProcessSample chosen = addProcess(500, "/usr/bin/chosen");
    review.selectProcess(chosen);
    const std::string step = review.optimizeStep();
    EXPECT_EQ(actions.optimizeSafely(),
              Outcome::done("Optimize Safely found no safe action needed right now."));
    expectRecorded("Optimize Safely found no safe action needed right now.");
    EXPECT_EQ(review.selectedPID(), 500);
    EXPECT_EQ(review.selectedAppImpactName(), "chosen");
    EXPECT_EQ(review.optimizeStep(), step);
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(OptimizeSafely, RequestsAPurgeFromTheThresholdOn) {
    settings.set(&Settings::warningThreshold, 82.0);
    takeSample(81.999);
    actions.optimizeSafely();
    EXPECT_FALSE(confirmations.pendingConfirmation());
    takeSample(82.0);
    actions.optimizeSafely();
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(OptimizeSafely, APidReusedAfterTheSelectionIsNotSignalled) {
    addSafeGroup();
    takeSample(10.0);
    actions.optimizeSafely();
    reusePid(700);
    actions.requestQuitSelectedProcess();
    confirm();
    expectRecorded("Blocked an invalid process termination request.");
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

class NeverQuit : public LocalActionsFixture {};

TEST_F(NeverQuit, IsStoredSortedAndRecordedAndTwiceRestoresTheList) {
    const auto expectNames = [this](const ProtectedAppNames& names) {
        EXPECT_EQ(settings.values().protectedAppNames, names);
        EXPECT_EQ(store.read(settings_keys::protectedAppsKey),
                  SettingsValue(SettingsTextList(names.begin(), names.end())));
    };
    EXPECT_EQ(actions.toggleNeverQuit("Python"), Outcome::done("Python added to Never Quit."));
    expectRecorded("Python added to Never Quit.");
    actions.toggleNeverQuit("Docker");
    expectNames({"Docker", "Python"});
    EXPECT_EQ(actions.toggleNeverQuit("Python"), Outcome::done("Python removed from Never Quit."));
    expectRecorded("Python removed from Never Quit.");
    EXPECT_THAT(log.activityLog(), SizeIs(3));
    expectNames({"Docker"});
}

TEST_F(NeverQuit, RemovingANameTwiceDoesNotPutItBack) {
    settings.set(&Settings::protectedAppNames, {"Docker", "Python"});
    EXPECT_EQ(actions.removeFromNeverQuit("Python"),
              Outcome::done("Python removed from Never Quit."));
    expectRecorded("Python removed from Never Quit.");
    EXPECT_EQ(actions.removeFromNeverQuit("Python"), Outcome::ignored());
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(settings.values().protectedAppNames, ProtectedAppNames{"Docker"});
    EXPECT_EQ(store.read(settings_keys::protectedAppsKey),
              SettingsValue(SettingsTextList{"Docker"}));
}

TEST_F(NeverQuit, ProtectsTheTargetUnderReviewAtOnce) {
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

TEST_F(NeverQuit, NotifiesObservers) {
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
