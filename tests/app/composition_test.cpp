#include "app/composition.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_log.h"
#include "core/record_json.h"
#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "platform/base/run_loop.h"
#include "sampling/latest_sample.h"
#include "tests/app/private_data.h"
#include "tests/platform/settings/locking_writer.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

/// Uses this machine, with a private folder for stored data.
class CompositionTest : public ::testing::Test {
protected:
    std::unique_ptr<Composition> start(SettingsAccess access) {
        return std::make_unique<Composition>(loop, access);
    }

    /// Runs what has been posted so far.
    void serve() {
        loop.post([this] { loop.stop(0); });
        EXPECT_EQ(loop.run(), 0);
    }

    void store(double threshold) {
        const OpenedStore opened = openSettingsStore(file, {jobs, clock, {}});
        opened.store->write(settings_keys::thresholdKey, threshold);
    }

    /// The threshold after as many samples as it takes to look for it once.
    static double followedThreshold(Composition& composition) {
        for (int samples = 0; samples < 15; ++samples) {
            composition.followWarningThreshold();
        }
        return composition.monitor().settings().warningThreshold;
    }

    void writeGarbage() const {
        fs::create_directory(file.parent_path());
        std::ofstream(file) << "garbage";
    }

    PrivateData data;
    fs::path file = data.folder() / "tallowcrest" / "settings.sqlite";
    RunLoop loop;
    ManualMainQueue manualQueue;
    ManualWorkQueue workQueue;
    Jobs jobs{manualQueue, workQueue};
    ManualClock clock;
};

TEST_F(CompositionTest, KeepsSettingsFromOneRunToTheNext) {
    CaptureStderr();
    {
        const auto composition = start(SettingsAccess::readWrite);
        EXPECT_THAT(composition->monitor().log().activityLog(), IsEmpty());
        composition->monitor().log().recordMessage("Kept.");
        EXPECT_TRUE(composition->shutDown());
    }
    const auto composition = start(SettingsAccess::readWrite);
    EXPECT_EQ(GetCapturedStderr(), "");
    ASSERT_EQ(composition->monitor().log().activityLog().size(), 1U);
    EXPECT_EQ(composition->monitor().log().activityLog().front().detail, "Kept.");
    EXPECT_EQ(composition->monitor().log().lastAction(), "Monitoring started.");
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, ReadOnlyUseSeesStoredSettingsAndDoesNotChangeThem) {
    {
        const auto composition = start(SettingsAccess::readWrite);
        composition->monitor().log().recordMessage("Kept.");
        EXPECT_TRUE(composition->shutDown());
    }
    const std::string before = fileText(file);
    {
        const auto composition = start(SettingsAccess::readOnly);
        ASSERT_EQ(composition->monitor().log().activityLog().size(), 1U);
        composition->monitor().log().recordMessage("Not kept.");
        EXPECT_TRUE(composition->shutDown());
    }
    EXPECT_TRUE(fileText(file) == before);
    const auto composition = start(SettingsAccess::readOnly);
    EXPECT_EQ(composition->monitor().log().activityLog().size(), 1U);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, ReadOnlyUseStartsANewTimeline) {
    {
        const OpenedStore opened =
            openSettingsStore(file, {jobs, clock, [](const std::string&) {}});
        opened.store->write(settings_keys::thresholdKey, 70.0);
        opened.store->write(settings_keys::historyKey,
                            JSONData{*record_json::encode(std::vector<HistoryPoint>(
                                15, {UUID::random(), Date{1}, 100.0, 100.0}))});
    }
    const auto keeping = start(SettingsAccess::readWrite);
    EXPECT_EQ(keeping->monitor().sample().history().size(), 15U);
    EXPECT_TRUE(keeping->shutDown());
    const auto looking = start(SettingsAccess::readOnly);
    EXPECT_THAT(looking->monitor().sample().history(), IsEmpty());
    EXPECT_EQ(looking->monitor().settings().warningThreshold, 70.0);
    EXPECT_TRUE(looking->shutDown());
}

TEST_F(CompositionTest, AThresholdThatCannotBeReadIsLookedForAgainInTheUnchangedFile) {
    store(70.0);
    const auto composition = start(SettingsAccess::readOnly);
    const fs::path log = file.string() + "-wal";
    fs::file_time_type written;
    {
        const LockingWriter writer(file, 90.0);
        written = fs::last_write_time(log);
        EXPECT_EQ(followedThreshold(*composition), 70.0);
    }
    ASSERT_EQ(fs::last_write_time(log), written);
    EXPECT_EQ(followedThreshold(*composition), 90.0);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, AStartThatCannotReadTheThresholdIsFollowedByALook) {
    store(70.0);
    std::optional<LockingWriter> writer(std::in_place, file, 90.0);
    CaptureStderr();
    const auto composition = start(SettingsAccess::readOnly);
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("locked"));
    EXPECT_EQ(composition->monitor().settings().warningThreshold, 82.0);
    writer.reset();
    EXPECT_EQ(followedThreshold(*composition), 90.0);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, TheThresholdIsNotReadFromAFileThatIsAsItWasAtTheStart) {
    store(70.0);
    const auto composition = start(SettingsAccess::readOnly);
    const fs::file_time_type written = fs::last_write_time(file);
    store(90.0);
    fs::last_write_time(file, written);
    EXPECT_EQ(followedThreshold(*composition), 70.0);
    fs::last_write_time(file, written + std::chrono::seconds(1));
    EXPECT_EQ(followedThreshold(*composition), 90.0);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, AThresholdThatIsGoneIsTheOneOfAStart) {
    store(70.0);
    const auto composition = start(SettingsAccess::readOnly);
    openSettingsStore(file, {jobs, clock, {}})
        .store->write(settings_keys::thresholdKey, std::nullopt);
    EXPECT_EQ(followedThreshold(*composition), 82.0);
    store(90.0);
    EXPECT_EQ(followedThreshold(*composition), 90.0);
    fs::remove_all(file.parent_path());
    EXPECT_EQ(followedThreshold(*composition), 82.0);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, ReadOnlyUseCreatesNoFile) {
    const auto composition = start(SettingsAccess::readOnly);
    composition->monitor().log().recordMessage("Not kept.");
    EXPECT_TRUE(composition->shutDown());
    EXPECT_TRUE(fs::is_empty(data.folder()));
}

TEST_F(CompositionTest, ReportsSettingsThatCannotBeReadOnceInEachPlace) {
    writeGarbage();
    CaptureStderr();
    {
        const auto composition = start(SettingsAccess::readWrite);
        const std::string& said = composition->monitor().log().lastAction();
        EXPECT_THAT(said, HasSubstr(file.string()));
        EXPECT_THAT(said, HasSubstr("damaged"));
        EXPECT_EQ(GetCapturedStderr(), "tallowcrest: " + said + "\n");
        ASSERT_EQ(composition->monitor().log().activityLog().size(), 1U);
        EXPECT_EQ(composition->monitor().log().activityLog().front().title, "Action");
        EXPECT_EQ(composition->monitor().log().activityLog().front().detail, said);
        EXPECT_TRUE(composition->shutDown());
    }
    CaptureStderr();
    const auto composition = start(SettingsAccess::readWrite);
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(composition->monitor().log().lastAction(), "Monitoring started.");
    EXPECT_EQ(composition->monitor().log().activityLog().size(), 1U);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, ReportsTheBeginningAndTheEndOfAnOutage) {
    const auto composition = start(SettingsAccess::readWrite);
    ActivityLog& log = composition->monitor().log();
    const SettingsOwner& settings = composition->monitor().settingsOwner();
    SqliteConnection other;
    ASSERT_EQ(other.open(file, SqliteConnection::Access::readWrite, {}), SQLITE_OK);
    for (const std::size_t outages : {1U, 2U}) {
        CaptureStderr();
        ASSERT_EQ(other.execute("BEGIN IMMEDIATE"), SQLITE_OK);
        log.recordMessage("Not kept yet.");
        EXPECT_EQ(log.lastAction(), "Not kept yet.")
            << "a failed write is reported on a later turn";
        serve();
        EXPECT_THAT(log.lastAction(), HasSubstr("Settings cannot be saved"));
        const std::string said = log.lastAction();
        EXPECT_THAT(said, HasSubstr(file.string()));
        log.recordMessage("Not kept either.");
        serve();
        EXPECT_EQ(log.lastAction(), "Not kept either.");
        EXPECT_EQ(settings.savingProblem(), said) << "it lasts as long as the outage";
        const auto told =
            std::count_if(log.activityLog().begin(), log.activityLog().end(),
                          [&said](const ActivityEvent& event) { return event.detail == said; });
        EXPECT_EQ(static_cast<std::size_t>(told), outages);
        ASSERT_EQ(other.execute("ROLLBACK"), SQLITE_OK);
        log.recordMessage("Kept.");
        serve();
        EXPECT_EQ(log.lastAction(), "Settings are saved again.");
        EXPECT_EQ(settings.savingProblem(), "");
        EXPECT_EQ(GetCapturedStderr(),
                  "tallowcrest: " + said + "\ntallowcrest: Settings are saved again.\n");
    }
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, DropsReportsThatArePendingAtTheEnd) {
    CaptureStderr();
    {
        const auto composition = start(SettingsAccess::readWrite);
        SqliteConnection other;
        ASSERT_EQ(other.open(file, SqliteConnection::Access::readWrite, {}), SQLITE_OK);
        ASSERT_EQ(other.execute("BEGIN IMMEDIATE"), SQLITE_OK);
        composition->monitor().log().recordMessage("Not kept.");
        EXPECT_TRUE(composition->shutDown());
        serve();
    }
    serve();
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("cannot be saved"));
}

TEST_F(CompositionTest, StartsWhereNothingCanBeStored) {
    std::ofstream(data.folder() / "tallowcrest") << "a file where the folder should be";
    CaptureStderr();
    const auto composition = start(SettingsAccess::readWrite);
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("cannot be made"));
    EXPECT_THAT(composition->monitor().log().lastAction(), HasSubstr("cannot be made"));
    EXPECT_EQ(composition->monitor().settingsOwner().savingProblem(),
              composition->monitor().log().lastAction());
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, ShutDownReportsAJobThatHangs) {
    const auto composition = start(SettingsAccess::readOnly);
    std::promise<void> begun;
    std::promise<void> release;
    JobScope scope(composition->monitor().services().jobs);
    scope.run(
        Lane::actions,
        [&](const Stop&) {
            begun.set_value();
            release.get_future().wait();
        },
        [] {});
    begun.get_future().wait();
    EXPECT_FALSE(composition->shutDown(std::chrono::milliseconds(1)));
    EXPECT_EQ(composition->monitor().log().lastAction(), "Monitoring started.")
        << "the job may still need the monitor";
    release.set_value();
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, DestructionWithoutAShutDownStopsAndJoinsTheJobs) {
    auto composition = start(SettingsAccess::readOnly);
    std::promise<void> begun;
    bool mayNoLongerChange = false;
    JobScope scope(composition->monitor().services().jobs);
    scope.run(
        Lane::actions,
        [&](const Stop& stop) {
            begun.set_value();
            mayNoLongerChange = eventually([&stop] { return !stop.beginChange(); });
        },
        [] {});
    begun.get_future().wait();
    composition.reset();
    EXPECT_TRUE(mayNoLongerChange);
}

}  // namespace
}  // namespace tallowcrest
